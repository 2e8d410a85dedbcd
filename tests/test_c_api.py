"""The library driven by programs in C and C++, without Python in the process."""

import os
import pathlib
import shlex
import subprocess

import pytest
from native import PACKAGE

SOURCES = pathlib.Path(__file__).resolve().parent / "c_api"
HEADERS = SOURCES.parent.parent / "src" / "zelvan100" / "include"
WARNINGS = ("-Wall", "-Wextra", "-Wpedantic", "-Werror")
SANITIZED = "ZELVAN_SANITIZED" in os.environ


def clean_environment():
    """This process's environment without the preloaded runtime of the sanitizers; leaks of the program count."""
    env = {name: value for name, value in os.environ.items() if name not in ("LD_PRELOAD", "PYTHONMALLOC")}
    env["ASAN_OPTIONS"] = "detect_leaks=1"
    return env


def run(command):
    result = subprocess.run(
        command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, env=clean_environment()
    )
    assert result.returncode == 0, result.stdout
    return result.stdout


@pytest.mark.parametrize("source", ["solve.c", "refuse.c", "memory.cpp"])
def test_program(source, tmp_path):
    binary = tmp_path / "program"
    sanitize = ["-fsanitize=address,undefined", "-fno-sanitize-recover=undefined"] if SANITIZED else []
    run(
        [*compiler_of(source), *WARNINGS, "-g", *sanitize, "-I", str(HEADERS)]
        + [str(SOURCES / source), "-o", str(binary), "-L", str(PACKAGE), "-lzelvan100", "-lm"]
        + ["-Wl,-rpath," + str(PACKAGE), "-Wl,-rpath-link," + str(PACKAGE)]
    )
    assert run([str(binary), str(tmp_path)]) == ""


def compiler_of(source):
    if source.endswith(".cpp"):
        return [*shlex.split(os.environ.get("CXX") or "c++"), "-std=c++20"]
    return [*shlex.split(os.environ.get("CC") or "cc"), "-std=c11"]


def test_header_compiles_as_cxx(tmp_path):
    source = tmp_path / "header.cpp"
    source.write_text('#include "zelvan100.h"\nint main() { return ZVN_VERSION_MAJOR == 10 ? 0 : 1; }\n')
    run([*compiler_of(source.name), *WARNINGS, "-fsyntax-only", "-I", str(HEADERS), str(source)])
