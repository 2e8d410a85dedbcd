"""Model files as the library writes them: what comes back, names that a format can't hold, and files on disk."""

import ctypes
import dataclasses
import gzip
import os
import re
import stat
import subprocess
import sys

import pytest
from hypothesis import given
from hypothesis import strategies as st
from native import INFINITY, Content, Environment, LibraryError, lib
from test_model_files import FIXED, MPS, check_names, numbered, read_text, refuse, rows, write_text

INF = INFINITY


@pytest.fixture(scope="module")
def env():
    environment = Environment(UpdateMode=0, LogToConsole=1)
    yield environment
    environment.close()


numbers = st.one_of(
    st.sampled_from([0.0, 1.0, -1.0, 0.1, 1e-300, 5e-324, 1e15, 123456789.0, -2.5e19, 1 / 3]),
    st.integers(-20, 20).map(float),
    st.floats(-1e19, 1e19, allow_nan=False),
)
plain_names = st.from_regex(r"[a-df-zA-Z_][a-zA-Z0-9_\[\],.]{0,8}", fullmatch=True)
odd_names = st.one_of(
    plain_names, st.text(st.characters(blacklist_categories=["Cs"], blacklist_characters="\0"), max_size=9)
)
column_tails = st.tuples(
    st.sampled_from("CBISN"), st.one_of(st.just(-INF), numbers), st.one_of(st.just(INF), numbers), numbers
)
KEYWORDS = {"st", "min", "max", "bin", "gen", "gens", "int", "sin", "free", "inf", "nan", "semi", "sos", "end"}


@st.composite
def models(draw, names):
    count = draw(st.integers(0, 5))
    columns = [(draw(names), *draw(column_tails)) for _ in range(count)]
    columns = [(name, k, 0.0 if k == "B" else lb, 1.0 if k == "B" else ub, obj) for name, k, lb, ub, obj in columns]
    rows_ = []
    for _ in range(draw(st.integers(0, 5))):
        cols = draw(st.lists(st.integers(0, count - 1), unique=True)) if count else []
        entries = [(j, v) for j, v in ((j, draw(numbers)) for j in sorted(cols)) if v != 0.0]
        lower, upper = sorted([draw(numbers), draw(numbers)])
        rows_.append((draw(names), draw(st.sampled_from("<>=R")), upper, entries, lower))
    sets = []
    for _ in range(draw(st.integers(0, 2)) if count else 0):
        members = draw(st.lists(st.integers(0, count - 1), unique=True))
        sets.append((draw(st.sampled_from([1, 2])), [(j, draw(numbers)) for j in members]))
    head = [draw(odd_names), draw(st.sampled_from([1, -1])), draw(numbers)]
    quadratic = draw(products(count, draw(st.booleans())))
    quadratic_rows = []
    for _ in range(draw(st.integers(0, 2))):
        cols = draw(st.lists(st.integers(0, count - 1), unique=True)) if count else []
        entries = [(j, draw(numbers.filter(bool))) for j in sorted(cols)]
        terms = draw(products(count, draw(st.booleans())))
        quadratic_rows.append((draw(names), draw(st.sampled_from("<>=")), draw(numbers), entries, terms))
    return Content(*head, columns, rows_, sets, quadratic, quadratic_rows)


@st.composite
def products(draw, count, any_):
    """Quadratic terms as the store holds them, in a model of `count` columns."""
    if count == 0 or not any_:
        return []
    pairs = draw(st.lists(st.tuples(*[st.integers(0, count - 1)] * 2).map(lambda p: tuple(sorted(p))), unique=True))
    return [(*pair, draw(numbers.filter(bool))) for pair in pairs]


@st.composite
def objectives(draw, count):
    """The fields of several objectives, and piecewise-linear terms of some columns, in a model of `count` columns."""
    several = []
    for _ in range(draw(st.integers(0, 3))):
        tolerances = (draw(st.sampled_from([0.0, 1e-6, 0.1])), draw(st.sampled_from([0.0, 1e-9, 2.0])))
        entries = [(j, draw(numbers)) for j in sorted(draw(st.sets(st.integers(0, count - 1))))]
        fields = (draw(st.integers(-9, 9)), draw(numbers), *tolerances, draw(st.one_of(st.just(""), plain_names)))
        several.append((*fields, draw(numbers), entries))
    terms = {}
    for col in draw(st.sets(st.integers(0, count - 1), max_size=2)):
        xs = sorted(draw(st.sets(st.integers(-5, 5), min_size=2)))
        points = [(float(x), draw(numbers)) for x in xs]
        terms[col] = points + draw(st.sampled_from([[], [(points[-1][0], 7.5)]]))
    return several, terms


