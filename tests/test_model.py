"""The spine of Model: life, lists of handles, update and removal, files, log."""

import contextlib
import ctypes
import gc
import pathlib
import sys
import threading
import weakref

import pytest

import zelvanpy
from zelvanpy import Env, Model, Var, ZelvanError

get_pointer = getattr(zelvanpy, "__ptr")
wrap_pointer = getattr(zelvanpy, "__wrapptr")


def library():
    """The solver library itself, to change a model behind the module's back."""
    lib = ctypes.CDLL(str(pathlib.Path(zelvanpy.__file__).parent / "libzelvan100.so"))
    lib.ZVNcopymodel.restype = ctypes.c_void_p
    for function in (lib.ZVNcopymodel, lib.ZVNupdatemodel):
        function.argtypes = [ctypes.c_void_p]
    lib.ZVNaddvars.argtypes = [ctypes.c_void_p, ctypes.c_int, ctypes.c_int] + [ctypes.c_void_p] * 8
    return lib


def unbuilt_model(env, columns):
    """A model whose handles don't exist yet."""
    base = Model("", env)
    lib = library()
    assert lib.ZVNaddvars(get_pointer(base._cmodel), columns, 0, *[None] * 8) == 0
    assert lib.ZVNupdatemodel(get_pointer(base._cmodel)) == 0
    copy = Model(cmodel=wrap_pointer(lib.ZVNcopymodel(get_pointer(base._cmodel))))
    base.dispose()
    return copy


class Recording(Model):
    """Keeps the lines of its log."""

    def __init__(self, *args, **kwargs):
        self._lines = []
        super().__init__(*args, **kwargs)

    def message(self, msg):
        self._lines.append(msg)


def test_fields_of_a_new_model(env_silent):
    m = Model("n\xe4me", env_silent)
    assert m.ModelName == "n\xe4me" and m._uenv is env_silent and m._callback is None
    assert isinstance(m._env, Env) and not m._env._user
    assert m.__dict__["Params"] is m.__dict__["params"] is m.Params is m.params
    assert (m._typename, m._typeenum) == ("Model", 0)
    assert m.getVars() == m.getConstrs() == m.getSOSs() == m.getQConstrs() == m.getGenConstrs() == []
    assert repr(m) == "<zelvan.Model Continuous instance n\xe4me: 0 constrs, 0 vars, %s>" % m.Params._getChangeList()
    m._own = [m]
    names = dir(m)
    assert names == sorted(set(names)) and {"_own", "Params", "NumVars", "optimize", "_cmodel"} <= set(names)
    for name in ("_cmodel", "_env", "_uenv"):
        with pytest.raises(AttributeError):
            setattr(m, name, None)
    with pytest.raises(AttributeError, match="Params"):
        m.Params = None
    with pytest.raises(AttributeError, match="own"):
        m.own = 1
    del m._own
    assert not hasattr(m, "_own")
    m.dispose()


def test_bad_arguments(env_silent):
    for arguments in ((1, env_silent), ("", 5), ("", env_silent, 5), ("", "env"), (None, env_silent)):
        with pytest.raises((TypeError, AttributeError)):
            Model(*arguments)
    closed = Env(empty=True)
    closed.close()
    with pytest.raises(ZelvanError, match="Failed to create environment"):
        Model(env=closed)
    blank = Model.__new__(Model)
    assert repr(blank) == "<zelvan.Model empty model>"
    for call in (blank.update, blank.getVars, blank.optimize, blank.copy, blank.reset, blank.getJSONSolution):
        with pytest.raises(ZelvanError):
            call()
    blank.dispose(), blank.message("nobody hears this"), blank.terminate()


def test_second_construction_frees_the_first_model(env_silent):
    m = Model("a", env_silent)
    first = m._cmodel
    m.__init__("b", env_silent)
    assert m.ModelName == "b" and get_pointer(first) == 0
    m.dispose()


