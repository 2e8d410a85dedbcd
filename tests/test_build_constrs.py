"""addConstr and its kin: forms, names, what reaches the library, and what a refused call leaves behind."""

import sys
import textwrap
import warnings
from types import SimpleNamespace

import pytest

import zelvanpy
from zelvanpy import ZVN, LinExpr, ZelvanError, quicksum


@pytest.fixture
def xyz(model):
    x, y, z = (model.addVar(name=name) for name in "xyz")
    model.update()
    return x, y, z


def written_rows(m, tmp_path):
    """The rows as the file writer shows them."""
    path = tmp_path / "rows.lp"
    m.write(str(path))
    text = path.read_text()
    return [
        line.strip()
        for line in text[text.index("Subject To") : text.index("Bounds") if "Bounds" in text else -1].splitlines()[1:]
        if ":" in line
    ]


def test_forms_of_a_row(model, xyz, tmp_path):
    x, y, z = xyz
    model.addConstr(x + 2 <= 5, "a")
    model.addConstr(x + y >= 2 * y - z + 1, name="b")
    model.addConstr(x == y)
    model.addConstr(1 <= x + x + y - y, "d")
    model.addConstr(x <= float("inf"))
    model.addConstr(LinExpr([1.0, 0.0], [x, y]) == 3)
    assert written_rows(model, tmp_path)[:4] == [
        "a: x <= 3",
        "b: x - y + z >= 1",
        "R2: x - y = 0",
        "d: 2 x >= 1",
    ]
    assert model.getAttr("Sense") == ["<", ">", "=", ">", "<", "="]
    assert model.getAttr("RHS") == [3, 1, 0, 1, float("inf"), 3]
    assert model.NumNZs == 1 + 3 + 2 + 1 + 1 + 1


def test_both_doors_build_the_same_row(model, xyz, tmp_path):
    x, y, z = xyz
    chained = LinExpr()
    for _ in range(250):
        chained = chained + x
    for comparison in (x + 2 * y - 3 <= z, chained - y >= z + 4, x == y, 2 * x <= x, x + 1 >= 3.5):
        first = model.addConstr(comparison, "same")
        second = model.addLConstr(comparison, "same")
        model.update()
        rows = written_rows(model, tmp_path)
        assert rows[first.index].split(":")[1] == rows[second.index].split(":")[1]
    assert chained._is_nested()  # expressions are only read


def test_names_by_position_and_keyword(model, xyz):
    x, y, _ = xyz
    rows = [
        model.addConstr(x + y <= 1, "c"),
        model.addConstr(x + y == [1, 2], "c"),
        model.addConstr(x + y == [1, 2], name="d"),
        model.addConstr(True, "e"),
        model.addLConstr(x <= 1, "f"),
        model.addLConstr(x, "<", y, "g"),
    ]
    model.update()
    assert [row.ConstrName for row in rows] == ["c", "R1", "d", "e", "f", "g"]
    with pytest.raises(ZelvanError, match="Invalid argument to Model.addConstr"):
        model.addConstr(True, "c", name="d")
    with pytest.raises(ZelvanError, match="Invalid sense or name to Model.addLConstr"):
        model.addLConstr(x <= 1, "c", name="d")
    with pytest.raises(ZelvanError, match="longer than 255"):
        model.addConstr(x <= 1, "n" * 256)
    model.update()
    assert model.NumConstrs == 6


def test_constant_comparisons(model):
    model.addConstr(True)
    model.addLConstr(True)
    model.optimize()
    assert model.Status == ZVN.OPTIMAL
    false = model.addLConstr(False)
    model.optimize()
    assert model.Status in (ZVN.INFEASIBLE, ZVN.INF_OR_UNBD) and false.RHS == -1
    model.remove(false)
    model.addQConstr(False)
    model.optimize()
    assert model.Status in (ZVN.INFEASIBLE, ZVN.INF_OR_UNBD)


