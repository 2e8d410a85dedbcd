"""Solving: statuses, values and their signs, re-solving, several threads."""

import math
import os
import threading

import numpy
import pytest
from hypothesis import assume, example, given
from hypothesis import strategies as st
from scipy.optimize import Bounds, LinearConstraint, linprog, milp
from solvable import assignment, knapsacks

import zelvanpy
from zelvanpy import ZVN, ZelvanError

INF = ZVN.INFINITY
STATUS = {"OPTIMAL": ZVN.OPTIMAL, "INFEASIBLE": ZVN.INFEASIBLE, "UNBOUNDED": ZVN.UNBOUNDED}


def test_instances_end_as_the_reference_says(env_silent, shared_data, reference, capfd):
    for name, row in reference.items():
        m = zelvanpy.read(str(shared_data / name), env_silent)
        m.Params.DualReductions = 0
        m.optimize()
        assert m.Status == STATUS[row["status"]], name
        if row["objective"]:
            assert m.ObjVal == pytest.approx(float(row["objective"]), rel=1e-6), name
        m.dispose()
    assert capfd.readouterr() == ("", "")


small = st.integers(-5, 5).map(float)


@st.composite
def programs(draw, integers):
    """Columns (obj, lb, ub, vtype), rows (coefficients, sense, rhs) and a sense; often feasible."""
    n, m = draw(st.integers(1, 6)), draw(st.integers(0, 6))
    point = draw(st.lists(st.integers(-3, 3), min_size=n, max_size=n))
    cols = []
    for x in point:
        lb = draw(st.sampled_from([x - 2.0, float(x), -INF]))
        ub = draw(st.sampled_from([x + 3.0, float(x), INF]))
        cols.append((draw(small), lb, ub, draw(st.sampled_from("CI" if integers else "C"))))
    rows = []
    for _ in range(m):
        coeffs = draw(st.lists(small, min_size=n, max_size=n))
        shift = draw(st.integers(-1, 4))
        sense = draw(st.sampled_from("<>="))
        at_point = sum(a * x for a, x in zip(coeffs, point))
        rows.append((coeffs, sense, at_point + {"<": shift, ">": -shift, "=": 0}[sense]))
    return cols, rows, draw(st.sampled_from([1, -1]))


def build(program):
    cols, rows, sense = program
    env = zelvanpy.Env(empty=True)
    env.setParam("OutputFlag", 0)
    env.start()
    m = zelvanpy.Model(env=env)
    x = [m.addVar(obj=obj, lb=lb, ub=ub, vtype=vtype) for obj, lb, ub, vtype in cols]
    for coeffs, row_sense, rhs in rows:
        m.addLConstr(zelvanpy.LinExpr(coeffs, x), row_sense, rhs)
    m.ModelSense = sense
    m.Params.DualReductions = 0
    return m


BOX = 1e4


def arrays(program):
    cols, rows, _ = program
    c, lb, ub = (numpy.array([col[k] for col in cols]) for k in range(3))
    a = numpy.array([row[0] for row in rows]).reshape(len(rows), len(cols))
    b = numpy.array([row[2] for row in rows])
    senses = numpy.array([row[1] for row in rows], dtype="U1")
    return c, numpy.where(lb <= -INF, -math.inf, lb), numpy.where(ub >= INF, math.inf, ub), a, b, senses


def second_opinion(program):
    c, lb, ub, a, b, senses = arrays(program)
    integrality = [col[3] != "C" for col in program[0]]
    sides = numpy.where(senses == "<", -math.inf, b), numpy.where(senses == ">", math.inf, b)
    rows = LinearConstraint(a, *sides) if len(b) else None
    # scipy calls some unbounded programs infeasible or optimal: a box, far larger than the data, tells.
    box = Bounds(numpy.maximum(lb, -BOX), numpy.minimum(ub, BOX))
    other = milp(program[2] * c, integrality=integrality, bounds=box, constraints=rows)
    if other.status == 0 and other.fun < -BOX / 10:
        other.status = 3
    return other


