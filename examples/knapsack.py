"""What to pack under a weight limit: a binary model, solved again with a side condition."""

import zelvanpy as zp
from zelvanpy import ZVN

ITEMS, VALUE, WEIGHT = zp.multidict(
    {
        "tent": [60, 3.2],
        "stove": [35, 1.1],
        "sleeping bag": [55, 1.8],
        "camera": [30, 0.9],
        "books": [12, 1.5],
        "rope": [28, 2.4],
        "food": [80, 4.0],
        "water": [75, 3.0],
    }
)
LIMIT = 11.0


def packed(take):
    return [item for item in ITEMS if take[item].X > 0.5]


def solve():
    with zp.Env(params={"OutputFlag": 0}) as env, zp.Model("knapsack", env=env) as m:
        take = m.addVars(ITEMS, vtype=ZVN.BINARY, name="take")
        m.addConstr(take.prod(WEIGHT) <= LIMIT, name="weight")
        m.setObjective(take.prod(VALUE), ZVN.MAXIMIZE)
        m.optimize()
        best = m.ObjVal
        print("Packed for a value of %g: %s" % (best, ", ".join(packed(take))))

        m.addConstr(take["stove"] >= take["food"], name="cook")
        m.addConstr(take["camera"] + take["books"] >= 1, name="leisure")
        m.optimize()
        print("With a stove for the food and some leisure, %g: %s" % (m.ObjVal, ", ".join(packed(take))))
        return best, m.ObjVal


if __name__ == "__main__":
    solve()
