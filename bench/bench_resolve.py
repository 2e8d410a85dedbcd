"""Solving again after one change, through the library and by the same calls of HiGHS' C interface.

Each change is made, solved and undone again, which is solved too; values and duals are fetched each time. What is
compared is the processor time of all solves after a change of one kind, undone ones apart, and the simplex
iterations of all. Optional arguments: names of instances."""

import ctypes
import random
import sys
import time

import highs_calls
import timing
from highs_calls import Arrays, Double, Highs, Int
from highs_calls import lib as highs_lib
from native import Environment, array, lib

INSTANCES = ["adlittle.mps"] if timing.SHORT else ["25fv47.mps", "80bau3b.mps"]
CHANGES, REPEATS = (10, 2) if timing.SHORT else (200, 3)
MAX_RATIO = 1.10
INFINITY = float("inf")
LESS, CONTINUOUS = ctypes.c_char(b"<"), ctypes.c_char(b"C")


class Library:
    """A model solved through the library, and its changes."""

    def __init__(self, env, path, m):
        self.model = env.read(path)
        self.cols, self.rows = m.cols, m.rows
        self.x, self.pi = (Double * m.cols)(), (Double * m.rows)()
        self.every_col, self.every_row = array(Int, range(m.cols)), array(Int, range(m.rows))
        self.iterations = 0

    def close(self):
        lib.ZVNfreemodel(self.model.handle)

    def solve(self):
        self.model.call("ZVNoptimize")
        # Not there where a change made the model infeasible.
        lib.ZVNgetdblattrlist(self.model.handle, b"X", self.cols, self.every_col, self.x)
        lib.ZVNgetdblattrlist(self.model.handle, b"Pi", self.rows, self.every_row, self.pi)
        self.iterations += int(self.model.get("IterCount"))

    def set(self, attr, index, value):
        self.model.call("ZVNsetdblattrelement", attr, index, Double(value))

    def set_side(self, row, lower, upper):
        self.set(b"RHS", row, upper if lower == -INFINITY else lower)

    def set_upper(self, col, lower, upper):
        self.set(b"UB", col, upper)

    def set_cost(self, col, cost):
        self.set(b"Obj", col, cost)

    def add_row(self, ind, val, upper):
        self.model.call("ZVNaddconstr", len(ind), ind, val, LESS, Double(upper), None)

    def delete_row(self):
        self.model.call("ZVNdelconstrs", 1, array(Int, [self.rows]))

    def add_col(self, ind, val, cost):
        self.model.call("ZVNaddvar", len(ind), ind, val, Double(cost), Double(0.0), Double(1.0), CONTINUOUS, None)

    def delete_col(self):
        self.model.call("ZVNdelvars", 1, array(Int, [self.cols]))


class Direct:
    """The same with HiGHS alone."""

    def __init__(self, m):
        self.highs = Highs()
        self.highs.load(m)
        self.cols, self.rows = m.cols, m.rows
        self.iterations = 0

    def close(self):
        self.highs.__exit__()

    def solve(self):
        self.highs.run()
        self.x, _, _, self.pi = self.highs.solution()
        self.iterations += self.highs.iterations()

    def call(self, function, *arguments):
        assert getattr(highs_lib, function)(self.highs.handle, *arguments) in (0, 1), function

    def set_side(self, row, lower, upper):
        self.call("Highs_changeRowBounds", row, lower, upper)

    def set_upper(self, col, lower, upper):
        self.call("Highs_changeColBounds", col, lower, upper)

    def set_cost(self, col, cost):
        self.call("Highs_changeColCost", col, cost)

    def add_row(self, ind, val, upper):
        self.call("Highs_addRow", -INFINITY, upper, len(ind), ind, val)

    def delete_row(self):
        self.call("Highs_deleteRowsByRange", self.rows, self.rows)

    def add_col(self, ind, val, cost):
        self.call("Highs_addCol", cost, 0.0, 1.0, len(ind), ind, val)

    def delete_col(self):
        self.call("Highs_deleteColsByRange", self.cols, self.cols)


def moved(rng, value, share=0.05):
    """A value a little off, by some share of it or of 1."""
    return value + rng.uniform(-share, share) * max(1.0, abs(value))


