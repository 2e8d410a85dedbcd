"""Parameters and attributes of the library, through its C interface."""

import ctypes
import math
import pathlib
import random
import subprocess
import sys

import pytest
from hypothesis import given, settings
from hypothesis import strategies as st
from native import (
    BAD_INDEX,
    BAD_VALUE,
    CHAR,
    CONSTR,
    DOUBLE,
    FILE_READ,
    FILE_WRITE,
    INFINITY,
    INT,
    INVALID,
    LOG_CALLBACK,
    MODEL,
    NOT_AVAILABLE,
    NULL_ARGUMENT,
    QCONSTR,
    SOS,
    STRING,
    UNDEFINED,
    UNKNOWN_ATTR,
    UNKNOWN_PARAM,
    VAR,
    Environment,
    LibraryError,
    lib,
)


@pytest.fixture
def small(make):
    """Three columns (continuous, integer, binary) and two rows."""
    return make(
        [0, -2, 0], [INFINITY, 5, 1], [1, -3, 0.5], "CIB", [({0: 2, 1: 1}, "<", 4), ({1: -8, 2: 0.25}, ">", -10)]
    )


# --- parameters


def test_every_parameter_is_found_in_any_case_and_starts_at_a_default_within_its_range(env):
    names = list(env.names())
    assert len(names) == len(set(names)) == 172
    for name in names:
        kind = env.type(name)
        assert kind == env.type(name.upper()) == env.type(name.lower()) in (1, 2, 3)
        if kind != 3:
            value, minimum, maximum, default = env.info(name)
            assert minimum <= default <= maximum, name
            assert value == default or name == "LogToConsole"
    assert env.type("") == env.type("Thread") == env.type("Threadss") == -1
    assert {n for n in names if env.flags(n) & 32} >= {"WorkerPassword", "ServerPassword", "CloudSecretKey"}


@pytest.mark.parametrize(
    "name, good, bad",
    [("method", 5, 6), ("THREADS", 1024, -1), ("MIPGap", 0.5, -1e-9), ("FeasibilityTol", 1e-9, 0.011)],
)
def test_a_value_out_of_range_is_refused_and_changes_nothing(env, name, good, bad):
    env.set(name, good)
    caught = env.refused("set", name, bad)
    assert caught.code == BAD_VALUE
    assert all(str(part) in caught.text.lower() for part in (name.lower(), bad))
    assert env.value(name) == good
    caught = env.refused("set", name, "x", kind=3)
    assert caught.code == INVALID


def test_infinite_and_undefined_doubles(env):
    env.set("TimeLimit", 7.5)
    env.set("TimeLimit", math.inf)
    assert env.value("TimeLimit") == INFINITY
    env.set("Cutoff", -math.inf)
    assert env.value("Cutoff") == -INFINITY
    caught = env.refused("set", "TimeLimit", math.nan)
    assert caught.code == BAD_VALUE and env.value("TimeLimit") == INFINITY
    caught = env.refused("set", "NoSuchThing", 1, kind=1)
    assert caught.code == UNKNOWN_PARAM and "NoSuchThing" in caught.text


def test_a_long_string_is_kept_whole_and_cut_where_the_buffer_is_short(env):
    value = "".join(random.Random(3).choice("abc xyz") for _ in range(2000))
    env.set("CSAppName", value)
    assert env.text("CSAppName") == (value.encode(), 2000)
    assert env.text("CSAppName", 512) == (value[:511].encode(), 2000)
    short = ctypes.create_string_buffer(512)
    env.call("ZVNgetstrparaminfo", b"CSAppName", short, None)
    assert short.value == value[:511].encode()


@settings(max_examples=60)
@given(st.data())
def test_a_parameter_file_brings_back_every_value(tmp_path_factory, data):
    path = str(tmp_path_factory.getbasetemp() / "round.prm").encode()
    env, other = Environment(start=False, LogToConsole=0), Environment(start=False, LogToConsole=0)
    try:
        for name in data.draw(st.lists(st.sampled_from(list(env.names())), unique=True, max_size=15)):
            if env.type(name) == 3:
                env.set(name, data.draw(st.text(st.characters(blacklist_categories=["Cs", "Cc"]), max_size=30)))
            else:
                _, minimum, maximum, _ = env.info(name)
                draw = st.integers if env.type(name) == 1 else st.floats
                env.set(name, data.draw(draw(minimum, maximum)))
        env.call("ZVNwriteparams", path)
        other.call("ZVNresetparams")
        other.call("ZVNreadparams", path)
        hidden = {name for name in env.names() if env.flags(name) & 32}
        for name, value in env.values().items():
            assert other.value(name) == (value if name not in hidden else ""), name
    finally:
        lib.ZVNfreeenv(env.handle)
        lib.ZVNfreeenv(other.handle)


