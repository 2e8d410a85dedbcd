"""The other side of bench_quadratic_solve.py, run by a Python that has clarabel: solves the program in the file that
each line of standard input names, and prints the processor seconds that took and the optimum."""

import json
import sys
import time

import clarabel
import numpy
from scipy import sparse

TOLERANCE = 1e-8


def matrix(arrays, name, rows, columns):
    parts = (arrays[name + "_val"], arrays[name + "_row"], arrays[name + "_start"])
    return sparse.csc_matrix(parts, shape=(rows, columns))


def cone_program(arrays):
    """Second derivatives, costs, rows, sides and cones: equations, then what has to be at least 0."""
    n, equations = len(arrays["cost"]), len(arrays["b"])
    Q = matrix(arrays, "Q", n, n)
    second = (Q + sparse.diags(Q.diagonal()) + (Q - sparse.diags(Q.diagonal()))).tocsc()
    upper, lower = numpy.isfinite(arrays["ub"]), numpy.isfinite(arrays["lb"])
    unit = sparse.eye(n).tocsr()
    rows = sparse.vstack([matrix(arrays, "A", equations, n), unit[upper], -unit[lower]]).tocsc()
    sides = numpy.concatenate([arrays["b"], arrays["ub"][upper], -arrays["lb"][lower]])
    cones = [clarabel.ZeroConeT(equations), clarabel.NonnegativeConeT(len(sides) - equations)]
    return sparse.triu(second).tocsc(), arrays["cost"], rows, sides, cones


def main():
    settings = clarabel.DefaultSettings()
    settings.verbose = False
    settings.tol_gap_abs = settings.tol_gap_rel = settings.tol_feas = TOLERANCE
    for line in sys.stdin:
        with numpy.load(line.strip()) as arrays:
            program = cone_program(arrays)
        begin = time.process_time()
        solution = clarabel.DefaultSolver(*program, settings).solve()
        print(json.dumps([time.process_time() - begin, solution.obj_val]), flush=True)


if __name__ == "__main__":
    main()
