"""Quadratic constraints, integers and products: cones beside clarabel, all else beside pyscipopt.

The other side runs in an environment of its own: ZELVAN_PEER_PYTHON names its Python, without which nothing is
measured. Each repeat solves the same model on both sides in turn; seconds are those of the solve alone. Where a side
comes to its limit of time, its gap is printed and there is no ratio."""

import json
import math
import os
import pathlib
import subprocess

import numpy
import timing

import zelvanpy

REPEATS = 1 if timing.SHORT else 3
MAX_CONES, MAX_INTEGERS, MAX_PRODUCTS = 10, 3, 10
SHRINK = 5 if timing.SHORT else 1
SECONDS = 120
GAP = 1e-4
# Cost of the second source, limit of the first mixture.
HAVERLY = [(16.0, 100.0), (16.0, 600.0), (13.0, 100.0)]


class Instance:
    """Columns, rows of linear terms and products, cones |weights * members| <= x[t], and what is minimized."""

    def __init__(self):
        self.columns, self.rows, self.cones = [], [], []
        self.cost, self.products = [], []

    def column(self, lb=0.0, ub=math.inf, kind="C"):
        self.columns.append((lb, ub, kind))
        return len(self.columns) - 1

    def row(self, linear, sense, rhs, products=()):
        self.rows.append((list(linear), list(products), sense, rhs))

    def model(self, env):
        m = zelvanpy.Model(env=env)
        x = [m.addVar(lb=lb, ub=ub, vtype=kind) for lb, ub, kind in self.columns]

        def expression(linear, products):
            return zelvanpy.quicksum([v * x[i] * x[j] for v, i, j in products]) + zelvanpy.quicksum(
                [v * x[j] for v, j in linear]
            )

        for linear, products, sense, rhs in self.rows:
            side = expression(linear, products)
            m.addConstr(side == rhs if sense == "=" else side <= rhs)
        for t, members, weights in self.cones:
            m.addConstr(zelvanpy.quicksum([w * w * x[j] * x[j] for w, j in zip(weights, members)]) <= x[t] * x[t])
        m.setObjective(expression(self.cost, self.products))
        m.update()
        return m


