"""The C interface through ctypes: environments and models whose failures are exceptions."""

import ctypes
import dataclasses
import pathlib

import pytest

import zelvanpy

PACKAGE = pathlib.Path(zelvanpy._zelvanpy.__file__).resolve().parent
INFINITY, UNDEFINED = 1e100, 1e101
NULL_ARGUMENT, INVALID, UNKNOWN_ATTR, NOT_AVAILABLE = 10002, 10003, 10004, 10005
BAD_INDEX, UNKNOWN_PARAM, BAD_VALUE, FILE_READ, FILE_WRITE = 10006, 10007, 10008, 10012, 10013
MODEL, VAR, CONSTR, SOS, QCONSTR = range(5)

lib = ctypes.CDLL(str(PACKAGE / "libzelvan100.so"))
Handle = ctypes.c_void_p
Text = ctypes.c_char_p
Double = ctypes.c_double
Int = ctypes.c_int
LOG_CALLBACK = ctypes.CFUNCTYPE(Int, Text, Handle)

for name in ("ZVNgeterrormsg", "ZVNgetmerrormsg"):
    getattr(lib, name).restype = Text
lib.ZVNgetenv.restype = Handle

# By the number of the type of an attribute: the type of its values, and how functions are named for it.
CHAR, INT, DOUBLE, STRING = range(4)
VALUE_TYPES = [(ctypes.c_char, "char"), (Int, "int"), (Double, "dbl"), (Text, "str")]


def array(kind, values):
    return (kind * max(1, len(values)))(*values)


def texts(values):
    return array(Text, [value.encode() for value in values])


def linear(entries):
    cols, values = zip(*entries) if entries else ((), ())
    return len(cols), array(Int, cols), array(Double, values)


def quadratic(terms):
    rows, cols, values = zip(*terms) if terms else ((), (), ())
    return len(rows), array(Int, rows), array(Int, cols), array(Double, values)


def decoded(value):
    return value.decode() if isinstance(value, bytes) else value


def encoded(value):
    return value.encode() if isinstance(value, str) else value


class LibraryError(Exception):
    """A code other than 0, with the library's text."""

    def __init__(self, code, text):
        super().__init__("%d: %s" % (code, text))
        self.code = code
        self.text = text


@dataclasses.dataclass
class Content:
    """What a model says, for comparison: columns as (name, type, lb, ub, obj), rows as (name, sense, rhs, entries),
    special ordered sets as (type, members), quadratic terms as (row, col, value), quadratic rows as (name, sense, rhs,
    entries, terms)."""

    name: str
    sense: int
    constant: float
    columns: list
    rows: list
    sets: list = dataclasses.field(default_factory=list)
    quadratic: list = dataclasses.field(default_factory=list)
    quadratic_rows: list = dataclasses.field(default_factory=list)


class Caller:
    """Calls with a handle of the library, whose failures tell their text by the function `message`."""

    def check(self, code):
        if code:
            raise LibraryError(code, self.message(self.handle).decode())

    def call(self, function, *arguments):
        self.check(getattr(lib, function)(self.handle, *arguments))

    def refused(self, method, *arguments, **keywords):
        """The failure of a method."""
        with pytest.raises(LibraryError) as caught:
            getattr(self, method)(*arguments, **keywords)
        return caught.value


class Parameters(Caller):
    """The parameters of the environment with the given handle."""

    message = lib.ZVNgeterrormsg

    def __init__(self, handle):
        self.handle = handle

    def type(self, name):
        return lib.ZVNgetparamtype(self.handle, name.encode())

    def set(self, name, value, kind=None):
        kind = kind or self.type(name)
        c_type, letters = VALUE_TYPES[kind]
        self.call("ZVNset%sparam" % letters, name.encode(), c_type(encoded(value)))

    def info(self, name):
        """Value, minimum, maximum, default of a number."""
        c_type, letters = VALUE_TYPES[self.type(name)]
        values = [c_type() for _ in range(4)]
        self.call("ZVNget%sparaminfo" % letters, name.encode(), *map(ctypes.byref, values))
        return [v.value for v in values]

    def text(self, name, size=100000):
        buffer, length = ctypes.create_string_buffer(size), Int()
        self.call("ZVNgetlongstrparam", name.encode(), buffer, size, ctypes.byref(length))
        return buffer.value, length.value

    def value(self, name):
        return self.text(name)[0].decode() if self.type(name) == STRING else self.info(name)[0]

    def flags(self, name):
        flags = ctypes.c_uint()
        self.call("ZVNgetparamflags", name.encode(), ctypes.byref(flags))
        return flags.value

    def names(self):
        name = Text()
        for i in range(lib.ZVNgetnumparams(self.handle)):
            self.call("ZVNgetparamname", i, ctypes.byref(name))
            yield name.value.decode()

    def values(self):
        return {name: self.value(name) for name in self.names()}