def test_disposal(lp):
    env = lp._uenv
    before = sys.getrefcount(env)
    lp.dispose()
    lp.dispose()
    assert sys.getrefcount(env) == before - 1
    assert lp._cmodel is None and lp._uenv is None and repr(lp) == "<zelvan.Model empty model>"
    for call in (
        lp.update,
        lp.getVars,
        lp.getSOSs,
        lambda: lp.getVarByName("x"),
        lambda: lp._Model__getVar(0),
        lp.optimize,
    ):
        with pytest.raises(ZelvanError, match="Model has already been freed") as refusal:
            call()
        assert refusal.value.errno == 0
    with pytest.raises(ZelvanError, match="Failed to create copy") as refusal:
        lp.copy()
    assert refusal.value.errno == -1
    for call in (lp.reset, lp.getJSONSolution, lambda: lp.write("a.lp.x"), lambda: lp.read("a.sol")):
        with pytest.raises(ZelvanError) as refusal:
            call()
        assert refusal.value.errno == 10002
    lp.message("nobody hears this")
    lp.terminate()
    with Model(env=env) as m:
        assert m._cmodel is not None
    assert m._cmodel is None
    with pytest.raises(KeyError), Model(env=env) as m:
        raise KeyError


def test_two_models_on_one_handle(env_silent):
    """The second owner of a library model finds it gone instead of freeing it again."""
    first = Model("", env_silent)
    second = Model(cmodel=wrap_pointer(get_pointer(first._cmodel)))
    assert second._uenv is None
    first.dispose()
    with pytest.raises((AttributeError, ZelvanError)):
        _ = second.NumVars
    second.dispose()


def test_collection(env_silent):
    """A cycle through stored fields is collected, the library's model freed, handles told."""
    m = Model("", env_silent)
    m._self, m._more = m, {"m": m}
    capsule, watch = m._cmodel, weakref.ref(m)
    del m
    gc.collect()
    assert watch() is None and get_pointer(capsule) == 0

    closed = []

    class Noting(Model):
        def close(self):
            closed.append(self._cmodel is not None)
            super().close()

    Noting("", env_silent)
    gc.collect()
    assert closed == [True]


def test_lists_are_built_on_demand(env_silent):
    m = unbuilt_model(env_silent, 1000)
    threshold = gc.get_threshold()
    before = sys.getrefcount(Var)
    m.optimize()
    assert m.NumVars == 1000 and sys.getrefcount(Var) == before
    handles = m.getVars()
    assert gc.get_threshold() == threshold
    assert [v.index for v in handles] == list(range(1000))
    handles.clear()
    assert len(m.getVars()) == 1000 and m.getVars()[7] is m._Model__getVar(7) is m._Model__getVar(-993)
    for position in (1000, -1001):
        with pytest.raises(IndexError):
            m._Model__getVar(position)
    for private in (m._Model__getConstr, m._Model__getSOS, m._Model__getQConstr, m._Model__getGenConstr):
        with pytest.raises(IndexError):
            private(0)
    m.dispose()


def test_models_disposed_of_while_their_lists_are_built(env_silent):
    class Fleeting(Model):
        def update(self):
            super().update()
            if hasattr(self, "_flees"):
                self.dispose()

    base = unbuilt_model(env_silent, 3)
    for method in (Model.getVars, Model.getSOSs, Model.addVar, lambda m: m.getVarByName("C0")):
        m = Fleeting(cmodel=wrap_pointer(library().ZVNcopymodel(get_pointer(base._cmodel))))
        m._flees = True
        with pytest.raises(ZelvanError, match="^Model has already been freed$"):
            method(m)

    class Position:
        def __index__(self):
            base.dispose()
            return 0

    with pytest.raises(ZelvanError, match="^Model has already been freed$"):
        base._Model__getVar(Position())