def test_a_parameter_file_may_hold_comments_and_any_case_but_no_fault(env, tmp_path):
    path = tmp_path / "a.prm"
    path.write_text('# first\r\n\r\n  mipGAP\t+1e-3  # tight\nLOGFILE ""\ncsappname "a \\"b\\" # c "\nTimeLimit inf')
    env.set("TimeLimit", 3)
    env.call("ZVNreadparams", str(path).encode())
    assert (env.value("MIPGap"), env.value("CSAppName"), env.value("TimeLimit")) == (1e-3, 'a "b" # c ', INFINITY)
    before = env.values()
    for fault, code, word in [
        ("Nonsense 1", UNKNOWN_PARAM, "Nonsense"),
        ("Threads 2.5", FILE_READ, "2.5"),
        ("Threads", FILE_READ, "Threads"),
        ("Method 9", BAD_VALUE, "Method"),
        ('CSAppName "open', FILE_READ, "quote"),
    ]:
        path.write_text("Seed 77\n# fine\n" + fault + "\n")
        caught = env.refused("call", "ZVNreadparams", str(path).encode())
        assert caught.code == code and "line 3" in caught.text and word in caught.text
        assert env.values() == before
    caught = env.refused("call", "ZVNreadparams", str(tmp_path / "missing.prm").encode())
    assert caught.code == FILE_READ and "missing.prm" in caught.text


def test_a_secret_is_in_no_parameter_file(env, tmp_path):
    env.set("ServerPassword", "hush-hush")
    path = tmp_path / "secret.prm"
    env.call("ZVNwriteparams", str(path).encode())
    assert "hush" not in path.read_text() and "ServerPassword" in path.read_text()


def test_the_log_goes_to_callback_and_file_as_the_parameters_say(env, make, tmp_path):
    seen = []
    callback = LOG_CALLBACK(lambda message, _: seen.append(message.decode()) or 0)
    env.call("ZVNsetlogcallbackfuncenv", callback, None)
    first, second = tmp_path / "first.log", tmp_path / "second.log"
    first.write_text("old\n")
    env.set("LogFile", str(first))
    model = make()
    env.set("LogToConsole", 1)
    lib.ZVNmsg(env.handle, b"one\n")
    caught = env.refused("set", "LogFile", str(tmp_path / "no" / "folder.log"))
    assert caught.code == FILE_WRITE and "folder.log" in caught.text
    assert env.value("LogFile") == str(first)
    lib.ZVNmsg(model.env.handle, b"from the model\n")
    env.set("LogToConsole", 0)
    lib.ZVNmsg(env.handle, b"two\n")
    env.set("LogFile", str(second))
    lib.ZVNmsg(env.handle, b"three\n")
    env.set("OutputFlag", 0)
    lib.ZVNmsg(env.handle, b"four\n")
    env.call("ZVNresetparams")
    lib.ZVNmsg(env.handle, b"five\n")
    assert first.read_text() == "old\none\nfrom the model\ntwo\n"
    assert second.read_text() == "three\n"
    assert seen == ["one\n", "five\n"]
    env.call("ZVNsetlogcallbackfuncenv", None, None)


def test_the_document_of_the_parameters_is_current():
    script = pathlib.Path(__file__).resolve().parent.parent / "docs" / "make_parameters.py"
    result = subprocess.run([sys.executable, str(script), "--check"], stderr=subprocess.PIPE, text=True)
    assert result.returncode == 0, result.stderr


# --- attributes

# A legal value that differs from the one before, for each settable attribute of a model with objects.
LEGAL = {
    "LB": -7.5,
    "UB": 3.0,
    "VType": "S",
    "Sense": "=",
    "ModelSense": -1,
    "NumStart": 1,
    "NumObj": 3,
    "VBasis": -2,
    "CBasis": -1,
    "IISLBForce": 1,
    "IISUBForce": 0,
    "IISConstrForce": 1,
}
BY_TYPE = {INT: 1, DOUBLE: 2.5, STRING: "text"}


