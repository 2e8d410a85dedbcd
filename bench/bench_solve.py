"""Solving through the library against a call of HiGHS on the same data, with the same options.

Both hand the model over, solve it and fetch the solution, without log. The baseline is the C interface of HiGHS
through ctypes. At most 3 % and 2 ms more are allowed. Optional arguments: names of instances.
"""

import ctypes
import pathlib
import sys
import time

import highsbox
import timing

import zelvanpy

Int, Double, Handle, Text = ctypes.c_int, ctypes.c_double, ctypes.c_void_p, ctypes.c_char_p
COLWISE, TRIANGULAR = 1, 1
MAX_RATIO, MAX_SECONDS_MORE = 1.03, 0.002

highs = ctypes.CDLL(str(pathlib.Path(highsbox.highs_dist_dir()) / "lib" / "libhighs.so"))
highs.Highs_create.restype = Handle
for name, kinds in {
    "Highs_destroy": (Handle,),
    "Highs_readModel": (Handle, Text),
    "Highs_run": (Handle,),
    "Highs_setBoolOptionValue": (Handle, Text, Int),
    "Highs_setDoubleOptionValue": (Handle, Text, Double),
    "Highs_passModel": (Handle,) + (Int,) * 7 + (Double,) + (Handle,) * 12,
    "Highs_getSolution": (Handle,) * 5,
    "Highs_getLp": (Handle, Int) + (Handle,) * 14,
}.items():
    getattr(highs, name).argtypes = kinds


def instances():
    """Paths of the linear instances, and of those only that were named."""
    folder = next(
        parent / "shared" / "data"
        for parent in pathlib.Path(__file__).resolve().parents
        if (parent / "shared" / "data" / "reference.csv").is_file()
    )
    for line in (folder / "reference.csv").read_text().splitlines()[1:]:
        name, kind = line.split(",")[:2]
        if kind != "QP" and name.endswith(".mps") and (not sys.argv[1:] or name in sys.argv[1:]):
            yield folder / name


def arrays_of(path):
    """Sizes, sense, constant and arrays of a model as HiGHS reads it."""
    instance = highs.Highs_create()
    highs.Highs_setBoolOptionValue(instance, b"output_flag", 0)
    highs.Highs_readModel(instance, str(path).encode())
    sizes = [getattr(highs, "Highs_getNum" + what)(Handle(instance)) for what in ("Col", "Row", "Nz")]
    cols, rows, entries = sizes
    shapes = (
        [(Double, cols)] * 3 + [(Double, rows)] * 2 + [(Int, cols + 1), (Int, entries), (Double, entries), (Int, cols)]
    )
    arrays = [(kind * max(1, count))() for kind, count in shapes]
    head = [Int(), Int(), Int(), Int(), Double()]
    highs.Highs_getLp(instance, COLWISE, *(ctypes.cast(ctypes.byref(value), Handle) for value in head), *arrays)
    highs.Highs_destroy(instance)
    return sizes, head[3].value, head[4].value, arrays


def highs_solve(model):
    (cols, rows, entries), sense, constant, arrays = model
    solution = [(Double * max(1, count))() for count in (cols, cols, rows, rows)]

    def solve():
        instance = highs.Highs_create()
        highs.Highs_setBoolOptionValue(instance, b"output_flag", 0)
        highs.Highs_setDoubleOptionValue(instance, b"mip_abs_gap", 1e-10)  # MIPGapAbs
        integrality = arrays[8] if any(arrays[8]) else None
        highs.Highs_passModel(
            instance,
            cols,
            rows,
            entries,
            0,
            COLWISE,
            TRIANGULAR,
            sense,
            constant,
            *arrays[:8],
            *[None] * 3,
            integrality,
        )
        highs.Highs_run(instance)
        highs.Highs_getSolution(instance, *solution)
        highs.Highs_destroy(instance)

    return solve


def main():
    env = zelvanpy.Env(empty=True)
    env.setParam("OutputFlag", 0)
    env.start()
    table = timing.Table("solving through the library against HiGHS")
    for path in instances():
        m = zelvanpy.read(str(path), env)
        m.Params.DualReductions = 0  # as HiGHS by default

        def solve(m=m):
            m.reset()
            m.optimize()

        ratio = timing.compare(solve, highs_solve(arrays_of(path)), clock=time.process_time)
        bar = MAX_RATIO + MAX_SECONDS_MORE / ratio.baseline
        table.row(path.name, ratio, bar=float("%.4g" % bar))
        m.dispose()


if __name__ == "__main__":
    main()
