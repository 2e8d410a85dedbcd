"""Quadratic constraints, and quadratic objectives with them or with integers: answers against enumeration, closed forms
and what the model itself says of a point."""

import itertools
import math
import random

import pytest

from zelvanpy import ZVN, Model, QuadExpr, ZelvanError, quicksum

NOT_CONVEX = 10020


def solved(model, status=ZVN.OPTIMAL):
    model.optimize()
    assert model.Status == status
    return model


def value(form, x):
    """Of linear coefficients and products (coefficient, i, j)."""
    linear, products = form
    return sum(c * v for c, v in zip(linear, x)) + sum(c * x[i] * x[j] for c, i, j in products)


class Case:
    """A small model with everything: types, bounds, quadratic rows of each sense, an objective of each kind."""

    def __init__(self, seed, env):
        rng = random.Random(seed)
        self.num = rng.choice([1, 2, 3])
        self.types = "I" * self.num if rng.random() < 0.5 else [rng.choice("CIB") for _ in range(self.num)]
        self.lower = [0 if t == "B" else rng.choice([0, 0, -2]) for t in self.types]
        self.upper = [1 if t == "B" else rng.randint(1, 4) for t in self.types]
        forms = [self.form(rng) for _ in range(rng.randint(0, 2))]
        self.rows = [(form, rng.choice("<<>>="), rng.randint(-4, 6)) for form in forms]
        self.objective, self.sense = self.form(rng), rng.choice([1, -1])

        self.model = Model(env=env)
        self.x = [self.model.addVar(lb=low, ub=up, vtype=t) for low, up, t in zip(self.lower, self.upper, self.types)]
        for form, sense, right in self.rows:
            self.model.addQConstr(QuadExpr(value(form, self.x)), sense, right)
        self.model.setObjective(QuadExpr(value(self.objective, self.x)), self.sense)

    def form(self, rng):
        pairs = [(i, j) for i in range(self.num) for j in range(i, self.num) if rng.random() < 0.6]
        return [rng.randint(-3, 3) for _ in range(self.num)], [(rng.randint(-3, 3), i, j) for i, j in pairs]

    def excess(self, x):
        """What the rows are violated by."""
        off = {"<": lambda gap: gap, ">": lambda gap: -gap, "=": abs}
        return max([0.0] + [off[sense](value(form, x) - right) for form, sense, right in self.rows])

    def best_of_grid(self):
        """The best of some points that hold: all there are, where everything is integer."""
        steps = [
            range(low, up + 1) if t != "C" else [low + (up - low) * k / 16 for k in range(17)]
            for low, up, t in zip(self.lower, self.upper, self.types)
        ]
        values = [value(self.objective, x) for x in itertools.product(*steps) if self.excess(x) < 1e-9]
        return min(values, key=lambda v: self.sense * v, default=None)


@pytest.mark.parametrize("block", range(6))
def test_small_models_against_enumeration(env_silent, block):
    for seed in range(25 * block, 25 * block + 25):
        case = Case(seed, env_silent)
        case.model.optimize()
        best = case.best_of_grid()
        if case.model.Status == ZVN.INFEASIBLE:
            assert best is None, seed
            continue
        assert case.model.Status == ZVN.OPTIMAL, seed
        x = [v.X for v in case.x]
        objective = case.model.ObjVal
        assert case.excess(x) <= 1e-6, seed
        assert objective == pytest.approx(value(case.objective, x), rel=1e-9, abs=1e-9), seed
        allowed = 2e-4 * max(1.0, abs(objective))
        assert best is None or case.sense * (objective - best) <= allowed, seed
        assert "C" in case.types or abs(objective - best) <= allowed, seed


def test_convex_constraints(env_silent):
    m = Model(env=env_silent)
    x, y, z = m.addVar(lb=-10), m.addVar(lb=-10), m.addVar()
    disk = m.addConstr(x * x + y * y <= 2)
    m.setObjective(x + y)
    assert solved(m).ObjVal == pytest.approx(-2, abs=1e-6)
    m.setObjective(x * x + y * y - 3 * x + x * y)
    assert solved(m).ObjVal == pytest.approx(-3 * math.sqrt(2) + 2, abs=0.5)
    m.remove(disk)
    m.addConstr(x * x + y * y <= z * z)
    m.addConstr(z <= 5)
    m.setObjective(3 * x + 4 * y, ZVN.MAXIMIZE)
    assert solved(m).ObjVal == pytest.approx(25, abs=1e-6)