@given(st.data())
def test_written_objectives_come_back(env, tmp_path_factory, data):
    folder = tmp_path_factory.getbasetemp()
    content = data.draw(models(plain_names).filter(lambda c: c.columns))
    several, terms = data.draw(objectives(len(content.columns)))
    with build(env, content) as model:
        for index, fields in enumerate(several):
            model.set_objective_n(index, *fields)
        model.update()
        for col, points in terms.items():
            model.set_pwl(col, points)
        model.update()
        texts_, replaced = {}, False
        for ending in (".mps", ".lp"):
            path = folder / ("objectives" + ending)
            texts_[ending], warnings = write_text(env, model, path)
            replaced = replaced or bool(warnings)
            with env.read(path) as read_back:
                assert write_text(env, read_back, path) == (texts_[ending], [])
                assert read_back.get("NumObj") == max(1, len(several))
                assert read_back.get("NumPWLObjVars") == len(terms)
                other = write_text(env, read_back, folder / "other.lp")[0]
        # What the first format holds is all that the second one shows.
        assert replaced or other == texts_[".lp"]
        with env.read(folder / "objectives.mps") as read_back:
            read_back.write(folder / "other.lp")
            assert replaced or (folder / "other.lp").read_bytes() == texts_[".lp"]


SEVERAL_LP = """Minimize
 cost: x + 1
Subject To
 c: x + y >= 1
Objective 0 Priority 2 Weight 1 AbsTol 1e-06 RelTol 0
Objective 1 Priority 1 Weight -0.5 AbsTol 0 RelTol 0.1
 gain: 3 x - y - 4
Objective 2 Priority 0 Weight 1 AbsTol 1e-06 RelTol 0
  y
PWLObj
 y: (-1, 0) (0, 0) (2.5, 4)
End
"""
SEVERAL_MPS = """NAME
OBJECTIVES
    cost 2 1 1e-06 0
    gain 1 -0.5 0 0.1
    OBJ2 0 1 1e-06 0
ROWS
 N cost
 N gain
 N OBJ2
 G c
COLUMNS
    x cost 1
    x gain 3
    x c 1
    y gain -1
    y OBJ2 1
    y c 1
RHS
    RHS cost -1
    RHS gain 4
    RHS c 1
PWLOBJ
    y -1 0
    y 0 0
    y 2.5 4
ENDATA
"""


def test_several_objectives_in_files(env, tmp_path):
    for ending, text in ((".lp", SEVERAL_LP), (".mps", SEVERAL_MPS)):
        (tmp_path / ("several" + ending)).write_text(text)
        with env.read(tmp_path / ("several" + ending)) as model:
            assert write_text(env, model, tmp_path / "copy.lp")[0].decode() == SEVERAL_LP
            assert write_text(env, model, tmp_path / "copy.mps")[0].decode() == SEVERAL_MPS


@pytest.mark.parametrize(
    "ending, old, new, line, words",
    [
        (".lp", "Objective 1", "Objective 2", 6, "found '2', expected the next number"),
        (".lp", "Objective 0 ", "Objective 1 ", 5, "found '1', expected number 0"),
        (".lp", "Weight -0.5", "Size -0.5", 6, "found 'Size', expected Priority"),
        (".lp", "Priority 1", "Priority 1.5", 6, "Priority is out of range"),
        (".lp", "AbsTol 0", "AbsTol -1", 6, "AbsTol is out of range"),
        (".lp", "(2.5, 4)", "(-2.5, 4)", 11, "the point lies left of the point before it"),
        (".lp", "(2.5, 4)", "(2.5 4)", 11, "found '4', expected ','"),
        (".lp", " y: (", " z: (", 11, "found 'z', expected a variable"),
        (".lp", " y: (", " x: (", 11, "has a coefficient and a piecewise-linear term"),
        (".mps", "    cost 2 1", "    cost 2 x", 3, "'x' is not a number"),
        (".mps", "    gain 1 -0.5", "    cost 1 -0.5", 4, "objective 'cost' appears twice"),
        (".mps", "    OBJ2 0 1 ", "    c 0 1 ", 26, "'c' is no row of type N"),
        (".mps", "    cost 2 1", "    cost 2.5 1", 3, "'2.5' is out of range for Priority"),
        (".mps", "    y 0 0", "    y -1 1\n    y -1 2", 25, "the point is the third with the same x"),
        (".mps", "    y -1 0\n    y 0 0\n", "", 24, "has one point only"),
    ],
)
def test_faulty_objectives(env, tmp_path, ending, old, new, line, words):
    text = SEVERAL_LP if ending == ".lp" else SEVERAL_MPS
    assert old in text
    refuse(env, tmp_path / ("faulty" + ending), text.replace(old, new, 1), line, words)


