"""Solutions, starts, branching priorities and bases in files, through the C interface."""

import json
import random

import pytest
from native import FILE_READ, INFINITY, NOT_AVAILABLE, UNDEFINED, Int, LibraryError, array, lib

N, M = 8, 6


def build(make, vtype=""):
    rng = random.Random(17)
    rows = [({j: rng.randint(1, 9) for j in rng.sample(range(N), 4)}, "<", rng.randint(20, 40)) for _ in range(M - 1)]
    rows.append((dict.fromkeys(range(N), 1), ">", 1))
    model = make([0] * N, [3] * (N - 1) + [INFINITY], [-rng.randint(1, 9) for _ in range(N)], vtype, rows)
    model.set("VarName", ["x y", "x#1"] + ["v%d" % j for j in range(2, N)], range(N))
    model.update()
    return model


def test_a_solution_comes_back_as_a_start_and_priorities_as_they_were(make, tmp_path):
    model, fresh = build(make, "I" * N), build(make, "I" * N)
    caught = model.refused("write", tmp_path / "none.sol")
    assert caught.code == NOT_AVAILABLE and not (tmp_path / "none.sol").exists()
    model.set("BranchPriority", [5, -2], [0, 3])
    model.optimize()
    x = model.get("X", range(N))
    for ending in (".sol", ".mst", ".sol.gz"):
        path = tmp_path / ("a" + ending)
        model.write(path)
        fresh.read(path)
        fresh.update()
        assert fresh.get("Start", range(N)) == x
        fresh.call("ZVNreset", 1)
        assert fresh.get("Start", 0) == UNDEFINED
    assert "Objective value = %d" % model.get("ObjVal") in (tmp_path / "a.sol").read_text()
    model.write(tmp_path / "a.ord")
    fresh.read(tmp_path / "a.ord")
    fresh.update()
    assert fresh.get("BranchPriority", range(4)) == [5, 0, 0, -2]


@pytest.mark.parametrize("vtype", ["", "I" * N])
def test_queued_changes_cost_no_solution(make, tmp_path, vtype):
    """What belongs to the solution is written as of that; without a solution, queued values are written."""
    model = build(make, vtype)
    model.set("Start", [2], [4])
    model.set("BranchPriority", [3], [1])
    for ending, word in ((".mst", "v4 2"), (".ord", "x#1 3")):
        model.write(tmp_path / ("queued" + ending))
        assert word in (tmp_path / ("queued" + ending)).read_text().splitlines()
    model.optimize()
    endings = [".sol", ".mst", ".JSON", ".prm"] + ([] if vtype else [".bas"])
    before = {}
    for queued in (False, True):
        if queued:
            model.add_row("", "<", 0, [(0, 1)])
            model.call("ZVNdelvars", 1, array(Int, [3]))
        for ending in endings:
            path = tmp_path / ("a" + ending)
            model.write(path)
            assert not lib.ZVNisattrfile(str(path).encode())
            assert path.read_text() == before.setdefault(ending, path.read_text())
    assert model.get("SolCount") >= 1 and model.get("X", 3) is not None
    model.update()
    with pytest.raises(LibraryError):
        model.write(tmp_path / "a.sol")


def test_any_bytes_in_names_are_json(make, tmp_path):
    names = [b"plain", "n\u00e4 \u6c34 \U0001f600".encode(), b'"\\/', b"\x01\t\n\x7f"]
    names += [b"\xff\x80", b"\xc3", b"a\xe2\x82", b"\xed\xb2\x80"]  # no UTF-8
    model = build(make)
    for j, name in enumerate(names):
        model.call("ZVNsetstrattrelement", b"VarName", j, name)
    model.optimize()
    model.write(tmp_path / "a.json")
    found = json.loads((tmp_path / "a.json").read_bytes().decode("utf-8"))
    assert [v["VarName"].encode("utf-8", "surrogateescape") for v in found["Vars"]] == names
    assert [v["X"] for v in found["Vars"]] == model.get("X", range(N))


def test_a_basis_comes_back_and_ends_the_next_solve_at_once(make, tmp_path):
    model, fresh = build(make), build(make)
    for m in (model, fresh):
        m.env.set("Presolve", 0)
        m.env.set("Method", 1)
    model.optimize()
    assert model.get("IterCount") > 0
    model.write(tmp_path / "a.bas")
    fresh.read(tmp_path / "a.bas")
    fresh.update()
    for name, size in (("VBasis", N), ("CBasis", M)):
        assert fresh.get(name, range(size)) == model.get(name, range(size))
    fresh.optimize()
    assert fresh.get("ObjVal") == pytest.approx(model.get("ObjVal")) and fresh.get("IterCount") == 0


@pytest.mark.parametrize(
    "ending, fault, word",
    [
        (".mst", "v2 two", "two"),
        (".sol", "v2", "number"),
        (".bas", " XL v2 nowhere", "nowhere"),
        (".bas", " ZZ v2", "ZZ"),
        (".bas", " UL v2 R0 R1", "column"),
    ],
)
def test_a_faulty_file_is_refused_with_its_line_and_queues_nothing(make, tmp_path, ending, fault, word):
    model = build(make)
    path = tmp_path / ("faulty" + ending)
    path.write_text("%s\n%s\nENDATA 1\n" % (" UL v3" if ending == ".bas" else "v3 1", fault))
    caught = model.refused("read", path)
    assert caught.code == FILE_READ and word in caught.text
    assert "line 2" in caught.text and path.name in caught.text
    model.update()
    assert model.get("Start", 3) == UNDEFINED
    with pytest.raises(LibraryError):
        model.get("VBasis", 3)


def test_values_of_unknown_names_are_left_out_with_a_line_in_the_log(make, tmp_path):
    model = build(make)
    model.env.set("LogFile", str(tmp_path / "log"))
    (tmp_path / "a.mst").write_text("# start\nnobody 4\n\nv2 1.5\nx y 1e-3\n")
    model.read(tmp_path / "a.mst")
    model.update()
    assert model.get("Start", range(3)) == [1e-3, UNDEFINED, 1.5]
    assert "1 values left out" in (tmp_path / "log").read_text()


def test_the_result_file_is_written_when_a_solve_ends(make, tmp_path):
    model = build(make)
    model.env.set("ResultFile", str(tmp_path / "result.sol"))
    model.env.set("LogFile", str(tmp_path / "log"))
    model.optimize()
    lines = (tmp_path / "result.sol").read_text().splitlines()
    assert len(lines) == N + 1 and lines[0].startswith("# Objective value = ")
    (tmp_path / "result.sol").unlink()
    model.add_row("", "<", -1, [(0, 1)])
    model.optimize()
    assert model.get("SolCount") == 0 and not (tmp_path / "result.sol").exists()
    assert "result.sol' was not written" in (tmp_path / "log").read_text()
    model.env.set("ResultFile", str(tmp_path / "result.xyz"))
    model.optimize()  # a file that can't be written costs no answer
    assert "result.xyz' was not written" in (tmp_path / "log").read_text()
