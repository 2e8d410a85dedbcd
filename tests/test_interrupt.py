"""Stopping a solve from outside: terminate, Ctrl-C, calls while it runs."""

import gc
import os
import random
import signal
import subprocess
import sys
import threading
import weakref

import pytest
from solvable import FOUND, Listener, assignment, knapsacks

import zelvanpy
from zelvanpy import ZVN, ZelvanError

# Interrupts itself in the middle of a solve, then shows that Python's own handler is back and nothing is left.
CHILD = """
import signal, sys, threading
sys.path[:0] = {path!r}
from solvable import FOUND, Listener, knapsacks
from zelvanpy import Env

def interrupt():
    log.react = lambda: None
    signal.pthread_kill(threading.main_thread().ident, signal.SIGINT)

signal.signal(signal.SIGINT, signal.{handler})
m = knapsacks(Env(params={{"NodeLimit": 100000}}), items={items})
handler = signal.getsignal(signal.SIGINT)
log = sys.stdout = Listener(FOUND, interrupt)
m.optimize()
sys.stdout = sys.__stdout__
print(m.Status, m.SolCount > 0, signal.getsignal(signal.SIGINT) is handler, flush=True)
try:
    for _ in range(100000):
        pass
    print("quiet", flush=True)
    interrupt()
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


@pytest.mark.parametrize(
    "handler, items, status, end",
    [("default_int_handler", 60, ZVN.INTERRUPTED, "KeyboardInterrupt"), ("SIG_IGN", 20, ZVN.OPTIMAL, "nothing")],
)
def test_interrupt_key_stops_the_solve_alone_unless_it_is_ignored(handler, items, status, end):
    program = CHILD.format(path=sys.path, handler=handler, items=items)
    lines = subprocess.run([sys.executable, "-c", program], stdout=subprocess.PIPE, text=True).stdout.split("\n")
    assert lines[:3] == ["%d True True" % status, "quiet", end]


@pytest.fixture
def env_loud():
    env = zelvanpy.Env(empty=True)
    env.setParam("NodeLimit", 100000)  # in case that nothing stops the solve
    env.start()
    yield env
    env.dispose()


def test_calls_from_another_thread(env_loud, monkeypatch):
    m = knapsacks(env_loud)
    m.terminate()  # nothing runs: without effect
    running, refusals = threading.Event(), []
    monkeypatch.setattr(sys, "stdout", Listener(FOUND, running.set))

    def interfere():
        running.wait()
        refusals.append(m.Status)
        with pytest.raises(ZelvanError) as refusal:
            m.update()
        refusals.append(refusal.value.errno)
        m.terminate()

    thread = threading.Thread(target=interfere)
    thread.start()
    m.optimize()
    thread.join()
    assert refusals == [ZVN.INPROGRESS, ZVN.ERROR_OPTIMIZATION_IN_PROGRESS]
    assert m.Status == ZVN.INTERRUPTED and m.SolCount > 0
    m.Params.NodeLimit = 1
    m.optimize()
    assert m.Status == ZVN.NODE_LIMIT


def test_several_solves_stop_at_one_interrupt(env_loud, monkeypatch):
    models = [knapsacks(env_loud, seed=seed) for seed in range(2)]
    running, threads = threading.Event(), []

    def note():
        heard.add(threading.get_ident())
        if heard.issuperset(thread.ident for thread in threads):
            running.set()

    heard = set()
    monkeypatch.setattr(sys, "stdout", Listener(FOUND, note))
    threads += [threading.Thread(target=m.optimize) for m in models]
    handler = signal.getsignal(signal.SIGINT)
    for thread in threads:
        thread.start()
    running.wait()
    os.kill(os.getpid(), signal.SIGINT)
    for thread in threads:
        thread.join()
    assert [m.Status for m in models] == [ZVN.INTERRUPTED] * 2
    assert signal.getsignal(signal.SIGINT) is handler


def test_terminate_during_presolve(env_loud, monkeypatch):
    rng = random.Random(1)
    m = zelvanpy.Model(env=env_loud)
    x = m.addVars(12000, vtype=ZVN.BINARY, obj={j: rng.randrange(1, 100) for j in range(12000)})
    m.addConstrs(zelvanpy.quicksum(x[j] for j in rng.sample(range(12000), 500)) == 1 for _ in range(300))
    log = Listener("Presolving model", m.terminate)
    monkeypatch.setattr(sys, "stdout", log)
    m.optimize()
    assert m.Status == ZVN.INTERRUPTED
    # The size is told a second time when probing, which takes seconds, is done.
    assert log.text.count("300 rows, 12000 cols") <= 1
    # The stop holds for that solve alone.
    m.Params.NodeLimit = 0
    m.remove(m.getConstrs()[5:])
    monkeypatch.setattr(log, "react", lambda: None)
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

    monkeypatch.setattr(sys, "stdout", Listener("BestSol", react))
    gc.disable()
    m.optimize()
    gc.enable()
    assert len(freed) == 6 and m.Status in (ZVN.NODE_LIMIT, ZVN.OPTIMAL)
    again = knapsacks(env_silent, items=20)
    again.optimize()
    assert again.Status == ZVN.OPTIMAL
