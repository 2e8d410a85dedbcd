"""Python code that runs in the middle of a call, and changes what the call works on; subclasses with methods of their
own."""

import copy
import gc
import numbers
import subprocess
import sys

import pytest

import zelvanpy
from zelvanpy import ZVN, Column, Env, Model, QuadExpr, TempConstr, Var, ZelvanError, quicksum, tupledict


def run(program):
    return subprocess.run([sys.executable, "-c", program], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)


def test_parameters_while_their_owner_goes(env_silent):
    class Upper(str):
        def upper(self):
            m.__init__("other", env_silent)
            gc.collect()
            return str.upper(self)

    class Closing:
        def __int__(self):
            env.close()
            return 1

        __index__ = __int__

        def __float__(self):
            return float(self.__int__())

    m = Model(env=env_silent)
    for use in (m.setParam, lambda name, _: m.getParamInfo(name), lambda name, _: m.fixTuneParam(name)):
        use(Upper("MIPGap"), 0.5)
    for name in ("Threads", "MIPGap"):
        env = Env(params={"OutputFlag": 0})
        with pytest.raises(ZelvanError):
            env.setParam(name, Closing())


def test_a_comparison_is_set_once(env_silent):
    class Side:
        def __str__(self):
            record.__init__(1, "<", 2)
            gc.collect()
            return "side"

    sides = [Side(), "any", Side()]
    record = TempConstr(*sides)
    assert repr(record) == "<zelvan.TempConstr: side == side>"
    assert [record._lhs, record._sense, record._rhs] == sides
    assert copy.copy(record)._sense == "any" and type(TempConstr.__new__(TempConstr)._sense) is str
    m = Model(env=env_silent)
    x = m.addVar(name="x")
    m.update()
    m.addConstr(TempConstr(x + 0, "<=", 3), name="c")
    m.update()
    assert (m.getConstrByName("c").Sense, m.getConstrByName("c").RHS) == ("<", 3.0)
    with pytest.raises(TypeError):
        m.addConstr(TempConstr(x + 0, 5, 3))


def test_a_row_whose_model_updates_itself_first(env_silent):
    class Updating(Model):
        def update(self):
            super().update()
            if comparisons:
                comparisons[0].__init__(None, "<", None)
                comparisons.pop()
                gc.collect()

    comparisons = []
    m = Updating(env=env_silent)
    y = m.addVar()
    m.update()
    comparisons.append(y + 1 <= 3)
    m.addConstr(comparisons[0])
    m.update()
    assert m.NumConstrs == 1 and m.getConstrs()[0].RHS == 2.0


def test_an_order_that_lies_about_its_length():
    class Long(list):
        def __len__(self):
            return 10

    keys = tupledict({1: "a", 2: "b"})
    with pytest.raises(IndexError):
        keys.setord(Long([1, 2]))
    assert sorted(keys.keys()) == [1, 2]


def test_keys_that_take_keys_away_while_values_are_read(env_silent):
    class Key:
        def __hash__(self):
            return 7

        def __eq__(self, other):
            if is_reading and len(x) > 2:
                dict.popitem(x)
            return self is other

    m = Model(env=env_silent)
    is_reading = False
    x = tupledict((Key(), m.addVar()) for _ in range(4))
    m.update()
    is_reading = True
    with pytest.raises(RuntimeError, match="changed during iteration"):
        m.getAttr("UB", x)


def test_methods_of_subclasses_get_their_argument(env_silent):
    class Noting(Model):
        def remove(self, items):
            noted.append(items)
            super().remove(items)

    noted = []
    m = Noting(env=env_silent)
    x, y = m.addVar(), m.addVar()
    m.update()
    m.remove([(x, y)])
    assert noted[:2] == [[(x, y)], (x, y)]
    m.update()
    assert m.NumVars == 0


