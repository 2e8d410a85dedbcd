"""The tour of the README runs and prints what the README says."""

import contextlib
import io
import pathlib
import re

ROOT = pathlib.Path(__file__).resolve().parent.parent


def test_tour(tmp_path, monkeypatch):
    text = (ROOT / "README.md").read_text(encoding="utf-8")
    program, printed = re.search(r"```python\n(.*?)```\s+prints\s+```\n(.*?)```", text, re.S).groups()
    example = (ROOT / "examples" / "knapsack.py").read_text(encoding="utf-8")
    assert example.endswith('"""\n\n' + program)
    monkeypatch.chdir(tmp_path)
    output = io.StringIO()
    with contextlib.redirect_stdout(output):
        exec(compile(program, "README.md", "exec"), {"__name__": "tour"})
    assert output.getvalue() == printed
