"""Solving a small LP again after one change, against the same in highspy.

The other side runs in an environment of its own: ZELVAN_PEER_PYTHON names its Python, without which nothing is
measured. Each repeat makes the same changes on both sides in turn."""

import json
import os
import pathlib
import random
import subprocess
import time

import timing

import zelvanpy

SIZE, CHANGES, REPEATS = 50, 500, 41
MAX_RATIO = 1.05


def random_lp(rng):
    return {
        "costs": [-rng.uniform(1, 5) for _ in range(SIZE)],
        "rows": [[(j, rng.randint(1, 9)) for j in range(SIZE) if rng.random() < 0.3] for _ in range(SIZE)],
        "rhs": [rng.uniform(50, 200) for _ in range(SIZE)],
    }


def build(lp, env):
    model = zelvanpy.Model(env=env)
    x = model.addVars(SIZE, obj=lp["costs"])
    rows = [
        model.addConstr(zelvanpy.quicksum(coeff * x[j] for j, coeff in row) <= rhs)
        for row, rhs in zip(lp["rows"], lp["rhs"])
    ]
    model.optimize()
    return model, rows


def solve_changes(model, rows, changes):
    total, begin = 0.0, time.process_time()
    for row, rhs in changes:
        rows[row].RHS = rhs
        model.optimize()
        total += model.ObjVal
    return time.process_time() - begin, total


def main():
    python = os.environ.get("ZELVAN_PEER_PYTHON")
    if not python:
        return print("not measured: ZELVAN_PEER_PYTHON names no Python with highspy")
    rng = random.Random(5)
    lp = random_lp(rng)
    peer = subprocess.Popen(
        [python, str(pathlib.Path(__file__).with_name("peer_highspy.py"))],
        stdin=subprocess.PIPE,
        stdout=subprocess.PIPE,
        text=True,
    )
    print(json.dumps(lp), file=peer.stdin, flush=True)
    ours, theirs = [], []
    with zelvanpy.Env(params={"OutputFlag": 0}) as env:
        model, rows = build(lp, env)
        for _ in range(REPEATS):
            changes = [(i, lp["rhs"][i] * rng.uniform(0.9, 1.1)) for i in rng.choices(range(SIZE), k=CHANGES)]
            seconds, total = solve_changes(model, rows, changes)
            ours.append(seconds)
            print(json.dumps(changes), file=peer.stdin, flush=True)
            seconds, expected = json.loads(peer.stdout.readline())
            theirs.append(seconds)
            assert abs(total - expected) <= 1e-6 * abs(expected), (total, expected)
    peer.stdin.close()
    peer.wait()
    table = timing.Table("a %d x %d LP, solved again after each of %d changes" % (SIZE, SIZE, CHANGES))
    table.row("against highspy", timing.Ratio(ours, theirs), MAX_RATIO, per=CHANGES)


if __name__ == "__main__":
    main()
