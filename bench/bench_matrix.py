"""The matrix layer: ratios against numpy and scipy on the same data, and against loops over scalars."""

import numpy as np
import scipy.sparse as sp
from timing import SHORT, Table, compare

from zelvanpy import Env, LinExpr, Model, MVar, quicksum

COLUMNS = 10_000 if SHORT else 1_000_000
ROWS = 1_000 if SHORT else 100_000
SIDE = 50 if SHORT else 1000

rng = np.random.default_rng(1)
model = Model(env=Env(params={"OutputFlag": 0}))
variables = list(model.addVars(COLUMNS).values())
model.update()
x, y = MVar.fromlist(variables), MVar.fromlist(variables[::-1])


def random_rows(entries_per_row, columns=COLUMNS):
    size = ROWS * entries_per_row
    begin = np.arange(0, size + 1, entries_per_row, dtype=np.int32)
    index = rng.integers(0, columns, size, dtype=np.int32)
    return sp.csr_matrix((rng.random(size), index, begin), shape=(ROWS, columns))


def loop_of_rows(matrix):
    """The rows of matrix @ x as expressions."""
    begin, index, data = matrix.indptr.tolist(), matrix.indices, matrix.data
    rows = []
    for first, end in zip(begin, begin[1:]):
        rows.append(LinExpr(data[first:end].tolist(), [variables[j] for j in index[first:end].tolist()]))
    return rows


def large_products(table):
    A, B, b = random_rows(100), random_rows(100), rng.random(ROWS)
    half = A[: ROWS // 2]
    table.row("A @ x, sparse; A.copy()", compare(lambda: A @ x, A.copy), 1.3)
    table.row(
        "A @ x + B @ y - b and its rows; copies of A, B, b",
        compare(lambda: (A @ x + B @ y - b)._extract_Axb(), lambda: (A.copy(), B.copy(), b.copy()), repeats=5),
        2.5,
    )
    table.row("A @ x, twice the rows; half of them", compare(lambda: A @ x, lambda: half @ x), 2.2)
    D, few = rng.random((SIDE, SIDE)), x[:SIDE]
    table.row("D @ x, dense; csr_matrix(D)", compare(lambda: D @ few, lambda: sp.csr_matrix(D)), 1.5)


def small_operators(table):
    A, b, X, Y = rng.random((5, 5)), rng.random(5), rng.random(5), rng.random(5)
    v, w = x[:5], y[:5]
    table.row("A @ x <= b, 5 x 5; numpy", compare(lambda: A @ v <= b, lambda: A @ X <= b), 15)
    table.row("x[i] + y[j] - 1; numpy", compare(lambda: v[1] + w[2] - 1, lambda: X[1] + Y[2] - 1), 15)
    table.row("x[2:4].sum(); numpy", compare(lambda: v[2:4].sum(), lambda: X[2:4].sum()), 15)


def elementwise(table):
    X, Y = rng.random(COLUMNS).astype(object), rng.random(COLUMNS).astype(object)
    table.row("2 * x + y; arrays of float objects", compare(lambda: 2 * x + y, lambda: 2 * X + Y, repeats=5), 0.5)
    table.row("the same and its rows", compare(lambda: (2 * x + y)._extract_Axb(), lambda: 2 * X + Y, repeats=5))
    square, C = x[: SIDE * SIDE].reshape(SIDE, SIDE), rng.random((SIDE, SIDE))
    lists, numbers = square.tolist(), C.tolist()

    def loop():
        return [quicksum(numbers[i][j] * lists[i][j] for i in range(SIDE)) for j in range(SIDE)]

    table.row(
        "(X * C).sum(axis=0); quicksum by column", compare(lambda: (square * C).sum(axis=0), loop, repeats=5), 0.3
    )
    A = random_rows(10, ROWS)
    e = A @ x[:ROWS]
    table.row("rows of A @ x as cells; loop of LinExpr", compare(e._to_full, lambda: loop_of_rows(A), repeats=5), 0.2)


def attributes(table):
    bounds = np.zeros(COLUMNS)
    table.row("x.LB; getAttr of the list", compare(lambda: x.LB, lambda: model.getAttr("LB", variables)), 1.1)
    table.row(
        "x.LB = array; setAttr of the list",
        compare(lambda: x.setAttr("LB", bounds), lambda: model.setAttr("LB", variables, bounds)),
        1.1,
    )


if __name__ == "__main__":
    results = Table("Matrix layer")
    small_operators(results)
    elementwise(results)
    attributes(results)
    large_products(results)
