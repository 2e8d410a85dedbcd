"""Building models: single and bulk calls against plain Python doing the like, growth, and memory."""

import ctypes
import os
import random
import subprocess
import sys

import timing

import zelvanpy

N = 20_000 if timing.SHORT else 1_000_000
SIDE = 100 if timing.SHORT else 1000


def silent_env():
    return zelvanpy.Env(params={"OutputFlag": 0})


ENV = silent_env()


def add_var_loop(count):
    def run():
        m = zelvanpy.Model(env=ENV)
        add = m.addVar
        for _ in range(count):
            add(lb=0.0, ub=1.0, obj=2.0, vtype="C")
        m.dispose()

    return run


def append_dict_loop(count):
    def run():
        records = []
        append = records.append
        for _ in range(count):
            append(dict(lb=0.0, ub=1.0, obj=2.0, vtype="C"))

    return run


def add_vars(side, **names):
    def run():
        m = zelvanpy.Model(env=ENV)
        m.addVars(side, side, **names)
        m.dispose()

    return run


def dict_comprehension(side):
    return lambda: {(i, j): 0.0 for i in range(side) for j in range(side)}


class Rows:
    """A model with columns, to which rows of three terms are added; the rows are dropped between the repeats."""

    def __init__(self, count):
        self.count = count
        self.floats = [random.random() for _ in range(count + 2)]

    def add(self):
        m = zelvanpy.Model(env=ENV)
        x = m.addVars(self.count + 2).values()
        x = list(x)
        m.update()
        return m, x

    def subject(self):
        m, x = self.model
        add = m.addConstr
        for i in range(self.count):
            add(x[i] + 2 * x[i + 1] - x[i + 2] <= 1)
        m.dispose()
        self.model = None

    def baseline(self):
        f = self.floats
        for i in range(self.count):
            f[i] + 2 * f[i + 1] - f[i + 2] <= 1


def measure_rows(count, repeats):
    """add_constr needs a fresh model in each repeat, made outside the time."""
    rows = Rows(count)
    subject, baseline = [], []
    for _ in range(2 if timing.SHORT else repeats):
        rows.model = rows.add()
        subject.append(timing.seconds(rows.subject))
        baseline.append(timing.seconds(rows.baseline))
    return timing.Ratio(subject, baseline)


def measure_add_constrs(side, repeats):
    subject, baseline = [], []
    for _ in range(2 if timing.SHORT else repeats):
        m = zelvanpy.Model(env=ENV)
        x = m.addVars(side, side)
        m.update()
        x.sum(0, "*")  # the index is built on the first selection
        rows = [[x[i, j] for j in range(side)] for i in range(side)]
        subject.append(timing.seconds(lambda: m.addConstrs(x.sum(i, "*") == 1 for i in range(side))))
        baseline.append(timing.seconds(lambda: [zelvanpy.quicksum(row) for row in rows]))
        m.dispose()
    return timing.Ratio(subject, baseline)


class NeighbourRows:
    """Rows of two terms over a chain of variables, by addConstrs and by a loop of addConstr into a dict."""

    def __init__(self, count):
        self.count = count

    def measure(self, build):
        m = zelvanpy.Model(env=ENV)
        x = list(m.addVars(self.count + 1).values())
        m.update()
        taken = timing.seconds(lambda: build(m, x))
        m.dispose()
        return taken

    def bulk(self, m, x):
        m.addConstrs(x[i] + x[i + 1] <= 1 for i in range(self.count))

    def named(self, m, x):
        m.addConstrs((x[i] + x[i + 1] <= 1 for i in range(self.count)), name="c")

    def loop(self, m, x):
        rows, add = {}, m.addConstr
        for i in range(self.count):
            rows[i] = add(x[i] + x[i + 1] <= 1)

    def compare(self, subject, repeats=7):
        times = [(self.measure(subject), self.measure(self.loop)) for _ in range(2 if timing.SHORT else repeats)]
        return timing.Ratio(*zip(*times))


def measure_single_row():
    m = zelvanpy.Model(env=ENV)
    x = m.addVar()
    m.update()
    return timing.compare(lambda: m.addConstrs(x <= 1 for i in (0,)), lambda: m.addConstr(x <= 1))


def small_models(count, bulk):
    """`count` assignment models of ten by ten, by addVars and addConstrs or by single calls."""

    def build(m):
        if bulk:
            x = m.addVars(10, 10, obj=1.0)
            m.update()
            m.addConstrs(x[i, j] + x[j, i] <= 1 for i in range(10) for j in range(10))
            return
        x = {(i, j): m.addVar(obj=1.0) for i in range(10) for j in range(10)}
        m.update()
        for i in range(10):
            for j in range(10):
                m.addConstr(x[i, j] + x[j, i] <= 1)

    def run():
        for _ in range(count):
            m = zelvanpy.Model(env=ENV)
            build(m)
            m.dispose()

    return run


def add_vars_with_costs(count, costs):
    def run():
        m = zelvanpy.Model(env=ENV)
        m.addVars(count, **costs)
        m.dispose()

    return run