def test_ranges(model, xyz):
    x, y, _ = xyz
    row = model.addRange(x + 2, 1, 5)
    free = model.addRange(x, -ZVN.INFINITY, ZVN.INFINITY)
    one_sided = model.addRange(y, -1e30, 4)
    model.update()
    handles = model.getVars()
    assert model.NumVars == 5 and len(handles) == 5
    assert (row.Sense, row.RHS, handles[3].UB) == ("=", 3.0, 4.0)
    assert (free.Sense, handles[4].LB, handles[4].UB) == ("=", -float("inf"), float("inf"))
    assert (one_sided.Sense, one_sided.RHS) == ("<", 4.0)
    for sense, best in ((ZVN.MAXIMIZE, 3.0), (ZVN.MINIMIZE, 0.0)):
        model.setObjective(x, sense)
        model.optimize()
        assert x.X == pytest.approx(best)
    for bad, text in (
        ((1, 2), r"Range constraint requires a list \[lb,ub\]"),
        ([1], "two values"),
        ([1, "a"], "numeric values"),
        ([2, 1], "lower side is above"),
    ):
        with pytest.raises(ZelvanError, match=text):
            model.addConstr(x == bad)
    model.update()
    assert model.NumVars == 5 and len(model.getVars()) == 5


def test_two_sided_rows_keep_indices_in_step_under_mode_0(model, xyz):
    x, y, _ = xyz
    model.Params.UpdateMode = 0
    model.update()
    row = model.addConstr(x + y == [1, 2])
    later = model.addVar(name="later")
    model.update()
    assert model.NumVars == 4 and len(model.getVars()) == 4
    assert later.index == 3 and later.VarName == "later" and row.Sense == "R"
    model.setObjective(x + y)
    model.optimize()
    assert model.ObjVal == pytest.approx(1)


def test_order_of_refusals(model, xyz):
    x, y, _ = xyz
    other = zelvanpy.Model(env=model._uenv)
    foreign = other.addVar()
    cases = [
        (lambda: model.addConstr(x + foreign <= 1), ZVN.ERROR_NOT_IN_MODEL, "Variable not in model"),
        (lambda: model.addConstr(None, "<", 1), ZVN.ERROR_INVALID_ARGUMENT, "Invalid None value for lhs when calling"),
        (lambda: model.addQConstr(None), ZVN.ERROR_INVALID_ARGUMENT, "calling Model.addQConstr"),
        (lambda: model.addConstr((2 * x == 1) >> (y <= 1)), ZVN.ERROR_INVALID_ARGUMENT, "Indicator constraints can"),
        (lambda: model.addConstr((x <= 1) >> (y <= 1)), ZVN.ERROR_INVALID_ARGUMENT, "Indicator constraints can"),
        (lambda: model.addConstr((x == 1) >> (y <= 1)), 0, "Invalid argument to Model.addConstr"),
        (lambda: model.addLConstr(x), 0, "Invalid argument to Model.addLConstr"),
        (lambda: model.addLConstr("a", "<", x), 0, "Invalid argument to Model.addLConstr"),
        (lambda: model.addLConstr(x <= 1, rhs=2), 0, "Invalid argument to Model.addLConstr"),
        (lambda: model.addLConstr(True, rhs=1), 0, "Invalid argument to Model.addLConstr"),
        (lambda: model.addConstr(x <= float("nan")), ZVN.ERROR_INVALID_ARGUMENT, "Constant is Nan"),
        (lambda: model.addConstr(float("nan") * x <= 1), None, "coefficient nan"),
        (lambda: model.addConstr(x == float("inf")), None, "Right-hand side"),
        (lambda: model.addConstr(x + foreign <= 1, name=3), ZVN.ERROR_NOT_IN_MODEL, "Variable not in model"),
        (lambda: model.addRange(foreign, 0, 1, name=3), ZVN.ERROR_NOT_IN_MODEL, "Variable not in model"),
    ]
    for call, code, text in cases:
        with pytest.raises(ZelvanError, match=text) as caught:
            call()
        assert code is None or caught.value.errno == code
    with pytest.raises(TypeError):
        model.addConstr(x <= "a")
    model.update()
    assert model.NumConstrs == 0 and model.getConstrs() == []
    other.dispose()


def test_a_name_that_adds_rows_and_variables_itself(model, xyz, tmp_path):
    class Name(str):
        def encode(self, *args):
            model.addConstr(z >= 5, "inner")
            model.addVar()
            return bytes(self, "ascii")

    x, y, z = xyz
    for add in (model.addConstr, model.addLConstr):
        outer = add(x + 2 * y <= 3, name=Name("outer"))
        model.update()
        assert written_rows(model, tmp_path)[-2:] == ["inner: z >= 5", "outer: x + 2 y <= 3"]
        assert (model.getConstrs()[-1] is outer) and outer.ConstrName == "outer"
        model.remove(model.getConstrs())
    extra = model.addVar(name=Name("extra"))
    model.setObjectiveN(2 * x + y, 0, name=Name("named"))
    model.update()
    assert model.getVars()[-2] is extra and extra.VarName == "extra" and len(model.getVars()) == model.NumVars
    assert str(model.getObjective(0)) == "2.0 x + y"


