"""A portfolio of shares: the least risk for each return, in matrices.

With matplotlib installed, a picture of the efficient frontier is written to portfolio.png. The model is that of
Markowitz, "Portfolio Selection", Journal of Finance 7 (1952).
"""

import numpy as np

import zelvanpy as zp

ASSETS, DAYS = 20, 250


def market(seed=3):
    """Mean returns and covariances of made-up shares that move with three common factors, in percent."""
    draw = np.random.default_rng(seed)
    factors, loads = draw.normal(0, 1, (DAYS, 3)), draw.normal(0.3, 0.5, (3, ASSETS))
    returns = draw.uniform(0.02, 0.12, ASSETS) + factors @ loads + draw.normal(0, 0.8, (DAYS, ASSETS))
    return returns.mean(axis=0), np.cov(returns.T)


def frontier(points=12):
    """Pairs of return and risk (standard deviation), from the safest portfolio to the most profitable one."""
    mean, covariance = market()
    with zp.Env(params={"OutputFlag": 0}) as env, zp.Model("portfolio", env=env) as m:
        share = m.addMVar(ASSETS, ub=0.3, name="share")
        m.addConstr(share.sum() == 1, "invested")
        gain = m.addConstr(mean @ share >= -100, "gain")
        m.setObjective(share @ covariance @ share)
        m.optimize()
        lowest = mean @ share.X
        best = np.sort(mean)[::-1]
        highest = 0.3 * best[:3].sum() + 0.1 * best[3]
        result = []
        for wanted in np.linspace(lowest, highest - 1e-6, points):
            gain.RHS = wanted
            m.optimize()
            result.append((mean @ share.X, m.ObjVal**0.5))
        print("safest: return %.3f at risk %.3f" % result[0])
        print("boldest: return %.3f at risk %.3f" % result[-1])
        print("shares held by the boldest: %d" % (share.X > 1e-4).sum())
    draw_frontier(result)
    return result


def draw_frontier(result):
    try:
        import matplotlib
    except ImportError:
        return
    matplotlib.use("Agg")
    from matplotlib import pyplot

    mean, covariance = market()
    figure, axes = pyplot.subplots(figsize=(6, 4))
    axes.scatter(np.sqrt(np.diag(covariance)), mean, s=16, color="0.6", label="single shares")
    axes.plot([risk for _, risk in result], [gain for gain, _ in result], "o-", color="tab:red", label="frontier")
    axes.set_xlabel("risk (standard deviation, %)")
    axes.set_ylabel("return (%)")
    axes.legend(frameon=False)
    figure.savefig("portfolio.png", dpi=120)
    pyplot.close(figure)
    print("Picture: portfolio.png")


if __name__ == "__main__":
    frontier()
