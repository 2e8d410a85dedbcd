"""Semi-continuous columns and special ordered sets whose bounds leave no constant for a binary: against plain models,
one for each choice of the alternatives.

ZELVAN_RANDOM_MODELS sets how many random models are drawn, seeds 0 and up."""

import itertools
import os
import random
import sys

import pytest
from native import INFINITY, Environment
from solvable import Listener, knapsacks

import zelvanpy
from zelvanpy import ZVN, Env

NUM_MODELS = int(os.environ.get("ZELVAN_RANDOM_MODELS", 150))
TOLERANCE = 1e-6


@pytest.fixture(scope="module")
def env():
    env = Environment(OutputFlag=0, DualReductions=0, MIPGap=0.0)
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
            model.optimize()
            return outcome(model), model.get("X", range(len(self.columns))) if has_point(model) else None

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
        best = (ZVN.INFEASIBLE, None)
        for columns in self.alternatives():
            with self.build(env, columns, []) as model:
                model.optimize()
                status, objective = outcome(model)
            if status == ZVN.UNBOUNDED:
                return ZVN.UNBOUNDED, None
            assert status in (ZVN.OPTIMAL, ZVN.INFEASIBLE)
            if status == ZVN.OPTIMAL and (best[1] is None or self.sense * objective < self.sense * best[1]):
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
    return model.get("SolCount") > 0


def outcome(model):
    status = model.get("Status")
    return status, model.get("ObjVal") if status == ZVN.OPTIMAL else None


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


def covering_program(rng):
    """Sets of large members of which several would be best together."""
    size = rng.randint(4, 8)
    columns = [("C", 0.0, INFINITY, float(rng.randint(2, 9))) for _ in range(size)]
    rows = []
    for _ in range(rng.randint(2, 4)):
        entries = [(j, float(rng.choice([0, 1, 3, 9]))) for j in range(size)]
        rows.append((entries, ">", float(rng.randint(5, 20))))
    sets = [(kind, [(j, rng.random()) for j in rng.sample(range(size), size - 1)]) for kind in (rng.choice([1, 2]), 2)]
    return Program(columns, rows, sets)


def test_random_models_against_every_choice(env):
    seen = {}
    for seed in range(NUM_MODELS):
        program = (random_program, random_program, covering_program)[seed % 3](random.Random(seed))
        status, best = program.best(env)
        (found, objective), x = program.solve(env)
        assert found == status, seed
        seen[status] = seen.get(status, 0) + 1
        if status == ZVN.OPTIMAL:
            assert objective == pytest.approx(best, rel=1e-6, abs=1e-5), seed
            assert program.violation(x) <= TOLERANCE, seed
    assert min(seen[status] for status in (ZVN.OPTIMAL, ZVN.INFEASIBLE, ZVN.UNBOUNDED)) > NUM_MODELS / 20


def lots(env, num, kind=ZVN.SEMICONT, sense=1):
    """Lots of at least some size, or none, and stock: dozens to thousands of nodes."""
    rng = random.Random(1)
    m = zelvanpy.Model("lots", env=env)
    lot = [m.addVar(lb=rng.randint(20, 60), obj=sense * rng.randint(1, 9), vtype=kind) for _ in range(num)]
    stock = [m.addVar(obj=sense * rng.randint(1, 5)) for _ in range(num)]
    m.ModelSense = sense
    for before, made, after in zip([0.0, *stock], lot, stock):
        m.addConstr(before + made == rng.randint(5, 50) + after)
    m.Params.PoolSolutions = 100
    m.update()
    return m


