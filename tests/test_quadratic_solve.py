"""Solving with a quadratic objective: answers against the optimality conditions and enumeration, statuses, limits."""

import itertools
import sys

import numpy
import pytest
import scipy.sparse
from hypothesis import example, given
from hypothesis import strategies as st
from native import INFINITY, NOT_AVAILABLE, Environment, LibraryError
from scipy.optimize import linprog
from solvable import Listener

import zelvanpy
from zelvanpy import ZVN

OPTIMAL, INFEASIBLE, UNBOUNDED, ITERATION_LIMIT, TIME_LIMIT, WORK_LIMIT = 2, 3, 5, 7, 9, 16
NOT_PSD = 10020
INF = numpy.inf


class Program:
    """Minimize cost'x + x'Qx over lower <= Ax <= upper and lb <= x <= ub."""

    def __init__(self, cost, Q, A=None, lower=(), upper=(), lb=0.0, ub=INF):
        self.cost, self.Q = numpy.array(cost, float), numpy.array(Q, float)
        n = len(self.cost)
        self.A = numpy.array(A, float).reshape(-1, n) if A is not None else numpy.zeros((0, n))
        self.lower, self.upper = numpy.array(lower, float), numpy.array(upper, float)
        self.lb, self.ub = numpy.broadcast_to(lb, n).astype(float), numpy.broadcast_to(ub, n).astype(float)

    def value(self, x):
        return self.cost @ x + x @ self.Q @ x

    def terms(self, factor):
        n = len(self.cost)
        pairs = [(i, j, factor * (1 if i == j else 2) * self.Q[i, j]) for i in range(n) for j in range(i, n)]
        return [term for term in pairs if term[2] != 0]

    def model(self, env, maximize=False):
        """The model; its objective is the negative where it is maximized."""
        factor = -1.0 if maximize else 1.0
        n = len(self.cost)
        bounds = numpy.clip([self.lb, self.ub], -INFINITY, INFINITY).tolist()
        m = env.new("", *bounds, [0.0] * n)
        for row, lower, upper in zip(self.A, self.lower, self.upper):
            entries = [(j, a) for j, a in enumerate(row) if a != 0]
            if lower == upper:
                m.add_row("", "=", upper, entries)
            elif lower == -INF:
                m.add_row("", "<", min(upper, INFINITY), entries)
            elif upper == INF:
                m.add_row("", ">", lower, entries)
            else:
                m.add_row("", "R", upper, entries, lower)
        m.set_objective(list(enumerate((factor * self.cost).tolist())), self.terms(factor), int(factor))
        m.update()
        return m

    def check_optimal(self, m, maximize=False, tolerance=1e-6):
        """The optimality conditions at what a model of this says, on the data here; the answer is the objective."""
        factor = -1.0 if maximize else 1.0
        x = numpy.array(m.get("X", range(len(self.cost))))
        pi = factor * numpy.array(m.get("Pi", range(len(self.A)))) if len(self.A) else numpy.zeros(0)
        rc = factor * numpy.array(m.get("RC", range(len(self.cost))))
        activity = self.A @ x
        size = 1 + abs(self.cost) + 2 * abs(self.Q) @ abs(x) + abs(self.A.T) @ abs(pi)
        assert (abs(rc - (self.cost + 2 * self.Q @ x - self.A.T @ pi)) <= 1e-13 * size).all()
        gap = 0.0
        sides = [(x, rc, self.lb, self.ub), (activity, pi, self.lower, self.upper)]
        for values, duals, lower, upper in sides:
            assert (values >= lower - tolerance).all() and (values <= upper + tolerance).all()
            for value, dual, low, up in zip(values, duals, lower, upper):
                side = low if dual > 0 else up
                assert abs(dual) <= tolerance or abs(side) < INF, (value, dual, low, up)
                gap += abs(dual * (value - side)) if abs(side) < INF else 0.0
        objective = self.value(x)
        assert gap <= tolerance * (1 + abs(objective))
        assert factor * m.get("ObjVal") == pytest.approx(objective, rel=1e-12, abs=1e-13 * (size @ abs(x)))
        return objective

    def status(self):
        """What two linear programs say: one for a feasible point, one for a direction that improves for ever."""

        def solve(cost, at, extra=()):
            low, up = at(self.lower), at(self.upper)
            A = numpy.vstack([self.A, -self.A])
            b = numpy.concatenate([up, -low])
            finite = abs(b) < INF
            bounds = list(zip(at(self.lb), at(self.ub)))
            if len(extra):
                bounds = [(max(low, -1.0), min(up, 1.0)) for low, up in bounds]
            equations = {"A_eq": extra, "b_eq": numpy.zeros(len(extra))} if len(extra) else {}
            return linprog(cost, A[finite], b[finite], bounds=bounds, **equations)

        if solve(0 * self.cost, lambda side: side).status == 2:
            return INFEASIBLE
        found = solve(self.cost, lambda side: numpy.where(abs(side) < INF, 0.0, side), self.Q)
        return UNBOUNDED if found.fun < -1e-9 else OPTIMAL

    def least_by_enumeration(self):
        """The optimum, over all choices of sides that columns and rows are at."""
        n = len(self.cost)
        rows = numpy.vstack([numpy.eye(n), self.A])
        low, up = numpy.concatenate([self.lb, self.lower]), numpy.concatenate([self.ub, self.upper])
        best = None
        choices = [[None, *{side for side in sides if abs(side) < INF}] for sides in zip(low, up)]
        for choice in itertools.product(*choices):
            held = [k for k, side in enumerate(choice) if side is not None]
            if len(held) > n:
                continue
            C, d = rows[held], numpy.array([choice[k] for k in held])
            K = numpy.block([[2 * self.Q, C.T], [C, numpy.zeros((len(held), len(held)))]])
            rhs = numpy.concatenate([-self.cost, d])
            x = numpy.linalg.lstsq(K, rhs, rcond=None)[0]
            if abs(K @ x - rhs).max(initial=0) > 1e-8:
                continue
            x = x[:n]
            if (rows @ x >= low - 1e-7).all() and (rows @ x <= up + 1e-7).all():
                best = self.value(x) if best is None else min(best, self.value(x))
        return best


