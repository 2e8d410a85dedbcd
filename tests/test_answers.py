"""Answers against exact enumeration, on models that ask for more than floating-point arithmetic gives.

ZELVAN_RANDOM_MODELS sets how many models are drawn, seeds 0 and up."""

import dataclasses
import itertools
import os
import random
from fractions import Fraction

import pytest
from native import INFINITY, Environment

import zelvanpy
from zelvanpy import ZVN

NUM_MODELS = int(os.environ.get("ZELVAN_RANDOM_MODELS", 100))
TOLERANCE = Fraction(1, 10**6)  # FeasibilityTol, IntFeasTol and OptimalityTol
LEFT_OPEN = Fraction(1, 10**5)  # of an objective, by dual values within OptimalityTol
ROUNDING = Fraction(1, 10**9)  # of an objective, relatively
BOX = Fraction(10) ** 30  # in place of infinite bounds


@dataclasses.dataclass
class Program:
    """Columns (type, lb, ub, cost), rows (coefficients, sense, right-hand side), special ordered sets (type, columns
    in order), to be minimized."""

    columns: list
    rows: list
    sets: list = dataclasses.field(default_factory=list)

    def solve(self, env):
        """Status, objective and point; those are None where there is no point."""
        with env.new() as model:
            model.add_columns([("x%d" % j, *column) for j, column in enumerate(self.columns)])
            model.update()
            for i, (coeffs, sense, rhs) in enumerate(self.rows):
                model.add_row("c%d" % i, sense, rhs, [(j, a) for j, a in enumerate(coeffs) if a])
            for kind, cols in self.sets:
                model.add_set(kind, [(j, float(weight)) for weight, j in enumerate(cols)])
            model.optimize()
            status = model.get("Status")
            if not model.get("SolCount"):
                return status, None, None
            return status, model.get("ObjVal"), model.get("X", range(len(self.columns)))

    def alternatives(self, slack):
        """For each column the intervals of which its value takes one, types and sets considered; an alternative for
        each choice of where the members of a set may be other than 0."""
        intervals = []
        for kind, lb, ub, _ in self.columns:
            lb, ub = (max(-BOX, Fraction(lb)), min(BOX, Fraction(ub)))
            if kind == "I":
                intervals.append([(Fraction(k), Fraction(k)) for k in range(int(lb), int(ub) + 1)])
            else:
                intervals.append([(lb - slack, ub + slack)] + ([(-slack, slack)] if kind == "S" else []))
        zero = [(-slack, slack)]
        windows = []
        for kind, cols in self.sets:
            last = max(1, len(cols) - kind + 1)
            windows.append([[j for j in cols if j not in cols[begin : begin + kind]] for begin in range(last)])
        for fixed in itertools.product(*windows):
            fixed = set().union(*fixed)
            yield from itertools.product(*(zero if j in fixed else own for j, own in enumerate(intervals)))

    def sides(self, slack):
        """Rows as (coefficients, right-hand side) of `<=`. With slack they allow what a point may be off."""
        for coeffs, sense, rhs in self.rows:
            exact = [Fraction(a) for a in coeffs]
            reach = slack * (1 + sum(abs(a) for a, column in zip(exact, self.columns) if column[0] == "I"))
            if sense != ">":
                yield exact, Fraction(rhs) + reach
            if sense != "<":
                yield [-a for a in exact], reach - Fraction(rhs)

    def best(self, slack=Fraction(0)):
        """The least objective, None when there is no point."""
        cost = [Fraction(column[3]) for column in self.columns]
        rows = list(self.sides(slack))
        found = [least(cost, rows, bounds) for bounds in self.alternatives(slack)]
        return min((value for value in found if value is not None), default=None)

    def best_rate(self, reach=None):
        """The least cost of a direction in which every point can go on and on, with elements of at most 1, in which
        no row moves by more than `reach`. All columns with infinite bounds are continuous and in no set."""
        cone = [
            (Fraction(-1 if lb == -INFINITY else 0), Fraction(1 if ub == INFINITY else 0))
            for _, lb, ub, _ in self.columns
        ]
        rows = [(coeffs, Fraction(0)) for coeffs, _ in self.sides(Fraction(0))]
        if reach is not None:
            rows += [([-a for a in coeffs], Fraction(reach)) for coeffs, _ in rows]
        return least([Fraction(column[3]) for column in self.columns], rows, cone)

    def violation(self, x):
        """By how much a point is off, beyond the rounding of its evaluation."""
        worst = Fraction(0)
        x = [Fraction(value) for value in x]
        for value, (kind, lb, ub, _) in zip(x, self.columns):
            off = max(Fraction(lb) - value, value - Fraction(ub), Fraction(0))
            worst = max(worst, min(off, abs(value)) if kind == "S" else off)
            if kind == "I":
                worst = max(worst, abs(value - round(value)))
        for coeffs, rhs in self.sides(Fraction(0)):
            terms = [a * value for a, value in zip(coeffs, x)]
            worst = max(worst, sum(terms) - rhs - sum(map(abs, terms)) / 10**15)
        for kind, cols in self.sets:
            sizes = [abs(x[j]) for j in cols]
            starts = range(max(1, len(cols) - kind + 1))
            worst = max(worst, min(max(sizes[:b] + sizes[b + kind :], default=Fraction(0)) for b in starts))
        return worst


