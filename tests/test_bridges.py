"""Semi-continuous columns and special ordered sets whose bounds leave no constant for a binary: against plain models, one
for each choice of the alternatives.

ZELVAN_RANDOM_MODELS sets how many random models are drawn, seeds 0 and up."""

import ctypes
import itertools
import os
import random

import pytest
from native import INFINITY, Double, Environment, Int, array, lib

NUM_MODELS = int(os.environ.get("ZELVAN_RANDOM_MODELS", 150))
OPTIMAL, INFEASIBLE, UNBOUNDED = 2, 3, 5
NODE_LIMIT, TIME_LIMIT, SOLUTION_LIMIT, INTERRUPTED, USER_OBJ_LIMIT, WORK_LIMIT = 8, 9, 10, 11, 15, 16
TOLERANCE = 1e-6


@pytest.fixture(scope="module")
def env():
    env = Environment(OutputFlag=0, DualReductions=0)
    env.check(lib.ZVNsetdblparam(env.handle, b"MIPGap", Double(0.0)))
    yield env
    env.close()


class Program:
    """Columns (type, lb, ub, obj), rows (entries, sense, rhs) and sets (type, members)."""

    def __init__(self, columns, rows=(), sets=(), sense=1):
        self.columns, self.rows, self.sets, self.sense = columns, rows, sets, sense

    def build(self, env, columns=None, sets=None):
        model = env.new()
        columns = self.columns if columns is None else columns
        model.add_columns([("x%d" % j, *column) for j, column in enumerate(columns)])
        model.update()
        for i, (entries, sense, rhs) in enumerate(self.rows):
            model.add_row("c%d" % i, sense, rhs, entries)
        for kind, members in self.sets if sets is None else sets:
            model.add_set(kind, members)
        model.call("ZVNsetintattr", b"ModelSense", self.sense)
        return model

    def solve(self, env):
        with self.build(env) as model:
            model.call("ZVNoptimize")
            return outcome(model), model.values("X", len(self.columns), Double) if has_point(model) else None

    def alternatives(self):
        """Columns of plain models, one for each choice."""
        intervals = []
        for kind, lb, ub, _ in self.columns:
            intervals.append([(0.0, 0.0), (lb, ub)] if kind in "SN" else [(lb, ub)])
        windows = []
        for kind, members in self.sets:
            cols = [j for j, _ in sorted(members, key=lambda member: member[1])]
            starts = range(max(1, len(cols) - kind + 1))
            windows.append([set(cols) - set(cols[k : k + kind]) for k in starts])
        for bounds in itertools.product(*intervals):
            for zeros in itertools.product(*windows):
                zero = set().union(*zeros)
                ranges = [(max(lb, 0.0), min(ub, 0.0)) if j in zero else (lb, ub) for j, (lb, ub) in enumerate(bounds)]
                if all(lb <= ub for lb, ub in ranges):
                    plain = {"S": "C", "N": "I"}
                    yield [(plain.get(c[0], c[0]), lb, ub, c[3]) for c, (lb, ub) in zip(self.columns, ranges)]

    def best(self, env):
        """Status and objective over all choices."""
        best = (INFEASIBLE, None)
        for columns in self.alternatives():
            with self.build(env, columns, []) as model:
                model.call("ZVNoptimize")
                status, objective = outcome(model)
            if status == UNBOUNDED:
                return UNBOUNDED, None
            assert status in (OPTIMAL, INFEASIBLE)
            if status == OPTIMAL and (best[1] is None or self.sense * objective < self.sense * best[1]):
                best = (status, objective)
        return best

    def violation(self, x):
        worst = 0.0
        for value, (kind, lb, ub, _) in zip(x, self.columns):
            off = max(lb - value, value - ub, 0.0)
            worst = max(worst, min(off, abs(value)) if kind in "SN" else off)
            worst = max(worst, abs(value - round(value)) if kind in "BIN" else 0.0)
        for entries, sense, rhs in self.rows:
            over = sum(a * x[j] for j, a in entries) - rhs
            worst = max(worst, {"<": over, ">": -over, "=": abs(over)}[sense])
        for kind, members in self.sets:
            sizes = [abs(x[j]) for j, _ in sorted(members, key=lambda member: member[1])]
            others = [sizes[:k] + sizes[k + kind :] for k in range(max(1, len(sizes) - kind + 1))]
            worst = max(worst, min(max([0.0, *rest]) for rest in others))
        return worst


def has_point(model):
    return model.number("SolCount") > 0


def outcome(model):
    status = model.number("Status")
    return status, model.number("ObjVal", Double) if status == OPTIMAL else None


def random_program(rng):
    size = rng.randint(2, 6)
    columns = []
    for _ in range(size):
        kind = rng.choice("CCSSSNI")
        lower = float(rng.choice([0, 0, 1, 2, 5] if kind in "SN" else [0, 0, 0, -1, -3]))
        upper = rng.choice([INFINITY, INFINITY, 1e9, lower + 4.0])
        if rng.random() < 0.15:
            lower, upper = -upper, -lower
        elif rng.random() < 0.1:
            lower = -INFINITY
        columns.append((kind, lower, upper, float(rng.randint(-4, 5))))
    rows = []
    for _ in range(rng.randint(0, 4)):
        cols = rng.sample(range(size), rng.randint(1, size))
        entries = [(j, float(rng.randint(1, 4) * rng.choice([1, 1, -1]))) for j in cols]
        rows.append((entries, rng.choice("<<>="), float(rng.randint(-4, 12))))
    sets = []
    for _ in range(rng.choice([0, 1, 1, 2])):
        cols = rng.sample(range(size), rng.randint(1, size))
        sets.append((rng.choice([1, 2]), list(zip(cols, map(float, rng.sample(range(-9, 10), len(cols)))))))
    return Program(columns, rows, sets, rng.choice([1, -1]))


def test_random_models_against_every_choice(env):
    seen = {}
    for seed in range(NUM_MODELS):
        program = random_program(random.Random(seed))
        status, best = program.best(env)
        (found, objective), x = program.solve(env)
        assert found == status, seed
        seen[status] = seen.get(status, 0) + 1
        if status == OPTIMAL:
            assert objective == pytest.approx(best, rel=1e-6, abs=1e-5), seed
            assert program.violation(x) <= TOLERANCE, seed
    assert min(seen[status] for status in (OPTIMAL, INFEASIBLE, UNBOUNDED)) > NUM_MODELS / 20
