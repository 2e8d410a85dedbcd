"""The tour of the README and the examples of the pages of docs run and print what they say."""

import contextlib
import io
import pathlib
import re

import pytest

ROOT = pathlib.Path(__file__).resolve().parent.parent
PAGES = [ROOT / "README.md", *sorted((ROOT / "docs").glob("*.md"))]
EXAMPLE = r"```python\n(.*?)```\s+prints\s+```\n(.*?)```"


def examples(path):
    return re.findall(EXAMPLE, path.read_text(encoding="utf-8"), re.S)


@pytest.mark.parametrize("path", [path for path in PAGES if examples(path)], ids=lambda path: path.name)
def test_examples_print_what_the_page_says(path, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    for program, printed in examples(path):
        output = io.StringIO()
        with contextlib.redirect_stdout(output):
            exec(compile(program, path.name, "exec"), {"__name__": "tour"})
        assert output.getvalue() == printed


def test_tour_is_an_example():
    example = (ROOT / "examples" / "knapsack.py").read_text(encoding="utf-8")
    assert example.endswith('"""\n\n' + examples(ROOT / "README.md")[0][0])
