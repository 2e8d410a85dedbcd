"""The attribute engine: one value, many values, every form of argument, every refusal in its order."""

import gc
import math
import re
import sys

import pytest

import zelvanpy
from zelvanpy import Constr, Model, Var, ZelvanError

INFINITY, UNDEFINED = 1e100, 1e101

attrinfo = getattr(zelvanpy, "__getattrinfo")
get_one = getattr(zelvanpy, "__getattr")
set_one = getattr(zelvanpy, "__setattr")
get_list = getattr(zelvanpy, "__gettypedattrlist")
set_list = getattr(zelvanpy, "__settypedattrlist")
prefetch = getattr(zelvanpy, "__prefetchattr")
attrlist = getattr(zelvanpy, "__attrlist")


def refused(error, text, function, *arguments):
    """The call fails with exactly this text; returns the exception."""
    with pytest.raises(error, match="^%s$" % re.escape(text)) as caught:
        function(*arguments)
    return caught.value


def no_attribute(kind, name):
    return "'zelvanpy.%s' object has no attribute '%s'" % (kind, name)


def test_names_and_kinds(lp):
    x, c = lp.getVars()[0], lp.getConstrs()[0]
    assert lp.NumVars == lp.getAttr("NumVars") == lp.numvars == get_one(lp, "NUMVARS") == 3
    assert attrinfo(lp, "NumVars") == (1, 0, 0) and attrinfo(x, "vtype") == (0, 1, 1)
    assert attrinfo(c, "RHS") == (2, 2, 1) and attrinfo(lp, "ModelName") == (3, 0, 1)
    assert x.ub == x.UB == getattr(x, "".join(["U", "B"])) == 3.0

    for thing, kind in ((lp, "Model"), (x, "Var"), (c, "Constr")):
        for name in ("NoSuchThing", "", "NumVar\xe4", "NumVars\0", "RHS\0", "UB\0"):
            refused(AttributeError, no_attribute(kind, name), thing.getAttr, name)
            refused(AttributeError, no_attribute(kind, name), thing.setAttr, name, 1)
            refused(AttributeError, no_attribute(kind, name), thing.prefetchAttr, name)
        assert not hasattr(thing, "nothing") and not hasattr(thing, "_nothing")
    refused(AttributeError, no_attribute("Var", "RHS"), x.getAttr, "RHS")
    refused(AttributeError, no_attribute("Var", "NumVars"), x.setAttr, "NumVars", 3)
    refused(AttributeError, no_attribute("Constr", "LB"), c.prefetchAttr, "LB")
    # On a model the kind is the library's to refuse, and an attribute of objects is a list of values.
    with pytest.raises(AttributeError, match="UB"):
        get_one(lp, "UB")
    assert lp.UB == [3.0, 4.0, 10.0] and lp.ConstrName == ["c1", "c2"]
    lp.prefetchAttr("X")
    assert (lp._Model__isAttrAvailable("NumVars"), lp._Model__isAttrAvailable("X")) == (1, 0)
    lp.optimize()
    assert lp._Model__isAttrAvailable("X") == 1


def test_lists_of_names(lp):
    by_kind = [attrlist(lp._cmodel, kind) for kind in range(6)]
    assert {"NumVars", "ObjVal"} <= set(by_kind[0]) and {"X", "LB"} <= set(by_kind[1]) and "Pi" in by_kind[2]
    assert sum(map(len, by_kind)) == len(set().union(*by_kind))
    assert attrlist(lp._cmodel, 9) == [] and attrlist(None, 1) == []


def test_values_by_type(lp):
    x, _, z = lp.getVars()
    assert (x.VType, z.VType, x.VarName) == ("C", "I", "x")
    assert type(lp.ObjCon) is float and type(lp.IsMIP) is int and lp.ModelName == "small"

    z.UB = math.inf
    x.LB = -math.inf
    lp.setAttr("UB", [x], INFINITY)
    lp.update()
    assert (z.UB, x.LB, x.UB) == (math.inf, -math.inf, math.inf)
    assert lp.getAttr("UB", [x, z]) == [math.inf, math.inf] and z.getAttr("UB") == math.inf
    lp.setAttr("LB", [x, z], [-math.inf, 0])
    lp.setAttr("UB", {0: x}, {0: math.inf})
    lp.update()
    assert lp.getAttr("LB", (x, z)) == [-math.inf, 0.0] and x.UB == math.inf
    assert x.Start == UNDEFINED and lp.getAttr("Start", [x]) == [UNDEFINED]

    z.VType, x.VarName, lp.ModelName, lp.ModelSense, z.BranchPriority = "Binary", "\xfc", "n\xe4me", True, 7
    lp.update()
    assert (z.VType, x.VarName, lp.ModelName, lp.ModelSense, z.BranchPriority) == ("B", "\xfc", "n\xe4me", 1, 7)
    assert lp.getVarByName("\xfc") is x and lp.BranchPriority == [0, 0, 7]


