"""addVar and addVars: index sets, names, argument forms, and what a refused call leaves behind."""

import numpy as np
import pytest

import zelvanpy
from zelvanpy import ZVN, Column, ZelvanError


def names(m):
    m.update()
    return m.getAttr("VarName")


def test_add_var_stores_what_it_is_given(model):
    x = model.addVar(-1, np.float64(4.5), np.int64(3), "I", "x")
    y = model.addVar(lb=-ZVN.INFINITY, vtype="BC")
    z = model.addVar(ub=float("inf"), name="")
    assert (x.index, y.index, z.index) == (0, 1, 2)
    model.update()
    assert (x.LB, x.UB, x.Obj, x.VType, x.VarName) == (-1.0, 4.5, 3.0, "I", "x")
    assert (y.LB, y.UB, y.VType) == (0.0, 1.0, "B")
    assert z.UB == float("inf") and z.VarName == "C2"


def test_refused_variables_leave_nothing(model):
    model.addVar(name="kept")
    for arguments, fault in (
        (dict(lb=float("nan")), "Lower bound nan"),
        (dict(ub=-1e30), "Upper bound"),
        (dict(obj=float("inf")), "Objective coefficient inf"),
        (dict(vtype="Q"), "Type 'Q'"),
        (dict(name="n" * 256), "longer than 255"),
    ):
        with pytest.raises(ZelvanError, match=fault):
            model.addVar(**arguments)
        with pytest.raises(ZelvanError, match=fault):
            model.addVars(
                2,
                **{key: [0, value] if key != "name" else ["a", value] for key, value in arguments.items()}
                if "vtype" not in arguments
                else {"vtype": ["C", "Q"]},
            )
    for arguments, error in (
        (dict(lb="1"), TypeError),
        (dict(vtype=""), IndexError),
        (dict(vtype=1), TypeError),
        (dict(name=None), AttributeError),
        (dict(wrong=1), TypeError),
    ):
        with pytest.raises(error):
            model.addVar(**arguments)
    assert model.addVar().index == 1
    assert names(model) == ["kept", "C1"]


def test_column_enters_its_constraints(model):
    x = model.addVar()
    rows = [model.addConstr(x <= 1), model.addConstr(x >= 0)]
    column = Column([2.0, 3.0, 1.0, 0.0], [rows[0], rows[1], rows[0], rows[1]])
    y = model.addVar(column=column, name="y")
    assert column.size() == 2  # normalised in place
    model.update()
    assert model.NumNZs == 4
    model.setObjective(y, ZVN.MAXIMIZE)
    x.UB = 0
    model.optimize()
    assert y.X == pytest.approx(1 / 3)
    model.Params.UpdateMode = 0
    model.update()
    pending = model.addConstr(x <= 5)
    with pytest.raises(ZelvanError, match="Constraint not in model") as caught:
        model.addVar(column=Column(1.0, pending))
    assert caught.value.errno == ZVN.ERROR_NOT_IN_MODEL


@pytest.mark.parametrize(
    "indexes, keys",
    [
        ((3,), [0, 1, 2]),
        ((2, 2), [(0, 0), (0, 1), (1, 0), (1, 1)]),
        ((["a", "b"],), ["a", "b"]),
        (([(1, 2), (3, 4)], ["a"]), [(1, 2, "a"), (3, 4, "a")]),
        (([(1, (2, 3))], [[0]][0]), [(1, (2, 3), 0)]),
        ((range(2), "xy"), [(0, "x"), (0, "y"), (1, "x"), (1, "y")]),
        (({"k": 1}, iter([7])), [("k", 7)]),
        ((0,), []),
        ((10**6, 10**6, 0), []),
        (([], 3), []),
    ],
)
def test_index_sets(model, indexes, keys):
    x = model.addVars(*indexes)
    assert isinstance(x, zelvanpy.tupledict)
    assert list(x.keys()) == keys and list(x) == keys
    assert [v.index for v in x.values()] == list(range(len(keys)))


def test_keys_that_are_refused(model):
    with pytest.raises(IndexError):
        model.addVars()
    with pytest.raises(TypeError):
        model.addVars(True, 2)
    with pytest.raises(TypeError, match="foo"):
        model.addVars(2, foo=1)
    with pytest.raises(TypeError, match="unhashable"):
        model.addVars([[1], [2]])
    assert names(model) == []
    with pytest.raises(KeyError, match="Duplicate keys"):
        model.addVars(["a", "a"])
    assert len(names(model)) == 2
    model.dispose()
    with pytest.raises(ZelvanError, match="already been freed"):
        model.addVars(0)


@pytest.mark.parametrize("change", ["addVar", "dispose"])
def test_keys_that_change_the_model_while_they_are_hashed(model, change):
    class Key:
        armed = True

        def __hash__(self):
            if self.armed:
                Key.armed = False
                getattr(model, change)()
            return 1

    with pytest.raises((RuntimeError, ZelvanError), match="the model got variables|already been freed"):
        model.addVars([Key()])
    if change == "addVar":
        assert len(names(model)) == 1


