"""Quadratic objectives and constraints in model files: what is read, refused and written."""

import pytest
from native import Environment
from test_model_files import read_text, refuse, write_text


@pytest.fixture(scope="module")
def env():
    environment = Environment(UpdateMode=0, LogToConsole=1)
    yield environment
    environment.close()


LP = """\\ Model name: quadratic
Maximize
  x + 0 y + [ 4 x ^ 2 - 3 x * y + 2 y * z ] / 2 - 7
Subject To
 r: x + z >= 1
 q: 2 x - z + [ x ^ 2 - y * z ] <= 9
 e: [ 0 x ^ 2 ] = 3
Bounds
 x <= 4
End
"""
MPS = """NAME quadratic
OBJSENSE
    MAX
ROWS
 N OBJ
 G r
 L q
 E e
COLUMNS
    x OBJ 1
    x r 1
    x q 2
    y OBJ 0
    z r 1
    z q -1
RHS
    RHS OBJ 7
    RHS r 1
    RHS q 9
    RHS e 3
BOUNDS
 UP BND x 4
QUADOBJ
    x x 4
    x y -1.5
    y z 1
QCMATRIX q
    x x 1
    y z -0.5
    z y -0.5
QCMATRIX e
ENDATA
"""
OBJECTIVE = [(0, 0, 2.0), (0, 1, -1.5), (1, 2, 1.0)]
ROWS = [("q", "<", 9.0, [(0, 2.0), (2, -1.0)], [(0, 0, 1.0), (1, 2, -1.0)]), ("e", "=", 3.0, [], [])]


def test_both_formats_say_the_same(env, tmp_path):
    for ending, text in ((".lp", LP), (".mps", MPS)):
        path = tmp_path / ("source" + ending)
        path.write_text(text)
        with env.read(path) as model:
            assert (model.quadratic_terms(), model.quadratic_rows()) == (OBJECTIVE, ROWS)
            written = [write_text(env, model, tmp_path / ("copy" + other))[0].decode() for other in (".lp", ".mps")]
            assert written == [LP.replace("0 y + [", "0 y + 0 z + ["), MPS]


def variant(old, new):
    assert old in MPS
    return MPS.replace(old, new)


TRIANGLE = "QUADOBJ\n    x x 4\n    x y -1.5\n    y z 1\n"


@pytest.mark.parametrize(
    "text",
    [
        variant(TRIANGLE, "QMATRIX\n    x x 4\n    x y -1.5\n    y x -1.5\n    z y 1\n    y z 1\n"),
        variant(TRIANGLE, "QSECTION OBJ\n    x x 4 y -1.5\n    z y 1\n"),
        variant(TRIANGLE, "QSECTION\n    x x 4 y -1.5\n    z y 1 z 0\n"),
        variant("QCMATRIX q\n    x x 1\n    y z -0.5\n    z y -0.5\n", "QSECTION  q  \n    x x 2\n    z y -1\n"),
        variant(TRIANGLE, "").replace("RHS\n", TRIANGLE + "RHS\n", 1),
        variant(" N OBJ\n", " N OBJ\n N free\n").replace("ENDATA", "QCMATRIX free\n    x x 1\nENDATA"),
    ],
)
def test_every_section_in_use_is_read(env, tmp_path, text):
    content = read_text(env, tmp_path, ".mps", text)
    assert (content.quadratic, content.quadratic_rows) == (OBJECTIVE, ROWS)
    assert [row[0] for row in content.rows] == ["r"]


def test_fixed_form_may_have_blanks_in_names(env, tmp_path):
    text = """NAME          fixed
ROWS
 N  cost
 L  ROW A
COLUMNS
    COL A     cost               1.0   ROW A              1.0
    COL B     cost               2.0   ROW A              1.0
RHS
    RHS       ROW A              4.0
QUADOBJ
    COL A     COL A              2.0   COL B              3.0
QCMATRIX   ROW A
    COL A     COL B              1.0
    COL B     COL A              1.0
ENDATA
"""
    content = read_text(env, tmp_path, ".mps", text)
    assert content.quadratic == [(0, 0, 1.0), (0, 1, 3.0)]
    assert content.quadratic_rows == [("ROW A", "<", 4.0, [(0, 1.0), (1, 1.0)], [(0, 1, 2.0)])]


