"""Parameter services of environments, models and the module."""

import gc
import pathlib
import random
import sys
import threading

import numpy as np
import pytest

import zelvanpy
from zelvanpy import ZVN, Env, Model, ZelvanError, zelvan

ParamClass = zelvanpy.ParamClass
INFINITE = float("inf")


@pytest.fixture(autouse=True)
def no_default_env(capsys):
    zelvanpy.disposeDefaultEnv()
    capsys.readouterr()
    yield
    zelvanpy.disposeDefaultEnv()


@pytest.fixture
def env(capsys):
    with Env() as made:
        yield made


@pytest.fixture
def main(monkeypatch):
    """An empty module in the place of __main__."""
    module = type(sys)("__main__")
    monkeypatch.setitem(sys.modules, "__main__", module)
    return module


class Number:
    def __int__(self):
        return 7

    def __float__(self):
        return 0.25


class IndexOnly:
    def __index__(self):
        return 7


# Reading


def test_info_of_each_type(env):
    assert env._getParamInfo("threads") == ("threads", int, 0, 0, 1024, 0, 0)
    name, kind, value, low, high, default, flags = env._getParamInfo("TimeLimit")
    assert (name, kind, value, low, high, default, flags) == ("TimeLimit", float, INFINITE, 0.0, INFINITE, INFINITE, 0)
    assert env._getParamInfo("BestObjStop")[2:6] == (-INFINITE, -INFINITE, INFINITE, -INFINITE)
    assert env._getParamInfo("LOGFILE") == ("LOGFILE", str, "", "", "", "", 0)
    assert env._getParamInfo("No such") is None
    assert env._getParamInfo(b"Threads")[0] == "Threads"
    with pytest.raises(AttributeError):
        env._getParamInfo(5)


def test_names_resolve_as_written_in_any_case_or_by_wildcard(env):
    assert env._paramlist("tHREADS") == ["tHREADS"]
    assert env._paramlist("*sos*bigm") == ["PreSOS1BigM", "PreSOS2BigM"]
    assert env._paramlist("?bbt") == ["OBBT"]
    assert env._paramlist("[xq]uad") == ["Quad"]
    names = [name for name in vars(type(ZVN.Param)) if not name.startswith("_")]
    assert env._paramlist("*") == names
    for nothing in ("", "nix*", "Threads ", None, 5, b"Threads"):
        assert env._paramlist(nothing) == []


def test_long_strings_read_whole(env):
    for length in (1, 510, 511, 512, 513, 5000):
        text = "ä" + "x" * (length - 2) if length > 1 else "x"
        env.setParam("ResultFile", text)
        assert env._getParamInfo("ResultFile")[2] == text


# Setting


def test_values_convert_by_their_own_protocol(env):
    for value, kept in ((2.9, 2), (True, 1), (np.int8(5), 5), (np.float64(3.5), 3), (np.array([4]), 4), (Number(), 7)):
        env.setParam("Threads", value)
        assert env._getParamInfo("Threads")[2] == kept
    for value, kept in ((1, 1.0), (np.float32(0.5), 0.5), (np.array(2), 2.0), (Number(), 0.25), (1e100, INFINITE)):
        env.setParam("TimeLimit", value)
        assert env._getParamInfo("TimeLimit")[2] == kept
    env.setParam("NodefileDir", b"bytes")
    assert env._getParamInfo("NodefileDir")[2] == "bytes"


@pytest.mark.parametrize("name, kept", [("Threads", 3), ("MIPGap", 0.5)])
def test_refused_values_change_nothing(env, name, kept):
    env.setParam(name, kept)
    for value in ("5", None, 1j, [1], IndexOnly(), object(), np.array([1, 2])):
        with pytest.raises(TypeError):
            env.setParam(name, value)
    with pytest.raises(OverflowError):
        env.setParam(name, 2**31 if name == "Threads" else 10**400)
    for value in (-1, -(2**31)):
        with pytest.raises(ZelvanError, match=name) as caught:
            env.setParam(name, value)
        assert caught.value.errno == ZVN.ERROR_VALUE_OUT_OF_RANGE
    assert env._getParamInfo(name)[2] == kept


def test_type_errors_name_the_parameter(env):
    with pytest.raises(TypeError, match="'threads' must be an integer, not str"):
        env.setParam("threads", "many")
    with pytest.raises(OverflowError, match="'Threads'"):
        env.setParam("Threads", 2**40)
    with pytest.raises(AttributeError):
        env.setParam("LogFile", 5)