def robust_portfolio(assets=500 // SHRINK, cones=50 // SHRINK, of_cone=20):
    """Gains less the deviations of groups of assets."""
    rng, m = numpy.random.default_rng(1), Instance()
    x = [m.column(ub=1.0) for _ in range(assets)]
    m.row([(1.0, j) for j in x], "=", 1.0)
    m.cost = [(-gain, j) for gain, j in zip(rng.uniform(0, 0.1, assets).tolist(), x)]
    for _ in range(cones):
        t = m.column()
        m.cost.append((0.1, t))
        members = rng.choice(assets, of_cone, replace=False)
        m.cones.append((t, [int(j) for j in members], rng.uniform(0.05, 0.3, of_cone).tolist()))
    return m


def facilities(points=100 // SHRINK, count=3):
    """Weighted distances of facilities from points and from each other."""
    rng, m = numpy.random.default_rng(2), Instance()
    places = [(m.column(-10.0, 10.0), m.column(-10.0, 10.0)) for _ in range(count)]

    def add_distance(weight, place, terms, where):
        t, offsets = m.column(), [m.column(-math.inf) for _ in place]
        for j, other, offset, at in zip(place, terms, offsets, where):
            m.row([(1.0, j), (-1.0, offset), *other], "=", float(at))
        m.cones.append((t, offsets, [1.0] * len(place)))
        m.cost.append((float(weight), t))

    for place in places:
        for point in rng.uniform(-10, 10, (points, 2)):
            add_distance(rng.uniform(0.5, 2), place, [(), ()], point)
    for place, other in zip(places, places[1:]):
        add_distance(5.0 * points**0.5, place, [[(-1.0, j)] for j in other], (0.0, 0.0))
    return m


def antenna(cones=50 // SHRINK, size=20, elements=30):
    """The largest of some norms of the excitation, which is 1 in one direction."""
    rng, m = numpy.random.default_rng(3), Instance()
    x = [m.column(-10.0, 10.0) for _ in range(elements)]
    largest = m.column()
    m.cost = [(1.0, largest)]
    m.row([(value, j) for value, j in zip(rng.standard_normal(elements).tolist(), x)], "=", 1.0)
    for _ in range(cones):
        parts = [m.column(-math.inf) for _ in range(size)]
        for part, row in zip(parts, rng.standard_normal((size, elements)).tolist()):
            m.row([(1.0, part)] + [(-value, j) for value, j in zip(row, x)], "=", 0.0)
        m.cones.append((largest, parts, [1.0] * size))
    return m


def few_assets(assets=100 // SHRINK, most=5 if timing.SHORT else 10):
    rng, m = numpy.random.default_rng(1), Instance()
    exposures, own = rng.normal(size=(assets, 10)) * 0.1, rng.uniform(0.02, 0.1, assets)
    covariance = 1e4 * (exposures @ exposures.T + numpy.diag(own**2))
    gains = rng.uniform(0, 0.1, assets).tolist()
    x = [m.column(ub=1.0) for _ in range(assets)]
    held = [m.column(ub=1.0, kind="B") for _ in range(assets)]
    m.row([(1.0, j) for j in x], "=", 1.0)
    m.row([(1.0, j) for j in held], "<", float(most))
    m.row([(-gain, j) for gain, j in zip(gains, x)], "<", -0.06)
    for j, b in zip(x, held):
        m.row([(1.0, j), (-1.0, b)], "<", 0.0)
    m.products = [
        (float(covariance[i, j]) * (1 if i == j else 2), i, j) for i in range(assets) for j in range(i, assets)
    ]
    return m


def pooling(cost, limit):
    """Two sources into a pool, a third past it, two mixtures (Haverly 1978)."""
    m = Instance()
    a, b, past_x, past_y, pool_x, pool_y = (m.column(ub=1000.0) for _ in range(6))
    sulfur, x, y = m.column(1.0, 3.0), m.column(ub=limit), m.column(ub=200.0)
    m.cost = [(6.0, a), (cost, b), (10.0, past_x), (10.0, past_y), (-9.0, x), (-15.0, y)]
    m.row([(1.0, pool_x), (1.0, pool_y), (-1.0, a), (-1.0, b)], "=", 0.0)
    m.row([(1.0, x), (-1.0, pool_x), (-1.0, past_x)], "=", 0.0)
    m.row([(1.0, y), (-1.0, pool_y), (-1.0, past_y)], "=", 0.0)
    m.row([(-3.0, a), (-1.0, b)], "=", 0.0, [(1.0, sulfur, pool_x), (1.0, sulfur, pool_y)])
    m.row([(2.0, past_x), (-2.5, x)], "<", 0.0, [(1.0, sulfur, pool_x)])
    m.row([(2.0, past_y), (-1.5, y)], "<", 0.0, [(1.0, sulfur, pool_y)])
    return m


def circles(count=5):
    """As far from each other as points of a square can be: their least squared distance."""
    m = Instance()
    x, y = ([m.column(ub=1.0) for _ in range(count)] for _ in range(2))
    least = m.column(ub=2.0)
    m.cost = [(-1.0, least)]
    for i in range(count):
        for j in range(i):
            squares = [(-1.0, u[k], u[k]) for u in (x, y) for k in (i, j)]
            m.row([(1.0, least)], "<", 0.0, squares + [(2.0, u[i], u[j]) for u in (x, y)])
    return m


def form_over_box(size=20):
    rng, m = numpy.random.default_rng(1), Instance()
    x = [m.column(ub=1.0) for _ in range(size)]
    for i in range(size):
        m.products += [(float(rng.integers(-50, 51)), x[i], x[j]) for j in range(i) if rng.random() < 0.5]
        m.cost.append((float(rng.integers(-50, 51)), x[i]))
    return m


def compare(name, instance, env, peer, bar, table):
    model = instance.model(env)
    ours, theirs = [], []
    for _ in range(REPEATS):
        model.reset()
        model.optimize()
        ours.append(model.Runtime)
        print(json.dumps(vars(instance)), file=peer.stdin, flush=True)
        seconds, objective, gap = json.loads(peer.stdout.readline())
        theirs.append(seconds)
        if model.Status != zelvanpy.ZVN.OPTIMAL or gap > 10 * GAP:
            own_gap = model.MIPGap if model.SolCount else math.inf
            return print("%-46s gaps %.2g and %.2g after %d s" % (name, own_gap, gap, SECONDS))
        assert abs(model.ObjVal - objective) <= 3 * GAP * max(1.0, abs(objective)), (model.ObjVal, objective)
    table.row(name, timing.Ratio(ours, theirs), bar)


def run(title, kind, instances, env, python):
    script = str(pathlib.Path(__file__).with_name("peer_models.py"))
    command = [python, script, kind, str(SECONDS), str(GAP)]
    peer = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
    table = timing.Table(title)
    for name, bar, instance in instances:
        compare(name, instance, env, peer, bar, table)
    peer.stdin.close()
    peer.wait()


def main():
    python = os.environ.get("ZELVAN_PEER_PYTHON")
    if not python:
        return print("not measured: ZELVAN_PEER_PYTHON names no Python with clarabel and pyscipopt")
    with zelvanpy.Env(params={"OutputFlag": 0, "TimeLimit": SECONDS, "MIPGap": GAP}) as env:
        cones = [
            ("robust portfolio, 500 assets, 50 cones", MAX_CONES, robust_portfolio()),
            ("3 facilities, 100 points each", MAX_CONES, facilities()),
            ("antenna, 50 cones of dimension 20", MAX_CONES, antenna()),
        ]
        run("second-order cones against clarabel, tolerance 1e-8", "clarabel", cones, env, python)
        others = [("Haverly %d" % k, MAX_PRODUCTS, pooling(*data)) for k, data in enumerate(HAVERLY, 1)]
        others += [
            ("5 circles in a square", MAX_PRODUCTS, circles()),
            ("bilinear form over a box, 20 columns", MAX_PRODUCTS, form_over_box()),
            ("portfolio of 10 of 100 assets", MAX_INTEGERS, few_assets()),
        ]
        run("integers and products against pyscipopt, gap 1e-4", "scip", others, env, python)


if __name__ == "__main__":
    main()