@example(
    (
        [(0.0, -1e100, 3.0, "C"), (1.0, 0.0, 3.0, "C"), (1.0, -1e100, 3.0, "I")],
        [([1.0, 0.0, -2.0], ">", 0.0), ([-1.0, 1.0, 2.0], ">", -1.0)],
        1,
    )
)
@given(programs(integers=True))
def test_integer_programs_agree_with_scipy(program):
    m = build(program)
    m.optimize()
    other = second_opinion(program)
    assume(other.status != 4)  # scipy may leave open whether infeasible or unbounded
    assert m.Status == {0: ZVN.OPTIMAL, 2: ZVN.INFEASIBLE, 3: ZVN.UNBOUNDED}[other.status]
    if other.status == 0:
        assert m.ObjVal == pytest.approx(program[2] * other.fun, abs=1e-6)
        assert program[2] * (m.ObjBound - m.ObjVal) <= 1e-9
        assert numpy.dot([col[0] for col in program[0]], m.getAttr("X")) == pytest.approx(m.ObjVal, abs=1e-6)
    m.dispose()


def check_duals(m, program):
    c, lb, ub, a, b, senses = arrays(program)
    sense = program[2]
    x, rc, pi, slack = (numpy.array(m.getAttr(name)) for name in ("X", "RC", "Pi", "Slack"))
    assert numpy.allclose(slack, b - a @ x, atol=1e-6)
    assert numpy.allclose(rc, c - pi @ a, atol=1e-6)
    assert (sense * pi[senses == "<"] <= 1e-6).all() and (sense * pi[senses == ">"] >= -1e-6).all()
    assert numpy.allclose(pi * slack, 0, atol=1e-5)
    assert ((sense * rc >= -1e-6) | (x >= ub - 1e-6)).all() and ((sense * rc <= 1e-6) | (x <= lb + 1e-6)).all()
    assert (m.getAttr("VBasis") + m.getAttr("CBasis")).count(ZVN.BASIC) == len(b)


def check_proof_of_infeasibility(m, program):
    _, lb, ub, a, b, senses = arrays(program)
    y = numpy.array(m.getAttr("FarkasDual"))
    assert (y[senses == "<"] >= 0).all() and (y[senses == ">"] <= 0).all()
    combined = y @ a
    combined[abs(combined) < 1e-9] = 0
    sides = numpy.where(combined > 0, lb, ub)
    least = sum(k * side for k, side in zip(combined, sides) if k)
    assert m.FarkasProof > 0 and least - y @ b == pytest.approx(m.FarkasProof)


def check_ray(m, program):
    c, lb, ub, a, _, senses = arrays(program)
    ray = numpy.array(m.getAttr("UnbdRay"))
    assert program[2] * (c @ ray) < 0 and (ray[lb > -math.inf] >= -1e-9).all() and (ray[ub < math.inf] <= 1e-9).all()
    along = a @ ray
    assert (along[senses != ">"] <= 1e-9).all() and (along[senses != "<"] >= -1e-9).all()


@given(programs(integers=False))
def test_linear_programs_have_valid_duals_and_certificates(program):
    m = build(program)
    m.Params.InfUnbdInfo = 1
    m.optimize()
    checks = {
        ZVN.OPTIMAL: check_duals,
        ZVN.INFEASIBLE: check_proof_of_infeasibility,
        ZVN.UNBOUNDED: check_ray,
    }
    checks[m.Status](m, program)
    m.dispose()


def test_undecided_without_dual_reductions_is_decided(env_silent):
    def outcome(vtype, feasible, dual_reductions):
        m = zelvanpy.Model(env=env_silent)
        x, y = m.addVar(obj=-1, vtype=vtype), m.addVar(ub=3, vtype=vtype)
        m.addConstr(2 * y == (2 if feasible else 1), name="parity")
        m.addConstr(y - x <= 9)
        m.Params.DualReductions = dual_reductions
        m.optimize()
        return m.Status

    assert outcome(ZVN.INTEGER, True, 0) == ZVN.UNBOUNDED
    assert outcome(ZVN.INTEGER, False, 0) == ZVN.INFEASIBLE
    assert outcome(ZVN.INTEGER, True, 1) in (ZVN.INF_OR_UNBD, ZVN.UNBOUNDED)
    assert outcome(ZVN.CONTINUOUS, True, 0) == ZVN.UNBOUNDED


