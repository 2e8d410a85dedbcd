"""The other side of bench_quadratic_models.py, run by a Python that has clarabel and pyscipopt: solves the instance on
each line of standard input, and prints the seconds that took, the objective and the relative gap."""

import json
import math
import sys
import time

TOLERANCE = 1e-8


def solve_cones(instance, seconds, gap):
    """By clarabel: equations, then what has to be at least 0, then the cones."""
    import clarabel
    import numpy
    from scipy import sparse

    n = len(instance["columns"])
    row, col, val, sides = [], [], [], []

    def add(terms, side):
        for value, j in terms:
            row.append(len(sides))
            col.append(j)
            val.append(value)
        sides.append(side)

    for wanted in "=<":
        for linear, _, sense, rhs in instance["rows"]:
            if sense == wanted:
                add(linear, rhs)
        if wanted == "=":
            equations = len(sides)
    for j, (lb, ub, _) in enumerate(instance["columns"]):
        if lb > -math.inf:
            add([(-1.0, j)], -lb)
        if ub < math.inf:
            add([(1.0, j)], ub)
    cones = [clarabel.ZeroConeT(equations), clarabel.NonnegativeConeT(len(sides) - equations)]
    for t, members, weights in instance["cones"]:
        add([(-1.0, t)], 0.0)
        for j, weight in zip(members, weights):
            add([(-weight, j)], 0.0)
        cones.append(clarabel.SecondOrderConeT(1 + len(members)))
    cost = numpy.zeros(n)
    for value, j in instance["cost"]:
        cost[j] += value
    A = sparse.csc_matrix((val, (row, col)), shape=(len(sides), n))
    settings = clarabel.DefaultSettings()
    settings.verbose = False
    settings.tol_gap_abs = settings.tol_gap_rel = settings.tol_feas = TOLERANCE
    begin = time.perf_counter()
    found = clarabel.DefaultSolver(sparse.csc_matrix((n, n)), cost, A, numpy.array(sides), cones, settings).solve()
    return time.perf_counter() - begin, found.obj_val, abs(found.obj_val - found.obj_val_dual)


def solve_any(instance, seconds, gap):
    """By pyscipopt, a quadratic objective as a row."""
    from pyscipopt import Model, quicksum

    m = Model()
    m.hideOutput()
    m.setParam("limits/gap", gap)
    m.setParam("limits/time", seconds)
    x = [
        m.addVar(lb=None if lb == -math.inf else lb, ub=None if ub == math.inf else ub, vtype=kind)
        for lb, ub, kind in instance["columns"]
    ]

    def expression(linear, products):
        return quicksum(v * x[j] for v, j in linear) + quicksum(v * x[i] * x[j] for v, i, j in products)

    for linear, products, sense, rhs in instance["rows"]:
        side = expression(linear, products)
        m.addCons(side == rhs if sense == "=" else side <= rhs)
    if instance["products"]:
        value = m.addVar(lb=None, ub=None)
        m.addCons(expression(instance["cost"], instance["products"]) <= value)
        m.setObjective(value)
    else:
        m.setObjective(expression(instance["cost"], []))
    begin = time.perf_counter()
    m.optimize()
    return time.perf_counter() - begin, m.getObjVal(), m.getGap()


def main():
    solve = {"clarabel": solve_cones, "scip": solve_any}[sys.argv[1]]
    for line in sys.stdin:
        print(json.dumps(solve(json.loads(line), float(sys.argv[2]), float(sys.argv[3]))), flush=True)


if __name__ == "__main__":
    main()
