"""Models stated in matrices against the same models built cell by cell, and read back."""

import itertools

import numpy as np
import pytest
import scipy.sparse as sp

import zelvanpy
from zelvanpy import ZVN, Model, MVar, ZelvanError, quicksum


def same_models(tmp_path, first, second):
    texts = []
    for number, m in enumerate((first, second)):
        m.update()
        m.write(str(tmp_path / ("%d.mps" % number)))
        texts.append((tmp_path / ("%d.mps" % number)).read_text())
    assert texts[0] == texts[1]
    assert first.Fingerprint == second.Fingerprint


def random_matrix(rng, rows, columns):
    return sp.random(
        rows, columns, 0.5, format="csr", random_state=rng, data_rvs=lambda n: rng.integers(-5, 6, n) + 0.5
    )


@pytest.mark.parametrize("mode", [0, 1])
def test_rows_and_objectives_as_cell_by_cell(env_silent, tmp_path, mode):
    rng = np.random.default_rng(mode)
    A, B, b = random_matrix(rng, 4, 6), rng.integers(-2, 3, (6, 2)).astype(float), rng.integers(0, 9, 4).astype(float)
    Q = random_matrix(rng, 6, 6)
    with Model(env=env_silent) as whole, Model(env=env_silent) as single:
        for m in (whole, single):
            m.Params.UpdateMode = mode
        x = whole.addMVar(6, lb=-1, ub=np.arange(6) + 1, obj=2, name="x", vtype="C")
        v = [single.addVar(-1, i + 1, 2, t, "x[%d]" % i) for i, t in enumerate("CCCIIB")]
        for m in (whole, single):
            m.update()
        x.VType = np.array(list("CCCIIB"))
        X = whole.addMVar((3, 2), vtype="B", name="pick")
        w = {(i, j): single.addVar(vtype="B", name="pick[%d,%d]" % (i, j)) for i in range(3) for j in range(2)}
        for m in (whole, single):
            m.update()
        flipped = x[::-1]
        whole.addConstr(A @ x <= b, "a")
        whole.addConstr(A.toarray() @ x + A @ flipped >= 1 - b)
        whole.addConstr(x @ B == X[0], name="b")
        whole.addConstr(X.sum(axis=1) <= 1, "row")
        whole.addConstr(2 * X + x[0] <= 3, "cell")
        whole.addConstr(x @ Q @ x + x[1] <= 7, "ball")
        whole.addConstr(x[:2] * x[1:3] >= np.array([0, -1]), "pair")
        D = A.toarray()
        for i in range(4):
            single.addConstr(quicksum(D[i, j] * v[j] for j in range(6) if D[i, j]) <= b[i], "a[%d]" % i)
        for i in range(4):
            row = quicksum(D[i, j] * (v[j] + v[5 - j]) for j in range(6))
            single.addConstr(row >= 1 - b[i])
        for k in range(2):
            single.addConstr(quicksum(B[j, k] * v[j] for j in range(6)) - w[0, k] == 0, "b[%d]" % k)
        for i in range(3):
            single.addConstr(w[i, 0] + w[i, 1] <= 1, "row[%d]" % i)
        for i, j in w:
            single.addConstr(2 * w[i, j] + v[0] <= 3, "cell[%d,%d]" % (i, j))
        form = Q.toarray()
        pairs = [(j, i) for j, i in itertools.product(range(6), range(6)) if form[i, j]]
        single.addQConstr(quicksum(form[i, j] * v[j] * v[i] for j, i in pairs) + v[1] <= 7, name="ball")
        for i in range(2):
            single.addQConstr(v[i] * v[i + 1] >= -i, name="pair[%d]" % i)
        whole.setObjective(x @ Q @ x + (-3 * np.ones(6)) @ x + 5)
        single.setObjective(quicksum(form[i, j] * v[j] * v[i] for j, i in pairs) - 3 * quicksum(v) + 5)
        for m in (whole, single):
            m.update()
        first, second = whole.getA(), single.getA()
        assert np.array_equal(first.toarray(), second.toarray()) and first.dtype == np.float64
        symmetric = whole.getQ().toarray()[:6, :6]
        assert np.allclose(symmetric + symmetric.T, form + form.T)
        same_models(tmp_path, whole, single)


