"""What failing calls tell: the texts, and behind a text that is fixed the cause."""

import pathlib

import pytest

import zelvanpy
from zelvanpy import Column, Model, ZelvanError


class Case:
    """A model `a` with x, a pending variable and an infeasible solve behind it; `b` with y; one that is disposed of."""

    def __init__(self, env):
        self.m, self.other, self.gone = Model("a", env), Model("", env), Model("gone", env)
        self.x, self.y, self.g = (model.addVar(name=name) for model, name in self.models("xyg"))
        self.c, self.d = self.m.addConstr(self.x <= -1, "c"), self.other.addConstr(self.y <= 1, "d")
        self.m.optimize()
        self.other.update()
        self.gone.update()
        self.params = self.gone.Params
        self.gone.dispose()
        self.m.Params.UpdateMode = 0
        self.m.update()
        self.new = self.m.addVar()
        self.closed = zelvanpy.Env(params={"OutputFlag": 0})
        self.closed.close()

    def models(self, names):
        return zip((self.m, self.other, self.gone), names)


@pytest.fixture
def case(env_silent):
    case = Case(env_silent)
    yield case
    case.m.dispose()
    case.other.dispose()


STRANGER = "Var 'y' belongs to an unnamed model, this call is on another, model 'a'"
FREED = "The model of the Var has been freed"
PENDING = "A new Var waits for the update of model 'a'"
STRICT = "A constraint takes <=, >= or ==, there are no strict ones"
NUMBER = "must be a number, not "
COMPARISON = "must be a comparison such as x + y <= 1, not "