def build(env, content):
    model = env.new()
    model.set("ModelName", content.name)
    model.call("ZVNsetintattr", b"ModelSense", content.sense)
    model.call("ZVNsetdblattr", b"ObjCon", ctypes.c_double(content.constant))
    model.add_columns(content.columns)
    model.update()
    for row in content.rows:
        model.add_row(*row)
    for kind, members in content.sets:
        model.add_set(kind, members)
    for row in content.quadratic_rows:
        model.add_quadratic_row(*row)
    if content.quadratic:
        costs = [(j, column[4]) for j, column in enumerate(content.columns)]
        model.set_objective(costs, content.quadratic, 0, content.constant)
    model.update()
    assert model.quadratic_terms() == content.quadratic
    return model


def check_writing(env, folder, content):
    with build(env, content) as model:
        built = model.content()
        texts_ = {}
        for ending in (".mps", ".lp", ".lp.gz"):
            path = folder / ("written" + ending)
            text, warnings = write_text(env, model, path)
            assert len(warnings) <= 1
            with env.read(path) as read_back:
                again = read_back.content()
                expected = settled(built, content)
                assert again.sense == expected.sense and again.constant == expected.constant
                assert again.name == expected.name or "name is left out" in warnings[0]
                check_names(expected, again, " ".join(warnings))
                assert numbered(again) == numbered(Content(again.name, *dataclass_tail(expected)))
                assert write_text(env, read_back, path) == (text, [])
                # Both sides of a range, which no attribute shows.
                texts_[ending] = write_text(env, read_back, folder / "sides.mps")[0] if warnings == [] else None
        assert texts_[".mps"] == texts_[".lp"] or None in texts_.values()


def dataclass_tail(content):
    return dataclasses.astuple(content)[1:]


def settled(built, content):
    """A range whose sides agree is read back as an equality."""
    rows_ = [
        (name, "=" if sense == "R" and source[2] == source[4] else sense, *rest)
        for (name, sense, *rest), source in zip(built.rows, content.rows)
    ]
    return dataclasses.replace(built, rows=rows_)


@given(models(plain_names))
def test_written_models_come_back(env, tmp_path_factory, content):
    check_writing(env, tmp_path_factory.getbasetemp(), content)


@given(models(odd_names))
def test_odd_names(env, tmp_path_factory, content):
    check_writing(env, tmp_path_factory.getbasetemp(), content)


def test_files_as_they_are(env, tmp_path):
    """The exact text, for the eye."""
    columns = [("x", "C", -1.0, 4.0, 0.0), ("b", "B", 0.0, 1.0, 2.0), ("k", "I", 0.0, INF, -1.0)]
    columns += [("s", "S", 0.0, 10.0, 0.0), ("n", "N", 1.0, INF, 0.0), ("f", "C", -INF, INF, 0.5)]
    content = Content("small one", -1, 3.0, columns, [("r1", "<", 4.0, [(0, 1.0), (1, -2.5)], 0.0)])
    content.rows += [("r2", "R", 7.0, [(4, 1.0), (5, 1.0)], -1.0), ("", "=", 0.1, [], 0.0)]
    content.sets += [(1, [(0, 1.0), (3, 2.0)]), (2, [(5, -1.0), (4, 0.5)])]
    with build(env, content) as model:
        assert write_text(env, model, tmp_path / "a.lp")[0].decode() == LP_TEXT
        assert write_text(env, model, tmp_path / "a.mps")[0].decode() == MPS_TEXT


