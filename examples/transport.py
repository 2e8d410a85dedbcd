"""Goods from plants to towns at least freight cost: a linear model with a supply row for each plant and a demand row
for each town. Only pairs with a road get a variable."""

import zelvanpy as zp

SUPPLY = {"Harbour": 350, "Mill": 600, "Quarry": 250}
DEMAND = {"Ashby": 325, "Brook": 300, "Castle": 275, "Dale": 150}
ROADS, FREIGHT = zp.multidict(
    {
        ("Harbour", "Ashby"): 2.5,
        ("Harbour", "Brook"): 1.7,
        ("Harbour", "Castle"): 1.8,
        ("Mill", "Ashby"): 2.4,
        ("Mill", "Castle"): 1.4,
        ("Mill", "Dale"): 2.0,
        ("Quarry", "Brook"): 2.1,
        ("Quarry", "Dale"): 1.2,
    }
)


def solve():
    with zp.Env(params={"OutputFlag": 0}) as env, zp.Model("transport", env=env) as m:
        tons = m.addVars(ROADS, obj=FREIGHT, name="tons")
        supply = m.addConstrs((tons.sum(p, "*") <= SUPPLY[p] for p in SUPPLY), name="supply")
        m.addConstrs((tons.sum("*", t) >= DEMAND[t] for t in DEMAND), name="demand")
        m.optimize()

        print("Freight costs %.1f in all." % m.ObjVal)
        for plant, town in ROADS:
            if tons[plant, town].X > 1e-9:
                print("  %5.0f tons from %s to %s" % (tons[plant, town].X, plant, town))
        for plant in SUPPLY:
            spare = supply[plant].Slack
            print("%s %s" % (plant, "is used up" if spare < 1e-9 else "keeps %.0f tons" % spare))
        return m.ObjVal


if __name__ == "__main__":
    solve()
