"""Fixtures that several test files share."""

import contextlib
import csv
import os
import pathlib

import hypothesis
import pytest

# A shared machine stalls at times, and the sanitizers slow everything: no deadline, fewer examples there.
hypothesis.settings.register_profile("project", deadline=None)
hypothesis.settings.register_profile("sanitized", deadline=None, max_examples=25)
hypothesis.settings.load_profile("sanitized" if "ZELVAN_SANITIZED" in os.environ else "project")

ROOT = pathlib.Path(__file__).resolve().parent.parent


def find_shared_data():
    for folder in (ROOT, *ROOT.parents):
        if (folder / "shared" / "data" / "reference.csv").is_file():
            return folder / "shared" / "data"
    return None


SHARED_DATA = find_shared_data()


@pytest.fixture(scope="session")
def shared_data():
    """Folder of the collected real instances with reference.csv, beside or above the source tree."""
    if SHARED_DATA is None:
        pytest.skip("no folder shared/data above the source tree")
    return SHARED_DATA


@pytest.fixture(scope="session")
def reference(shared_data):
    """Rows of reference.csv by file name, each a dict of the columns' texts."""
    with open(shared_data / "reference.csv", newline="") as stream:
        return {row["file"]: row for row in csv.DictReader(stream)}


@pytest.fixture
def env_silent():
    """A started environment that prints nothing, closed after the test."""
    import zelvanpy

    env = zelvanpy.Env(empty=True)
    env.setParam("OutputFlag", 0)
    env.start()
    yield env
    env.close()


@pytest.fixture
def model(env_silent):
    """An empty model on a silent environment, disposed of after the test."""
    import zelvanpy

    m = zelvanpy.Model("", env_silent)
    yield m
    m.dispose()


LP_TEXT = """\\ Model name: small
Maximize
 obj: 3 x + 2 y + z
Subject To
 c1: x + y + z <= 6
 c2: x - y >= -2
Bounds
 x <= 3
 y <= 4
 1 <= z <= 10
Generals
 z
End
"""


@pytest.fixture
def lp(env_silent, tmp_path):
    """A model of three variables x, y, z and two constraints c1, c2, read from a file; disposed of after the test."""
    import zelvanpy

    path = tmp_path / "small.lp"
    path.write_text(LP_TEXT)
    m = zelvanpy.read(str(path), env_silent)
    yield m
    m.dispose()


@pytest.fixture
def env():
    """An environment of the C interface (native.py) that logs nothing to the console."""
    import native

    env = native.Environment(LogToConsole=0)
    yield env
    env.close()


@pytest.fixture
def make(env):
    """A function that makes models of the C interface on `env`; they are freed after the test."""
    with contextlib.ExitStack() as models:
        yield lambda *columns, **more: models.enter_context(env.new("test", *columns, **more))
