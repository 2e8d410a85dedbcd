"""Import of the package in fresh interpreters, against the import of the standard library modules it stands on."""

import subprocess
import sys

from timing import SHORT, Ratio, Table

STANDARD = (
    "import os, math, types, gc, itertools, re, dis, numbers, sys, operator, fnmatch, glob, inspect, logging, atexit\n"
    "from collections.abc import Iterable"
)


def import_seconds(statement):
    """Processor time of the statement in an interpreter that has imported nothing else."""
    script = f"import time\nstart = time.process_time()\n{statement}\nprint(time.process_time() - start)"
    return float(subprocess.run([sys.executable, "-c", script], check=True, capture_output=True, text=True).stdout)


table = Table("Import")
subject, baseline = [], []
for _ in range(2 if SHORT else 41):
    subject.append(import_seconds("import zelvanpy"))
    baseline.append(import_seconds(STANDARD))
table.row("import zelvanpy / standard library modules", Ratio(subject, baseline), bar=1.5)
