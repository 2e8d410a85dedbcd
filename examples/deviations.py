"""A line through points of which some are far off: the least sum of absolute deviations, beside least squares."""

import numpy as np

import zelvanpy as zp


def measurements(seed=11, num=60, off=8):
    """Abscissas and ordinates near 1 + 2 t, the last ones spoilt."""
    draw = np.random.default_rng(seed)
    t = draw.uniform(0, 10, num)
    y = 1 + 2 * t + draw.normal(0, 0.3, num)
    y[-off:] += draw.uniform(15, 30, off)
    return t, y


def fit():
    """Intercept and slope by absolute deviations and by squares."""
    t, y = measurements()
    A = np.column_stack([np.ones_like(t), t])
    with zp.Env(params={"OutputFlag": 0}) as env, zp.Model("fit", env=env) as m:
        line = m.addMVar(2, lb=-zp.ZVN.INFINITY, name="line")
        above, below = m.addMVar(len(t), name="above"), m.addMVar(len(t), name="below")
        m.addConstr(A @ line + above - below == y)
        m.setObjective(above.sum() + below.sum())
        m.optimize()
        absolute = line.X
        error = A @ line - y
        m.setObjective(error @ error)
        m.optimize()
        squares = line.X
    print("absolute deviations: %.2f + %.2f t" % tuple(absolute))
    print("squares:             %.2f + %.2f t" % tuple(squares))
    return absolute, squares


if __name__ == "__main__":
    fit()
