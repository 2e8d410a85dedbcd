"""A production plan over twelve months: regular and overtime work, stock between the months, set-ups.

Shows variables over time, a range, and two objectives: first the cost, then, at no
more than one per cent above it, as few set-ups as possible.
"""

import zelvanpy as zp
from zelvanpy import ZVN

DEMAND = [120, 80, 150, 210, 260, 300, 310, 280, 190, 140, 110, 90]
MONTHS = range(len(DEMAND))
REGULAR, OVERTIME = 200, 80  # units a month
REGULAR_COST, OVERTIME_COST, STOCK_COST, SETUP_COST = 10.0, 12.0, 0.3, 150.0


def build(env):
    m = zp.Model("production", env=env)
    regular = m.addVars(MONTHS, ub=REGULAR, name="regular")
    overtime = m.addVars(MONTHS, ub=OVERTIME, name="overtime")
    stock = m.addVars(MONTHS, name="stock")
    run = m.addVars(MONTHS, vtype=ZVN.BINARY, name="run")
    m.addConstrs(
        ((stock[t - 1] if t > 0 else 100) + regular[t] + overtime[t] == DEMAND[t] + stock[t] for t in MONTHS),
        name="balance",
    )
    m.addConstrs((regular[t] + overtime[t] <= (REGULAR + OVERTIME) * run[t] for t in MONTHS), name="setup")
    m.addConstr(stock[MONTHS[-1]] == [50, 100], name="final")
    return m, regular, overtime, stock, run


def solve():
    with zp.Env(params={"OutputFlag": 0}) as env:
        m, regular, overtime, stock, run = build(env)
        with m:
            cost = (
                REGULAR_COST * regular.sum()
                + OVERTIME_COST * overtime.sum()
                + STOCK_COST * stock.sum()
                + SETUP_COST * run.sum()
            )
            m.setObjectiveN(cost, 0, priority=2, reltol=0.01, name="cost")
            m.setObjectiveN(run.sum(), 1, priority=1, name="set-ups")
            m.optimize()

            print("Cost %.0f with %d months of production:" % (cost.getValue(), round(run.sum().getValue())))
            print("  month  demand  regular  overtime  stock")
            for t in MONTHS:
                row = (t + 1, DEMAND[t], regular[t].X, overtime[t].X, stock[t].X)
                print("  %5d  %6d  %7.0f  %8.0f  %5.0f" % row)
            return cost.getValue(), run.sum().getValue()


if __name__ == "__main__":
    solve()
