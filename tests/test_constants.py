"""The classes of constants."""

import sys

import pytest

import zelvanpy
from zelvanpy import ZVN, ZelvanError


def public_names(cls):
    return [name for name in vars(cls) if not name.startswith("_")]


def test_tables_are_complete_and_consistent():
    attributes, parameters = public_names(type(ZVN.Attr)), public_names(type(ZVN.Param))
    assert (len(attributes), len(parameters)) == (179, 172)
    assert all(getattr(ZVN.Attr, name) == name for name in attributes)
    assert all(getattr(ZVN.Param, name) == name for name in parameters)
    assert (attributes[0], attributes[56], attributes[-1]) == ("NumConstrs", "LB", "BatchStatus")
    assert (parameters[0], parameters[-1]) == ("BarIterLimit", "UpdateMode")
    statuses, errors = public_names(type(ZVN.Status)), public_names(type(ZVN.Error))
    assert [getattr(ZVN.Status, name) for name in statuses] == list(range(1, 18))
    assert all(getattr(ZVN, name) == getattr(ZVN.Status, name) for name in statuses)
    assert len(errors) == 32
    assert all(getattr(ZVN, "ERROR_" + name) == getattr(ZVN.Error, name) for name in errors)
    assert len(public_names(ZVN.Callback)) == 64


def test_both_spellings_are_one_object():
    for lower in ("attr", "param", "callback", "error", "status"):
        assert getattr(ZVN, lower) is getattr(ZVN, lower.capitalize())
    assert isinstance(ZVN.Callback, type)


def test_values_that_tables_could_confuse():
    assert (ZVN.LESS_EQUAL, ZVN.GREATER_EQUAL, ZVN.EQUAL) == ("<", ">", "=")
    assert "".join([ZVN.CONTINUOUS, ZVN.BINARY, ZVN.INTEGER, ZVN.SEMICONT, ZVN.SEMIINT]) == "CBISN"
    assert (ZVN.MINIMIZE, ZVN.MAXIMIZE, type(ZVN.MINIMIZE)) == (1, -1, int)
    assert (ZVN.INFINITY, ZVN.UNDEFINED, type(ZVN.INFINITY)) == (1e100, 1e101, float)
    assert ZVN.METHOD_NONE == ZVN.METHOD_AUTO == ZVN.CUTS_AUTO == -1
    assert (ZVN.NONBASIC_LOWER, ZVN.NONBASIC_UPPER, ZVN.SUPERBASIC) == (-1, -2, -3)
    assert (ZVN.Callback.MIPSOL_OBJ, ZVN.Callback.WORK, ZVN.Callback.BARRIER_COMPL) == (4002, 6003, 7006)
    for place in ("MIPSOL", "MIPNODE", "BARRIER"):  # what can be asked at a place is numbered by it
        codes = {code // 1000 for name, code in vars(ZVN.Callback).items() if name.startswith(place + "_")}
        assert codes == {getattr(ZVN.Callback, place)}
    assert ZVN.ERROR_SECURITY == 10032 and not hasattr(ZVN.Error, "SECURITY")
    assert (ZVN.VERSION_MAJOR, ZVN.VERSION_MINOR, ZVN.VERSION_TECHNICAL) == zelvanpy.zelvan.version()


@pytest.mark.parametrize("table, word", [("Attr", "attribute"), ("Param", "parameter"), ("Status", "status")])
def test_constants_can_not_be_set(table, word):
    constants = getattr(ZVN, table)
    name = public_names(type(constants))[0]
    for target in (name, "New"):
        with pytest.raises(ZelvanError, match=f"^Modifying Zelvan {word} constant not allowed$") as caught:
            setattr(constants, target, 1)
        assert caught.value.errno == 0
    with pytest.raises(AttributeError):
        delattr(constants, name)
    assert vars(constants) == {}


def test_other_tables_refuse_nothing():
    ZVN.Error.MINE = 5
    assert ZVN.Error.MINE == 5
    del ZVN.Error.MINE

    class Own(type(ZVN.Error)):
        pass

    count = sys.getrefcount(Own)
    for _ in range(10):
        Own()
    assert sys.getrefcount(Own) == count
    ZVN.MINE = 6
    assert ZVN.MINE == 6
    del ZVN.MINE


def test_help_describes_every_constant(capsys):
    for table in (ZVN.Attr, ZVN.Param, ZVN.Status, ZVN.Error, ZVN.Callback):
        zelvanpy.help(table)
        words = set(capsys.readouterr().out.replace(",", " ").split())
        names = public_names(table if isinstance(table, type) else type(table))
        assert [name for name in names if name not in words] == []
    zelvanpy.help()
    text = capsys.readouterr().out
    for command in ("read", "models", "setParam", "readParams", "resetParams", "paramHelp", "writeParams", "system"):
        assert f"  {command}(" in text
    for topic in ("Model", "Var", "Constr", "Batch", "ZVN.attr", "ZVN.param"):
        assert f"help({topic})" in text