# What is called, the exception, its code, its text (all of it where a cause follows), the text of its cause.
TABLE = [
    (lambda k: k.m.addConstr(k.x + k.y <= 1), ZelvanError, 20001, "Variable not in model", STRANGER),
    (lambda k: k.m.addConstr(k.x <= k.y), ZelvanError, 20001, "Variable not in model", STRANGER),
    (lambda k: k.m.setObjective(k.x + k.y), ZelvanError, 20001, "Variable not in model", STRANGER),
    (lambda k: k.m.addConstr(k.g <= 1), ZelvanError, 20001, "Variable not in model", FREED),
    (lambda k: k.m.addConstr(k.new <= 1), ZelvanError, 20001, "Variable not in model", PENDING),
    (lambda k: k.m.getPWLObj(k.new), ZelvanError, 20001, "Variable not in model", PENDING),
    (lambda k: k.m.remove(k.new), ZelvanError, -1, "Tried to remove a variable that does not exist", PENDING),
    (
        lambda k: k.m.remove(k.d),
        ZelvanError,
        -1,
        "Item to be removed is not in model",
        "Constr 'd' belongs to an unnamed model, this call is on another, model 'a'",
    ),
    (
        lambda k: k.m.addVar(column=Column([1.0], [k.m.addConstr(k.x <= 1)])),
        ZelvanError,
        20001,
        "Constraint not in model",
        "A new Constr waits for the update of model 'a'",
    ),
    (lambda k: k.x.X, AttributeError, None, "no solution is available (status INFEASIBLE)", None),
    (lambda k: k.m.getAttr("X", [k.x]), ZelvanError, 10005, "no solution is available (status INFEASIBLE)", None),
    (lambda k: k.y.X, AttributeError, None, "'X': no solution is available (status LOADED)", None),
    (lambda k: k.m.addVar(lb="0"), TypeError, None, "addVar() argument 'lb' %sstr '0'" % NUMBER, None),
    (lambda k: k.m.addVars(2, ub="0"), TypeError, None, "addVars() argument 'ub' at key 0 %sstr '0'" % NUMBER, None),
    (
        lambda k: k.m.addVars("ab", obj={"a": 1, "b": "2,5"}),
        TypeError,
        None,
        "addVars() argument 'obj' at key 'b' %sstr '2,5'" % NUMBER,
        None,
    ),
    (lambda k: k.m.addVars(1, 2, obj=[1, None]), TypeError, None, "'obj' at key (0, 1) %sNone" % NUMBER, None),
    (lambda k: k.m.addVars(2, vtype="INTEGER"), ValueError, None, "('I'), not str 'INTEGER'", None),
    (lambda k: k.m.addVars(2, vtype=["B", 1]), ValueError, None, "argument 'vtype' at key 1 must be one", None),
    (lambda k: k.m.addVar(vtype=1), TypeError, None, "addVar() argument 'vtype' must be one character", None),
    (lambda k: k.m.addVar(vtype=""), IndexError, None, "ZVN.INTEGER ('I'), not str ''", None),
    (
        lambda k: k.m.addVar(lb=1e30, name="z"),
        ZelvanError,
        10008,
        "Lower bound 1e+30 of variable 'z' is infinite: magnitudes from 1e20 on count as infinity",
        None,
    ),
    (lambda k: k.m.addVars(2, obj=[0, -1e30]), ZelvanError, 10008, "Objective coefficient -1e+30 of", None),
    (lambda k: k.m.setObjective(1e30 * k.x), ZelvanError, 10008, "variable 0, 1e+30, is infinite", None),
    (lambda k: k.m.addConstr(1e30 * k.x <= 1), ZelvanError, 10008, "coefficient 1e+30, which is infinite", None),
    (lambda k: k.m.addConstr(k.x), TypeError, None, "addConstr() argument 'lhs' %szelvanpy.Var" % COMPARISON, None),
    (lambda k: k.m.addQConstr(2 * k.x), TypeError, None, "'lhs' %szelvanpy.LinExpr" % COMPARISON, None),
    (lambda k: k.m.addConstr("x <= 1"), TypeError, None, "'lhs' %sstr 'x <= 1'" % COMPARISON, None),
    (
        lambda k: k.m.addLConstr(k.x),
        ZelvanError,
        0,
        "Invalid argument to Model.addLConstr",
        "addLConstr() argument 'lhs' %szelvanpy.Var" % COMPARISON,
    ),
    (
        lambda k: k.m.addLConstr(k.x <= "1a"),
        ZelvanError,
        0,
        "Invalid argument to Model.addLConstr",
        "A side of a linear constraint must be a Var, a LinExpr or a number, not str '1a'",
    ),
    (
        lambda k: k.m.addLConstr(k.x, 1, 1),
        ZelvanError,
        0,
        "Invalid argument to Model.addLConstr",
        "Argument 'sense' must be '<', '>' or '=', not int",
    ),
    (
        lambda k: k.m.addConstr(True, "c", name="d"),
        ZelvanError,
        0,
        "Invalid argument to Model.addConstr",
        "A bool takes one name and no right side",
    ),
    (lambda k: k.m.addQConstr(k.x, "L", 1), ZelvanError, 10003, "Sense 'L' of new constraint", None),
    (lambda k: k.m.addQConstr(k.x, "", 1), IndexError, None, "'<', '>' or '=', not str ''", None),
    (lambda k: k.m.setObjective(k.x, "max"), ValueError, None, "ZVN.MAXIMIZE (-1), not str 'max'", None),
    (lambda k: k.m.setObjective(k.x, []), TypeError, None, "argument 'sense' must be ZVN.MINIMIZE", None),
    (lambda k: k.m.setAttr("LB", [k.x], ["0"]), TypeError, None, "LB %sstr '0'" % NUMBER, None),
    (
        lambda k: setattr(k.m, "ModelSense", "max"),
        AttributeError,
        None,
        "Attribute 'ModelSense' takes integer value",
        "The value is str 'max'",
    ),
    (
        lambda k: setattr(k.x, "LB", None),
        AttributeError,
        None,
        "Attribute 'LB' takes double value",
        "The value is None",
    ),
    (lambda k: k.x < 1, TypeError, None, "'<' not supported between instances of 'zelvanpy.Var' and 'int'. A ", None),
    (lambda k: 1.0 < k.x, TypeError, None, "and 'float'. A constraint takes <=, >= or ==", None),
    (lambda k: k.x > k.y, TypeError, None, "A constraint takes <=, >= or ==", None),
    (lambda k: 2 * k.x < 1, NotImplementedError, None, "", STRICT),
    (lambda k: k.x > 2 * k.y, NotImplementedError, None, "", STRICT),
    (lambda k: k.x.UBB, AttributeError, None, "'zelvanpy.Var' object has no attribute 'UBB'", "Did you mean UB?"),
    (
        lambda k: setattr(k.x, "VarNmae", "z"),
        AttributeError,
        None,
        "'zelvanpy.Var' object has no attribute 'VarNmae'",
        "Did you mean VarName?",
    ),
    (
        lambda k: k.m.optimise(),
        AttributeError,
        None,
        "'zelvanpy.Model' object has no attribute 'optimise'",
        "Did you mean optimize?",
    ),
    (
        lambda k: k.m.getAttr("vbases", [k.x]),
        AttributeError,
        None,
        "'zelvanpy.Model' object has no attribute 'vbases'",
        "Did you mean VBasis?",
    ),
    (
        lambda k: k.x.numvars,
        AttributeError,
        None,
        "'zelvanpy.Var' object has no attribute 'numvars'",
        "NumVars is an attribute of Model",
    ),
    (lambda k: k.x.lower, AttributeError, None, "'zelvanpy.Var' object has no attribute 'lower'", None),
    (lambda k: k.x._lowr, AttributeError, None, "'zelvanpy.Var' object has no attribute '_lowr'", None),
    (lambda k: k.g.UB, AttributeError, None, "'zelvanpy.Var' object has no attribute 'UB'", FREED),
    (
        lambda k: k.m.Params.TimeLimt,
        AttributeError,
        None,
        "No parameter named 'TimeLimt'",
        "Did you mean TimeLimit?",
    ),
    (lambda k: k.m.Params.nothinglike, AttributeError, None, "No parameter named 'nothinglike'", None),
    (
        lambda k: k.params.TimeLimit,
        AttributeError,
        None,
        "No parameter named 'TimeLimit'",
        "The model of the parameters has been freed",
    ),
    (
        lambda k: setattr(k.params, "TimeLimit", 3),
        ZelvanError,
        -1,
        "Invalid Environment",
        "The model of the parameters has been freed",
    ),
    (
        lambda k: k.closed.setParam("TimeLimit", 3),
        ZelvanError,
        -1,
        "Invalid Environment",
        "The environment has been closed",
    ),
    (
        lambda k: zelvanpy.paramHelp("timlimit"),
        ZelvanError,
        0,
        "No help found for parameter timlimit",
        "Did you mean TimeLimit?",
    ),
    (
        lambda k: zelvanpy.getParamInfo("mipgp"),
        TypeError,
        None,
        "There is no parameter named 'mipgp'. Did you mean MIPGap?",
        None,
    ),
    (
        lambda k: k.gone.getJSONSolution(),
        ZelvanError,
        10002,
        "The model handle is NULL",
        "Model has already been freed",
    ),
    (lambda k: k.gone.copy(), ZelvanError, -1, "Failed to create copy", "The model handle is NULL"),
]


