"""tupledict and multidict against a model of their rules in plain Python, and with variables."""

import copy
import gc
import json
import pickle
import sys
import weakref

import hypothesis.strategies as st
import pytest
from hypothesis import settings
from hypothesis.stateful import RuleBasedStateMachine, initialize, rule
from test_tuplelist import FIELDS, PATTERNS, PlainTupleList, outcome

from zelvanpy import LinExpr, multidict, quicksum, tupledict, tuplelist


class PlainTupleDict(dict):
    """The rules, one by one and without regard to speed."""

    def __init__(self, *args):
        super().__init__(*args)
        self.wild, self.pos, self.cached = "*", {}, None

    def clean(self):
        self.cached = None

    def keys(self):
        if not self.cached:
            self.cached = PlainTupleList(dict.keys(self), self.wild)
            self.cached.sort(key=lambda k: self.pos.get(k, len(self.pos)))
        return self.cached

    def setord(self, ord):
        self.pos = {ord[k]: k for k in range(len(ord))}

    def __setitem__(self, key, value):
        super().__setitem__(key, value)
        self.pos[key] = len(self.pos)
        self.clean()

    def __delitem__(self, key):
        super().__delitem__(key)
        self.clean()

    def clear(self):
        super().clear()
        self.clean()

    def pop(self, *args):
        value = super().pop(*args)
        self.clean()
        return value

    def popitem(self):
        pair = super().popitem()
        self.clean()
        return pair

    def update(self, other):
        super().update(other)
        self.clean()

    def setdefault(self, key, value):
        if key not in self:
            self.clean()
        return super().setdefault(key, value)

    def iteritems(self, *vals):
        return ((k, self[k]) for k in self.keys().select(*vals))

    def items(self, *vals):
        return list(self.iteritems(*vals))

    def values(self):
        return [v for _, v in self.iteritems()]

    def select(self, *vals):
        return [v for _, v in self.iteritems(*vals)]

    def subset(self, *vals):
        d = PlainTupleDict(self.iteritems(*vals))
        d.setord(self.keys().select(*vals))
        d.wild = self.wild
        return d

    def sum(self, *vals):
        return sum(self.select(*vals), 0.0)

    def prod(self, d, *vals):
        if isinstance(d, dict):
            if not vals and len(d) < len(self):
                return sum((v * self[k] for k, v in d.items() if k in self), 0.0)
            return sum((d[k] * v for k, v in self.iteritems(*vals) if k in d), 0.0)
        if isinstance(d, list) and not vals:
            try:
                return sum((v * self[i] for i, v in enumerate(d) if i in self), 0.0)
            except Exception:
                raise TypeError("Invalid tupledict.prod argument") from None
        raise TypeError("tupledict.prod requires a dictionary")


def number(result):
    return result.getConstant() if isinstance(result, LinExpr) else result


PAIR_KEYS = st.tuples(st.sampled_from([0, 1, "a"]), st.sampled_from([0, 1, "*"]))
KEYS = st.one_of(PAIR_KEYS, PAIR_KEYS, PAIR_KEYS, PAIR_KEYS, FIELDS)
NUMBERS = st.floats(-4, 4)
DICTS = st.dictionaries(PAIR_KEYS, NUMBERS, max_size=6)


