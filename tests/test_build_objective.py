"""Objectives: replaced whole, several of them, and piecewise-linear terms."""

import pytest

import zelvanpy
from zelvanpy import ZVN, LinExpr, QuadExpr, ZelvanError, quicksum


def test_objective_is_replaced_whole(model):
    x = model.addVars(3, obj=5.0, ub=1)
    model.setObjective(x[0] + x[0] + 2 * x[1] + 7, ZVN.MAXIMIZE)
    late = model.addVar(obj=9.0, ub=1)
    model.update()
    assert model.getAttr("Obj") == [2, 2, 0, 9]
    assert (model.ObjCon, model.ModelSense) == (7, -1)
    assert str(model.getObjective()) == "7.0 + 2.0 C0 + 2.0 C1 + 9.0 C3"
    model.setObjective(x[2] - 1)  # the sense stays
    model.update()
    assert model.getAttr("Obj") == [0, 0, 1, 0] and (model.ObjCon, model.ModelSense) == (-1, -1)
    late.Obj = 3
    model.setObjective(0)
    model.update()
    assert model.getObjective().size() == 0


def test_long_sums_by_plus_come_whole(model):
    x = model.addVars(450, ub=1).values()
    model.NumObj = 2
    model.update()

    def chain():
        total = LinExpr(3.0)
        for v in x:
            total = total + v
        return total

    model.setObjective(chain())
    model.setObjectiveN(chain(), 1)
    rows = [model.addConstr(chain() <= 500), model.addConstr(x[0] - 1 <= chain()), model.addLConstr(chain(), "=", 450)]
    rows += [model.addRange(chain(), -1, 7), model.addConstr(chain(), ZVN.GREATER_EQUAL, chain())]
    model.update()
    assert model.getAttr("Obj", x) == [1.0] * 450 and model.ObjCon == 3.0
    assert content(model.getObjective(1)) == (3.0, [1.0] * 450)
    assert [row.RHS for row in rows[:3]] == [497.0, 4.0, 447.0]
    assert model.NumNZs == 450 + 449 + 450 + 450 + (model.NumVars - 450)


def test_quadratic_objective(model):
    x, y, z = (model.addVar(name=name) for name in "xyz")
    model.update()
    q = x * y + y * x + x * x - 0.5 * z * z + z * z - 0.5 * z * z + 2 * x + x + 7
    model.setObjective(q, ZVN.MAXIMIZE)
    assert q.size() == 6 and type(model.getObjective()) is LinExpr  # pending; the expression is only read
    model.update()
    objective = model.getObjective()
    assert type(objective) is QuadExpr and str(objective) == "7.0 + 3.0 x + [ 2.0 x * y + x ^ 2 ]"
    assert objective.getVar2(0) is y and (model.NumQNZs, model.IsQP, model.ModelSense) == (2, 1, -1)
    assert type(model.getObjective(0)) is QuadExpr
    model.NumObj = 2
    model.update()
    assert type(model.getObjective(1)) is LinExpr
    model.NumObj = 1
    model.setObjective(2 * model.getObjective() - z * x)
    model.update()
    assert str(model.getObjective()) == "14.0 + 6.0 x + [ 4.0 x * y + 2.0 x ^ 2 + -1.0 x * z ]"
    long = QuadExpr()
    for _ in range(250):
        long = long + x * z + y
    model.setObjective(long)
    model.update()
    assert str(model.getObjective()) == "250.0 y + [ 250.0 x * z ]"
    for linear in (QuadExpr(z), z):
        model.setObjective(linear)
        model.update()
        assert type(model.getObjective()) is LinExpr and str(model.getObjective()) == "z" and model.NumQNZs == 0


