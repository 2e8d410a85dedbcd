"""Quadratic constraints: the forms that build one, its handle, what the model gives back, and refusals."""

import gc

import pytest

from zelvanpy import ZVN, Constr, LinExpr, Model, QConstr, QuadExpr, Var, ZelvanError, quicksum


@pytest.fixture
def xyz(model):
    x, y, z = (model.addVar(name=name) for name in "xyz")
    model.update()
    return x, y, z


def text_of(model, qc):
    """A constraint as the model has it."""
    return "%s %s %g" % (model.getQCRow(qc), qc.QCSense, qc.QCRHS)


def test_forms_of_a_quadratic_row(model, xyz):
    x, y, z = xyz
    rows = [
        model.addConstr(x * y + 2 * x - 1 <= 3 * z + 4, "a"),
        model.addConstr(z * z >= x * x + y * y, name="b"),
        model.addConstr(y == x * y - 2),
        model.addQConstr(2 <= y * x + x * y + x, "d"),
        model.addConstr(x * x - x * x <= 1, name="e"),
        model.addQConstr(QuadExpr(x + x), "=", 2 * z, name="f"),
        model.addRange(x * z + 1, -5, 3, "g"),
        model.addConstr(x * y == [1, 2], name="h"),
        model.addConstr((x + 1) * (y - 2) >= LinExpr(z) ** 2),
    ]
    assert all(type(row) is QConstr and "Not Yet Added" in repr(row) for row in rows)
    assert model.NumQConstrs == 0 and model.getQConstrs() == []
    model.update()
    expected = [
        "2.0 x + -3.0 z + [ x * y ] < 5",
        "0.0 + [ z ^ 2 + -1.0 x ^ 2 + -1.0 y ^ 2 ] > 0",
        "y + [ -1.0 x * y ] = -2",
        "x + [ 2.0 x * y ] > 2",
        "0.0 < 1",
        "2.0 x + -2.0 z = 0",
        "0.0 + [ x * z ] < 2",
        "0.0 + [ x * y ] < 2",
        "y + -2.0 x + [ x * y + -1.0 z ^ 2 ] > 2",
    ]
    assert [text_of(model, row) for row in rows] == expected
    assert "".join(row.QCName for row in rows if row not in (rows[2], rows[8])) == "abdefgh"
    assert model.getQConstrs() == rows and model.NumQConstrs == 9 and model.NumConstrs == 0
    assert model.getQConstrByName("d") is rows[3] and model.getQConstrByName(name="none") is None


def test_kind_of_the_handle_follows_the_expression(model, xyz):
    x, y, _ = xyz
    assert type(model.addQConstr(x + y <= 1, "c")) is Constr
    assert type(model.addQConstr(True)) is Constr
    assert type(model.addConstr(QuadExpr(x) <= 1)) is QConstr
    with pytest.warns(DeprecationWarning):
        assert type(model.addConstr(x * y, ">", x)) is QConstr
    keyed = model.addConstrs((xyz[i] * xyz[i] <= i for i in range(3)), name="q")
    model.update()
    assert [(row.QCName, row.QCRHS) for row in keyed.values()] == [("q[0]", 0.0), ("q[1]", 1.0), ("q[2]", 2.0)]
    assert [model.getQCRow(row).getVar1(0) for row in keyed.values()] == list(xyz)

    class Numbered(Model):
        def addConstr(self, *args, **kwargs):
            return super().addConstr(*args, name="own")

    m = Numbered(env=model._uenv)
    v = m.addVar()
    m.update()
    row = m.addConstrs(v * v <= i for i in (1, 2))[1]
    m.update()
    assert row.QCName == "own"


def test_rows_of_both_doors_and_long_sums(model):
    vs = list(model.addVars(450).values())
    model.update()

    def chain():
        total = QuadExpr(1.0)
        for v in vs:
            total = total + v * vs[0] + 2 * v
        return total

    class Own(QuadExpr):
        pass

    rows = [
        model.addConstr(chain() <= 5),
        model.addConstr(0 <= 5 - chain()),
        model.addConstr(Own(chain()) <= 5),
        model.addConstr(chain() <= Own(5)),
        model.addConstr(5 >= quicksum([chain()])),
    ]
    model.update()
    for row, sign in zip(rows, (1, -1, 1, -1, 1)):
        q = model.getQCRow(row)
        assert (q.size(), q.getLinExpr().size(), sign * row.QCRHS) == (450, 450, 4.0)
        assert {q.getCoeff(i) for i in range(450)} == {sign} and q.getLinExpr().getCoeff(449) == 2.0 * sign