def test_rotated_and_hyperbolic_cones(env_silent):
    m = Model(env=env_silent)
    x, y, z = m.addVar(), m.addVar(ub=4), m.addVar(ub=9)
    m.addConstr(x * x <= y * z)
    m.setObjective(x, ZVN.MAXIMIZE)
    assert solved(m).ObjVal == pytest.approx(6, abs=1e-6)
    m = Model(env=env_silent)
    x, y = m.addVar(), m.addVar()
    m.addConstr(x * y >= 4)
    m.setObjective(x + 4 * y)
    assert solved(m).ObjVal == pytest.approx(8, abs=1e-5)


def test_a_cone_of_many_columns(env_silent):
    n = 60
    m = Model(env=env_silent)
    x, radius = m.addVars(n, lb=-10), m.addVar(ub=1)
    m.addConstr(quicksum(x[i] * x[i] for i in range(n)) <= radius * radius)
    m.setObjective(quicksum((i + 1) * x[i] for i in range(n)), ZVN.MAXIMIZE)
    assert solved(m).ObjVal == pytest.approx(math.sqrt(sum((i + 1) ** 2 for i in range(n))), rel=1e-6)


def test_ends_without_an_optimum(env_silent):
    m = Model(env=env_silent)
    x, y = m.addVar(lb=-ZVN.INFINITY), m.addVar()
    m.addConstr(x * x - y <= 1)
    m.setObjective(x - y)
    solved(m, ZVN.UNBOUNDED)
    m.setObjective(x + y)
    assert solved(m).ObjVal == pytest.approx(-1, abs=1e-6)
    m.addConstr(x * x + y * y <= 4)
    m.addConstr(x + y >= 3)
    solved(m, ZVN.INFEASIBLE)


def test_products_of_binaries_are_exact(env_silent):
    rng = random.Random(3)
    n = 8
    gains = {(i, j): rng.randint(-9, 9) for i in range(n) for j in range(i)}
    best = max(sum(g * b[i] * b[j] for (i, j), g in gains.items()) for b in itertools.product((0, 1), repeat=n))
    for linearize in (-1, 0, 1):
        m = Model(env=env_silent)
        m.Params.PreQLinearize = linearize
        b = m.addVars(n, vtype=ZVN.BINARY)
        m.setObjective(quicksum(g * b[i] * b[j] for (i, j), g in gains.items()), ZVN.MAXIMIZE)
        assert solved(m).ObjVal == pytest.approx(best, abs=1e-6)


@pytest.mark.parametrize("cost, limit, best", [(16, 100, -400), (16, 600, -600), (13, 100, -750)])
def test_pooling(env_silent, cost, limit, best):
    m = Model(env=env_silent)
    a, b, direct_x, direct_y, pool_x, pool_y = m.addVars(6, ub=1000).values()
    sulfur = m.addVar(lb=1, ub=3)
    x, y = m.addVar(ub=limit), m.addVar(ub=200)
    m.setObjective(6 * a + cost * b + 10 * (direct_x + direct_y) - 9 * x - 15 * y)
    m.addConstr(pool_x + pool_y == a + b)
    m.addConstr(x == pool_x + direct_x)
    m.addConstr(y == pool_y + direct_y)
    m.addConstr(sulfur * (pool_x + pool_y) == 3 * a + b)
    m.addConstr(sulfur * pool_x + 2 * direct_x <= 2.5 * x)
    m.addConstr(sulfur * pool_y + 2 * direct_y <= 1.5 * y)
    assert solved(m).ObjVal == pytest.approx(best, rel=1e-4)
    assert m.ConstrVio <= 1e-6


def test_what_is_not_convex_is_refused_where_that_is_asked_for(env_silent):
    m = Model(env=env_silent)
    m.Params.NonConvex = 1
    x, y = m.addVar(ub=4), m.addVar(ub=4)
    hyperbola = m.addConstr(x * y + x >= 1, name="hyperbola")
    with pytest.raises(ZelvanError, match="'hyperbola' isn't convex") as caught:
        m.optimize()
    assert caught.value.errno == NOT_CONVEX
    m.remove(hyperbola)
    m.setObjective(x * y)
    with pytest.raises(ZelvanError, match="objective isn't convex"):
        m.optimize()
    m.Params.NonConvex = 2
    assert solved(m).ObjVal == pytest.approx(0, abs=1e-6)
    m.addConstr(x + y >= 2, name="sum")
    free = m.addVar(lb=-ZVN.INFINITY, name="free")
    m.addConstr(free * x >= 1)
    with pytest.raises(ZelvanError, match="variable 'free' in its products has no bounds"):
        m.optimize()


