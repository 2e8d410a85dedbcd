"""Environments, the default environment, the log bridge, the exit hook."""

import ctypes
import gc
import glob
import io
import logging
import os
import pathlib
import subprocess
import sys
import threading
import weakref

import pytest

import zelvanpy
from zelvanpy import Env, Model, ZelvanError, zelvan

CLOSED = "<zelvanpy.Env, invalid or closed state>"


@pytest.fixture(autouse=True)
def no_default_env(capsys):
    zelvanpy.disposeDefaultEnv()
    capsys.readouterr()
    yield
    zelvanpy.disposeDefaultEnv()


@pytest.fixture
def unraisable(monkeypatch):
    """List of what the interpreter reports as unraisable: (exception type, context)."""
    caught = []
    monkeypatch.setattr("sys.unraisablehook", lambda args: caught.append((args.exc_type, args.object)))
    return caught


def run(script, folder=None):
    """Standard output and error of a script in a fresh interpreter."""
    path = str(pathlib.Path(zelvanpy.__file__).parent.parent)
    result = subprocess.run(
        [sys.executable, "-c", script],
        capture_output=True,
        text=True,
        cwd=folder,
        env={**os.environ, "PYTHONPATH": path},
    )
    assert result.returncode == 0, result.stderr
    return result.stdout, result.stderr


# States


def test_states_from_empty_to_closed(capsys):
    env = Env(empty=True)
    assert (env._empty, env._user, env._default, env._cenv is None) == (True, True, False, False)
    assert repr(env) == "<zelvanpy.Env, No parameter changes>"
    env._message("printed while it isn't started")
    env.setParam("OutputFlag", 0)
    env._message("silent")
    assert capsys.readouterr().out == "printed while it isn't started\n"
    assert env.start() is env and not env._empty
    assert repr(env) == "<zelvanpy.Env, Parameter changes: OutputFlag=0>"
    env.close()
    assert env._cenv is None and repr(env) == CLOSED
    env.close()
    env.dispose()
    with pytest.raises(ZelvanError, match="^Failed to create environment$"):
        env.start()
    assert env._empty


def test_a_log_file_that_can_not_be_opened(tmp_path):
    wrong = str(tmp_path / "missing" / "x.log")
    with pytest.raises(ZelvanError, match="missing"):
        Env(wrong)
    env = Env(wrong, empty=True)
    for _ in range(2):
        with pytest.raises(ZelvanError, match="missing"):
            env.start()
        assert env._empty
    env.setParam("LogFile", "default")
    assert not env.start()._empty


def test_arguments(tmp_path, capsys):
    log = tmp_path / "a.log"
    with Env(str(log), params={"Threads": 3, "mipgap": 0.5}) as env:
        assert repr(env) == f"<zelvanpy.Env, Parameter changes: MIPGap=0.5, LogFile={log}, Threads=3>"
        env._message("to both")
    assert "to both\n" in log.read_text() and capsys.readouterr().out == "to both\n"
    with pytest.raises(ZelvanError, match="Threads"):
        Env(params={"Threads": -1})
    for wrong, error in (
        ({"params": 5}, AttributeError),
        ({"logfilename": 5}, AttributeError),
        ({"nix": 1}, TypeError),
    ):
        with pytest.raises(error):
            Env(**wrong)


def test_a_wrapper_frees_nothing_and_makes_no_call():
    owner = Env(empty=True)
    wrapper = Env(cenv=owner._cenv)
    assert (wrapper._user, wrapper._empty) == (False, False)
    wrapper.setParam("Threads", 5)
    wrapper.close()
    del wrapper
    assert owner._getParamInfo("Threads")[2] == 5
    wrapper = Env(cenv=owner._cenv)
    owner.close()
    assert wrapper._cenv is not None
    with pytest.raises(ZelvanError, match="^Invalid Environment$"):
        wrapper.resetParams()
    with pytest.raises(ZelvanError, match="environment handle is NULL"):
        wrapper.readParams("a.prm")


def test_the_context_manager_closes_and_lets_exceptions_go_on():
    with pytest.raises(KeyError), Env() as env:
        raise KeyError
    assert env._cenv is None