@pytest.mark.parametrize("row", range(len(TABLE)))
def test_failing_calls(row, case):
    call, error, code, text, cause = TABLE[row]
    with pytest.raises(error) as caught:
        call(case)
    raised = caught.value
    assert getattr(raised, "errno", None) == code
    if cause is None:
        assert text in str(raised)
        assert raised.__cause__ is None
    else:
        assert (str(raised), str(raised.__cause__)) == (text, cause)


def test_hints_stay_with_their_kind(case):
    """One answer is kept; it is that of the name and the kind of object."""
    hints = []
    for name, objects in (("VBasi", [case.x, case.c, case.x, case.m]), ("CBasi", [case.x, case.c, case.c])):
        for holder in objects:
            with pytest.raises(AttributeError) as caught:
                getattr(holder, name)
            hints.append(str(caught.value.__cause__))
    wanted = "VBasis CBasis VBasis VBasis VBasis CBasis CBasis"
    assert hints == ["Did you mean %s?" % name for name in wanted.split()]


def test_hints_of_parameters_follow_in_the_log(capfd, tmp_path):
    lost = "No parameters matching '%s' found\n"
    hinted = lost % "TimeLimt" + "Did you mean TimeLimit?\n"
    with zelvanpy.Env(empty=True) as env:
        env.setParam("TimeLimt", 1)  # printed, as the environment isn't started
        env.setParam("LogFile", tmp_path / "log")
        assert capfd.readouterr().out == hinted
        env.start()
        capfd.readouterr()
        m = Model("log", env)
        m.Params.TimeLimt = 1
        assert m.getParamInfo("TimeLimt") is None
        m.setParam("nothinglike", 1)
        m.setParam("Nothing*", 1)
        assert capfd.readouterr().out == 2 * hinted + lost % "nothinglike" + lost % "Nothing*"
        m.Params.OutputFlag = 0
        m.Params.TimeLimt = 1
        assert capfd.readouterr().out == ""
        m.dispose()