def test_writes_wait_for_the_update(lp):
    x = lp.getVars()[0]
    x.UB = 1.5
    lp.ModelName = "later"
    assert x.UB == 3.0 and lp.ModelName == "small"
    lp.update()
    assert x.UB == 1.5 and lp.ModelName == "later"


def test_refused_values(lp):
    x, c = lp.getVars()[0], lp.getConstrs()[0]
    takes = "Attribute '%s' takes %s value"
    for value in (b"C", 67, None):
        refused(AttributeError, takes % ("VType", "character"), x.setAttr, "VType", value)
    for value in (1.0, "1", None):
        refused(AttributeError, takes % ("BranchPriority", "integer"), setattr, x, "BranchPriority", value)
        refused(AttributeError, takes % ("ModelSense", "integer"), setattr, lp, "ModelSense", value)
    for value in ("1", None, x, [1.0]):
        refused(AttributeError, takes % ("LB", "double"), setattr, x, "LB", value)
        refused(AttributeError, takes % ("ObjCon", "double"), setattr, lp, "ObjCon", value)
    for value in (1, b"name"):
        refused(AttributeError, takes % ("VarName", "string"), setattr, x, "VarName", value)
        refused(AttributeError, takes % ("ModelName", "string"), setattr, lp, "ModelName", value)
    for function in (x.setAttr, lambda name, value: lp.setAttr(name, [x], [value])):
        for value, error in (("\u20ac", OverflowError), ("", (IndexError, TypeError)), ("?", AttributeError)):
            with pytest.raises(error):
                function("VType", value)
        with pytest.raises(OverflowError, match="BranchPriority"):
            function("BranchPriority", 2**31)
        with pytest.raises(AttributeError):
            function("LB", math.nan)
    for handle, name in ((x, "X"), (c, "Pi")):
        refused(AttributeError, "Attribute '%s' cannot be set" % name, setattr, handle, name, "no number")
        refused(AttributeError, "Attribute '%s' cannot be set" % name, lp.setAttr, name, [handle], ["no number"])
    refused(AttributeError, "Attribute 'NumVars' cannot be set", setattr, lp, "NumVars", "no number")
    lp.update()
    assert (x.VType, x.LB, x.VarName, lp.ModelSense, lp.ModelName) == ("C", 0.0, "x", -1, "small")


def test_unavailable_values(lp):
    """What the library refuses now is an AttributeError with its sentence, a list read a ZelvanError with its code."""
    x = lp.getVars()[0]
    for attempt in (lambda: x.X, lambda: lp.ObjVal, lambda: lp.getAttr("ObjVal")):
        with pytest.raises(AttributeError, match="X|ObjVal"):
            attempt()
    assert not hasattr(x, "X") and not hasattr(lp, "ObjVal")
    with pytest.raises(ZelvanError) as refusal:
        lp.getAttr("X", [x])
    assert refusal.value.errno == 10005
    lp.optimize()
    assert lp.getAttr("X", lp.getVars()) == lp.X == [v.X for v in lp.getVars()]
    with pytest.raises(ZelvanError, match="'Pi'"):
        _ = lp.Pi  # duals of a model with an integer variable