def test_subclasses_fields_and_cycles():
    closed = []

    class Mine(Env):
        def close(self):
            closed.append(self.tag)
            super().close()

    env = Mine()
    env.tag = "first"
    env._note = 1
    assert vars(env) == {"tag": "first", "_note": 1}
    env.cycle = env
    alive = weakref.ref(env)
    del env
    gc.collect()
    assert closed == ["first"] and alive() is None
    env = Env()
    env.held = Mine
    count = sys.getrefcount(Mine)
    del env
    assert sys.getrefcount(Mine) == count - 1
    with pytest.raises(AttributeError):
        Env()._cenv = None
    assert Env() != Env()
    unmade = Env.__new__(Env)
    assert repr(unmade) == CLOSED
    unmade.close()
    unmade.__init__(os.devnull)
    files = os.listdir("/proc/self/fd")
    for _ in range(3):
        unmade.__init__(os.devnull)
    assert len(os.listdir("/proc/self/fd")) == len(files)
    unmade.__init__()
    assert repr(unmade) == "<zelvanpy.Env, No parameter changes>"


def test_an_environment_may_be_closed_before_its_models(tmp_path):
    env = Env(str(tmp_path / "a.log"), params={"LogToConsole": 0})
    model = Model(env=env)
    env.close()
    model.Params.Threads = 2
    model.message("still logged")
    assert "still logged" in (tmp_path / "a.log").read_text()
    with pytest.raises(ZelvanError, match="^Failed to create environment$"):
        Model(env=env)


def test_failure_texts_of_a_closed_environment():
    env = Env()
    env.close()
    for call in (
        lambda: env.setParam("Threads", 1),
        lambda: env.fixTuneParam("Threads"),
        lambda: env.resetParams(),
        lambda: env.setParam("no such name", 1),
    ):
        with pytest.raises(ZelvanError, match="^Invalid Environment$") as caught:
            call()
        assert caught.value.errno == -1
    assert env._getParamInfo("Threads") is None
    assert env._getCommStats() == dict.fromkeys(
        ("recvtime", "recvbytes", "recvmsgs", "sendtime", "sendbytes", "sendmsgs"), -1.0
    )
    env._message("nowhere")


# The default environment


def test_default_environment_on_demand(capsys):
    assert zelvan._getdefaultenv(create=False) is None and zelvan._defaultenv is None
    zelvanpy.disposeDefaultEnv()
    with Env() as own:
        Model(env=own)
    assert zelvan._defaultenv is None
    model = Model()
    env = zelvan._getdefaultenv()
    assert env is zelvan._defaultenv is model._uenv and env._default
    zelvan.disposeDefaultEnv()
    assert capsys.readouterr().out == "Freeing default Zelvan environment\n"
    assert zelvan._defaultenv is None and env._cenv is None
    assert Model()._uenv is not env


def test_version_platform_and_container():
    assert zelvan.version() == (10, 0, 3)
    assert isinstance(zelvan.platform(), str) and zelvan._iscontainer() in (0, 1)
    assert Env()._getCommStats()["recvtime"] == 0.0


def test_a_broken_state_is_reported(monkeypatch):
    monkeypatch.setattr(zelvan, "_defaultenv", "no environment")
    with pytest.raises(TypeError, match="_defaultenv"):
        zelvanpy.setParam("Threads", 1)


# Reading


def test_read_by_name_and_pattern(tmp_path, monkeypatch, capsys, env_silent):
    (tmp_path / "one.lp").write_text("Minimize\n x\nSubject To\n c: x >= 2\nEnd\n")
    monkeypatch.chdir(tmp_path)
    model = zelvanpy.read("*.lp", env_silent)
    assert model.NumVars == 1 and model._uenv is env_silent
    assert zelvan.read(modelname="one.lp", env=env_silent).NumConstrs == 1
    assert zelvan._defaultenv is None
    capsys.readouterr()
    for pattern in ("*.mps", "x??.lp"):
        with pytest.raises(ZelvanError, match="^Unable to read model$") as caught:
            zelvanpy.read(pattern, env_silent)
        assert caught.value.errno == 0
        assert capsys.readouterr().out == f"No file matching '{pattern}' found\n"
    with pytest.raises(ZelvanError, match="^Unable to read model$") as caught:
        zelvanpy.read("missing.lp", env_silent)
    assert caught.value.errno == 0 and "missing.lp" in capsys.readouterr().out
    with pytest.raises(AttributeError):
        zelvanpy.read(5)
    for wrong in ("none", model):
        with pytest.raises(TypeError, match="'env' must be an Env or None"):
            zelvanpy.read("one.lp", wrong)
    monkeypatch.setattr(glob, "glob", lambda pattern: ("one.lp",))
    assert zelvanpy.read("*", env_silent).NumVars == 1
    assert zelvanpy.system("exit 3") is None