LP_TEXT = """\\ Model name: small one
Maximize
  0 x + 2 b - k + 0 s + 0 n + 0.5 f + 3
Subject To
 r1: x - 2.5 b <= 4
 r2: -1 <= n + f <= 7
 R2: 0 x = 0.1
Bounds
 -1 <= x <= 4
 s <= 10
 n >= 1
 f free
Binaries
 b
Generals
 k n
Semi-Continuous
 s n
SOS
 SOS0: S1:: x:1 s:2
 SOS1: S2:: f:-1 n:0.5
End
"""
MPS_TEXT = """NAME small one
OBJSENSE
    MAX
ROWS
 N OBJ
 L r1
 L r2
 E R2
COLUMNS
    x r1 1
    b OBJ 2
    b r1 -2.5
    MARKER 'MARKER' 'INTORG'
    k OBJ -1
    MARKER 'MARKER' 'INTEND'
    s OBJ 0
    n r2 1
    f OBJ 0.5
    f r2 1
RHS
    RHS OBJ -3
    RHS r1 4
    RHS r2 7
    RHS R2 0.1
RANGES
    RNG r2 8
BOUNDS
 LO BND x -1
 UP BND x 4
 BV BND b
 PL BND k
 SC BND s 10
 SI BND n 1e+100
 LO BND n 1
 FR BND f
SOS
 S1 SOS0
    x 1
    s 2
 S2 SOS1
    f -1
    n 0.5
ENDATA
"""


@pytest.mark.parametrize(
    "lines",
    [
        " S1 a\n    x 1\n    SOS S1 2\n S2 2\n    SOS S1 2",
        " S1 SOS a\n    SOS x 1\n    SOS S1 2\n S2 SOS b 7\n    SOS S1 2",
        "s1 a 3\nx 1\nSOS S1 2\ns2 SOS\nSOS S1 2",
    ],
)
def test_sets_in_mps(env, tmp_path, lines):
    """In all shapes; a column named as a type is a member only behind another word."""
    text = MPS.format("", "", "").replace("    u  ", "    S1 ").replace("ENDATA", "SOS\n" + lines + "\nENDATA")
    sets = [(1, [(0, 1.0), (3, 2.0)]), (2, [(3, 2.0)])]
    assert read_text(env, tmp_path, ".mps", text).sets == sets
    with env.read(tmp_path / "model.mps") as model:
        for ending in (".mps", ".lp"):
            written, _ = write_text(env, model, tmp_path / ("copy" + ending))
            with env.read(tmp_path / ("copy" + ending)) as copy:
                assert copy.content().sets == sets
                assert write_text(env, copy, tmp_path / ("copy" + ending)) == (written, [])


def test_sets_in_fixed_form(env, tmp_path):
    lines = [" S1 SOS       one                5", "    SOS       COL A              3", "    B         4", "ENDATA"]
    content = read_text(env, tmp_path, ".mps", FIXED.replace("ENDATA", "SETS\n" + "\n".join(lines)))
    assert content.sets == [(1, [(0, 3.0), (1, 4.0)])]


def test_sets_in_lp(env, tmp_path):
    text = "min x + y + S1 + end\nst\nc: x >= 1\nsos\nS1:: x:1 S1 : -2\n y:+3\nend: s2:: end:1e1\n s1:2 a: S1::\nEnd\n"
    content = read_text(env, tmp_path, ".lp", text.replace("s1:2", "S1:2"))
    assert content.sets == [(1, [(0, 1.0), (2, -2.0), (1, 3.0)]), (2, [(3, 10.0), (2, 2.0)]), (1, [])]


def test_empty_rows_in_lp(env, tmp_path):
    text = "min x\nst\na: = +0\n - x >= 2\nb: <= 1 c: >= -inf\n\n d:\n x >= - 3\nEnd\n"
    expected = [("a", "=", 0, {}), ("R1", ">", 2, {"x": -1}), ("b", "<", 1, {}), ("c", ">", -INF, {})]
    assert rows(read_text(env, tmp_path, ".lp", text)) == [*expected, ("d", ">", -3, {"x": 1})]


