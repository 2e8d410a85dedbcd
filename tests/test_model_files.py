"""MPS and LP files in all their dialects: what is read from texts, and what is refused."""

import ctypes
import re

import pytest
from native import INFINITY, Content, Environment, array, highs_library

INF = INFINITY


@pytest.fixture(scope="module")
def env():
    environment = Environment(UpdateMode=0, LogToConsole=1)
    yield environment
    environment.close()


def read_text(env, folder, ending, text):
    path = folder / ("model" + ending)
    path.write_text(text)
    env.log.clear()
    with env.read(path) as model:
        return model.content()


def write_text(env, model, path):
    """The text of a written file and the warnings on the way."""
    env.warnings()
    model.write(path)
    return path.read_bytes(), env.warnings()


def bounds(content):
    return {name: (kind, lb, ub) for name, kind, lb, ub, _ in content.columns}


def rows(content):
    names = [column[0] for column in content.columns]
    return [(name, sense, rhs, {names[j]: v for j, v in entries}) for name, sense, rhs, entries in content.rows]


# --- MPS ---------------------------------------------------------------------------------------------------------

MPS = """* a comment
NAME          sample
{0}ROWS
 N  cost
 L  c1
 G  c2
 E  c3
COLUMNS
    x         cost      1.5          c1        1.0
    x         c3        +2
    MARKER    'MARKER'  'INTORG'
    y         cost      -1e0         c2        .5
    z         c1        3D0
    MARKER    'MARKER'  'INTEND'
    u         c3        1
RHS
    RHS       c1        4.           c2        1
    RHS       cost      -7
{1}BOUNDS
{2}ENDATA
"""


def mps(env, tmp_path, before_rows="", ranges="", bound_lines=""):
    lines = "".join(" %s\n" % line for line in bound_lines.split("; ") if line)
    return read_text(env, tmp_path, ".mps", MPS.format(before_rows, ranges, lines))


def test_mps_sample(env, tmp_path):
    content = mps(env, tmp_path, bound_lines="PL B z")
    assert (content.name, content.sense, content.constant) == ("sample", 1, 7.0)
    assert content.columns == [
        ("x", "C", 0, INF, 1.5),
        ("y", "I", 0, 1, -1),
        ("z", "I", 0, INF, 0),
        ("u", "C", 0, INF, 0),
    ]
    assert rows(content) == [
        ("c1", "<", 4, {"x": 1, "z": 3}),
        ("c2", ">", 1, {"y": 0.5}),
        ("c3", "=", 0, {"x": 2, "u": 1}),
    ]
    assert env.warnings() == ["Warning: 1 integer column(s) without bounds: bounds 0 and 1 assumed"]


@pytest.mark.parametrize(
    "lines, name, expected",
    [
        ("LO B x -2; UP B x 5", "x", ("C", -2, 5)),
        ("UP x 5", "x", ("C", 0, 5)),
        ("UP B x 1e30", "x", ("C", 0, INF)),
        ("UP B x inf", "x", ("C", 0, INF)),
        ("LO B x -Infinity", "x", ("C", -INF, INF)),
        ("FX B x 3", "x", ("C", 3, 3)),
        ("FR B x", "x", ("C", -INF, INF)),
        ("FR x", "x", ("C", -INF, INF)),
        ("MI B x; UP B x -1", "x", ("C", -INF, -1)),
        ("UP B x -1; LO B x 0", "x", ("C", 0, -1)),
        ("BV B x", "x", ("B", 0, 1)),
        ("BV B x; FX B x 0", "x", ("B", 0, 0)),
        ("LI B x 2", "x", ("I", 2, INF)),
        ("UI B x 7", "x", ("I", 0, 7)),
        ("SC B x 9; LO B x 2", "x", ("S", 2, 9)),
        ("SC B x", "x", ("S", 0, INF)),
        ("SI B x 9", "x", ("N", 0, 9)),
        ("SC B y 9", "y", ("S", 0, 9)),
        ("LO B y 2", "y", ("I", 2, INF)),
        ("MI B y", "y", ("I", -INF, INF)),
    ],
)
def test_mps_bounds(env, tmp_path, lines, name, expected):
    assert bounds(mps(env, tmp_path, bound_lines=lines + "; PL B z"))[name] == expected


def test_mps_negative_upper_bound(env, tmp_path):
    assert bounds(mps(env, tmp_path, bound_lines="UP B x -1; PL B y; PL B z"))["x"] == ("C", -INF, -1)
    [warning] = env.warnings()
    assert "'x'" in warning and "lower bound -infinity" in warning


