"""python -m zelvanpy as a user calls it."""

import json
import os
import pathlib
import subprocess
import sys

import pytest

import zelvanpy

DATA = pathlib.Path(__file__).resolve().parent.parent / "examples" / "data"


def zelvan(*arguments, cwd):
    return subprocess.run(
        [sys.executable, "-m", "zelvanpy", *map(str, arguments)],
        stdout=subprocess.PIPE,
        stderr=subprocess.PIPE,
        text=True,
        cwd=str(cwd),
        env=dict(os.environ, PYTHONPATH=str(pathlib.Path(zelvanpy._zelvanpy.__file__).parent.parent)),
    )


@pytest.mark.parametrize(
    "name, objective, variables", [("transport.mps", "8945", "of 48"), ("shifts.lp", "11905", "of 35")]
)
def test_shipped_models(name, objective, variables, tmp_path):
    result = zelvan(
        DATA / name, "TimeLimit=100", "OutputFlag=0", "--write", "answer.json", "--write", "copy.lp", cwd=tmp_path
    )
    assert (result.returncode, result.stderr) == (0, "")
    lines = result.stdout.strip().splitlines()
    assert lines[0] == "Status: OPTIMAL"
    assert lines[1] == "Objective: " + objective
    assert lines[2].endswith(variables)
    assert len(lines) == 3 + int(lines[2].split()[2])
    again = zelvan(tmp_path / "copy.lp", "outputflag=0", cwd=tmp_path)
    assert again.stdout.splitlines()[1:3] == ["Status: OPTIMAL", "Objective: " + objective]
    solution = json.loads((tmp_path / "answer.json").read_text())
    assert solution["SolutionInfo"]["ObjVal"] == pytest.approx(float(objective), rel=1e-9)


def test_no_answer(tmp_path):
    (tmp_path / "none.lp").write_text("Minimize\n x\nSubject To\n c: x <= 1\n d: x >= 2\nEnd\n")
    result = zelvan("none.lp", cwd=tmp_path)
    assert result.returncode == 1
    assert "Status: INF" in result.stdout


@pytest.mark.parametrize(
    "arguments, fault",
    [
        (["missing.mps"], "missing.mps"),
        ([DATA / "shifts.lp", "Threads"], "Threads"),
        ([DATA / "shifts.lp", "NoSuch=1"], "NoSuch"),
        ([DATA / "shifts.lp", "Threads=many"], "many"),
        ([DATA / "shifts.lp", "TimeLimit=-1"], "TimeLimit"),
        ([DATA / "shifts.lp", "--write", "nofolder/a.json"], "nofolder"),
        ([], "model"),
    ],
)
def test_faults_are_named(arguments, fault, tmp_path):
    result = zelvan(*arguments, cwd=tmp_path)
    assert result.returncode == 2
    assert fault in result.stderr + result.stdout
    assert "Traceback" not in result.stderr
    assert list(tmp_path.iterdir()) == []