def test_objects_to_read_from(lp):
    x, y, z = lp.getVars()
    assert lp.getAttr("UB", [z, x, x]) == [10.0, 3.0, 3.0]
    for form in ((z, x), iter([z, x]), (v for v in (z, x)), {z: 1, x: 2}.keys(), dict.fromkeys([z, x]).keys()):
        assert lp.getAttr("UB", form) == [10.0, 3.0]
    by_key = lp.getAttr("UB", {"a": z, ("b", 1): x})
    assert by_key == {"a": 10.0, ("b", 1): 3.0} and type(by_key) is zelvanpy.tupledict
    assert lp.getAttr("VarName", by_key.__class__({2: y})) == {2: "y"}
    moved = zelvanpy.tupledict()
    for k, var in ((1, x), (2, y), (3, z), (1, x)):
        moved[k] = var
    assert list(lp.getAttr("VarName", moved).items()) == [(2, "y"), (3, "z"), (1, "x")]
    assert lp.getAttr("VarName", []) == [] and lp.getAttr("VarName", {}) == {}
    assert lp.getAttr(attrname="VType", objs=[x, z]) == ["C", "I"]

    refusal = refused(ZelvanError, "Unrecognized argument to getAttr", lp.getAttr, "UB", 5)
    assert refusal.errno == -1
    refused(ZelvanError, "Unrecognized argument to getAttr", lp.getAttr, "UB", x)
    c = lp.getConstrs()[0]
    for objs in ([x, c], {1: x, 2: c}, [c]):
        refused(AttributeError, no_attribute("Constr", "UB"), lp.getAttr, "UB", objs)
    with pytest.raises(AttributeError, match="_typeenum"):
        lp.getAttr("UB", [x, 1.0])
    with pytest.raises(ZelvanError) as refusal:
        lp.getAttr("UB", [x, Var(lp._cmodel, -1)])
    assert refusal.value.errno == 10006


def test_objects_and_values_to_write(lp):
    x, y, z = lp.getVars()

    def bounds_after(*arguments):
        lp.setAttr("UB", *arguments)
        lp.update()
        return lp.UB

    assert bounds_after(y, 5) == [3.0, 5.0, 10.0]
    assert bounds_after([x, z], 6.5) == [6.5, 5.0, 6.5]
    assert bounds_after((x, y), [1, True]) == [1.0, 1.0, 6.5]
    assert bounds_after({"k": x, "l": z}, {"l": 9, "k": 8, "m": 7}) == [8.0, 1.0, 9.0]
    assert bounds_after({"k": x, "l": z}, 2) == [2.0, 1.0, 2.0]
    assert bounds_after({0: z, 1: y}, [30, 20]) == [2.0, 20.0, 30.0]
    assert bounds_after([], []) == bounds_after({}, {}) == [2.0, 20.0, 30.0]
    assert bounds_after([y, z], [math.inf, 10**60])[1:] == [math.inf, math.inf]
    assert bounds_after([y, z], [20, 30]) == [2.0, 20.0, 30.0]

    lp.setAttr("VarName", [x, y], ["first", "second"])
    lp.setAttr("VType", [x, y], "I")
    lp.setAttr("BranchPriority", [x, y], [2.9, -2.9])
    lp.update()
    assert lp.VarName == ["first", "second", "z"] and lp.VType == ["I", "I", "I"]
    assert lp.BranchPriority == [2, -2, 0]  # a list entry is truncated, which one value would not be

    for name in ("UB", "X"):  # before it is told that X can't be set
        refused(AttributeError, "Attribute '%s' is not a Model attribute" % name, lp.setAttr, name, 1.0)
    lengths = "Attribute 'UB' inconsistent lengths of both arguments"
    refused(AttributeError, lengths, lp.setAttr, "UB", [x, y], [1.0])
    refused(AttributeError, lengths, lp.setAttr, "UB", x, [1.0, 2.0])
    refused(AttributeError, "Attribute 'UB' argument types do not match", lp.setAttr, "UB", {1: x}, lp)
    with pytest.raises(KeyError):
        lp.setAttr("UB", {1: x, 2: y}, {1: 1.0})
    with pytest.raises(TypeError):
        lp.setAttr("UB", [x, y], [1.0, None])
    with pytest.raises(TypeError, match="string of length 2"):
        lp.setAttr("VType", [x, y], "BI")
    for gone in (-1, -2):
        with pytest.raises(AttributeError):
            lp.setAttr("UB", [x, Var(lp._cmodel, gone)], 0.0)
    lp.update()
    assert lp.UB == [2.0, 20.0, 30.0]


def test_numpy_values(lp):
    numpy = pytest.importorskip("numpy")
    x, y, z = handles = lp.getVars()
    x.UB, z.BranchPriority = numpy.float32(2.5), 4
    lp.setAttr("UB", [y, z], numpy.array([7.0, numpy.inf]))
    lp.setAttr("LB", handles, numpy.int64(1))
    lp.setAttr("BranchPriority", [x, y], numpy.array([3, 5], dtype=numpy.int32))
    lp.update()
    assert lp.UB == [2.5, 7.0, math.inf] and lp.LB == [1.0, 1.0, 1.0] and lp.BranchPriority == [3, 5, 4]
    refused(
        AttributeError, "Attribute 'BranchPriority' takes integer value", x.setAttr, "BranchPriority", numpy.int32(1)
    )
    array = numpy.array(handles, dtype=object)
    assert lp.getAttr("UB", array) == lp.UB
    lp.setAttr("UB", array, numpy.arange(3.0))
    lp.update()
    assert lp.UB == [0.0, 1.0, 2.0]
    assert get_list(lp, "UB", 2, list(numpy.array([2, 0], dtype=numpy.int32))) == [2.0, 0.0]