def test_explicit_form_is_deprecated(model, xyz):
    x, y, _ = xyz
    with pytest.warns(DeprecationWarning, match="addLConstr"):
        row = model.addConstr(x + y, ZVN.LESS_EQUAL, 1)
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        model.addLConstr(x + y, ZVN.LESS_EQUAL, 1)
        model.addQConstr(x + y, ">=", 1)
        with pytest.raises(DeprecationWarning):
            model.addConstr(x + y, ZVN.LESS_EQUAL, 1)
    model.update()
    assert row.RHS == 1 and model.NumConstrs == 3


def test_add_constrs_names_and_keys(model):
    x = model.addVars(3, ["a", "b"], name="x")
    single = model.addConstrs((x[i, "a"] <= i for i in range(3)), name="c")
    double = model.addConstrs((x[i, k] <= 1 for i in range(3) for k in "ab" if (i, k) != (1, "b")), name="d")
    plain = model.addConstrs((x[0, k] >= 0 for k in ["a", "b"]), name="_")
    mapped = model.addConstrs((x[i, "a"] >= 0 for i in range(2)), name={1: "one"})
    empty = model.addConstrs(x[i, "a"] <= 1 for i in [])
    model.update()
    assert list(single) == [0, 1, 2] and single[2].ConstrName == "c[2]"
    assert list(double) == [(0, "a"), (0, "b"), (1, "a"), (2, "a"), (2, "b")]
    assert double[2, "b"].ConstrName == "d[2,b]"
    assert [row.ConstrName for row in plain.values()] == ["a", "b"]
    assert mapped[1].ConstrName == "one" and mapped[0].ConstrName == "R10"
    assert isinstance(empty, zelvanpy.tupledict) and not empty
    assert not model.addConstrs(x[i, "a"] <= 1 for i in range(3) if False)
    with pytest.raises(TypeError, match="not iterable"):
        model.addConstrs(SimpleNamespace(gi_frame=(x[i, "a"] <= i for i in range(3)).gi_frame))
    for bad in ([x[0, "a"] <= 1], 3, iter([])):
        with pytest.raises(KeyError, match="Missing constraint index"):
            model.addConstrs(bad)
    with pytest.raises(AttributeError):
        model.addConstrs((x[i, "a"] <= 1 for i in range(2)), name="_")
    model.update()
    assert model.NumConstrs == 12


def test_keys_of_many_generators(model):
    x = model.addVar()
    model.update()
    for k in range(600):  # as many code objects, of which a bounded number is remembered
        names = ("a%d" % k, "b%d" % k)
        source = "lambda x: (x <= %s for %s in [1] for %s in [2])" % (names[0], *names)
        rows = eval(source)
        assert list(model.addConstrs(rows(x))) == list(model.addConstrs(rows(x))) == [(1, 2)]
    frame = SimpleNamespace(f_code=(x <= i for i in [1]).gi_code, f_locals={"i": "own"})

    class Rows(SimpleNamespace):
        def __iter__(self):
            return iter([x <= 1])

    assert list(model.addConstrs(Rows(gi_frame=frame))) == ["own"]


def test_equal_keys_keep_the_last_row(model):
    x = model.addVar()
    model.update()
    rows = model.addConstrs((x <= i for i in [1, 2, 1.0, 3]), name="c")
    model.update()
    assert model.NumConstrs == 4 and list(rows) == rows.keys() == [2, 1, 3] and rows[1].ConstrName == "c[1.0]"


def test_errors_in_the_generator_come_through(model):
    x = model.addVars(3)
    with pytest.raises(ZeroDivisionError):
        model.addConstrs(x[i] <= 1 / (1 - i) for i in range(3))
    model.update()
    assert model.NumConstrs == 1  # rows before the failure stay


def test_overridden_add_constr_is_used(env_silent):
    class Counting(zelvanpy.Model):
        _calls = 0

        def addConstr(self, *args, **kwargs):
            self._calls += 1
            return super().addConstr(*args, **kwargs)

    m = Counting(env=env_silent)
    x = m.addVar()
    m.addConstrs(x <= i for i in range(3))
    assert m._calls == 3
    m.dispose()


