"""The C interface of HiGHS through ctypes: the baseline of the benchmarks that solve."""

import ctypes
import dataclasses
import pathlib
import sys

import highsbox

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "tests"))

from conftest import find_shared_data

Int, Double, Handle, Text = ctypes.c_int, ctypes.c_double, ctypes.c_void_p, ctypes.c_char_p
COLWISE, ROWWISE, TRIANGULAR = 1, 2, 1
SMALL = 1e-9  # entries up to this HiGHS drops by default

lib = ctypes.CDLL(str(pathlib.Path(highsbox.highs_dist_dir()) / "lib" / "libhighs.so"))
lib.Highs_create.restype = Handle
for name, kinds in {
    "Highs_destroy": (Handle,),
    "Highs_readModel": (Handle, Text),
    "Highs_run": (Handle,),
    "Highs_getNumCol": (Handle,),
    "Highs_getNumRow": (Handle,),
    "Highs_getNumNz": (Handle,),
    "Highs_setBoolOptionValue": (Handle, Text, Int),
    "Highs_setDoubleOptionValue": (Handle, Text, Double),
    "Highs_passModel": (Handle,) + (Int,) * 7 + (Double,) + (Handle,) * 12,
    "Highs_getSolution": (Handle,) * 5,
    "Highs_getLp": (Handle, Int) + (Handle,) * 14,
    "Highs_getIntInfoValue": (Handle, Text, ctypes.POINTER(Int)),
    "Highs_getObjectiveValue": (Handle,),
    "Highs_getInt64InfoValue": (Handle, Text, ctypes.POINTER(ctypes.c_int64)),
    "Highs_changeColCost": (Handle, Int, Double),
    "Highs_changeColBounds": (Handle, Int, Double, Double),
    "Highs_changeRowBounds": (Handle, Int, Double, Double),
    "Highs_addRow": (Handle, Double, Double, Int, Handle, Handle),
    "Highs_addCol": (Handle, Double, Double, Double, Int, Handle, Handle),
    "Highs_deleteRowsByRange": (Handle, Int, Int),
    "Highs_deleteColsByRange": (Handle, Int, Int),
}.items():
    getattr(lib, name).argtypes = kinds
lib.Highs_getObjectiveValue.restype = Double


def instances(wanted=()):
    """Paths of the linear instances, or of those only that are named in `wanted`; none without their folder."""
    folder = find_shared_data()
    if folder is None:
        print("  no instances: there is no folder shared/data above the source tree")
        return
    for line in (folder / "reference.csv").read_text().splitlines()[1:]:
        name, kind = line.split(",")[:2]
        if kind != "QP" and name.endswith(".mps") and (not wanted or name in wanted):
            yield folder / name


@dataclasses.dataclass
class Arrays:
    """A model by columns; `integrality` is None where all columns are continuous."""

    cols: int
    rows: int
    entries: int
    sense: int
    constant: float
    cost: object
    lb: object
    ub: object
    row_lower: object
    row_upper: object
    start: object
    index: object
    value: object
    integrality: object

    @classmethod
    def read(cls, path):
        """The model of a file as HiGHS reads it."""
        with Highs() as highs:
            lib.Highs_setDoubleOptionValue(highs.handle, b"small_matrix_value", 1e-12)
            lib.Highs_readModel(highs.handle, str(path).encode())
            cols, rows, entries = (getattr(lib, "Highs_getNum" + what)(highs.handle) for what in ("Col", "Row", "Nz"))
            shapes = [(Double, cols)] * 3 + [(Double, rows)] * 2
            shapes += [(Int, cols + 1), (Int, entries), (Double, entries), (Int, cols)]
            arrays = [(kind * max(1, count))() for kind, count in shapes]
            head = [Int(), Int(), Int(), Int(), Double()]
            lib.Highs_getLp(highs.handle, COLWISE, *map(ctypes.addressof, head), *arrays)
        if not any(arrays[8]):
            arrays[8] = None
        return cls(cols, rows, entries, head[3].value, head[4].value, *arrays)


class Highs:
    """A silent instance of HiGHS; freed at the end of a `with`."""

    def __init__(self):
        self.handle = Handle(lib.Highs_create())
        lib.Highs_setBoolOptionValue(self.handle, b"output_flag", 0)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        lib.Highs_destroy(self.handle)

    def load(self, m):
        lib.Highs_setDoubleOptionValue(self.handle, b"mip_abs_gap", 1e-10)  # MIPGapAbs
        small = any(0.0 < abs(value) <= SMALL for value in m.value)  # no coefficient of a model is dropped
        lib.Highs_setDoubleOptionValue(self.handle, b"small_matrix_value", 1e-12 if small else SMALL)
        sizes = (m.cols, m.rows, m.entries, 0, COLWISE, TRIANGULAR, m.sense, m.constant)
        vectors = (m.cost, m.lb, m.ub, m.row_lower, m.row_upper, m.start, m.index, m.value)
        status = lib.Highs_passModel(self.handle, *sizes, *vectors, None, None, None, m.integrality)
        assert status in (0, 1), status

    def run(self):
        assert lib.Highs_run(self.handle) in (0, 1)

    def solution(self):
        """Values, reduced costs, activities, duals."""
        counts = [lib.Highs_getNumCol(self.handle)] * 2 + [lib.Highs_getNumRow(self.handle)] * 2
        arrays = [(Double * max(1, count))() for count in counts]
        lib.Highs_getSolution(self.handle, *arrays)
        return arrays

    def objective(self):
        return lib.Highs_getObjectiveValue(self.handle)

    def iterations(self):
        count = Int()
        lib.Highs_getIntInfoValue(self.handle, b"simplex_iteration_count", ctypes.byref(count))
        return max(0, count.value)

    def nodes(self):
        count = ctypes.c_int64()
        lib.Highs_getInt64InfoValue(self.handle, b"mip_node_count", ctypes.byref(count))
        return max(0, count.value)
