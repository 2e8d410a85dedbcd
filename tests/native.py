"""The C interface through ctypes, for tests of what the module doesn't show."""

import ctypes
import dataclasses
import pathlib
import sysconfig

import zelvanpy

PACKAGE = pathlib.Path(zelvanpy._zelvanpy.__file__).resolve().parent
INFINITY = 1e100

lib = ctypes.CDLL(str(PACKAGE / "libzelvan100.so"))
Handle = ctypes.c_void_p
Text = ctypes.c_char_p
Double = ctypes.c_double
Int = ctypes.c_int
LOG_CALLBACK = ctypes.CFUNCTYPE(Int, Text, Handle)

for name in ("ZVNgeterrormsg", "ZVNgetmerrormsg"):
    getattr(lib, name).restype = Text
lib.ZVNgetenv.restype = Handle


def array(kind, values):
    return (kind * max(1, len(values)))(*values)


def texts(values):
    return array(Text, [value.encode() for value in values])


class LibraryError(Exception):
    """A code other than 0, with the library's text."""

    def __init__(self, code, text):
        super().__init__("%d: %s" % (code, text))
        self.code = code
        self.text = text


@dataclasses.dataclass
class Content:
    """What a model says, for comparison: columns as (name, type, lb, ub, obj), rows as (name, sense, rhs, entries),
    special ordered sets as (type, members)."""

    name: str
    sense: int
    constant: float
    columns: list
    rows: list
    sets: list = dataclasses.field(default_factory=list)


class Environment:
    """A started environment whose log is the list `log`."""

    def __init__(self, **params):
        self.handle = Handle()
        self.log = []
        self._callback = LOG_CALLBACK(self._receive)
        self.check(
            lib.ZVNemptyenvadvinternal(ctypes.byref(self.handle), 0, 10, 0, 3, None, None, None, None, 0, 0, None)
        )
        self.check(lib.ZVNsetlogcallbackfuncenv(self.handle, self._callback, None))
        for param, value in params.items():
            self.check(lib.ZVNsetintparam(self.handle, param.encode(), value))
        self.check(lib.ZVNstartenv(self.handle))

    def _receive(self, message, _):
        self.log += [line for line in message.decode().split("\n") if line]
        return 0

    def check(self, code):
        if code:
            raise LibraryError(code, lib.ZVNgeterrormsg(self.handle).decode())

    def warnings(self):
        """The warnings since the last call."""
        found = [line for line in self.log if line.startswith("Warning")]
        self.log.clear()
        return found

    def read(self, path):
        handle = Handle()
        self.check(lib.ZVNreadmodel(self.handle, str(path).encode(), ctypes.byref(handle)))
        return Model(self, handle)

    def new(self, name=""):
        handle = Handle()
        self.check(lib.ZVNnewmodel(self.handle, ctypes.byref(handle), name.encode(), 0, *[None] * 5))
        return Model(self, handle)

    def close(self):
        lib.ZVNfreeenv(self.handle)


