"""The most that flows through a network of pipes, and the pipes that limit it, from its incidence matrix."""

import numpy as np
import scipy.sparse as sp

import zelvanpy as zp
from zelvanpy import ZVN

LAYERS, WIDTH = 6, 5


def network(seed=5):
    """Tails, heads and capacities of pipes from node 0 over layers of nodes to the last one."""
    draw = np.random.default_rng(seed)
    last = LAYERS * WIDTH + 1
    layer = [np.array([0]), *np.arange(1, last).reshape(LAYERS, WIDTH), np.array([last])]
    pairs = [(a, b) for here, there in zip(layer, layer[1:]) for a in here for b in there]
    pairs = [pair for pair in pairs if 0 in pair or last in pair or draw.random() < 0.6]
    tail, head = np.array(pairs).T
    return tail, head, draw.integers(2, 20, len(pairs)).astype(float)


def solve():
    """The largest flow."""
    tail, head, capacity = network()
    pipes, last = len(tail), LAYERS * WIDTH + 1
    ends = np.concatenate([head, tail])
    signs = np.repeat([1.0, -1.0], pipes)
    incidence = sp.csr_matrix((signs, (ends, np.tile(np.arange(pipes), 2))), shape=(last + 1, pipes))
    with zp.Env(params={"OutputFlag": 0}) as env, zp.Model("network", env=env) as m:
        flow = m.addMVar(pipes, ub=capacity, name="flow")
        balance = m.addConstr(incidence[1:last] @ flow == 0, "balance")
        m.setObjective(incidence[last] @ flow, ZVN.MAXIMIZE)
        m.optimize()
        # Nodes whose price is 0 lie before the cut, the others behind it.
        behind = np.concatenate([[False], np.abs(balance.Pi) > 0.5, [True]])
        cut = ~behind[tail] & behind[head]
        print("largest flow %g through %d pipes" % (m.ObjVal, pipes))
        print("limited by %d pipes with capacity %g" % (cut.sum(), capacity[cut].sum()))
        return m.ObjVal


if __name__ == "__main__":
    solve()