@pytest.mark.parametrize(
    "text",
    [
        "max x + [4x^2-3x*y+2y*z]/2 - 7",
        "max: obj: [ 4 x ^2 - 3 y*x ] / 2 + x - [ - 2 * y * z ]/2 - 7",
        "max x + [ 2 x * x - 1.5 x * y + 0.5 y * z + 0.5 z * y + 0 z^2 ] - 7",
        "max x + [ 4 x^2\n - 3 x * y + 2 y * z ]\n / 2 - 7",
    ],
)
def test_spellings_of_an_objective(env, tmp_path, text):
    content = read_text(env, tmp_path, ".lp", text + "\nst\n c: x + y + z <= 1\nEnd\n")
    found = {tuple(sorted((i, j), key=lambda k: content.columns[k][0])): value for i, j, value in content.quadratic}
    named = {(content.columns[i][0], content.columns[j][0]): value for (i, j), value in found.items()}
    assert named == {("x", "x"): 2.0, ("x", "y"): -1.5, ("y", "z"): 1.0}
    assert (content.sense, content.constant) == (-1, -7.0)


@pytest.mark.parametrize(
    "text, sense, rhs, entries, terms",
    [
        ("[x^2+x*y]<=4", "<", 4, [], [(0, 0, 1.0), (0, 1, 1.0)]),
        ("4 >= 2 x + [ x^2 ] / 2", "<", 4, [(0, 2.0)], [(0, 0, 0.5)]),
        ("c: x + [ x^2 ] >= [ y * y ] - y + 1", ">", 1, [(0, 1.0), (1, 1.0)], [(0, 0, 1.0), (1, 1, -1.0)]),
        ("c: - [ x^2 - 2 x*y ] = -1", "=", -1, [], [(0, 0, -1.0), (0, 1, 2.0)]),
        ("c: [ ] - x <= 1", "<", 1, [(0, -1.0)], []),
        ("c: [ x^2 - x^2 ] + y <= 1e30", "<", 1e100, [(1, 1.0)], []),
    ],
)
def test_spellings_of_a_constraint(env, tmp_path, text, sense, rhs, entries, terms):
    content = read_text(env, tmp_path, ".lp", "min x + y\nst\n %s\n lin: x <= 1\nEnd\n" % text)
    assert [row[1:] for row in content.quadratic_rows] == [(sense, rhs, entries, terms)]
    assert [row[0] for row in content.rows] == ["lin"]


def test_brackets_in_names(env, tmp_path):
    text = "min x[1,2] + y]\nst\n c: [x[1,2]^2+x[1,2]*z] + [ 2 y] * y] ] <= 4\nEnd\n"
    content = read_text(env, tmp_path, ".lp", text)
    assert [column[0] for column in content.columns] == ["x[1,2]", "y]", "z"]
    assert content.quadratic_rows[0][4] == [(0, 0, 1.0), (0, 2, 1.0), (1, 1, 2.0)]