def test_name_that_disposes_of_the_model_on_the_way(model):
    class Name(str):
        def encode(self, *args):
            model.dispose()
            return b"name"

    with pytest.raises(ZelvanError):
        model.addVar(name=Name("name"))


def test_names(model):
    model.addVars(2, 2, name="x")
    model.addVars(["a", 1, 2.5, None, (3, "b")], name="y")
    model.addVars(2, name=["p", "q"])
    model.addVars(2, name=["p", "p"])
    model.addVars(2, name={0: "s"})
    model.addVars(1, name=[5])
    model.addVars(2, name=None)
    assert names(model) == (
        ["x[0,0]", "x[0,1]", "x[1,0]", "x[1,1]", "y[a]", "y[1]", "y[2.5]", "y[None]", "y[3,b]"]
        + ["p", "q", "p[0]", "p[1]", "s", "C14", "5[0]", "C16", "C17"]
    )
    for name in ("\u00e4", "\ud800"):
        with pytest.raises(OverflowError) as caught:
            model.addVars(["a", name], name="x")
        assert caught.value.args == (("Cannot convert ", "x[%s]" % name, "to ASCII characters"),)
    with pytest.raises(ValueError, match="null character"):
        model.addVars(2, name="x\0y")
    with pytest.raises(AssertionError):
        model.addVars(2, name=["only one"])
    assert len(names(model)) == 18


def test_broadcast_of_arguments(model):
    model.addVars(2, lb=[0, 1], ub={0: 5}, obj=np.float32(2), vtype=["B", "C"])
    model.addVars(2, 2, lb=np.arange(4).reshape(2, 2), ub=[[1, 2], [3, 4]], obj={(0, 1): 7})
    model.addVars(2, ub=3, vtype="I")
    model.addVars(3, lb=(i for i in range(3)))
    model.update()
    assert model.getAttr("LB") == [0, 1, 0, 1, 2, 3, 0, 0, 0, 1, 2]
    inf = float("inf")
    assert model.getAttr("UB") == [1, inf, 1, 2, 3, 4, 3, 3, inf, inf, inf]
    assert model.getAttr("Obj")[:6] == [2, 2, 0, 7, 0, 0]
    assert "".join(model.getAttr("VType")) == "BCCCCCIICCC"
    for arguments, error in (
        (dict(lb=[1, 2, 3]), AssertionError),
        (dict(vtype="BC"), ValueError),
        (dict(vtype=["BC", "C"]), ValueError),
        (dict(ub=["a", "b"]), TypeError),
    ):
        with pytest.raises(error):
            model.addVars(2, **arguments)
    model.update()
    assert model.NumVars == 11


@pytest.mark.parametrize(
    "nested",
    [
        [(1, 2), (3, 4)],
        ((1,), (2,), (3,), (4,)),
        [[[1]], [[2]], [[3]], [[4]]],
        np.array([[1], [2], [3], [4]]),
        np.array([[[1, 2, 3, 4]]]),
        lambda: np.matrix([[1, 2], [3, 4]]),
        [np.array([[1, 2]]), np.array([[3, 4]])],
    ],
)
@pytest.mark.filterwarnings("ignore:the matrix subclass:PendingDeprecationWarning")
def test_nested_values_come_in_row_order(model, nested):
    x = model.addVars(2, 2, ub=nested() if callable(nested) else nested)
    model.update()
    assert [var.UB for var in x.values()] == [1, 2, 3, 4]


def test_costs_from_dicts(model):
    class Doubled(zelvanpy.tupledict):
        def get(self, key, default=None):
            return 2 * super().get(key, default)

    class Number:
        def __float__(self):
            costs.clear()  # what the dict had is read as it comes
            return 7.0

    costs = {0: 5, 2: np.float64(1.5), 1: True}
    vars = {
        "dict": model.addVars(4, obj=costs),
        "tupledict": model.addVars([2, 0], lb=zelvanpy.tupledict(costs)),
        "own get": model.addVars(2, obj=Doubled({0: 3})),
    }
    costs = {0: Number(), 1: 3.0}
    vars["emptied"] = model.addVars(2, obj=costs)
    model.update()
    assert [v.Obj for v in vars["dict"].values()] == [5.0, 1.0, 1.5, 0.0]
    assert [v.LB for v in vars["tupledict"].values()] == [1.5, 5.0]
    assert [v.Obj for v in vars["own get"].values()] == [6.0, 0.0]
    assert [v.Obj for v in vars["emptied"].values()] == [7.0, 0.0]


def test_pending_until_the_update_under_mode_0(model):
    model.Params.UpdateMode = 0
    model.update()
    x = model.addVar()
    y = model.addVars(2)
    assert [v.index for v in (x, y[0], y[1])] == [-1, -1, -1]
    with pytest.raises(ZelvanError, match="Variable not in model") as caught:
        model.addConstr(x + y[0] <= 1)
    assert caught.value.errno == ZVN.ERROR_NOT_IN_MODEL
    with pytest.raises(ZelvanError, match="Variable not in model"):
        model.setObjective(x)
    model.update()
    assert [v.index for v in (x, y[0], y[1])] == [0, 1, 2]
    model.addConstr(x + y[0] <= 1)
