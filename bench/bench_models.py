"""Whole models: time from nothing to the model inside the library, and the peak memory it took, each in a process
of its own. The baseline of the ratio is a loop that makes one float sum for each matrix entry."""

import random
import resource
import subprocess
import sys
import time

import timing

MODELS = {}


def model(name):
    def register(function):
        MODELS[name] = function
        return function

    return register


@model("facility location 100 x 100")
def facility_100(zp, m):
    facility(zp, m, 100)


@model("facility location 200 x 200")
def facility_200(zp, m):
    facility(zp, m, 200)


def facility(zp, m, size):
    cost = {(i, j): random.random() for i in range(size) for j in range(size)}
    opened = m.addVars(size, vtype="B", obj=10.0, name="open")
    served = m.addVars(size, size, obj=cost, name="serve")
    m.addConstrs((served.sum("*", j) == 1 for j in range(size)), name="demand")
    m.addConstrs((served[i, j] <= opened[i] for i in range(size) for j in range(size)), name="use")


@model("p-median 1000 customers, 100 sites")
def p_median(zp, m):
    customers, sites = 1000, 100
    assign = m.addVars(customers, sites, vtype="B")
    chosen = m.addVars(sites, vtype="B")
    distance = {key: random.random() for key in assign}
    m.addConstr(chosen.sum() == 20)
    m.addConstrs(assign.sum(c, "*") == 1 for c in range(customers))
    m.addConstrs(assign[c, s] <= chosen[s] for c in range(customers) for s in range(sites))
    m.setObjective(assign.prod(distance))


@model("n-queens 300")
def n_queens(zp, m):
    n = 300
    x = m.addVars(n, n, vtype="B")
    m.addConstrs(x.sum(i, "*") == 1 for i in range(n))
    m.addConstrs(x.sum("*", j) == 1 for j in range(n))
    for d in range(1 - n, n):
        m.addConstr(zp.quicksum(x[i, i - d] for i in range(max(0, d), min(n, n + d))) <= 1)
        m.addConstr(zp.quicksum(x[i, n - 1 - i + d] for i in range(max(0, d), min(n, n + d))) <= 1)
    m.setObjective(x.sum(), zp.ZVN.MAXIMIZE)


@model("multi-commodity flow 60 nodes, 20 goods")
def multi_commodity(zp, m):
    nodes, goods = range(60), range(20)
    arcs = zp.tuplelist((i, j) for i in nodes for j in nodes if i != j)
    flow = m.addVars(goods, arcs, name="flow")
    m.addConstrs((flow.sum("*", i, j) <= 10 for i, j in arcs), name="capacity")
    m.addConstrs((flow.sum(g, "*", v) == flow.sum(g, v, "*") for g in goods for v in nodes), name="balance")
    m.setObjective(flow.prod({key: random.random() for key in flow}))


@model("knapsack 1000000 items")
def knapsack(zp, m):
    n = 1_000_000
    weight = [random.random() for _ in range(n)]
    x = m.addVars(n, vtype="B", obj=[random.random() for _ in range(n)])
    m.addConstr(zp.quicksum(weight[i] * x[i] for i in range(n)) <= n / 4)
    m.ModelSense = zp.ZVN.MAXIMIZE


def run_one(name):
    """Builds the model and prints seconds of the building, of the yardstick, entries and peak memory in MB."""
    import zelvanpy

    random.seed(1)
    m = zelvanpy.Model(env=zelvanpy.Env(params={"OutputFlag": 0}))
    start = time.process_time()
    MODELS[name](zelvanpy, m)
    m.update()
    built = time.process_time() - start
    entries = m.NumNZs
    floats = [random.random()] * 1000
    start = time.process_time()
    total = 0.0
    for i in range(entries):
        total += 2.0 * floats[i % 1000]
    yardstick = time.process_time() - start
    peak = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss / 1024
    print(built, yardstick, m.NumVars, m.NumConstrs, entries, peak)


def main():
    print("Whole models: seconds from nothing to the updated model; the ratio is to one float loop over its entries")
    print("%-40s %9s %9s %9s %8s %7s %9s" % ("", "columns", "rows", "entries", "seconds", "ratio", "peak MB"))
    names = list(MODELS)[:1] if timing.SHORT else MODELS
    for name in names:
        runs = []
        for _ in range(1 if timing.SHORT else 3):
            out = subprocess.run([sys.executable, __file__, name], check=True, stdout=subprocess.PIPE, text=True)
            runs.append([float(word) for word in out.stdout.split()])
        built, yardstick, columns, rows, entries, peak = min(runs)
        print("%-40s %9d %9d %9d %8.3f %7.2f %9.0f" % (name, columns, rows, entries, built, built / yardstick, peak))
        sys.stdout.flush()


if __name__ == "__main__":
    if len(sys.argv) > 1:
        run_one(sys.argv[1])
    else:
        main()
