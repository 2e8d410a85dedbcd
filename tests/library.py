"""The C interface through ctypes: environments and models whose failures are exceptions."""

import ctypes
import importlib.util
import pathlib

import pytest

INF, UNDEFINED = 1e100, 1e101
NULL_ARGUMENT, INVALID, UNKNOWN_ATTR, NOT_AVAILABLE = 10002, 10003, 10004, 10005
BAD_INDEX, UNKNOWN_PARAM, BAD_VALUE, FILE_READ, FILE_WRITE = 10006, 10007, 10008, 10012, 10013
CHAR, INT, DOUBLE, STRING = range(4)
MODEL, VAR, CONSTR, SOS = range(4)
LOG_CALLBACK = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_char_p, ctypes.c_void_p)

PACKAGE = pathlib.Path(importlib.util.find_spec("zelvanpy").submodule_search_locations[0])
lib = ctypes.CDLL(str(PACKAGE / "libzelvan100.so"))
lib.ZVNgeterrormsg.restype = lib.ZVNgetmerrormsg.restype = ctypes.c_char_p
lib.ZVNgetenv.restype = ctypes.c_void_p

C_TYPES = {CHAR: ctypes.c_char, INT: ctypes.c_int, DOUBLE: ctypes.c_double, STRING: ctypes.c_char_p}
C_NAMES = {CHAR: "char", INT: "int", DOUBLE: "dbl", STRING: "str"}


def ints(values):
    return (ctypes.c_int * len(values))(*values)


def doubles(values):
    return (ctypes.c_double * len(values))(*values)


class Refused(Exception):
    def __init__(self, code, text):
        super().__init__(code, text)
        self.code, self.text = code, text


class Env:
    """An environment; ctypes handles with failures as exceptions."""

    def __init__(self, start=True):
        self.handle = ctypes.c_void_p()
        assert not lib.ZVNemptyenvadvinternal(
            ctypes.byref(self.handle), 0, 10, 0, 3, None, None, None, None, 0, 0, None
        )
        self.set("LogToConsole", 0)
        if start:
            self.call("ZVNstartenv")

    def call(self, function, *args):
        code = getattr(lib, function)(self.handle, *args)
        if code:
            raise Refused(code, lib.ZVNgeterrormsg(self.handle).decode())

    def free(self):
        lib.ZVNfreeenv(self.handle)

    def type(self, name):
        return lib.ZVNgetparamtype(self.handle, name.encode())

    def set(self, name, value, kind=None):
        kind = kind or self.type(name)
        if kind == 3:
            self.call("ZVNsetstrparam", name.encode(), value.encode())
        elif kind == 2:
            self.call("ZVNsetdblparam", name.encode(), ctypes.c_double(value))
        else:
            self.call("ZVNsetintparam", name.encode(), value)

    def info(self, name):
        """Value, minimum, maximum, default."""
        c_type, function = {
            1: (ctypes.c_int, "ZVNgetintparaminfo"),
            2: (ctypes.c_double, "ZVNgetdblparaminfo"),
        }[self.type(name)]
        values = [c_type() for _ in range(4)]
        self.call(function, name.encode(), *map(ctypes.byref, values))
        return [v.value for v in values]

    def text(self, name, size=100000):
        buffer, length = ctypes.create_string_buffer(size), ctypes.c_int()
        self.call("ZVNgetlongstrparam", name.encode(), buffer, size, ctypes.byref(length))
        return buffer.value, length.value

    def value(self, name):
        return self.text(name)[0].decode() if self.type(name) == 3 else self.info(name)[0]

    def flags(self, name):
        flags = ctypes.c_uint()
        self.call("ZVNgetparamflags", name.encode(), ctypes.byref(flags))
        return flags.value

    def names(self):
        name = ctypes.c_char_p()
        for i in range(lib.ZVNgetnumparams(self.handle)):
            self.call("ZVNgetparamname", i, ctypes.byref(name))
            yield name.value.decode()

    def values(self):
        return {name: self.value(name) for name in self.names()}


class Model:
    """A model of the given columns; rows are (dict, sense, rhs) tuples."""

    def __init__(self, env, lb=(), ub=(), obj=(), vtype="", rows=()):
        self.handle = ctypes.c_void_p()
        n = len(lb)
        arrays = [doubles(a) for a in (obj or [0] * n, lb, ub)]
        env.call("ZVNnewmodel", ctypes.byref(self.handle), b"test", n, *arrays, vtype.encode() or None, None)
        self.env = Env.__new__(Env)
        self.env.handle = ctypes.c_void_p(lib.ZVNgetenv(self.handle))
        for entries, sense, rhs in rows:
            self.add_row(entries, sense, rhs)
        self.update()

    def call(self, function, *args):
        code = getattr(lib, function)(self.handle, *args)
        if code:
            raise Refused(code, lib.ZVNgetmerrormsg(self.handle).decode())

    def free(self):
        lib.ZVNfreemodel(self.handle)

    def update(self):
        self.call("ZVNupdatemodel")

    def add_row(self, entries, sense, rhs, name=None):
        ind, val = ints(entries.keys()), doubles(entries.values())
        self.call("ZVNaddconstr", len(ind), ind, val, ctypes.c_char(sense.encode()), ctypes.c_double(rhs), name)

    def info(self, name):
        """Type, kind, settable."""
        values = [ctypes.c_int() for _ in range(3)]
        self.call("ZVNgetattrinfo", name.encode(), *map(ctypes.byref, values))
        return tuple(v.value for v in values)

    def names(self):
        name = ctypes.c_char_p()
        for i in range(lib.ZVNgetnumattributes(self.handle)):
            self.call("ZVNgetattrname", i, ctypes.byref(name))
            yield name.value.decode()

    def get(self, name, ind=None):
        kind = self.info(name)[0]
        c_type = C_TYPES[kind]
        if isinstance(ind, (list, range)):
            values = (c_type * len(ind))()
            self.call("ZVNget%sattrlist" % C_NAMES[kind], name.encode(), len(ind), ints(ind), values)
            return [v.decode() if isinstance(v, bytes) else v for v in values]
        value = c_type()
        shape = "attr" if ind is None else "attrelement"
        where = () if ind is None else (ind,)
        self.call("ZVNget%s%s" % (C_NAMES[kind], shape), name.encode(), *where, ctypes.byref(value))
        return value.value.decode() if isinstance(value.value, bytes) else value.value

    def set(self, name, value, ind=None):
        kind = self.info(name)[0]
        c_type = C_TYPES[kind]
        encode = (lambda v: v.encode()) if kind in (CHAR, STRING) else (lambda v: v)
        if isinstance(ind, (list, range)):
            values = (c_type * len(ind))(*map(encode, value))
            return self.call("ZVNset%sattrlist" % C_NAMES[kind], name.encode(), len(ind), ints(ind), values)
        shape = "attr" if ind is None else "attrelement"
        where = () if ind is None else (ind,)
        return self.call("ZVNset%s%s" % (C_NAMES[kind], shape), name.encode(), *where, c_type(encode(value)))

    def refused(self, *args):
        with pytest.raises(Refused) as caught:
            getattr(self, args[0])(*args[1:])
        return caught.value
