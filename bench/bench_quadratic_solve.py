"""Convex quadratic programs, beside clarabel at the same tolerance.

The other side runs in an environment of its own: ZELVAN_PEER_PYTHON names its Python, without which nothing is
measured. Each repeat solves the same program on both sides in turn, from its arrays in the solver's memory."""

import json
import os
import pathlib
import subprocess
import tempfile
import time

import numpy
import timing
from scipy import sparse

import zelvanpy

REPEATS = 2 if timing.SHORT else 3
MAX_RATIO = 3
SHRINK = 10 if timing.SHORT else 1


class Program:
    """Minimize cost'x + x'Qx over Ax = b and lb <= x <= ub, with upper triangle Q."""

    def __init__(self, cost, Q, A, b, lb=0.0, ub=numpy.inf):
        self.cost, self.Q, self.A, self.b = cost, sparse.triu(Q).tocsc(), sparse.csr_matrix(A), numpy.asarray(b)
        self.lb, self.ub = (numpy.broadcast_to(side, len(cost)).astype(float) for side in (lb, ub))

    def model(self, env):
        m = zelvanpy.Model(env=env)
        x = list(m.addVars(len(self.cost), lb=self.lb.tolist(), ub=self.ub.tolist()).values())
        terms = self.Q.tocoo()
        factors = numpy.where(terms.row == terms.col, 1.0, 2.0) * terms.data
        pairs = zip(factors.tolist(), terms.row.tolist(), terms.col.tolist())
        m.setObjective(
            zelvanpy.quicksum(v * x[i] * x[j] for v, i, j in pairs) + zelvanpy.LinExpr(self.cost.tolist(), x)
        )
        for i, side in enumerate(self.b):
            entries = slice(*self.A.indptr[i : i + 2])
            row = zelvanpy.LinExpr(self.A.data[entries].tolist(), [x[j] for j in self.A.indices[entries]])
            m.addConstr(row == side)
        m.update()
        return m

    def save(self, path):
        arrays = {"cost": self.cost, "b": self.b, "lb": self.lb, "ub": self.ub}
        for name, matrix in (("Q", self.Q), ("A", self.A.tocsc())):
            arrays.update({name + "_val": matrix.data, name + "_row": matrix.indices, name + "_start": matrix.indptr})
        numpy.savez(path, **arrays)


def factors(assets, count, rng):
    F = rng.standard_normal((assets, count)) * (rng.random((assets, count)) < 0.5)
    return F, rng.random(assets) * numpy.sqrt(count), rng.standard_normal(assets)


def portfolio(assets=1000 // SHRINK, count=30):
    """Covariances of the assets as they are, a full matrix."""
    F, own, gain = factors(assets, count, numpy.random.default_rng(1))
    return Program(-gain, F @ F.T + numpy.diag(own), numpy.ones((1, assets)), [1.0])


def portfolio_of_factors(assets=1000 // SHRINK, count=30):
    """The same with a column for each factor."""
    F, own, gain = factors(assets, count, numpy.random.default_rng(1))
    A = sparse.bmat([[numpy.ones((1, assets)), None], [F.T, -sparse.eye(count)]])
    lb = numpy.concatenate([numpy.zeros(assets), numpy.full(count, -numpy.inf)])
    cost = numpy.concatenate([-gain, numpy.zeros(count)])
    return Program(cost, sparse.diags(numpy.concatenate([own, numpy.ones(count)])), A, [1.0] + [0.0] * count, lb)


def least_squares(columns=20000 // SHRINK, rows=3000 // SHRINK):
    rng = numpy.random.default_rng(2)
    A = sparse.random(rows, columns, density=10 / columns, random_state=2, data_rvs=rng.standard_normal).tocsr()
    return Program(-2 * rng.standard_normal(columns), sparse.eye(columns), A, A @ rng.random(columns))


def support_vectors(points=2000 // SHRINK, dimensions=20):
    rng = numpy.random.default_rng(3)
    X = rng.standard_normal((points, dimensions))
    labels = numpy.sign(X[:, 0] + 0.3 * rng.standard_normal(points))
    X *= labels[:, None]
    return Program(-numpy.ones(points), 0.5 * X @ X.T, labels[None, :], [0.0], ub=1.0)


def radial_support_vectors(points=1000 // SHRINK, dimensions=5):
    """With a kernel of full rank."""
    rng = numpy.random.default_rng(4)
    X = rng.standard_normal((points, dimensions))
    labels = numpy.sign(X[:, 0] * X[:, 1] + 0.3 * rng.standard_normal(points))
    distances = ((X[:, None] - X[None]) ** 2).sum(2)
    kernel = numpy.exp(-distances / 2) * numpy.outer(labels, labels)
    return Program(-numpy.ones(points), 0.5 * kernel, labels[None, :], [0.0], ub=1.0)


PROGRAMS = {
    "portfolio, 1000 assets, covariances": portfolio,
    "portfolio, 1000 assets, 30 factors": portfolio_of_factors,
    "least squares, 20000 columns, 3000 equations": least_squares,
    "support vectors, 2000 points, linear": support_vectors,
    "support vectors, 1000 points, radial": radial_support_vectors,
}


def compare(name, program, env, peer, table):
    with tempfile.TemporaryDirectory() as folder:
        path = str(pathlib.Path(folder, "program.npz"))
        program.save(path)
        model = program.model(env)
        ours, theirs = [], []
        for _ in range(REPEATS):
            model.reset()
            begin = time.process_time()
            model.optimize()
            ours.append(time.process_time() - begin)
            print(path, file=peer.stdin, flush=True)
            seconds, expected = json.loads(peer.stdout.readline())
            theirs.append(seconds)
            assert abs(model.ObjVal - expected) <= 1e-7 * max(1.0, abs(expected)), (model.ObjVal, expected)
    table.row(name, timing.Ratio(ours, theirs), MAX_RATIO)


def main():
    python = os.environ.get("ZELVAN_PEER_PYTHON")
    if not python:
        return print("not measured: ZELVAN_PEER_PYTHON names no Python with clarabel")
    peer = subprocess.Popen(
        [python, str(pathlib.Path(__file__).with_name("peer_clarabel.py"))],
        stdin=subprocess.PIPE,
        stdout=subprocess.PIPE,
        text=True,
    )
    table = timing.Table("convex quadratic programs against clarabel, tolerance 1e-8")
    with zelvanpy.Env(params={"OutputFlag": 0}) as env:
        for name, build in PROGRAMS.items():
            compare(name, build(), env, peer, table)
    peer.stdin.close()
    peer.wait()


if __name__ == "__main__":
    main()
