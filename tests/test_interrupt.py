"""Stopping a solve from outside: terminate, Ctrl-C, calls while it runs."""

import gc
import os
import random
import signal
import subprocess
import sys
import threading
import time
import weakref

import pytest
from solvable import assignment, knapsacks

import zelvanpy
from zelvanpy import ZVN, ZelvanError

# Solves until Ctrl-C, then shows that Python's own handler is back and nothing is left to happen.
CHILD = """
import os, signal, sys, threading, time
sys.path[:0] = {path!r}
import zelvanpy
from solvable import knapsacks
{before}
env = zelvanpy.Env(empty=True)
env.setParam("OutputFlag", 0)
env.start()
m = knapsacks(env)
m.Params.TimeLimit = 60
handler = signal.getsignal(signal.SIGINT)
threading.Timer(0.7, os.kill, (os.getpid(), signal.SIGINT)).start()
start = time.time()
m.optimize()
print(m.Status, m.SolCount > 0, time.time() - start < 30, signal.getsignal(signal.SIGINT) is handler, flush=True)
try:
    time.sleep(0.3)
    print("quiet", flush=True)
    os.kill(os.getpid(), signal.SIGINT)
    time.sleep(5)
    print("nothing")
except KeyboardInterrupt:
    print("KeyboardInterrupt")
"""


@pytest.fixture(autouse=True)
def heard_interrupt():
    """A shell that runs the tests in the background has them, and what they start, ignore the interrupt."""
    before = signal.signal(signal.SIGINT, signal.default_int_handler)
    yield
    signal.signal(signal.SIGINT, before)


def run_child(before=""):
    program = CHILD.format(path=sys.path, before=before)
    return (
        subprocess.run([sys.executable, "-c", program], stdout=subprocess.PIPE, timeout=120).stdout.decode().split("\n")
    )


def test_interrupt_key_stops_the_solve_alone():
    assert run_child()[:3] == ["11 True True True", "quiet", "KeyboardInterrupt"]


def test_ignored_interrupt_stays_ignored():
    lines = run_child("signal.signal(signal.SIGINT, signal.SIG_IGN); threading.Timer(2, lambda: m.terminate()).start()")
    assert lines[:3] == ["11 True True True", "quiet", "nothing"]


def test_terminate_from_another_thread(env_silent):
    m = knapsacks(env_silent)
    m.Params.TimeLimit = 60
    m.terminate()  # nothing runs: without effect
    timer = threading.Timer(0.7, m.terminate)
    timer.start()
    m.optimize()
    timer.join()
    assert m.Status == ZVN.INTERRUPTED and m.SolCount > 0 and m.Runtime < 30
    m.Params.NodeLimit = 1
    m.optimize()
    assert m.Status == ZVN.NODE_LIMIT


def test_several_solves_stop_at_one_interrupt(env_silent):
    models = [knapsacks(env_silent, seed=seed) for seed in range(2)]
    for m in models:
        m.Params.TimeLimit = 60
    threads = [threading.Thread(target=m.optimize) for m in models]
    handler = signal.getsignal(signal.SIGINT)
    for thread in threads:
        thread.start()
    while not all(m.Status == ZVN.INPROGRESS for m in models):
        time.sleep(0.05)
    time.sleep(0.5)
    os.kill(os.getpid(), signal.SIGINT)
    for thread in threads:
        thread.join()
    assert [m.Status for m in models] == [ZVN.INTERRUPTED] * 2
    assert signal.getsignal(signal.SIGINT) is handler


def test_calls_on_a_model_that_is_being_solved(env_silent):
    m = knapsacks(env_silent)
    m.Params.TimeLimit = 60
    thread = threading.Thread(target=m.optimize)
    thread.start()
    while m.Status != ZVN.INPROGRESS:
        time.sleep(0.01)
    with pytest.raises(ZelvanError) as caught:
        m.update()
    assert caught.value.errno == ZVN.ERROR_OPTIMIZATION_IN_PROGRESS
    m.terminate()
    thread.join()
    assert m.Status == ZVN.INTERRUPTED


class Reader:
    """Stands in for sys.stdout and calls `react` with each text from the first one on that holds `trigger`."""

    def __init__(self, trigger, react):
        self.trigger, self.react, self.text = trigger, react, ""

    def write(self, text):
        self.text += text
        if self.trigger in self.text:
            self.react()

    def flush(self):
        pass


@pytest.fixture
def env_loud():
    env = zelvanpy.Env(empty=True)
    env.start()
    yield env
    env.dispose()


def test_terminate_during_presolve(env_loud, monkeypatch):
    rng = random.Random(1)
    m = zelvanpy.Model(env=env_loud)
    x = m.addVars(12000, vtype=ZVN.BINARY, obj={j: rng.randrange(1, 100) for j in range(12000)})
    m.addConstrs(zelvanpy.quicksum(x[j] for j in rng.sample(range(12000), 500)) == 1 for _ in range(300))
    log = Reader("Presolving model", m.terminate)
    monkeypatch.setattr(sys, "stdout", log)
    m.optimize()
    assert m.Status == ZVN.INTERRUPTED
    # The size is told a second time when probing, which takes seconds, is done.
    assert log.text.count("300 rows, 12000 cols") <= 1
    # The stop holds for that solve alone.
    m.Params.NodeLimit = 0
    m.remove(m.getConstrs()[5:])
    monkeypatch.setattr(log, "trigger", "never")
    m.optimize()
    assert m.Status in (ZVN.OPTIMAL, ZVN.NODE_LIMIT)


class Ring:
    """Holds a model and itself, so that only a collection frees them."""

    def __init__(self, model):
        self.model, self.ring = model, self


@pytest.mark.parametrize("collected", [False, True])
def test_models_freed_while_another_is_solved(env_silent, env_loud, monkeypatch, collected):
    solved = [assignment(env_silent, 6) for _ in range(6)]
    for m in solved:
        m.optimize()
    m = knapsacks(env_loud, items=40)
    m.Params.NodeLimit = 200
    freed = []
    if collected:
        rings = [Ring(one) for one in solved]
        for ring in rings:
            weakref.finalize(ring, freed.append, None)
        solved = ring = rings = None

    def react():
        if collected:
            gc.collect()
        elif solved:
            freed.append(solved.pop().dispose())

    monkeypatch.setattr(sys, "stdout", Reader("BestSol", react))
    gc.disable()
    m.optimize()
    gc.enable()
    assert len(freed) == 6 and m.Status in (ZVN.NODE_LIMIT, ZVN.OPTIMAL)
    again = knapsacks(env_silent, items=20)
    again.optimize()
    assert again.Status == ZVN.OPTIMAL