class Dicts(RuleBasedStateMachine):
    @initialize(data=DICTS)
    def start(self, data):
        self.real, self.plain = tupledict(data), PlainTupleDict(data)

    def both(self, name, *args):
        assert outcome(getattr(self.real, name), *args) == outcome(getattr(self.plain, name), *args), name
        assert dict.items(self.real) == dict.items(self.plain)

    @rule(key=KEYS, value=NUMBERS)
    def assign(self, key, value):
        self.both("__setitem__", key, value)

    @rule(name=st.sampled_from(["__delitem__", "pop"]), key=KEYS)
    def leave(self, name, key):
        self.both(name, key)

    @rule(key=KEYS, value=NUMBERS)
    def leave_or(self, key, value):
        self.both("pop", key, value)

    @rule(name=st.sampled_from(["popitem", "clear", "clean"]))
    def whole(self, name):
        self.both(name)

    @rule(name=st.sampled_from(["update", "setord"]), other=DICTS, keys=st.booleans())
    def take_over(self, name, other, keys):
        self.both(name, list(other) if name == "setord" else other)

    @rule(reverse=st.booleans(), count=st.integers(0, 8))
    def reorder(self, reverse, count):
        order = list(dict.keys(self.plain))[:count]
        self.both("setord", order[::-1] if reverse else order)

    @rule(key=KEYS, value=NUMBERS)
    def default(self, key, value):
        self.both("setdefault", key, value)

    @rule(wild=st.sampled_from(["*", 0, "any"]))
    def wildcard(self, wild):
        self.real.wild = self.plain.wild = wild

    @rule()
    def order(self):
        ours, theirs = outcome(self.real.keys), outcome(self.plain.keys)
        assert ours == theirs
        if type(theirs) is PlainTupleList:
            assert type(ours) is tuplelist
            assert (self.real.keys() is ours) == (self.plain.keys() is theirs)
            assert list(self.real) == list(self.real.iterkeys()) == theirs
            assert list(self.real.itervalues()) == self.real.values() == self.plain.values()
            assert self.real.items() == self.plain.items()

    @rule(vals=PATTERNS)
    def read(self, vals):
        self.both("select", *vals)
        assert outcome(lambda: list(self.real.iteritems(*vals))) == outcome(self.plain.items, *vals)
        assert number(outcome(self.real.sum, *vals)) == outcome(self.plain.sum, *vals)
        ours, theirs = outcome(self.real.subset, *vals), outcome(self.plain.subset, *vals)
        assert ours == theirs
        if type(theirs) is PlainTupleDict:
            assert (ours.keys(), ours.wild) == (theirs.keys(), theirs.wild)

    @rule(d=st.one_of(DICTS, st.lists(NUMBERS, max_size=3), st.sampled_from([5, None, ["x"]])), vals=PATTERNS)
    def multiply(self, d, vals):
        for pattern in ((), vals):
            assert number(outcome(self.real.prod, d, *pattern)) == outcome(self.plain.prod, d, *pattern)


TestDicts = Dicts.TestCase
TestDicts.settings = settings(max_examples=100, stateful_step_count=30, deadline=None)


@pytest.fixture
def x(model):
    """Variables under the keys (0, 0) to (2, 3)."""
    return model.addVars(3, 4, name="x")


def terms(e):
    return [(e.getCoeff(i), e.getVar(i)) for i in range(e.size())]


def test_sums_of_variables_agree_with_quicksum(x):
    assert list(x) == [(i, j) for i in range(3) for j in range(4)] == x.keys()
    for pattern in ((), ("*", 2), (1,), ([2, 0], [3, 3]), (5, "*")):
        total = x.sum(*pattern)
        assert type(total) is LinExpr and terms(total) == terms(quicksum(x.select(*pattern)))
    assert terms(quicksum(x)) == terms(x.sum())
    coeffs = {(i, j): i - 0.5 * j for i in range(-1, 3) for j in range(4)}
    for pattern in ((), ("*", 2), ([1, 2], 0)):
        total = quicksum(coeffs[k] * v for k, v in x.iteritems(*pattern))
        assert terms(x.prod(coeffs, *pattern)) == terms(x.prod(d=coeffs) if not pattern else total) == terms(total)
    assert terms(x.prod({(2, 1): 3, (9, 9): 1, (0, 0): True})) == [(3.0, x[2, 1]), (1.0, x[0, 0])]


class Foreign:
    """A value that no expression knows: it takes sums over by its reflected operators."""

    def __init__(self, parts=()):
        self.parts = list(parts)

    def __radd__(self, left):
        return Foreign([left, *self.parts])

    def __add__(self, right):
        return Foreign([*self.parts, right])

    def __rmul__(self, left):
        return Foreign([left])