class Changes:
    """Random changes of a model, each a pair: what does it and what undoes it, as method and arguments."""

    def __init__(self, m, x, pi):
        self.m, self.x, self.pi = m, x, pi
        self.rng = random.Random(1)
        self.used = [j for j in range(m.cols) if x[j] > 1e-3]
        self.one_sided = [i for i in range(m.rows) if m.row_lower[i] == m.row_upper[i] or self.open(i)]

    def open(self, row):
        return INFINITY in (-self.m.row_lower[row], self.m.row_upper[row])

    def side(self):
        row = self.rng.choice(self.one_sided)
        lower, upper = self.m.row_lower[row], self.m.row_upper[row]
        value = moved(self.rng, upper if lower == -INFINITY else lower)
        sides = [value if side in (lower, upper) and abs(side) < INFINITY else side for side in (lower, upper)]
        return ("set_side", row, *sides), ("set_side", row, lower, upper)

    def bound(self):
        col = self.rng.choice(self.used)
        lower, upper = self.m.lb[col], self.m.ub[col]
        value = max(lower, 0.95 * self.x[col])
        return ("set_upper", col, lower, value), ("set_upper", col, lower, upper)

    def cost(self):
        col = self.rng.randrange(self.m.cols)
        return ("set_cost", col, moved(self.rng, self.m.cost[col], 0.2)), ("set_cost", col, self.m.cost[col])

    def row(self):
        cols = sorted(self.rng.sample(self.used, 5))
        upper = 0.98 * sum(self.x[j] for j in cols)
        return ("add_row", array(Int, cols), array(Double, [1.0] * 5), upper), ("delete_row",)

    def column(self):
        rows = sorted(self.rng.sample(range(self.m.rows), 5))
        values = [self.rng.choice([-1.0, 1.0]) for _ in rows]
        priced = sum(self.pi[i] * value for i, value in zip(rows, values))
        return ("add_col", array(Int, rows), array(Double, values), priced - 0.05 * abs(priced)), ("delete_col",)


KINDS = [  # the change, and what it and its undoing are called
    ("side", "right-hand side", None),
    ("bound", "bound", None),
    ("cost", "cost", None),
    ("row", "added row", "deleted row"),
    ("column", "added column", None),
]


def apply(solver, change):
    """Processor time of one change and its solve."""
    name, *arguments = change
    start = time.process_time()
    getattr(solver, name)(*arguments)
    solver.solve()
    return time.process_time() - start


def run(env, path, m, changes):
    """Times of the changes and of the undoings, through the library and HiGHS, and both counts of iterations."""
    solvers = Library(env, path, m), Direct(m)
    for solver in solvers:
        solver.solve()
        solver.iterations = 0
    times = [[0.0, 0.0], [0.0, 0.0]]
    for pair in changes:
        for step, change in enumerate(pair):
            for which, solver in enumerate(solvers):
                times[step][which] += apply(solver, change)
    counts = [solver.iterations for solver in solvers]
    for solver in solvers:
        solver.close()
    return times, counts


def measure(table, env, path):
    m = Arrays.read(path)
    base = Direct(m)
    base.solve()
    random_changes = Changes(m, base.x, base.pi)
    base.close()
    for kind, done, undone in KINDS:
        changes = [getattr(random_changes, kind)() for _ in range(CHANGES)]
        runs = [run(env, path, m, changes) for _ in range(REPEATS)]
        for step, name in enumerate((done, undone)):
            if name:
                pairs = [times[step] for times, _ in runs]
                table.row("%s, %s" % (path.name, name), timing.Ratio(*zip(*pairs)), bar=MAX_RATIO, per=CHANGES)
        print("  simplex iterations %d, HiGHS %d" % tuple(runs[-1][1]))


def main():
    env = Environment(OutputFlag=0, DualReductions=0)
    table = timing.Table("solving again after one of %d changes, against HiGHS" % CHANGES)
    for path in highs_calls.instances(sys.argv[1:] or INSTANCES):
        measure(table, env, path)
    env.close()


if __name__ == "__main__":
    main()
