"""Checks an installed wheel in a bare environment: wheel_check.py DIST DATA.

DIST holds the wheel that was installed, DATA the models transport.mps and shifts.lp.
"""

import os
import pathlib
import subprocess
import sys

CARRIED = {
    "__init__.py",
    "__init__.pyi",
    "__main__.py",
    "py.typed",
    "libzelvan100.so",
    "libhighs.so",
    "libhighs_extras.so",
    "include/zelvan100.h",
    "licenses/AMD-LICENSE.txt",
    "licenses/HiGHS-LICENSE.txt",
    "licenses/HiGHS-THIRD-PARTY-NOTICES.md",
    "licenses/METIS-LICENSE.txt",
    "licenses/OpenBLAS-LICENSE.txt",
    "licenses/RCM-LICENSE.txt",
}
OBJECTIVES = {"transport.mps": 8945.0, "shifts.lp": 11905.0}


def check_contents(dist, package, version):
    (wheel,) = dist.iterdir()
    assert wheel.name.startswith("zelvanpy-%d.%d.%d-" % version), wheel
    missing = [name for name in CARRIED if not (package / name).is_file()]
    assert not missing, missing
    metadata = package.parent / ("zelvanpy-%d.%d.%d.dist-info" % version)
    assert list(metadata.glob("**/LICENSE")), "no licence in " + str(metadata)


def check_libraries(package):
    """The libraries in use are those that the wheel carries. HiGHS loads its extras when a method first needs them."""
    maps = pathlib.Path("/proc/self/maps").read_text()
    for name in ("libzelvan100.so", "libhighs.so", "libhighs_extras.so"):
        paths = {line.split()[-1] for line in maps.splitlines() if line.endswith("/" + name)}
        assert paths == {str(package / name)}, (name, paths)


def solve_quadratic_program(env):
    import zelvanpy

    with zelvanpy.Model(env=env) as model:
        model.Params.Method = 2
        x, y = model.addVar(), model.addVar()
        model.addConstr(x + y == 3)
        model.setObjective(x * x + 2 * y * y)
        model.optimize()
        assert model.Status == zelvanpy.ZVN.OPTIMAL and abs(model.ObjVal - 6.0) <= 1e-6


def main(dist, data):
    import zelvanpy

    assert "numpy" not in sys.modules and "scipy" not in sys.modules
    package = pathlib.Path(zelvanpy.__file__).parent
    check_contents(dist, package, zelvanpy.zelvan.version())
    with zelvanpy.Env(empty=True) as env:
        env.setParam("OutputFlag", 0)
        env.start()
        for name, objective in OBJECTIVES.items():
            with zelvanpy.read(str(data / name), env) as model:
                model.optimize()
                assert model.Status == zelvanpy.ZVN.OPTIMAL
                assert abs(model.ObjVal - objective) <= 1e-6 * objective, (name, model.ObjVal)
                assert len(model.getVars()) == model.NumVars
        solve_quadratic_program(env)
    check_libraries(package)
    command = [sys.executable, "-m", "zelvanpy", str(data / "shifts.lp"), "--write", "answer.json"]
    printed = subprocess.check_output(command, universal_newlines=True)
    assert "Objective: 11905" in printed and os.path.getsize("answer.json") > 0, printed
    print("wheel works on Python " + sys.version.split()[0])


main(pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]).resolve())
