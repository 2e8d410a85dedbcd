"""Linear expressions: forms of the constructor, methods, chains of long sums, memory and collection."""

import copy
import gc
import io
import math
import pickle
import sys
import weakref

import numpy
import pytest
from hypothesis import settings
from hypothesis import strategies as st
from hypothesis.stateful import Bundle, RuleBasedStateMachine, invariant, multiple, rule

import zelvanpy
from zelvanpy import LinExpr, TempConstr, Var, ZelvanError, quicksum, read

INVALID = 10003
simple_expression = getattr(zelvanpy, "__simpleexpr")


def handles(count):
    """Handles without a model: expressions only store them."""
    return [Var(None, i) for i in range(count)]


def terms(e):
    return [(e.getCoeff(i), e.getVar(i).index) for i in range(e.size())]


def content(e):
    return e.getConstant(), terms(e)


@pytest.fixture
def xyz():
    return handles(3)


def refused(text, function, *args, code=INVALID):
    with pytest.raises(ZelvanError) as caught:
        function(*args)
    assert (caught.value.errno, str(caught.value)) == (code, text)


def test_constructor_forms(xyz):
    x, y, _ = xyz
    for empty in (LinExpr(), LinExpr(0), LinExpr(None), LinExpr(0.0, None), LinExpr(arg1=False), LinExpr([])):
        assert content(empty) == (0.0, []) and str(empty) == "0.0"
    assert content(LinExpr(x)) == (0.0, [(1.0, 0)])
    assert content(LinExpr([(1, x), [2.5, y]])) == content(LinExpr((1, 2.5), numpy.array([x, y], dtype=object)))
    assert content(LinExpr(numpy.array([1, 2.5]), [x, y])) == (0.0, [(1.0, 0), (2.5, 1)])
    assert content(LinExpr("2", x)) == (0.0, [(2.0, 0)])
    assert content(LinExpr(numpy.float64(2.5))) == (2.5, [])
    assert LinExpr(math.inf).getConstant() == math.inf
    assert math.isnan(LinExpr(math.nan, x).getCoeff(0))
    assert type(LinExpr(x).getCoeff(0)) is type(LinExpr(3).getConstant()) is float
    source = x + 2 * y + 1
    assert content(LinExpr(source)) == content(source)


def test_constructor_refuses(xyz):
    x, y, _ = xyz
    different = "Linear expression arguments of different length"
    refused("Second tuple member should be a Var", LinExpr, [(1, 2)])
    refused("Second tuple member should be a Var", LinExpr, [(math.nan, 2)])
    refused("Coefficient is Nan or Inf", LinExpr, [(1, x), (math.inf, y)])
    refused(different, LinExpr, [1, 2], [x])
    refused("Coefficient is Nan or Inf", LinExpr, [math.nan], [3])
    refused("Second argument should be a list of Var", LinExpr, [1, 2], [x, 3])
    refused("Constant is Nan", LinExpr, math.nan)
    for error, args in [
        (TypeError, (object(),)),
        (TypeError, ([(1.0,), x], 3)),
        (IndexError, ("ab",)),
        (OverflowError, (10**400,)),
        (TypeError, (x, y)),
        (TypeError, (numpy.array([1.0]),)),
        (TypeError, (1.0, x, y)),
    ]:
        with pytest.raises((error, IndexError) if isinstance(args[0], numpy.ndarray) else error):
            LinExpr(*args)


def test_methods_that_add(xyz):
    x, y, z = xyz
    e = LinExpr()
    assert e.add(x) is None
    e.add(arg1=y, mult=2)
    e.add(x + 3 * z + 1, 2.0)
    e.add(4, 0.5)
    e.addConstant(numpy.float32(1.0))
    e.addTerms(5, x)
    e.addTerms((1, 2), (v for v in (y, z)))
    e.addTerms([], [])
    assert content(e) == (5.0, [(1, 0), (2, 1), (2, 0), (6, 2), (5, 0), (1, 1), (2, 2)])
    e.add(e)
    assert e.size() == 14 and e.getConstant() == 10.0 and terms(e)[:7] == terms(e)[7:]
    e.add(x + 1, math.inf)
    assert e.getCoeff(-1) == math.inf and e.getConstant() == math.inf


