"""Model files with random damage: they are read or refused in order, and what was read can be written and read."""

import os
import random
import re

import pytest
from native import Environment, LibraryError
from test_model_files import FIXED, MPS
from test_written_model_files import LP_TEXT, MPS_TEXT, SEVERAL_LP, SEVERAL_MPS

COUNT = 10000 if "ZELVAN_SANITIZED" in os.environ else 2000
RANGES = "RANGES\n    RNG       c1        2.5          c3        -1\n"
BOUNDS = " UP BND       x         4\n FR BND       u\n SC BND       z         9\n LI BND       y         -3\n"
ALL_MPS = """NAME all of it
OBJSENSE
    MAX
OBJECTIVES
    o 2 1 0 0.1
    g -1 -0.5 1e-6 0
ROWS
 N o
 N g
 L a
 G b
 L qc
 E c
COLUMNS
    x o 1 a 2
    x g -1 qc 3
    M1 'MARKER' 'INTORG'
    y a 1 b 2
    M2 'MARKER' 'INTEND'
    s c 1
    n c 2
    w o 0
RHS
    RHS o -3 g 4
    RHS a 4 c -1
RANGES
    RNG a 2 b 3
    RNG c -1
BOUNDS
 UP BND x -1
 SC BND s 9
 SI BND n 4
 LO BND n 1
 FR BND w
 LI BND y -3
QUADOBJ
    x x 2 y -1
    y s 0.5
QCMATRIX qc
    x x 1
    x y 0.25
    y x 0.25
PWLOBJ
    w -1 0
    w 0 2
    w 0 3
    w 4 5
SOS
 S1 s1
    x 1
    y 2
 S2 s2
    s 1
    SOS w 3
ENDATA
"""
ALL_LP = """\
\\ Model name: all of it
Maximize
 o: 2 x + 3 y - z + [ 2 x ^ 2 - x*y + 3 y * z ] / 2 + 4
Subject To
 a: x + y + s + q >= 1
 b: -1 <= x + 2 z <= 8
 empty: = +0
 e2: +0 x <= 3
 q: x + [x^2 + 2 z*w] - 3 y <= 4 - [ y ^ 2 ]
Objective 0 Priority 2 Weight 1 AbsTol 0 RelTol 0.1
Objective 1 Priority -1 Weight -0.5 AbsTol 1e-6 RelTol 0
 g: x - w + 1
PWLObj
 w: (-1, 0) (0, 0) (0, 2) (2.5, 4)
Bounds
 x <= -1
 -inf <= y <= 4
 z = 3
 s <= 10
 w free
Generals
 y
Binaries
 q
Semi-Continuous
 s
SOS
 s1: S1 :: x:1 y:2
 s2: S2 :: s:1 w:2 q:3.5
End
"""
SOURCES = {
    ".mps": [
        ALL_MPS,
        MPS.format("OBJSENSE\n    MAX\n", RANGES, BOUNDS),
        FIXED,
        MPS_TEXT,
        SEVERAL_MPS,
        MPS_TEXT.replace("    x 1\n    s", "    SOS x 1\n    SOS s"),
    ],
    ".lp": [
        ALL_LP,
        LP_TEXT,
        SEVERAL_LP,
        LP_TEXT.replace("r2: -1 <=", "r2:").replace("  0 x", " obj: 1.5e-3 x\n\n +"),
        LP_TEXT.replace("\n", " \n "),
    ],
}
WORDS = re.findall(
    r"\S+",
    """0 1 -1 nan inf -infinity 1e400 1e-400 .5. 1e+ 0x1F +-3 -- : <= >= = < > + - * / ^ [ ] ( ) \\ -> $ ; "
    x r1 c1 c2 OBJ RHS BOUNDS ROWS COLUMNS RANGES ENDATA NAME OBJSENSE MAX QUADOBJ N L G E UP LO FX MI BV SI
    QSECTION QMATRIX QCMATRIX qc [x^2] ^2 ]/2 x*y [ -[
    'MARKER' 'INTORG' Minimize Subject To st Bounds Generals Binaries Semi-Continuous End free
    SOS S1 S2 SOS1 s2:: S1: x:1 SI LI PWLOBJ OBJECTIVES Objective Priority Weight XU UL TimeLimit Threads""",
) + ["\t", "\r", "\0", "\x1a", "\x7f", "\xe9", "\ufeff", ""]


