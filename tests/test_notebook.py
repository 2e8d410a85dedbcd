"""What notebooks show, and what the package tells of itself."""

import os
import pathlib
import re

import nbclient
import nbformat

import zelvanpy
from zelvanpy import LinExpr, Model, QuadExpr, quicksum

ROOT = pathlib.Path(__file__).resolve().parent.parent


def test_html(env_silent):
    m = Model("<b> & $x$", env_silent)
    x, y = m.addVar(ub=3, obj=-1, name="x_1<$"), m.addVar(name="y")
    m.update()
    assert m._repr_html_() == (
        "<table><caption><code>&lt;b&gt; &amp; $x$</code></caption><tr><th>Sense</th><td>minimize</td></tr>"
        "<tr><th>Variables</th><td>2 (0 integer)</td></tr><tr><th>Constraints</th><td>0</td></tr>"
        "<tr><th>Nonzeros</th><td>0</td></tr><tr><th>Status</th><td>LOADED</td></tr></table>"
    )
    name = "<code>x_1&lt;$</code>"
    assert x._repr_html_() == name
    assert (2 * x - y - 0.5)._repr_html_() == "2 %s − <code>y</code> − 0.5" % name
    assert [e._repr_html_() for e in (LinExpr(), LinExpr(-3.0), -1 * x)] == ["0", "−3", "−" + name]
    c = m.addConstr(x + y <= 2, "c&")
    assert "Awaiting" in c._repr_html_()
    m.optimize()
    assert c._repr_html_() == "<code>c&amp;</code>: … ≤ 2"
    assert x._repr_html_() == name + " = 2"
    assert "<td>OPTIMAL</td></tr><tr><th>Objective</th><td>-2</td>" in m._repr_html_()
    assert (x >= y)._repr_html_() == "%s ≥ <code>y</code>" % name
    assert ((y == 1) >> (x <= 1e100))._repr_html_() == "(<code>y</code> = 1) ⇒ (%s ≤ ∞)" % name
    assert (x == [1, "<"])._repr_html_() == name + " = <code>[1, '&lt;']</code>"
    q = m.addConstr(3 * x * y - y * y + x <= 1.5, "q")
    m.update()
    assert q._repr_html_() == "<code>q</code>: … ≤ 1.5"
    assert (3 * x * y - y * y + x - 1)._repr_html_() == f"{name} + 3 {name} <code>y</code> − <code>y</code>² − 1"
    assert [e._repr_html_() for e in (QuadExpr(), QuadExpr(2.0), y * y <= 1)] == ["0", "2", "<code>y</code>² ≤ 1"]
    assert "<th>Quadratic constraints</th><td>1</td>" in m._repr_html_()
    squares = quicksum(v * v for v in [x] * 50) + y
    assert squares._repr_html_().count("<code>") == 30 and "… (21 more terms)" in squares._repr_html_()
    m.remove(q)
    many = quicksum(m.addVars(1000).values())
    for expr in (many, quicksum([many, 1.0])):
        m.update()
        assert expr._repr_html_().count("<code>") == 30 and "… (970 more terms)" in expr._repr_html_()
    assert "+ 1" in expr._repr_html_()
    m.dispose()
    assert m._repr_html_() == "<em>a freed model</em>"
    assert "Awaiting" in x._repr_html_() and "Awaiting" in many._repr_html_()


def test_a_notebook_shows_html():
    cells = [
        "import zelvanpy\nm = zelvanpy.Model('nb', zelvanpy.Env(params={'OutputFlag': 0}))",
        "x = m.addVar(name='a_b'); m.update(); m",
        "x",
        "2 * x + 1",
        "x <= 1",
    ]
    notebook = nbformat.v4.new_notebook(cells=[nbformat.v4.new_code_cell(source) for source in cells])
    path = str(pathlib.Path(zelvanpy._zelvanpy.__file__).parent.parent)
    nbclient.NotebookClient(notebook, kernel_name="python3").execute(env=dict(os.environ, PYTHONPATH=path))
    shown = [output["data"] for cell in notebook.cells[1:] for output in cell["outputs"]]
    assert all("text/plain" in data for data in shown)
    assert [data["text/html"][:22] for data in shown] == [
        "<table><caption><code>",
        "<code>a_b</code>",
        "2 <code>a_b</code> + 1",
        "<code>a_b</code> ≤ 1",
    ]


def test_the_package_tells_of_itself(capsys):
    version = re.search('^version = "(.*)"', (ROOT / "pyproject.toml").read_text(), re.M).group(1)
    assert zelvanpy.__version__ == version == "%d.%d.%d" % zelvanpy.zelvan.version()
    tour = re.search(r"\n\n(    import.*?)\n\n\S", zelvanpy.__doc__, re.S).group(1)
    exec("if True:\n" + tour, {})
    assert re.search(r"\n10\.0 \{'bread': 5\.0, 'milk': 0\.0\}\n", capsys.readouterr().out)