def test_failures_change_nothing(xyz):
    x, y, z = xyz
    e = 2 * x + y + 1
    before = content(e)
    no_coefficient, no_list = "Coefficient is Nan or Inf", "Second argument should be a list of Var"
    refused(no_coefficient, e.add, x, math.nan)
    refused(no_coefficient, e.addTerms, math.inf, x)
    refused("Unsupported type (<class 'str'>) for LinExpr addition argument", e.add, "1")
    refused("Constant is Nan", e.add, 1.0, math.nan)
    refused("Constant is Nan", e.addConstant, math.nan)
    refused("Unrecognized arguments", e.addTerms, 1.0, 2.0)
    refused("Array lengths don't match", e.addTerms, [1.0], [x, y])
    refused(no_list, e.addTerms, [1.0, math.nan], [x, 1])
    refused(no_coefficient, e.addTerms, [1.0, math.nan, "a"], [x, y, z])
    refused("First argument should be a list of floats", e.addTerms, [1.0, "a", math.nan], [x, y, z])
    refused("Invalid argument to LinExpr multiplication", e._mul, "2")
    refused("Multiplier is Nan or Inf", e._mul, math.inf)
    for error, call in [
        (TypeError, lambda: e.addTerms([1.0], x)),
        (TypeError, lambda: e.addConstant("1")),
        (ValueError, lambda: e.add(x, "a")),
        (TypeError, lambda: e.add(x + y, "2")),
        (IndexError, lambda: e.remove(2)),
        (IndexError, lambda: e.getCoeff(-3)),
        (TypeError, lambda: e.getVar("0")),
        (TypeError, lambda: quicksum([x, "a"])),
        (TypeError, lambda: quicksum(3)),
    ]:
        with pytest.raises(error):
            call()
    e.remove(1.0)
    e.remove(None)
    assert content(e) == before


def test_reading_and_removing(xyz):
    x, y, z = xyz
    e = x + 2 * y + 3 * x + 4 * z
    assert e.getVar(i=-1) is z and e.getVar(numpy.int64(1)) is y and e.getCoeff(True) == 2.0
    e.remove(item=Var(None, 0))
    assert terms(e) == [(2.0, 1), (4.0, 2)]
    e.remove(-2)
    e.remove(False)
    assert terms(e) == []
    e.addConstant(1)
    e.clear()
    assert content(e) == (0.0, [])
    count = sys.getrefcount(z)
    e = x + 2 * z + 3 * z
    e.remove(1)
    assert sys.getrefcount(z) == count + 1
    e.remove(z)
    assert sys.getrefcount(z) == count and terms(e) == [(1.0, 0)]


def test_quicksum_of_products_with_constants(xyz):
    expected = (6.0, [(2.0, 0), (2.0, 1), (2.0, 2)])
    kept = [2 * v + 2 for v in xyz]
    for roads in ((2 * v + 2 for v in xyz), kept, iter(kept), tuple(kept)):
        assert content(quicksum(roads)) == expected
    assert [content(e) for e in kept] == [(2.0, [(2.0, i)]) for i in range(3)]


def test_positions_whose_code_changes_the_expression():
    for method in (LinExpr.getCoeff, LinExpr.getVar):
        e = chain(handles(450))

        class Position:
            def __index__(self, e=e):
                e.clear()
                return 400

        with pytest.raises(IndexError):
            method(e, Position())

        class Growing:
            def __index__(self, e=e):
                e.add(quicksum(handles(5000)))
                return -1

        assert method(e, Growing()) is not None and e.size() == 5000
    e = chain(handles(250))
    older = e.__reduce__()[1][2][2]
    older.__init__(e)
    assert not older._is_nested() and older.size() == 250