def assert_no_lot_is_small(m):
    for number in range(m.SolCount):
        m.Params.SolutionNumber = number
        for v in m.getVars()[: m.NumVars // 2]:
            assert v.Xn == 0.0 or v.Xn >= v.LB - TOLERANCE


@pytest.mark.parametrize("kind", [ZVN.SEMICONT, ZVN.SEMIINT])
def test_lots(env_silent, kind):
    m, bounded = lots(env_silent, 15, kind), lots(env_silent, 15, kind)
    for v in bounded.getVars()[:15]:
        v.UB = 1000.0
    for one in (m, bounded):
        one.Params.MIPGap = 0
        one.optimize()
    assert m.Status == bounded.Status == ZVN.OPTIMAL and m.IsMIP == 1
    assert m.ObjVal == m.ObjBound == pytest.approx(bounded.ObjVal)
    assert 10 < m.NodeCount < 2000 and m.SolCount > 1
    assert_no_lot_is_small(m)


LIMITS = [
    ("TimeLimit", 0, ZVN.TIME_LIMIT),
    ("NodeLimit", 20, ZVN.NODE_LIMIT),
    ("IterationLimit", 60, ZVN.ITERATION_LIMIT),
    ("WorkLimit", 1e-4, ZVN.WORK_LIMIT),
    ("SolutionLimit", 1, ZVN.SOLUTION_LIMIT),
    ("BestObjStop", 5000, ZVN.USER_OBJ_LIMIT),
    ("BestBdStop", 3300, ZVN.USER_OBJ_LIMIT),
    ("Cutoff", 1000, ZVN.CUTOFF),
    ("SoftMemLimit", 1e-3, ZVN.MEM_LIMIT),
]


@pytest.mark.parametrize("kind, sense", [(ZVN.SEMICONT, 1), (ZVN.SEMICONT, -1), (ZVN.SEMIINT, 1)])
def test_limits_hold_for_the_whole(env_silent, kind, sense):
    m = lots(env_silent, 30, kind, sense)
    for name, value, status in LIMITS:
        m.reset()
        m.setParam(name, sense * value if value >= 1000 else value)
        m.optimize()
        m.setParam(name, "default")
        assert m.Status == status, name
        assert m.NodeCount <= (20 if name == "NodeLimit" else 1000), name
        assert name != "SolutionLimit" or m.SolCount == 1
        assert name != "BestObjStop" or sense * m.ObjVal <= value
        assert name != "BestBdStop" or value <= sense * m.ObjBound < 1.2 * value
        assert name != "IterationLimit" or m.IterCount <= 80
        assert m.SolCount == 0 or sense * m.ObjBound < sense * m.ObjVal
        assert_no_lot_is_small(m)


def test_gap_ends_the_search(env_silent):
    m = lots(env_silent, 25)
    nodes = []
    for m.Params.MIPGap in (0.3, 0.1, 0.0):
        m.reset()
        m.optimize()
        assert m.Status == ZVN.OPTIMAL and m.MIPGap <= m.Params.MIPGap and m.ObjBound <= m.ObjVal
        nodes.append(m.NodeCount)
    assert nodes[0] < nodes[1] < nodes[2]


def test_terminate_and_what_is_there_then(monkeypatch):
    m = lots(Env(), 150)
    m.Params.DisplayInterval = 1
    m.Params.NodeLimit = 100000  # in case that nothing stops the solve
    monkeypatch.setattr(sys, "stdout", Listener(r"(?m)^ +\d\d+ +\d+ +[-\d.]+ +[-\d.]+ +[\d.]+s", m.terminate))
    m.optimize()
    assert m.Status == ZVN.INTERRUPTED
    assert m.SolCount > 0 and m.ObjBound < m.ObjVal and m.NodeCount > 1
    assert_no_lot_is_small(m)


def test_a_start_is_the_first_solution(env_silent):
    m = lots(env_silent, 25)
    m.Params.MIPGap = 0
    m.optimize()
    for known in (50, 12):  # columns: all, or some lots
        started = lots(env_silent, 25)
        for v, value in zip(started.getVars()[:known], m.X):
            v.Start = value
        started.Params.SolutionLimit = 1
        started.optimize()
        assert started.Status == ZVN.SOLUTION_LIMIT and started.SolCount == 1
        if known == 50:
            assert started.ObjVal == pytest.approx(m.ObjVal) and started.NodeCount <= 2
        assert_no_lot_is_small(started)
        started.reset()
        started.Params.SolutionLimit = "default"
        started.Params.MIPGap = 0
        started.optimize()
        assert started.ObjVal == pytest.approx(m.ObjVal) and started.NodeCount <= 1.2 * m.NodeCount


def test_a_part_that_a_limit_cuts_short_keeps_its_bound(env_silent):
    m = knapsacks(env_silent)
    x = m.getVars()
    y = m.addVar(lb=3, obj=1e-6, vtype=ZVN.SEMICONT)
    m.addConstr(y <= 2e7 * (x[0] + x[1]))
    for name, value, status in (("NodeLimit", 5, ZVN.NODE_LIMIT), ("MIPGap", 0.5, ZVN.OPTIMAL)):
        m.reset()
        m.setParam(name, value)
        m.optimize()
        m.setParam(name, "default")
        assert m.Status == status and m.ObjVal + 1 < m.ObjBound < 2 * m.ObjVal


def test_solutions_of_a_part_alone_are_none(env_silent):
    m = knapsacks(env_silent, items=20)
    y = m.addVar(lb=3, obj=-1.0, vtype=ZVN.SEMICONT)
    m.addConstr(y >= 1)  # as y is in every solution that leaves its gap out of account
    m.Params.SolutionLimit = 1
    m.optimize()
    assert m.Status == ZVN.SOLUTION_LIMIT and y.X == pytest.approx(3.0)


def test_several_objectives(env_silent):
    m = zelvanpy.Model(env=env_silent)
    x = [m.addVar(lb=lb, vtype=ZVN.SEMICONT) for lb in (3, 4, 5)]
    m.addConstr(sum(x) >= 6.5)
    m.setObjectiveN(sum(x), 0, priority=2)
    m.setObjectiveN(x[0] - x[2], 1, priority=1)
    m.setObjectiveN(x[1], 2, priority=1, weight=0.25)
    m.optimize()
    # The sum is 6.5 with x1 or x2 alone, or 7 with x0 and more: then the one with the least second objective.
    assert m.Status == ZVN.OPTIMAL and m.X == pytest.approx([0.0, 0.0, 6.5], abs=1e-5)
    assert [m.getObjective(i).getValue() for i in range(3)] == pytest.approx([6.5, -6.5, 0.0], abs=1e-5)


def test_a_bound_from_the_relaxation_makes_it_a_plain_search(env_silent, tmp_path):
    env_silent.setParam("LogToConsole", 0)
    env_silent.setParam("OutputFlag", 1)
    branched = []
    for second, best in ((1.0, 2.2), (-0.5, 5.8)):
        m = zelvanpy.Model(env=env_silent)
        x, y, z = m.addVar(lb=3, vtype=ZVN.SEMICONT), m.addVar(lb=-ZVN.INFINITY), m.addVar(ub=5)
        m.addConstr(x - y <= 1)
        m.addConstr(x + second * y - z <= 2)  # with 1 they leave x at most 4
        m.setObjective(x - 0.6 * y, ZVN.MAXIMIZE)
        m.Params.LogFile = str(tmp_path / ("%g.log" % second))
        m.optimize()
        assert m.Status == ZVN.OPTIMAL and m.ObjVal == pytest.approx(best)
        branched.append("Branching on 1 semi-continuous" in (tmp_path / ("%g.log" % second)).read_text())
    assert branched == [False, True]


@pytest.mark.parametrize("lb", [1e-30, 1.0, 1e8, 1e16, 1e19])
@pytest.mark.parametrize("ub", [1e9, 1e16, 1e19, ZVN.INFINITY])
def test_bounds_beyond_all_constants(env_silent, lb, ub):
    if lb > ub:
        return
    m = zelvanpy.Model(env=env_silent)
    x = [m.addVar(lb=lb, ub=ub, obj=cost, vtype=ZVN.SEMICONT) for cost in (1.1, 1.0, 1.2)]
    y = m.addVar(obj=1000.0)
    m.addConstr(sum(x) + y >= 1)
    m.optimize()
    assert m.Status == ZVN.OPTIMAL and m.ObjVal == pytest.approx(min(1000.0, max(1.0, lb)))
    assert all(v.X == 0.0 or v.X >= lb for v in x)


def test_edits_between_solves(env_silent):
    m = lots(env_silent, 12)
    cols = m.getVars()
    m.Params.MIPGap = 0
    for edit in (
        lambda: setattr(cols[3], "UB", 70.0),
        lambda: m.setAttr("UB", cols[:12], [90.0] * 12),
        lambda: setattr(cols[5], "UB", ZVN.INFINITY),
        lambda: setattr(cols[7], "VType", ZVN.CONTINUOUS),
        lambda: m.addConstr(cols[0] + cols[5] >= 61.5),
        lambda: m.remove(m.getConstrs()[-1]),
        lambda: setattr(cols[5], "UB", 80.0),
    ):
        edit()
        m.optimize()
        fresh = m.copy()
        fresh.optimize()
        assert m.Status == fresh.Status == ZVN.OPTIMAL and m.ObjVal == pytest.approx(fresh.ObjVal)