def test_the_first_match_is_read(tmp_path, env_silent):
    for i in (1, 2, 3):
        (tmp_path / f"m{i}.lp").write_text("Minimize\n" + " + ".join(f"x{j}" for j in range(i)) + "\nSubject To\nEnd\n")
    pattern = str(tmp_path / "m?.lp")
    first = pathlib.Path(glob.glob(pattern)[0])
    assert zelvanpy.read(pattern, env_silent).NumVars == int(first.stem[1])


# Models in __main__


class Touchy:
    def __getattr__(self, name):
        raise RuntimeError("keep off")

    __class__ = property(lambda self: 1 / 0)


def test_models_in_main(monkeypatch, capsys, env_silent):
    main = type(sys)("__main__")
    monkeypatch.setitem(sys.modules, "__main__", main)
    zelvanpy.models()
    assert capsys.readouterr().out == "No models currently loaded\n"
    main.zz, main.closed = Model("late", env_silent), Model("closed", env_silent)
    main.aa, main.other, main.touchy, main.kind = Model("early", env_silent), Env(), Touchy(), Model
    main.closed.dispose()
    assert zelvan._getmodels() == [("aa", main.aa), ("zz", main.zz)]
    capsys.readouterr()
    zelvanpy.models()
    assert capsys.readouterr().out == f"Currently loaded models:\naa : {main.aa!r}\nzz : {main.zz!r}\n"


# The log bridge


class Collector(logging.Handler):
    def __init__(self):
        super().__init__()
        self.lines = []

    def emit(self, record):
        self.lines.append((record.levelno, record.name, record.getMessage()))


@pytest.fixture
def collected():
    """What the logger of the module receives: (level, name, text)."""
    logger, handler = logging.getLogger("zelvanpy"), Collector()
    logger.addHandler(handler)
    logger.setLevel(logging.INFO)
    yield handler.lines
    logger.removeHandler(handler)
    logger.setLevel(logging.NOTSET)


def test_log_lines_go_to_stdout_and_logger(collected, monkeypatch):
    class Stream(io.StringIO):
        flushed = 0

        def flush(self):
            self.flushed += 1

    monkeypatch.setattr(sys, "stdout", Stream())
    env = Env()
    env._message("100 % zäh\n")
    assert sys.stdout.getvalue() == "100 % zäh\n\n" and sys.stdout.flushed == 1
    env.setParam("OutputFlag", 0)
    env._message("unseen")
    assert collected == [(logging.INFO, "zelvanpy", "100 % zäh\n")]
    with Model(env=Env()) as model:
        model.message("from a model")
    assert collected[1:] == [(logging.INFO, "zelvanpy", "from a model")]


def test_a_failing_stream_does_not_reach_the_caller(collected, unraisable, monkeypatch):
    env = Env()
    for broken in (None, object()):
        monkeypatch.setattr(sys, "stdout", broken)
        env._message("lost")
    monkeypatch.delattr(sys, "stdout")
    env._message("lost")
    monkeypatch.undo()
    assert collected == []


def test_what_fails_in_the_bridge_is_unraisable(collected, unraisable, monkeypatch):
    class Failing:
        def write(self, text):
            raise OSError("disk full")

    env = Env()
    with monkeypatch.context() as patch:
        patch.setattr(sys, "stdout", Failing())
        env._message("lost")
    assert unraisable == [(OSError, "zelvanpy.logcallbackstub")]
    with monkeypatch.context() as patch:
        patch.setattr(logging, "getLogger", None)
        env._message("written, not logged")
    assert unraisable[1:] == [(TypeError, "zelvanpy.logcallbackstub")]


class Acting:
    """A stream that does something on each text."""

    def __init__(self, act):
        self.write = act

    def flush(self):
        pass


def test_a_receiver_of_log_lines_may_close_what_they_are_about(tmp_path, monkeypatch, unraisable):
    model_file, start_file, named_file = (str(tmp_path / name) for name in ("a.lp", "a.sol", "b.lp"))
    (tmp_path / "a.lp").write_text("Minimize\n x + y\nSubject To\nBounds\n x <= -1\n y <= -2\nEnd\n")
    (tmp_path / "a.sol").write_text("z 1\nx 5\n")
    env = Env()
    with monkeypatch.context() as patch:
        patch.setattr(sys, "stdout", Acting(lambda text: env.close()))
        model = zelvanpy.read(model_file, env)
    assert env._cenv is None and model.NumVars == 2
    model.addVar(name="not one word")
    model.update()
    for work in (lambda: model.write(named_file), lambda: model.read(start_file)):
        copy, model = model, model.copy()
        with monkeypatch.context() as patch:
            patch.setattr(sys, "stdout", Acting(lambda text: model.dispose()))
            work()
        assert model._cmodel is None
        model = copy
    assert "Bounds" in pathlib.Path(named_file).read_text() and unraisable == []