def solution_of(equations):
    """The point where the equations (coefficients, right-hand side) meet, None where that is none or many."""
    equations = [[*coeffs, rhs] for coeffs, rhs in equations]
    for k in range(len(equations)):
        pivot = next((i for i in range(k, len(equations)) if equations[i][k]), None)
        if pivot is None:
            return None
        equations[k], equations[pivot] = equations[pivot], equations[k]
        equations[k] = [a / equations[k][k] for a in equations[k]]
        for i, other in enumerate(equations):
            if i != k and other[k]:
                equations[i] = [a - other[k] * b for a, b in zip(other, equations[k])]
    return [equation[-1] for equation in equations]


def least(cost, rows, bounds):
    """The least value of `cost` over `rows` (coefficients, right-hand side of `<=`) and finite bounds, found at a
    vertex in exact arithmetic; None when there is no point."""
    free = [j for j, (lb, ub) in enumerate(bounds) if lb < ub]
    if any(lb > ub for lb, ub in bounds):
        return None
    fixed = [lb for lb, _ in bounds]
    constant = sum(c * value for j, (c, value) in enumerate(zip(cost, fixed)) if j not in free)
    inner = []
    for coeffs, rhs in rows:
        rest = rhs - sum(a * value for j, (a, value) in enumerate(zip(coeffs, fixed)) if j not in free)
        inner.append(([coeffs[j] for j in free], rest))
    for place, j in enumerate(free):
        unit = [Fraction(int(k == place)) for k in range(len(free))]
        inner += [(unit, bounds[j][1]), ([-a for a in unit], -bounds[j][0])]
    found = None
    for some in itertools.combinations(inner, len(free)):
        point = solution_of(some)
        if point is None or any(sum(a * v for a, v in zip(coeffs, point)) > rhs for coeffs, rhs in inner):
            continue
        value = constant + sum(cost[j] * v for j, v in zip(free, point))
        found = value if found is None else min(found, value)
    return found


@pytest.fixture(scope="module")
def env():
    env = Environment(OutputFlag=0, DualReductions=0, MIPGap=0.0)
    yield env
    env.close()


