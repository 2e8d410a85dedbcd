"""Parameters of a solve: each that claims an effect changes what the solver does."""

import os
import re

import pytest
from solvable import assignment, knapsacks

import zelvanpy
from zelvanpy import ZVN, ZelvanError


@pytest.fixture
def log_of(tmp_path):
    """Solves a model of the given maker and parameters; returns the model and the log of the solve."""

    def solve(maker, **params):
        path = tmp_path / ("solve%d.log" % len(list(tmp_path.iterdir())))
        env = zelvanpy.Env(empty=True)
        env.setParam("LogToConsole", 0)
        env.setParam("LogFile", str(path))
        env.start()
        m = maker(env)
        for name, value in params.items():
            m.setParam(name, value)
        m.optimize()
        return m, path.read_text()

    return solve


def instance(shared_data, name):
    return lambda env: zelvanpy.read(str(shared_data / name), env)


@pytest.mark.parametrize(
    "param, value, status",
    [
        ("TimeLimit", 0.3, ZVN.TIME_LIMIT),
        ("WorkLimit", 0.001, ZVN.WORK_LIMIT),
        ("NodeLimit", 3, ZVN.NODE_LIMIT),
        ("IterationLimit", 300, ZVN.ITERATION_LIMIT),
        ("SolutionLimit", 2, ZVN.SOLUTION_LIMIT),
        ("BestObjStop", 17000, ZVN.USER_OBJ_LIMIT),
        ("BestBdStop", 25000, ZVN.USER_OBJ_LIMIT),
        ("SoftMemLimit", 0.001, ZVN.MEM_LIMIT),
    ],
)
def test_limits_of_a_mip(env_silent, param, value, status):
    m = knapsacks(env_silent)
    m.setParam(param, value)
    m.optimize()
    assert m.Status == status
    if param != "SoftMemLimit":
        assert m.SolCount >= 1 and m.MIPGap == pytest.approx((m.ObjBound - m.ObjVal) / m.ObjVal)
    m.setParam(param, "default")
    m.Params.MIPGap = 0.2
    m.optimize()
    assert m.Status == ZVN.OPTIMAL  # a stop leaves nothing behind


@pytest.mark.parametrize(
    "params, status",
    [
        ({"IterationLimit": 20}, ZVN.ITERATION_LIMIT),
        ({"Method": 2, "BarIterLimit": 2}, ZVN.ITERATION_LIMIT),
        ({"TimeLimit": 0}, ZVN.TIME_LIMIT),
        ({"Method": 2, "WorkLimit": 1e-3}, ZVN.WORK_LIMIT),
    ],
)
def test_limits_of_an_lp(env_silent, params, status):
    m = assignment(env_silent)
    m.Params.Presolve = 0
    for name, value in params.items():
        m.setParam(name, value)
    m.optimize()
    assert m.Status == status
    for name in params:
        m.setParam(name, "default")
    m.optimize()
    assert m.Status == ZVN.OPTIMAL


def test_memory_limit_fails_the_solve(env_silent):
    m = knapsacks(env_silent)
    m.Params.MemLimit = 0.001
    with pytest.raises(ZelvanError, match="more memory than MemLimit") as caught:
        m.optimize()
    assert caught.value.errno == ZVN.ERROR_OUT_OF_MEMORY and m.Status == ZVN.LOADED


def test_cutoff(env_silent):
    m = assignment(env_silent)
    m.optimize()
    best = m.ObjVal
    for cutoff, status in ((best + 1, ZVN.OPTIMAL), (best - 1, ZVN.CUTOFF)):
        m.Params.Cutoff = cutoff
        m.optimize()
        assert m.Status == status and m.SolCount == (status == ZVN.OPTIMAL)
    m = knapsacks(env_silent, items=12)
    m.optimize()
    best = m.ObjVal
    for cutoff, status in ((best - 1, ZVN.OPTIMAL), (best + 1, ZVN.CUTOFF)):
        m.Params.Cutoff = cutoff
        m.optimize()
        assert m.Status == status and m.SolCount <= 2


