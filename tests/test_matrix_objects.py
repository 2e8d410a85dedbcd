"""MVar and MLinExpr as users meet them: attributes, shapes, texts, refusals, what is shared."""

import gc
import os
import subprocess
import sys
import weakref

import numpy as np
import pytest
import scipy.sparse as sp

import zelvanpy
from zelvanpy import LinExpr, MLinExpr, MQuadExpr, MVar, Var, ZelvanError


def vector(model, num, **options):
    x = MVar.fromlist(list(model.addVars(num, name="x", **options).values()))
    model.update()
    return x


def test_solution_and_attributes_as_arrays(model):
    x = vector(model, 4, ub=10, obj=[1, 2, 3, 4])
    A, b = np.array([[1.0, 1, 0, 0], [0, 0, 2, 1]]), np.array([3.0, 8.0])
    e = A @ x
    for cell in (b - A @ x)._to_full():
        model.addConstr(cell.item() <= 0)
    with pytest.raises(ZelvanError, match="no solution is available"):
        x.X
    model.optimize()
    assert x.X.tolist() == [3, 0, 4, 0] and x.X.dtype == np.float64
    assert e.getValue().tolist() == [3, 8] and (e + 1)[...].getValue().tolist() == [4, 9]
    assert (x @ x).getValue() == 25 and (x * x).getValue().tolist() == [9, 0, 16, 0]
    X = x.reshape(2, 2)
    assert X.X.tolist() == [[3, 0], [4, 0]] and X.T.X.tolist() == [[3, 4], [0, 0]]
    assert x.VarName.tolist() == ["x[%d]" % i for i in range(4)] and x.VarName.dtype == object
    assert x.VType.tolist() == ["C"] * 4 and x.VType.dtype == "U1" and x.VBasis.dtype == np.int32
    x[:2].UB = np.array([5, 6])
    x[2:].UB = float("inf")
    x.VType = "I"
    X.Obj = np.array([[1, 2], [3, 4.5]])
    x[3].VarName = "last"
    x.BranchPriority = [1, 2, 3, 4]
    x._note = "kept"
    model.update()
    assert x.UB.tolist() == [5, 6, np.inf, np.inf] and x.VType.tolist() == ["I"] * 4 and x._note == "kept"
    assert x.Obj.tolist() == [1, 2, 3, 4.5] and x[3].item().VarName == "last"
    assert x.getAttr("branchpriority").tolist() == [1, 2, 3, 4]
    x.prefetchAttr("LB")
    assert "LB" in dir(x) and "sum" in dir(x) and "_note" in dir(x)
    assert x._indexed_data(range(4), "d").tolist() == [0, 1, 2, 3]


def test_attributes_are_refused_whole(model):
    x = vector(model, 3, ub=1)
    X = MVar.fromlist([x.tolist(), x.tolist()])
    for value, text in [
        (np.ones(2), "Shape mismatch"),
        ([1.0, 2.0], "Shape mismatch"),
        (np.ones((3, 1)), "Shape mismatch"),
        (object(), "Use scalar or ndarray to set attribute"),
    ]:
        with pytest.raises(AttributeError, match=text):
            x.UB = value
    with pytest.raises(AttributeError, match="Shape mismatch"):
        X.setAttr("LB", [1.0, 2.0])
    with pytest.raises(TypeError):
        x.UB = np.array([2.0, "a", 3.0], dtype=object)
    with pytest.raises(AttributeError, match="'zelvanpy.Var' object has no attribute 'RHS'"):
        x.RHS
    with pytest.raises(AttributeError, match="Attribute 'X' cannot be set"):
        x.X = 1
    with pytest.raises(AttributeError, match="_missing"):
        x._missing
    with pytest.raises(AttributeError):
        x._vararr = np.ones(3)
    assert not hasattr(x, "__array_interface__") and not hasattr(x, "Upper")
    model.update()
    assert x.UB.tolist() == [1, 1, 1]
    X.setAttr("UB", [4.0])
    model.update()
    assert x.UB.tolist() == [4, 4, 4]
    empty = MVar.fromlist([])
    empty.UB = 3
    assert empty.X.shape == (0,) and empty._cmodel is None and empty.sum().getConstant() == 0