def test_models_without_columns_or_rows(env_silent):
    m = zelvanpy.Model(env=env_silent)
    m.ObjCon = 4
    m.optimize()
    assert (m.Status, m.ObjVal, m.SolCount, m.getVars()) == (ZVN.OPTIMAL, 4, 1, [])
    row = m.addLConstr(zelvanpy.LinExpr(), "<", 2)
    m.optimize()
    assert m.Status == ZVN.OPTIMAL and (row.Slack, row.Pi, row.CBasis) == (2, 0, ZVN.BASIC)
    row.RHS = -1
    m.optimize()
    assert m.Status == ZVN.INFEASIBLE and m.SolCount == 0
    m.remove(row)
    x = m.addVar(lb=-2, ub=7, obj=-1)
    m.optimize()
    assert (m.Status, m.ObjVal, x.X, x.RC) == (ZVN.OPTIMAL, -3, 7, -1)
    x.UB = INF
    m.optimize()
    assert m.Status in (ZVN.UNBOUNDED, ZVN.INF_OR_UNBD)


def test_bounds_that_leave_nothing(model):
    x = model.addVar(obj=1)
    model.addConstr(x <= 5)
    x.LB, x.UB = 2, 1
    model.optimize()
    assert model.Status == ZVN.INFEASIBLE
    x.LB, x.UB = -1e20, 1e20
    model.ModelSense = ZVN.MAXIMIZE
    model.optimize()
    assert (model.Status, x.X) == (ZVN.OPTIMAL, 5)


def test_binaries_are_tightened(model):
    x = model.addVar(lb=-3, ub=8, vtype=ZVN.BINARY)
    model.setObjective(x, ZVN.MAXIMIZE)
    model.optimize()
    assert x.X == 1
    model.ModelSense = ZVN.MINIMIZE
    model.optimize()
    assert x.X == 0


def test_two_sided_rows(env_silent):
    m = zelvanpy.Model(env=env_silent)
    m.Params.UpdateMode = 0
    x, y = m.addVar(obj=1), m.addVar(obj=2)
    m.update()
    row = m.addRange(x + y, 2, 5)
    m.optimize()
    assert m.ObjVal == 2 and (row.Pi, row.Slack, row.CBasis) == (1, 3, ZVN.NONBASIC_UPPER)
    m.ModelSense = ZVN.MAXIMIZE
    m.optimize()
    assert m.ObjVal == 10 and (row.Pi, row.Slack, row.CBasis) == (2, 0, ZVN.NONBASIC_LOWER)


@given(
    st.lists(
        st.tuples(st.integers(-6, 6), st.integers(-6, 6), st.sampled_from("SNC"), st.integers(-3, 3)),
        min_size=1,
        max_size=3,
    ),
    st.integers(-8, 8),
)
def test_semi_continuous_columns_against_enumeration(columns, rhs):
    cols = [(float(obj), float(lb), float(lb + 3), vtype) for lb, _, vtype, obj in columns]
    m = build((cols, [([1.0] * len(cols), "<", float(rhs))], 1))
    m.optimize()
    values = [{*range(int(lb), int(ub) + 1)} | ({0} if vtype in "SN" else set()) for _, lb, ub, vtype in cols]
    best = {0: 0.0}  # least objective by sum: optima lie at integers here
    for options, (obj, *_) in zip(values, cols):
        totals = {}
        for total, cost in best.items():
            for value in options:
                totals[total + value] = min(totals.get(total + value, math.inf), cost + obj * value)
        best = totals
    feasible = [cost for total, cost in best.items() if total <= rhs]
    assert m.Status == (ZVN.OPTIMAL if feasible else ZVN.INFEASIBLE)
    if feasible:
        # The row may be off by FeasibilityTol, which costs up to 3 times as much.
        assert m.ObjVal == pytest.approx(min(feasible), abs=4e-6)
        for x, (_, lb, ub, vtype) in zip(m.getVars(), cols):
            assert lb - 1e-6 <= x.X <= ub + 1e-6 or (vtype in "SN" and abs(x.X) <= 1e-6)
    m.dispose()


def test_semi_continuous_without_bound(model):
    x, y = model.addVar(lb=2, vtype=ZVN.SEMICONT, name="x"), model.addVar(ub=4)
    model.setObjective(x - 0.5 * y, ZVN.MAXIMIZE)
    model.optimize()
    assert model.Status == ZVN.UNBOUNDED
    model.addConstr(x + y <= 6)  # implies x <= 6
    model.optimize()
    assert x.X == 6