def test_only_unsuitable_names_are_replaced(env, tmp_path):
    """A default name that another object has is lengthened; the first of several owners keeps a name."""
    names = ["a b", "C0", "C0_", "y", "y", "", "C5", "x-1"]
    columns = [(name, "C", 0.0, 1.0, j + 1.0) for j, name in enumerate(names)]
    with build(env, Content("", 1, 0.0, columns, [("row", ">", 1.0, [(1, 1.0)], 0.0)])) as model:
        for ending, last in ((".lp", "C7"), (".mps", "x-1")):
            path = tmp_path / ("names" + ending)
            _, warnings = write_text(env, model, path)
            assert re.search(r"%d variables numbered, because 'a b' can't be" % (4 - (ending == ".mps")), warnings[0])
            with env.read(path) as copy:
                found = [column[0] for column in copy.content().columns]
                assert found == ["C0__", "C0", "C0_", "y", "C4", "C5_", "C5", last]


def test_the_length_of_names(env, tmp_path):
    """That of the model too."""
    for text in ("NAME %s\nROWS\n N c\nCOLUMNS\nRHS\nENDATA\n", "\\ Model name: %s\nmin\nst\nEnd\n"):
        ending = ".mps" if "ROWS" in text else ".lp"
        assert read_text(env, tmp_path, ending, text % ("n" * 255)).name == "n" * 255
        refuse(env, tmp_path / ("long" + ending), text % ("n" * 256), 1, "is longer than 255 bytes")


@pytest.mark.parametrize(
    "ending, name, held",
    [
        (".mps", "a b", False),
        (".mps", "3x+y", True),
        (".mps", "'MARKER'", False),
        (".mps", "naïve", True),
        (".mps", "a\tb", False),
        (".lp", "a b", False),
        (".lp", "x[1,(2)]", True),
        (".lp", "x-1", False),
        (".lp", "2x", False),
        (".lp", ".x", False),
        (".lp", "e9", True),
        (".lp", "Inf", False),
        (".lp", "Bounds", False),
        (".lp", "subject", False),
        (".lp", "a:b", False),
        (".lp", "y", False),  # twice
    ],
)
def test_names_a_format_can_hold(env, tmp_path, ending, name, held):
    columns = [("y", "C", 0.0, 1.0, 1.0), (name, "C", 0.0, 1.0, 2.0)]
    with build(env, Content("", 1, 0.0, columns, [("row", ">", 1.0, [(1, 1.0)], 0.0)])) as model:
        path = tmp_path / ("names" + ending)
        _, warnings = write_text(env, model, path)
        with env.read(path) as read_back:
            names = [column[0] for column in read_back.content().columns]
            assert names == (["y", name] if held else ["y", "C1"])
            assert read_back.content().rows[0][0] == "row"
        assert len(warnings) == (0 if held else 1)


# --- the file system -------------------------------------------------------------------------------------------------


@pytest.fixture
def small(env):
    columns = [("x%d" % j, "C", 0.0, 1.0 + j / 7, 1.0) for j in range(300)]
    with build(env, Content("", 1, 0.0, columns, [])) as model:
        yield model


def test_unreadable_files(env, tmp_path):
    for path, reason in ((tmp_path / "none.lp", "No such file"), (tmp_path / "folder.lp", "Is a directory")):
        if path.name == "folder.lp":
            path.mkdir()
        with pytest.raises(LibraryError, match="'%s': %s" % (path, reason)) as caught:
            env.read(path)
        assert caught.value.code == 10012
    with pytest.raises(LibraryError, match="expected .mps or .lp"):
        env.read(tmp_path / "model.xyz")


def test_compressed_files(env, small, tmp_path):
    path = tmp_path / "model.lp.gz"
    small.write(path)
    packed = path.read_bytes()
    small.write(tmp_path / "model.lp")
    plain = (tmp_path / "model.lp").read_bytes()
    assert gzip.decompress(packed) == plain
    # Several parts, and a compressed file that doesn't say so.
    half = len(plain) // 2
    (tmp_path / "parts.lp").write_bytes(gzip.compress(plain[:half]) + gzip.compress(plain[half:]) + bytes(10))
    with env.read(tmp_path / "parts.lp") as model:
        assert model.content() == small.content()
    for damaged, reason in ((packed[:-20], "ends too early"), (packed[:40] + b"????" + packed[44:], "is damaged")):
        path.write_bytes(damaged)
        with pytest.raises(LibraryError, match="'%s': the compressed data %s" % (path, reason)):
            env.read(path)


