"""Linear expressions against the same loops over Python floats."""

import gc
import operator
import random
import sys

from timing import SHORT, Table, compare

from zelvanpy import Env, LinExpr, Model, Var, quicksum

N = 20_000 if SHORT else 1_000_000


def add_in_loop(cs, xs, start):
    e = start
    for c, x in zip(cs, xs):
        e += c * x
    return e


def compare_in_loop(xs):
    for i in range(len(xs) - 2):
        kept = xs[i] + 2 * xs[i + 1] - xs[i + 2] <= 1
    return kept


def add_out_of_place(xs, n):
    e = LinExpr()
    for i in range(n):
        e = e + xs[i]
    return e


def keep(cs, xs):
    kept = []
    for c, x in zip(cs, xs):
        kept.append(c * x + 1)
    return kept


def keep_constraints(xs):
    return [x + y <= 1 for x, y in zip(xs, reversed(xs))]


def with_collector(function):
    """The time of a call with the collector on."""

    def call():
        gc.enable()
        function()

    return call


def sums(table, cs, fs, xs):
    n = len(xs)
    table.row(
        "quicksum(c[i] * x[i] for i)",
        compare(lambda: quicksum(cs[i] * xs[i] for i in range(n)), lambda: sum(cs[i] * fs[i] for i in range(n))),
        1.7,
    )
    table.row("quicksum(list of Var)", compare(lambda: quicksum(xs), lambda: sum(fs)), 2.0)
    table.row(
        "e += c[i] * x[i]",
        compare(lambda: add_in_loop(cs, xs, LinExpr()), lambda: add_in_loop(cs, fs, 0.0)),
        2.2,
    )
    table.row("x[i] + 2*x[i+1] - x[i+2] <= 1", compare(lambda: compare_in_loop(xs), lambda: compare_in_loop(fs)), 6)
    m = n // 10
    table.row(
        "e = e + x[i], 2n against n",
        compare(lambda: add_out_of_place(xs, 2 * m), lambda: add_out_of_place(xs, m), number=1),
        2.3,
    )


def memory(table, cs, xs):
    n = len(xs)
    table.note("bytes per term of quicksum", sys.getsizeof(quicksum(xs)) / n, 17)
    table.note("bytes per term of e += x", sys.getsizeof(add_in_loop(cs, xs, LinExpr())) / n, 17)
    table.note("bytes of an empty LinExpr", sys.getsizeof(LinExpr()), 112)
    table.note("bytes of two terms", sys.getsizeof(xs[0] + xs[1]), 112)


def collector(table, cs, xs):
    for name, function in (("expressions", lambda: keep(cs, xs)), ("constraints", lambda: keep_constraints(xs))):
        ratio = compare(with_collector(function), function, repeats=5, number=1)
        table.row("collector on, %s kept" % name, ratio, 1.3)


def value(table, model, cs):
    xs = list(model.addVars(len(cs), ub=1.0).values())
    e = LinExpr(cs, xs)
    model.setObjective(e)
    model.optimize()
    values = [x.X for x in xs]
    table.row("e.getValue()", compare(e.getValue, lambda: sum(map(operator.mul, cs, values))), 2.0)


def main():
    random.seed(1)
    cs = [random.random() for _ in range(N)]
    fs = [random.random() for _ in range(N)]
    xs = [Var(None, i) for i in range(N)]
    table = Table("linear expressions, n = %d" % N)
    sums(table, cs, fs, xs)
    memory(table, cs, xs)
    collector(table, cs, xs)
    with Env(params={"OutputFlag": 0}) as env, Model(env=env) as model:
        value(table, model, cs)


if __name__ == "__main__":
    main()
