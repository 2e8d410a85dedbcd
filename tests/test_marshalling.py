"""Strings and handles on their way to the library, scalars, and the exception."""

import copy
import decimal
import fractions
import pickle
import warnings

import numpy as np
import pytest

import zelvanpy
from zelvanpy import ZVN, Env, Model, ZelvanError

stringtobytes = getattr(zelvanpy, "__stringtobytes")
bytestostring = getattr(zelvanpy, "__bytestostring")
wrapptr = getattr(zelvanpy, "__wrapptr")
ptr = getattr(zelvanpy, "__ptr")
isscalar = getattr(zelvanpy, "__isscalar")
geterrormsg = getattr(zelvanpy, "__geterrormsg")


def test_strings_cross_as_utf8_and_bytes_as_they_are():
    data = b"x\xff"
    assert stringtobytes(data) is data
    assert stringtobytes("zäh€") == "zäh€".encode()
    text = "as it is"
    assert bytestostring(text) is text
    assert bytestostring("zäh€".encode()) == "zäh€"
    assert bytestostring(5) == 5
    with pytest.raises(UnicodeDecodeError):
        bytestostring(data)
    with pytest.raises(AttributeError):
        stringtobytes(5)

    class Encodes:
        def encode(self, encoding):
            return b"by " + encoding.encode()

    assert stringtobytes(Encodes()) == b"by UTF-8"


def test_a_text_that_would_be_cut_is_refused(env_silent):
    with pytest.raises(ValueError, match="null"):
        env_silent.setParam("LogFile", "a\0b")
    with pytest.raises(UnicodeEncodeError):
        env_silent.setParam("ResultFile", "\ud800")
    with pytest.raises(ValueError, match="null"):
        Model("a\0b", env_silent)
    assert env_silent._getParamInfo("ResultFile")[2] == ""


def test_arguments_are_given_once(model):
    for function, args, keywords, text in (
        (model.addVar, (1.0,), {"lb": 2.0}, "addVar() got multiple values for argument 'lb'"),
        (Model, ("a",), {"name": "b"}, "Model() got multiple values for argument 'name'"),
        (model.getAttr, ("NumVars", None, 1), {}, "getAttr() takes at most 2 arguments (3 given)"),
        (model.setParam, ("Threads",), {}, "setParam() missing required argument 'newval' (pos 2)"),
        (model.addVar, (), {"cost": 1.0}, "addVar() got an unexpected keyword argument 'cost'"),
    ):
        with pytest.raises(TypeError) as caught:
            function(*args, **keywords)
        assert str(caught.value) == text
    with pytest.raises(OverflowError):
        model.addVar(vtype="\u00e9")
    model.update()
    assert model.NumVars == 0


def test_capsules(monkeypatch):
    unraisable = []
    monkeypatch.setattr("sys.unraisablehook", lambda args: unraisable.append(args.object))
    assert wrapptr(0) is None
    assert ptr(None) == 0
    assert ptr(wrapptr(0x1234)) == 0x1234
    with pytest.raises(TypeError):
        wrapptr("x")
    assert unraisable == []
    assert ptr("no capsule") == 0
    assert unraisable == ["zelvanpy.__ptr"]


class Float:
    def __float__(self):
        return 2.0


class Broken:
    def __float__(self):
        raise KeyError("no value")


class IndexOnly:
    def __index__(self):
        return 3


@pytest.mark.parametrize(
    "value",
    [1, True, 1.5, float("nan"), np.float32(1), np.int64(3), np.bool_(True), fractions.Fraction(1, 3)]
    + [decimal.Decimal(2), Float(), np.array(3), np.array([2]), np.array([[2.5]])],
)
def test_scalars(value):
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        assert isscalar(value) is True


@pytest.mark.parametrize(
    "value",
    ["3", b"3", None, 1j, [1], (), np.array([1, 2]), np.array([]), np.array(["3"]), np.str_("3"), 10**400]
    + [Broken(), IndexOnly(), object(), ZVN, np.array([None], dtype=object)],
)
def test_no_scalars(value):
    assert isscalar(value) is False


def test_variables_and_models_are_no_scalars(model):
    assert isscalar(model) is False
    assert isscalar(model.Params) is False


def test_error_message_of_an_object(env_silent, model):
    with pytest.raises(ZelvanError):
        env_silent.setParam("Threads", -1)
    assert geterrormsg(env_silent) == "Value -1 of parameter 'Threads' is out of range [0, 1024]"
    with pytest.raises(ZelvanError) as caught:
        model.write("no.such_ending")
    assert geterrormsg(model) == str(caught.value) != ""
    assert geterrormsg(object()) == ""

    class Strange:
        @property
        def _cmodel(self):
            raise ValueError("not an attribute error")

    with pytest.raises(ValueError):
        geterrormsg(Strange())


def test_exception_with_a_text():
    error = ZelvanError(10005, "text")
    assert (error.errno, error.message, str(error)) == (10005, "text", "text")
    assert error._get_message() == "text"
    error._set_message("other")
    assert str(error) == "other" == error._message
    error.message = "third"
    assert str(error) == "third"
    assert isinstance(error, Exception) and ZelvanError.__doc__ == "Zelvan exception class"
    assert ZelvanError.__module__ == "zelvanpy"
    for arguments in ((), (1,), (1, "a", "b")):
        with pytest.raises(TypeError):
            ZelvanError(*arguments)
    assert ZelvanError(argument="named", errno=3).errno == 3


def test_exception_takes_its_text_from_the_object(env_silent, model):
    closed = Env()
    closed.close()
    assert str(ZelvanError(1, closed)) == "Failed to create environment"
    with pytest.raises(ZelvanError):
        env_silent.setParam("Threads", 5000)
    assert str(ZelvanError(1, env_silent)) == geterrormsg(env_silent)
    with pytest.raises(ZelvanError):
        model.setParam("MIPGap", -1)
    text = geterrormsg(model._env)
    assert "MIPGap" in text and str(ZelvanError(1, model)) == text
    model.dispose()
    with pytest.raises(ZelvanError, match="model handle is NULL"):
        model.reset()


def test_exception_of_an_object_without_text_still_prints():
    error = ZelvanError(10005, object())
    assert "10005" in str(error)
    assert not hasattr(error, "_message")


def test_exceptions_travel(env_silent):
    class Mine(ZelvanError):
        pass

    with pytest.raises(ZelvanError) as caught:
        env_silent.setParam("Threads", -1)
    caught.value.note = "kept"
    for protocol in range(pickle.HIGHEST_PROTOCOL + 1):
        again = pickle.loads(pickle.dumps(caught.value, protocol))
        assert (type(again), again.errno, again.message) == (
            ZelvanError,
            ZVN.ERROR_VALUE_OUT_OF_RANGE,
            str(caught.value),
        )
        assert again.note == "kept"
    assert type(copy.copy(Mine(1, "a"))) is Mine
