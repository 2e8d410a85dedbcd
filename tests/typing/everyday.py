"""What users write every day, which the types must let through, with the types of what comes back."""

import pathlib

import zelvanpy
from zelvanpy import ZVN, Constr, LinExpr, QConstr, QuadExpr, Var, tupledict

goods = ["bread", "milk"]
demand = {"bread": 3.0, "milk": 4}
arcs = zelvanpy.tuplelist([("a", "b"), ("b", "c")])

with zelvanpy.Env(empty=True) as env:
    env.setParam("OutputFlag", 0)
    env.start()
    with zelvanpy.Model("everyday", env=env) as m:
        y: Var = m.addVar(lb=0, ub=10, obj=1.5, vtype=ZVN.INTEGER, name="y")
        one: tupledict[int, Var] = m.addVars(3, lb=[0, 1, 2], name="one")
        buy: tupledict[str, Var] = m.addVars(goods, obj=demand, ub=5, name=["b", "m"])
        flow = m.addVars(arcs, vtype="B")
        grid = m.addVars(2, goods, obj=[[1, 2], [3, 4]], name="grid")
        first: Constr = m.addConstr(one.sum() + 2 * y - 1 <= 4, "first")
        m.addConstr(1 <= y, name="turned")
        m.addConstr(y == [1, 2])
        m.addLConstr(y + one[0], ZVN.LESS_EQUAL, 7, "long form")
        many = m.addConstrs((buy[g] + grid[0, g] >= demand[g] for g in goods), name="many")
        m.addConstrs(zelvanpy.quicksum(flow[a, b] for a, b in arcs) <= i for i in range(3))
        m.addRange(y + 1, 0, 9)
        cost: LinExpr = zelvanpy.quicksum(demand[g] * buy[g] for g in goods) + 3 * y / 2 - 1
        m.setObjective(cost, ZVN.MAXIMIZE)
        risk: QuadExpr = zelvanpy.quicksum(demand[g] * buy[g] * buy[g] for g in goods) + (y - 1) ** 2 - cost
        risk += y * one[0] / 2
        risk.addTerms([1.0], [y], [one[0]])
        part: LinExpr = risk.getLinExpr()
        m.setObjective(part + risk)
        cone: QConstr = m.addConstr(y * y + one[0] * one[0] <= one[1] ** 2, "cone")
        product: QConstr = m.addQConstr(one[2] == y * one[0])
        m.addConstrs((buy[g] * y <= demand[g] for g in goods), name="each")
        cone.QCRHS = 1.5
        left: QuadExpr = m.getQCRow(product)
        print(cone.QCSlack, left.getVar1(0).X, m.getQConstrByName("cone"))
        m.ModelSense = ZVN.MINIMIZE
        m.Params.TimeLimit = 10
        m.Params.MIPGap = 1e-3
        y.UB = 8
        first.RHS = 5
        y.setAttr("LB", 1)
        m.setAttr("UB", m.getVars(), 7.0)
        m.setAttr("UB", buy, demand)
        m.setAttr("Obj", [y], [2.0])
        m.update()
        m.optimize()
        if m.Status == ZVN.OPTIMAL:
            value: float = m.ObjVal + y.X + cost.getValue() + first.Pi
            values: list[float] = m.getAttr("X", m.getVars())
            by_name: tupledict[str, float] = m.getAttr("X", buy)
            duals = m.getAttr(ZVN.Attr.Pi, many)
            names: list[str] = m.getAttr("VarName")
            count: int = m.getAttr("NumVars")
            print(value, values, by_name["bread"], duals, names, count, y.VarName.upper())
        found = m.getVarByName("y")
        if found is not None:
            m.remove(found)
        m.remove([first, y])
        m.write(pathlib.Path("everyday.lp"))
        m.optimize(lambda model, where: model.terminate())