def test_a_str_that_answers_oddly_is_no_default(env):
    class Odd(str):
        def upper(self):
            return 5

    env.setParam("LogFile", Odd(""))
    with pytest.raises(TypeError):
        env.setParam("Threads", Odd("3"))


def test_the_word_default_restores(env):
    for name, value in (("Threads", 3), ("MIPGap", 0.3), ("ResultFile", "a.sol")):
        for word in ("default", "DEFAULT", "Default"):
            env.setParam(name, value)
            assert env._getParamInfo(name)[2] == value
            env.setParam(name, word)
            assert env._getParamInfo(name)[2] == env._getParamInfo(name)[5]


def test_a_pattern_sets_only_where_it_is_unique(env, capsys):
    env.setParam("MIPGa*", 0.5)
    assert capsys.readouterr().out == "Matching parameters: ['MIPGap', 'MIPGapAbs']\n"
    env.setParam("nothing*", 0.5)
    env.setParam("", 0.5)
    assert capsys.readouterr().out == "No parameters matching 'nothing*' found\nNo parameters matching '' found\n"
    assert repr(env) == "<zelvanpy.Env, No parameter changes>"
    env.setParam("mip*abs", 0.5)
    assert repr(env) == "<zelvanpy.Env, Parameter changes: MIPGapAbs=0.5>"
    env.fixTuneParam("MIP*")
    env.fixTuneParam("Threads")
    assert "Matching parameters: [" in capsys.readouterr().out
    with pytest.raises(TypeError):
        env.setParam(5, 1)


def test_changes_hide_what_is_opaque(env):
    env.setParam("ServerPassword", "hidden")
    env.setParam("Threads", 2)
    text = repr(env)
    assert "ServerPassword=(user-defined), Threads=2" in text and "hidden" not in text
    opaque = [name for name in env._paramlist("*") if env._getParamInfo(name)[6] & 32]
    silent = [name for name in env._paramlist("*") if env._getParamInfo(name)[6] & 16]
    assert "ServerPassword" in opaque
    for name in silent:
        _, kind, value, low, high = env._getParamInfo(name)[:5]
        env.setParam(name, "x" if kind is str else low if value == high else high)
    assert repr(env) == text


def test_reset_write_and_read(env, tmp_path, capsys):
    file = str(tmp_path / "p.prm")
    env.setParam("Threads", 2)
    env.setParam("MIPGap", 0.1)
    env.writeParams(file)
    env.resetParams()
    assert repr(env) == "<zelvanpy.Env, No parameter changes>"
    env.readParams(filename=file)
    assert repr(env) == "<zelvanpy.Env, Parameter changes: MIPGap=0.1, Threads=2>"
    assert capsys.readouterr().out.splitlines() == [
        f"Wrote non-default parameter settings to file {file}",
        "Reset all parameters",
        f"Read parameters from file {file}",
    ]
    env.setParam("Threads", 5)
    for call in (env.readParams, env.writeParams):
        with pytest.raises(ZelvanError, match="missing"):
            call(str(tmp_path / "missing" / "p.prm"))
        with pytest.raises(TypeError):
            call(file.encode())
    assert env._getParamInfo("Threads")[2] == 5
    assert capsys.readouterr().out == ""


# The default environment and models in __main__


def test_settings_of_the_default_environment_reach_models_in_main(main, capsys):
    main.early, main.late, held = Model(), Model(), Model()
    zelvanpy.setParam("Threads", 2)
    assert [m.Params.Threads for m in (main.early, main.late, held)] == [2, 2, 0]
    assert Model().Params.Threads == 2
    main.early.Params.Threads = 4
    assert zelvanpy.getParamInfo("Threads") == ("Threads", int, 2, 0, 1024, 0)
    zelvanpy.setParam("Threads", "default")
    assert (main.early.Params.Threads, zelvanpy.getParamInfo("Threads")[2]) == (0, 0)
    other = Env()
    other.setParam("Threads", 3)
    assert main.early.Params.Threads == 0
    main.early.Params.MIPGap = held.Params.MIPGap = 0.5
    zelvanpy.fixTuneParam("Threads")
    capsys.readouterr()
    zelvanpy.resetParams()
    assert (main.early.Params.MIPGap, held.Params.MIPGap) == (1e-4, 0.5)
    assert capsys.readouterr().out.splitlines() == [
        "Reset all parameters",
        "Reset all parameters to their default values",
    ]