class Model:
    def __init__(self, env, handle):
        self.env = env
        self.handle = handle

    def __enter__(self):
        return self

    def __exit__(self, *_):
        lib.ZVNfreemodel(self.handle)

    def check(self, code):
        if code:
            raise LibraryError(code, lib.ZVNgetmerrormsg(self.handle).decode())

    def call(self, function, *arguments):
        self.check(getattr(lib, function)(self.handle, *arguments))

    def write(self, path):
        self.call("ZVNwrite", str(path).encode())

    def number(self, attr, kind=Int):
        value = kind()
        self.call("ZVNgetintattr" if kind is Int else "ZVNgetdblattr", attr.encode(), ctypes.byref(value))
        return value.value

    def values(self, attr, count, kind):
        letter = {Double: "dbl", Int: "int", ctypes.c_char: "char", Text: "str"}[kind]
        out = (kind * max(1, count))()
        self.call("ZVNget%sattrlist" % letter, attr.encode(), count, array(Int, range(count)), out)
        if kind is ctypes.c_char:
            return list(out[:count].decode())
        return [value.decode() if kind is Text else value for value in out[:count]]

    def add_columns(self, columns):
        name, kind, lb, ub, obj = zip(*columns) if columns else [()] * 5
        numbers = [array(Double, values) for values in (obj, lb, ub)]
        self.call("ZVNaddvars", len(columns), 0, None, None, None, *numbers, "".join(kind).encode(), texts(name))

    def add_row(self, name, sense, rhs, entries, lower=None):
        """`rhs` of a two-sided row is its upper side."""
        cols, values = zip(*entries) if entries else ((), ())
        head = (len(cols), array(Int, cols), array(Double, values))
        if sense == "R":
            self.call("ZVNaddrangeconstr", *head, Double(lower), Double(rhs), name.encode())
        else:
            self.call("ZVNaddconstr", *head, ctypes.c_char(sense.encode()), Double(rhs), name.encode())

    def add_set(self, kind, members):
        cols, weights = zip(*members) if members else ((), ())
        begin = (array(Int, [kind]), array(Int, [0]))
        self.call("ZVNaddsos", 1, len(cols), *begin, array(Int, cols), array(Double, weights))

    def set_objective_n(self, index, priority, weight, abstol, reltol, name, constant, entries):
        cols, values = zip(*entries) if entries else ((), ())
        fields = [Double(value) for value in (weight, abstol, reltol)]
        terms = (Double(constant), len(cols), array(Int, cols), array(Double, values))
        self.call("ZVNsetobjectiven", index, priority, *fields, name.encode(), *terms)

    def set_pwl(self, col, points):
        x, y = zip(*points)
        self.call("ZVNsetpwlobj", col, len(points), array(Double, x), array(Double, y))

    def set_text(self, attr, value):
        self.call("ZVNsetstrattr", attr.encode(), value.encode())

    def update(self):
        self.call("ZVNupdatemodel")

    def entries(self, num, function="ZVNgetconstrs", *types):
        """The entries of the first rows or, with `ZVNgetsos` and an array for their types, sets."""
        count = Int()
        beg = (Int * (num + 1))()
        self.call(function, ctypes.byref(count), *types, None, None, None, 0, num)
        ind, val = (Int * max(1, count.value))(), (Double * max(1, count.value))()
        self.call(function, ctypes.byref(count), *types, beg, ind, val, 0, num)
        ends = list(beg[1:num]) + [count.value]
        return [list(zip(ind[s:e], val[s:e])) for s, e in zip(beg[:num], ends)]

    def sets(self):
        types = (Int * self.number("NumSOS"))()
        return list(zip(types, self.entries(len(types), "ZVNgetsos", types))) if types else []

    def content(self):
        cols, rows = self.number("NumVars"), self.number("NumConstrs")
        name = Text()
        self.call("ZVNgetstrattr", b"ModelName", ctypes.byref(name))
        columns = [self.values("VarName", cols, Text), self.values("VType", cols, ctypes.c_char)]
        columns += [self.values(attr, cols, Double) for attr in ("LB", "UB", "Obj")]
        sides = [self.values("ConstrName", rows, Text), self.values("Sense", rows, ctypes.c_char)]
        sides += [self.values("RHS", rows, Double), [sorted(e) for e in self.entries(rows)] if rows else []]
        return Content(
            name.value.decode(),
            self.number("ModelSense"),
            self.number("ObjCon", Double),
            list(zip(*columns)),
            list(zip(*sides)),
            self.sets(),
        )


def highs_library():
    """HiGHS itself, for a second opinion: beside the library, or in the build's own environment."""
    beside = PACKAGE / "libhighs.so"
    box = pathlib.Path(sysconfig.get_path("platlib"), "highsbox", "highs_dist", "lib", "libhighs.so")
    return ctypes.CDLL(str(beside if beside.exists() else box))
