"""Ctrl-C while HiGHS presolves: seconds from the signal to the end of the solve.

The model is generated such that its presolve, which probes for long, takes about ten seconds; that is measured first.
Each solve runs in a process of its own, which sends itself the signal some time after presolve began."""

import os
import random
import signal
import subprocess
import sys
import threading
import time

import timing

import zelvanpy
from zelvanpy import ZVN

COLUMNS, ROWS, SIZE = (6000, 200, 300) if timing.SHORT else (24000, 400, 700)
SHARES = (0.1, 0.3, 0.6)  # of the presolve, after which the signal comes
MOST_SECONDS = 3.0


def partitioning(env):
    """Each of many large random sets of binaries has one of them at 1."""
    rng = random.Random(1)
    m = zelvanpy.Model(env=env)
    x = m.addVars(COLUMNS, vtype=ZVN.BINARY, obj=[rng.randrange(1, 100) for _ in range(COLUMNS)]).values()
    m.addConstrs(zelvanpy.quicksum(rng.sample(x, SIZE)) == 1 for _ in range(ROWS))
    return m


class Watch:
    """Stands in for sys.stdout: notes when presolve began and ended, and has a signal sent after a delay."""

    def __init__(self, delay):
        self.delay, self.begin, self.end, self.sent = delay, None, None, None

    def write(self, text):
        if "Presolving model" in text:
            self.begin = time.time()
            if self.delay is not None:
                threading.Timer(self.delay, self.send).start()
        elif "Solving report" in text:
            self.end = time.time()

    def send(self):
        self.sent = time.time()
        os.kill(os.getpid(), signal.SIGINT)

    def flush(self):
        pass


def run_one(delay):
    """Prints how long presolve took, or with a delay how long the solve went on after the signal."""
    signal.signal(signal.SIGINT, signal.default_int_handler)  # ignored in a shell's background
    env = zelvanpy.Env(empty=True)
    env.start()
    m = partitioning(env)
    m.Params.NodeLimit = 0
    out, sys.stdout = sys.stdout, Watch(delay)
    m.optimize()
    watch, sys.stdout = sys.stdout, out
    assert delay is None or (watch.sent and m.Status == ZVN.INTERRUPTED), m.Status
    print(watch.end - watch.begin if delay is None else time.time() - watch.sent)


def measure(delay):
    run = subprocess.run([sys.executable, __file__, str(delay)], check=True, stdout=subprocess.PIPE, text=True)
    return float(run.stdout)


def main():
    presolve = measure("never")
    print("Ctrl-C in presolve, which takes %.1f s" % presolve)
    for share in SHARES:
        seconds = measure(share * presolve)
        verdict = "ok" if seconds <= MOST_SECONDS else "OVER"
        print("  after %.1f s: ended %.2f s later (at most %g) %s" % (share * presolve, seconds, MOST_SECONDS, verdict))


if __name__ == "__main__":
    if len(sys.argv) > 1:
        run_one(None if sys.argv[1] == "never" else float(sys.argv[1]))
    else:
        main()