def test_removal(lp, env_silent):
    x, y, z = lp.getVars()
    c1, c2 = lp.getConstrs()
    lp.remove([(x,), {"k": c2}, []])
    assert (x._colno, c2._rowno) == (-3, -4)
    assert lp.getVars() == [x, y, z] and lp.NumVars == 3
    lp.remove(items=x)
    lp.update()
    assert (lp.NumVars, lp.NumConstrs) == (2, 1)
    assert [v._colno for v in (x, y, z)] == [-2, 0, 1] and lp.getVars() == [y, z] and lp.getConstrs() == [c1]
    assert [v.VarName for v in (y, z)] == ["y", "z"] and y is lp.getVarByName("y")
    lp.remove(x)
    lp.update()
    assert lp.getVars() == [y, z]

    other = Model("", env_silent)
    refusals = {
        "Item to be removed is not in model": [lambda: other.remove(y)],
        "Item to be removed not a Var, Constr, SOS, QConstr, or GenConstr": [
            lambda: lp.remove(None),
            lambda: lp.remove("yz"),
            lambda: lp._removeone([y]),
        ],
    }
    kinds = ["Var", "Constr", "SOS", "QConstr", "GenConstr"]
    words = ["a variable", "a constraint", "an SOS", "a quadratic constraint", "a general constraint"]
    for kind, word in zip(kinds, words):
        pending = getattr(zelvanpy, kind)(lp._cmodel, -1)
        refusals["Tried to remove %s that does not exist" % word] = [lambda pending=pending: lp.remove(pending)]
    for text, attempts in refusals.items():
        for attempt in attempts:
            with pytest.raises(ZelvanError, match="^%s$" % text) as refusal:
                attempt()
            assert refusal.value.errno == -1
    with pytest.raises(ZelvanError):
        lp.remove([y, None, z])
    assert (y._colno, z._colno) == (-3, 1)
    nested = []
    nested.append(nested)
    for endless in (nested, {1: nested}):
        with pytest.raises(RecursionError):
            lp.remove(endless)
    nested[0] = {2: nested}
    with pytest.raises(RecursionError):
        lp.remove(nested[0])
    other.dispose()


def test_removal_of_many(env_silent):
    """Every third of many columns goes, in any order; the others keep their order and their data."""
    m = unbuilt_model(env_silent, 3000)
    handles = m.getVars()
    m.setAttr("UB", handles, [float(j) for j in range(3000)])
    m.update()
    m.remove(handles[::-3])
    m.update()
    rest = [v for v in handles if v.index >= 0]
    assert m.getVars() == rest and len(rest) == 2000 == m.NumVars
    assert [v.index for v in rest] == list(range(2000))
    assert m.UB == [float(j) for j in range(3000) if j % 3 != 2]
    m.dispose()


def test_failed_deletion_can_be_tried_again(lp):
    """A handle with an index that the library doesn't have stops the update; the other marks stay."""
    x, y, z = lp.getVars()
    y.__init__(lp._cmodel, -3 - 50)
    lp.remove([x, z])
    with pytest.raises(ZelvanError) as refusal:
        lp.update()
    assert refusal.value.errno == 10006
    y.__init__(lp._cmodel, 1)
    lp.update()
    assert lp.getVars() == [y] and y.VarName == "y" and (x._colno, z._colno) == (-2, -2)


def test_names(lp):
    x, c = lp.getVars()[0], lp.getConstrs()[1]
    assert lp.getVarByName("x") is x and lp.getConstrByName(name="c2") is c
    assert lp.getVarByName("c2") is None and lp.getConstrByName("") is None
    with pytest.raises(AttributeError):
        lp.getVarByName(5)
    assert lp._owns(x) and lp._owns(lp) and not lp._owns(Var(None, 0))
    with pytest.raises(AttributeError):
        lp._owns(5)


def test_new_objects(lp):
    """Under UpdateMode 1 a new handle knows its index at once, otherwise from the update on."""
    for mode in (1, 0):
        lp.Params.UpdateMode = mode
        lp.update()
        columns, rows = lp.NumVars, lp.NumConstrs
        old = lp.getVars()
        v, w = lp.addVar(name="v%d" % mode), lp.addVar(ub=5, name="w%d" % mode)
        c = lp.addConstr(old[0] + 2 * old[1] <= 9, name="d%d" % mode)
        assert (v.index, w.index, c.index) == ((columns, columns + 1, rows) if mode else (-1, -1, -1))
        assert lp.getVars() == old and repr(v) == "<zelvan.Var *Awaiting Model Update*>"
        if mode:
            lp.remove([v, c])  # new ones are marked, and gone with the update
        else:
            for pending, word in ((v, "variable"), (c, "constraint")):
                with pytest.raises(ZelvanError, match="Tried to remove a %s that does not exist" % word):
                    lp.remove(pending)
        lp.update()
        assert (v.index, w.index) == ((-2, columns) if mode else (columns, columns + 1))
        assert lp.getVars() == old + ([w] if mode else [v, w]) and w.VarName == "w%d" % mode
        lp.remove([v, c])
        lp.update()
        assert lp.NumVars == columns + 1 == w.index + 1 and w.UB == 5.0 and lp.NumConstrs == rows