def test_strangers_in_a_quadratic_objective(model):
    x = model.addVar(name="x")
    other = zelvanpy.Model(env=model._uenv)
    foreign = other.addVar(name="f")
    other.update()
    model.update()
    model.setObjective(3 * x * x)
    for expr in (x * foreign, foreign * x + x * x, x * x + foreign, x * zelvanpy.Var(model._cmodel, -1)):
        with pytest.raises(ZelvanError, match="Variable not in model") as caught:
            model.setObjective(expr)
        assert caught.value.errno == ZVN.ERROR_NOT_IN_MODEL
    with pytest.raises(ZelvanError, match="Objective must be linear for multi-objective model") as caught:
        model.setObjectiveN(x * x, 0)
    assert caught.value.errno == -1
    model.update()
    assert str(model.getObjective()) == "0.0 + [ 3.0 x ^ 2 ]"
    model.setObjective(x * x + 2 * x * foreign - 2 * foreign * x)  # terms that cancel
    model.update()
    assert str(model.getObjective()) == "0.0 + [ x ^ 2 ]"

    class Sense:
        def __int__(self):
            q.__init__(x)
            return -1

    q = quicksum(x * x for _ in range(50))
    model.setObjective(q, Sense())
    model.update()
    assert str(model.getObjective()) == "x" and model.ModelSense == -1
    other.dispose()


def content(expr):
    return expr.getConstant(), [expr.getCoeff(i) for i in range(expr.size())]


def test_refused_objectives_change_nothing(model):
    x = model.addVar()
    other = zelvanpy.Model(env=model._uenv)
    foreign = other.addVar()
    model.setObjective(2 * x)
    for expr, code, text in (
        (x + foreign, ZVN.ERROR_NOT_IN_MODEL, "Variable not in model"),
        ("a", -1, "Unable to convert argument to an expression"),
        (LinExpr(float("nan"), x), ZVN.ERROR_VALUE_OUT_OF_RANGE, "Objective coefficient of variable 0"),
    ):
        with pytest.raises(ZelvanError, match=text) as caught:
            model.setObjective(expr)
        assert caught.value.errno == code
        with pytest.raises(ZelvanError, match=text):
            model.setObjectiveN(expr, 0, priority=0)
    with pytest.raises(ZelvanError, match="Variable not in model"):
        model.setObjectiveN(foreign, "first")
    with pytest.raises(ZelvanError, match="Objective sense 5"):
        model.setObjective(x, 5)
    model.update()
    assert str(model.getObjective()) == "2.0 C0"
    other.dispose()


def several(env):
    """Maximize x + y first; then y down, by as much as the tolerance of the first allows."""
    m = zelvanpy.Model(env=env)
    x, y = m.addVar(ub=4, name="x"), m.addVar(ub=4, name="y")
    m.addConstr(x + y <= 6)
    m.ModelSense = ZVN.MAXIMIZE
    m.update()
    return m, x, y


def test_objectives_by_priority(env_silent):
    m, x, y = several(env_silent)
    m.setObjectiveN(x + y, 0, priority=2, name="total")
    m.setObjectiveN(-1 * y + 10, 1, priority=1, name="little y")
    m.optimize()
    assert (x.X, y.X) == (pytest.approx(4), pytest.approx(2))
    values = []
    for number in range(m.NumObj):
        m.Params.ObjNumber = number
        values.append((m.ObjNName, m.ObjNPriority, pytest.approx(m.ObjNVal)))
    assert values == [("total", 2, 6), ("little y", 1, 8)]
    assert str(m.getObjective(1)) == "10.0 + -1.0 y" and str(m.getObjective(0)) == "x + y"
    assert m.Params.ObjNumber == 1  # getObjective puts it back
    m.dispose()


@pytest.mark.parametrize("tolerance, expected", [(dict(abstol=0.5), 1.5), (dict(reltol=0.25), 0.5), ({}, 2.0)])
def test_tolerance_lets_a_lower_priority_gain(env_silent, tolerance, expected):
    m, x, y = several(env_silent)
    m.setObjectiveN(x + y, 0, priority=2, **tolerance)
    m.setObjectiveN(-1 * y, 1, priority=1)
    m.optimize()
    assert y.X == pytest.approx(expected, abs=1e-5)
    m.dispose()