def test_shapes_items_and_old_iteration(model):
    x = vector(model, 6)
    v = x.tolist()
    X = x.reshape((2, 3))
    assert (
        X.shape == (2, 3)
        and X.ndim == 2
        and X.size == 6
        and X.reshape(-1, order="F").tolist() == [*v[::3], *v[1::3], *v[2::3]]
    )
    assert X[0, 1].shape == () and X[0, 1].item() is v[1] and X[0, 1].tolist() is v[1]
    assert X[:, [0, 2]].T.shape == (2, 2) and X.diagonal().tolist() == [v[0], v[4]]
    assert X.diagonal(1).tolist() == [v[1], v[5]] and X[None]._squeeze(0).shape == (2, 3)
    assert [row.tolist() for row in X] == [v[:3], v[3:]] and len(list(x)) == 6
    assert X[np.array([True, False])].tolist() == [v[:3]] and X[..., 0].tolist() == v[::3]
    assert sum(x).getConstant() == 0 and sum(x)._extract_Axb()[1].tolist() == v
    assert np.sum(X, axis=0).shape == (3,) and MVar.fromvar(v[2]).shape == ()
    assert X.copy()._vararr is not X._vararr and (+X) is X
    for refused in (lambda: X[2], lambda: X.reshape(4), lambda: X.item(), lambda: X.reshape(6, copy=True)):
        with pytest.raises((IndexError, ValueError, TypeError)):
            refused()
    with pytest.raises(TypeError):
        hash(x)
    with pytest.raises(TypeError):
        x[0] = v[1]
    with pytest.raises(ValueError, match="expects a list of Vars, '3' is not valid input"):
        MVar.fromlist([v[0], 3])
    with pytest.warns(DeprecationWarning, match="use MVar.fromlist instead"):
        assert MVar([v[:2], v[2:4]]).shape == (2, 2)
    with pytest.warns(DeprecationWarning, match="use MVar.fromvar instead"):
        assert MVar(v[0]).tolist() == [v[0]]


def test_texts(model):
    model.Params.UpdateMode = 0
    x = vector(model, 2)
    y = model.addVar(name="y")
    assert repr(x) == "<MVar (2,)>\narray([<zelvan.Var x[0]>, <zelvan.Var x[1]>])"
    assert repr(MVar.fromvar(y)).startswith("<MVar () *awaiting update*>\narray(<zelvan.Var *Awaiting")
    assert repr(x + 1) == "<MLinExpr (2,)  >\narray([ 1.0 + x[0],  1.0 + x[1]])"
    e = MLinExpr.zeros(2) + 3
    assert repr(e) == "<MLinExpr (2,) >\narray([ 3.0,  3.0])"
    e += x
    e += x
    assert repr(e).startswith("<MLinExpr (2,)   >") and repr(e.copy()).startswith("<MLinExpr (2,)  >\n")
    assert repr(e[...]) == "<MLinExpr (2,)>\narray([ 3.0 + x[0] + x[0],  3.0 + x[1] + x[1]])"
    assert repr(x @ np.eye(2) @ x) == "<MQuadExpr ()  >\narray( 0.0 + [ x[0] ^ 2 + x[1] ^ 2 ])"
    model.remove(x[0].item())
    model.update()
    assert repr(x).startswith("<MVar (2,) (some removed)>") and x._idxarr().tolist() == [-2, 0]
    with pytest.raises(ZelvanError):
        x.LB
    big = MVar.fromlist([x[1].item()] * 5000)
    text = repr(2 * big + np.arange(5000.0))
    assert text.startswith("<MLinExpr (5000,)  >\narray([ 2.0 x[1],  1.0 + 2.0 x[1]") and "4999.0 + 2.0 x[1]" in text