def random_program(rng):
    columns = []
    for _ in range(rng.randint(2, 3)):
        kind = rng.choice("CCCIIS")
        size = rng.choice([1.0, 5.0, 1e3, 1e7, 1e10])
        lb, ub = {
            "C": rng.choice([(0.0, INFINITY), (-INFINITY, INFINITY), (0.0, size), (-size, 2.0)]),
            "I": rng.choice([(0.0, 1.0), (0.0, 3.0), (-2.0, 1.0)]),
            "S": (size / rng.choice([1, 3, 1000]), size * rng.choice([1, 4])),
        }[kind]
        columns.append((kind, lb, ub, rng.choice([0.0, 1.0, -1.0, 2.5, -3.0, 1e-4, 1e4])))
    rows = []
    spread = rng.choice([(1e-10, 1e-7), (1e3, 1e6, -1e6), (5.0, -4.0)])
    for _ in range(rng.randint(1, 3)):
        coeffs = [rng.choice([0, 1, 1, -1, 2, 3, -0.7, *spread]) for _ in columns]
        rows.append((list(map(float, coeffs)), rng.choice("<<>>="), rng.choice([0.0, 1.0, -2.0, 7.5, 1e4, 1e8])))
    bounded = [j for j, (_, lb, ub, _) in enumerate(columns) if lb > -INFINITY and ub < INFINITY]
    sets = [(rng.randint(1, 2), bounded)] if len(bounded) > 1 and rng.random() < 0.4 else []
    return Program(columns, rows, sets)


def check(program, env):
    """The status, after a look whether answer and point are right."""
    status, objective, x = program.solve(env)
    best, nearly = program.best(), program.best(TOLERANCE)
    if status == ZVN.OPTIMAL:
        assert program.violation(x) <= TOLERANCE
        # A dual value may be off by OptimalityTol, which a direction gains while a row moves by 1.
        assert best is None or program.best_rate(1) >= -TOLERANCE
        if program.best_rate() >= 0:
            rounding = ROUNDING * max(1, *(abs(Fraction(c[3]) * Fraction(v)) for c, v in zip(program.columns, x)))
            gained = sum(TOLERANCE * abs(Fraction(cost)) for kind, _, _, cost in program.columns if kind == "I")
            assert nearly - gained - rounding <= Fraction(objective)
            assert best is None or Fraction(objective) <= best + rounding + max(1, abs(best)) * LEFT_OPEN
    elif status == ZVN.INFEASIBLE:
        assert best is None
    elif status == ZVN.UNBOUNDED:
        assert nearly is not None and program.best_rate() < 0
    elif x is not None:
        assert program.violation(x) <= TOLERANCE
    return status


def test_random_programs(env):
    undecided = 0
    for seed in range(NUM_MODELS):
        try:
            status = check(random_program(random.Random(seed)), env)
        except AssertionError as fault:
            raise AssertionError("program %d" % seed) from fault
        undecided += status not in (ZVN.OPTIMAL, ZVN.INFEASIBLE, ZVN.UNBOUNDED)
    assert undecided <= NUM_MODELS / 50


FREE = ("I", -INFINITY, INFINITY)


@pytest.mark.parametrize(
    "columns, rows, status, objective",
    [
        ([("C", 0.0, 1e12, 1.0)], [([1e-9], ">", 1.0)], ZVN.OPTIMAL, 1e9),
        ([("C", 0.0, INFINITY, -1.0), ("C", 0.0, INFINITY, 0.0)], [([5e-10, 1.0], "<", 1.0)], ZVN.OPTIMAL, -2e9),
        (
            [("B", 0.0, 1.0, 1.0), ("B", 0.0, 1.0, 1.0)],
            [([100.4534, 1e12], "<", 1e12), ([100.4534, -1e12], "<", 0.0)],
            ZVN.OPTIMAL,
            0.0,
        ),
        ([(*FREE, 1.0), (*FREE, 0.0)], [([1.0, -1.0], "=", 0.0)], ZVN.UNBOUNDED, None),
        ([("C", 0.0, INFINITY, -1.0), ("C", 0.0, INFINITY, 0.0)], [([1.0, -1e12], "<", 0.0)], ZVN.UNBOUNDED, None),
        (
            [("I", 0.0, INFINITY, -2.0), ("C", -3.0, 4.0, 2.0), ("I", -INFINITY, 2.0, 1.0), ("I", 0.0, INFINITY, -1.0)],
            [
                ([0.0, 4.0, 2.0, 4.0], "<", -5.0),
                ([-3.0, 2.0, -3.0, 1.0], "<", 3.0),
                ([-4.0, -4.0, -4.0, 2.0], ">", 4.0),
            ],
            ZVN.UNBOUNDED,
            None,
        ),
        (
            [
                ("I", 0.0, INFINITY, -2.0),
                ("I", 0.0, INFINITY, 2.0),
                ("I", -INFINITY, INFINITY, 3.0),
                ("I", -3.0, 4.0, 0.0),
            ],
            [
                ([2.0, -1.0, -1.0, -1.0], ">", 6.0),
                ([-4.0, 0.0, -2.0, 3.0], "<", -2.0),
                ([-3.0, 2.0, -3.0, -2.0], ">", -6.0),
            ],
            ZVN.UNBOUNDED,
            None,
        ),
        ([("C", 0.0, 10.0, 1e14), ("C", 0.0, 10.0, -1.0)], [([1e14, -1.0], "<", 5.0)], ZVN.OPTIMAL, -10.0),
        (
            [
                ("C", -2.0, INFINITY, -1.0),
                ("C", -INFINITY, 3.0, 1.0),
                ("C", -2.0, 3.0, 0.0),
                ("I", -1.0, 4.0, 0.0),
            ],
            [([1.0, 1.0, 0.0, 1.0], "<", 1.0), ([1.0, 1.0, 1.0, 1.0], ">", 1.0)],
            ZVN.UNBOUNDED,
            None,
        ),
    ],
)
@pytest.mark.parametrize("reductions", [0, 1])
def test_what_the_search_alone_gets_wrong(columns, rows, status, objective, reductions):
    env = Environment(OutputFlag=0, DualReductions=reductions)
    found = Program(columns, rows).solve(env)
    assert found[0] == status
    assert objective is None or found[1] == pytest.approx(objective, rel=1e-6, abs=1e-6)
    env.close()