GENERATORS = {
    "x[i] <= 1 for i in I": [0, 1, 2],
    "x[i] + x[j] <= 1 for i in I for j in range(i)": [(1, 0), (2, 0), (2, 1)],
    "x[j] <= i for j in I for i in I if i != j if j": [(1, 0), (1, 2), (2, 0), (2, 1)],
    "quicksum(x[j] for j in range(i)) <= 1 for i in I": [0, 1, 2],
    "quicksum([x[j] for j in I if j != i]) <= 1 for i in I": [0, 1, 2],
    "x[i] <= sum([k for k in I]) for i in I for k in [q for q in 'ab']": [(i, k) for i in (0, 1, 2) for k in "ab"],
    "x[a] + x[b] <= c for a, (b, c) in P": [(0, 1, 5), (1, 2, 6)],
    "x[a] <= len(rest) for a, *rest in Q": None,  # a list is no key
    "x[a] <= 1 for a, in [(0,), (1,)]": [0, 1],
    "quicksum(x[k] for k in (i, j)) <= (lambda: i + j)() for i in I for j in (0,)": [(0, 0), (1, 0), (2, 0)],
    "x[0] <= 1 for unused in 'pq'": ["p", "q"],
    "x[i] + x[j] <= 1 for i in I if i for j in [i - 1]": [(1, 0), (2, 1)],
    "x[i] <= (lambda: j)() for i in I for j, k in [(i, 5)]": [(0, 0, 5), (1, 1, 5), (2, 2, 5)],
    "x[i] <= len(c) for i in I for (a, b), c in [((i, 1), 'c')] for d in [[k for k in I]]": None,
    "x[i] <= len(d) for i in I for (a, b), c in [((i, 1), 'c')] for d in [str([k for k in 'd'])]": [
        (i, i, 1, "c", "['d']") for i in range(3)
    ],
    "x[i] <= k for i in I for k in [sum([k for j in I for k in [j]])]": [(0, 3), (1, 3), (2, 3)],
    "x[i] <= i if i else x[i] >= 0 for i in I": [0, 1, 2],
    "x[i] <= {k: v for k, v in [(0, 1)]}[0] for i in I if any(k == i for k in I)": [0, 1, 2],
    "x[i] <= OUTER for i in I if i not in {k for k in (1,)}": [0, 2],
    "x[i] <= 1 for i in I if any([k == i for k in I]) for s in 's'": [(0, "s"), (1, "s"), (2, "s")],
}
if sys.version_info >= (3, 8):
    GENERATORS["x[i] <= (w := i + 1) + w for i in I"] = [0, 1, 2]
    GENERATORS["x[i] <= i for i in I if (w := i) and x[w] is not None"] = [1, 2]


@pytest.mark.parametrize("source", GENERATORS)
def test_generator_keys_are_the_loop_variables(model, source):
    expected = GENERATORS[source]
    # Compiled both at module level and inside a function, where the variables of the body are closures.
    program = textwrap.dedent(
        """
        rows = model.addConstrs((SOURCE), name="r")
        def inside(I, P, Q, x, OUTER):
            return model.addConstrs((SOURCE), name="s")
        """
    ).replace("SOURCE", source)
    names = dict(model=model, x=model.addVars(3), quicksum=quicksum, I=range(3), OUTER=7)
    names.update(P=[(0, (1, 5)), (1, (2, 6))], Q=[(0, 1), (1, 2, 3)])
    if expected is None:
        with pytest.raises(TypeError, match="unhashable"):
            exec(program, names)
        return
    exec(program, names)
    assert list(names["rows"]) == expected
    assert list(names["inside"](*(names[k] for k in ("I", "P", "Q", "x", "OUTER")))) == expected


def test_generators_without_plain_loop_variables_are_refused(model):
    x = model.addVars(3)
    box = {}

    def forever():
        i = 0
        while True:
            yield x[i] <= 1
            i += 1

    for generator in ((x[box[0]] <= 1 for box[0] in range(3)), forever()):
        with pytest.raises(KeyError, match="Loop variables"):
            model.addConstrs(generator)

    def function():
        for i in range(3):
            yield x[i] <= i

    assert list(model.addConstrs(function())) == [0, 1, 2]

    def in_handler():
        for i in range(2):
            for j in range(2):
                try:
                    raise ValueError
                except ValueError:
                    for k in range(2):
                        yield x[i + j] <= k

    # Where the compiler moves handlers behind their loops, the outer ones can't be told.
    try:
        keys = list(model.addConstrs(in_handler()))
    except KeyError:
        assert sys.version_info >= (3, 11)
    else:
        assert keys == [(i, j, k) for i in range(2) for j in range(2) for k in range(2)]