def test_sums_of_mixed_values(x):
    a, b = x[0, 0], x[0, 1]
    t = tupledict({0: a, 1: 2.5, 2: a + b + 1, 3: 4, 4: Foreign("f"), 5: b})
    linear, foreign = t.sum([0, 1, 2, 3]), t.sum()
    assert linear.getConstant() == 7.5 and terms(linear) == [(1.0, a), (1.0, a), (1.0, b)]
    assert terms(foreign.parts[0]) == terms(linear) and foreign.parts[1:] == ["f", b]
    product = t.prod([2, 2, 2, 2, 3])
    assert product.parts[0].getConstant() == 15.0 and product.parts[1:] == [3]
    assert terms(t.prod({0: float("inf"), 5: -1})) == [(float("inf"), a), (-1.0, b)]
    del t[4]
    t[6] = float("nan")
    for reading in (t.sum, lambda: t.prod({6: 1.0})):
        with pytest.raises(Exception, match="Constant is Nan"):
            reading()
    with pytest.raises(TypeError, match="Invalid tupledict.prod argument"):
        t.prod([1.0, "a", None])
    for arguments in (([1.0], "*"), (5,), ((1.0,),)):
        with pytest.raises(TypeError, match="tupledict.prod requires a dictionary"):
            t.prod(*arguments)
    with pytest.raises(TypeError):
        t.prod()
    with pytest.raises(TypeError):
        t.sum(pattern=1)


def test_changes_by_any_road_are_seen(x):
    def state(t):
        return list(t), [t.sum(*p) for p in ((), (0,), ("*", 1))], t.values(), t.items()

    def expected(t):
        return list(dict.items(t))

    roads = [
        lambda t: t.__setitem__((0, 1), 7.0),
        lambda t: t.__delitem__((0, 1)),
        lambda t: t.setdefault((0, 9), 7.0),
        lambda t: t.update({(0, 1): 8.0, (5, 1): 9.0}),
        lambda t: dict.__setitem__(t, (0, 1), 10.0),
        lambda t: dict.__setitem__(t, (8, 1), 11.0),
        lambda t: dict.update(t, {(0, 0): 12.0}),
        lambda t: dict.pop(t, (0, 0)),
        lambda t: dict.popitem(t),
        lambda t: dict.clear(t),
    ]
    if hasattr(dict, "__ior__"):
        roads.append(lambda t: t.__ior__({(0, 1): 13.0, (6, 1): 14.0}))
    for road in roads:
        t = tupledict({(i, j): 10.0 * i + j for i in range(2) for j in range(3)})
        state(t)
        road(t)
        for pattern in ((), (0,), ("*", 1)):
            matching = [v for k, v in t.items() if all(p in ("*", f) for p, f in zip(pattern, k))]
            assert t.sum(*pattern).getConstant() == sum(matching) and t.select(*pattern) == matching
        assert sorted(t.items()) == sorted(expected(t))


def test_order_of_keys():
    t = tupledict({1: "a"})
    t[2] = "b"
    assert t.keys() == [2, 1] and t.items() == [(2, "b"), (1, "a")] and repr(t) == "{1: 'a', 2: 'b'}"
    t.setord([1, 2])
    assert list(t) == [2, 1]
    t.clean()
    assert list(t) == [1, 2]
    for i in "efd":
        t[i] = i
    t[1] = "again"
    assert list(t) == [2, "e", "f", "d", 1]
    assert tupledict().keys() is not tupledict().keys() and tupledict().select() == []
    assert tupledict().sum().size() == 0 and list(tupledict.fromkeys("cab")) == ["c", "a", "b"]
    with pytest.raises(TypeError):
        t.setord([[]])
    with pytest.raises(TypeError):
        t.setord(5)
    assert list(t) == [2, "e", "f", "d", 1]
    t[1, 2] = "pair"
    for reading in (t.keys, t.sum, t.items, lambda: list(t), lambda: t.select("*")):
        with pytest.raises(ValueError, match="Cannot mix"):
            reading()
    assert t.pop((1, 2)) == "pair" and len(t) == 5 and t.keys()
    for arguments in ((), ([],), (9,), (1, 2, 3)):
        assert outcome(t.pop, *arguments)[0] is outcome(dict.pop, {1: 1}, *arguments)[0]
    with pytest.raises(TypeError):
        t.update(a=1)
    watched = tupledict()
    watched[Meddler(lambda: None)] = 1
    with pytest.raises(TypeError, match="unhashable"):
        watched.pop([])
    watched.setord(ord=[])
    assert watched.values() == [1]