@pytest.mark.parametrize("tiny", [0.0, 1e-13])  # rows with such an entry are multiplied
def test_changed_model_solves_like_a_new_one_and_faster(env_silent, tiny):
    m = assignment(env_silent)
    x = m.getVars()
    m.addConstr(tiny * x[70] + x[3] + x[4] <= 1)
    m.optimize()
    cold = m.IterCount
    m.getVars()[3].UB = 0
    m.getConstrs()[0].RHS = 2
    m.getConstrs()[79].RHS = 2
    m.optimize()
    warm, value = m.IterCount, m.ObjVal
    m.reset()
    m.optimize()
    assert m.ObjVal == pytest.approx(value) and warm < cold / 4
    m.remove([x[70], m.getConstrs()[40]])
    m.addConstr(tiny * x[60] + x[1] + x[2] + x[50] <= 0.5)  # a new row goes on from the basis too
    y = m.addVar(obj=-3000, ub=2, column=zelvanpy.Column([1.0, 1.0], [m.getConstrs()[0], m.getConstrs()[79]]))
    m.optimize()
    warm, value = m.IterCount, m.ObjVal
    m.reset()
    m.optimize()
    assert m.ObjVal == pytest.approx(value) and warm < m.IterCount / 2 and y.X > 0


def test_basis_of_one_model_starts_another(env_silent):
    first, second = assignment(env_silent), assignment(env_silent)
    first.optimize()
    second.setAttr("VBasis", second.getVars(), first.getAttr("VBasis"))
    second.setAttr("CBasis", second.getConstrs(), first.getAttr("CBasis"))
    second.optimize()
    assert second.IterCount == 0 and second.ObjVal == first.ObjVal


def test_start_gives_the_first_solution(env_silent):
    m = knapsacks(env_silent)
    m.Params.SolutionLimit = 6
    m.optimize()
    found, x = m.ObjVal, [round(value) for value in m.getAttr("X")]
    again = knapsacks(env_silent)
    again.setAttr("Start", again.getVars(), x)
    again.Params.SolutionLimit = 1
    again.optimize()
    assert again.ObjVal >= found - 1e-6


def test_pool_holds_the_solutions_in_order(env_silent):
    m = knapsacks(env_silent, items=16, rows=3)
    m.optimize()
    values = []
    for number in range(m.SolCount):
        m.Params.SolutionNumber = number
        values.append(m.PoolObjVal)
        assert m.PoolObjVal == pytest.approx(sum(v.Obj * v.Xn for v in m.getVars()))
    assert values == sorted(values, reverse=True) and values[0] == m.ObjVal and len(values) > 1
    m.Params.PoolSolutions = 1
    m.reset()
    m.optimize()
    assert m.SolCount == 1


def test_models_solved_at_once(env_silent):
    def solve(m):
        m.optimize()
        return m.Status, m.ObjVal, m.NodeCount, m.IterCount

    def models():
        for seed in range(6):
            m = knapsacks(env_silent, items=15, rows=2, seed=seed)
            m.Params.Threads = 1 + seed % 2
            yield m

    alone = [solve(m) for m in models()]
    together = [None] * 6

    def run(k, m):
        together[k] = solve(m)

    threads = [threading.Thread(target=run, args=pair) for pair in enumerate(models())]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert together == alone


@pytest.mark.skipif(not hasattr(os, "fork"), reason="needs fork")
def test_solve_after_fork(env_silent):
    knapsacks(env_silent, items=15).optimize()
    m = knapsacks(env_silent, items=15, seed=1)
    m.Params.Threads = 2
    child = os.fork()
    if child == 0:
        m.optimize()
        os._exit(0 if m.Status == ZVN.OPTIMAL else 1)
    assert os.waitpid(child, 0)[1] == 0


def test_values_too_large_to_solve_with(model):
    x = model.addVar(name="wide")
    row = model.addConstr(1e16 * x <= 1, name="steep")
    with pytest.raises(ZelvanError, match="'wide' in constraint 'steep' is too large") as caught:
        model.optimize()
    assert caught.value.errno == ZVN.ERROR_NUMERIC and model.Status == ZVN.LOADED
    model.remove(row)
    model.optimize()
    assert model.Status == ZVN.OPTIMAL


