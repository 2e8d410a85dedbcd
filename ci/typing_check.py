"""Runs mypy with the stub of the package installed over tests/typing and the examples: the mistakes of mistakes.py must
be found, each on its line, and nothing else."""

import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
MISTAKES = ROOT / "tests" / "typing" / "mistakes.py"
RIGHT = [ROOT / "tests" / "typing" / "everyday.py", *sorted((ROOT / "examples").glob("*.py"))]


def mypy(path, *options):
    """What mypy prints for a file, and the lines with which it finds fault."""
    command = [sys.executable, "-m", "mypy", "--no-error-summary", "--cache-dir=/dev/null", *options, str(path)]
    text = subprocess.run(command, stdout=subprocess.PIPE, text=True).stdout
    return text, {int(line) for line in re.findall(r"^\S+\.py:(\d+): error:", text, re.M)}


def main():
    text, found = mypy(MISTAKES, "--strict")
    lines = MISTAKES.read_text().splitlines()
    marked = {number for number, line in enumerate(lines, 1) if line.endswith("# mistake")}
    faults = ["%s:%d: this mistake isn't found" % (MISTAKES.name, number) for number in sorted(marked - found)]
    if found - marked:
        faults.append("%s: more than the mistakes is found:\n%s" % (MISTAKES.name, text))
    faults += filter(None, (mypy(path, "--check-untyped-defs", "--ignore-missing-imports")[0] for path in RIGHT))
    if faults:
        sys.exit("\n".join(faults))


if __name__ == "__main__":
    main()
