"""Mistakes that the types tell: one on each line that ends with `# mistake`, none anywhere else."""

import zelvanpy
from zelvanpy import ZVN

m = zelvanpy.Model("mistakes")
x = m.addVars(3, name="x")
y = m.addVar(ub=4.0)
c = m.addConstr(x[0] + y <= 1, "c")

m.Params.TimeLimt = 10  # mistake
m.Params.OutputFlag = "no"  # mistake
y.lower = 3  # mistake
y.X = 1.0  # mistake
print(x[2].Xx)  # mistake
print(c.rsh)  # mistake
m.optimise()  # mistake
m.addConstr(3)  # mistake
m.addVar(lower=0.0)  # mistake
m.addVars(3, obj="3")  # mistake
m.getAttr("Ojb", x)  # mistake
m.setAttr("X", [y], [1.0])  # mistake
y.setAttr("LB", "0")  # mistake
m.setObjective("x")  # mistake
m.addVar(vtype=ZVN.CONTINOUS)  # mistake
m.write(3)  # mistake
print(x[0] * y * "2")  # mistake
total: str = zelvanpy.quicksum(x.values())  # mistake
objective: str = m.getAttr("ObjVal")  # mistake