@pytest.fixture(scope="module")
def env():
    env = Environment(OutputFlag=0)
    yield env
    env.close()


small = st.integers(-3, 3).map(float)


@st.composite
def programs(draw):
    """Convex, at times with a singular Q, free columns and rows, equations; small enough to enumerate."""
    n = draw(st.integers(1, 3))
    rank, m = draw(st.integers(1, n)), draw(st.integers(0, 2))
    F = numpy.array(draw(st.lists(st.lists(small, min_size=n, max_size=n), min_size=rank, max_size=rank)))
    A = [draw(st.lists(small, min_size=n, max_size=n)) for _ in range(m)]
    sides = [draw(st.sampled_from([(-INF, 1.0), (0.0, INF), (1.0, 1.0), (-1.0, 2.0), (-INF, INF)])) for _ in range(m)]
    bounds = [draw(st.sampled_from([(0.0, INF), (-1.0, 2.0), (-INF, INF), (-INF, 1.0), (1.0, 1.0)])) for _ in range(n)]
    cost = draw(st.lists(small, min_size=n, max_size=n))
    lower, upper = zip(*sides) if sides else ((), ())
    lb, ub = zip(*bounds)
    return Program(cost, F.T @ F, A, lower, upper, lb, ub)


# What the active-set method calls unbounded, what the interior-point method doesn't get to an end with, and what broke
# the heap in the active-set method.
@example(Program([0, 0, -1], [[0, 0, 0], [0, 1, 1], [0, 1, 1]]), False, 0)
@example(Program([2, -2, 1], [[4, -4, 2], [-4, 4, -2], [2, -2, 1]], lb=-INF, ub=[1, 1, INF]), False, 2)
@example(Program([0, -2, 3], [[2, 1, 1], [1, 5, 2], [1, 2, 1]], lb=[0, 0, -3], ub=[5, 5, -3]), False, 0)
@given(programs(), st.booleans(), st.sampled_from([-1, 0, 2]))
def test_answers_hold_and_agree_with_enumeration(env, program, maximize, method):
    if not program.terms(1.0):
        return
    with program.model(env, maximize) as m:
        m.env.set("Method", method)
        m.optimize()
        assert m.get("Status") == program.status()
        if m.get("Status") == OPTIMAL:
            least = program.least_by_enumeration()
            assert program.check_optimal(m, maximize) == pytest.approx(least, rel=1e-9, abs=1e-9)
            assert not has_basis(m)