def test_normalize_merges_equal_columns():
    xs = handles(40)
    e = quicksum(c * x for c in (1, 2, -3) for x in xs) + 0 * xs[0] + 5 * Var(None, 7) + 3
    e._normalize()
    assert content(e) == (3.0, [(5.0, 7)])
    e = quicksum((i - 2) * x for i, x in enumerate(xs)) + xs[1] + 2 * xs[0]
    e._normalize()
    assert terms(e) == [(float(i - 2), i) for i in range(3, 40)]
    first, second = Var(None, -1), Var(None, -1)
    pending = first + 2 * second + 4 * first
    pending._normalize()
    assert terms(pending) == [(5.0, -1), (2.0, -1)] and pending.getVar(0) is first
    pending = first * second + second * first
    pending._normalize()
    assert pending.size() == 1 and pending.getCoeff(0) == 2.0
    simplified = simple_expression(e)
    assert simplified is not e and content(simplified) == content(e)
    assert content(simple_expression(xs[3])) == (0.0, [(1.0, 3)]) and content(simple_expression(2)) == (2.0, [])
    refused("Unable to convert argument to an expression", simple_expression, "2", code=-1)


def chain(xs):
    e = LinExpr()
    for x in xs:
        e = e + x
    return e


def test_chain_of_a_long_sum(capsys):
    xs = handles(1000)
    e = chain(xs)
    assert e._is_nested()
    e._dbgprint()
    lines = capsys.readouterr().out.splitlines()
    assert lines[0] == "<DBGLinExpr len=0 const=0.000000" and len(lines) == 6
    assert lines[1] == "  |  <DBGLinExpr 200 const=0.000000>" and lines[-1] == lines[1] + " >"
    f = LinExpr(1.5)
    f.add(e, 2.0)
    assert e._is_nested() and not f._is_nested()
    assert content(f) == (1.5, [(2.0, i) for i in range(1000)])
    # Only what has to look at the terms flattens: the right operand of a product by a number stays.
    assert (3 * e).size() == 1000 and e._is_nested()
    assert (e - e).size() == 2000 and e._is_nested()
    assert e.copy()._is_nested()
    assert (e * 1).size() == 1000 and not e._is_nested()
    assert terms(e) == [(1.0, i) for i in range(1000)]
    e._dbgprint()
    assert capsys.readouterr().out == "<DBGLinExpr len=1000 const=0.000000>\n"


def test_blocks_start_at_200_terms():
    xs = handles(200)
    assert not chain(xs[:199])._is_nested()
    assert chain(xs)._is_nested()
    flat = quicksum(xs)
    assert not flat._is_nested() and (flat + 1)._is_nested()
    flat += flat
    assert not flat._is_nested() and flat.size() == 400


def test_chain_added_to_itself():
    e = chain(handles(450)) + 2
    expected = content(e.copy())
    e += e
    assert content(e) == (4.0, expected[1] * 2)


class Pool(RuleBasedStateMachine):
    """Expressions that share blocks, each beside a plain list of its terms."""

    expressions = Bundle("expressions")
    xs = handles(300)
    small = st.integers(-3, 3)

    def keep(self, e, constant, plain):
        self.pairs.append((e, [constant, plain]))
        return self.pairs[-1]

    def __init__(self):
        super().__init__()
        self.pairs = []

    @rule(target=expressions, first=st.integers(0, 299), count=st.sampled_from([0, 1, 2, 3, 120, 199, 200, 250]))
    def start(self, first, count):
        chosen = [self.xs[(first + i) % 300] for i in range(count)]
        return self.keep(quicksum(chosen), 0.0, [(1.0, x.index) for x in chosen])

    @rule(target=expressions, a=expressions, b=expressions, sign=st.sampled_from([1.0, -1.0]))
    def combine(self, a, b, sign):
        if len(a[1][1]) + len(b[1][1]) > 3000:
            return multiple()
        (e, (c, p)), (f, (d, q)) = a, b
        return self.keep(e + f if sign > 0 else e - f, c + sign * d, p + [(sign * k, i) for k, i in q])

    @rule(target=expressions, a=expressions, i=st.integers(0, 299), number=small)
    def append(self, a, i, number):
        e, (c, p) = a
        return self.keep(e + self.xs[i] - number, c - number, p + [(1.0, i)])

    @rule(target=expressions, a=expressions)
    def share(self, a):
        return self.keep(a[0].copy(), a[1][0], list(a[1][1]))

    @rule(a=expressions, b=expressions, number=small)
    def add_in_place(self, a, b, number):
        if len(a[1][1]) + len(b[1][1]) > 3000:
            return
        a[0].add(b[0], number)
        added = [(number * k, i) for k, i in b[1][1]]
        a[1][0] += number * b[1][0]
        a[1][1].extend(added)

    @rule(a=expressions, number=small)
    def scale_in_place(self, a, number):
        a[0]._mul(number)
        a[1][0] *= number
        a[1][1][:] = [(k * number, i) for k, i in a[1][1]]

    @rule(a=expressions, i=st.integers(0, 299))
    def remove(self, a, i):
        a[0].remove(self.xs[i])
        a[1][1][:] = [(k, j) for k, j in a[1][1] if j != i]

    @rule(a=expressions)
    def flatten(self, a):
        a[0]._flatten()

    @rule(a=expressions)
    def clear(self, a):
        a[0].clear()
        a[1][:] = [0.0, []]

    @invariant()
    def all_as_expected(self):
        for e, (constant, plain) in self.pairs:
            assert content(e.copy()) == (constant, plain)


