"""Containers against plain dicts and lists: sums over patterns, indices, products, iteration."""

import timing

import zelvanpy

SIDE = 100 if timing.SHORT else 1000


def dict_of_lists(keys):
    groups = {}
    for key in keys:
        field = key[1]
        if field in groups:
            groups[field].append(key)
        else:
            groups[field] = [key]
    return groups


def walk(iterable):
    for _ in iterable:
        pass


def walk_pairs(iterable):
    for _, _ in iterable:
        pass


def bench_sums(table, x, floats):
    """Both sides see the objects of one sum far apart in memory: keys are stored by their first field."""
    columns = [[floats[i, j] for i in range(SIDE)] for j in range(SIDE)]
    x.sum("*", 0)
    table.row(
        'x.sum("*", j), all j in turn',
        timing.compare(lambda: [x.sum("*", j) for j in range(SIDE)], lambda: [sum(c) for c in columns]),
        bar=2.5,
        per=SIDE,
    )
    table.row(
        'x.sum("*", j), one j again and again',
        timing.compare(lambda: x.sum("*", 7), lambda: sum(columns[7])),
        bar=2.5,
    )
    table.row("x.sum()", timing.compare(x.sum, lambda: sum(floats.values())))


def bench_index(table, x):
    keys = x.keys()

    def build():
        keys.clean()
        keys.select("*", 0)

    def first_sum():
        x.clean()
        x.sum("*", 0)

    table.row('first select("*", j)', timing.compare(build, lambda: dict_of_lists(keys)), bar=1.0)
    table.row('first sum("*", j), with the key list', timing.compare(first_sum, lambda: dict_of_lists(x)), bar=1.0)


def bench_products(table, x, floats):
    shared = dict.fromkeys(x, 0.5)
    equal = {(i, j): 0.5 for i in range(SIDE) for j in range(SIDE)}
    integers = dict.fromkeys(floats, 3)
    x.prod(shared)
    for name, coeffs in (("its own keys", shared), ("equal keys", equal), ("integers", integers)):
        table.row(
            "x.prod(coeffs), %s" % name,
            timing.compare(
                lambda: x.prod(coeffs), lambda: sum(coeffs[key] * value for key, value in floats.items()), number=1
            ),
            bar=2.0,
        )


def bench_iteration(table, x, plain):
    """values() and items() are lists, as are their baselines; a loop over dict's views makes no list at all."""
    x.keys()
    table.row("for k in t", timing.compare(lambda: walk(x), lambda: walk(plain)), bar=2.0)
    table.row("t.values()", timing.compare(x.values, lambda: list(plain.values())), bar=2.0)
    table.row("for v in t.values()", timing.compare(lambda: walk(x.values()), lambda: walk(plain.values())))
    table.row("t.items()", timing.compare(x.items, lambda: list(plain.items())), bar=2.0)
    table.row("for k, v in t.items()", timing.compare(lambda: walk_pairs(x.items()), lambda: walk_pairs(plain.items())))
    table.row(
        "for k, v in t.iteritems()",
        timing.compare(lambda: walk_pairs(x.iteritems()), lambda: walk_pairs(plain.items())),
    )


def main():
    model = zelvanpy.Model()
    x = model.addVars(SIDE, SIDE)
    floats = {(i, j): 0.25 * i + j for i in range(SIDE) for j in range(SIDE)}
    table = timing.Table("containers, %d x %d keys" % (SIDE, SIDE))
    bench_sums(table, x, floats)
    bench_index(table, x)
    bench_products(table, x, floats)
    bench_iteration(table, x, dict(x.items()))


if __name__ == "__main__":
    main()
