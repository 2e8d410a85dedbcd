"""Solving with a quadratic objective: answers against the optimality conditions and enumeration, statuses, limits."""

import itertools

import numpy
import pytest
from hypothesis import given
from hypothesis import strategies as st
from native import INFINITY, NOT_AVAILABLE, Environment, LibraryError
from scipy.optimize import linprog

OPTIMAL, INFEASIBLE, UNBOUNDED, ITERATION_LIMIT, TIME_LIMIT = 2, 3, 5, 7, 9
NOT_PSD, NOT_SUPPORTED = 10020, 10024
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
            assert program.check_optimal(m, maximize) == pytest.approx(least, rel=1e-7, abs=1e-7)
            assert not has_basis(m)


def has_basis(m):
    try:
        m.get("VBasis", 0)
    except LibraryError as e:
        assert e.code == NOT_AVAILABLE
        return False
    return True