TestPool = Pool.TestCase
TestPool.settings = settings(max_examples=40, stateful_step_count=30, deadline=None)


def test_pickling_and_copies():
    assert content(pickle.loads(pickle.dumps(LinExpr(3.5)))) == (3.5, [])
    # Handles belong to a model and don't pickle; the expression passes them on as they are.
    e = chain(handles(900)) + 1
    restore, args = e.__reduce__()
    coeffs, constant, older, variables = args[2]
    assert args[0] is LinExpr and (coeffs, constant) == ([1.0] * 100, 1.0) and older._is_nested()
    twin = restore(*args)
    assert twin._is_nested() and content(twin) == content(e) and twin.getVar(5) is e.getVar(5)
    for state in [([1.0], 0.0, None, []), ([1.0], 0.0, None, [1]), ([], 0.0, 1, []), ([], "a", None, [])]:
        with pytest.raises((ValueError, TypeError)):
            restore(LinExpr, args[1], state)
    with pytest.raises(ValueError):
        restore(int, *args[1:])
    with pytest.raises(ValueError):
        restore(LinExpr, args[1] + 1, args[2])


def test_long_chains_pickle_with_their_blocks(capsys):
    xs = handles(60000)
    place = {id(x): i for i, x in enumerate(xs)}
    e = chain(xs)
    later = e + xs[0] + 2

    class Unpickler(pickle.Unpickler):
        def persistent_load(self, position):
            return xs[position]

    def by_pickler(base):
        class Pickler(base):
            def persistent_id(self, thing):
                return place[id(thing)] if isinstance(thing, Var) else None

        stream = io.BytesIO()
        Pickler(stream, 4).dump([e, later])
        return Unpickler(io.BytesIO(stream.getvalue())).load(), len(stream.getvalue())

    def blocks(expression):
        expression._dbgprint()
        return capsys.readouterr().out

    (fast, size), (plain, _) = by_pickler(pickle.Pickler), by_pickler(pickle._Pickler)
    assert size < 20 * len(xs)  # blocks that both share stand in it once
    for twin, later_twin in (
        fast,
        plain,
        copy.deepcopy([e, later], {id(x): x for x in xs}),
        map(copy.copy, [e, later]),
    ):
        assert blocks(twin) == blocks(e) and blocks(later_twin) == blocks(later)
        assert terms(twin) == [(1.0, i) for i in range(60000)] and content(later_twin) == (
            2.0,
            [*terms(twin), (1.0, 0)],
        )


class Tagged(LinExpr):
    def __init__(self, *args):
        super().__init__(*args)
        self.tag = "t"


