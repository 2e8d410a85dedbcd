"""Handles of variables, constraints and the other objects: states, text, hash, sameness, stored fields, life."""

import gc
import sys
import weakref

import pytest

import zelvanpy
from zelvanpy import SOS, Constr, GenConstr, Model, QConstr, Var, ZelvanError


def update_after_removal(model, *items):
    model.remove(list(items))
    model.update()


def test_states_of_a_variable(lp):
    """Live, marked, removed and disposed: what index, text, hash and attributes tell in each state."""
    x, y, z = lp.getVars()
    assert [v.index for v in (x, y, z)] == [v._colno for v in (x, y, z)] == [0, 1, 2]
    assert repr(y) == "<zelvan.Var y>" and y._safename() == ("y", False, False)
    assert hash(y) == hash(1) and {x: "a", y: "b"}[lp.getVars()[1]] == "b"

    lp.remove(y)
    lp.remove(y)
    assert y._colno == -4 and y.index == 1 and y.__cindex__() == 1
    assert repr(y) == "<zelvan.Var y (Removed)>" and y._safename() == ("y", True, True)
    assert y.UB == 4.0
    with pytest.raises(ZelvanError, match="Variable was removed from the model"):
        hash(y)

    lp.update()
    assert (y._colno, y.index, z.index) == (-2, -2, 1)
    assert repr(y) == "<zelvan.Var *Removed*>" and y._safename() == ("*Removed*", False, True)
    for attempt in (lambda: y.UB, lambda: setattr(y, "UB", 1.0), lambda: y.getAttr("UB"), lambda: hasattr(y, "X")):
        with pytest.raises(ZelvanError, match="Var was removed from the model") as refusal:
            attempt()
        assert refusal.value.errno == 0
    with pytest.raises(ZelvanError, match="Variable was removed from the model"):
        hash(y)
    assert z.VarName == "z" and lp.getVars() == [x, z]

    lp.dispose()
    for v in (x, z):
        assert v._cmodel is None and v.index == -1 and v.__numcols__() == 0
        assert repr(v) == "<zelvan.Var *Awaiting Model Update*>"
        with pytest.raises(ZelvanError, match="Variable has not yet been added to the model"):
            hash(v)
        with pytest.raises(AttributeError, match="'zelvanpy.Var' object has no attribute 'UB'"):
            _ = v.UB
    # Dropped from the list before the disposal, so that it still holds the capsule.
    assert y._cmodel is not None and y.__numcols__() == 0
    assert repr(y) == "<zelvan.Var *Removed*>"
    with pytest.raises(AttributeError):
        _ = y.UB


def test_pending_handles(lp):
    x = Var(lp._cmodel, -1)
    ahead = Var(lp._cmodel, 3)
    for v in (x, ahead):
        assert repr(v) == "<zelvan.Var *Awaiting Model Update*>"
        assert v._safename() == ("*Awaiting Model Update*", True, False)
        with pytest.raises(ZelvanError, match="Variable has not yet been added to the model"):
            hash(v)
    for attempt in (lambda: x.LB, lambda: setattr(x, "VarName", "n")):
        with pytest.raises(ZelvanError, match="Var has not yet been added to the model") as refusal:
            attempt()
        assert refusal.value.errno == 0
    with pytest.raises(AttributeError):
        _ = x.NoSuchAttribute
    with pytest.raises(AttributeError):
        _ = ahead.X
    # Removed before the update that would have brought their names.
    added, row = lp.addVar(name="added"), lp.addConstr(lp.getVars()[0] >= 0, "row")
    lp.remove([added, row])
    assert added._safename() == ("*Awaiting Model Update*", True, True) and added.index == 3
    assert repr(added) == str(1.0 * added) == "<zelvan.Var *Awaiting Model Update* (Removed)>"
    assert repr(row) == "<zelvan.Constr *Awaiting Model Update* (Removed)>"
    with pytest.raises(ZelvanError, match="Variable was removed from the model"):
        hash(added)
    lp.update()
    assert repr(added) == "<zelvan.Var *Removed*>" and repr(row) == "<zelvan.Constr *Removed*>"


def test_texts_of_the_other_kinds(lp):
    c, d = lp.getConstrs()
    assert repr(c) == "<zelvan.Constr c1>" and c.__numrows__() == 2
    lp.remove(c)
    assert repr(c) == "<zelvan.Constr c1 (Removed)>" and c.index == 0
    lp.update()
    assert repr(c) == "<zelvan.Constr *Removed*>" and repr(d) == "<zelvan.Constr c2>" and d.index == 0
    assert repr(Constr(lp._cmodel, -1)) == "<zelvan.Constr *Awaiting Model Update*>"
    for kind in (SOS, GenConstr):
        name = kind.__name__
        assert repr(kind(lp._cmodel, -1)) == "<zelvan.%s *Awaiting Model Update*>" % name
        assert repr(kind(lp._cmodel, -2)) == "<zelvan.%s *Removed*>" % name
        assert repr(kind(lp._cmodel, -10)) == "<zelvan.%s 7 (Removed)>" % name
        assert repr(kind(lp._cmodel, 7)) == "<zelvan.%s 7>" % name
    assert repr(QConstr(lp._cmodel, -1)) == "<zelvan.QConstr Not Yet Added>"
    assert repr(QConstr(lp._cmodel, -2)) == "<zelvan.QConstr Deleted>"
    with pytest.raises(AttributeError):
        repr(QConstr(lp._cmodel, 0))  # the name of a constraint that the library doesn't have


def test_repr_shows_the_value_of_a_solution(lp):
    x = lp.getVars()[0]
    lp.optimize()
    assert repr(x) == "<zelvan.Var x (value %s)>" % str(x.X)
    lp.remove(x)
    assert repr(x) == "<zelvan.Var x (Removed)>"