def settable_names(model):
    for name in model.names():
        kind, objects, settable = model.info(name)
        if settable and objects <= CONSTR and not name.startswith("ScenN"):
            yield name, LEGAL.get(name, BY_TYPE.get(kind)), (None if objects == MODEL else 1)


def test_every_attribute_is_found_in_any_case(small):
    names = list(small.names())
    assert len(names) == len(set(names)) == 179
    for name in names:
        info = small.info(name)
        assert info == small.info(name.upper()) == small.info(name.lower())
        assert info[0] in range(4) and info[1] in range(6) and info[2] in (0, 1)
    error = small.refused("get", "NumVarss")
    assert error.code == UNKNOWN_ATTR and "NumVarss" in error.text
    assert small.info("X") == (DOUBLE, VAR, 0) and small.info("sense") == (CHAR, CONSTR, 1)


def test_a_write_shows_after_the_update_and_not_before(small):
    small.call("ZVNsetobjectiven", 1, 0, *map(ctypes.c_double, (1, 0, 0)), None, ctypes.c_double(0), 0, None, None)
    small.update()
    small.env.set("ObjNumber", 1)
    for name, value, where in settable_names(small):
        try:
            before = small.get(name, where)
        except LibraryError as error:
            assert error.code == NOT_AVAILABLE
            before = None
        assert before != value, name
        small.set(name, value, where)
        if before is not None:
            assert small.get(name, where) == before, name
        small.update()
        assert small.get(name, where) == value, name


def test_objects_that_await_the_update_can_be_written_but_not_read(small):
    small.call("ZVNaddvar", 0, None, None, *map(ctypes.c_double, (0, 0, 1)), ctypes.c_char(b"C"), b"late")
    small.set("UB", [9, 8], [3, 0])
    error = small.refused("get", "UB", 3)
    assert error.code == BAD_INDEX and "'UB'" in error.text and "3" in error.text
    small.env.set("UpdateMode", 0)  # which leaves the caller what is queued
    small.set("Obj", 7, 3)
    small.update()
    assert small.get("Obj", 3) == 7
    assert small.get("UB", [0, 3]) == [8, 9] and small.get("VarName", range(4)) == ["C0", "C1", "C2", "late"]


def test_names_are_dropped_when_they_are_to_be_ignored(env, small, tmp_path):
    small.set("VarName", "kept", 0)
    small.update()
    path = str(tmp_path / "named.lp").encode()
    small.call("ZVNwrite", path)
    small.env.set("IgnoreNames", 1)
    small.set("VarName", "dropped", 1)
    small.call("ZVNaddvar", 0, None, None, *map(ctypes.c_double, (0, 0, 1)), ctypes.c_char(b"C"), b"late")
    small.add_row("row", "<", 1, [(0, 1)])
    small.update()
    assert small.get("VarName", range(4)) == ["kept", "C1", "C2", "C3"] and small.get("ConstrName", 2) == "R2"
    env.set("IgnoreNames", 1)
    with env.read(path.decode()) as read:
        assert read.get("VarName", range(3)) == ["C0", "C1", "C2"]


def test_a_bad_value_is_refused_by_name_and_index_and_nothing_of_its_list_is_kept(small):
    def state():
        small.update()
        return [small.get(name, range(3)) for name in ("LB", "UB", "Obj", "VType", "VarName")] + [
            small.get(name, range(2)) for name in ("Sense", "RHS")
        ]

    before = state()
    for name, good, bad in [
        ("LB", 1.0, math.nan),
        ("LB", 1.0, INFINITY),
        ("UB", 1.0, -INFINITY),
        ("Obj", 1.0, INFINITY),
        ("VType", "B", "Q"),
        ("VarName", "fine", "n" * 256),
        ("Sense", "<", "R"),
        ("RHS", 1.0, math.nan),
        ("VBasis", 0, 1),
        ("PoolIgnore", 1, 2),
    ]:
        error = small.refused("set", name, [good, bad], [0, 1])
        assert error.code in (INVALID, BAD_VALUE), name
        assert "'%s'" % name in error.text and " 1" in error.text
    for ind in ([0, 3], [0, -1]):
        error = small.refused("set", "LB", [1.0, 1.0], ind)
        assert error.code == BAD_INDEX and str(ind[1]) in error.text
    assert state() == before
    assert small.refused("set", "ModelSense", 0).code == BAD_VALUE
    assert small.refused("set", "NumVars", 3).code == INVALID


