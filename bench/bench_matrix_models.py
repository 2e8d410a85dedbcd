"""Models stated in matrices: ratios against the library's own calls from the same arrays, and against a peer where
`highspy` is at hand (ZELVAN_PEER_PYTHON is not needed: it must be importable here)."""

import ctypes
import pathlib

import numpy as np
import scipy.sparse as sp
from timing import SHORT, Table, compare

import zelvanpy
from zelvanpy import Env, Model

ROWS = 1_000 if SHORT else 100_000
COLUMNS = 2_000 if SHORT else 200_000
VARIABLES = 10_000 if SHORT else 1_000_000
SIDE = 100 if SHORT else 2000

rng = np.random.default_rng(2)
env = Env(params={"OutputFlag": 0})
library = ctypes.CDLL(str(next(pathlib.Path(zelvanpy.__file__).parent.glob("libzelvan100.so"))))
pointer_of = getattr(zelvanpy, "__ptr")


def random_rows(rows, columns, entries_per_row):
    size = rows * entries_per_row
    begin = np.arange(0, size + 1, entries_per_row, dtype=np.int32)
    steps = rng.integers(1, columns // entries_per_row, (rows, entries_per_row))
    index = (np.cumsum(steps, axis=1) - 1).astype(np.int32).reshape(-1)
    return sp.csr_matrix((rng.random(size), index, begin), shape=(rows, columns))


def address(array):
    return ctypes.c_void_p(array.ctypes.data)


def with_columns(count):
    model = Model(env=env)
    x = model.addMVar(count)
    model.update()
    return model, x


def rows_by_expression(A, b):
    def run():
        model, x = with_columns(A.shape[1])
        model.addConstr(A @ x <= b)
        model.update()
        model.dispose()

    return run


def rows_by_library(A, b):
    senses = np.full(A.shape[0], ord("<"), dtype=np.uint8)

    def run():
        model, _ = with_columns(A.shape[1])
        handle = ctypes.c_void_p(pointer_of(model._cmodel))
        arrays = [address(a) for a in (A.indptr, A.indices, A.data, senses, b)]
        assert library.ZVNaddconstrs(handle, A.shape[0], ctypes.c_int(A.nnz), *arrays, None) == 0
        model.update()
        model.dispose()

    return run


def quadratic(Q):
    model, x = with_columns(Q.shape[0])
    coo = sp.coo_matrix(Q)
    row, col, data = coo.row.astype(np.int32), coo.col.astype(np.int32), coo.data
    handle = ctypes.c_void_p(pointer_of(model._cmodel))

    def by_expression():
        model.setObjective(x @ Q @ x)

    def by_library():
        Q.copy()
        call = library.ZVNsetobjective
        call.argtypes = [ctypes.c_void_p, ctypes.c_int, ctypes.c_double, ctypes.c_int, *[ctypes.c_void_p] * 2]
        call.argtypes += [ctypes.c_int, *[ctypes.c_void_p] * 3]
        assert call(handle, 0, 0.0, 0, None, None, len(data), address(row), address(col), address(data)) == 0

    return by_expression, by_library


def variables(kind, **options):
    def run():
        model = Model(env=env)
        getattr(model, kind)(VARIABLES, **options)
        model.dispose()

    return run


def peak_of_rows(A, b):
    """Bytes taken while the rows are added, over those of the arrays."""
    import resource

    model, x = with_columns(A.shape[1])
    before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
    model.addConstr(A @ x <= b)
    model.update()
    taken = (resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - before) * 1024
    return taken / (A.data.nbytes + A.indices.nbytes + A.indptr.nbytes)


def main():
    table = Table("Models in matrices")
    A, b = random_rows(ROWS, COLUMNS, 100), rng.random(ROWS)
    table.note("peak memory of rows added, over bytes of the arrays", peak_of_rows(A, b), 3)
    table.row(
        "addConstr(A @ x <= b); the library's call", compare(rows_by_expression(A, b), rows_by_library(A, b), 5), 1.6
    )
    table.row("addMVar; addVars", compare(variables("addMVar"), variables("addVars"), 5), 0.5)
    table.row("the same with a name", compare(variables("addMVar", name="x"), variables("addVars", name="x"), 5), 0.5)
    dense = rng.random((SIDE, SIDE))
    table.row("x @ Q @ x, dense, as objective; Q.copy() and call", compare(*quadratic(dense), 5), 4)
    sparse = random_rows(50 * SIDE, 50 * SIDE, 50)
    table.row("the same, sparse", compare(*quadratic(sparse), 5), 4)
    model, x = with_columns(COLUMNS)
    model.addMConstr(A, x, "<", b)
    model.update()
    table.row("getA(); csr_matrix.copy()", compare(model.getA, A.copy, 5), 2)


if __name__ == "__main__":
    main()
