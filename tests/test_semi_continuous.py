"""Random models with semi-continuous columns against enumeration, and with infinite bounds against directions.

ZELVAN_RANDOM_MODELS sets how many of each kind are drawn, seeds 0 and up."""

import itertools
import os
import random

import numpy
import pytest
from scipy.optimize import linprog

import zelvanpy
from zelvanpy import ZVN

INF = ZVN.INFINITY
NUM_MODELS = int(os.environ.get("ZELVAN_RANDOM_MODELS", 120))
SIZES = [10.0**k for k in range(-2, 8)]
COLUMNS = 4
TOLERANCE = 1e-6  # FeasibilityTol and IntFeasTol


class Program:
    """Columns (cost, lb, ub, type) and rows (coefficients, sense, right-hand side), to be minimized."""

    def __init__(self, columns, rows):
        self.columns, self.rows = columns, rows

    def solve(self, env):
        m = zelvanpy.Model(env=env)
        m.Params.MIPGap = 0
        m.Params.DualReductions = 0
        m.Params.NodeLimit = 5000
        x = [m.addVar(lb=lb, ub=ub, obj=cost, vtype=kind) for cost, lb, ub, kind in self.columns]
        for coeffs, sense, rhs in self.rows:
            m.addLConstr(zelvanpy.LinExpr(coeffs, x), sense, rhs)
        m.optimize()
        return m

    def matrices(self, values):
        """Arguments A_ub, b_ub, A_eq, b_eq of linprog with `values` as right-hand sides."""
        parts = {"<": ([], []), "=": ([], [])}
        for (coeffs, sense, _), value in zip(self.rows, values):
            sign = -1.0 if sense == ">" else 1.0
            lhs, rhs = parts["=" if sense == "=" else "<"]
            lhs.append([sign * a for a in coeffs])
            rhs.append(sign * value)
        return [part or None for part in (*parts["<"], *parts["="])]

    def best(self):
        """The least objective over all columns on or off, infinite when there is no point."""
        cost = [column[0] for column in self.columns]
        matrices = self.matrices([rhs for _, _, rhs in self.rows])
        choices = [[(0.0, 0.0), (lb, ub)] if kind == "S" else [(lb, ub)] for _, lb, ub, kind in self.columns]
        found = numpy.inf
        for bounds in itertools.product(*choices):
            result = linprog(cost, *matrices, bounds=bounds)
            assert result.status in (0, 2), result.message
            if result.status == 0:
                found = min(found, result.fun)
        return found

    def violation(self, x):
        """By how much a point is off, relative to the sizes of what it is compared with."""
        worst = 0.0
        for value, (_, lb, ub, kind) in zip(x, self.columns):
            off = max(lb - value, value - ub) / max(1.0, abs(lb))
            worst = max(worst, min(off, abs(value)) if kind == "S" else off)
        for coeffs, sense, rhs in self.rows:
            terms = [a * value for a, value in zip(coeffs, x)]
            over = sum(terms) - rhs
            off = {"<": over, ">": -over, "=": abs(over)}[sense]
            worst = max(worst, off / max(1.0, abs(rhs), *map(abs, terms)))
        return worst

    def improving_direction(self):
        """Whether the columns with infinite bounds can go on and on at less and less cost."""
        cost = [column[0] for column in self.columns]
        bounds = [(-1.0 if lb == -INF else 0.0, 1.0 if ub == INF else 0.0) for _, lb, ub, _ in self.columns]
        return linprog(cost, *self.matrices([0.0] * len(self.rows)), bounds=bounds).fun < -1e-6


def semi_continuous_program(rng):
    columns = []
    for _ in range(COLUMNS):
        ub = rng.choice(SIZES) * rng.randint(1, 9)
        lb = ub / rng.choice([1, 2, 10, 1000, 10000])
        cost = rng.choice([1.0, 1.1, 1.2, -1.0, 3.0, 1000.0])
        columns.append((cost, lb, ub, "S") if rng.random() < 0.75 else (cost, 0.0, ub, "C"))
    rows = []
    for _ in range(rng.randint(1, 3)):
        coeffs = [float(rng.choice([0, 1, 1, 2, -1])) for _ in columns]
        sense = rng.choice(["<", ">", ">", "="])
        rows.append((coeffs, sense, float(rng.choice([0, 1, 1, 5]) * rng.choice([1, 1, rng.choice(SIZES[2:])]))))
    return Program(columns, rows)


def unbounded_program(rng):
    columns = []
    for _ in range(rng.randint(2, 4)):
        lb, ub = rng.choice([(0.0, INF), (0.0, INF), (-INF, INF), (-3.0, 4.0), (-INF, 2.0)])
        columns.append((float(rng.randint(-3, 3)), lb, ub, rng.choice("IIC")))
    rows = []
    for _ in range(rng.randint(1, 3)):
        coeffs = [float(rng.randint(-4, 4)) for _ in columns]
        rows.append((coeffs, rng.choice("<>="), float(rng.randint(-9, 9))))
    return Program(columns, rows)


def test_bounds_of_any_size(env_silent):
    undecided = 0
    for seed in range(NUM_MODELS):
        program = semi_continuous_program(random.Random(seed))
        best = program.best()
        m = program.solve(env_silent)
        if m.Status == ZVN.OPTIMAL:
            assert program.violation(m.X) <= TOLERANCE, seed
            assert m.ObjVal == pytest.approx(best, rel=1e-5, abs=1e-5), seed
        elif m.Status == ZVN.INFEASIBLE:
            assert best == numpy.inf, seed
        else:
            undecided += 1
        m.dispose()
    assert undecided <= NUM_MODELS / 100


def test_forbidden_gap_is_not_entered(env_silent):
    wide = [(cost, 1e3, 1e7, "S") for cost in (1.0, 1.1, 1.2)]
    program = Program([*wide, (1000.0, 0.0, INF, "C")], [([1.0] * 4, ">", 1.0)])
    m = program.solve(env_silent)
    assert m.Status == ZVN.OPTIMAL and m.ObjVal == pytest.approx(1000.0)
    assert program.violation(m.X) <= TOLERANCE


def test_no_optimum_along_an_improving_direction(env_silent):
    for seed in range(4 * NUM_MODELS):
        program = unbounded_program(random.Random(seed))
        m = program.solve(env_silent)
        if m.Status == ZVN.OPTIMAL:
            assert not program.improving_direction(), seed
            assert program.violation(m.X) <= TOLERANCE, seed
        elif m.Status == ZVN.UNBOUNDED:
            assert program.improving_direction(), seed
        else:  # branching on integers without bounds needn't end
            assert m.Status in (ZVN.INFEASIBLE, ZVN.INF_OR_UNBD, ZVN.NODE_LIMIT), seed
        m.dispose()
