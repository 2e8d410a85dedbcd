"""Parameter reads, against an attribute read through a `__getattr__` written in Python."""

from functools import partial

from timing import Table, compare

import zelvanpy


class Yardstick:
    def __init__(self):
        self.__dict__["values"] = {"MIPGap": 1e-4, "Threads": 0, "LogFile": ""}

    def __getattr__(self, name):
        return self.values[name]


def reader(source, name):
    """A function of 1000 reads from `source`, an expression over the local `o`."""
    scope = {}
    body = "; ".join([f"{source}.{name}"] * 100)
    exec(f"def read(o):\n    for _ in range(10):\n        {body}", scope)
    return scope["read"]


env = zelvanpy.Env(params={"OutputFlag": 0})
model = zelvanpy.Model(env=env)
yardstick = Yardstick()
table = Table("Parameters, per read")
for name in ("MIPGap", "Threads", "LogFile"):
    subject, baseline = reader("o.Params", name), reader("o", name)
    ratio = compare(partial(subject, model), partial(baseline, yardstick))
    table.row(f"model.Params.{name} / Python __getattr__", ratio, bar=1.0, per=1000)
