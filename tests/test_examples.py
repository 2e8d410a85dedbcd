"""The examples run and come to the answers that a second opinion gives."""

import itertools
import runpy
import sys

import numpy as np
import pytest
from conftest import ROOT
from scipy.optimize import Bounds, LinearConstraint, linprog, milp, minimize
from scipy.sparse import csr_matrix
from scipy.sparse.csgraph import maximum_flow


@pytest.fixture
def example(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    monkeypatch.setitem(sys.modules, "matplotlib", None)  # pictures are left out
    return lambda name: runpy.run_path(str(ROOT / "examples" / (name + ".py")))


def test_diet(example, capsys):
    names = example("diet")
    foods, needs = names["FOODS"], names["NEEDS"]
    content = np.array([names["CONTENT"][food] for food in foods], dtype=float).T
    rows, sides = [-content], [-np.array([names["LOWEST"][need] for need in needs])]
    for i, need in enumerate(needs):
        if names["HIGHEST"][need] < 1e20:
            rows.append(content[i : i + 1])
            sides.append([names["HIGHEST"][need]])
    price = [names["PRICE"][food] for food in foods]
    bounds = [(0, names["MOST"][food]) for food in foods]
    expected = linprog(price, A_ub=np.vstack(rows), b_ub=np.concatenate(sides), bounds=bounds)
    assert names["solve"]() == pytest.approx(expected.fun)
    assert "One more energy" in capsys.readouterr().out


def test_transport(example, capsys):
    names = example("transport")
    roads = names["ROADS"]
    supply = [[float(road[0] == plant) for road in roads] for plant in names["SUPPLY"]]
    demand = [[-float(road[1] == town) for road in roads] for town in names["DEMAND"]]
    sides = list(names["SUPPLY"].values()) + [-d for d in names["DEMAND"].values()]
    expected = linprog([names["FREIGHT"][road] for road in roads], A_ub=supply + demand, b_ub=sides)
    assert names["solve"]() == pytest.approx(expected.fun)
    assert "Mill is used up" in capsys.readouterr().out


def test_knapsack(example, capsys):
    names = example("knapsack")
    first, second = capsys.readouterr().out.splitlines()[:2]

    def best(allowed):
        packs = itertools.chain.from_iterable(itertools.combinations(names["items"], k) for k in range(6))
        fits = (p for p in packs if sum(names["weight"][i] for i in p) <= 10 and allowed(p))
        return max(sum(names["value"][i] for i in p) for p in fits)

    assert first.startswith("worth %g:" % best(lambda p: True))
    assert second.startswith("worth %g:" % best(lambda p: "food" in p and ("tent" not in p or "rope" in p)))


def test_facility(example, capsys):
    names = example("facility")
    sites, customers, capacity = names["SITES"], names["CUSTOMERS"], names["CAPACITY"]
    distance = names["instance"]()[2]
    share = np.eye(sites * customers).reshape(sites, customers, -1)
    opened = np.eye(sites)
    served = np.hstack([np.zeros((customers, sites)), share.sum(axis=0)])
    load = np.hstack([-capacity * opened, share.sum(axis=1)])
    link = np.hstack([-np.repeat(opened, customers, axis=0), np.eye(sites * customers)])
    cost = [names["FIXED_COST"]] * sites + [distance[s, c] for s in range(sites) for c in range(customers)]
    expected = milp(
        cost,
        constraints=[
            LinearConstraint(served, 1, 1),
            LinearConstraint(np.vstack([load, link]), -np.inf, 0),
        ],
        bounds=Bounds(0, 1),
        integrality=[1] * sites + [0] * (sites * customers),
    )
    assert names["solve"]() == pytest.approx(expected.fun, rel=2e-4)  # both within their gaps
    assert "Open warehouses" in capsys.readouterr().out


def test_production(example):
    names = example("production")
    demand, months = np.array(names["DEMAND"]), len(names["DEMAND"])
    eye, zero = np.eye(months), np.zeros((months, months))
    balance = np.hstack([eye, eye, np.eye(months, k=-1) - eye, zero])
    most = names["REGULAR"] + names["OVERTIME"]
    setup = np.hstack([eye, eye, zero, -most * eye])
    first = -100 * (np.arange(months) == 0)
    constraints = [
        LinearConstraint(balance, demand + first, demand + first),
        LinearConstraint(setup, -np.inf, 0),
        LinearConstraint(np.eye(4 * months)[3 * months - 1], 50, 100),
    ]
    upper = np.repeat([names["REGULAR"], names["OVERTIME"], np.inf, 1], months)
    integrality = np.repeat([0, 0, 0, 1], months)
    kinds = ("REGULAR_COST", "OVERTIME_COST", "STOCK_COST", "SETUP_COST")
    price = np.repeat([names[kind] for kind in kinds], months)

    def solve(objective, *more):
        return milp(objective, constraints=constraints + list(more), bounds=Bounds(0, upper), integrality=integrality)

    cheapest = solve(price).fun
    setups = solve(np.repeat([0, 0, 0, 1], months), LinearConstraint(price, -np.inf, 1.01 * cheapest)).fun
    cost, runs = names["solve"]()
    assert cheapest * (1 - 2e-4) <= cost <= 1.0102 * cheapest
    assert runs == pytest.approx(setups)


def test_portfolio(example):
    names = example("portfolio")
    mean, covariance = names["market"]()
    line = names["frontier"](6)
    gains, risks = np.array(line).T
    assert (np.diff(gains) > 0).all() and (np.diff(risks) > 0).all() and (np.diff(risks, 2) > -1e-9).all()
    rows = LinearConstraint(np.vstack([np.ones_like(mean), mean]), [1, gains[3]], [1, np.inf])
    start = np.full(len(mean), 1 / len(mean))
    tight = {"gtol": 1e-10, "xtol": 1e-12, "maxiter": 3000}
    expected = minimize(
        lambda x: x @ covariance @ x, start, jac=lambda x: 2 * covariance @ x, method="trust-constr",
        hess=lambda x: 2 * covariance, constraints=rows, bounds=Bounds(0, 0.3), options=tight,
    )  # fmt: skip
    assert risks[3] ** 2 == pytest.approx(expected.fun, rel=1e-4)


def test_sudoku(example):
    names = example("sudoku")
    board = names["solve"]()
    blocks = board.reshape(3, 3, 3, 3).swapaxes(1, 2).reshape(9, 9)
    for groups in (board, board.T, blocks):
        assert (np.sort(groups, axis=1) == np.arange(1, 10)).all()
    clues = "".join(names["PUZZLE"].split())
    assert all(clue in (".", str(digit)) for clue, digit in zip(clues, board.reshape(-1)))


def test_network(example, capsys):
    names = example("network")
    tail, head, capacity = names["network"]()
    graph = csr_matrix((capacity.astype(np.int32), (tail, head)), shape=(head.max() + 1,) * 2)
    largest = maximum_flow(graph, 0, head.max()).flow_value
    assert names["solve"]() == pytest.approx(largest)
    assert "with capacity %g" % largest in capsys.readouterr().out


def test_deviations(example):
    names = example("deviations")
    t, y = names["measurements"]()
    A = np.column_stack([np.ones_like(t), t])
    absolute, squares = names["fit"]()
    assert squares == pytest.approx(np.linalg.lstsq(A, y, rcond=None)[0], abs=1e-5)
    eye = np.eye(len(t))
    bounds = [(None, None)] * 2 + [(0, None)] * (2 * len(t))
    expected = linprog(np.r_[0, 0, np.ones(2 * len(t))], A_eq=np.hstack([A, eye, -eye]), b_eq=y, bounds=bounds)
    assert np.abs(A @ absolute - y).sum() == pytest.approx(expected.fun)


def test_classifier(example):
    names = example("classifier")
    points, labels = names["clouds"]()
    direction, offset = names["train"]()

    def loss(line):
        margin = 1 - labels * (points @ line[:2] + line[2])
        return 0.5 * line[:2] @ line[:2] + names["PENALTY"] * np.maximum(margin, 0).sum()

    found = np.r_[direction, offset]
    around = minimize(loss, found, method="Nelder-Mead", options={"xatol": 1e-9, "fatol": 1e-12})
    assert loss(found) == pytest.approx(around.fun, rel=1e-5)