@pytest.mark.parametrize(
    "text",
    ["OBJSENSE\n    MAX\n", "OBJSENSE MAXIMIZE\n", "OBJSENSE\nMAX\n", "OBJSENSE\n maximize\nOBJNAME\n cost\n", "MAX\n"],
)
def test_mps_sense(env, tmp_path, text):
    assert mps(env, tmp_path, before_rows=text).sense == -1


def test_mps_sense_among_rows(env, tmp_path):
    text = MPS.format("", "", "").replace(" N  cost\n", " OBJSENSE MAX\n N  cost\n")
    assert read_text(env, tmp_path, ".mps", text).sense == -1


def range_text(content, env, tmp_path):
    """Rows as LP text, which shows both sides."""
    path = tmp_path / "ranges.lp"
    with env.read(tmp_path / "model.mps") as model:
        return [line.strip() for line in write_text(env, model, path)[0].decode().splitlines() if ": " in line][1:]


def test_mps_ranges(env, tmp_path):
    sides = []
    for sign in "+-":
        ranges = f"RANGES\n R c1 {sign}2 c2 {sign}3\n R c3 {sign}4\n"
        content = mps(env, tmp_path, ranges=ranges)
        assert [row[1] for row in content.rows] == ["R"] * 3
        sides.append(range_text(content, env, tmp_path))
    first_two = ["c1: 2 <= x + 3 z <= 4", "c2: 1 <= 0.5 y <= 4"]
    assert sides[0] == first_two + ["c3: 0 <= 2 x + u <= 4"]
    assert sides[1] == first_two + ["c3: -4 <= 2 x + u <= 0"]
    content = mps(env, tmp_path, ranges="RANGES\n R c1 0 c2 1e30\n")
    assert [row[1:3] for row in content.rows] == [("=", 4), (">", 1), ("=", 0)]


def test_mps_rows_of_type_n(env, tmp_path):
    text = MPS.format("", "", "").replace(" L  c1\n", " L  c1\n N  other\n").replace("    u ", "    u  other 9\n    u ")
    text = text.replace("BOUNDS\n", "BOUNDS\n PL B y\n PL B z\n")
    content = read_text(env, tmp_path, ".mps", text)
    assert [row[0] for row in content.rows] == ["c1", "c2", "c3"]
    assert env.warnings() == ["Warning: 1 further row(s) of type N dropped, which are not the objective"]
    content = read_text(env, tmp_path, ".mps", text.replace("ROWS", "OBJNAME\n other\nROWS", 1))
    assert [column[4] for column in content.columns] == [0, 0, 0, 9]


def test_mps_several_sets(env, tmp_path):
    text = MPS.format("", "", " UP B x 4\n UP B2 x 5\n PL B y\n PL B z\n").replace("RHS       cost", "RHS2      cost")
    content = read_text(env, tmp_path, ".mps", text)
    assert bounds(content)["x"] == ("C", 0, 4) and content.constant == 0
    assert env.warnings() == [
        "Warning: right-hand side 'RHS2' ignored, only the first, 'RHS', is used",
        "Warning: bounds 'B2' ignored, only the first, 'B', is used",
    ]


FIXED = """NAME          FIXED   and more
ROWS
 N  THE COST
 L  ROW 1
 G   2
COLUMNS
    COL A     THE COST           1.5   ROW 1              1.0
    COL A      2                 1.0
    MARKER                 'MARKER'                 'INTORG'
    B         ROW 1              2.0
    MARKER                 'MARKER'                 'INTEND'
RHS
              ROW 1              4.0    2                 1.0
BOUNDS
 UP BND       COL A              4.0
 UP           B                  3.0
ENDATA
"""


def test_mps_fixed_form(env, tmp_path):
    content = read_text(env, tmp_path, ".mps", FIXED)
    assert content.name == "FIXED"
    assert content.columns == [("COL A", "C", 0, 4, 1.5), ("B", "I", 0, 3, 0)]
    assert rows(content) == [("ROW 1", "<", 4, {"COL A": 1, "B": 2}), ("2", ">", 1, {"COL A": 1})]


def faulty_mps(old, new):
    return MPS.format("", "", " UP B x 4\n").replace(old, new, 1)


