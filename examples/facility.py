"""Which warehouses to open: fixed costs against freight, a mixed-integer model on random points in a square.

With matplotlib installed, a picture of the plan is written to facility.png.
"""

import math
import random

import zelvanpy as zp
from zelvanpy import ZVN

SITES, CUSTOMERS = 12, 40
FIXED_COST, CAPACITY = 1.2, 12


def apart(p, q):
    return math.hypot(p[0] - q[0], p[1] - q[1])


def instance(seed=7):
    draw = random.Random(seed)
    sites = [(draw.random(), draw.random()) for _ in range(SITES)]
    customers = [(draw.random(), draw.random()) for _ in range(CUSTOMERS)]
    distance = {(s, c): apart(sites[s], customers[c]) for s in range(SITES) for c in range(CUSTOMERS)}
    return sites, customers, distance


def solve():
    sites, customers, distance = instance()
    with zp.Env(params={"OutputFlag": 0}) as env, zp.Model("facility", env=env) as m:
        opened = m.addVars(SITES, vtype=ZVN.BINARY, obj=FIXED_COST, name="open")
        share = m.addVars(SITES, CUSTOMERS, ub=1.0, obj=distance, name="share")
        m.addConstrs((share.sum("*", c) == 1 for c in range(CUSTOMERS)), name="served")
        m.addConstrs((share.sum(s, "*") <= CAPACITY * opened[s] for s in range(SITES)), name="capacity")
        m.addConstrs((share[s, c] <= opened[s] for s in range(SITES) for c in range(CUSTOMERS)), name="link")
        m.optimize()

        chosen = [s for s in range(SITES) if opened[s].X > 0.5]
        freight = m.ObjVal - FIXED_COST * len(chosen)
        print("Open warehouses %s; freight %.3f, all costs %.3f." % (chosen, freight, m.ObjVal))
        for s in chosen:
            print("  warehouse %d serves %.1f customers" % (s, share.sum(s, "*").getValue()))
        draw_plan(sites, customers, [key for key in share if share[key].X > 0.01], chosen)
        return m.ObjVal


def draw_plan(sites, customers, links, chosen):
    try:
        import matplotlib
    except ImportError:
        return
    matplotlib.use("Agg")
    from matplotlib import pyplot

    figure, axes = pyplot.subplots(figsize=(6, 6))
    for s, c in links:
        axes.plot(*zip(sites[s], customers[c]), color="0.75", linewidth=1, zorder=1)
    axes.scatter(*zip(*customers), s=16, color="black", label="customer", zorder=2)
    axes.scatter(*zip(*sites), s=60, facecolor="white", edgecolor="tab:red", marker="s", label="site", zorder=3)
    axes.scatter(*zip(*(sites[s] for s in chosen)), s=60, color="tab:red", marker="s", label="open", zorder=4)
    axes.set_aspect("equal")
    axes.legend(loc="upper center", ncol=3, bbox_to_anchor=(0.5, 1.08), frameon=False)
    figure.savefig("facility.png", dpi=120)
    pyplot.close(figure)
    print("Picture: facility.png")


if __name__ == "__main__":
    solve()
