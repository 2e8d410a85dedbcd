"""Dual values of models with quadratic constraints: the optimality conditions, and what a change of a side does."""

import random

import pytest

from zelvanpy import ZVN, Model, quicksum

STEP = 1e-3


def convex(env, seed):
    """A model with a ball or an ellipse, linear rows of both senses, at times a quadratic objective; its quadratic part
    as (constraint, coefficients) too."""
    rng = random.Random(seed)
    num = 3
    m = Model(env=env)
    x = [m.addVar(lb=rng.choice([0.0, -ZVN.INFINITY]), ub=rng.choice([2.0, ZVN.INFINITY])) for _ in range(num)]
    weights = [rng.uniform(0.5, 2) for _ in range(num)]
    cross = rng.uniform(-0.4, 0.4)
    maximize = seed % 2
    gains = [rng.uniform(-2, 2) for _ in range(num)]
    ball = quicksum(w * v * v for w, v in zip(weights, x)) + cross * x[0] * x[1] + rng.uniform(-1, 1) * x[2]
    rows = [m.addConstr(-1 * ball >= -4.0) if seed % 3 == 0 else m.addConstr(ball <= 4.0)]
    m.addConstr(x[0] + x[1] + x[2] <= 1.5)
    m.addConstr(x[0] - x[1] >= -1.0)
    objective = quicksum(g * v for g, v in zip(gains, x))
    if seed % 4 == 0:
        objective += (-1 if maximize else 1) * (0.3 * x[0] * x[0] + 0.1 * x[2] * x[2])
    m.setObjective(objective, ZVN.MAXIMIZE if maximize else ZVN.MINIMIZE)
    m.Params.QCPDual = 1
    return m, rows


def cone(env, seed):
    """Second-order or rotated, with a linear row each way."""
    rng = random.Random(seed)
    m = Model(env=env)
    x = [m.addVar(lb=-5.0, ub=5.0) for _ in range(3)]
    z, u = m.addVar(ub=4.0), m.addVar(ub=3.0)
    apex = z * u if seed % 2 else z * z
    row = m.addConstr(quicksum(rng.uniform(0.5, 2) * v * v for v in x) <= apex)
    m.addConstr(z + 0.5 * u <= 3.0)
    m.addConstr(x[0] + x[1] >= 1.0)
    m.setObjective(quicksum(rng.uniform(0.1, 1) * v for v in x) + 0.3 * z + 0.1 * u)
    m.Params.QCPDual = 1
    return m, [row]


def objective_with(m, row, attribute, side):
    setattr(row, attribute, side)
    m.optimize()
    assert m.Status == ZVN.OPTIMAL
    return m.ObjVal


@pytest.mark.parametrize("build", [convex, cone])
@pytest.mark.parametrize("seed", range(12))
def test_dual_values_are_what_a_change_of_a_side_does(env_silent, build, seed):
    m, quadratic = build(env_silent, seed)
    m.optimize()
    assert m.Status == ZVN.OPTIMAL
    sides = [(row, "QCRHS", row.QCPi) for row in quadratic] + [(row, "RHS", row.Pi) for row in m.getConstrs()]
    for row, attribute, dual in sides:
        side = getattr(row, attribute)
        if build is cone and attribute == "QCRHS":
            # With a constant it is a cone no more where that is positive.
            change = (objective_with(m, row, attribute, side) - objective_with(m, row, attribute, side - STEP)) / STEP
        else:
            change = objective_with(m, row, attribute, side + STEP) - objective_with(m, row, attribute, side - STEP)
            change /= 2 * STEP
        setattr(row, attribute, side)
        assert dual == pytest.approx(change, rel=5e-3, abs=2e-3), attribute


@pytest.mark.parametrize("seed", range(12))
def test_reduced_costs_have_the_sign_of_a_bound(env_silent, seed):
    m, _ = convex(env_silent, seed)
    m.optimize()
    for x in m.getVars():
        if x.LB < x.X - 1e-6 and x.X < x.UB - 1e-6:
            assert x.RC == pytest.approx(0.0, abs=1e-3)
        else:
            at_lower = x.X <= x.LB + 1e-6
            assert x.RC * m.ModelSense * (1 if at_lower else -1) >= -1e-3


def test_where_there_are_none(env_silent):
    m, (row,) = convex(env_silent, 1)
    m.Params.QCPDual = 0
    m.optimize()
    assert row.QCSlack >= -1e-6
    for thing, name in [(row, "QCPi"), (m.getConstrs()[0], "Pi"), (m.getVars()[0], "RC")]:
        with pytest.raises(AttributeError):
            getattr(thing, name)
    m.Params.QCPDual = 1
    m.getVars()[0].VType = "I"
    m.optimize()
    with pytest.raises(AttributeError):
        row.QCPi  # noqa: B018