def mutate(rng, text):
    """One to four changes of bytes, words or lines."""
    for _ in range(rng.randint(1, 4)):
        kind = rng.randrange(8)
        lines = text.split("\n")
        i, j = rng.randrange(len(lines)), rng.randrange(len(lines))
        if kind == 0:
            text = text[: rng.randrange(len(text) + 1)]
        elif kind == 1:
            at = rng.randrange(len(text) + 1)
            text = text[:at] + chr(rng.randrange(1, 256)) * rng.choice([1, 1, 2, 300]) + text[at + rng.randrange(3) :]
        elif kind == 2:
            lines[i], lines[j] = lines[j], lines[i]
        elif kind == 3:
            lines.insert(i, lines[j])
        elif kind == 4:
            del lines[min(i, j) : max(i, j)]
        elif kind == 5:
            words = lines[i].split(" ")
            words[rng.randrange(len(words))] = rng.choice(WORDS)
            lines[i] = " ".join(words)
        elif kind == 6:
            lines[i] += rng.choice(["", " ", "\n"]) + rng.choice(WORDS)
        else:
            lines[i] = lines[i].replace(" ", rng.choice(["", "\t", "   "]), rng.randint(1, 3))
        if kind >= 2:
            text = "\n".join(lines)
    return text


def unnamed(rows):
    """Of quadratic constraints; an MPS file lists linear terms by column."""
    return [(sense, rhs, sorted(linear), quadratic) for _, sense, rhs, linear, quadratic in rows]


@pytest.mark.parametrize("ending", [".mps", ".lp"])
def test_mutated_files(ending, tmp_path):
    env = Environment(UpdateMode=0, LogToConsole=0)
    rng = random.Random(20 + len(ending))
    path = tmp_path / ("mutated" + ending)
    accepted = 0
    for _ in range(COUNT):
        encoding = rng.choice(["utf-8", "utf-8", "latin-1"])
        path.write_bytes(mutate(rng, rng.choice(SOURCES[ending])).encode(encoding, "replace"))
        try:
            model = env.read(path)
        except LibraryError as error:
            assert error.code == 10012 and error.text.startswith("File '%s'" % path)
            continue
        accepted += 1
        with model:
            content = model.content()
            for other in (".mps", ".lp"):
                model.write(tmp_path / ("copy" + other))
                with env.read(tmp_path / ("copy" + other)) as copy:
                    assert [c[1:] for c in copy.content().columns] == [c[1:] for c in content.columns]
                    assert len(copy.content().rows) == len(content.rows)
                    assert copy.content().sets == content.sets
                    assert copy.content().quadratic == content.quadratic
                    assert unnamed(copy.content().quadratic_rows) == unnamed(content.quadratic_rows)
                    assert copy.get("Fingerprint") == model.get("Fingerprint")
    env.close()
    # Enough of both outcomes, or the test shows nothing.
    assert COUNT // 20 < accepted < COUNT * 19 // 20


DATA = {
    ".mst": "# MIP start\nx 1\ny y 2.5\nz 1e-3\n",
    ".sol": "# Objective value = 3\nx 1\ny y 2\nz 0\n",
    ".ord": "# Branching priorities\nx 1\nz -2\n",
    ".bas": "NAME\n XU x r\n UL z\nENDATA\n",
    ".prm": '# set\nTimeLimit 30\nResultFile "a b"\nThreads 1\nMIPGap 1e-3\n',
}


@pytest.mark.parametrize("ending", DATA)
def test_mutated_data_files(ending, tmp_path):
    env = Environment(UpdateMode=0, LogToConsole=0)
    rng = random.Random(30)
    path = tmp_path / ("mutated" + ending)
    accepted = 0
    with env.new() as model:
        model.add_columns([("x", "I", 0, 5, 1), ("y y", "C", 0, 9, -1), ("z", "C", 0, 4, 2)])
        model.update()
        for name, sense in (("r", "<"), ("q", ">")):
            model.add_row(name, sense, 2, [(0, 1), (2, 1)])
        for _ in range(COUNT // 2):
            encoding = rng.choice(["utf-8", "utf-8", "latin-1"])
            path.write_bytes(mutate(rng, DATA[ending]).encode(encoding, "replace"))
            try:
                model.read(path)
            except LibraryError as error:
                assert error.text.startswith("File '%s'" % path)
                continue
            accepted += 1
            model.update()
    env.close()
    assert COUNT // 40 < accepted < COUNT // 2 * 19 // 20
