"""Special ordered sets solved: against linear programs for every choice of the members that may be other than 0."""

import itertools
import random

import pytest
from native import INFINITY, Environment, Int, array
from scipy.optimize import linprog

OPTIMAL = 2
FREEDOM = 1e-5  # what the feasibility tolerance of 1e-6 may gain at costs of up to 5
EITHER = (3, 4)  # infeasible, or infeasible or unbounded


@pytest.fixture(scope="module")
def env():
    env = Environment(OutputFlag=0)
    yield env
    env.close()


def windows(kind, members):
    """The members that a set may leave other than 0, choice by choice."""
    cols = [j for j, _ in sorted(members, key=lambda member: member[1])]
    if len(cols) <= kind:
        return [set(cols)]
    return [set(cols[i : i + kind]) for i in range(len(cols) - kind + 1)]


def best_by_enumeration(columns, rows, sets):
    """The least objective, None when there is no feasible choice."""
    best = None
    for choice in itertools.product(*(windows(*one) for one in sets)):
        bounds = [[lb, ub] for lb, ub, _ in columns]
        for allowed, (_, members) in zip(choice, sets):
            for j, _ in members:
                if j not in allowed:
                    bounds[j] = [max(0.0, bounds[j][0]), min(0.0, bounds[j][1])]
        if any(lb > ub for lb, ub in bounds):
            continue
        dense = [[dict(entries).get(j, 0.0) for j in range(len(columns))] for entries, _ in rows]
        found = linprog([obj for _, _, obj in columns], dense or None, [rhs for _, rhs in rows] or None, bounds=bounds)
        if found.status == 0 and (best is None or found.fun < best):
            best = found.fun
    return best


def build(env, columns, rows, sets):
    model = env.new()
    model.add_columns([("x%d" % j, "C", lb, ub, obj) for j, (lb, ub, obj) in enumerate(columns)])
    model.update()
    for i, (entries, rhs) in enumerate(rows):
        model.add_row("c%d" % i, "<", rhs, entries)
    for kind, members in sets:
        model.add_set(kind, members)
    return model


def random_model(rng, size):
    columns = [
        (float(rng.choice([0, 0, -2, -1, 1])), float(rng.choice([3, 5, 40])), float(rng.randint(-5, 5)))
        for _ in range(size)
    ]
    rows = []
    for _ in range(rng.randint(0, 3)):
        entries = [(j, float(rng.randint(1, 4) * rng.choice([1, 1, -1]))) for j in rng.sample(range(size), 3)]
        rows.append((entries, float(rng.randint(-4, 12))))
    sets = []
    for _ in range(rng.randint(1, 3)):
        cols = rng.sample(range(size), rng.randint(1, size))
        sets.append((rng.choice([1, 2]), list(zip(cols, map(float, rng.sample(range(-9, 10), len(cols)))))))
    return columns, rows, sets


@pytest.mark.parametrize("seed", range(8))
def test_random_models_against_enumeration(env, seed):
    rng = random.Random(seed)
    infeasible = 0
    for _ in range(25):
        data = random_model(rng, rng.randint(3, 6))
        best = best_by_enumeration(*data)
        with build(env, *data) as model:
            model.optimize()
            if best is None:
                infeasible += 1
                assert model.get("Status") in EITHER, data
                continue
            assert model.get("Status") == OPTIMAL, data
            assert model.get("IsMIP") == 1
            assert model.get("ObjVal") == pytest.approx(best, abs=FREEDOM), data
            x = model.get("X", range(len(data[0])))
            for kind, members in data[2]:
                used = {j for j, _ in members if abs(x[j]) > 1e-5}
                assert any(used <= window for window in windows(kind, members)), (data, x)
    assert infeasible < 20


def test_a_bound_that_only_rows_imply_is_enough(env):
    columns = [(0.0, INFINITY, -1.0), (0.0, INFINITY, -2.0), (0.0, INFINITY, -3.0)]
    rows = [([(0, 1.0), (1, 1.0), (2, 2.0)], 10.0)]
    with build(env, columns, rows, [(2, [(0, 1.0), (1, 2.0), (2, 3.0)])]) as model:
        model.optimize()
        assert (model.get("Status"), model.get("ObjVal")) == (OPTIMAL, pytest.approx(-20.0))


def test_sets_come_and_go_between_solves(env):
    columns = [(0.0, 4.0, -1.0), (0.0, 4.0, -2.0), (0.0, 4.0, -4.0)]
    with build(env, columns, [], []) as model:
        model.optimize()
        assert model.get("ObjVal") == -28.0
        model.add_set(2, [(0, 3.0), (1, 1.0), (2, 2.0)])  # in the order 1, 2, 0
        model.optimize()
        assert model.get("X", range(3)) == [0.0, 4.0, 4.0]
        model.add_set(1, [(1, 1.0), (2, 2.0)])
        model.optimize()
        assert model.get("X", range(3)) == [4.0, 0.0, 4.0]
        model.call("ZVNdelsos", 2, array(Int, [0, 1]))
        model.optimize()
        assert (model.get("ObjVal"), model.get("IsMIP")) == (-28.0, 0)
