"""Ratios of a subject against a baseline, both timed in turn in the same run.

On a shared machine a time means nothing alone, and processor time still varies with the caches and the clock that
the neighbours leave. So subject and baseline alternate, and each repeat gives one ratio.
"""

import gc
import os
import statistics
import sys
import time

SHORT = os.environ.get("ZELVAN_BENCH_SHORT") == "1"


class Ratio:
    """Result of one comparison: `best` (ratio of the least times), `median`, `low` and `high` (quartiles of the
    ratios of the pairs), `subject` and `baseline` (the least times in seconds)."""

    def __init__(self, subject_times, baseline_times):
        pairs = sorted(s / b for s, b in zip(subject_times, baseline_times))
        self.subject = min(subject_times)
        self.baseline = min(baseline_times)
        self.best = self.subject / self.baseline
        self.median = statistics.median(pairs)
        self.low = pairs[len(pairs) // 4]
        self.high = pairs[(3 * len(pairs)) // 4]


def seconds(function, clock=time.process_time, number=1):
    """Time of one of `number` calls in a row, with the cyclic collector off."""
    collecting = gc.isenabled()
    gc.disable()
    try:
        start = clock()
        for _ in range(number):
            function()
        return (clock() - start) / number
    finally:
        if collecting:
            gc.enable()


def calls_per_repeat(function, at_least=0.02, clock=time.process_time):
    """How many calls of `function` fill `at_least` seconds, so that the clock's step doesn't show."""
    number = 1
    while True:
        taken = seconds(function, clock, number) * number
        if taken >= at_least:
            return number
        number = max(2 * number, int(number * at_least / max(taken, 1e-9)))


def compare(subject, baseline, repeats=11, number=None, clock=time.process_time):
    """Time two functions without arguments in turn and return their `Ratio`.

    `number` is the count of calls in one repeat, for both; by default each gets its own, so that a repeat takes at
    least 20 ms. With ZELVAN_BENCH_SHORT=1 in the environment two repeats of few calls are made: a smoke check.
    """
    if SHORT:
        repeats = 2
    at_least = 0.001 if SHORT else 0.02
    subject_number = number or calls_per_repeat(subject, at_least, clock)
    baseline_number = number or calls_per_repeat(baseline, at_least, clock)
    subject_times, baseline_times = [], []
    for _ in range(repeats):
        subject_times.append(seconds(subject, clock, subject_number))
        baseline_times.append(seconds(baseline, clock, baseline_number))
    return Ratio(subject_times, baseline_times)


class Table:
    """Prints one row per comparison as it comes: name, median ratio, quartiles, best ratio, times, bar, verdict."""

    def __init__(self, title):
        print(title)
        print("%-52s %8s %17s %8s %11s %11s %7s" % ("", "median", "quartiles", "best", "subject", "baseline", "bar"))

    def row(self, name, ratio, bar=None, per=1):
        """Print `ratio` (a `Ratio`) under `name`; `bar` is the highest ratio wanted, `per` divides the times shown.

        The lower of median and best ratio is held against the bar: noise only ever adds time.
        """
        within = bar is None or min(ratio.median, ratio.best) <= bar
        verdict = "" if bar is None else "ok" if within else "OVER"
        print(
            "%-52s %8.3f  [%6.3f, %6.3f] %8.3f %11s %11s %7s %s"
            % (
                name,
                ratio.median,
                ratio.low,
                ratio.high,
                ratio.best,
                duration(ratio.subject / per),
                duration(ratio.baseline / per),
                "-" if bar is None else "%g" % bar,
                verdict,
            )
        )
        sys.stdout.flush()
        return ratio

    def note(self, name, value, bar=None, unit=""):
        """Print a single figure that is no ratio (bytes, growth exponent) against the highest value wanted."""
        within = bar is None or value <= bar
        verdict = "" if bar is None else "ok" if within else "OVER"
        print("%-52s %8.4g %s %s %s" % (name, value, unit, "" if bar is None else "(at most %g)" % bar, verdict))
        sys.stdout.flush()
        return value


def duration(value):
    """A time in seconds as text with a fitting unit."""
    for limit, factor, unit in ((1e-6, 1e9, "ns"), (1e-3, 1e6, "us"), (1.0, 1e3, "ms")):
        if value < limit:
            return "%.1f %s" % (value * factor, unit)
    return "%.3f s" % value
