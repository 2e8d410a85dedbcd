"""What a solve says, held against exact arithmetic: small models in which coefficients, bounds and types are nasty.

The number of random models comes from ZELVAN_RANDOM_MODELS."""

import itertools
import math
import os
import random
from fractions import Fraction

import zelvanpy
from zelvanpy import ZVN

NUM_MODELS = int(os.environ.get("ZELVAN_RANDOM_MODELS", 150))
INFINITE = 1e100


def tightest(sides):
    """One side for each direction."""
    kept = {}
    for a, right in sides:
        size = next((abs(value) for value in a if value), Fraction(1))
        direction = tuple(value / size for value in a)
        kept[direction] = min(kept.get(direction, right / size), right / size)
    return [(list(a), right) for a, right in kept.items()]


def least(columns, rows, cost):
    """The least cost'x as a Fraction, -inf or (infeasible) inf; by elimination of one variable after the other.

    columns: (lower, upper) each; rows: (coefficients, lower, upper)."""
    n = len(columns)
    sides = []  # (coefficients of x and of the cost, right side): at most
    for coefficients, lower, upper in rows + [([int(i == j) for i in range(n)], *columns[j]) for j in range(n)]:
        exact = [Fraction(a) for a in coefficients] + [Fraction(0)]
        if upper < INFINITE:
            sides.append((exact, Fraction(upper)))
        if lower > -INFINITE:
            sides.append(([-a for a in exact], -Fraction(lower)))
    for sign in (1, -1):
        sides.append(([sign * Fraction(c) for c in cost] + [Fraction(-sign)], Fraction(0)))
    for j in range(n):
        above = [s for s in sides if s[0][j] > 0]
        below = [s for s in sides if s[0][j] < 0]
        sides = [s for s in sides if s[0][j] == 0]
        for (a, right), (b, other) in itertools.product(above, below):
            sides.append(([u / a[j] - v / b[j] for u, v in zip(a, b)], right / a[j] - other / b[j]))
        sides = tightest(sides)
    low, high = -math.inf, math.inf
    for a, right in sides:
        if a[n] == 0 and right < 0:
            return math.inf
        if a[n] > 0:
            high = min(high, right / a[n])
        elif a[n] < 0:
            low = max(low, right / a[n])
    return low if low <= high else math.inf


class Nasty:
    """A random model, its parts as plain data."""

    def __init__(self, r):
        self.presolve, self.method = r.choice((-1, -1, 0)), r.choice((-1, -1, 0, 1, 2))
        n = r.randint(1, 3)
        scale = r.choice((1, 1, 1, 1e-4, 1e4))
        self.types = [r.choice("CCCIS" if scale == 1 else "CCC") for _ in range(n)]
        self.columns = [self.column(r, kind) for kind in self.types]
        self.cost = [r.choice((0, 1, -1, 2, -3, 0.5)) for _ in range(n)]
        self.rows = []
        for _ in range(r.randint(0, 3)):
            row = [r.choice((0, 1, -1, 2, 0.1, -0.3, 7)) for _ in range(n)]
            row[r.randrange(n)] *= scale
            right = r.randint(-4, 6)
            self.rows.append((row, *r.choice(((-INFINITE, right), (right, INFINITE), (right, right)))))

    @staticmethod
    def column(r, kind):
        if kind == "I":
            return r.choice(((0, 1), (-1, 2), (0, 3)))
        if kind == "S":
            return r.choice(((2, 7), (1, INFINITE), (0, 3), (0.5, 1e6)))
        return r.choice(((0, INFINITE), (-INFINITE, INFINITE), (-2, 5), (0, 1e8), (-INFINITE, 3)))

    def solve(self, env):
        m = zelvanpy.Model(env=env)
        m.Params.Presolve, m.Params.Method = self.presolve, self.method
        m.Params.MIPGap = 0
        x = [m.addVar(*bounds, c, kind) for bounds, c, kind in zip(self.columns, self.cost, self.types)]
        m.update()
        for coefficients, lower, upper in self.rows:
            sense, right = ("=", lower) if lower == upper else ("<", upper) if upper < INFINITE else (">", lower)
            m.addLConstr(zelvanpy.LinExpr(coefficients, x), sense, right)
        m.optimize()
        return m

    def optimum(self, feasibility=0, integrality=0):
        """With sides and types relaxed by tolerances."""

        def parts(kind, lower, upper):
            if kind == "I":
                return [(value - integrality, value + integrality) for value in range(lower, upper + 1)]
            relaxed = (lower - feasibility, upper + feasibility)
            return [relaxed] if kind == "C" else [relaxed, (-feasibility, feasibility)]

        rows = [(row, lower - feasibility, upper + feasibility) for row, lower, upper in self.rows]
        choices = itertools.product(*(parts(kind, *bounds) for kind, bounds in zip(self.types, self.columns)))
        return min(least(list(columns), rows, self.cost) for columns in choices)


def test_random_models_against_exact_arithmetic(env_silent):
    unsure = 0
    for seed in range(NUM_MODELS):
        nasty = Nasty(random.Random(seed))
        m = nasty.solve(env_silent)
        exact = nasty.optimum()
        if m.Status == ZVN.OPTIMAL:
            # What a dual value within OptimalityTol hides grows with the coefficients.
            slack = 1e-6 * (1 + abs(m.ObjVal)) * max([1, *(abs(a) for row, *_ in nasty.rows for a in row)])
            assert nasty.optimum(2e-6, 2e-5) - slack <= m.ObjVal <= exact + slack, seed
        elif m.Status == ZVN.INFEASIBLE:
            assert exact == math.inf, seed
        elif m.Status == ZVN.UNBOUNDED:
            assert exact == -math.inf, seed
        elif m.Status == ZVN.INF_OR_UNBD:
            assert math.isinf(exact), seed
        else:
            unsure += 1
        m.dispose()
    assert unsure <= NUM_MODELS / 50


def test_an_lp_that_the_simplex_method_gives_up(env_silent):
    m = zelvanpy.Model(env=env_silent)
    m.Params.Presolve, m.Params.Method = 0, 1
    m.Params.InfUnbdInfo = 1
    x = m.addVars(4, lb=[0, -INFINITE, -INFINITE, -INFINITE], ub=[INFINITE, 5, INFINITE, INFINITE], obj=[3, -1, 1, -2])
    m.update()
    m.addConstr(x[0] + x[1] + x[2] + 2 * x[3] >= 2)
    short = m.addConstr(0.1 * x[1] >= 3)
    m.optimize()
    assert m.Status == ZVN.INFEASIBLE and short.FarkasDual != 0.0
    short.RHS = -3
    m.optimize()
    assert m.Status == ZVN.UNBOUNDED
    ray = m.UnbdRay
    assert 3 * ray[0] - ray[1] + ray[2] - 2 * ray[3] < 0 and ray[0] + ray[1] + ray[2] + 2 * ray[3] >= -1e-9
