"""Reading and writing model files against HiGHS's own reader and writer, on the same files."""

import ctypes
import pathlib
import random
import sys
import tempfile

import timing

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "tests"))

from conftest import find_shared_data
from native import Environment, highs_library

INSTANCES = ("80bau3b", "25fv47", "sp150x300d")


def write_generated(path, rows, cols, per_column):
    """A random LP of the given size in MPS form, 2392 x 5405 with 31,000 entries being that of greenbea."""
    rng = random.Random(rows)
    with open(path, "w") as out:
        out.write("NAME generated\nROWS\n N COST\n")
        out.writelines(" %s ROW%d\n" % ("LGE"[i % 3], i) for i in range(rows))
        out.write("COLUMNS\n")
        for j in range(cols):
            out.write(" COL%d COST %.2f\n" % (j, rng.uniform(-9, 9)))
            for i in sorted(rng.sample(range(rows), per_column)):
                out.write(" COL%d ROW%d %.*g\n" % (j, i, rng.choice([2, 6, 12]), rng.uniform(-9, 9)))
        out.write("RHS\n")
        out.writelines(" RHS ROW%d %d\n" % (i, rng.randint(1, 999)) for i in range(rows))
        out.write("BOUNDS\n")
        out.writelines(" UP BND COL%d %d\n" % (j, rng.randint(1, 99)) for j in range(0, cols, 2))
        out.write("ENDATA\n")


class Highs:
    def __init__(self):
        self.lib = highs_library()
        self.lib.Highs_create.restype = ctypes.c_void_p
        self.handle = ctypes.c_void_p(self.lib.Highs_create())
        self.lib.Highs_setBoolOptionValue(self.handle, b"output_flag", 0)

    def read(self, path):
        assert self.lib.Highs_readModel(self.handle, str(path).encode()) in (0, 1)

    def write(self, path):
        assert self.lib.Highs_writeModel(self.handle, str(path).encode()) in (0, 1)


def compare(table, env, highs, name, path, folder):
    with env.read(path) as model:
        for ending in (".mps", ".lp"):
            ours, theirs = folder / ("ours" + ending), folder / ("theirs" + ending)
            model.write(ours)
            source = path if ending == ".mps" else ours

            def read(source=source):
                with env.read(source):
                    pass

            table.row(f"read {name}{ending}", timing.compare(read, lambda s=source: highs.read(s)), 0.5)
            highs.read(path)
            ratio = timing.compare(lambda o=ours: model.write(o), lambda t=theirs: highs.write(t))
            table.row(f"write {name}{ending}", ratio, 0.5)


def main():
    data = find_shared_data()
    env, highs = Environment(OutputFlag=0), Highs()
    table = timing.Table("Model files: processor time against HiGHS (at most half is wanted)")
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        sources = [(name, data / (name + ".mps")) for name in INSTANCES] if data else []
        for name, size in (("greenbea size", (2392, 5405, 5)), ("large", (40_000, 100_000, 6))):
            if name == "large" and timing.SHORT:
                continue
            sources.append((name, folder / (name.split()[0] + ".mps")))
            write_generated(sources[-1][1], *size)
        for name, path in sources:
            compare(table, env, highs, name, path, folder)
    env.close()


if __name__ == "__main__":
    main()
