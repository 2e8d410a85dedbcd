"""A sudoku: binaries in a cube, digit k in row i and column j."""

import numpy as np

import zelvanpy as zp
from zelvanpy import ZVN

PUZZLE = """
53..7....
6..195...
.98....6.
8...6...3
4..8.3..1
7...2...6
.6....28.
...419..5
....8..79
"""


def solve(puzzle=PUZZLE):
    """The full board as an array of digits."""
    clues = np.array([[0 if c == "." else int(c) for c in line] for line in puzzle.split()])
    with zp.Env(params={"OutputFlag": 0}) as env, zp.Model("sudoku", env=env) as m:
        x = m.addMVar((9, 9, 9), vtype=ZVN.BINARY, name="x")
        for axis in range(3):  # one digit a cell, each digit once a column and once a row
            m.addConstr(x.sum(axis=axis) == 1)
        for i in range(0, 9, 3):
            for j in range(0, 9, 3):
                m.addConstr(x[i : i + 3, j : j + 3].sum(axis=(0, 1)) == 1)
        rows, columns = np.nonzero(clues)
        x[rows, columns, clues[rows, columns] - 1].LB = 1
        m.optimize()
        board = x.X.argmax(axis=2) + 1
    for line in board:
        print(*line)
    return board


if __name__ == "__main__":
    solve()