def test_gaps_end_a_search(env_silent):
    m = knapsacks(env_silent)
    for param, value in (("MIPGap", 0.1), ("MIPGapAbs", 2000)):
        m.reset()
        m.setParam(param, value)
        m.optimize()
        assert m.Status == ZVN.OPTIMAL and m.ObjBound - m.ObjVal <= (value * m.ObjVal if value < 1 else value)
        m.setParam(param, "default")


def test_methods(log_of):
    marks = {
        0: "Using primal simplex",
        1: "Using dual simplex",
        2: "IPX",
    }
    values = set()
    for method, mark in marks.items():
        m, log = log_of(assignment, Method=method, Presolve=0)
        assert mark in log, method
        assert (m.BarIterCount > 0) == (method == 2)
        values.add(round(m.ObjVal, 6))
    m, _ = log_of(assignment, Method=3)
    assert m.ConcurrentWinMethod in (1, 2) and round(m.ObjVal, 6) in values and len(values) == 1
    m.optimize()  # the basis of the winner is kept
    assert m.IterCount == 0 or m.ConcurrentWinMethod == 2


def test_crossover(env_silent):
    m = assignment(env_silent)
    m.Params.Method = 2
    m.optimize()
    assert len(m.getAttr("VBasis")) == m.NumVars
    m = assignment(env_silent)
    m.Params.Method = 2
    m.Params.Crossover = 0
    m.Params.BarConvTol = 1e-4
    m.optimize()
    with pytest.raises(ZelvanError, match="no basis"):
        m.getAttr("VBasis")
    rough = m.BarIterCount
    m.Params.BarConvTol = 1e-8
    m.reset()
    m.optimize()
    assert m.BarIterCount > rough


def test_presolve(log_of, shared_data):
    make = instance(shared_data, "25fv47.mps")
    counts = {}
    for params in ((), (("Presolve", 0),), (("PrePasses", 0),), (("PrePasses", 1),)):
        m, log = log_of(make, **dict(params))
        counts[params] = m.IterCount
        assert ("Presolving model" in log) == (params in ((), (("PrePasses", 1),)))
        if "Presolve reductions" in log:
            rows = int(re.search(r"Presolve reductions: rows (\d+)", log).group(1))
            assert rows < m.NumConstrs
    assert counts[(("Presolve", 0),)] == counts[(("PrePasses", 0),)]
    assert len(set(counts.values())) == 3


@pytest.mark.parametrize(
    "param, values",
    [("ScaleFlag", (0, 1, 3)), ("SimplexPricing", (0, 1, 2)), ("NumericFocus", (0, 3)), ("Seed", (0, 7))],
)
def test_simplex_goes_another_way(env_silent, shared_data, param, values):
    def solve(value):
        m = zelvanpy.read(str(shared_data / "25fv47.mps"), env_silent)
        m.setParam(param, value)
        m.optimize()
        assert m.ObjVal == pytest.approx(5501.8458883, rel=1e-6)
        return m.IterCount

    counts = [solve(value) for value in values]
    assert len(set(counts)) == len(values)
    assert counts[0] == solve(values[0])  # the same way again


def test_heuristics_and_seed_in_a_search(env_silent):
    def solve(**params):
        m = knapsacks(env_silent, items=25, rows=3)
        m.Params.NodeLimit = 200
        for name, value in params.items():
            m.setParam(name, value)
        m.optimize()
        return m.IterCount, m.ObjVal, m.SolCount

    assert solve() == solve()
    assert solve(Heuristics=0) != solve(Heuristics=0.5)
    assert solve(Seed=3) == solve(Seed=3) != solve(Seed=4)


def test_tolerances(env_silent):
    def model():
        m = zelvanpy.Model(env=env_silent)
        x, y = m.addVar(obj=1), m.addVar(vtype=ZVN.INTEGER, obj=1)
        m.addConstr(x >= 1.005)
        m.addConstr(x <= 1)
        m.addConstr(y >= 2)
        return m

    m = model()
    m.optimize()
    assert m.Status == ZVN.INFEASIBLE
    m.Params.FeasibilityTol = 1e-2
    m.Params.IntFeasTol = 1e-2
    m.optimize()
    assert m.Status == ZVN.OPTIMAL
    m = zelvanpy.Model(env=env_silent)
    x = m.addVar(obj=-1e-5, ub=3)
    m.addConstr(x >= 1)
    m.Params.OptimalityTol = 1e-2
    m.Params.Presolve = 0
    m.Params.Method = 1
    m.optimize()
    loose = x.X
    m.reset()
    m.Params.OptimalityTol = 1e-9
    m.optimize()
    assert (m.Status, x.X) == (ZVN.OPTIMAL, 3) and loose < 3


