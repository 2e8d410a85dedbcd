"""The other side of bench_peers.py, run by a Python that has highspy: builds the LP given on the first line of
standard input, then makes and solves the changes of each further line, and prints the processor seconds that took
and the sum of the optima."""

import json
import sys
import time

import highspy


def main():
    lp = json.loads(sys.stdin.readline())
    highs = highspy.Highs()
    highs.silent()
    x = [highs.addVariable(0, highspy.kHighsInf, obj=cost) for cost in lp["costs"]]
    for row, rhs in zip(lp["rows"], lp["rhs"]):
        highs.addConstr(sum(coeff * x[j] for j, coeff in row) <= rhs)
    highs.run()
    for line in sys.stdin:
        total, begin = 0.0, time.process_time()
        for row, rhs in json.loads(line):
            highs.changeRowBounds(row, -highspy.kHighsInf, rhs)
            highs.run()
            total += highs.getInfo().objective_function_value
        print(json.dumps([time.process_time() - begin, total]), flush=True)


if __name__ == "__main__":
    main()
