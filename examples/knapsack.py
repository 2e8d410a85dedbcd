"""What to pack under a weight limit: a binary model, solved again with a side condition. The README's tour."""

import zelvanpy as zp
from zelvanpy import ZVN

items, value, weight = zp.multidict(  # one dict for each column of figures
    {"tent": [60, 3.2], "stove": [35, 1.1], "rope": [28, 2.4], "food": [80, 4.0], "water": [75, 3.0]}
)
m = zp.Model("knapsack", env=zp.Env(params={"OutputFlag": 0}))  # no log
take = m.addVars(items, vtype=ZVN.BINARY, name="take")
m.addConstr(take.prod(weight) <= 10, name="weight")
m.setObjective(take.prod(value), ZVN.MAXIMIZE)
m.optimize()
print("worth %g: %s" % (m.ObjVal, [i for i in items if take[i].X > 0.5]))

m.addConstr(take["rope"] >= take["tent"], name="pitch")  # no tent without a rope
take["food"].LB = 1  # changes wait for the next update, which optimize() runs
m.optimize()
print("worth %g: %s" % (m.ObjVal, [i for i in items if take[i].X > 0.5]))
for c in m.getConstrs():
    print("%s: %g to spare" % (c.ConstrName, c.Slack))
m.write("knapsack.lp")  # or .mps, .sol, .json, each also with .gz behind
