"""Prints the paths of libhighs_extras.so, of the version that highsbox has, and of its notices: highs_extras.py FOLDER.

It is that of the package highspy-extras where that is installed. Else, as for the oldest interpreters, of which there
is no such package, the one for a later interpreter is fetched into FOLDER: the library uses no Python.
"""

import importlib.util
import os
import pathlib
import re
import subprocess
import sys
import zipfile

LATER_PYTHON = "3.11"


def highs_version():
    import highsbox

    header = pathlib.Path(highsbox.highs_dist_dir(), "include", "highs", "HConfig.h").read_text()
    return ".".join(
        re.search(r"HIGHS_VERSION_%s (\d+)" % part, header).group(1) for part in ("MAJOR", "MINOR", "PATCH")
    )


def fetch(version, folder):
    # In an isolated build the path of modules leaves out pip itself.
    environment = {name: value for name, value in os.environ.items() if name != "PYTHONPATH"}
    command = [sys.executable, "-m", "pip", "download", "--quiet", "--disable-pip-version-check", "--no-deps"]
    command += ["--only-binary=:all:", "--python-version", LATER_PYTHON, "--dest", str(folder)]
    subprocess.check_call(command + ["highspy-extras==" + version], env=environment, stdout=sys.stderr)
    (wheel,) = folder.glob("highspy_extras-%s-*.whl" % version)
    with zipfile.ZipFile(str(wheel)) as archive:
        archive.extractall(str(folder))
    return folder


def main(folder):
    version = highs_version()
    found = importlib.util.find_spec("highspy_extras")
    top = pathlib.Path(found.origin).parent.parent if found else folder
    if not found and not (top / "highspy_extras").is_dir():
        fetch(version, top)
    notices = top / ("highspy_extras-%s.dist-info" % version) / "licenses" / "THIRD_PARTY_NOTICES.md"
    if not notices.is_file():
        sys.exit("highspy-extras must have the version of HiGHS, " + version)
    print("%s;%s" % (top / "highspy_extras" / "libhighs_extras.so", notices))


main(pathlib.Path(sys.argv[1]))