def test_removal_and_indices(model, xyz):
    x, y, z = xyz
    rows = [model.addConstr(v * v <= 1, "q%d" % i) for i, v in enumerate(xyz)]
    with pytest.raises(ZelvanError, match="quadratic constraint that does not exist"):
        model.remove(rows[0])
    model.update()
    assert [row.__cindex__() for row in rows] == [0, 1, 2]
    model.remove(rows[1])
    late = model.addConstr(x * y <= 2, "late")
    model.update()
    assert [row.__cindex__() for row in (*rows, late)] == [0, -2, 1, 2] and model.getQConstrs() == [
        rows[0],
        rows[2],
        late,
    ]
    assert [model.getQConstrByName(name) for name in ("q1", "q2", "late")] == [None, rows[2], late]
    assert text_of(model, rows[2]) == "0.0 + [ z ^ 2 ] < 1" and "Deleted" in repr(rows[1])
    model.remove(z)
    model.update()
    assert text_of(model, rows[2]) == "0.0 < 1"
    model.remove(model.getQConstrs())
    model.update()
    assert model.getQConstrs() == [] and model.NumQConstrs == 0


def test_refusals(model, xyz):
    x, y, _ = xyz
    other = Model("other", env=model._uenv)
    foreign = other.addVar(name="f")
    theirs = other.addConstr(foreign * foreign <= 1)
    other.update()
    pending = Var(model._cmodel, -1)
    stranger, invalid = ZVN.ERROR_NOT_IN_MODEL, ZVN.ERROR_INVALID_ARGUMENT
    waiting = model.addConstr(x * y <= 7)
    cases = [
        (lambda: model.addConstr(x * foreign <= 1), stranger, "Variable not in model"),
        (lambda: model.addConstr(foreign * x - foreign * x <= 1), stranger, "Variable not in model"),
        (lambda: model.addConstr(x * y + pending <= 1), stranger, "Variable not in model"),
        (lambda: model.addQConstr(1 >= pending * x), stranger, "Variable not in model"),
        (lambda: model.addConstr(x * y <= float("nan")), invalid, "Constant is Nan"),
        (lambda: model.addConstr((x * y == 1) >> (x <= 1)), invalid, "Indicator constraints can only be triggered"),
        (lambda: model.addLConstr(x * y <= 1), 0, "Invalid argument to Model.addLConstr"),
        (lambda: model.addLConstr(x, "<", x * y), 0, "Invalid argument to Model.addLConstr"),
        (lambda: model.addConstr(x * y == (1, 2)), invalid, "requires a list"),
        (lambda: model.addConstr(float("inf") * x * y <= 1), None, "coefficient|Coefficient"),
        (lambda: model.getQCRow(theirs), stranger, "Constraint not in model"),
        (lambda: model.getQCRow(waiting), stranger, "Constraint not in model"),
    ]
    for call, code, text in cases:
        with pytest.raises(ZelvanError, match=text) as caught:
            call()
        assert code is None or caught.value.errno == code
    with pytest.raises(TypeError, match="x.* is not a constraint"):
        model.getQCRow(x)
    with pytest.raises(TypeError):
        model.addConstr(x * y <= "a")
    model.update()
    assert model.getQConstrs() == [waiting] and model.NumConstrs == 0
    other.dispose()


def test_a_name_that_changes_the_expression(model, xyz):
    x, y, z = xyz

    class Name(str):
        def encode(self, *args):
            q.clear()
            model.addConstr(z * z <= 9, "inner")
            gc.collect()
            return bytes(self, "ascii")

    for add in (model.addConstr, model.addQConstr):
        q = x * y + quicksum(v * v for v in xyz) + 2 * x
        outer = add(q <= 3, name=Name("outer"))
        model.update()
        assert model.getQConstrs()[-1] is outer and outer.QCName == "outer" and text_of(model, outer) == "0.0 < 3"
    assert [row.QCName for row in model.getQConstrs()] == ["inner", "outer"] * 2


def test_update_modes(env_silent):
    for mode in (0, 1):
        m = Model(env=env_silent)
        m.Params.UpdateMode = mode
        x = m.addVar(name="x")
        if mode == 0:
            with pytest.raises(ZelvanError, match="Variable not in model"):
                m.addConstr(x * x <= 1)
            m.update()
        row = m.addConstr(x * x <= 1)
        assert row.__cindex__() == -1
        m.update()
        assert row.__cindex__() == 0 and text_of(m, row) == "0.0 + [ x ^ 2 ] < 1"


def test_handles_outlive_their_model(env_silent):
    m = Model(env=env_silent)
    x = m.addVar()
    m.update()
    row = m.addConstr(x * x <= 1)
    m.update()
    m.dispose()
    for read in (lambda: m.getQConstrs(), lambda: m.getQCRow(row), lambda: m.addConstr(x * x <= 1)):
        with pytest.raises(ZelvanError, match="freed"):
            read()
    with pytest.raises((ZelvanError, AttributeError)):
        row.QCRHS