class Environment(Parameters):
    """A started environment whose log is the list `log`."""

    def __init__(self, start=True, **params):
        super().__init__(Handle())
        self.log = []
        self._callback = LOG_CALLBACK(self._receive)
        self.check(
            lib.ZVNemptyenvadvinternal(ctypes.byref(self.handle), 0, 10, 0, 3, None, None, None, None, 0, 0, None)
        )
        self.call("ZVNsetlogcallbackfuncenv", self._callback, None)
        for name, value in params.items():
            self.set(name, value)
        if start:
            self.call("ZVNstartenv")

    def _receive(self, message, _):
        self.log += [line for line in message.decode().split("\n") if line]
        return 0

    def warnings(self):
        """The warnings since the last call."""
        found = [line for line in self.log if line.startswith("Warning")]
        self.log.clear()
        return found

    def read(self, path):
        handle = Handle()
        self.call("ZVNreadmodel", str(path).encode(), ctypes.byref(handle))
        return Model(handle)

    def new(self, name="", lb=(), ub=(), obj=(), vtype="", rows=()):
        """A model of the given columns; rows are (dict, sense, rhs) tuples."""
        handle, num = Handle(), len(lb)
        numbers = [array(Double, values) for values in (obj or [0] * num, lb, ub)]
        self.call("ZVNnewmodel", ctypes.byref(handle), name.encode(), num, *numbers, vtype.encode() or None, None)
        model = Model(handle)
        for entries, sense, rhs in rows:
            model.add_row("", sense, rhs, entries.items())
        if rows:
            model.update()
        return model

    def close(self):
        lib.ZVNfreeenv(self.handle)