def test_a_bounded_objective_limited_by_another_one(env):
    with env.new() as model:
        model.add_columns([("x", "C", 0.0, 10.0, 0.0), ("y", "C", 0.0, 10.0, 0.0)])
        model.update()
        model.set_objective_n(0, 2, 1.0, 0.0, 0.0, "first", 0.0, [(0, 1e14), (1, -1.0)])
        model.set_objective_n(1, 1, 1.0, 0.0, 0.0, "second", 0.0, [(0, -1.0)])
        model.optimize()
        assert model.get("Status") == ZVN.OPTIMAL


def test_points_of_pool_and_files_hold(env_silent, tmp_path):
    m = zelvanpy.Model(env=env_silent)
    m.Params.SolFiles = str(tmp_path / "found")
    x = [m.addVar(lb=1e3, ub=1e7, vtype=ZVN.SEMICONT, obj=cost) for cost in (1.0, 1.1, 1.2)]
    y = m.addVar(obj=1000.0)
    m.addConstr(x[0] + x[1] + x[2] + y >= 1)
    m.optimize()
    assert m.Status == ZVN.OPTIMAL and m.ObjVal == pytest.approx(1000)
    points = []
    for number in range(m.SolCount):
        m.Params.SolutionNumber = number
        points.append([v.Xn for v in m.getVars()])
        assert m.PoolObjVal >= 1000 - 1e-6
    for path in tmp_path.glob("found_*.sol"):
        values = dict(line.split() for line in path.read_text().splitlines() if not line.startswith("#"))
        points.append([float(values[v.VarName]) for v in m.getVars()])
    assert points
    for point in points:
        assert all(abs(value) <= 1e-6 or value >= 1e3 - 1e-6 for value in point[:3]) and sum(point) >= 1 - 1e-6
    m.dispose()


def test_a_cutoff_is_kept(env_silent):
    ends = []
    for cutoff in (9.5, 10.5, 11.5):
        m = zelvanpy.Model(env=env_silent)
        x = m.addVars(4, vtype=ZVN.INTEGER, obj={0: 3, 1: 5, 2: 7, 3: 9}, ub=3)
        m.addConstr(2 * x[0] + 3 * x[1] + 4 * x[2] + 5 * x[3] >= 6.5)
        m.Params.Cutoff = cutoff
        m.optimize()
        ends.append((m.Status, m.ObjVal if m.SolCount else None))
        m.dispose()
    assert ends == [(ZVN.CUTOFF, None), (ZVN.CUTOFF, None), (ZVN.OPTIMAL, pytest.approx(11.0))]