def test_a_refused_setting_leaves_the_models_alone(main):
    main.m = Model()
    for value in (-1, "many", 2**40):
        with pytest.raises((ZelvanError, TypeError, OverflowError)):
            zelvanpy.setParam("Threads", value)
    assert main.m.Params.Threads == zelvanpy.getParamInfo("Threads")[2] == 0


def test_module_functions_create_the_default_environment(tmp_path, capsys):
    file = tmp_path / "p.prm"
    file.write_text("threads 3  # few\nMIPGAP 0.5\n")
    for call in (
        lambda: zelvanpy.setParam(paramname="Threads", newvalue=1),
        lambda: zelvanpy.getParamInfo("Threads"),
        lambda: zelvanpy.fixTuneParam("Threads"),
        lambda: zelvanpy.resetParams(),
        lambda: zelvanpy.readParams(str(file)),
        lambda: zelvanpy.writeParams(str(tmp_path / "out.prm")),
        lambda: zelvanpy.paramHelp(),
    ):
        assert zelvan._defaultenv is None
        call()
        assert zelvan._defaultenv is not None
        zelvanpy.disposeDefaultEnv()
    with pytest.raises(TypeError, match="nix"):
        zelvanpy.getParamInfo("nix")


# Models and ParamClass


def test_parameters_of_a_model(model, capsys):
    model.setParam("OutputFlag", 1)
    model.setParam(paramname="mipgap", newval=0.25)
    assert model.Params is model.params and model.Params.MIPGap == 0.25
    assert model.getParamInfo("mipgap") == ("mipgap", float, 0.25, 0.0, INFINITE, 1e-4)
    capsys.readouterr()
    assert model.getParamInfo("MIPGap*") is None
    assert model.getParamInfo("nix") is None
    assert capsys.readouterr().out.splitlines() == [
        "Matching parameters:['MIPGap', 'MIPGapAbs']",
        "No parameters matching 'nix' found",
    ]
    model.fixTuneParam("Threads")
    model.resetParams()
    assert model.Params.MIPGap == 1e-4 and model.Params.OutputFlag == 1
    with pytest.raises(ZelvanError, match="Invalid Environment"):
        Model.__new__(Model).setParam("Threads", 1)


def test_params_read_and_write_like_attributes(model, capsys):
    params = model.Params
    params.Threads = 2.5
    assert params.Threads == params.threads == params.THREADS == 2
    params.Threads = "default"
    assert repr(params) == "<zelvanpy.ParamClass: Parameter changes: OutputFlag=0>"
    params.OutputFlag = 1
    assert repr(params) == "<zelvanpy.ParamClass: No parameter changes>" and params._getChangeList() in repr(params)
    for name in ("Nix", "MIPGap*", "_nix", "mipgäp", "Threads\0"):
        with pytest.raises(AttributeError, match="^No parameter named '"):
            getattr(params, name)
    assert not hasattr(params, "nix")
    params.nix = 3
    params.MIPGa = 3
    assert "No parameters matching 'nix' found" in capsys.readouterr().out
    with pytest.raises(ZelvanError, match="out of range"):
        params.Threads = -1
    with pytest.raises(AttributeError):
        del params.Threads
    for access in (lambda: params.__getattribute__(5), lambda: params.__setattr__(5, 1)):
        with pytest.raises(TypeError):
            access()


def test_params_keep_private_fields(model):
    params = model.Params
    params._note = "kept"
    assert params._note == "kept" and vars(params) == {"_note": "kept"}
    assert params.MIPGap == 1e-4
    names = dir(params)
    assert names == sorted(set(names)) and {"_note", "_getChangeList", "__init__", "Threads"} <= set(names)
    assert len([name for name in names if not name.startswith("_")]) == 172


def test_params_outlive_their_model(env_silent):
    model = Model("", env_silent)
    params = model.Params
    params.self = params._self = params
    model.dispose()
    del model
    gc.collect()
    with pytest.raises(AttributeError):
        params.__getattr__("Threads")
    with pytest.raises(ZelvanError, match="^Invalid Environment$"):
        params.Threads = 2
    assert repr(params) == "<zelvanpy.ParamClass: No parameter changes>"
    for wrong in (None, 5):
        with pytest.raises(TypeError):
            ParamClass(wrong)
    with pytest.raises(ZelvanError, match="Invalid Environment"):
        ParamClass.__new__(ParamClass).__getattr__("Threads")