def test_linprog_gives_the_same_duals(model):
    x = model.addVars(3, ub=[4, 6, INF], obj=[3, 2, 1])
    rows = [model.addConstr(x[0] + x[1] + x[2] <= 8), model.addConstr(x[0] - x[2] >= -2), model.addConstr(x[1] == 3)]
    model.ModelSense = ZVN.MAXIMIZE
    model.optimize()
    other = linprog(
        [-3, -2, -1],
        A_ub=[[1, 1, 1], [-1, 0, 1]],
        b_ub=[8, 2],
        A_eq=[[0, 1, 0]],
        b_eq=[3],
        bounds=[(0, 4), (0, 6), (0, None)],
    )
    pi = [-other.ineqlin.marginals[0], other.ineqlin.marginals[1], -other.eqlin.marginals[0]]
    assert [row.Pi for row in rows] == pytest.approx(pi)
    assert model.getAttr("RC") == pytest.approx(-(other.lower.marginals + other.upper.marginals))


@pytest.mark.parametrize("vtype", [ZVN.CONTINUOUS, ZVN.INTEGER])
@pytest.mark.parametrize("tiny", [5e-10, 3e-12, 2e-13, 1e-15])
def test_small_coefficients_count(env_silent, vtype, tiny):
    def solved(build):
        m = zelvanpy.Model(env=env_silent)
        m.Params.InfUnbdInfo = 1
        x, y = m.addVar(ub=10 / tiny, vtype=vtype), m.addVar()
        row = build(m, x, y)
        m.optimize()
        return m, x, row

    def at_least_one(m, x, y):
        m.setObjective(x)
        return m.addConstr(tiny * x >= 1)

    def most(m, x, y):
        m.setObjective(x, ZVN.MAXIMIZE)
        return m.addConstr(tiny * x + y <= 1)

    def too_short(m, x, y):
        x.UB = 0.5 / tiny
        return at_least_one(m, x, y)

    for build in (at_least_one, most):
        m, x, row = solved(build)
        assert m.Status == ZVN.OPTIMAL and x.X == pytest.approx(1 / tiny, rel=1e-6) and abs(row.Slack) < 1e-6
        if vtype == ZVN.CONTINUOUS:
            assert row.Pi == pytest.approx(1 / tiny, rel=1e-6)
        row.RHS = 2  # the kept session has the row as it was made
        m.optimize()
        assert x.X == pytest.approx(2 / tiny, rel=1e-6)
    m, x, row = solved(too_short)
    assert m.Status == ZVN.INFEASIBLE
    if vtype == ZVN.CONTINUOUS:
        assert m.FarkasProof > 0 and abs(row.FarkasDual) == pytest.approx(1)


def test_coefficients_that_no_scale_fits_are_refused(env_silent):
    m = zelvanpy.Model(env=env_silent)
    x, y = m.addVar(), m.addVar()
    m.addConstr(1e-14 * x + 1e14 * y >= 1, name="wide")
    with pytest.raises(ZelvanError, match="in constraint 'wide' is too small"):
        m.optimize()


def test_half_a_basis_is_used_or_refused_aloud(env_silent, capfd):
    m = assignment(env_silent, 8)
    m.optimize()
    for attr, objects in (("VBasis", m.getVars()), ("CBasis", m.getConstrs())):
        statuses = m.getAttr(attr)
        m.reset()
        m.setAttr(attr, objects, statuses)
        m.Params.OutputFlag = 1
        m.optimize()
        m.Params.OutputFlag = 0
        assert attr + " alone doesn't make a basis and is not used" in capfd.readouterr().out
    few = zelvanpy.Model(env=env_silent)
    x = few.addVars(3, ub=1, obj=-1)
    few.addConstr(x.sum() <= 5)
    few.update()
    few.setAttr("VBasis", few.getVars(), [ZVN.NONBASIC_UPPER] * 3)  # with a basic row it is the optimal basis
    few.Params.Presolve = 0
    few.Params.OutputFlag = 1
    few.optimize()
    assert few.ObjVal == -3 and few.IterCount == 0 and "not used" not in capfd.readouterr().out


def test_reads_during_solves_show_one_state(env_silent):
    m = zelvanpy.Model(env=env_silent)
    x = m.addVars(3000).values()
    m.optimize()
    seen, done = set(), threading.Event()

    def read():
        while not done.is_set():
            try:
                seen.add(frozenset(m.getAttr("X")))
            except ZelvanError:
                pass  # while it is solved there is no solution

    reader = threading.Thread(target=read)
    reader.start()
    for value in range(1, 300):
        m.setAttr("LB", x, [value] * len(x))
        m.optimize()
    done.set()
    reader.join()
    assert len(seen) > 10 and all(len(values) == 1 for values in seen)