@pytest.mark.parametrize(
    "text, line, words",
    [
        ("", 0, "ends here, expected ENDATA"),
        ("NAME\nENDATA\n", 2, "before section ROWS"),
        ("NAME\nROWS\n N c\nENDATA\n", 4, "before section COLUMNS"),
        ("x1 c1 4\n", 1, "unknown section 'x1'"),
        ("NAME\n x1 c1 4\n", 2, "outside of a section"),
        (faulty_mps("ENDATA\n", ""), 20, "ends here, expected ENDATA"),
        (faulty_mps("RHS  ", "RHS x\0y"), 17, "binary data"),
        (faulty_mps(" L  c1", " Q  c1"), 5, "'Q' is no type of a row"),
        (faulty_mps(" G  c2", " G  c1"), 6, "row 'c1' appears twice"),
        (faulty_mps(" L  c1", " L  c1  c4"), 5, "expected the type and the name"),
        (faulty_mps("    z         c1  ", "    z         c9  "), 13, "unknown row 'c9'"),
        (faulty_mps("    u         c3  ", "    x         c3  "), 15, "column 'x' appears in two places"),
        (faulty_mps("    x         c3  ", "    x         c1  "), 10, "two entries in row 'c1'"),
        (faulty_mps("3D0", "3,0"), 13, "'3,0' is not a number"),
        (faulty_mps("3D0", "nan"), 13, "'nan' is not a number"),
        (faulty_mps("3D0", "1e400"), 13, "'1e400' is too large"),
        (faulty_mps("3D0", ""), 13, "expected a column, a row and a number"),
        (faulty_mps("'INTORG'", "'SOSORG'"), 11, "special ordered sets are not supported"),
        (faulty_mps("c2        1\n", "c1        1\n"), 17, "row 'c1' has two right-hand sides"),
        (faulty_mps("cost      -7", "c3        inf"), 18, "wrong side of infinity"),
        (faulty_mps("UP B x", "XX B x"), 20, "'XX' is no type of a bound"),
        (faulty_mps("UP B x", "UP B q"), 20, "unknown column 'q'"),
        (faulty_mps("UP B x 4", "FX B x 1e25"), 20, "wrong side of infinity"),
        (faulty_mps("UP B x 4", "UP B"), 20, "expected a bound"),
        (faulty_mps("BOUNDS", "CSECTION"), 19, "section CSECTION is not supported"),
        (faulty_mps("BOUNDS", "SOS2"), 19, "section SOS2 is not supported"),
        (faulty_mps("BOUNDS\n", "SOS\n x 1\n"), 20, "'x' is no type of a set, expected S1 or S2"),
        (faulty_mps("BOUNDS\n", "SOS\n S1 a\n w 1\n"), 21, "unknown column 'w'"),
        (faulty_mps("BOUNDS\n", "SOS\n S1 a\n x 1\n y 2\n x 3\n"), 23, "'x' stands twice in one set"),
        (faulty_mps("BOUNDS\n", "SOS\n S1 a\n S2 a\n"), 21, "set 'a' appears twice"),
        (faulty_mps("BOUNDS\n", "SOS\n S1 a\n x 1e20\n"), 21, "the weight of 'x' is too large"),
        (faulty_mps("BOUNDS\n", "SOS\n S1\n"), 20, "expected S1 or S2 and the name of a set"),
        (faulty_mps("BOUNDS", "RHS"), 19, "section RHS appears twice"),
        (faulty_mps("    z    ", "    " + 300 * "z" + " "), 13, "is longer than 255 bytes"),
        (FIXED.replace("UP BND       COL A ", "UP BND       COL B "), 15, "unknown column 'COL B'"),
    ],
)
def test_mps_faults(env, tmp_path, text, line, words):
    refuse(env, tmp_path / "faulty.mps", text, line, words)


def refuse(env, path, text, line, words):
    path.write_text(text)
    caught = env.refused("read", path)
    assert caught.code == 10012
    assert words in caught.text
    assert "File '%s', line %d:" % (path, line) in caught.text


# --- LP ----------------------------------------------------------------------------------------------------------