def test_subclass(xyz):
    x, y, _ = xyz
    t = Tagged(x)
    t += y
    assert type(t) is Tagged and t.tag == "t"
    for e in (t + 1, 1 + t, x + t, t + x, LinExpr(1) + t, t.copy(), t * 2, 2 * t, -t, t - t, 1 - t, quicksum([t])):
        assert type(e) is LinExpr
    assert content(1 - t) == (1.0, [(-1.0, 0), (-1.0, 1)])
    assert content(LinExpr(t)) == content(t)
    assert content(y + 1 + t) == (1.0, [(1, 1), (1, 0), (1, 1)])
    assert content(t.__radd__(y)) == (0.0, [(1, 0), (1, 1), (1, 1)])
    restored = copy.copy(t)
    assert type(restored) is Tagged and restored.tag == "t" and content(restored) == content(t)

    class Own(LinExpr):
        def __add__(self, other):
            return "own sum"

        def __radd__(self, other):
            return "own reflected sum"

        def __mul__(self, other):
            return "own product"

    assert Own() * 1 == 2 * Own() == "own product"
    assert Own() + 1 == "own sum" and LinExpr() + Own() == "own reflected sum"


def test_long_chains_use_no_stack():
    xs = handles(200)
    e = LinExpr()
    block = quicksum(xs)
    for _ in range(60000):
        e = e + block
    shared = e.copy()
    del e
    gc.collect()
    assert shared._is_nested()
    del shared
    e = chain(xs)
    for nest in (lambda inner: inner >> 1, lambda inner: (xs[0] == 1) >> inner):
        inner = e <= 1
        for _ in range(100000):
            inner = nest(inner)
        del inner


def test_sizes():
    xs = handles(100000)
    assert sys.getsizeof(LinExpr()) == sys.getsizeof(xs[0] + xs[1]) <= 112
    for e in (quicksum(xs), quicksum(2 * x for x in xs), LinExpr([1.0] * len(xs), xs)):
        assert sys.getsizeof(e) <= 17 * len(xs)
    e = LinExpr()
    for x in xs:
        e += x
    assert sys.getsizeof(e) <= 17 * len(xs) + 112


MODEL = """Maximize
 obj: 3 x + 2 y + free
Subject To
 c0: x + y <= 4
 c1: x + 3 y + free <= 6
Bounds
 x <= 3
 free free
End
"""


@pytest.fixture
def solved(env_silent, tmp_path):
    (tmp_path / "m.lp").write_text(MODEL)
    model = read(str(tmp_path / "m.lp"), env_silent)
    model.optimize()
    yield model
    model.dispose()


def test_text(solved):
    x, y, z = solved.getVars()
    assert str(1 + x + 3 * y - z) == "1.0 + x + 3.0 y + -1.0 free"
    assert str(2 * x) == "2.0 x" and str(LinExpr(2.5)) == "2.5" and str(x - x) == "x + -1.0 x"
    assert repr(x + 1e30) == "<zelvan.LinExpr: 1e+30 + x>"
    assert str(x <= 1) == "<zelvan.TempConstr: x <= 1>"
    assert repr((x == 1) >> (y + x <= z)) == (
        "<zelvan.TempConstr: <zelvan.TempConstr: x == 1> == <zelvan.TempConstr: y + x <= " + repr(z) + ">>"
    )
    solved.remove(y)
    assert str(x + 2 * y) == "x + 2.0 <zelvan.Var y (Removed)>"
    solved.update()
    assert str(x + 2 * y) == "x + 2.0 <zelvan.Var *Removed*>"
    assert str(x + Var(solved._cmodel, 7)) == "x + <zelvan.Var *Awaiting Model Update*>"


def test_value_of_solution(solved):
    x, y, z = solved.getVars()
    e = quicksum(0.1 * i * v for i, v in enumerate([x, y, z] * 50)) + 0.7
    expected = 0.7
    for i in range(e.size()):
        expected += e.getVar(i).X * e.getCoeff(i)
    assert e.getValue() == expected and LinExpr(3).getValue() == 3.0
    x._note = "fields change nothing"
    assert e.getValue() == expected

    class Fixed(Var):
        x = 100.0

    assert (x + Fixed(solved._cmodel, 1)).getValue() == x.X + 100.0
    removed, pending = Var(solved._cmodel, -2), Var(solved._cmodel, -1)
    for expression, text in [
        (x + removed + pending, "Var was removed from the model"),
        (x + pending + removed, "Var has not yet been added to the model"),
    ]:
        refused(text, expression.getValue, code=0)
    other = solved.copy()
    other.setObjective(-y.X * other.getVars()[0])
    other.optimize()
    foreign = other.getVars()[0]
    assert foreign.X != x.X and (x + 2 * foreign).getValue() == x.X + 2 * foreign.X
    solved.remove(y)
    assert (x + 2 * y).getValue() == x.X + 2 * y.X


