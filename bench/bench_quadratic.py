"""Quadratic expressions against the same loops over Python floats; objectives and constraints with many quadratic terms
against the library's calls from C arrays."""

import ctypes
import os
import random
import sys

import timing
from timing import SHORT, Table, compare

import zelvanpy
from zelvanpy import Env, Model, QuadExpr, Var, quicksum

N = 20_000 if SHORT else 1_000_000


def add_in_loop(xs, ys, start):
    total = start
    for x, y in zip(xs, ys):
        total += x * y
    return total


def sums(table, cs, fs, gs, xs, ys):
    n = len(cs)
    table.row(
        "quicksum(c[i] * x[i] * y[i] for i)",
        compare(
            lambda: quicksum(cs[i] * xs[i] * ys[i] for i in range(n)),
            lambda: sum(cs[i] * fs[i] * gs[i] for i in range(n)),
            repeats=7,
            number=1,
        ),
        2.5,
    )
    table.row(
        "q += x[i] * y[i]",
        compare(lambda: add_in_loop(xs, ys, QuadExpr()), lambda: add_in_loop(fs, gs, 0.0), repeats=7, number=1),
        2.5,
    )


def memory(table, xs, ys):
    n = len(xs)
    pairs = list(zip(xs, ys))
    table.note("bytes per term of quicksum", sys.getsizeof(quicksum(x * y for x, y in pairs)) / n, 26)
    table.note("bytes per term of q += x * y", sys.getsizeof(add_in_loop(xs, ys, QuadExpr())) / n, 26)
    table.note("bytes of one product", sys.getsizeof(xs[0] * ys[0]), 150)


class Library:
    """The calls of the library for the same quadratic terms, from C arrays."""

    def __init__(self, model, q):
        n = q.size()
        self.terms = (
            n,
            (ctypes.c_int * n)(*(q.getVar1(i).index for i in range(n))),
            (ctypes.c_int * n)(*(q.getVar2(i).index for i in range(n))),
            (ctypes.c_double * n)(*(q.getCoeff(i) for i in range(n))),
        )
        get_pointer = ctypes.pythonapi.PyCapsule_GetPointer
        get_pointer.restype, get_pointer.argtypes = ctypes.c_void_p, [ctypes.py_object, ctypes.c_char_p]
        self.model = ctypes.c_void_p(get_pointer(model._cmodel, None))
        self.calls = ctypes.CDLL(os.path.join(os.path.dirname(zelvanpy.__file__), "libzelvan100.so"))

    def set_objective(self):
        self.calls.ZVNsetobjective(self.model, 0, ctypes.c_double(0.0), 0, None, None, *self.terms)

    def add_constraint(self):
        self.calls.ZVNaddqconstr(
            self.model, 0, None, None, *self.terms, ctypes.c_char(b"<"), ctypes.c_double(1.0), None
        )


def doors(table, n):
    """Each call finds the model as an update leaves it, and is undone outside the time."""
    with Env(params={"OutputFlag": 0}) as env, Model(env=env) as model:
        xs = list(model.addVars(n).values())
        model.update()
        partners = random.sample(xs, n)
        q = quicksum((i + 1.0) * x * y for i, (x, y) in enumerate(zip(xs, partners)))
        library = Library(model, q)

        def clear():
            model.setObjective(0)
            model.update()
            model.remove(model.getQConstrs())
            model.update()

        def measure(ours, theirs):
            times = ([], [])
            for _ in range(2 if SHORT else 7):
                for call, taken in zip((ours, theirs), times):
                    taken.append(timing.seconds(call))
                    clear()
            return timing.Ratio(*times)

        table.row("setObjective(q)", measure(lambda: model.setObjective(q), library.set_objective), 8)
        table.row("addConstr(q <= 1)", measure(lambda: model.addConstr(q <= 1), library.add_constraint), 8)


def main():
    random.seed(1)
    cs, fs, gs = ([random.random() for _ in range(N)] for _ in range(3))
    xs, ys = ([Var(None, i) for i in range(k * N, (k + 1) * N)] for k in range(2))
    table = Table("quadratic expressions, n = %d" % N)
    sums(table, cs, fs, gs, xs, ys)
    memory(table, xs, ys)
    doors(table, N)


if __name__ == "__main__":
    main()
