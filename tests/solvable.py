"""Models for the tests of solving, and a listener to their log."""

import random
import re

import zelvanpy
from zelvanpy import ZVN


def knapsacks(env, items=60, rows=5, seed=0):
    """Maximize over several knapsacks: found quickly, proved after minutes at 60 items."""
    rng = random.Random(seed)
    weights = [[rng.randrange(100, 1000) for _ in range(items)] for _ in range(rows)]
    m = zelvanpy.Model("knapsacks", env=env)
    x = m.addVars(items, vtype=ZVN.BINARY, name="x")
    gains = {j: sum(w[j] for w in weights) / rows + rng.randrange(100) for j in range(items)}
    m.setObjective(x.prod(gains), ZVN.MAXIMIZE)
    for w in weights:
        m.addConstr(x.prod(dict(enumerate(w))) <= sum(w) // 2)
    m.update()
    return m


def assignment(env, size=40, seed=0):
    """A degenerate LP of some hundred simplex iterations."""
    rng = random.Random(seed)
    m = zelvanpy.Model("assignment", env=env)
    x = m.addVars(size, size, obj={(i, j): rng.randrange(1000) for i in range(size) for j in range(size)})
    m.addConstrs(x.sum(i, "*") == 1 for i in range(size))
    m.addConstrs(x.sum("*", j) == 1 for j in range(size))
    m.update()
    return m


# A line of the search with a gap: a first solution is there, the proof is not.
FOUND = r"\d%.*\d%"


class Listener:
    """Stands in for sys.stdout and calls `react` with each text from the first one on that the pattern is found in."""

    def __init__(self, pattern, react):
        self.pattern, self.react, self.text, self.heard = re.compile(pattern), react, "", False

    def write(self, text):
        self.text += text
        self.heard = self.heard or bool(self.pattern.search(text))
        if self.heard:
            self.react()

    def flush(self):
        pass