def test_lp_sample(env, tmp_path):
    text = """\\ Model name: my model
MAXIMIZE  \\ comment
  profit: 3 x1 + 2.5x2 - .5e+1 x3
    + 4. x[1,2] - x3 + 10 - 2
Such That
  c1: x1 + x2
      + x3 <= 10
  c2: -1 <= x1 - x2
      + 2 x[1,2] <= 1E1
  c3: x1 => 1
  x1 + x1 - x2 - 3 >= 2 - x3
  -x1 + 3 x2 =< 4
  5 >= x2
  c4 : 2 * x1 == 3
bounds
  x1 free
  -inf <= x2 <= 5
  1 <= x3
  x[1,2] <= 1e30
  b <= 7
End of it all
"""
    text = text.replace("4. x[1,2]", "4. x[1,2] + b + g + s + n")
    text = text.replace("End of", "GENERAL\n g n\nBinary\n b\nSemis s\n n\nEnd\nEnd of")
    content = read_text(env, tmp_path, ".lp", text)
    assert (content.name, content.sense, content.constant) == ("my model", -1, 8.0)
    assert [(column[0], column[4]) for column in content.columns] == [
        ("x1", 3),
        ("x2", 2.5),
        ("x3", -6),
        ("x[1,2]", 4),
        ("b", 1),
        ("g", 1),
        ("s", 1),
        ("n", 1),
    ]
    assert bounds(content) == {
        "x1": ("C", -INF, INF),
        "x2": ("C", -INF, 5),
        "x3": ("C", 1, INF),
        "x[1,2]": ("C", 0, INF),
        "b": ("B", 0, 7),
        "g": ("I", 0, INF),
        "s": ("S", 0, INF),
        "n": ("N", 0, INF),
    }
    assert rows(content) == [
        ("c1", "<", 10, {"x1": 1, "x2": 1, "x3": 1}),
        ("c2", "R", 10, {"x1": 1, "x2": -1, "x[1,2]": 2}),
        ("c3", ">", 1, {"x1": 1}),
        ("R3", ">", 5, {"x1": 2, "x2": -1, "x3": 1}),
        ("R4", "<", 4, {"x1": -1, "x2": 3}),
        ("R5", "<", 5, {"x2": 1}),
        ("c4", "=", 3, {"x1": 2}),
    ]


@pytest.mark.parametrize(
    "line, expected",
    [
        ("x >= -5", (-5, INF)),
        ("-5 <= x", (-5, INF)),
        ("x = 3", (3, 3)),
        ("3 = x", (3, 3)),
        ("-3 <= x <= +4", (-3, 4)),
        ("4 >= x >= -3", (-3, 4)),
        ("x <= - 4 x >= -infinity", (-INF, -4)),
        ("-Infinity <= x < +INF", (-INF, INF)),
        ("x Free", (-INF, INF)),
        ("x > 1e-2", (0.01, INF)),
        ("x =< 1.5e+2\n x => 1", (1, 150)),
    ],
)
def test_lp_bounds(env, tmp_path, line, expected):
    content = read_text(env, tmp_path, ".lp", "min x\nst\nc: x + y >= 0\nBound\n %s\nEnd" % line)
    assert content.columns[0][2:4] == expected


@pytest.mark.parametrize("keyword, sense", [("Minimum", 1), ("max:", -1), ("MAXIMISE", -1), ("min", 1)])
def test_lp_keywords(env, tmp_path, keyword, sense):
    """Keywords count at the start of a line only, and not before an operator or a colon."""
    text = keyword + " bin + end\n + x\ns.t.\n bound: bin + end >= 1\n st >= 2\n gen: st + x >= 1\nIntegers\nx\nend"
    content = read_text(env, tmp_path, ".lp", text)
    assert content.sense == sense
    assert [column[:2] for column in content.columns] == [("bin", "C"), ("end", "C"), ("x", "I"), ("st", "C")]
    assert [row[0] for row in content.rows] == ["bound", "R1", "gen"]