def test_functions_of_the_module(lp):
    x = lp.getVars()[0]
    set_one(x, "UB", 12)
    set_list(lp, "LB", 2, [1, 2], (-math.inf, 3))
    set_list(lp, "VarName", 3, [1], [b"bytes"])
    lp.update()
    assert get_one(x, "ub") == 12.0 and get_list(x, "LB", 2, (1, 2)) == [-math.inf, 3.0]
    assert get_list(lp, "VarName", 3, [1]) == ["bytes"] and get_list(lp, "VType", 0, [2]) == ["I"]
    prefetch(x, "X")
    with pytest.raises(IndexError):
        set_list(lp, "LB", 2, [0, 1], [1.0])
    with pytest.raises(ValueError, match="no value type"):
        get_list(lp, "LB", 4, [0])
    with pytest.raises(TypeError):
        get_one(5, "LB")
    with pytest.raises(ZelvanError) as refusal:
        get_list(lp, "LB", 1, [0])  # another type than the attribute has
    assert refusal.value.errno == 10003


def test_disposed_model(lp):
    x, c = lp.getVars()[0], lp.getConstrs()[0]
    lp.dispose()
    freed = "Model has already been freed"
    for attempt in (
        lambda: lp.NumVars,
        lambda: lp.nothing,
        lambda: lp.getAttr("X"),
        lambda: lp.setAttr("ModelName", "a"),
        lambda: setattr(lp, "ModelName", "a"),
        lambda: lp.prefetchAttr("X"),
    ):
        assert refused(ZelvanError, freed, attempt).errno == 0
    for handle, kind in ((x, "Var"), (c, "Constr")):
        refused(AttributeError, no_attribute(kind, "LB"), handle.getAttr, "LB")
        refused(AttributeError, no_attribute(kind, "LB"), handle.setAttr, "LB", 1)
    assert lp._Model__isAttrAvailable("NumVars") == 0


def test_a_list_that_changes_while_it_is_read(lp):
    """Code that runs in the middle of a bulk write may shrink the lists it was given."""
    handles = lp.getVars()
    values = [1.0, 2.0, 3.0]

    class Shrinking:
        def __float__(self):
            del values[1:]
            return 5.0

    values[0] = Shrinking()
    with pytest.raises(IndexError):
        lp.setAttr("UB", handles, values)

    class Clearing:
        _typeenum = 1

        def __cindex__(self):
            objects.clear()
            return 0

    objects = [Clearing(), handles[1], handles[2]]
    assert lp.getAttr("UB", objects) == [3.0, 4.0, 10.0]
    objects = [Clearing(), handles[1], handles[2]]
    lp.setAttr("UB", objects, 1.0)
    lp.update()
    assert lp.UB == [1.0, 1.0, 1.0]


def test_bulk_access_leaks_nothing(lp):
    x, y, z = handles = lp.getVars()
    by_key = {1: x, 2: y}
    unique = float("2.25")

    def work():
        lp.getAttr("UB", handles), lp.getAttr("VarName", by_key), lp.UB, attrlist(lp._cmodel, 1)
        lp.setAttr("UB", handles, [unique, 2, 3]), lp.setAttr("UB", by_key, {1: unique, 2: unique})
        lp.setAttr("VarName", handles, ["a", "b", "c"])
        for attempt in (("UB", [x, 1]), ("UB", {1: 2}), ("Nothing", handles), ("X", handles)):
            with pytest.raises((AttributeError, ZelvanError)):
                lp.getAttr(*attempt)
        with pytest.raises(TypeError):
            lp.setAttr("UB", handles, [unique, None, None])
        lp.update()

    work()
    gc.collect()
    counted = (x, y, z, handles, by_key, unique, lp._cmodel, Var, Constr, Model)
    before = [sys.getrefcount(o) for o in counted]
    for _ in range(100):
        work()
    gc.collect()
    assert [sys.getrefcount(o) for o in counted] == before