def test_a_side_is_held_against_its_sense_at_the_update(small):
    before = [small.get(name, range(2)) for name in ("Sense", "RHS")]
    small.set("RHS", -INFINITY, 0)
    small.set("Sense", "<", 0)
    small.set("LB", -7.0, 0)
    error = small.refused("update")
    assert error.code == BAD_VALUE and small.get("ConstrName", 0) in error.text
    assert [small.get(name, range(2)) for name in ("Sense", "RHS")] == before and small.get("LB", 0) != -7.0
    small.set("Sense", ">", 0)  # what was queued stays and is right now
    small.update()
    assert (small.get("Sense", 0), small.get("RHS", 0), small.get("LB", 0)) == (">", -INFINITY, -7.0)


def test_calls_of_the_wrong_shape_type_or_index_are_refused(small):
    value = ctypes.c_double()
    for function, args, code in [
        ("ZVNgetdblattr", (b"NumVars", ctypes.byref(value)), INVALID),
        ("ZVNgetdblattr", (b"LB", ctypes.byref(value)), INVALID),
        ("ZVNgetdblattrelement", (b"ObjCon", 0, ctypes.byref(value)), INVALID),
        ("ZVNgetdblattrelement", (b"LB", 3, ctypes.byref(value)), BAD_INDEX),
        ("ZVNgetdblattrelement", (b"LB", -1, ctypes.byref(value)), BAD_INDEX),
        ("ZVNgetdblattrelement", (b"LB", 0, None), NULL_ARGUMENT),
        ("ZVNgetdblattrelement", (None, 0, ctypes.byref(value)), NULL_ARGUMENT),
        ("ZVNgetdblattrlist", (b"LB", -1, None, None), INVALID),
        ("ZVNgetdblattrlist", (b"LB", 1, None, None), NULL_ARGUMENT),
        ("ZVNsetdblattrelement", (b"FuncPieceError", 0, ctypes.c_double(1)), NOT_AVAILABLE),
        ("ZVNprefetchattr", (b"Nope",), UNKNOWN_ATTR),
    ]:
        error = small.refused("call", function, *args)
        assert error.code == code and error.text, (function, args)


def test_what_is_not_there_is_said_by_name_and_never_invented(small):
    for name in small.names():
        kind, objects, _ = small.info(name)
        available = lib.ZVNisattravailable(small.handle, name.encode())
        where = None if objects == MODEL else 0
        if available:
            small.get(name, [] if objects in (SOS, QCONSTR) else where)
        else:
            error = small.refused("get", name, where)
            assert error.code == NOT_AVAILABLE and "'%s'" % name in error.text, name
    gone = "X RC Pi Slack VBasis ObjVal MIPGap BoundVio IISConstr SAObjLow ScenNX BatchID Kappa QCPi"
    assert not any(lib.ZVNisattravailable(small.handle, name.encode()) for name in gone.split())
    assert [small.get(name) for name in ("NumSOS", "NumQConstrs", "NumGenConstrs", "IsQP", "NumScenarios")] == [0] * 5
    assert small.get("QCPi", []) == []
    assert small.get("Start", range(3)) == [UNDEFINED] * 3


def test_counts_and_ranges_of_a_random_model(make):
    rng = random.Random(5)
    n = 40
    lb = [rng.choice([0, -INFINITY, -rng.uniform(1e-3, 9)]) for _ in range(n)]
    ub = [rng.choice([INFINITY, 1, rng.uniform(10, 1e6)]) for _ in range(n)]
    obj = [rng.choice([0, rng.gauss(0, 100)]) for _ in range(n)]
    vtype = "".join(rng.choice("CCCIBSN") for _ in range(n))
    rows = [
        ({j: rng.gauss(0, 10) for j in rng.sample(range(n), 5)}, rng.choice("<>="), rng.choice([0, rng.gauss(0, 50)]))
        for _ in range(25)
    ]
    m = make(lb, ub, obj, vtype, rows)
    assert [m.get(name) for name in ("NumVars", "NumConstrs", "NumNZs", "DNumNZs")] == [n, 25, 125, 125.0]
    assert m.get("NumIntVars") == sum(t in "BIN" for t in vtype) and m.get("IsMIP") == 1
    binary = [t == "B" or (t == "I" and (low, up) == (0, 1)) for t, low, up in zip(vtype, lb, ub)]
    assert m.get("NumBinVars") == sum(binary)

    def spans(values):
        sizes = [abs(v) for v in values if 0 < abs(v) < INFINITY]
        return [min(sizes), max(sizes)]

    bounds = m.get("LB", range(n)) + m.get("UB", range(n))
    coefficients = [v for entries, _, _ in rows for v in entries.values()]
    for suffix, values in [
        ("Coeff", coefficients),
        ("ObjCoeff", obj),
        ("RHS", [r[2] for r in rows]),
        ("Bound", bounds),
    ]:
        assert [m.get("Min" + suffix), m.get("Max" + suffix)] == spans(values)
    assert [make().get(name) for name in ("MinCoeff", "MaxBound", "NumNZs")] == [0, 0, 0]