class Model(Caller):
    message = lib.ZVNgetmerrormsg

    def __init__(self, handle):
        self.handle = handle
        self.env = Parameters(Handle(lib.ZVNgetenv(handle)))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        lib.ZVNfreemodel(self.handle)

    def write(self, path):
        self.call("ZVNwrite", str(path).encode())

    def read(self, path):
        self.call("ZVNread", str(path).encode())

    def update(self):
        self.call("ZVNupdatemodel")

    def optimize(self):
        self.call("ZVNoptimize")

    def info(self, name):
        """Type, kind, settable of an attribute."""
        values = [Int() for _ in range(3)]
        self.call("ZVNgetattrinfo", name.encode(), *map(ctypes.byref, values))
        return tuple(v.value for v in values)

    def names(self):
        name = Text()
        for i in range(lib.ZVNgetnumattributes(self.handle)):
            self.call("ZVNgetattrname", i, ctypes.byref(name))
            yield name.value.decode()

    def get(self, name, ind=None):
        """The value of an attribute of the model, of the object with the index, or of those with the indices."""
        c_type, letters = VALUE_TYPES[self.info(name)[0]]
        if isinstance(ind, (list, range)):
            out = (c_type * len(ind))()
            self.call("ZVNget%sattrlist" % letters, name.encode(), len(ind), array(Int, ind), out)
            return [decoded(value) for value in out]
        value = c_type()
        shape, where = ("attr", ()) if ind is None else ("attrelement", (ind,))
        self.call("ZVNget%s%s" % (letters, shape), name.encode(), *where, ctypes.byref(value))
        return decoded(value.value)

    def set(self, name, value, ind=None):
        c_type, letters = VALUE_TYPES[self.info(name)[0]]
        if isinstance(ind, (list, range)):
            values = (c_type * len(ind))(*map(encoded, value))
            return self.call("ZVNset%sattrlist" % letters, name.encode(), len(ind), array(Int, ind), values)
        shape, where = ("attr", ()) if ind is None else ("attrelement", (ind,))
        return self.call("ZVNset%s%s" % (letters, shape), name.encode(), *where, c_type(encoded(value)))

    def add_columns(self, columns):
        name, kind, lb, ub, obj = zip(*columns) if columns else [()] * 5
        numbers = [array(Double, values) for values in (obj, lb, ub)]
        self.call("ZVNaddvars", len(columns), 0, None, None, None, *numbers, "".join(kind).encode(), texts(name))

    def add_row(self, name, sense, rhs, entries, lower=None):
        """`rhs` of a two-sided row is its upper side."""
        head = linear(entries)
        if sense == "R":
            self.call("ZVNaddrangeconstr", *head, Double(lower), Double(rhs), name.encode())
        else:
            self.call("ZVNaddconstr", *head, ctypes.c_char(sense.encode()), Double(rhs), name.encode())

    def add_set(self, kind, members):
        cols, weights = zip(*members) if members else ((), ())
        begin = (array(Int, [kind]), array(Int, [0]))
        self.call("ZVNaddsos", 1, len(cols), *begin, array(Int, cols), array(Double, weights))

    def add_quadratic_row(self, name, sense, rhs, entries, terms):
        sides = (ctypes.c_char(sense.encode()), Double(rhs), name.encode())
        self.call("ZVNaddqconstr", *linear(entries), *quadratic(terms), *sides)

    def set_objective(self, entries=(), terms=(), sense=0, constant=0.0):
        self.call("ZVNsetobjective", sense, Double(constant), *linear(entries), *quadratic(terms))

    def set_objective_n(self, index, priority, weight, abstol, reltol, name, constant, entries):
        fields = [Double(value) for value in (weight, abstol, reltol)]
        self.call("ZVNsetobjectiven", index, priority, *fields, name.encode(), Double(constant), *linear(entries))

    def set_pwl(self, col, points):
        x, y = zip(*points)
        self.call("ZVNsetpwlobj", col, len(points), array(Double, x), array(Double, y))

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
        types = (Int * self.get("NumSOS"))()
        return list(zip(types, self.entries(len(types), "ZVNgetsos", types))) if types else []

    def quadratic_terms(self):
        """Those of the objective, as (row, col, value)."""
        count = Int()
        self.call("ZVNgetq", ctypes.byref(count), None, None, None)
        arrays = [(kind * max(1, count.value))() for kind in (Int, Int, Double)]
        self.call("ZVNgetq", ctypes.byref(count), *arrays)
        return list(zip(*arrays))[: count.value]

    def quadratic_row(self, i):
        """Entries and terms of a quadratic constraint."""
        counts = Int(), Int()
        self.call("ZVNgetqconstr", i, ctypes.byref(counts[0]), None, None, ctypes.byref(counts[1]), None, None, None)
        linear, terms = (
            [(kind * max(1, count.value))() for kind in kinds]
            for count, kinds in zip(counts, [(Int, Double), (Int, Int, Double)])
        )
        self.call("ZVNgetqconstr", i, ctypes.byref(counts[0]), *linear, ctypes.byref(counts[1]), *terms)
        return tuple(list(zip(*arrays))[: count.value] for count, arrays in zip(counts, (linear, terms)))

    def quadratic_rows(self):
        every = range(self.get("NumQConstrs"))
        sides = [self.get(attr, every) for attr in ("QCName", "QCSense", "QCRHS")]
        return [(*side, *self.quadratic_row(i)) for i, side in enumerate(zip(*sides))]

    def content(self):
        cols, rows = self.get("NumVars"), self.get("NumConstrs")
        columns = [self.get(attr, range(cols)) for attr in ("VarName", "VType", "LB", "UB", "Obj")]
        sides = [self.get(attr, range(rows)) for attr in ("ConstrName", "Sense", "RHS")]
        sides += [[sorted(e) for e in self.entries(rows)] if rows else []]
        head = [self.get(attr) for attr in ("ModelName", "ModelSense", "ObjCon")]
        parts = [list(zip(*columns)), list(zip(*sides)), self.sets(), self.quadratic_terms(), self.quadratic_rows()]
        return Content(*head, *parts)


def highs_library():
    """HiGHS itself, for a second opinion."""
    return ctypes.CDLL(str(PACKAGE / "libhighs.so"))