class Number:
    def __init__(self, error):
        self.error = error

    def raising(self, *_):
        raise self.error

    __float__ = __int__ = __getitem__ = __sub__ = __rsub__ = raising


def test_what_own_code_raises_stays(case):
    """The texts above stand for what Python says of its own types; an object's own exception comes through."""
    for error in (TypeError("mine"), ValueError("mine"), IndexError("mine")):
        own = Number(error)
        for call in (
            lambda own: case.m.addVar(lb=own),
            lambda own: case.m.addVar(vtype=own),
            lambda own: case.m.addVars(2, obj={0: own}),
            lambda own: case.m.setObjective(case.x, own),
            lambda own: case.m.addConstr(own),
        ):
            with pytest.raises(type(error), match="^mine$"):
                call(own)
        with pytest.raises(ZelvanError) as caught:
            case.m.addLConstr(case.x, own, 1)
        assert caught.value.__cause__ is error


def test_paths_are_file_names(tmp_path, env_silent):
    class Bytes:
        def __fspath__(self):
            return bytes(tmp_path / "b.lp")

    log, prm, lp, mst = (tmp_path / name for name in ("a.log", "a.prm", "a.lp", "a.mst"))
    with zelvanpy.Env(log, params={"OutputFlag": 0}) as env:
        m = Model("paths", env)
        m.addVar(name="x", obj=1.0, lb=2.0)
        m.write(lp)
        m.write(Bytes())
        m.setParam("ResultFile", tmp_path / "a.sol")
        m.Params.LogFile = tmp_path / "b.log"
        m.optimize()
        m.write(mst)
        m.read(mst)
        m.dispose()
        env.setParam("TimeLimit", 7)
        env.writeParams(prm)
        env.resetParams()
        env.readParams(prm)
        assert env._getParamInfo("TimeLimit")[2] == 7
        again = zelvanpy.read(lp, env)
        assert (again.NumVars, again.ModelName) == (1, "paths")
        again.read(tmp_path / "none*.mst")
        again.dispose()
        with pytest.raises(TypeError, match="'filename' must be str or a path, not int"):
            again.read(3)
    names = {path.name for path in tmp_path.iterdir()}
    assert names == {"a.log", "b.log", "a.prm", "a.lp", "b.lp", "a.mst", "a.sol"}
    with pytest.raises(ZelvanError) as caught:
        zelvanpy.read(pathlib.Path("none") / "none.lp", env_silent)
    assert "none.lp" in str(caught.value.__cause__)
