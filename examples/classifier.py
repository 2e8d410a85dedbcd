"""A support vector machine: the widest strip between two clouds of points, by its dual quadratic program.

Cortes and Vapnik, "Support-vector networks", Machine Learning 20 (1995).
"""

import numpy as np

import zelvanpy as zp
from zelvanpy import ZVN

PENALTY = 10.0


def clouds(seed=2, num=40):
    """Points of the plane and their labels, 1 and -1."""
    draw = np.random.default_rng(seed)
    labels = np.repeat([1.0, -1.0], num)
    return draw.normal(0, 1, (2 * num, 2)) + 1.6 * labels[:, None], labels


def train():
    """Direction and offset of the line between the clouds."""
    points, labels = clouds()
    signed = points * labels[:, None]
    with zp.Env(params={"OutputFlag": 0}) as env, zp.Model("classifier", env=env) as m:
        weight = m.addMVar(len(labels), ub=PENALTY, name="weight")
        m.addConstr(labels @ weight == 0, "balanced")
        m.setObjective(weight.sum() - 0.5 * (weight @ (signed @ signed.T) @ weight), ZVN.MAXIMIZE)
        m.optimize()
        found = weight.X
    direction = signed.T @ found
    inside = (found > 1e-4) & (found < PENALTY - 1e-4)
    offset = np.mean(labels[inside] - points[inside] @ direction)
    wrong = (labels * (points @ direction + offset) < 0).sum()
    print("%d points support the line, %d of %d lie on the wrong side" % ((found > 1e-4).sum(), wrong, len(labels)))
    return direction, offset


if __name__ == "__main__":
    train()