@pytest.mark.parametrize(
    "text, line, words",
    [
        ("", 1, "the file ends here, expected Minimize or Maximize"),
        ("x + y >= 2\n", 1, "found 'x', expected Minimize or Maximize"),
        ("min x\nst\nc: x >= 1\n", 4, "the file ends here, expected End"),
        ("min x\nst\nc: x >= \n\nEnd\n", 5, "found 'End', expected a number or an expression"),
        ("min x\nst\nc: x y >= 1\nEnd\n", 3, "found 'y', expected <=, >= or ="),
        ("min x\nst\nc: x + >= 1\nEnd\n", 3, "found '>=', expected a number or a variable"),
        ("min x\nst\nc: x >= 1 1\nEnd\n", 3, "found '1', expected"),
        ("min x\nst\nc: x >= 1\nc: x >= 2\nEnd\n", 4, "constraint 'c' appears twice"),
        ("min x\nst\nc: 1 <= x >= 1\nEnd\n", 3, "the same operator twice"),
        ("min x\nst\nc: 4 <= x <= 1\nEnd\n", 3, "exclude each other"),
        ("min x\nst\nc: x >= inf\nEnd\n", 3, "wrong side of infinity"),
        ("min 1e99 x\nst\nEnd\n", 1, "coefficient of 'x' is too large"),
        ("min x\nst\nc: b = 1 -> x >= 3\nEnd\n", 3, "indicator constraints are not supported"),
        ("min x\nst\nc: x >= 1\nBounds\n y <= 3\nEnd\n", 5, "found 'y', expected a variable of the objective"),
        ("min x\nst\nc: x >= 1\nBounds\n x <= nan\nEnd\n", 5, "found 'nan', expected a number"),
        ("min x\nst\nc: x >= 1\nBinaries\n 3\nEnd\n", 5, "found '3', expected the name of a variable"),
        ("min x\nst\nc: x >= 1\nSOS2\nEnd\n", 4, "section SOS2 is not supported"),
        ("min x\nst\nc: <= x\nEnd\n", 3, "found 'x', expected a number"),
        ("min x\nst\nc: <= 1 <= 2\nEnd\n", 3, "expected a new line or a label behind the constraint"),
        ("min x\nst\n<= 1\nEnd\n", 3, "expected a constraint"),
        ("min x\nst\nc: >= inf\nEnd\n", 3, "on the wrong side of infinity"),
        ("min x\nSOS\nx:1\nEnd\n", 3, "'x' is in no set, expected S1:: or S2:: before"),
        ("min x\nSOS\na: S3:: x:1\nEnd\n", 3, "found 'S3', expected S1:: or S2::"),
        ("min x\nSOS\na: S1:: x:1\n x:2\nEnd\n", 4, "'x' stands twice in one set"),
        ("min x\nSOS\na: S1:: x:1\na: S2:: x:1\nEnd\n", 4, "set 'a' appears twice"),
        ("min x\nSOS\nS1:: x: -\nEnd\n", 4, "found 'End', expected a weight"),
        ("min x\nSOS\nS1:: x 1\nEnd\n", 3, "expected a set such as a: S1:: x:1 y:2"),
        ("min x\nSOS\na: S1: x:1\nEnd\n", 3, "expected ':'"),
        ("min x\nst\nc: x >= 1\nGeneral Constraints\nEnd\n", 4, "section General Constraints is not supported"),
        ("min x\nst\nc: x >= 1\nMax y\nEnd\n", 4, "a second objective 'Max'"),
        ("min 3 (x + y)\nst\nEnd\n", 1, "found '('"),
        ("min x\nst\n%s: x >= 1\nEnd\n" % (300 * "c"), 3, "is longer than 255 bytes"),
    ],
)
def test_lp_faults(env, tmp_path, text, line, words):
    refuse(env, tmp_path / "faulty.lp", text, line, words)


# --- real instances, and HiGHS as second opinion --------------------------------------------------------------------


def instances(shared_data):
    return sorted(p for p in shared_data.iterdir() if p.suffix in (".mps", ".lp"))


def test_instances_round_trip(env, shared_data, tmp_path):
    for path in instances(shared_data):
        with env.read(path) as model:
            content = model.content()
            for ending in (".mps", ".lp", ".mps.gz", ".lp.gz"):
                copy = tmp_path / ("copy" + ending)
                text, warnings = write_text(env, model, copy)
                with env.read(copy) as read_back:
                    again = read_back.content()
                    assert numbered(again) == numbered(content), path.name
                    check_names(content, again, " ".join(warnings))
                    assert write_text(env, read_back, copy) == (text, []), path.name
                assert not warnings or ".lp" in ending, path.name


def numbered(content):
    return Content(
        content.name,
        content.sense,
        content.constant,
        [("C%d" % j, *column[1:]) for j, column in enumerate(content.columns)],
        [("R%d" % i, *row[1:]) for i, row in enumerate(content.rows)],
        content.sets,
        content.quadratic,
        [("QC%d" % i, *row[1:]) for i, row in enumerate(content.quadratic_rows)],
    )