def test_failed_writes_leave_the_file(env, small, tmp_path):
    with pytest.raises(LibraryError, match="No such file or directory") as caught:
        small.write(tmp_path / "missing" / "model.lp")
    assert caught.value.code == 10013
    (tmp_path / "folder.mps").mkdir()
    with pytest.raises(LibraryError, match="Is a directory"):
        small.write(tmp_path / "folder.mps")
    full = tmp_path / "full.lp"
    full.symlink_to("/dev/full")
    with pytest.raises(LibraryError, match="No space left on device"):
        small.write(full)
    assert stat.S_ISCHR(os.stat("/dev/full").st_mode)
    assert sorted(p.name for p in tmp_path.iterdir()) == ["folder.mps", "full.lp"]


LIMITED_WRITE = """
import resource, signal, sys
sys.path.insert(0, sys.argv[2])
from native import Environment, LibraryError
signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
with Environment(LogToConsole=0).new() as model:
    model.add_columns([("x%d" % j, "C", 0.0, 1.0, 1.0) for j in range(1000)])
    resource.setrlimit(resource.RLIMIT_FSIZE, (2000, resource.RLIM_INFINITY))
    try:
        model.write(sys.argv[1])
    except LibraryError as error:
        print(error.code, error.text)
"""


def test_disk_full_leaves_the_file(tmp_path):
    path = tmp_path / "model.lp"
    path.write_text("as it was")
    command = [sys.executable, "-c", LIMITED_WRITE, str(path), os.path.dirname(__file__)]
    result = subprocess.run(command, stdout=subprocess.PIPE, check=True)
    assert result.stdout.decode() == "10013 Unable to write file '%s': File too large\n" % path
    assert path.read_text() == "as it was"
    assert list(tmp_path.iterdir()) == [path]


def test_writing_keeps_permissions_and_links(small, tmp_path):
    path = tmp_path / "model.lp"
    small.write(path)
    mask = os.umask(0)
    os.umask(mask)
    assert stat.S_IMODE(path.stat().st_mode) == 0o666 & ~mask
    path.chmod(0o640)
    link = tmp_path / "link.lp"
    link.symlink_to(path)
    text = path.read_bytes()
    path.write_text("old")
    small.write(link)
    assert link.is_symlink() and path.read_bytes() == text
    assert stat.S_IMODE(path.stat().st_mode) == 0o640
    if os.geteuid() != 0:
        path.chmod(0o440)
        with pytest.raises(LibraryError, match="Permission denied"):
            small.write(path)


def test_a_dangling_link_is_written_through(small, tmp_path):
    (tmp_path / "folder").mkdir()
    for link, target in (("a.lp", "b.lp"), ("b.lp", "folder/c.lp"), ("d.lp", tmp_path / "e.lp"), ("f.lp", "f.lp")):
        (tmp_path / link).symlink_to(target)
    small.write(tmp_path / "a.lp")
    small.write(tmp_path / "d.lp")
    text = (tmp_path / "e.lp").read_bytes()
    assert (tmp_path / "folder" / "c.lp").read_bytes() == text and not (tmp_path / "folder" / "c.lp").is_symlink()
    assert all((tmp_path / link).is_symlink() for link in ("a.lp", "b.lp", "d.lp"))
    with pytest.raises(LibraryError, match="Too many levels of symbolic links"):
        small.write(tmp_path / "f.lp")


def test_capital_endings_and_byte_order_marks(env, small, tmp_path):
    for ending in (".MPS", ".LP.GZ", ".Lp", ".mps.Gz"):
        path = tmp_path / ("model" + ending)
        small.write(path)
        assert lib.ZVNismodelfile(str(path).encode()) and not lib.ZVNisattrfile(str(path).encode())
        data = path.read_bytes()
        packed = ending.lower().endswith(".gz")
        assert (data[:2] == b"\x1f\x8b") == packed
        marked = b"\xef\xbb\xbf" + (gzip.decompress(data) if packed else data)
        for content in (data, marked, gzip.compress(marked)):
            path.write_bytes(content)
            with env.read(path) as model:
                assert model.content() == small.content()


def test_unknown_endings(small, tmp_path):
    for path in (tmp_path / "model.xyz", tmp_path / "model"):
        for call in ("ZVNread", "ZVNwrite"):
            with pytest.raises(LibraryError) as caught:
                small.call(call, str(path).encode())
            assert caught.value.code == 10024
            assert ("'.xyz'" if path.suffix else "no ending") in caught.value.text
    assert list(tmp_path.iterdir()) == []