def test_parameters_may_change_while_the_model_is_solved(env_silent, tmp_path):
    """A running solve keeps the parameters that it began with; its log goes to the file of the moment."""
    m = Model("", env_silent)
    x = m.addVars(300, ub=1)
    m.addConstrs(x[i] + x[i + 1] <= 1 for i in range(299))
    m.setObjective(x.sum(), ZVN.MAXIMIZE)
    logs = [str(tmp_path / f"{name}.log") for name in "ab"]
    solved = threading.Event()

    def change():
        while not solved.is_set():
            for log in logs:
                m.resetParams()
                m.Params.LogToConsole = 0
                m.Params.LogFile = log

    thread = threading.Thread(target=change)
    thread.start()
    try:
        for _ in range(60):
            m.reset()
            m.optimize()
            assert m.Status == ZVN.OPTIMAL and m.ObjVal == pytest.approx(150)
    finally:
        solved.set()
        thread.join()
    lines = set("".join(pathlib.Path(log).read_text() for log in logs).splitlines())
    assert any(line.startswith("Ended with status OPTIMAL") for line in lines)
    m.dispose()


def test_a_subclass_may_add_attributes(env):
    class Mine(ParamClass):
        tag = "class attribute"

        def ratio(self):
            return self.MIPGap * 2

    mine = Mine(env)
    assert (mine.tag, mine.ratio(), mine.threads) == ("class attribute", 2e-4, 0)
    with pytest.raises(AttributeError):
        mine.__getattr__("nix")


# Help


def help_of(name, capsys):
    capsys.readouterr()
    zelvanpy.paramHelp(name)
    return capsys.readouterr().out


def test_help_texts_have_their_layout(capsys):
    assert help_of("Threads", capsys).startswith(
        "  PARAMETER NAME:\n    Threads\n\n  TYPE:\n    Integer\n\n  PURPOSE:\n    "
    )
    for name in zelvan._getdefaultenv()._paramlist("*"):
        if name in ("DistributedMIPJobs", "CloudHost", "JobID", "JSONSolDetail", "MultiObjMethod"):
            with pytest.raises(ZelvanError, match=f"^No help found for parameter {name}$"):
                zelvanpy.paramHelp(name)
            continue
        lines = help_of(name, capsys).splitlines()
        kind, _, low, high, default = zelvanpy.getParamInfo(name)[1:]
        assert lines[lines.index("  TYPE:") + 1] == "    " + {int: "Integer", float: "Double", str: "String"}[kind]
        values = lines[lines.index("  VALUES:") + 1 :]
        wanted = [f"    Minimum : {low}", f"    Maximum : {high}"] if kind is not str else []
        assert values[: len(wanted) + 1] == wanted + [f"    Default : {default}"]
        assert all(len(line) <= 100 for line in lines)


def test_help_for_other_arguments(capsys):
    assert help_of(None, capsys) == type(ZVN.Param).__doc__ + "\n"
    assert help_of("Cloud*", capsys) == (
        "Matching parameters: ['CloudAccessID', 'CloudSecretKey', 'CloudPool', 'CloudHost']\n"
    )
    assert help_of("MIP*Abs", capsys).startswith("  PARAMETER NAME:\n    MIPGapAbs\n")
    assert help_of("threads", capsys) == help_of("Threads", capsys)
    for name in ("nix", ""):
        with pytest.raises(ZelvanError, match=f"^No help found for parameter {name}$") as caught:
            zelvanpy.paramHelp(name)
        assert caught.value.errno == 0


def test_random_settings_read_back(env):
    """Every number within its bounds is kept; one outside is refused and leaves the value."""
    rng = random.Random(7)
    for name in env._paramlist("*"):
        kind, value, low, high = env._getParamInfo(name)[1:5]
        if kind is str or name in ("OutputFlag", "LogToConsole"):
            continue
        low, high = max(low, -1e9), min(high, 1e9)
        drawn = rng.randint(int(low), int(high)) if kind is int else rng.uniform(low, high)
        env.setParam(name.upper(), drawn)
        assert env._getParamInfo(name)[2] == drawn
        for outside in (env._getParamInfo(name)[3] - 1, env._getParamInfo(name)[4] + 1):
            if abs(outside) != INFINITE and abs(outside) < 2**31:
                with pytest.raises(ZelvanError):
                    env.setParam(name, outside)
        assert env._getParamInfo(name)[2] == drawn