def test_files_of_a_solve(env_silent, tmp_path):
    m = knapsacks(env_silent, items=25)
    m.Params.SolFiles = str(tmp_path / "found")
    m.Params.ResultFile = str(tmp_path / "end.sol")
    m.Params.SolutionLimit = 4
    m.optimize()
    values = []
    for number in range(len(list(tmp_path.glob("found_*.sol")))):
        head = (tmp_path / ("found_%d.sol" % number)).read_text().splitlines()[0]
        values.append(float(head.split("=")[1]))
    assert values == sorted(values) and values[-1] == pytest.approx(m.ObjVal) and len(values) >= 2
    end = (tmp_path / "end.sol").read_text()
    assert end.startswith("# Objective value = ") and end.count("\n") == m.NumVars + 1
    m.dispose()


def test_files_that_cannot_be_written_leave_the_answer(log_of, tmp_path):
    lost = str(tmp_path / "missing" / "found")
    m, log = log_of(lambda env: knapsacks(env, 15), SolFiles=lost, ResultFile=lost + ".sol")
    assert m.Status == ZVN.OPTIMAL and m.SolCount >= 1
    assert "File '%s_0.sol' was not written" % lost in log and "File '%s.sol' was not written" % lost in log


def test_log(log_of, capfd):
    _, log = log_of(assignment)
    lines = log.splitlines()
    assert lines[0].startswith("Zelvan optimizer version 10.0.3")
    assert lines[1] == "Optimize a model with 80 rows, 1600 columns and 3200 nonzeros"
    assert any(line.startswith("Ended with status OPTIMAL") for line in lines)
    assert capfd.readouterr().out == ""
    _, log = log_of(assignment, OutputFlag=0)
    assert "Optimize" not in log


def test_display_interval(log_of):
    """Slow: the shortest interval is a second, of which a solve must take several."""

    limit = 12.0 if "ZELVAN_SANITIZED" in os.environ else 3.5

    def progress_lines(interval):
        _, log = log_of(knapsacks, TimeLimit=limit, DisplayInterval=interval, Heuristics=0)
        return [line for line in log.splitlines() if re.match(r"\s+\d+ .*s$", line)]

    assert len(progress_lines(1)) > len(progress_lines(100))


def test_threads(log_of):
    for threads in (2, 1, 3):
        _, log = log_of(lambda env: knapsacks(env, items=12), Threads=threads)
        assert re.search(r"Thread count (\d+)", log).group(1) == str(threads)


@pytest.mark.parametrize("method, late", [(0, 1.05), (1, 1.05), (2, 1.3)])
def test_work_limit_of_an_lp_fires_on_time(env_silent, method, late):
    m = assignment(env_silent, 60)
    m.Params.Method = method
    m.optimize()
    work = m.Work
    for share in (0.3, 0.8):
        m.reset()
        m.Params.WorkLimit = share * work
        m.optimize()
        assert m.Status == ZVN.WORK_LIMIT and share * work <= m.Work <= late * share * work


def test_limits_count_over_all_objectives(env_silent):
    m = assignment(env_silent)
    m.optimize()
    first = m.IterCount
    x = m.getVars()
    m.setObjectiveN(m.getObjective(), 0, priority=2, reltol=0.5)
    m.setObjectiveN(zelvanpy.quicksum(k % 37 * var for k, var in enumerate(x)), 1, priority=1)
    m.reset()
    m.optimize()
    work, iterations = m.Work, m.IterCount
    assert m.Status == ZVN.OPTIMAL and iterations > 1.2 * first
    for limit, value in (("IterationLimit", (first + iterations) // 2), ("WorkLimit", 0.95 * work)):
        m.reset()
        m.setParam(limit, value)
        m.optimize()
        assert m.Status == (ZVN.WORK_LIMIT if limit == "WorkLimit" else ZVN.ITERATION_LIMIT)
        assert first < m.IterCount < iterations and m.SolCount == 1  # the point of the first objective
        m.setParam(limit, "default")