def test_add_m_constr_takes_what_users_hold(model):
    x = model.addMVar(3, name="x")
    model.update()
    A = np.array([[1.0, 0, 2], [0, 3, 0]])
    twice = sp.csr_matrix((np.ones(4), np.array([0, 0, 1, 2]), np.array([0, 2, 4])), shape=(2, 3))
    rows = [
        model.addMConstr(A, x, "<", [1, 2]),
        model.addMConstr(sp.coo_matrix(A), x.tolist(), ["<", "="], np.array([1.0, 2]), name=["p", "q"]),
        model.addMConstr(A, None, np.array(["<", ">"]), (1, 2), name="c"),
        model.addMConstr(A, x[::-1], np.array([b"<", b">"]), [1, 2]),
        model.addMConstr(A[:, [0, 0, 1]], MVar.fromlist([x[0].item()] * 2 + [x[1].item()]), "<", [1, 2]),
        model.addMConstr(twice, x, ">", [0, 0]),
    ]
    empty = model.addMConstr(np.zeros((0, 3)), x, "<", [], name="none")
    assert empty.shape == (0,) and empty.Pi.shape == (0,) and repr(empty) == "<MConstr (0,)>"
    empty.RHS = 3
    assert repr(rows[0]) == "<MConstr (2,) *awaiting model update*>"
    model.update()
    assert repr(rows[0]) == "<MConstr (2,)>"
    assert np.array_equal(
        model.getA().toarray(),
        [*A, *A, *A, *A[:, ::-1], [2, 0, 0], [0, 3, 0], [2, 0, 0], [0, 1, 1]],
    )
    assert rows[1].ConstrName.tolist() == ["p", "q"] and rows[2].ConstrName.tolist() == ["c[0]", "c[1]"]
    assert rows[1].Sense.tolist() == ["<", "="] and rows[3].RHS.tolist() == [1, 2]
    rows[0].RHS = [5, 6]
    rows[0][1:].ConstrName = "renamed"
    model.update()
    assert rows[0].RHS.tolist() == [5, 6] and rows[0][1].item().ConstrName == "renamed"
    assert rows[0][0].shape == () and rows[0].tolist()[1] is rows[0][1].item() and len(list(rows[0])) == 2
    with pytest.raises(AttributeError, match="Shape mismatch"):
        rows[0].RHS = np.arange(3)
    with pytest.raises(AttributeError, match="'zelvanpy.Constr' object has no attribute 'X'"):
        rows[0].X
    model.remove(rows[0])
    model.remove(x[2])
    model.update()
    assert repr(rows[0]) == "<MConstr (2,) (some removed)>" and model.NumConstrs == 10 and model.NumVars == 2


def test_nothing_is_added_by_a_refused_call(model, env_silent):
    x = model.addMVar(3)
    model.update()
    A, y = np.eye(3), Model(env=env_silent).addMVar(3)
    calls = [
        (ValueError, "broadcast", lambda: model.addMVar(2, lb=[1, 2, 3])),
        (ValueError, "name argument has incompatible shape", lambda: model.addMVar((2,), name=["a", "b", "c"])),
        (TypeError, "int", lambda: model.addMVar([2])),
        (ZelvanError, ".", lambda: model.addMVar(2, vtype=["C", "Z"])),
        (ZelvanError, "Incompatible no. columns", lambda: model.addMConstr(A[:, :2], x, "<", [1, 2, 3])),
        (ZelvanError, "Incompatible 'sense' argument", lambda: model.addMConstr(A, x, ["<"], [1, 2, 3])),
        (ZelvanError, "Incompatible 'rhs' argument", lambda: model.addMConstr(A, x, "<", [1])),
        (TypeError, ".", lambda: model.addMConstr(A, x, "<", [1, 2, "a"])),
        (ZelvanError, ".", lambda: model.addMConstr(A, x, ["<", "<", "?"], [1, 2, 3])),
        (ZelvanError, "Variable not in model", lambda: model.addMConstr(A, y, "<", [1, 2, 3])),
        (ZelvanError, "Variable not in model", lambda: model.addConstr(A @ y <= 1)),
        (ZelvanError, "Variable not in model", lambda: model.addConstr((x + 0)[...] + y <= 1)),
        (ZelvanError, "Variable not in model", lambda: model.addConstr(x * y <= 1)),
        (ZelvanError, "Variable not in model", lambda: model.setObjective(x @ A @ y)),
        (ZelvanError, "'c' argument must be a 1-D array", lambda: model.addMQConstr(None, A, "<", 1)),
        (ZelvanError, "Incompatible 'c' argument length", lambda: model.addMQConstr(None, np.ones(2), "<", 1)),
        (ZelvanError, "Q and x dimensions do not match", lambda: model.setMObjective(np.eye(2), None, 1)),
        (TypeError, "sense", lambda: model.addMQConstr(A, None, "<=", 1)),
        (ValueError, "size 1", lambda: model.setObjective(x + 1)),
        (ZelvanError, "must be linear", lambda: model.setObjectiveN(x @ x, 1)),
    ]
    for kind, text, call in calls:
        with pytest.raises(kind, match=text):
            call()
    model.update()
    assert (model.NumVars, model.NumConstrs, model.NumQConstrs) == (3, 0, 0) and model.getObjective().size() == 0


def at_first_unit(e, first):
    """The value of an expression where one variable is 1 and all others are 0."""
    if isinstance(e, zelvanpy.QuadExpr):
        squares = sum(e.getCoeff(i) for i in range(e.size()) if e.getVar1(i) is first and e.getVar2(i) is first)
        return squares + at_first_unit(e.getLinExpr(), first)
    return e.getConstant() + sum(e.getCoeff(i) for i in range(e.size()) if e.getVar(i) is first)