def test_wildcard_is_taken_up_with_the_next_key_list():
    t = tupledict({("*", 1): 1, (2, 2): 2})
    assert t.select("*", 1) == [1] and t.select("any", 1) == []
    t.wild = "any"
    assert t.select("any", 2) == []
    t.clean()
    assert t.select("any", 2) == [2] and t.select("*") == [1] and t.subset(2).wild == "any"
    with pytest.raises(TypeError):
        del t.wild


def test_iterators_are_lazy():
    t = tupledict({1: "a"})
    keys, values, items = iter(t), t.itervalues(), t.iteritems([1, 2])
    t[2] = "b"
    assert [next(keys), next(values), next(items)] == [2, "b", (1, "a")]
    del t[1]
    assert next(keys) == 1 and list(keys) == []
    with pytest.raises(KeyError):
        next(values)
    assert list(values) == []
    t.keys().append(99)
    assert list(t) == [2, 99]
    with pytest.raises(KeyError, match="99"):
        t.values()
    shared = t.keys().select(2)
    shared.append(2)
    assert t.select(2) == ["b", "b"]
    t.clean()
    assert list(t) == [2]


class Watched(tupledict):
    """A Python subclass that replaces what the class calls on itself."""

    def keys(self):
        return tuplelist(sorted(dict.keys(self)), self.wild)

    def __getitem__(self, key):
        return 2 * super().__getitem__(key)


class Named(tupledict):
    def __init__(self, name, *args):
        super().__init__(*args)
        self.name = name


def test_as_a_dict(x):
    t = Named("costs", {(2, 1): 1.5, (1, 1): 2.5})
    t[0, 0] = 3.5
    assert isinstance(t, dict) and t == {(0, 0): 3.5, (1, 1): 2.5, (2, 1): 1.5} and len({**tupledict(a=1)}) == 1
    assert json.dumps(tupledict(b=1, a=[])) == '{"b": 1, "a": []}' and t.sum(1).getConstant() == 2.5
    with pytest.raises(TypeError):
        hash(t)
    copies = [pickle.loads(pickle.dumps(t, protocol)) for protocol in range(2, pickle.HIGHEST_PROTOCOL + 1)]
    for c in [*copies, copy.copy(t), copy.deepcopy(t)]:
        assert type(c) is Named and c == t and c.name == "costs" and list(c) == list(t)
    for protocol in (0, 1):
        c = pickle.loads(pickle.dumps(t, protocol))
        assert type(c) is Named and c == t and c.name == "costs"
    assert type(t.subset("*", 1)) is tupledict and dict(t) == t

    w = Watched({(1, 1): 1.0, (0, 1): 2.0})
    assert list(w) == [(0, 1), (1, 1)] and w.items() == [((0, 1), 4.0), ((1, 1), 2.0)]
    assert w.select() == w.values() == [4.0, 2.0] and w.sum("*", 1).getConstant() == 6.0
    assert w.prod({(1, 1): 3.0}).getConstant() == 6.0 and w.subset(0) == {(0, 1): 4.0}


def test_multidict():
    keys, costs, names = multidict({("a", 1): [1, "x", 9], ("b", 2): (2, "y")})
    assert type(keys) is tuplelist and keys == [("a", 1), ("b", 2)] and keys.select("*", 2) == [("b", 2)]
    assert type(costs) is tupledict and costs == {("a", 1): 1, ("b", 2): 2} and names.select("b") == ["y"]
    keys, same = multidict({"a": 1, "b": [2]})
    assert keys == ["a", "b"] and type(same) is tupledict and same == {"a": 1, "b": [2]}
    assert multidict({}) == [[]] and multidict([("k", "xy")]) == [["k"], {"k": "x"}, {"k": "y"}]
    assert multidict(data={1: 2}) == [[1], {1: 2}]
    ordered = tupledict({1: [10], 2: [20]})
    ordered.setord([2, 1])
    assert list(multidict(ordered)[1]) == [2, 1]
    with pytest.raises(ValueError, match="same length"):
        multidict({(1,): [1], (1, 2): [2]})
    with pytest.raises(TypeError):
        multidict(5)

    def broken():
        yield 1
        raise OSError("broken")

    with pytest.raises(OSError):
        multidict({1: broken()})


