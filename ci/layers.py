"""Holds the units of the module to the layers that CONTRIBUTING.md lists, and free of include cycles."""

import fnmatch
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
SOURCES = ROOT / "src" / "zelvanpy"


def read_layers():
    text = (ROOT / "CONTRIBUTING.md").read_text()
    block = re.search(r"```layers\n(.*?)```", text, re.S).group(1)
    return {pattern: number for number, line in enumerate(block.splitlines()) for pattern in line.split()}


def layer_of(unit, layers):
    fitting = [pattern for pattern in layers if fnmatch.fnmatchcase(unit, pattern)]
    return layers[max(fitting, key=len)] if fitting else None


def read_includes():
    """Each unit with the units whose headers it includes."""
    includes = {}
    for path in sorted(SOURCES.glob("*.[ch]*")):
        names = re.findall(r'^#include "(\w+)\.h"', path.read_text(), re.M)
        units = {name for name in names if (SOURCES / (name + ".h")).exists()}
        includes.setdefault(path.stem, set()).update(units - {path.stem})
    return includes


def find_cycle(includes):
    """Units that include each other in turn, or an empty list."""
    done = set()

    def visit(unit, road):
        if unit in road:
            return road[road.index(unit) :] + [unit]
        if unit in done:
            return []
        for other in sorted(includes[unit]):
            cycle = visit(other, road + [unit])
            if cycle:
                return cycle
        done.add(unit)
        return []

    return next(filter(None, (visit(unit, []) for unit in includes)), [])


def main():
    layers, includes = read_layers(), read_includes()
    layer = {unit: layer_of(unit, layers) for unit in includes}
    faults = ["%s has no layer in CONTRIBUTING.md" % unit for unit in includes if layer[unit] is None]
    if not faults:
        faults = [
            "%s includes %s.h of a layer below its own in the list" % (unit, other)
            for unit in includes
            for other in sorted(includes[unit])
            if layer[other] > layer[unit]
        ]
    cycle = find_cycle(includes)
    if cycle:
        faults.append("include cycle: " + " -> ".join(cycle))
    for fault in faults:
        print(fault, file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