def measure_set_objective(count, repeats):
    library = ctypes.CDLL(os.path.join(os.path.dirname(zelvanpy.__file__), "libzelvan100.so"))
    m = zelvanpy.Model(env=ENV)
    x = m.addVars(count)
    m.update()
    coefficients = {i: float(i + 1) for i in range(count)}
    indices = (ctypes.c_int * count)(*range(count))
    values = (ctypes.c_double * count)(*coefficients.values())
    get_pointer = ctypes.pythonapi.PyCapsule_GetPointer
    get_pointer.restype, get_pointer.argtypes = ctypes.c_void_p, [ctypes.py_object, ctypes.c_char_p]
    model = ctypes.c_void_p(get_pointer(m._cmodel, None))

    def direct():
        library.ZVNsetobjective(model, 0, ctypes.c_double(0.0), count, indices, values, 0, None, None, None)

    subject, baseline = [], []
    for _ in range(2 if timing.SHORT else repeats):
        subject.append(timing.seconds(lambda: m.setObjective(x.prod(coefficients))))
        m.update()
        baseline.append(timing.seconds(direct))
        m.update()
    m.dispose()
    return timing.Ratio(subject, baseline)


MEMORY_PROGRAM = """
import zelvanpy
def resident():
    with open("/proc/self/statm") as stream:
        return int(stream.read().split()[1]) * 4096
before = resident()
n = %d
m = zelvanpy.Model(env=zelvanpy.Env(params={"OutputFlag": 0}))
m.addVars(n)
m.update()
x = m.getVars()
add = m.addConstr
for i in range(n):
    add(x[i] + 2 * x[i - 1] - x[i - 2] <= 1)
del x
m.update()
print((resident() - before) / 1e6)
"""


def memory_of_model(count):
    out = subprocess.run([sys.executable, "-c", MEMORY_PROGRAM % count], check=True, stdout=subprocess.PIPE, text=True)
    return float(out.stdout)


def growth(table, name, make, count, bar=2.2):
    ratio = timing.compare(make(2 * count), make(count), repeats=5, number=1)
    table.row(name + ": 2n over n", ratio, bar=bar)


def main():
    random.seed(1)
    table = timing.Table("Building a model, n = %d" % N)
    calls = N // 5
    ratio = timing.compare(add_var_loop(calls), append_dict_loop(calls), repeats=7, number=1)
    table.row("addVar with four keywords / list of dicts", ratio, bar=0.8, per=calls)
    ratio = timing.compare(add_vars(SIDE), dict_comprehension(SIDE), repeats=7, number=1)
    table.row("addVars(%d, %d) / dict comprehension" % (SIDE, SIDE), ratio, bar=2.0, per=SIDE * SIDE)
    ratio = timing.compare(add_vars(SIDE, name="x"), dict_comprehension(SIDE), repeats=7, number=1)
    table.row("addVars(%d, %d, name='x') / dict comprehension" % (SIDE, SIDE), ratio, bar=4.0, per=SIDE * SIDE)
    table.row("addConstr of three terms / floats", measure_rows(calls, 7), bar=10, per=calls)
    table.row("addConstrs of %d sums / the sums" % SIDE, measure_add_constrs(SIDE, 5), bar=2.0, per=SIDE)
    rows = NeighbourRows(calls)
    table.row("addConstrs, a row / addConstr into a dict", rows.compare(rows.bulk), bar=1.4, per=calls)
    table.row("addConstrs with names / addConstr into a dict", rows.compare(rows.named), bar=1.75, per=calls)
    table.row("addConstrs of one row / addConstr", measure_single_row(), bar=5)
    models = 20 if timing.SHORT else 200
    ratio = timing.compare(small_models(models, True), small_models(models, False), repeats=7, number=1)
    table.row("%d models of 10 x 10 in bulk / by single calls" % models, ratio, bar=1.2, per=models)
    costs = {i: float(i) for i in range(N // 2)}
    subject, baseline = add_vars_with_costs(N // 2, {"obj": costs}), add_vars_with_costs(N // 2, {})
    ratio = timing.compare(subject, baseline, repeats=7, number=1)
    table.row("addVars(obj=dict) / addVars", ratio, bar=1.3, per=N // 2)
    table.row("setObjective(x.prod(c)) / ZVNsetobjective", measure_set_objective(N, 7), bar=4.0, per=N)

    growth(table, "addVar", add_var_loop, calls // 2)
    growth(table, "addVars", lambda n: lambda: add_vars_flat(n), N // 2)
    growth(table, "a plain dict of as many keys", lambda n: lambda: dict.fromkeys(range(n)), N // 2, bar=None)
    subject, baseline = measure_rows(calls, 5), measure_rows(calls // 2, 5)
    table.note("addConstr: 2n over n", subject.subject / baseline.subject, bar=2.2)
    subject, baseline = measure_add_constrs(SIDE, 3), measure_add_constrs(int(SIDE / 2**0.5), 3)
    table.note("addConstrs: 2n over n", subject.subject / baseline.subject, bar=2.2)
    subject, baseline = measure_set_objective(N, 5), measure_set_objective(N // 2, 5)
    table.note("setObjective: 2n over n", subject.subject / baseline.subject, bar=2.2)
    if not timing.SHORT:
        table.note("memory, 1e6 columns and rows, 3e6 entries, handles", memory_of_model(N), bar=320, unit="MB")


def add_vars_flat(count):
    m = zelvanpy.Model(env=ENV)
    m.addVars(count)
    m.dispose()


if __name__ == "__main__":
    main()