@pytest.mark.parametrize(
    "kind, field, number",
    [
        (Var, "_colno", 1),
        (Constr, "_rowno", 2),
        (SOS, "_sosno", 3),
        (QConstr, "_qconstrno", 4),
        (GenConstr, "_genconstrno", 5),
    ],
)
def test_fields_and_directory(lp, kind, field, number):
    handle = kind(lp._cmodel, 0)
    assert (handle._typename, handle._typeenum, getattr(handle, field)) == (kind.__name__, number, 0)
    assert handle._cmodel is lp._cmodel
    names = dir(handle)
    assert names == sorted(set(names))
    assert {"getAttr", "__cindex__", "_cmodel", field} <= set(names)
    own = set(getattr(zelvanpy, "__attrlist")(lp._cmodel, number))
    others = set(getattr(zelvanpy, "__attrlist")(lp._cmodel, 0))
    assert own <= set(names) and not others & set(names)
    for locked, value in (("_cmodel", None), (field, 3), ("_typename", "x")):
        if locked != "_typename":
            with pytest.raises(AttributeError, match="read-only"):
                setattr(handle, locked, value)
    handle._note = "kept"
    assert "_note" in dir(handle) and handle.__dict__ == {"_cmodel": lp._cmodel, field: 0, "_note": "kept"}
    del handle._note
    for missing in ("_note", "note"):
        with pytest.raises(AttributeError, match=missing):
            getattr(handle, missing)
        with pytest.raises(AttributeError):
            delattr(handle, missing)
    if kind in (Var, Constr):
        assert handle.index == 0 and handle.sameAs(kind(lp._cmodel, 0))
    else:
        assert not hasattr(kind, "index") and not hasattr(kind, "sameAs")


def test_sameness(lp, tmp_path):
    x, y = lp.getVars()[:2]
    other = lp.copy()
    assert x.sameAs(lp.getVars()[0]) and not x.sameAs(y) and not x.sameAs(other.getVars()[0])
    assert not x.sameAs(lp.getConstrs()[0]) and not x.sameAs(None)
    assert hash(x) == hash(other.getVars()[0])
    twin = Var(lp._cmodel, 0)
    assert x.sameAs(other=twin)
    x._mark = [1]
    assert not x.sameAs(twin) and not twin.sameAs(x)
    twin._mark = [1]
    assert x.sameAs(twin)
    other.dispose()


def test_constructor_checks_its_arguments(lp):
    assert Var(cmodel=None, colno=-5).__cindex__() == 2
    for arguments in ((), (lp._cmodel,), (lp._cmodel, "0"), (lp, 0), (lp._cmodel, 0, 0)):
        with pytest.raises(TypeError):
            Var(*arguments)
    with pytest.raises(OverflowError):
        Var(lp._cmodel, 2**31)
    assert repr(Var(lp._env._cenv, 0)) == "<zelvan.Var *Awaiting Model Update*>"
    with pytest.raises(ZelvanError, match="another kind"):
        Model(cmodel=lp._env._cenv)


def test_size_and_collector(lp):
    """A handle is small and unknown to the cycle collector, until a field is stored on it."""
    x = lp.getVars()[0]
    assert sys.getsizeof(x) <= 64 and sys.getsizeof(lp.getConstrs()[0]) <= 64
    assert not gc.is_tracked(x)
    x._self = x
    assert gc.is_tracked(x)
    watch = weakref.ref(x)
    lp.dispose()
    del x
    gc.collect()
    assert watch() is None


def test_subclass_of_a_handle(lp):
    class Named(Var):
        def getAttr(self, attrname):
            return attrname, super().getAttr(attrname)

    v = Named(lp._cmodel, 1)
    v._me = v
    assert v.UB == ("UB", 4.0) and repr(v) == "<zelvan.Var y>" and isinstance(v, Var)
    v.UB = 9.0
    lp.update()
    assert lp.getVars()[1].UB == 9.0
    watch = weakref.ref(v)
    del v
    gc.collect()
    assert watch() is None


def test_handles_are_not_leaked(lp):
    """Reads, writes, failures and texts leave no reference behind."""
    x, y, _ = lp.getVars()
    c = lp.getConstrs()[0]
    lp.remove(y)

    def work():
        repr(x), repr(y), repr(c), dir(x), x.__dict__, x.sameAs(c), hash(x), x.getAttr("VarName"), x.VType
        x.UB = 3.0
        for attempt in (lambda: x.Nothing, lambda: x._nothing, lambda: setattr(x, "UB", "a"), lambda: hash(y)):
            with pytest.raises((AttributeError, ZelvanError)):
                attempt()

    work()
    before = [sys.getrefcount(o) for o in (x, y, c, lp._cmodel, Var, Constr)]
    for _ in range(200):
        work()
    assert [sys.getrefcount(o) for o in (x, y, c, lp._cmodel, Var, Constr)] == before


def test_many_dropped_handles_outlive_their_model(lp):
    stale = []
    for _ in range(3):
        stale += lp.getVars()[:1] + lp.getConstrs()[:1]
        if lp.NumConstrs:
            update_after_removal(lp, lp.getVars()[0], lp.getConstrs()[0])
        else:
            update_after_removal(lp, lp.getVars()[0])
    fresh = Model(env=lp._uenv)
    lp.dispose()
    del lp
    gc.collect()
    for handle in stale:
        repr(handle), dir(handle)
        with pytest.raises((AttributeError, ZelvanError)):
            handle.getAttr("VarName")
        with pytest.raises(ZelvanError, match="Item to be removed is not in model"):
            fresh.remove(handle)
    fresh.dispose()