def test_forms_and_what_is_shared(model):
    x = vector(model, 4)
    A = sp.random(3, 4, 0.5, format="csr", random_state=1)
    before = A.copy()
    e = A @ x
    A.data[:] = 99
    assert np.array_equal(e._matmulparts[0][0].toarray(), before.toarray())
    f = e + 1
    e._matmulparts[0][0].data[:] = 7  # the memory is that of the expression, and of no other
    assert set(e._matmulparts[0][0].data) == {7.0} and np.array_equal(f._matmulparts[0][0].toarray(), before.toarray())
    e *= 2
    assert set(e._matmulparts[0][0].data) == {14.0}
    e._const[0] = 5
    assert e.getConstant().tolist() == [5, 0, 0] and f.getConstant().tolist() == [1, 1, 1]
    y = x[:3] + 1
    alias = y
    y += x[1:]
    assert alias is y and len(y._matmulparts) == 2 and len((y + x[:3])._matmulparts) == 1
    assert len(y._matmulparts) == 1
    part = y[0]  # full from now on
    part += 10
    assert not y._is_compact and y[0].getConstant() == 11 and y[[0, 0]].copy()[0].getConstant() == 11
    y[1] = y[0]
    y[0] += 1
    assert y.getConstant().tolist() == [12, 11, 1]
    assert ((2 * x) * np.array([1.0, 0, 2, 0]))._matmulparts[0][0].nnz == 4
    assert (x @ A.toarray().T)._matmulparts[0][0].has_sorted_indices
    single = MVar.fromlist([x.tolist()])
    diagonal = (np.array([[3.0]]) @ single)._matmulparts[0][0]
    assert diagonal.shape == (4, 4) and np.array_equal(diagonal.toarray(), 3 * np.eye(4))
    a, parts, const = (x + 1)._extract_Axb()
    assert a.shape == (4, 4) and parts.tolist() == x.tolist() and const.tolist() == [1] * 4
    assert MLinExpr._from_compact_affine_expr(b=5.0).shape == ()
    rebuilt = MLinExpr(matmulparts=[(before, x)], b=np.zeros(3))
    rebuilt._add_matmul_part(before, x)
    assert len(rebuilt._matmulparts) == 2 and np.shares_memory(rebuilt._matmulparts[1][0].data, before.data)
    for refused in (
        lambda: MLinExpr(matmulparts=[(before, x)], b=np.zeros(2)),
        lambda: MLinExpr(matmulparts=[(before.tocsc(), x)], b=np.zeros(3)),
        lambda: MLinExpr(),
        lambda: rebuilt._add_matmul_part(before, x[:2]),
        lambda: rebuilt._to_full()._extract_Axb(),
    ):
        with pytest.raises(AssertionError):
            refused()


def test_refusals_leave_operands_alone(model):
    x = vector(model, 3)
    e = 2 * x + 1
    for factor in (np.array([np.inf, 1, 1]), np.array([1.0, np.nan, 1])):
        for attempt in (lambda: e * factor, lambda: e.__imul__(factor)):
            with pytest.raises(ZelvanError, match="Multiplier is infinite or NaN"):
                attempt()
    with np.errstate(divide="ignore"), pytest.raises(ZelvanError, match="Multiplier is infinite or NaN"):
        e / np.array([1.0, 0.0, 2.0])
    for factor in (float("inf"), float("nan")):
        for attempt in (lambda: e * factor, lambda: factor * x, lambda: e[...].__imul__(factor)):
            with pytest.raises(ZelvanError, match="Multiplier is Nan or Inf"):
                attempt()
    with pytest.raises(ZeroDivisionError):
        e / 0
    with pytest.raises(ZelvanError, match="Inequality constraints not supported"):
        e != 0
    with pytest.raises(ZelvanError, match="can only be raised to a power of two") as caught:
        x**3
    assert caught.value.errno == 0
    assert repr(x**2) == repr(x * x) == repr(x ** np.array(2.0))
    for attempt in (
        lambda: x ** "a",
        lambda: x @ [1, 2],
        lambda: e @ 3,
        lambda: e - [1, 2],
        lambda: e + "a",
        lambda: 1 / e,
    ):
        with pytest.raises(TypeError):
            attempt()
    with pytest.raises(TypeError, match="A constraint takes <=, >= or =="):
        x < 1
    with pytest.raises(ValueError, match="does not have enough dimensions"):
        3 @ x
    with pytest.raises(ValueError, match="Mismatching inner dimensions 2 vs. 3"):
        np.ones((2, 2)) @ x
    with pytest.raises(ValueError, match="non-broadcastable output operand"):
        e += np.ones((2, 3))
    with pytest.raises(ValueError, match="Cannot assign <object object at .*> to MLinExpr"):
        e[0] = object()
    with pytest.raises(ValueError, match="Cannot construct MLinExpr from 3"):
        MLinExpr._from_matmul_right(3, x)
    assert e.getConstant().tolist() == [1, 1, 1] and repr(e) == repr(2 * x + 1).replace(" >", ">").replace(" >", ">")


def test_comparisons_gather_left(model):
    x = vector(model, 2)
    y = model.addVar()
    for constraint, sense in [(x <= 3, "<"), (3 >= x, "<"), (np.ones(2) <= x, ">"), (x == y, "="), (y >= x, ">")]:
        assert constraint._sense == sense and constraint._rhs == 0.0 and constraint._lhs.shape == (2,)
    assert (y >= x)._lhs[0].item().getCoeff(0) == -1.0
    assert isinstance((x * x <= 1)._lhs, MQuadExpr) and isinstance((x @ x + y <= y * y)._lhs, MQuadExpr)