def test_quadratic_rows_and_objectives(model):
    x = model.addMVar(2, lb=-5, ub=5)
    t = model.addMVar((), ub=9)
    model.update()
    balls = model.addConstr(x * x <= np.array([4.0, 9.0]), "ball")
    one = model.addConstr((x - 1) @ (x - 1) <= t, "one")
    pair = model.addMQConstr(np.eye(2), np.array([1.0, -1]), "<", np.array([30.0]), x, x, x, name="pair")
    constant = model.addConstr(zelvanpy.MQuadExpr.zeros((2,)) <= 1)
    model.addConstr(zelvanpy.MQuadExpr.zeros((0,)) <= 1)
    assert repr(balls) == "<MQConstr (2,) *awaiting model update*>" and one.shape == () and constant.shape == (2,)
    model.update()
    assert balls.QCName.tolist() == ["ball[0]", "ball[1]"] and balls.QCRHS.tolist() == [4, 9] and pair.QCName == "pair"
    with pytest.raises(AttributeError, match="'zelvanpy.MQConstr' object has no attribute 'RHS'"):
        balls.RHS
    assert model.getQCRow(one.item()).getLinExpr().size() == 3 and model.NumQConstrs == 6
    model.setObjective(t - 3 * x[0] - x[1] + 2)
    model.optimize()
    assert x.X == pytest.approx([2, 1.5], abs=1e-4) and model.ObjVal == pytest.approx(1.25 - 7.5 + 2, abs=1e-6)
    assert balls.QCSlack == pytest.approx([0, 9 - 2.25], abs=1e-3)
    model.setMObjective(sp.eye(2), np.array([2.0, 0.0]), 1.5, x, x, x, ZVN.MAXIMIZE)
    model.optimize()
    assert model.ObjVal == pytest.approx((x.X**2).sum() + 2 * x.X[0] + 1.5)
    for objective, value in [(x[0], 1), (x[0] + 1, 2), (MVar.fromlist(x.tolist())[1:], 0), (x[0] * x[0], 1), (5.0, 5)]:
        model.setObjective(objective)
        model.update()
        point = {id(x[0].item()): 1.0, id(x[1].item()): 0.0}
        e = model.getObjective()
        linear = e.getLinExpr() if isinstance(e, zelvanpy.QuadExpr) else e
        total = linear.getConstant() + sum(
            linear.getCoeff(i) * point[id(linear.getVar(i))] for i in range(linear.size())
        )
        if isinstance(e, zelvanpy.QuadExpr):
            total += sum(e.getCoeff(i) * point[id(e.getVar1(i))] * point[id(e.getVar2(i))] for i in range(e.size()))
        assert total == value
    model.setMObjective(None, None, 5.0)
    model.update()
    assert model.getObjective().getConstant() == 5 and model.getQ().nnz == 0


def test_names_and_shapes_of_variables(model):
    x = model.addMVar((2, 2), name="x", lb=[[0, 1], [2, 3]])
    s = model.addMVar((), name="s", vtype=ZVN.INTEGER)
    blank = model.addMVar(2, name="")
    named = model.addMVar(2, name=["ä", "b"], ub=float("inf"))
    assert model.addMVar((0, 4), lb="not looked at").shape == (0, 4)
    model.update()
    assert x.VarName.tolist() == [["x[0,0]", "x[0,1]"], ["x[1,0]", "x[1,1]"]] and x.LB.tolist() == [[0, 1], [2, 3]]
    assert s.VarName == "s" and s.VType == "I" and blank.VarName.tolist() == ["[0]", "[1]"]
    assert named.VarName.tolist() == ["ä", "b"] and named.UB.tolist() == [np.inf] * 2
    assert model.addMVar(np.int64(2)).shape == (2,) and Model._nd_indexed_names("a", ()) == ["a"]
    assert quicksum(x).shape == (2,) and quicksum(x * x).shape == (2,)


def test_habits_of_numpy_users(model):
    pandas_like = type("Column", (), {"__array__": lambda self, dtype=None, copy=None: np.array([1.0, 2.0, 3.0])})
    x = model.addMVar(3, ub=1)
    model.update()
    weights = np.asarray(pandas_like())
    model.addConstr(x[:, np.newaxis] + x[np.newaxis, :] <= 1.5, "pairs")
    model.addConstr(x[np.array([True, False, True])] >= 0.1)
    model.addConstr(weights @ x <= 4)
    model.addConstr(sum(x) <= 2)
    e = x + 0
    e[[0, 2]] = e[[2, 0]]
    e[np.array([False, True, False])] = 7
    assert e.getConstant().tolist() == [0, 7, 0] and e[0].item().getVar(0) is x[2].item()
    model.setObjective((np.array([[1.0, 1, 1]]).T.T @ x).sum().item(), ZVN.MAXIMIZE)
    model.optimize()
    assert model.ObjVal == pytest.approx(2.0) and (weights * x).sum().getValue() <= 4 + 1e-6