def test_subclasses_with_an_end_of_their_own_free_the_library_model(env_silent):
    class Closing(Model):
        def close(self):
            pass

    class Ending(Model):
        def __del__(self):
            pass

    for kind in (Closing, Ending):
        m = kind(env=env_silent)
        x = m.addVar()
        m.update()
        assert x.LB == 0.0
        del m
        gc.collect()
        with pytest.raises((ZelvanError, AttributeError)):
            x.LB


def test_copies_keep_the_attributes_of_subclasses(env_silent):
    class Noted(Column):
        pass

    class Told(TempConstr):
        pass

    m = Model(env=env_silent)
    x = m.addVar()
    m.update()
    for original in (Noted(2.0, m.addConstr(x <= 1)), Told(x + 0, "<", 1)):
        original.note = "kept"
        assert copy.copy(original).note == "kept" and type(copy.copy(original)) is type(original)


def test_a_cycle_over_a_comparison_that_was_set_late_is_found():
    program = (
        "import gc, weakref, zelvanpy\n"
        "class Node: pass\n"
        "node, inner = Node(), zelvanpy.TempConstr.__new__(zelvanpy.TempConstr)\n"
        "node.outer = zelvanpy.TempConstr(inner, '<', 1)\n"
        "inner.__init__(node, '<', 1)\n"
        "gone = weakref.ref(node)\n"
        "del node, inner\n"
        "gc.collect(); gc.collect()\n"
        "assert gone() is None\n"
    )
    assert run(program).stderr == ""


def test_not_for_sub_interpreters():
    program = (
        "import sys\n"
        "try:\n    import _xxsubinterpreters as interpreters\n"
        "except ImportError:\n    import _interpreters as interpreters\n"
        "code = 'try:\\n    import zelvanpy\\nexcept ImportError as error:\\n    print(\"refused\", error)'\n"
        "interpreters.run_string(interpreters.create(), 'import sys; sys.path[:] = %r\\n' % sys.path + code)\n"
    )
    ended = run(program)
    if "No module named" in ended.stderr:
        pytest.skip("this Python has no module for sub-interpreters")
    assert "refused" in ended.stdout, ended.stderr


def test_the_reason_of_an_unreadable_file(env_silent, tmp_path):
    path = tmp_path / "bad.lp"
    path.write_text("Minimize\n x +\nSubject To\n c: x >= >= 1\nEnd\n")
    with pytest.raises(ZelvanError, match="^Unable to read model$") as raised:
        zelvanpy.read(str(path), env_silent)
    assert "bad.lp', line 3" in str(raised.value.__cause__) or "bad.lp', line 4" in str(raised.value.__cause__)
    with pytest.raises(ZelvanError) as raised:
        zelvanpy.read(str(tmp_path / "none*.lp"), env_silent)
    assert "none*.lp" in str(raised.value.__cause__) and raised.value.errno == 0


def test_a_stream_that_fails_is_told_once():
    for broken in ("None", "object()", "closed"):
        ended = run(
            "import io, sys, zelvanpy\n"
            "closed = io.StringIO(); closed.close()\n"
            "m = zelvanpy.Model()\nm.addVar(ub=1.0, obj=-1.0)\n"
            "sys.stdout = %s\nm.optimize()\nsys.stdout = sys.__stdout__\nprint(m.Status)\n" % broken
        )
        assert ended.stdout.split()[-1:] == [str(ZVN.OPTIMAL)] and ended.stderr.count("Error:") == 1, ended.stderr


class Emptying(numbers.Number):
    """What converts to numbers and texts, and changes an expression on the way."""

    def __init__(self, q, value):
        self.q, self.value = q, value

    def __float__(self):
        self.q.__init__()
        gc.collect()
        return float(self.value)


