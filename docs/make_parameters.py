"""Write parameters.md from the table of the library: `python docs/make_parameters.py` (needs the package installed).

With --check nothing is written; the exit status tells whether the file is current.
"""

import ctypes
import importlib.util
import pathlib
import sys

TARGET = pathlib.Path(__file__).resolve().with_name("parameters.md")
TYPES = {1: "int", 2: "double", 3: "string"}
HEADER = """\
# Parameters

Made by `make_parameters.py` from the library's table; don't edit.

Names are accepted in any letter case. *Effect* tells what a parameter drives; where it says "none", nothing under the
library can honour the parameter: it is accepted, checked against its range, kept and shown.

| parameter | type | range | default | purpose | effect |
|---|---|---|---|---|---|
"""


def library():
    folder = pathlib.Path(importlib.util.find_spec("zelvanpy").submodule_search_locations[0])
    return ctypes.CDLL(str(folder / "libzelvan100.so"))


def number(value):
    return {1e100: "infinity", -1e100: "-infinity"}.get(value, "%.15g" % value)


def row(lib, env, name):
    kind = lib.ZVNgetparamtype(env, name)
    purpose, effect = ctypes.c_char_p(), ctypes.c_char_p()
    lib.ZVNgetparamhelp(env, name, ctypes.byref(purpose), ctypes.byref(effect))
    if kind == 3:
        default = ctypes.create_string_buffer(512)
        lib.ZVNgetstrparaminfo(env, name, None, default)
        span, shown = "", '"%s"' % default.value.decode()
    else:
        values = ((ctypes.c_int if kind == 1 else ctypes.c_double) * 3)()
        read = lib.ZVNgetintparaminfo if kind == 1 else lib.ZVNgetdblparaminfo
        size = ctypes.sizeof(values._type_)
        read(env, name, None, *(ctypes.byref(values, k * size) for k in range(3)))
        span, shown = "[%s, %s]" % (number(values[0]), number(values[1])), number(values[2])
    cells = [name.decode(), TYPES[kind], span, shown, purpose.value.decode(), effect.value.decode() or "none"]
    return "| " + " | ".join(cells) + " |\n"


def text():
    lib = library()
    env = ctypes.c_void_p()
    if lib.ZVNemptyenvadvinternal(ctypes.byref(env), 0, 10, 0, 3, None, None, None, None, 0, 0, None):
        raise SystemExit("no environment could be made")
    names = []
    for i in range(lib.ZVNgetnumparams(env)):
        name = ctypes.c_char_p()
        lib.ZVNgetparamname(env, i, ctypes.byref(name))
        names.append(name.value)
    rows = "".join(row(lib, env, name) for name in names)
    lib.ZVNfreeenv(env)
    return HEADER + rows


if __name__ == "__main__":
    if "--check" not in sys.argv[1:]:
        TARGET.write_text(text())
    elif TARGET.read_text() != text():
        sys.exit("docs/parameters.md is not current: run docs/make_parameters.py")