def test_shape_helpers():
    axes, product = zelvanpy._axis_to_axeslist, zelvanpy._matmul_shape
    assert axes(None, 3) == [-1] * 3 and axes(-1, 3) == [0, 1, -1] and axes((0, 0), 2) == [-1, 0]
    with pytest.raises(IndexError):
        axes(2, 2)
    assert product((2, 3), (3,)) == (2,) and product((3,), (3,)) == () and product((2, 3), (4,)) is None
    for left, right, text in [
        ((), (1,), r"Left operand has not enough dimensions \(0\)"),
        ((1,), (1, 1, 1), r"Right operand has too many dimensions \(3\)"),
        ((2, 3), (4,), "Mismatching inner dimensions 3 vs. 4"),
    ]:
        with pytest.raises(ValueError, match=text):
            product(left, right, do_raise=True)
    assert zelvanpy._broadcast_shapes((3, 1), 2, ()) == (3, 2)
    with pytest.raises(ValueError):
        zelvanpy._broadcast_shapes((3,), (2,))


def test_slow_products_warn(model):
    X = vector(model, 26 * 26).reshape(26, 26)
    e = X[:25, :25] + 1
    with pytest.warns(RuntimeWarning, match="Chained matrix multiplications"):
        (X + 1) @ np.ones(26)
    assert (e @ np.ones(25)).shape == (25,)


def test_what_users_put_into_the_arrays_is_checked(model):
    x = vector(model, 3)
    e = x[:2] + 1
    e._matmulparts[0][0].indices[:] = 1000
    with pytest.raises(IndexError):
        e._to_full()
    model.optimize()
    with pytest.raises(IndexError):
        e.getValue()
    full = (x + 1)[...]
    full._learr[0] = "text"
    x._vararr[0] = None
    for use in (
        lambda: full + 1,
        lambda: full.getValue(),
        lambda: full.sum(),
        lambda: full._normalize(),
        lambda: x + np.ones((3, 3)),
        lambda: x.sum(),
        lambda: x.LB,
        lambda: (x + 1)._to_full(),
        lambda: x[0],
        lambda: x * x,
    ):
        with pytest.raises(TypeError, match="holds|is no"):
            use()
    wrong = sp.csr_matrix(np.eye(3))
    wrong.indices[1] = -5
    with pytest.raises(ValueError, match="index arrays"):
        wrong @ MVar.fromlist(x[1:].tolist() * 2)[:3]
    for blank in (MVar.__new__(MVar), MLinExpr.__new__(MLinExpr), MQuadExpr.__new__(MQuadExpr)):
        for use in (lambda b=blank: b.shape, lambda b=blank: b + 1, lambda b=blank: b.sum(), lambda b=blank: repr(b)):
            with pytest.raises((AttributeError, AssertionError)):
                use()


def test_subclasses_and_life(model):
    class Mine(MVar):
        pass

    class Cells(np.ndarray):
        pass

    x = vector(model, 3)
    mine = Mine(np.array(x.tolist(), dtype=object).view(Cells))
    assert type(mine[0]) is MVar and type(mine._vararr) is np.ndarray and (x - mine).getConstant().tolist() == [0] * 3
    assert (mine + x)._extract_Axb()[1].tolist() == x.tolist() * 2
    mine._me = mine
    seen = weakref.ref(mine)
    del mine
    gc.collect()
    assert seen() is None
    counts = [sys.getrefcount(v) for v in x.tolist()]
    for _ in range(50):
        e = sp.eye(3) @ x + 2 * x - x[::-1]
        e[0] = e[1]
        (e * np.ones((2, 3))).sum(axis=0)
        (x * x).sum() + x @ np.eye(3) @ x
        del e
    assert [sys.getrefcount(v) for v in x.tolist()] == counts
    expression = x + 1
    model.dispose()
    with pytest.raises((AttributeError, ZelvanError)):
        x.LB
    assert expression.getConstant().tolist() == [1, 1, 1] and isinstance(expression[0].item(), LinExpr)
    assert isinstance(x[0].item(), Var)


def test_without_numpy():
    program = """
import sys
class Blocker:
    def find_spec(self, name, path=None, target=None):
        if name.split(".")[0] in ("numpy", "scipy"):
            raise ImportError("no " + name)
sys.meta_path.insert(0, Blocker())
import zelvanpy
m = zelvanpy.Model(env=zelvanpy.Env(params={"OutputFlag": 0}))
x = m.addVar(ub=2, obj=-1)
for attempt in (lambda: zelvanpy.MVar.fromlist([x]), lambda: zelvanpy.MLinExpr.zeros(3)):
    try:
        attempt()
    except ImportError as error:
        print(error)
m.optimize()
print(m.ObjVal, "numpy" in sys.modules)
"""
    done = subprocess.run([sys.executable, "-c", program], capture_output=True, text=True, env=dict(os.environ))
    assert done.stdout == "no numpy\nno numpy\n-2.0 False\n", done.stderr