def test_the_fingerprint_tells_models_apart_and_ignores_names_and_the_order_within_a_row(make):
    def build():
        return make([0, 0], [4, 4], [1, 2], "CC", [({0: 1, 1: 2}, "<", 3)])

    plain = build().get("Fingerprint")
    assert make([0, 0], [4, 4], [1, 2], "CC", [({1: 2, 0: 1}, "<", 3)]).get("Fingerprint") == plain
    changes = [("LB", 1.0, 0), ("UB", 3.0, 1), ("Obj", 1.5, 0), ("VType", "I", 0), ("RHS", 4.0, 0), ("Sense", "=", 0)]
    prints = {plain}
    for name, value, where in changes + [("ObjCon", 1.0, None), ("ModelSense", -1, None)]:
        m = build()
        m.set(name, value, where)
        m.update()
        prints.add(m.get("Fingerprint"))
    assert len(prints) == 9
    m = build()
    m.set("VarName", "x", 0)
    m.set("BranchPriority", 4, 1)
    m.update()
    assert m.get("Fingerprint") == plain


def test_several_objectives_are_selected_by_a_parameter(small):
    assert [small.get("NumObj"), small.get("IsMultiObj"), small.get("ObjN", range(3))] == [1, 0, [1, -3, 0.5]]
    small.set("NumObj", 3)
    small.env.set("ObjNumber", 2)
    small.set("ObjN", [5, 6], [0, 2])
    small.set("ObjNPriority", 7)
    small.set("ObjNName", "third")
    small.update()
    assert [small.get(n) for n in ("NumObj", "IsMultiObj", "ObjNPriority", "ObjNName")] == [3, 1, 7, "third"]
    assert small.get("ObjN", range(3)) == [5, 0, 6] and small.get("Obj", range(3)) == [1, -3, 0.5]
    small.env.set("ObjNumber", 0)
    small.set("ObjN", 4.0, 1)
    small.set("NumObj", 2)
    small.update()
    assert small.get("Obj", 1) == 4
    small.env.set("ObjNumber", 2)
    assert small.refused("get", "ObjNWeight").code == NOT_AVAILABLE
    assert small.refused("set", "ObjNWeight", 1.0).code == BAD_INDEX


# --- what a solve leaves


def quality(model, *names):
    return [model.get(name) for name in names]


def test_values_of_a_solved_model_agree_with_each_other(make):
    rng = random.Random(8)
    n, rows = 12, []
    for _ in range(9):
        entries = {j: rng.uniform(-1, 3) for j in rng.sample(range(n), 6)}
        rows.append((entries, "<", rng.uniform(5, 20)))
    obj = [rng.uniform(-5, 1) for _ in range(n)]
    m = make([0] * n, [10] * n, obj, "", rows)
    m.optimize()
    assert quality(m, "Status", "SolCount", "IsMIP") == [2, 1, 0]
    x, rc, pi, slack = m.get("X", range(n)), m.get("RC", range(n)), m.get("Pi", range(9)), m.get("Slack", range(9))
    assert m.get("ObjVal") == pytest.approx(sum(c * v for c, v in zip(obj, x)))
    for (entries, _, rhs), s in zip(rows, slack):
        assert s == pytest.approx(rhs - sum(a * x[j] for j, a in entries.items()))
    for j in range(n):
        assert rc[j] == pytest.approx(obj[j] - sum(p * r[0].get(j, 0) for p, r in zip(pi, rows)), abs=1e-9)
    dual_bound = sum(p * r[2] for p, r in zip(pi, rows)) + sum(10 * min(d, 0) for d in rc)
    assert m.get("ObjVal") == pytest.approx(dual_bound)
    basic = m.get("VBasis", range(n)).count(0) + m.get("CBasis", range(9)).count(0)
    assert basic == 9
    assert max(quality(m, "MaxVio", "ConstrResidual", "DualResidual", "ComplVioSum")) < 1e-9
    assert m.get("Xn", range(n)) == x and m.get("PoolObjVal") == m.get("ObjVal")
    m.env.set("SolutionNumber", 1)
    error = m.refused("get", "Xn", 0)
    assert error.code == NOT_AVAILABLE and "SolutionNumber" in error.text
    m.set("UB", 5.0, 0)
    m.update()
    assert m.refused("get", "X", 0).code == NOT_AVAILABLE and m.get("SolCount") == 0


