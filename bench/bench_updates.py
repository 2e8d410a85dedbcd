"""Changes that are taken over one at a time, through the C interface: what 2n of them cost over n, and the memory
that replaced texts leave behind."""

import ctypes
import pathlib
import resource
import sys

import timing

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "tests"))

from native import Double, Environment, Int, array, lib

MAX_GROWTH = 2.2
NUM = 500 if timing.SHORT else 20_000
REPLACEMENTS = 2_000 if timing.SHORT else 20_000
TAG_BYTES = 10_000
MAX_MEGABYTES = 5
ZERO, ONE = Double(0.0), Double(1.0)
COLUMN = (0, None, None, ONE, ZERO, ONE, ctypes.c_char(b"C"))
LESS = ctypes.c_char(b"<")
ENTRIES = (3, array(Int, range(3)), array(Double, [1.0, 2.0, 3.0]))


def columns(model, count):
    for _ in range(count):
        lib.ZVNaddvar(model.handle, *COLUMN, None)
        lib.ZVNupdatemodel(model.handle)


def rows(model, count):
    for _ in range(count):
        lib.ZVNaddconstr(model.handle, *ENTRIES, LESS, ONE, None)
        lib.ZVNupdatemodel(model.handle)


def found_columns(model, count):
    index = Int()
    for i in range(count):
        name = b"column%d" % i
        lib.ZVNaddvar(model.handle, *COLUMN, name)
        lib.ZVNupdatemodel(model.handle)
        lib.ZVNgetvarbyname(model.handle, name, ctypes.byref(index))
    assert index.value == 2 + count


def found_rows(model, count):
    index = Int()
    for i in range(count):
        name = b"row%d" % i
        lib.ZVNaddconstr(model.handle, *ENTRIES, LESS, ONE, name)
        lib.ZVNupdatemodel(model.handle)
        lib.ZVNgetconstrbyname(model.handle, name, ctypes.byref(index))
    assert index.value == count - 1


def bounds(model, count):
    for i in range(count):
        lib.ZVNsetdblattrelement(model.handle, b"UB", 1, Double(float(i)))
        lib.ZVNupdatemodel(model.handle)


def on_fresh_model(env, edits, count):
    def run():
        with env.new() as model:
            model.add_columns([("", "C", 0.0, 1.0, 1.0)] * 3)
            model.update()
            edits(model, count)

    return run


def peak_megabytes():
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss / 1024


def replace_texts(env):
    """What the peak of this process grew by while one tag was replaced many times, in MB."""
    with env.new() as model:
        model.add_columns([("", "C", 0.0, 1.0, 1.0)])
        model.update()
        before = peak_megabytes()
        for i in range(REPLACEMENTS):
            lib.ZVNsetstrattrelement(model.handle, b"VTag", 0, (b"%d" % i).ljust(TAG_BYTES, b"x"))
            lib.ZVNupdatemodel(model.handle)
        return peak_megabytes() - before


def main():
    env = Environment(OutputFlag=0)
    table = timing.Table("Single changes, each with its update: %d of them against %d" % (2 * NUM, NUM))
    # First: the peak of the process only ever grows.
    name = "%d tags of %d bytes, one after the other" % (REPLACEMENTS, TAG_BYTES)
    table.note(name, replace_texts(env), MAX_MEGABYTES, "MB")
    for name, edits in (
        ("add a column", columns),
        ("add a row", rows),
        ("add a column, find it by name", found_columns),
        ("add a row, find it by name", found_rows),
        ("set a bound", bounds),
    ):
        runs = [on_fresh_model(env, edits, count) for count in (2 * NUM, NUM)]
        table.row(name, timing.compare(*runs, repeats=5, number=1), bar=MAX_GROWTH)
    env.close()


if __name__ == "__main__":
    main()
