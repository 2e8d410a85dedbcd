"""Random edits of a model against a plain-Python record of what its state must be."""

import math

import numpy as np
import pytest
from hypothesis import HealthCheck, settings
from hypothesis import strategies as st
from hypothesis.stateful import RuleBasedStateMachine, initialize, invariant, precondition, rule
from scipy.optimize import Bounds, LinearConstraint, milp

import zelvanpy
from zelvanpy import ZVN

COEFFICIENTS = st.integers(-3, 3).map(float)


class Column:
    def __init__(self, lb, ub, obj, vtype, name):
        self.lb, self.ub, self.obj, self.vtype, self.name = lb, ub, obj, vtype, name

    def bounds(self):
        """As the solver takes them: a binary variable is 0 or 1, whatever was written to its bounds later."""
        return (max(self.lb, 0.0), min(self.ub, 1.0)) if self.vtype == "B" else (self.lb, self.ub)


class Row:
    def __init__(self, terms, sense, rhs, name):
        self.terms, self.sense, self.rhs, self.name = terms, sense, rhs, name


class ModelEdits(RuleBasedStateMachine):
    """`pending` holds closures on the record: they run at the update, as the queued changes do."""

    @initialize(mode=st.sampled_from([0, 1]))
    def start(self, mode):
        self.env = zelvanpy.Env(params={"OutputFlag": 0})
        self.model = zelvanpy.Model(env=self.env)
        self.model.Params.UpdateMode = mode
        self.model.update()
        self.mode = mode
        self.columns, self.rows = [], []  # (record, handle), live
        self.new_columns, self.new_rows = [], []
        self.helpers = []
        self.pending = []
        self.num_names = 0
        self.sense = 1
        self.constant = 0.0

    def teardown(self):
        if hasattr(self, "model"):
            self.model.dispose()
            self.env.dispose()

    def new_name(self, letter):
        self.num_names += 1
        return "%s%d" % (letter, self.num_names + 100)

    def usable(self):
        return self.columns + (self.new_columns if self.mode else [])

    def draw_one(self, data, entries):
        # Positions are drawn, not handles: a handle can't be hashed while it is pending.
        return entries[data.draw(st.integers(0, len(entries) - 1))]

    def draw_terms(self, data):
        entries = self.usable()
        if not entries:
            return []
        drawn = data.draw(st.lists(st.tuples(COEFFICIENTS, st.integers(0, len(entries) - 1)), max_size=5))
        return [(coeff, entries[position]) for coeff, position in drawn]

    @rule(
        lb=st.integers(-3, 1),
        width=st.integers(0, 5),
        obj=COEFFICIENTS,
        vtype=st.sampled_from("CCIB"),
        named=st.booleans(),
    )
    def add_var(self, lb, width, obj, vtype, named):
        name = self.new_name("v") if named else ""
        handle = self.model.addVar(lb=lb, ub=lb + width, obj=obj, vtype=vtype, name=name)
        low, high = float(lb), float(lb + width)
        if vtype == "B":
            low, high = max(low, 0.0), min(high, 1.0)
        self.new_columns.append((Column(low, high, obj, vtype, name), handle))

    @rule(count=st.integers(1, 4), ub=st.integers(0, 4))
    def add_vars(self, count, ub):
        handles = self.model.addVars(count, ub=ub)
        for i in range(count):
            self.new_columns.append((Column(0.0, float(ub), 0.0, "C", ""), handles[i]))

    @precondition(lambda self: self.usable())
    @rule(data=st.data(), sense=st.sampled_from("<>="), rhs=COEFFICIENTS, named=st.booleans())
    def add_constr(self, data, sense, rhs, named):
        terms = self.draw_terms(data)
        name = self.new_name("r") if named else ""
        expr = zelvanpy.LinExpr(1.0)
        for coeff, (_, handle) in terms:
            expr += coeff * handle
        comparison = {"<": expr <= rhs + 1, ">": expr >= rhs + 1, "=": expr == rhs + 1}[sense]
        add = self.model.addConstr if data.draw(st.booleans()) else self.model.addLConstr
        handle = add(comparison, name)
        merged = []
        for coeff, (record, _) in terms:
            merged.append((coeff, record))
        self.new_rows.append((Row(merged, sense, rhs, name), handle))

    @precondition(lambda self: self.usable())
    @rule(data=st.data(), lower=st.integers(-4, 2), width=st.integers(0, 4))
    def add_range(self, data, lower, width):
        record, handle = self.draw_one(data, self.usable())
        row = self.model.addRange(2 * handle + 1, lower + 1, lower + width + 1)
        if self.mode:
            helper = Column(0.0, float(width), 0.0, "C", "")
            self.helpers.append(helper)
            self.new_rows.append((Row([(2.0, record), (1.0, helper)], "=", float(lower + width), ""), row))
        else:
            self.new_rows.append((Row([(2.0, record)], "R", (float(lower), float(lower + width)), ""), row))

    @precondition(lambda self: self.columns)
    @rule(data=st.data(), value=COEFFICIENTS)
    def change_column(self, data, value):
        record, handle = self.draw_one(data, self.columns)
        what = data.draw(st.sampled_from(["lb", "ub", "obj"]))
        setattr(handle, what.upper() if what != "obj" else "Obj", value)
        self.pending.append(lambda: setattr(record, what, value))

    @precondition(lambda self: self.rows)
    @rule(data=st.data(), value=COEFFICIENTS)
    def change_rhs(self, data, value):
        record, handle = self.draw_one(data, self.rows)
        if record.sense != "R":
            handle.RHS = value
            self.pending.append(lambda: setattr(record, "rhs", value))

    @rule(data=st.data(), sense=st.sampled_from([None, 1, -1]), constant=COEFFICIENTS)
    def set_objective(self, data, sense, constant):
        terms = self.draw_terms(data)
        expr = zelvanpy.LinExpr(constant)
        for coeff, (_, handle) in terms:
            expr += coeff * handle
        self.model.setObjective(expr, sense)
        known = [record for record, _ in self.columns + self.new_columns]

        def apply():
            for record in known:
                record.obj = 0.0
            for coeff, (record, _) in terms:
                record.obj += coeff
            self.constant = constant
            self.sense = sense or self.sense

        self.pending.append(apply)

    @precondition(lambda self: self.usable())
    @rule(data=st.data())
    def remove_var(self, data):
        entry = self.draw_one(data, self.usable())
        self.model.remove(entry[1])
        self.model.remove(entry[1])  # a second time does nothing
        entry[0].removed = True

    @precondition(lambda self: self.rows)
    @rule(data=st.data())
    def remove_constr(self, data):
        entry = self.draw_one(data, self.rows)
        self.model.remove([entry[1]])
        entry[0].removed = True

    @rule()
    def update(self):
        self.model.update()
        for change in self.pending:
            change()
        live = self.columns + self.new_columns + [(helper, None) for helper in self.helpers]
        self.columns = [entry for entry in live if not hasattr(entry[0], "removed")]
        self.rows = [entry for entry in self.rows + self.new_rows if not hasattr(entry[0], "removed")]
        handles = self.model.getVars()
        self.columns = [(record, handle or handles[i]) for i, (record, handle) in enumerate(self.columns)]
        self.new_columns, self.new_rows, self.helpers, self.pending = [], [], [], []
        self.compare()

    def compare(self):
        model = self.model
        assert model.NumVars == len(self.columns) and model.NumConstrs == len(self.rows)
        assert [v.index for v in model.getVars()] == list(range(len(self.columns)))
        assert [c.index for c in model.getConstrs()] == list(range(len(self.rows)))
        for record, handle in self.columns:
            state = (handle.LB, handle.UB, handle.Obj, handle.VType)
            assert state == (record.lb, record.ub, record.obj, record.vtype)
            if record.name:
                assert handle.VarName == record.name and model.getVarByName(record.name).sameAs(handle)
        for record, handle in self.rows:
            assert handle.Sense == record.sense
            assert handle.RHS == (record.rhs[1] if record.sense == "R" else record.rhs)
            if record.name:
                assert handle.ConstrName == record.name
        assert model.ModelSense == self.sense and model.ObjCon == self.constant
        nonzeros = sum(len(self.coefficients(record)) for record, _ in self.rows)
        assert model.NumNZs == nonzeros

    def coefficients(self, row):
        position = {id(record): j for j, (record, _) in enumerate(self.columns)}
        total = {}
        for coeff, record in row.terms:
            if id(record) in position:
                j = position[id(record)]
                total[j] = total.get(j, 0.0) + coeff
        return {j: value for j, value in total.items() if value != 0.0}

    @rule()
    def solve(self):
        self.update()
        columns = [record for record, _ in self.columns]
        bounds = [record.bounds() for record in columns]
        if not columns or any(low > high for low, high in bounds):
            return
        constraints = []
        for record, _ in self.rows:
            dense = np.zeros(len(columns))
            for j, value in self.coefficients(record).items():
                dense[j] = value
            low, high = {
                "<": lambda r: (-math.inf, r),
                ">": lambda r: (r, math.inf),
                "=": lambda r: (r, r),
                "R": lambda r: r,
            }[record.sense](record.rhs)
            constraints.append(LinearConstraint(dense[None, :], low, high))
        cost = self.sense * np.array([record.obj for record in columns])
        expected = milp(
            cost,
            constraints=constraints,
            bounds=Bounds(*zip(*bounds)),
            integrality=[int(r.vtype != "C") for r in columns],
        )
        self.model.optimize()
        if expected.status == 0:
            assert self.model.Status == ZVN.OPTIMAL
            assert self.model.ObjVal == pytest.approx(self.sense * expected.fun + self.constant, abs=1e-6)
        else:
            assert self.model.Status in (ZVN.INFEASIBLE, ZVN.INF_OR_UNBD)

    @invariant()
    def pending_changes_do_not_show(self):
        if hasattr(self, "model"):
            assert self.model.NumVars == len(self.columns)
            assert len(self.model.getVars()) == len(self.columns)


ModelEdits.TestCase.settings = settings(
    max_examples=60, stateful_step_count=30, deadline=None, suppress_health_check=list(HealthCheck)
)
TestEdits = ModelEdits.TestCase