def check_names(written, read_back, warning):
    """As many as the warning says have a default name instead of their own; the names tell all apart."""
    kinds = [
        ("C", "variable", written.columns, read_back.columns),
        ("R", "constraint", written.rows, read_back.rows),
        ("QC", "quadratic constraint", written.quadratic_rows, read_back.quadratic_rows),
    ]
    for letter, noun, before, after in kinds:
        assert len({part[0] for part in after}) == len(after)
        replaced = [i for i, (one, other) in enumerate(zip(before, after)) if one[0] != other[0]]
        assert all(after[i][0].rstrip("_") == letter + str(i) for i in replaced)
        told = re.search(r"(\d+) %ss? numbered" % noun, warning)
        assert int(told.group(1) if told else 0) == len(replaced)
    rows_ = read_back.rows + read_back.quadratic_rows
    assert len({row[0] for row in rows_}) == len(rows_)


def highs_content(path):
    """Columns (type number, lb, ub, obj), rows (lower, upper, entries) and the objective's quadratic terms as HiGHS
    reads them."""
    highs = highs_library()
    highs.Highs_create.restype = ctypes.c_void_p
    handle = ctypes.c_void_p(highs.Highs_create())
    try:
        highs.Highs_setBoolOptionValue(handle, b"output_flag", 0)
        assert highs.Highs_readModel(handle, str(path).encode()) in (0, 1)
        sizes = ("NumCol", "NumRow", "NumNz", "HessianNumNz")
        n, m, nz, qnz = (getattr(highs, "Highs_get" + what)(handle) for what in sizes)
        integers = [ctypes.c_int() for _ in range(5)]
        offset = ctypes.c_double()
        columns = [array(ctypes.c_double, n * [0]) for _ in range(3)]
        sides = [array(ctypes.c_double, m * [0]) for _ in range(2)]
        start, index = array(ctypes.c_int, (m + 1) * [0]), array(ctypes.c_int, nz * [0])
        value, kind = array(ctypes.c_double, nz * [0]), array(ctypes.c_int, n * [0])
        hessian = [array(kind_, size * [0]) for kind_, size in ((ctypes.c_int, n + 1), (ctypes.c_int, qnz))]
        hessian.append(array(ctypes.c_double, qnz * [0]))
        pointers = [ctypes.byref(x) for x in [*integers, offset]]
        arrays = [*columns, *sides, start, index, value, *hessian, kind]
        assert highs.Highs_getModel(handle, 2, 1, *pointers, *arrays) == 0
        obj, lb, ub = (list(a[:n]) for a in columns)
        kinds = list(kind[:n]) if any(kind[:n]) else n * [0]
        starts = [*start[:m], nz]
        entries = [sorted(zip(index[s:e], value[s:e])) for s, e in zip(starts, starts[1:])]
        rows_ = list(zip(sides[0][:m], sides[1][:m], entries))
        ends = [*hessian[0][1:n], qnz] if qnz else []
        col_of = [j for j, (s, e) in enumerate(zip(hessian[0], ends)) for _ in range(s, e)]
        # Of the matrix Q in x'Qx / 2 one triangle is given.
        terms = {(min(i, j), max(i, j)): v if i != j else v / 2 for i, j, v in zip(hessian[1], col_of, hessian[2])}
        terms = {pair: value for pair, value in terms.items() if value}
        return integers[4].value, offset.value, list(zip(kinds, lb, ub, obj)), rows_, terms
    finally:
        highs.Highs_destroy(handle)


HIGHS_TYPE = {"C": 0, "B": 1, "I": 1, "S": 2, "N": 3}


def infinite(value):
    return value if abs(value) < 1e20 else value * float("inf")


def as_highs(content):
    columns = [(HIGHS_TYPE[kind], infinite(lb), infinite(ub), obj) for _, kind, lb, ub, obj in content.columns]
    rows_ = []
    for _, sense, rhs, entries in content.rows:
        # HiGHS drops coefficients up to this size.
        entries = [(j, value) for j, value in entries if abs(value) > 1e-9]
        rows_.append((rhs if sense in "=>" else -float("inf"), rhs if sense in "=<" else float("inf"), entries))
    return content.sense, content.constant, columns, rows_, {(i, j): value for i, j, value in content.quadratic}


def test_instances_as_highs_reads_them(env, shared_data, tmp_path):
    """The source files, and what is written of them."""
    for path in instances(shared_data):
        with env.read(path) as model:
            content = model.content()
            expected = as_highs(content)
            assert highs_content(path) == expected, path.name
            # In LP form HiGHS takes a name that begins with "inf" for infinity.
            taken_for_infinity = any(column[0][:3].lower() == "inf" for column in content.columns)
            for ending in (".mps",) if taken_for_infinity else (".mps", ".lp"):
                model.write(tmp_path / ("copy" + ending))
                assert highs_content(tmp_path / ("copy" + ending)) == expected, path.name + ending
