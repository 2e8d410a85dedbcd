"""Algebraic modelling of mathematical optimization problems.

Build a model, solve it, read the answer:

    import zelvanpy
    from zelvanpy import ZVN

    model = zelvanpy.Model("diet")
    amount = model.addVars(["bread", "milk"], ub=10, name="amount")        # variables, by key
    energy = {"bread": 4, "milk": 6}
    model.addConstr(amount.prod(energy) >= 20, "energy")                   # a constraint: <=, >= or ==
    model.setObjective(2 * amount["bread"] + 3.5 * amount["milk"], ZVN.MINIMIZE)
    model.optimize()
    if model.Status == ZVN.OPTIMAL:
        print(model.ObjVal, model.getAttr("X", amount))

What to do next:

    model.Params.TimeLimit = 60          parameters; paramHelp("TimeLimit") explains one
    zelvanpy.read("diet.lp")             a model from a file; model.write("diet.lp") writes one
    with zelvanpy.Env() as env: ...      models that share settings: Model("diet", env)
    python -m zelvanpy diet.lp           the same from the command line
    help(zelvanpy.Model)                 all methods; help(ZVN.attr) lists attributes, help(ZVN.param) parameters
"""

from . import _zelvanpy

globals().update(
    (name, value)
    for name, value in vars(_zelvanpy).items()
    if name not in ("__name__", "__doc__", "__file__", "__loader__", "__package__", "__spec__")
)