def test_value_without_solution(env_silent, tmp_path):
    (tmp_path / "m.lp").write_text(MODEL)
    with read(str(tmp_path / "m.lp"), env_silent) as model:
        x, y, _ = model.getVars()
        with pytest.raises(AttributeError) as one:
            _ = x.X
        with pytest.raises(AttributeError) as several:
            (x + y).getValue()
        assert str(one.value) == str(several.value)


class Canary:
    pass


@pytest.mark.parametrize(
    "tie",
    [
        lambda x, e: setattr(x, "_keep", e),
        lambda x, e: setattr(x, "_keep", e <= 1),
        lambda x, e: setattr(x, "_keep", [(e <= 1) >> (2 * e >= x)]),
        lambda x, e: setattr(x, "_keep", chain([x, *handles(450)])),
        lambda x, e: setattr(x, "_keep", TempConstr(1, "=", {1: e})),
    ],
)
@pytest.mark.parametrize("fields_first", [False, True])
def test_cycles_are_collected(tie, fields_first):
    x, y = handles(2)
    if fields_first:
        x._note = 1
    e = 2 * y + x
    canary = Canary()
    gone = weakref.ref(canary)
    tie(x, e)
    x._canary = canary
    del x, e, canary
    gc.collect()
    assert gone() is None


@pytest.mark.parametrize(
    "make",
    [
        lambda x: (x + 1).copy(),
        lambda x: LinExpr(1.0) + 2 * x,
        lambda x: quicksum(2 * x for _ in range(3)),
        lambda x: quicksum([x] * 250) + x,
        lambda x: LinExpr([1.0], [x]),
        lambda x: 1 <= x + 0.0,
    ],
)
def test_new_expressions_over_known_fields_are_found(make):
    """The collector has seen the variable's fields; nothing but the expression is new."""
    x, canary = Var(None, 0), Canary()
    x._canary, x._made = canary, None
    gone = weakref.ref(canary)
    del canary
    gc.collect()
    x._made = make(x)
    del x
    gc.collect()
    assert gone() is None


def test_cycle_closed_by_a_later_change():
    x, y = handles(2)
    e = LinExpr(y)
    c = e <= 1
    canary = Canary()
    gone = weakref.ref(canary)
    x._canary = canary
    x._constraint = c
    e += x
    del x, e, c, canary
    gc.collect()
    assert gone() is None


def test_collector_is_not_burdened(xyz):
    x, y, _ = xyz
    made = [x + y, 2 * x + 1 <= y, chain(handles(300)), (x <= 1) >> (y >= 2)]
    assert not any(gc.is_tracked(o) for o in made)
    x._field = 1
    assert gc.is_tracked(x + y) and gc.is_tracked(x <= 1) and not gc.is_tracked(2 * y)
    assert gc.is_tracked(Tagged()) and gc.is_tracked(LinExpr(1) <= [1])


def test_reference_counts_stay(xyz):
    x, y, z = xyz
    e, f = x + y, chain(handles(250))
    one = 1.5

    def work(rounds):
        for _ in range(rounds):
            g = e + 2 * z - x / 4
            g += f
            g -= y
            g *= 2
            g.remove(x)
            g = quicksum([x, g, one, e])
            g._normalize()
            assert (g <= one)._lhs is g
            refused("First argument should be a list of floats", g.addTerms, [one, "a"], [x, y])

    def counts():
        gc.collect()
        return [sys.getrefcount(o) for o in (x, y, z, e, f, one, LinExpr, TempConstr)]

    work(300)
    before = counts()
    work(2000)
    assert counts() == before