@pytest.mark.parametrize(
    "text, line, words",
    [
        (variant("    x y -1.5", "    x u -1.5"), 25, "unknown column 'u'"),
        (variant("    x y -1.5", "    u y -1.5"), 25, "unknown column 'u'"),
        (variant("QCMATRIX q", "QCMATRIX u"), 27, "unknown row 'u'"),
        (variant("QCMATRIX e", "QCMATRIX q"), 31, "a second quadratic matrix of row 'q'"),
        (variant("QCMATRIX e", "QCMATRIX"), 31, "expected the name of a row"),
        (variant("ENDATA", "QSECTION\nENDATA"), 32, "a second quadratic matrix of the objective"),
        (variant("    x y -1.5", "    x y -1.5\n    y x -1.5"), 26, "'y' and 'x' have two entries"),
        (variant("    z y -0.5", "    z y -0.4"), 29, "the matrix is not symmetric in 'y' and 'z'"),
        (variant("    z y -0.5\n", ""), 29, "the matrix is not symmetric in 'y' and 'z'"),
        (variant("    z y -0.5", "    y z -0.5"), 30, "'y' and 'z' have two entries"),
        (variant("    x y -1.5", "    x y 1e20"), 25, "the entry of 'x' and 'y' is too large"),
        (variant("    x y -1.5", "    x y z"), 25, "'z' is not a number"),
        (variant("    x y -1.5", "    x y"), 25, "expected two columns and a number"),
        (variant("BOUNDS", "RANGES\n    RNG q 2\nBOUNDS"), 29, "row 'q' has a range"),
    ],
)
def test_faulty_matrices(env, tmp_path, text, line, words):
    refuse(env, tmp_path / "faulty.mps", text, line, words)


@pytest.mark.parametrize(
    "objective, constraint, words",
    [
        ("x * y", "", "quadratic terms stand in brackets"),
        ("x ^ 2", "", "quadratic terms stand in brackets"),
        ("[ x ]", "", "found ']', expected ^ 2 or * and a variable"),
        ("[ x^3 ]", "", "found '3', expected 2, as in x ^ 2"),
        ("[ 3 ]", "", "found ']', expected a variable"),
        ("[ x * 3 ]", "", "found '3', expected a variable"),
        ("[ x^2 y^2 ]", "", "found 'y', expected +, - or ]"),
        ("[ x^2 ] / 3", "", "found '3', expected 2 behind the /"),
        ("2 [ x^2 ]", "", "found '['"),
        ("[ 1e20 x^2 ]", "", "the coefficient of 'x' times 'x' is too large"),
        ("x", "1 <= [ x^2 ] <= 2", "a quadratic constraint has one side only"),
        ("x", "c: [ x^2 ] <= -inf", "wrong side of infinity"),
        ("x", "c: [ x^2 <= 3", "found '<=', expected +, - or ]"),
        (
            "x",
            "\nObjective 0 Priority 1\nObjective 1 Priority 0\n [ x ^ 2 ]",
            "only the main objective can be quadratic",
        ),
    ],
)
def test_faulty_brackets(env, tmp_path, objective, constraint, words):
    path = tmp_path / "faulty.lp"
    path.write_text("min %s\nst\n d: x <= 1\n %s\nEnd\n" % (objective, constraint))
    error = env.refused("read", path)
    assert error.code == 10012 and words in error.text and "line" in error.text


@pytest.mark.parametrize("name", ["primal1.mps", "qjh_quadobj.mps"])
def test_instances_end_at_their_reference(env, shared_data, reference, tmp_path, name):
    with env.read(shared_data / name) as model:
        model.write(tmp_path / "copy.lp")
        with env.read(tmp_path / "copy.lp") as copy:
            for either in (model, copy):
                either.optimize()
                assert either.get("ObjVal") == pytest.approx(float(reference[name]["objective"]), rel=1e-7)


def test_names_are_told_apart_from_those_of_rows(env, tmp_path):
    with env.new(lb=[0], ub=[1]) as model:
        model.update()
        for name in ("same", "R0", ""):
            model.add_row(name, "<", 1, [(0, 1.0)])
        for name in ("same", "", "OBJ"):
            model.add_quadratic_row(name, "<", 1, [], [(0, 0, 1.0)])
        model.add_row("QC1", "<", 1, [])
        model.update()
        for ending in (".mps", ".lp"):
            path = tmp_path / ("copy" + ending)
            text, warnings = write_text(env, model, path)
            assert len(warnings) == 1 and "quadratic constraints numbered" in warnings[0]
            with env.read(path) as copy:
                assert [row[0] for row in copy.quadratic_rows()] == ["QC0", "QC1_", "OBJ"]
                assert copy.get("Fingerprint") == model.get("Fingerprint")
                assert write_text(env, copy, path) == (text, [])