def test_equal_priorities_are_weighed(env_silent):
    m, x, y = several(env_silent)
    m.setObjectiveN(x, 0, weight=1)
    m.setObjectiveN(y, 1, weight=3)
    m.optimize()
    assert (x.X, y.X) == (pytest.approx(2), pytest.approx(4))
    with pytest.raises(ZelvanError, match="Objective number"):
        m.setObjectiveN(x, -1)
    m.dispose()


def pwl_value(points, x):
    for (x0, y0), (x1, y1) in zip(points, points[1:]):
        if x0 <= x <= x1 and x1 > x0:
            return y0 + (y1 - y0) * (x - x0) / (x1 - x0)
    raise AssertionError(x)


@pytest.mark.parametrize("sense", [ZVN.MINIMIZE, ZVN.MAXIMIZE])
@pytest.mark.parametrize("vtype", ["C", "I"])
@pytest.mark.parametrize(
    "points",
    [
        [(0, 0), (1, -2), (6, 3)],
        [(0, 0), (2, 5), (3, 1), (6, 4)],
        [(0, 3), (6, 3)],
        [(-1, 4), (3, 0), (7, 1)],
    ],
)
def test_piecewise_linear_term(model, points, vtype, sense):
    """Against the best of the function on a grid that holds its corners."""
    x = model.addVar(ub=6, vtype=vtype)
    y = model.addVar(ub=10)
    model.addConstr(x + y == 6)
    model.setObjective(0.25 * y, sense)
    model.setPWLObj(x, [p[0] for p in points], [p[1] for p in points])
    model.update()
    assert model.getPWLObj(var=x) == points and model.getPWLObj(y) == []
    assert model.NumPWLObjVars == 1
    model.optimize()
    pick = min if sense == ZVN.MINIMIZE else max
    best = pick(pwl_value(points, v) + 0.25 * (6 - v) for v in range(7))
    assert model.ObjVal == pytest.approx(best)
    assert pwl_value(points, min(max(x.X, 0), 6)) + 0.25 * y.X == pytest.approx(best)


def test_piecewise_linear_term_is_replaced_by_a_linear_one(model):
    x, y = model.addVar(), model.addVar()
    for bad, text in (
        (lambda: model.setPWLObj(1, [1], [1]), "First argument must be a Var"),
        (lambda: model.setPWLObj(x, [1, 2], [1]), "same length"),
        (lambda: model.setPWLObj(x, [2, 1], [0, 0]), "left of the point before"),
        (lambda: model.setPWLObj(x, [1], [1]), "at least two points"),
        (lambda: model.getPWLObj(1), "First argument must be a Var"),
        (lambda: model.getPWLObj(x), "Variable not in model"),
    ):
        with pytest.raises(ZelvanError, match=text):
            bad()
    model.setPWLObj(x, [0, 1], [0, 2])
    model.setPWLObj(y, [0, 1], [0, 2])
    model.update()
    x.Obj = 1
    model.setPWLObj(y, [], [])
    model.update()
    assert model.getPWLObj(x) == [] and model.getPWLObj(y) == []


def test_written_and_read_back(env_silent, tmp_path):
    m, x, y = several(env_silent)
    m.setObjectiveN(x + y, 0, priority=2, abstol=0.5, name="total")
    m.setObjectiveN(-1 * y + 10, 1, priority=1, weight=2.0, reltol=0.1, name="little")
    m.setPWLObj(y, [0, 1, 1, 4], [0, 2, 3, 1])
    for ending in ("lp", "mps"):
        path = str(tmp_path / ("model." + ending))
        m.write(path)
        back = zelvanpy.read(path, env_silent)
        assert back.NumObj == 2 and back.ModelSense == -1
        assert back.getPWLObj(back.getVars()[1]) == [(0, 0), (1, 2), (1, 3), (4, 1)]
        back.Params.ObjNumber = 1
        assert (back.ObjNPriority, back.ObjNWeight, back.ObjNRelTol, back.ObjNCon) == (1, 2.0, 0.1, 10)
        assert back.getAttr("ObjN") == [0, -1] and back.ObjNName == "little"
        again = str(tmp_path / ("again." + ending))
        back.write(again)
        with open(path) as first, open(again) as second:
            assert first.read() == second.read()
        back.dispose()
    m.dispose()
