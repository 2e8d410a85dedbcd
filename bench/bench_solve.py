"""Solving through the library against a call of HiGHS on the same data, with the same options.

Both hand the model over, solve it and fetch the solution, without log. The baseline is the C interface of HiGHS
through ctypes. Where HiGHS takes over 0.1 s at most 2 % more are allowed; everywhere the same nodes and iterations.
The checks of answers are part of what the library does, so the total bounds what they cost in the mean.
Optional arguments: names of instances.
"""

import sys
import time

import highs_calls
import timing

import zelvanpy

MAX_RATIO, FROM_SECONDS = 1.02, 0.1


def highs_solve(arrays, counts):
    def solve():
        with highs_calls.Highs() as highs:
            highs.load(arrays)
            highs.run()
            highs.solution()
            counts[:] = highs.nodes(), highs.iterations()

    return solve


def library_solve(model):
    def solve():
        model.reset()
        model.optimize()

    return solve


def main():
    env = zelvanpy.Env(empty=True)
    env.setParam("OutputFlag", 0)
    env.start()
    table = timing.Table("solving through the library against HiGHS")
    differing, ratios = 0, []
    for path in highs_calls.instances(sys.argv[1:]):
        m = zelvanpy.read(str(path), env)
        m.Params.DualReductions = 0  # as HiGHS by default
        theirs = []
        baseline = highs_solve(highs_calls.Arrays.read(path), theirs)
        ratio = timing.compare(library_solve(m), baseline, clock=time.process_time)
        table.row(path.name, ratio, bar=MAX_RATIO if ratio.baseline > FROM_SECONDS else None)
        ratios.append(ratio)
        ours = [int(m.NodeCount), int(m.IterCount)]
        if ours != theirs:
            differing += 1
            print("  nodes and iterations %s, HiGHS %s" % (ours, theirs))
        m.dispose()
    if ratios:
        total = sum(r.subject for r in ratios) / sum(r.baseline for r in ratios)
        table.note("all instances together, checks of answers included", total, MAX_RATIO)
    table.note("instances with other nodes or iterations", differing, 0)


if __name__ == "__main__":
    main()