def test_quadratic_expressions_whose_arguments_change_them():
    xs = [Var(None, i) for i in range(450)]

    def product():
        q = QuadExpr()
        for x in xs:
            q = q + x * x + x
        return q

    class Same(Var):
        def sameAs(self, other):
            q.clear()
            gc.collect()
            return True

    q = product()
    q.addTerms([1.0, Emptying(q, 2)], xs[:2], xs[2:4])
    assert (q.size(), q.getCoeff(1)) == (2, 2.0)
    q = product()
    q.addTerms(Emptying(q, 3), xs[0], xs[1])
    assert (q.size(), q.getLinExpr().size()) == (1, 0)
    q = product()
    q._mul(Emptying(q, 3))
    assert q.size() == 0
    q = product()
    q.add(product(), Emptying(q, 2))
    assert (q.size(), q.getCoeff(449)) == (450, 2.0)
    q = product()
    q.addConstant(Emptying(q, 1))
    assert q.size() == 0
    for add in (q.add, q.__iadd__, q.__isub__):
        add(xs[0] + 1)
        add(Emptying(q, 1))
        assert q.getLinExpr().size() == 0
    q = Same(None, 7) * xs[0] + product()
    q.remove(xs[3])
    assert q.size() == 449  # what there was, without the terms of the two
    q = QuadExpr(xs[0] + 1)
    q *= Emptying(q, 3)
    assert q.getLinExpr().size() == 0


@pytest.mark.parametrize("change", ["clear", "__init__", "chain", "multiply"])
def test_quadratic_expressions_and_finalizers_in_the_middle(change):
    """The collector runs where an operator makes an object, and code of garbage changes its operands."""
    xs = [Var(None, i) for i in range(450)]
    in_the_middle = []

    def chain(of):
        q = of()
        for x in xs[:210]:
            q = q + (x * x if of is QuadExpr else x)
        return q

    class Garbage:
        def __init__(self, q, e):
            self.q, self.e, self.me = q, e, self

        def __del__(self):
            in_the_middle.append(gc.get_threshold()[0] == 1)
            for terms in dropped:
                terms.clear()
            for victim in (self.q, self.q.getLinExpr(), self.e):
                if change == "chain":
                    victim.__init__(chain(type(victim)))
                elif change == "multiply" and victim is not self.q:
                    victim.add(quicksum(xs))
                elif change != "multiply":
                    getattr(victim, change)()

    def sum_of_a_list_that_goes(q, e):
        terms = [xs[0], e, 2 * xs[3] * xs[3] + 1, xs[0] * xs[1]]
        dropped.append(terms)
        return quicksum(terms)

    dropped = []
    operations = [
        sum_of_a_list_that_goes,
        lambda q, e: q + e,
        lambda q, e: e - q,
        lambda q, e: e * e,
        lambda q, e: e * xs[0],
        lambda q, e: QuadExpr(e) * e,
        lambda q, e: q.__iadd__(e),
        lambda q, e: q.__imul__(2),
        lambda q, e: q.__isub__(q),
        lambda q, e: quicksum([q, e, q]),
        lambda q, e: QuadExpr(q),
        lambda q, e: q.copy().size(),
        lambda q, e: q.getLinExpr(),
        lambda q, e: q._normalize(),
        lambda q, e: (q <= e, q == 1),
        lambda q, e: q.__reduce__(),
        lambda q, e: str(q.size()),
        lambda q, e: getattr(zelvanpy, "__simpleexpr")(q),
    ]
    threshold = gc.get_threshold()
    for operation in operations:
        for q in (xs[0] * xs[1], chain(QuadExpr), QuadExpr(xs[0])):
            e = xs[0] + 2 * xs[1] + 1
            used_up = None
            used_up = [x * x for x in xs], [x + 1 for x in xs]  # nothing more comes from a free list
            Garbage(q, e)
            gc.set_threshold(1)
            try:
                result = operation(q, e)
            finally:
                gc.set_threshold(*threshold)
            assert str(result) and str(q) and str(e)
            assert all(part.size() == 1 for parts in used_up for part in parts)
    if sys.version_info < (3, 12):  # from there on the collector waits for the next instruction
        assert in_the_middle.count(True) > len(operations)