def test_helpers_of_ranges(lp):
    """Range rows bring one column each under UpdateMode 1, behind all others; what has none brings no handle."""
    x, y, z = lp.getVars()
    lp.addRange(x + y, 1, 5, "r0")
    lp.addRange(x + y, -1e100, 5, "one-sided")
    with pytest.raises(ZelvanError):
        lp.addRange(x + y, 5, 1, "refused")
    lp.remove(y)
    v = lp.addVar(name="v")
    assert len(lp.getVars()) == 3
    lp.update()
    assert lp.NumVars == 4 and [u.index for u in lp.getVars()] == [0, 1, 2, 3]
    assert lp.getVars()[:3] == [x, z, v] and lp.getVars()[3].UB == 4.0
    lp.update()
    assert len(lp.getVars()) == 4
    lp.Params.UpdateMode = 0
    lp.update()
    lp.addRange(x + z, 1, 5, "two-sided")
    lp.update()
    assert lp.NumVars == len(lp.getVars()) == 4 and lp.getConstrByName("two-sided").Sense == "R"


def test_update_mode(lp):
    assert lp._Model__getupdatemode() == 1
    lp.Params.UpdateMode = 0
    assert lp._Model__getupdatemode() == 1
    lp.update()
    assert lp._Model__getupdatemode() == 0


@pytest.mark.parametrize("mode", (0, 1))
def test_a_change_of_update_mode_amid_additions(lp, mode):
    """Handles go on as they began until the update; indices stay those of the library throughout."""
    x, y, z = lp.getVars()
    lp.Params.UpdateMode = 1 - mode
    lp.update()
    v = lp.addVar(name="v")
    lp.Params.UpdateMode = mode
    w = lp.addVar(name="w")
    lp.addRange(x + y, 1, 5, "r")
    assert (v.index, w.index) == ((-1, -1) if mode else (3, 4))
    if mode == 0:
        w.UB = 2
        lp.addConstr(v + w <= 3)
        lp.remove(v)
    lp.update()
    assert lp.NumVars == len(lp.getVars()) == (6 if mode else 4) and w.VarName == "w"
    late = lp.addVar(name="late")
    lp.update()
    assert late.VarName == "late" and lp.getVarByName("late") is late


def test_copy(lp):
    x = lp.getVars()[0]
    x.UB = 2.0
    copy = lp.copy()
    assert type(copy) is Model and copy._uenv is lp._uenv and copy._cmodel is not lp._cmodel
    assert copy.VarName == ["x", "y", "z"] and copy.UB == [3.0, 4.0, 10.0]
    lp.optimize()
    copy.optimize()
    assert (lp.ObjVal, copy.ObjVal) == (13.0, 14.0)
    assert not copy._owns(x)
    copy.dispose()
    assert lp.ObjVal == 13.0


def test_solve_and_reset(env_silent, lp):
    lp.optimize(None)
    assert lp.Status == 2 and lp.X == [3.0, 2.0, 1.0] and lp.ObjVal == 14.0
    assert '"ObjVal"' in lp.getJSONSolution()
    m = Recording("", env_silent)
    m.reset()
    m.reset(clearall=1)
    assert m._lines == [
        "Discarded solution information",
        "Discarded solution information including additional information",
    ]
    lp.reset()
    assert not hasattr(lp, "ObjVal")
    for callback in (5, "f", print, lp.update, Model):
        with pytest.raises(ZelvanError, match="Callback argument must be a function") as refusal:
            lp.optimize(callback)
        assert refusal.value.errno == -1
    with pytest.raises(ZelvanError) as refusal:
        lp.optimize(lambda model, where: None)
    assert refusal.value.errno == 10024 and not hasattr(lp, "ObjVal")
    m.dispose()