def has_basis(m):
    try:
        m.get("VBasis", 0)
    except LibraryError as e:
        assert e.code == NOT_AVAILABLE
        return False
    return True


def chain(n, missing=0.0):
    """The sum of the squares of differences of neighbours, singular; `missing` is taken off the first one's square."""
    Q = scipy.sparse.diags([numpy.full(n, 2.0), numpy.full(n - 1, -1.0), numpy.full(n - 1, -1.0)], [0, 1, -1]).tolil()
    Q[0, 0], Q[n - 1, n - 1] = 1.0 - missing, 1.0
    return Q.tocsr()


def arrow(n, missing=0.0):
    """A column that goes with all others, which fills in nothing where it is eliminated last; singular."""
    Q = scipy.sparse.eye(n).tolil()
    Q[0, 1:] = Q[1:, 0] = 1.0
    Q[0, 0] = n - 1 - missing
    return Q.tocsr()


def low_rank(n, missing=0.0):
    """A full matrix of rank 3 with large entries."""
    F = 1e4 * numpy.random.default_rng(n).standard_normal((3, n))
    Q = F.T @ F
    Q[n // 2, n // 2] -= missing
    return Q


def is_recognized(env, Q, sense=1):
    """Whether the solve takes x'Qx over a box, minimized or maximized."""
    Q = scipy.sparse.triu(Q).tocoo()
    terms = [(int(i), int(j), v if i == j else 2 * v) for i, j, v in zip(Q.row, Q.col, Q.data) if v != 0]
    with env.new("", [-1.0] * Q.shape[0], [1.0] * Q.shape[0]) as m:
        m.set_objective([], terms, sense)
        m.env.set("NonConvex", 0)
        m.env.set("TimeLimit", 1e-9) if Q.shape[0] > 100 else None
        try:
            m.optimize()
        except LibraryError as e:
            assert e.code == NOT_PSD and "The quadratic objective isn't convex" in e.text
            return False
    return True


@pytest.mark.parametrize("build", [chain, arrow, low_rank])
def test_sparse_and_full_forms_are_told_by_what_is_missing(env, build):
    assert is_recognized(env, build(90)) and is_recognized(env, -build(90), -1)
    assert not is_recognized(env, build(90), -1)
    assert is_recognized(env, build(90, 1e-9)) and not is_recognized(env, build(90, 2.0))


@given(st.integers(0, 10**6), st.integers(1, 40), st.sampled_from([0.05, 0.3, 1.0]))
def test_convexity_agrees_with_eigenvalues(env, seed, n, density):
    rng = numpy.random.default_rng(seed)
    F = rng.standard_normal((rng.integers(1, n + 1), n)) * (rng.random(n) < 0.9)
    F[rng.random(F.shape) > density] = 0.0
    Q = F.T @ F + rng.choice([0.0, 1e-3, -1e-3]) * numpy.diag(rng.random(n) < 0.3)
    if not Q.any():
        return
    least = numpy.linalg.eigvalsh(Q).min()
    if least > -1e-9 or least < -1e-4:
        assert is_recognized(env, Q) == (least > -1e-9), least


def kernel(n, rank):
    """A support vector machine's dual over points of `rank` dimensions."""
    rng = numpy.random.default_rng(n)
    points = rng.standard_normal((n, rank))
    labels = numpy.sign(points[:, 0] + 0.3 * rng.standard_normal(n))
    half = 0.5 * (points * labels[:, None]) @ (points * labels[:, None]).T
    return Program(-numpy.ones(n), half, [labels], [0.0], [0.0], 0.0, 1.0)


def portfolio(n):
    rng = numpy.random.default_rng(n)
    F = rng.standard_normal((5, n))
    return Program(-rng.random(n), F.T @ F + numpy.diag(rng.random(n)), [numpy.ones(n)], [1.0], [1.0])


def least_squares(n):
    rng = numpy.random.default_rng(n)
    A = rng.standard_normal((n // 5, n)) * (rng.random((n // 5, n)) < 0.1)
    side = A @ rng.random(n)
    return Program(-2 * rng.standard_normal(n), numpy.eye(n), A, side, side)


def test_rows_of_every_kind_in_a_program_too_large_to_polish(env):
    rng = numpy.random.default_rng(1)
    n, m = 1000, 90
    A = rng.standard_normal((m, n)) * (rng.random((m, n)) < 0.05)
    at = A @ rng.random(n)
    kinds = numpy.arange(m) % 5
    lower = numpy.choose(kinds, [-INF, at - 0.1, at, at, -INF])
    upper = numpy.choose(kinds, [INF, at + 0.1, at, INF, at])
    program = Program(-2 * rng.standard_normal(n), numpy.eye(n), A, lower, upper)
    with program.model(env) as m:
        m.optimize()
        assert m.get("Status") == OPTIMAL and m.get("BarIterCount") > 0 and m.get("IterCount") == 0
        program.check_optimal(m)


@pytest.mark.parametrize(
    "program, way",
    [
        (kernel(250, 4), "by interior points, on the squares of the objective"),
        (portfolio(150), "by active sets"),
        (least_squares(250), "by interior points\n"),
    ],
)
def test_ways_that_suit_agree(program, way):
    log = Environment()
    with program.model(log) as m:
        m.optimize()
        assert way.strip() in next(line for line in log.log if "quadratic program" in line)
        objective = program.check_optimal(m, tolerance=1e-7)
        by_barrier = m.get("BarIterCount") > 0
        assert by_barrier == (way != "by active sets")
        if by_barrier:
            assert m.get("BarX", [0, 1]) == m.get("X", [0, 1])
        for method in (1, 2):
            m.env.set("Method", method)
            m.optimize()
            assert m.get("ObjVal") == pytest.approx(objective, rel=1e-7)
    log.close()


def test_limits_end_in_their_status(env):
    for method, limit, value, status in [
        (1, "IterationLimit", 5.0, ITERATION_LIMIT),
        (2, "BarIterLimit", 2, ITERATION_LIMIT),
        (2, "WorkLimit", 1e-9, WORK_LIMIT),
        (-1, "TimeLimit", 0.0, TIME_LIMIT),
    ]:
        with portfolio(150).model(env) as m:
            m.env.set("Method", method)
            m.env.set(limit, value)
            m.optimize()
            assert m.get("Status") == status, limit
            if m.get("SolCount"):
                assert sum(m.get("X", range(150))) == pytest.approx(1.0)


def test_a_changed_model_solves_like_a_new_one(env_silent):
    m = zelvanpy.Model(env=env_silent)
    x = m.addVars(6, lb=-1, ub=4, name="x")
    row = m.addConstr(x.sum() >= 3)
    squares = zelvanpy.quicksum((i + 1) * x[i] * x[i] - x[i] * x[(i + 1) % 6] for i in range(6))

    def solve():
        m.update()
        fresh = m.copy()
        for model in (m, fresh):
            model.optimize()
            assert model.Status == ZVN.OPTIMAL
        assert m.ObjVal == pytest.approx(fresh.ObjVal, rel=1e-7)
        return m.ObjVal

    m.setObjective(squares + x[0])
    values = [solve(), solve()]
    row.RHS = 5
    values.append(solve())
    x[2].UB = 0.25
    values.append(solve())
    m.addConstr(x[0] - x[1] == 1)
    y = m.addVar(ub=2)
    m.setObjective(squares + y * y - 3 * y)
    values.append(solve())
    m.setObjective(x[0] + 2 * x[1] + y)
    values.append(solve())
    assert x[0].VBasis in (0, -1, -2)
    m.setObjective(-squares, ZVN.MAXIMIZE)
    m.remove(row)
    values.append(solve())
    assert values[0] == pytest.approx(values[1], rel=1e-9) and len({round(value, 6) for value in values}) == 6


def test_a_solve_is_stopped_between_the_runs_of_the_methods(monkeypatch):
    m = zelvanpy.Model()
    x = m.addVars(60, ub=1)
    m.setObjective(zelvanpy.quicksum((1 + (i == j)) * x[i] * x[j] - x[i] for i in range(60) for j in range(i, 60)))
    monkeypatch.setattr(sys, "stdout", Listener("Solving the quadratic program", m.terminate))
    m.optimize()
    assert m.Status == ZVN.INTERRUPTED
