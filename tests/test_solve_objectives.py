"""Piecewise-linear and several objectives against enumeration."""

import itertools
import math

import pytest
from hypothesis import given
from hypothesis import strategies as st

import zelvanpy
from zelvanpy import ZVN, ZelvanError


def silent_model():
    env = zelvanpy.Env(empty=True)
    env.setParam("OutputFlag", 0)
    env.start()
    return zelvanpy.Model(env=env)


@st.composite
def functions(draw):
    """Points with x not decreasing, at most two at one x."""
    xs = sorted(draw(st.lists(st.integers(-4, 4), min_size=2, max_size=6)))
    xs = [x for k, x in enumerate(xs) if k < 2 or x != xs[k - 2]]
    return [(float(x), float(draw(st.integers(-5, 5)))) for x in xs]


def value(points, x, sense):
    """The function at x: the better value at a jump, None beyond a jump at an end."""
    here = [y for at, y in points if at == x]
    if here:
        return min(here, key=lambda y: sense * y)
    k = min(max(sum(at < x for at, _ in points), 1), len(points) - 1)
    (x0, y0), (x1, y1) = points[k - 1], points[k]
    return None if x0 == x1 else y0 + (y1 - y0) / (x1 - x0) * (x - x0)


@given(
    st.tuples(functions(), functions()),
    st.lists(st.integers(-6, 2), min_size=2, max_size=2),
    st.integers(0, 5),
    st.integers(-6, 6),
    st.sampled_from([1, -1]),
)
def test_piecewise_linear_terms(terms, lower, width, limit, sense):
    m = silent_model()
    x = [m.addVar(lb=lb, ub=lb + width, vtype=ZVN.INTEGER) for lb in lower]
    for var, points in zip(x, terms):
        m.setPWLObj(var, *zip(*points))
    m.addConstr(x[0] + x[1] <= limit)
    m.ModelSense = sense
    m.Params.DualReductions = 0
    m.optimize()
    best = math.inf
    for at in itertools.product(*(range(lb, lb + width + 1) for lb in lower)):
        values = [value(points, where, sense) for points, where in zip(terms, at)]
        if sum(at) <= limit and None not in values:
            best = min(best, sense * sum(values))
    assert m.Status == (ZVN.INFEASIBLE if best == math.inf else ZVN.OPTIMAL)
    if m.Status == ZVN.OPTIMAL:
        assert m.ObjVal == pytest.approx(sense * best, abs=1e-6)
        reached = [value(points, round(var.X), sense) for var, points in zip(x, terms)]
        assert sum(reached) == pytest.approx(m.ObjVal, abs=1e-5)
    m.dispose()


def test_convex_term_stays_in_the_lp(model):
    x, y = model.addVar(lb=-ZVN.INFINITY), model.addVar(obj=1, lb=-10)
    model.setPWLObj(x, [-2, 0, 1, 4], [4, 0, 0.5, 8])
    row = model.addConstr(x + y >= 3)
    model.optimize()
    assert (model.Status, x.X, y.X, model.ObjVal) == (ZVN.OPTIMAL, 1, 2, 2.5)
    assert (row.Pi, x.RC, y.RC) == (1, 0, 0) and model.SolCount == 1
    row.RHS = -9
    y.Obj = 5
    left = model.addConstr(x <= -5)  # the first slope goes on to the left: -2 beyond x = -2
    model.optimize()
    assert (x.X, y.X, model.ObjVal, left.Pi, row.Pi) == (-5, -4, -10, -7, 5)
    model.remove(left)
    model.ModelSense = ZVN.MAXIMIZE  # no longer convex, and without bounds
    with pytest.raises(ZelvanError, match="isn't convex, and the variable has no bounds"):
        model.optimize()
    model.addConstr(x + y <= 8)
    y.UB = 3  # now the rows bound x
    model.optimize()
    assert (x.X, y.X, model.ObjVal) == pytest.approx((-12, 3, 39))
    with pytest.raises(ZelvanError):
        model.getAttr("Pi")


coefficients = st.lists(st.integers(-4, 4), min_size=3, max_size=3)


