"""Peak memory of solving a large generated model through the library against HiGHS alone, each given the same arrays
in a process of its own. Counted is what the process grew by at its peak, from before the arrays were made.

The caller either frees its arrays when they are handed over, or holds them through the solve.
"""

import pathlib
import re
import subprocess
import sys

import numpy
import timing
from highs_calls import ROWWISE, Highs
from highs_calls import lib as highs_lib
from native import Double, Environment, Handle, Int, array

COLUMNS = 20_000 if timing.SHORT else 1_000_000
GROUP, SHARED = 10, 20  # columns of one group, and of one capacity
MAX_RATIO = 1.6


def kilobytes(field):
    """A figure of this process as the kernel tells it: VmRSS now, VmHWM at its peak."""
    status = pathlib.Path("/proc/self/status").read_text()
    return int(re.search(field + r":\s+(\d+)", status).group(1))


def generate():
    """Costs, starts, indices and right-hand sides: one of each group is chosen, and each column takes from two
    capacities, some of which are scarce. The first rows are equations."""
    rng = numpy.random.default_rng(1)
    groups, capacities = COLUMNS // GROUP, 2 * COLUMNS // SHARED
    cost = rng.integers(1, 1000, COLUMNS).astype(float)
    start = numpy.concatenate([numpy.arange(groups) * GROUP, COLUMNS + numpy.arange(capacities) * SHARED])
    index = numpy.empty(3 * COLUMNS, numpy.int32)
    for part in range(3):
        order = index[part * COLUMNS : (part + 1) * COLUMNS]
        order[:] = numpy.arange(COLUMNS)
        if part:
            rng.shuffle(order)
    scarce = rng.random(capacities) < 0.05
    rhs = numpy.concatenate([numpy.ones(groups), numpy.where(scarce, 2.0, SHARED)])
    return cost, start.astype(numpy.int32), index, numpy.ones(3 * COLUMNS), rhs, groups


def address(values):
    return values.ctypes.data


def with_library(arrays):
    """Hands the model over; the answer solves it and gives the objective."""
    cost, start, index, value, rhs, groups = arrays
    env = Environment(OutputFlag=0)
    model = env.new()
    rows = len(rhs)
    senses = b"=" * groups + b"<" * (rows - groups)
    model.call("ZVNaddvars", COLUMNS, 0, None, None, None, Handle(address(cost)), None, None, None, None)
    entries = [Handle(address(values)) for values in (start, index, value)]
    model.call("ZVNaddconstrs", rows, len(index), *entries, senses, Handle(address(rhs)), None)
    model.update()

    def solve():
        model.call("ZVNoptimize")
        x = (Double * COLUMNS)()
        model.call("ZVNgetdblattrlist", b"X", COLUMNS, array(Int, range(COLUMNS)), x)
        return model.get("ObjVal")

    return solve


def with_highs(arrays):
    cost, start, index, value, rhs, groups = arrays
    highs = Highs()
    rows = len(rhs)
    lower = numpy.where(numpy.arange(rows) < groups, rhs, -numpy.inf)
    zero, infinite = numpy.zeros(COLUMNS), numpy.full(COLUMNS, numpy.inf)
    vectors = map(address, (cost, zero, infinite, lower, rhs, start, index, value))
    highs_lib.Highs_passModel(highs.handle, COLUMNS, rows, len(index), 0, ROWWISE, 0, 1, 0.0, *vectors, *[None] * 4)

    def solve():
        highs.run()
        highs.solution()
        return highs.objective()

    return solve


WAYS = {"library": with_library, "HiGHS": with_highs}


def run_one(way, holds):
    """Prints the growth in kB and the objective."""
    before = kilobytes("VmRSS")
    arrays = generate()
    solve = WAYS[way](arrays)
    if not holds:
        arrays = None
    objective = solve()
    print(kilobytes("VmHWM") - before, objective)


def measure(way, caller):
    out = subprocess.run([sys.executable, __file__, way, caller], check=True, stdout=subprocess.PIPE, text=True)
    return [float(word) for word in out.stdout.split()]


def main():
    print("Peak memory of a solve, %d columns and %d entries" % (COLUMNS, 3 * COLUMNS))
    for caller in ("frees", "holds"):
        (ours, objective), (theirs, other) = (measure(way, caller) for way in WAYS)
        assert abs(objective - other) <= 1e-6 * abs(other), (objective, other)
        ratio = ours / theirs
        verdict = "ok" if ratio <= MAX_RATIO else "OVER"
        print(
            "  caller %s its arrays: %.0f MB, HiGHS %.0f MB, ratio %.3f (at most %g) %s"
            % (caller, ours / 1024, theirs / 1024, ratio, MAX_RATIO, verdict)
        )


if __name__ == "__main__":
    if len(sys.argv) > 1:
        run_one(sys.argv[1], sys.argv[2] == "holds")
    else:
        main()