class Meddler:
    """A key that changes the dict which is being searched for it."""

    def __init__(self, act):
        self.act = act

    def __hash__(self):
        return 1

    def __eq__(self, other):
        self.act()
        return self is other


def test_keys_that_change_the_dict_while_it_is_read():
    for act in ("clear", "clean", "popitem", "keys"):
        for reading in ("values", "items", "sum", "select", "subset", "keys", "iterate"):
            t = tupledict()
            keys = [Meddler(lambda: None) for _ in range(4)]
            for i, key in enumerate(keys):
                t[key, i % 2] = float(i)
            t[keys[0], 0] = 5.0  # numbers instead of ranks from here on
            list(t), t.sum("*", 1)
            coeffs = {(Meddler(lambda: None), 0): 1.0, **dict.fromkeys(dict.keys(t), 1.0)}
            for key in keys:
                key.act = lambda: len(t) and getattr(t, act)()
            outcome(lambda: list(t.iteritems("*", 1)) if reading == "iterate" else getattr(t, reading)())
            outcome(t.prod, coeffs)


class Terms:
    """A term that acts on the dict when it is added or multiplied."""

    def __init__(self, act):
        self.act = act

    def __radd__(self, total):
        self.act()
        return total

    def __rmul__(self, coeff):
        self.act()
        return coeff


def test_terms_that_change_the_dict_while_it_is_summed():
    for pattern in (("*", 1), ()):
        t = tupledict({(i, 1): float(i) for i in range(4)})
        t[0, 1] = Terms(lambda: t.__setitem__((2, 1), 100.0))
        t.setord([(i, 1) for i in range(4)])
        t.sum("*", 2)
        assert t.sum(*pattern).getConstant() == 104.0 and t.sum(*pattern).getConstant() == 104.0
        t[0, 1] = Terms(lambda: t.pop((2, 1), None))
        t.setord([(i, 1) for i in range(4)])
        with pytest.raises(KeyError):
            t.sum(*pattern)
    coeffs = {1: 1.0, 2: 2.0}
    t = tupledict({1: Terms(lambda: coeffs.setdefault(9, 9.0)), 2: 5.0, 3: 6.0})
    with pytest.raises(RuntimeError, match="changed size during iteration"):
        t.prod(coeffs)


def test_iterators_that_are_asked_within_a_step():
    t = tupledict({(i, 2): i for i in range(3)})
    pairs = t.iteritems(Meddler(lambda: list(pairs)), Meddler(lambda: None))
    with pytest.raises(ValueError, match="already executing"):
        next(pairs)
    assert list(pairs) == []


def test_memory_is_given_back(x):
    def use():
        t = tupledict({(i, str(j)): x[i % 3, j % 4] for i in range(10) for j in range(10)})
        t[0, "0"] = LinExpr(1.0)
        t.sum(), t.sum("*", "3"), t.prod(dict.fromkeys(t, 2.0)), t.select([1, 2]), t.subset(3), list(t.iteritems(1))
        t["me", "self"] = t
        t.note = t
        unfinished = t.iteritems("*", "1")
        next(unfinished)
        t["loop", "1"] = unfinished
        outcome(t.sum)
        return weakref.ref(t)

    gc.collect()
    for _ in range(3):
        use()
    gc.collect()
    counts = [sys.getrefcount(v) for v in x.values()]
    blocks = sys.getallocatedblocks()
    refs = [use() for _ in range(50)]
    gc.collect()
    assert all(ref() is None for ref in refs)
    del refs
    assert sys.getallocatedblocks() - blocks < 50
    assert [sys.getrefcount(v) for v in x.values()] == counts

    deep = tupledict()
    for _ in range(100000):
        deep = tupledict({0: deep})
    del deep