def test_files(lp, env_silent, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    x = lp.getVars()[0]
    x.UB = 2.5
    lp.write("pending.lp")  # a model file shows queued changes
    again = zelvanpy.read("pend*.lp", env_silent)
    assert again.UB == [2.5, 4.0, 10.0]
    late = again.addVar()
    again.write("late.ord")  # and so does a file of attributes
    assert again.getVars()[-1] is late and late.index == 3
    again.dispose()

    lp.Params.TimeLimit = 50
    lp.write("settings.prm")
    m = Recording("", env_silent)
    m.read("sett*.prm")
    assert m.Params.TimeLimit == 50 and m._lines == ["Read parameters from file settings.prm"]
    m.read("no?hing.*")
    assert m._lines[1:] == ["No file matching 'no?hing.*' found"]
    for name in ("nothing.prm", "nothing.unknown"):
        with pytest.raises(ZelvanError):
            m.read(name)
    with pytest.raises(TypeError, match="filename"):
        m.read(b"settings.prm")
    with pytest.raises(ZelvanError):
        lp.write("no/such/folder/a.lp")
    assert len(m._lines) == 2
    m.dispose()


def test_log(capsys):
    env = Env()
    m = Model("", env)
    capsys.readouterr()
    m.message("caf\xe9")
    assert capsys.readouterr().out == "caf\xe9\n"
    for wrong in (5, b"bytes"):
        with pytest.raises(TypeError):
            m.message(wrong)
    m.dispose()
    env.close()


def test_long_messages(env_silent):
    m = Recording("", env_silent)

    def lines(*args, **kwargs):
        m._lines.clear()
        m._splitlongmessage(*args, **kwargs)
        return list(m._lines)

    assert lines("short") == ["short"] and lines("") == []
    assert lines("aa bb cc", length=5) == ["aa", " bb cc"[0:3].strip(), " cc"]
    assert lines("1+x-y+z-w", sep="+-", length=4) == ["1+x", "-y", "+z-w"]
    text = "  word " * 40 + "last"
    for length in (1, 2, 7, 90):
        assert "".join(lines(text, length=length)).replace(" ", "") == text.replace(" ", "")
        assert all(len(line) <= max(length, 6) for line in lines(text, length=length))
    # No separator, one at the very start of a window only, none wanted, no room at all.
    solid = "x" * 200
    assert "".join(lines(solid)) == solid
    assert "".join(lines(" " + solid + " " + solid)).replace(" ", "") == solid + solid
    assert "".join(lines("+" + solid + "+" + solid, sep="+", length=50)) == "+" + solid + "+" + solid
    assert "".join(lines(solid, sep="")) == solid
    for length in (0, -5):
        assert "".join(lines("a b c", length=length)).replace(" ", "") == "abc"
    assert lines(longstring="a--b", sep=["--"], length=2) == ["a", "--b"]
    with pytest.raises(TypeError):
        m._splitlongmessage(5)
    m.dispose()


def test_subclass_methods_count(env_silent):
    class Counting(Model):
        def __init__(self, *args):
            self._updates = 0
            super().__init__(*args)

        def update(self):
            self._updates += 1
            super().update()

        def getAttr(self, attrname, objs=None):
            return super().getAttr(attrname, objs) if attrname != "Twice" else 2 * super().getAttr("NumVars")

    m = Counting("", env_silent)
    updates = m._updates
    m.optimize()
    assert m._updates == updates + 1 and m.Twice == 0 and m.NumVars == 0
    m.dispose()


def test_no_disposal_during_a_solve(lp, env_silent, tmp_path):
    """While the library works, another thread can stop the solve but not free the model."""
    lines = ["Minimize", " obj: " + " + ".join("x%d" % j for j in range(60)), "Subject To"]
    for i in range(60):
        terms = " + ".join("%d x%d" % (1 + (i * j * j + 7 * j) % 97, j) for j in range(60) if (i + j) % 3)
        lines.append(" c%d: %s >= %d" % (i, terms, 1000 + 37 * i))
    lines += ["Generals"] + [" x%d" % j for j in range(60)] + ["End"]
    path = tmp_path / "hard.lp"
    path.write_text("\n".join(lines) + "\n")
    m = zelvanpy.read(str(path), env_silent)
    m.Params.TimeLimit = 60
    m.Params.MIPGap = 0
    started, outcome = threading.Event(), []

    def interrupt():
        started.wait()
        while not outcome:
            try:
                m.update()
            except ZelvanError as refusal:
                outcome.append(refusal.errno)
        try:
            m.dispose()
        except ZelvanError as refusal:
            outcome.append(refusal.errno)
        m.terminate()

    thread = threading.Thread(target=interrupt)
    thread.start()
    started.set()
    m.optimize()
    thread.join()
    assert outcome == [10017, 10017] and m._cmodel is not None
    m.dispose()


def test_a_model_stays_as_it_is_until_its_result_file_is_written(tmp_path, monkeypatch):
    """A log line of the writer comes from within the solve, as all others do."""
    refusals = {}

    class Stream:
        def write(self, text):
            for call in (m.update, m.dispose):
                with pytest.raises(ZelvanError) as refusal:
                    call()
                refusals.setdefault(text.split(":")[0], []).append(refusal.value.errno)

        def flush(self):
            pass

    m = Model("", Env())
    m.addVar(name="not one word")
    m.Params.ResultFile = str(tmp_path / "result.lp")
    with monkeypatch.context() as patch:
        patch.setattr(sys, "stdout", Stream())
        m.optimize()
    assert m.Status == 2 and "C0" in (tmp_path / "result.lp").read_text()
    assert set(sum(refusals.values(), [])) == {10017} and "Warning" in refusals
    m.dispose()


def test_a_solve_within_a_solve_leaves_the_outer_one_marked(monkeypatch):
    class Lax(Model):
        def update(self):
            with contextlib.suppress(ZelvanError):
                super().update()

    class Stream:
        def write(self, _):
            for call in (m.optimize, m.dispose):
                with pytest.raises(ZelvanError) as refusal:
                    call()
                refusals.add(refusal.value.errno)

        def flush(self):
            pass

    refusals = set()
    m = Lax("", Env())
    m.addVar(obj=1.0, lb=2.0)
    with monkeypatch.context() as patch:
        patch.setattr(sys, "stdout", Stream())
        m.optimize()
    assert (m.ObjVal, refusals) == (2.0, {10017})
    m.dispose()


def test_each_thread_reads_the_text_of_its_own_failure(lp, tmp_path):
    """Slow: the threads change places within a call in few of many rounds."""
    solved, refusals = threading.Event(), set()

    def fail():
        while not solved.is_set():
            with pytest.raises(AttributeError) as refusal:
                lp.getAttr("Nothing")
            refusals.add(str(refusal.value))

    thread = threading.Thread(target=fail)
    thread.start()
    try:
        for _ in range(200):
            lp.reset()
            lp.optimize()  # other threads run meanwhile
            with pytest.raises(ZelvanError, match="missing"):
                lp.write(str(tmp_path / "missing" / "result.lp"))
    finally:
        solved.set()
        thread.join()
    assert len(refusals) == 1 and "'Nothing'" in refusals.pop()


def test_models_are_not_leaked(env_silent, lp):
    def work():
        m = Model("a", env_silent)
        m._field = m.getVars()
        copy = lp.copy()
        copy.getVars(), repr(copy), dir(copy), copy.getVarByName("x")
        copy.remove(copy.getVars()[:2])
        copy.update()
        copy.optimize()
        copy.dispose()
        with pytest.raises(ZelvanError):
            lp.remove(None)

    work()
    gc.collect()
    counted = (env_silent, Model, Var, lp, lp._cmodel, None.__class__)
    before = [sys.getrefcount(o) for o in counted]
    for _ in range(50):
        work()
    gc.collect()
    assert [sys.getrefcount(o) for o in counted] == before