def test_violations_are_measured_where_a_loose_tolerance_lets_them_be(make):
    rows = [({0: 10, 1: 10}, "<", 10), ({0: 5, 1: 5}, ">", 5.004)]
    m = make([0, 0, 0], [INFINITY, INFINITY, INFINITY], [1, 1, -0.004], "", rows)
    for name, value in [("FeasibilityTol", 1e-2), ("OptimalityTol", 1e-2), ("Presolve", 0), ("ScaleFlag", 0)]:
        m.env.set(name, value)
    m.optimize()
    assert m.get("Status") == 2
    x = m.get("X", range(3))
    off = [max(0, 10 * (x[0] + x[1]) - 10), max(0, 5.004 - 5 * (x[0] + x[1]))]
    worst = off.index(max(off))
    assert max(off) > 3e-3
    assert quality(m, "ConstrVio", "ConstrVioIndex", "ConstrVioSum") == [
        pytest.approx(max(off)),
        worst,
        pytest.approx(sum(off)),
    ]
    assert m.get("ConstrSVio") == pytest.approx(max(off[0] / 10, off[1] / 5))
    assert quality(m, "DualVio", "DualVioIndex") == [pytest.approx(0.004), 2 + 2]
    assert m.get("MaxVio") == max(quality(m, "BoundVio", "ConstrVio", "DualVio"))
    assert quality(m, "IntVio", "IntVioIndex", "BoundVioIndex") == [0, -1, -1]


def test_a_certificate_proves_what_the_status_says(make):
    m = make([0, 0], [INFINITY, INFINITY], [-1, -1], "", [({0: 1, 1: -1}, "<", 2), ({0: -1, 1: 2}, ">", -4)])
    m.env.set("InfUnbdInfo", 1)
    m.optimize()
    assert m.get("Status") == 5
    ray = m.get("UnbdRay", range(2))
    assert min(ray) >= 0 and sum(ray) > 0 and ray[0] - ray[1] <= 1e-9 and 2 * ray[1] - ray[0] >= -1e-9
    assert m.refused("get", "FarkasDual", 0).code == NOT_AVAILABLE
    rows = [({0: 1, 1: 1}, "<", 2), ({0: 1, 1: 1}, ">", 5)]
    m = make([0, 0], [4, 4], [1, 1], "", rows)
    m.env.set("InfUnbdInfo", 1)
    m.optimize()
    assert m.get("Status") == 3
    dual = m.get("FarkasDual", range(2))
    coeffs = [sum(y * row[0].get(j, 0) for y, row in zip(dual, rows)) for j in range(2)]
    least = sum(min(0, 4 * a) for a in coeffs)
    assert m.get("FarkasProof") == pytest.approx(least - sum(y * row[2] for y, row in zip(dual, rows)))
    assert m.get("FarkasProof") > 0


def test_the_condition_number_of_the_basis(make):
    # At the optimum both columns are basic: B = [[1, 1], [1, 1.001]], with inverse [[1001, -1000], [-1000, 1000]].
    m = make([0, 0], [INFINITY, INFINITY], [-1, -1], "", [({0: 1, 1: 1}, "<", 2), ({0: 1, 1: 1.001}, "=", 2.001)])
    m.optimize()
    assert m.get("VBasis", range(2)) == [0, 0]
    assert m.get("KappaExact") == pytest.approx(2.001 * 2001, rel=1e-6)
    assert 0.3 * m.get("KappaExact") <= m.get("Kappa") <= m.get("KappaExact") * (1 + 1e-9)
    m.set("UB", 9.0, 0)
    m.update()
    assert m.refused("get", "Kappa").code == NOT_AVAILABLE