def library():
    lib = ctypes.CDLL(str(pathlib.Path(zelvanpy._zelvanpy.__file__).with_name("libzelvan100.so")))
    lib.ZVNmsg.argtypes = [ctypes.c_void_p, ctypes.c_char_p]
    return lib


def test_the_library_may_log_from_any_thread(collected, capsys):
    env = Env()
    handle = getattr(zelvanpy, "__ptr")(env._cenv)
    lib = library()
    texts = [b"", b"\n", b"one\n", b"two", b"\xff\n"]

    def work():
        for text in texts:
            lib.ZVNmsg(handle, text)  # ctypes releases the interpreter lock

    threads = [threading.Thread(target=work) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    lines = [text for _, _, text in collected]
    assert sorted(lines) == sorted(["", "", "one", "two", "\ufffd"] * 4)
    assert capsys.readouterr().out.count("\n") == 12


def test_a_log_line_during_an_exception_keeps_the_exception(capsys):
    class Late:
        def __del__(self):
            env._message("meanwhile")

    env = Env()

    def fail():
        late = Late()
        raise KeyError("kept", id(late))

    with pytest.raises(KeyError, match="kept"):
        fail()
    gc.collect()
    assert capsys.readouterr().out == "meanwhile\n"


# Start and end of the process


def test_import_loads_no_matrix_package_and_makes_no_environment():
    out, _ = run(
        "import sys, zelvanpy\n"
        "print([name for name in ('numpy', 'scipy') if name in sys.modules], zelvanpy.zelvan._defaultenv)\n"
        "print(getattr(zelvanpy, '__modelmap'), zelvanpy.ZVNStringIO is __import__('io').StringIO)"
    )
    assert out == "[] None\n{} True\n"


def test_a_module_named_stringio_is_taken(tmp_path):
    (tmp_path / "StringIO.py").write_text("class StringIO: pass\n")
    assert run("import zelvanpy; print(zelvanpy.ZVNStringIO.__module__)", folder=tmp_path)[0] == "StringIO\n"


def test_exit_closes_models_in_main_without_a_message():
    script = (
        "import zelvanpy\n"
        "class Told(zelvanpy.Model):\n"
        "    def close(self):\n"
        "        if self._cmodel is not None: print('closing', zelvanpy.zelvan._exiting)\n"
        "        super().close()\n"
        "m = Told()\n"
        "held = [Told()]\n"
        "env = zelvanpy.zelvan._getdefaultenv()\n"
        "import atexit\n"
        "atexit.register(lambda: print('default', zelvanpy.zelvan._defaultenv is env))\n"
    )
    out, err = run(script)
    assert out.startswith("default True\nclosing True\n") and err == ""
    assert "Freeing" not in out


def test_nothing_is_imported_for_a_log_that_nobody_listens_to():
    program = "import sys, zelvanpy; zelvanpy.Model('quiet').optimize(); assert 'logging' not in sys.modules"
    assert (
        "quiet" not in subprocess.run([sys.executable, "-c", program], check=True, capture_output=True).stderr.decode()
    )


def test_logging_while_the_interpreter_ends_is_dropped():
    script = (
        "import zelvanpy\n"
        "class Late:\n"
        "    def __init__(self): self.env = zelvanpy.Env()\n"
        "    def __del__(self): self.env._message('too late')\n"
        "import builtins\n"
        "builtins.late = Late()\n"
    )
    assert run(script) == ("", "")


def test_threads_that_log_while_the_process_exits():
    script = (
        "import threading, time, zelvanpy\n"
        "env = zelvanpy.Env()\n"
        "started = threading.Barrier(4)\n"
        "def work():\n"
        "    started.wait()\n"
        "    while True: env._message('line')\n"
        "for _ in range(3): threading.Thread(target=work, daemon=True).start()\n"
        "started.wait()\n"
    )
    for _ in range(5):
        run(script)


def test_interactive_use_logs_to_a_file(tmp_path):
    script = (
        "import zelvanpy\n"
        "zelvanpy.zelvan.interactive()\n"
        "m = zelvanpy.Model()\n"
        "m.message('first')\n"
        "m.Params.Threads = 2\n"
        "m.resetParams()\n"
        "m.message('second')\n"
        "zelvanpy.resetParams()\n"
        "print(m.Params.LogFile, zelvanpy.getParamInfo('LogFile')[2])\n"
    )
    out, _ = run(script, folder=tmp_path)
    assert out.splitlines()[-1] == " zelvan.log"
    log = (tmp_path / "zelvan.log").read_text()
    assert "first\n" in log and "second\n" in log