def test_several_objectives_of_which_one_is_quadratic(env_silent):
    m = Model(env=env_silent)
    x, y = m.addVar(ub=3), m.addVar(ub=3)
    m.addConstr(x + y >= 2)
    m.setObjective(x * x + y * y)
    m.NumObj = 2
    m.update()
    m.Params.ObjNumber = 0
    m.ObjNPriority = 2
    m.setObjectiveN(x, 1, priority=1, abstol=0.0)
    solved(m)
    assert (x.X, y.X) == pytest.approx((1, 1), abs=1e-2)
    assert x.X**2 + y.X**2 == pytest.approx(2, abs=1e-5)


def test_a_limit_leaves_a_point_that_holds_and_a_bound(env_silent):
    rng = random.Random(5)
    n = 30
    m = Model(env=env_silent)
    m.Params.NodeLimit = 5
    x = m.addVars(n, ub=1)
    products = [(rng.randint(-50, 50), i, j) for i in range(n) for j in range(i)]
    m.setObjective(quicksum(c * x[i] * x[j] for c, i, j in products))
    m.addConstr(quicksum(x[i] * x[i] for i in range(n)) <= 6)
    m.optimize()
    assert m.Status in (ZVN.NODE_LIMIT, ZVN.OPTIMAL)
    point = [v.X for v in x.values()]
    assert sum(v * v for v in point) <= 6 + 1e-6
    assert m.ObjVal == pytest.approx(sum(c * point[i] * point[j] for c, i, j in products), rel=1e-9)
    assert m.ObjBound <= m.ObjVal


def test_solving_again_after_changes(env_silent):
    m = Model(env=env_silent)
    x, y = m.addVar(lb=-10), m.addVar(lb=-10)
    disk = m.addConstr(x * x + y * y <= 2)
    m.setObjective(x + y)
    m.update()
    for right in (2, 8, 0.5, 32):
        disk.QCRHS = right
        assert solved(m).ObjVal == pytest.approx(-math.sqrt(2 * right), abs=1e-5)
    m.addConstr(x >= 0)
    assert solved(m).ObjVal == pytest.approx(-math.sqrt(32), abs=1e-5)
    x.VType = ZVN.INTEGER
    y.VType = ZVN.INTEGER
    assert solved(m).ObjVal == pytest.approx(-5)


@pytest.mark.parametrize("seed", range(4))
def test_few_of_many_columns(env_silent, seed):
    """A convex objective of columns that binaries switch off, at one side of 0 or at both; some have no switch."""
    rng = random.Random(seed)
    num, most = 6, 3
    factors = [[rng.uniform(-1, 1) for _ in range(num)] for _ in range(2)]
    own = [rng.uniform(0.1, 1) for _ in range(num)]
    gains = [rng.uniform(-1, 2) for _ in range(num)]

    def model(switched):
        m = Model(env=env_silent)
        low = -1.0 if seed % 2 else 0.0
        x = m.addVars(num, lb=low, ub=2.0)
        b = m.addVars(num, ub=1.0, vtype="B" if switched is None else "C")
        m.addConstrs(x[i] <= 2 * b[i] for i in range(1, num))
        m.addConstrs(x[i] >= low * b[i] for i in range(1, num))
        m.addConstr(b.sum() <= most)
        exposures = [quicksum(f[i] * x[i] for i in range(num)) for f in factors]
        risk = quicksum(e * e for e in exposures) + quicksum(own[i] * x[i] * x[i] for i in range(num))
        m.setObjective(risk - quicksum(gains[i] * x[i] for i in range(num)))
        for i, on in enumerate(switched or ()):
            b[i].LB = b[i].UB = on
        return solved(m)

    choices = [c for c in itertools.product([0, 1], repeat=num) if sum(c) == most]
    best = min(model(choice).ObjVal for choice in choices)
    assert model(None).ObjVal == pytest.approx(best, rel=2e-4, abs=1e-6)