@given(
    st.lists(
        st.tuples(
            coefficients, st.sampled_from([1.0, 2.0, -1.0]), st.sampled_from([0.0, 1.0]), st.sampled_from([0.0, 0.25])
        ),
        min_size=2,
        max_size=4,
    ),
    st.sampled_from([1, -1]),
)
def test_objectives_by_falling_priority(objectives, sense):
    """Each objective keeps within its tolerance of what is possible for it after those before."""
    m = silent_model()
    x = [m.addVar(ub=3, vtype=ZVN.INTEGER) for _ in range(3)]
    m.addConstr(x[0] + 2 * x[1] + x[2] <= 6)
    m.ModelSense = sense
    for k, (coeffs, weight, abs_tol, rel_tol) in enumerate(objectives):
        expr = zelvanpy.LinExpr(coeffs, x) + k
        m.setObjectiveN(expr, k, priority=10 - k, weight=weight, abstol=abs_tol, reltol=rel_tol)
    m.optimize()
    assert m.Status == ZVN.OPTIMAL
    found = [round(var.X) for var in x]
    points = [p for p in itertools.product(range(4), repeat=3) if p[0] + 2 * p[1] + p[2] <= 6]
    for k, (coeffs, weight, abs_tol, rel_tol) in enumerate(objectives):
        direction = sense * math.copysign(1, weight)

        def objective(point, coeffs=coeffs, k=k):
            return sum(c * v for c, v in zip(coeffs, point)) + k

        best = min(direction * objective(point) for point in points)
        allowed = max(abs_tol, rel_tol * abs(best)) if k < len(objectives) - 1 else 0.0
        points = [point for point in points if direction * objective(point) <= best + allowed + 1e-6]
        assert tuple(found) in points
        m.Params.ObjNumber = k
        assert m.ObjNVal == pytest.approx(objective(found), abs=1e-6)
    assert m.ObjVal == pytest.approx(sum(c * v for c, v in zip(objectives[0][0], found)), abs=1e-6)
    m.dispose()


def test_weights_within_a_priority(model):
    x, y = model.addVar(ub=4), model.addVar(ub=4)
    model.addConstr(x + y <= 5)
    model.ModelSense = ZVN.MAXIMIZE
    model.setObjectiveN(x, 0, priority=1, weight=1)
    model.setObjectiveN(y, 1, priority=1, weight=3)
    model.setObjectiveN(-1 * x, 2, priority=0)
    model.optimize()
    assert (x.X, y.X) == pytest.approx((1, 4), abs=1e-5)
    with pytest.raises(ZelvanError):
        model.getAttr("Pi")


def test_piecewise_linear_among_several_objectives(model):
    x, y = model.addVar(ub=10), model.addVar(ub=10)
    model.addConstr(x + y == 8)
    model.setObjectiveN(0 * x, 0, priority=1, weight=2)
    model.setObjectiveN(y, 1, priority=0)
    model.update()
    model.setPWLObj(x, [0, 2, 6, 10], [3, 1, 1, 5])  # least anywhere in 2 .. 6
    model.optimize()
    assert (x.X, y.X, model.ObjVal) == pytest.approx((6, 2, 1), abs=1e-4)


def test_several_objectives_stop_at_a_limit(env_silent):
    m = silent_model()
    x = m.addVars(4, ub=3, vtype=ZVN.INTEGER)
    m.addConstr(x.sum() <= 7)
    m.setObjectiveN(-1 * x.sum(), 0, priority=2)
    m.setObjectiveN(x[0], 1, priority=1)
    m.Params.TimeLimit = 0
    m.optimize()
    assert m.Status == ZVN.TIME_LIMIT and m.SolCount == 0
    m.Params.TimeLimit = 60
    m.addConstr(x[0] >= 4)
    m.optimize()
    assert m.Status == ZVN.INFEASIBLE


@pytest.mark.parametrize("large", [1e14, 1e16, 1e19])
def test_large_coefficients_of_a_later_objective(model, large):
    x, y = model.addVar(ub=10, name="x"), model.addVar(ub=10)
    model.addConstr(x + y >= 1)
    model.setObjectiveN(large * x + y, 0, priority=2, name="first")
    model.setObjectiveN(large * x + 2 * y, 1, priority=1)
    model.optimize()
    assert (model.Status, x.X, y.X) == (ZVN.OPTIMAL, 0, 1)
    model.setObjectiveN(x, 1, priority=1, weight=1e20 / large)
    model.setObjectiveN(large * x, 1, priority=1, weight=1e20 / large)
    with pytest.raises(ZelvanError, match="variable 'x' in the weighted objectives of priority 1 is too large"):
        model.optimize()


def test_cutoff_with_large_costs(model):
    x = model.addVar(ub=10, vtype=ZVN.INTEGER, obj=1e16)
    model.addConstr(x >= 1.5)
    model.Params.Cutoff = 5e16
    model.optimize()
    assert (model.Status, x.X) == (ZVN.OPTIMAL, 2)
    model.Params.Cutoff = 1e16
    model.optimize()
    assert model.Status == ZVN.CUTOFF


def test_a_point_beyond_a_jump_at_an_end_refutes_nothing(model):
    x = [model.addVar(lb=lb, ub=lb + 1, vtype=ZVN.INTEGER) for lb in (0, -1)]
    for var in x:
        model.setPWLObj(var, [0, 0], [0, 0])
    row = model.addConstr(x[0] + x[1] <= -1)
    model.optimize()
    assert model.Status == ZVN.INFEASIBLE
    row.RHS = 0
    model.optimize()
    assert (model.Status, x[0].X, x[1].X) == (ZVN.OPTIMAL, 0, 0)
