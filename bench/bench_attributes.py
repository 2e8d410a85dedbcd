"""Handles and attributes: one read, many reads and writes, the building of handles, updates after removals."""

import gc
import sys
import tracemalloc

from timing import SHORT, Ratio, Table, compare, seconds

import zelvanpy

NUM = 10_000 if SHORT else 1_000_000


class Yardstick:
    def __init__(self):
        self.__dict__["values"] = {"X": 1.0, "LB": 0.0, "VarName": "v", "NumVars": 3}

    def __getattr__(self, name):
        return self.values[name]


class Plain:
    __slots__ = ("X",)

    def __init__(self):
        self.X = 1.5


def reader(name):
    """A function of 1000 reads of attribute `name`."""
    scope = {}
    body = "; ".join([f"o.{name}"] * 100)
    exec(f"def read(o):\n    for _ in range(10):\n        {body}", scope)
    return scope["read"]


def model_of(num):
    m = zelvanpy.Model(env=env)
    m.addVars(num)
    m.update()
    return m


env = zelvanpy.Env(params={"OutputFlag": 0})
yardstick = Yardstick()

small = zelvanpy.Model(env=env)
variable = small.addVar(ub=1.0)
small.optimize()
table = Table("One value, per read")
for name, subject, bar in (
    ("X", variable, 0.5),
    ("LB", variable, 0.5),
    ("VarName", variable, 1.0),
    ("NumVars", small, 1.0),
):
    read = reader(name)
    ratio = compare(lambda read=read, subject=subject: read(subject), lambda read=read: read(yardstick))
    table.row(f"{type(subject).__name__}.{name} / Python __getattr__", ratio, bar=bar, per=1000)
small.dispose()

table = Table(f"Many values, {NUM} objects, per object")
m = model_of(NUM)
m.setAttr("UB", m.getVars(), 1.5)
m.optimize()
handles = m.getVars()
plain = [Plain() for _ in handles]
values = [float(i) for i in range(NUM)]
by_key = dict(enumerate(handles))
plain_by_key = dict(enumerate(plain))
values_by_key = dict(enumerate(values))


def write_plain(objects, numbers):
    for o, value in zip(objects, numbers):
        o.X = value


def plain_writes():
    write_plain(plain, values)


def plain_writes_by_key():
    write_plain([plain_by_key[k] for k in plain_by_key], [values_by_key[k] for k in plain_by_key])


def compare_pending(subject, baseline):
    """Like compare(), with the update that empties the queue of writes left out of the times."""
    subject_times, baseline_times = [], []
    for _ in range(2 if SHORT else 9):
        subject_times.append(seconds(subject))
        baseline_times.append(seconds(baseline))
        m.update()
    return Ratio(subject_times, baseline_times)


# The bars stand for 40 ns (lists) and 120 ns (dicts) where the plain attribute takes 25 ns and 55 ns.
for name, bar, subject, baseline in (
    ("getAttr, list", 1.6, lambda: m.getAttr("X", handles), lambda: [o.X + 0.5 for o in plain]),
    ("getAttr, dict", 2.2, lambda: m.getAttr("X", by_key), lambda: {k: o.X + 0.5 for k, o in plain_by_key.items()}),
    ("setAttr, list", 2.0, lambda: m.setAttr("UB", handles, values), plain_writes),
    ("setAttr, one value", 2.0, lambda: m.setAttr("UB", handles, 2.0), plain_writes),
    ("setAttr, dict", 2.2, lambda: m.setAttr("UB", by_key, values_by_key), plain_writes_by_key),
):
    table.row(f"{name} / plain attribute", compare_pending(subject, baseline), bar=bar, per=NUM)

m.optimize()
for name, keys in (("int keys", range(NUM)), ("pairs", [divmod(i, 1000) for i in range(NUM)])):
    mapped = zelvanpy.tupledict(zip(keys, handles))
    ratio = compare(
        lambda mapped=mapped: m.getAttr("X", mapped),
        lambda mapped=mapped: dict(zip(mapped, m.getAttr("X", list(mapped.values())))),
        number=1,
    )
    table.row(f"getAttr, tupledict with {name} / dict of the list", ratio, bar=0.8, per=NUM)
    del mapped

table = Table(f"Handles, {NUM} columns")


class Pair:
    __slots__ = ("_cmodel", "_colno")

    def __init__(self, cmodel, colno):
        self._cmodel = cmodel
        self._colno = colno


source = m
gc.collect()
copies = [source.copy() for _ in range(3)]
taken = min(seconds(c.getVars, number=1) for c in copies)
baseline = min(seconds(lambda: [Pair(None, j) for j in range(NUM)], number=1) for _ in range(3))
table.note("building them, ns each", taken / NUM * 1e9, bar=100, unit="ns")
table.note("building them / objects of a slotted Python class", taken / baseline)
for c in copies:
    c.dispose()
tracemalloc.start()
c = source.copy()
before = tracemalloc.get_traced_memory()[0]
c.getVars()
table.note(
    "memory of a handle with its place in the list", (tracemalloc.get_traced_memory()[0] - before) / NUM, 80, "bytes"
)
tracemalloc.stop()
table.note("size of a handle", sys.getsizeof(handles[0]), 64, "bytes")
table.row("getVars() / slice of a list", compare(c.getVars, lambda: handles[:]), per=NUM)
c.dispose()

removals = NUM // 10
doomed = [source.copy() for _ in range(3)]
for c in doomed:
    c.remove(c.getVars()[:: NUM // removals])
after_removal = min(seconds(c.update, number=1) for c in doomed)
anew = min(seconds(lambda: model_of(NUM - removals), number=1) for _ in range(3))
table.note(f"update after {removals} removals / building the rest anew", after_removal / anew, bar=3)
