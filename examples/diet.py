"""The cheapest diet that covers the daily needs: a linear model of foods and nutrients.

Stigler's question in a small form: buy portions of each food so that energy, protein and calcium lie within their
daily ranges at least cost. The dual values tell what one more unit of each need would cost.
"""

import zelvanpy as zp
from zelvanpy import ZVN

NEEDS, LOWEST, HIGHEST = zp.multidict(
    {
        "energy (kcal)": [2000, 2600],
        "protein (g)": [60, ZVN.INFINITY],
        "calcium (mg)": [800, 1600],
    }
)

FOODS, PRICE, MOST = zp.multidict(
    {
        "oats": [0.15, 4],
        "chicken": [1.30, 3],
        "eggs": [0.55, 2],
        "milk": [0.35, 8],
        "bread": [0.20, 6],
        "beans": [0.40, 2],
    }
)

CONTENT = {
    "oats": (150, 5, 20),
    "chicken": (230, 32, 12),
    "eggs": (160, 13, 54),
    "milk": (160, 8, 285),
    "bread": (210, 7, 40),
    "beans": (260, 14, 80),
}


def solve():
    with zp.Env(params={"OutputFlag": 0}) as env, zp.Model("diet", env=env) as m:
        portions = m.addVars(FOODS, ub=MOST, obj=PRICE, name="portions")
        content = {(food, need): CONTENT[food][i] for food in FOODS for i, need in enumerate(NEEDS)}
        rows = {}
        for need in NEEDS:
            total = zp.quicksum(content[food, need] * portions[food] for food in FOODS)
            rows[need] = m.addConstr(total >= LOWEST[need], name=need)
            if HIGHEST[need] < ZVN.INFINITY:
                m.addConstr(total <= HIGHEST[need], name="at most " + need)
        m.optimize()

        print("A day's food costs %.2f:" % m.ObjVal)
        for food in FOODS:
            if portions[food].X > 1e-9:
                print("  %4.2f portions of %s" % (portions[food].X, food))
        for need in NEEDS:
            if rows[need].Pi > 1e-9:
                print("One more %s would cost %.5f" % (need, rows[need].Pi))
        return m.ObjVal


if __name__ == "__main__":
    solve()
