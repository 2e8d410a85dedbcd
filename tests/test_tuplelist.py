"""tuplelist against a model of its rules in plain Python, and as the list that it is."""

import copy
import gc
import itertools
import json
import operator
import pickle
import sys
import weakref

import hypothesis.strategies as st
import pytest
from hypothesis import settings
from hypothesis.stateful import RuleBasedStateMachine, initialize, precondition, rule

from zelvanpy import tuplelist

ARCS = [(1, 2), (1, 3), (2, 3), (2, 4)]


class PlainTupleList(list):
    """The rules, one by one and without regard to speed. Indices hold what the list was when they were built."""

    def __init__(self, data=(), wild="*"):
        super().__init__()
        self.wild, self.scalar, self.length = wild, None, None
        self.extend(data)

    def check(self, members):
        if not members:
            return
        if self.scalar is None:
            self.scalar = type(members[0]) is not tuple
        if any((type(y) is not tuple) != self.scalar for y in members):
            raise ValueError("Cannot mix scalar and tuple values in a tuplelist")
        if not self.scalar:
            if self.length is None:
                self.length = len(members[0])
            if any(len(y) != self.length for y in members):
                raise ValueError("All tuples in a tuplelist must be the same length")

    def clean(self):
        self.index, self.contents, self.maps = {}, None, {}

    def settle(self):
        if not self:
            self.scalar = self.length = None
        self.clean()

    def append(self, x):
        self.check([x])
        self.clean()
        super().append(x)

    def extend(self, members):
        members = list(members)
        self.check(members)
        self.clean()
        super().extend(members)

    def insert(self, i, x):
        self.check([x])
        self.clean()
        super().insert(i, x)

    def pop(self, i=-1):
        x = super().pop(i)
        self.settle()
        return x

    def remove(self, x):
        super().remove(x)
        self.settle()

    def __delitem__(self, i):
        super().__delitem__(i)
        self.settle()

    def __add__(self, other):
        return PlainTupleList(list(self) + other, self.wild)

    def __iadd__(self, other):
        self.extend(other)
        return self

    def __contains__(self, x):
        if self.contents is None:
            self.contents = dict.fromkeys(self, True)
        return self.contents.get(x, False)

    def select(self, *vals):
        for k, v in enumerate(vals):
            if type(v) is str:
                continue
            try:
                result = PlainTupleList()
                for alternative in v:
                    result.extend(self.select(*vals[:k], alternative, *vals[k + 1 :]))
                return result
            except (IndexError, TypeError):
                pass
        pattern = tuple(i for i, v in enumerate(vals) if v != self.wild)
        if not pattern:
            return self
        getkey = (lambda x: x) if self.scalar else operator.itemgetter(*pattern)
        if pattern not in self.index:
            index = self.index[pattern] = {}
            for x in self:
                try:
                    index.setdefault(getkey(x), PlainTupleList()).append(x)
                except IndexError:
                    pass
        key = vals[0] if self.scalar else getkey(vals)
        return self.index[pattern].get(key, PlainTupleList())

    def neighbour(self, name, v):
        if not self.maps.get(name):
            pairs = {
                "prev": (self[1:], self[:-1]),
                "next": (self[:-1], self[1:]),
                "prevc": (self, self[-1:] + self[:-1]),
                "nextc": (self, self[1:] + self[:1]),
            }[name]
            built = dict(zip(*pairs))
            if len(built) != len(self) - (0 if name.endswith("c") else 1):
                raise KeyError("Duplicate values in tupledict")
            self.maps[name] = built
        return self.maps[name][v]


def outcome(function, *args):
    """Result of a call, or the type and text of its exception."""
    try:
        return function(*args)
    except Exception as error:
        return type(error), str(error)


FIELDS = st.sampled_from([0, 1, 2, "a", "b", "*", None, 1.0])
PAIRS = st.tuples(FIELDS, FIELDS)
MEMBERS = st.one_of(PAIRS, PAIRS, PAIRS, FIELDS, st.tuples(FIELDS, FIELDS, FIELDS))
VALUES = st.one_of(
    FIELDS,
    FIELDS,
    st.just("*"),
    st.lists(FIELDS, max_size=3),
    st.tuples(FIELDS, FIELDS),
    st.sampled_from([range(2), frozenset([1, 2]), b"\x01", "ab", [[0, 1], "a"], object()]),
)
PATTERNS = st.lists(VALUES, max_size=3)


class Lists(RuleBasedStateMachine):
    @initialize(wild=st.sampled_from(["*", "any", None, 0]))
    def start(self, wild):
        self.real, self.plain = tuplelist([], wild), PlainTupleList([], wild)

    def both(self, name, *args):
        ours = outcome(getattr(self.real, name), *args)
        theirs = outcome(getattr(self.plain, name), *args)
        assert ours == theirs, name
        assert list(self.real) == list(self.plain)

    @rule(name=st.sampled_from(["append", "remove", "__contains__"]), member=MEMBERS)
    def one_member(self, name, member):
        self.both(name, member)

    @rule(name=st.sampled_from(["extend", "__add__"]), members=st.lists(st.one_of(PAIRS, MEMBERS), max_size=5))
    def several_members(self, name, members):
        self.both(name, members)

    @rule(members=st.lists(PAIRS, max_size=5))
    def grow(self, members):
        before = self.real
        ours = outcome(operator.iadd, self.real, members)
        theirs = outcome(operator.iadd, self.plain, members)
        assert ours == theirs
        assert self.real is before

    @rule(i=st.integers(-3, 6), member=MEMBERS)
    def insert(self, i, member):
        self.both("insert", i, member)

    @rule(name=st.sampled_from(["pop", "__delitem__"]), i=st.integers(-6, 6))
    def leave(self, name, i):
        self.both(name, i)

    @rule(i=st.integers(-3, 6), j=st.integers(-3, 6), step=st.sampled_from([None, 2, -1]))
    def leave_slice(self, i, j, step):
        self.both("__delitem__", slice(i, j, step))

    @rule(name=st.sampled_from(["reverse", "clear", "clean"]))
    def whole(self, name):
        self.both(name)

    @precondition(lambda self: self.plain.length == 2)
    @rule(i=st.integers(-3, 3), member=PAIRS)
    def replace(self, i, member):
        self.both("__setitem__", i, member)

    @rule()
    def order(self):
        self.real.sort(key=repr)
        self.plain.sort(key=repr)
        assert list(self.real) == list(self.plain)

    @rule(vals=PATTERNS)
    def select(self, vals):
        self.both("select", *vals)
        ours, theirs = outcome(self.real.select, *vals), outcome(self.plain.select, *vals)
        assert (ours is self.real) == (theirs is self.plain)
        if type(ours) is tuplelist:
            assert (ours is self.real.select(*vals)) == (theirs is self.plain.select(*vals))

    @rule(name=st.sampled_from(["prev", "next", "prevc", "nextc"]), member=MEMBERS)
    def neighbour(self, name, member):
        assert outcome(getattr(self.real, name), member) == outcome(self.plain.neighbour, name, member)


TestLists = Lists.TestCase
TestLists.settings = settings(max_examples=100, stateful_step_count=30, deadline=None)


def test_results_of_select_are_shared_and_plain():
    l = tuplelist(ARCS)
    assert l.select("*", 3) == [(1, 3), (2, 3)] and l.select(1) == [(1, 2), (1, 3)]
    assert l.select([2, 1], [3]) == [(2, 3), (1, 3)] and l.select((2, 2), 4) == [(2, 4), (2, 4)]
    assert l.select(iter([1, 2]), 3) == [(1, 3), (2, 3)]
    assert l.select(1, 2, 3) == [] and l.select([], 3) == []
    shared = l.select(1)
    assert type(shared) is tuplelist and l.select(1, "*") is shared
    shared.append((1, 9))
    assert l.select(1) == [(1, 2), (1, 3), (1, 9)] and l.select([1]) is not shared
    l.clean()
    assert l.select(1) == [(1, 2), (1, 3)] and len(shared) == 3
    nested = [1]
    assert l.select([[nested], 2], [[3]]) == [(1, 3), (2, 3)]
    nested.append(nested)
    with pytest.raises(RecursionError):
        l.select(3, nested)
    assert l.next(v=(1, 2)) == (1, 3) and l.prevc(v=(1, 2)) == (2, 4)


def test_wildcards_carry_over_in_sums_and_not_in_selections():
    l = tuplelist([(1, "*"), (2, "b")], wild="any")
    assert l.select("any", "*") == [(1, "*")] and l.select("*") == []
    assert (l + [(3, "*")]).select("any", "*") == [(1, "*"), (3, "*")]
    found = l.select(1)
    assert found.select("any") == [] and found.select("*") is found
    for other in ((1, 2), iter([]), 3):
        with pytest.raises(TypeError):
            l + other


def test_unchecked_roads_leave_indices_as_they_are():
    l = tuplelist(ARCS)
    stale = l.select(1)
    assert (1, 2) in l and l.next((1, 2)) == (1, 3)
    l[0] = "anything"
    list.append(l, (1, 7))
    assert l.select(1) is stale and (1, 2) in l and (1, 7) not in l and l.next((1, 2)) == (1, 3)
    list.clear(l)
    assert l.select(1) == [(1, 2), (1, 3)] and l.select(2, 3) == []
    with pytest.raises(ValueError, match="Cannot mix"):
        l.append(1)
    l.append((5, 6))
    l.pop()
    l.append(1)
    assert l == [1]


class Hashing:
    """A field whose hash and comparison change the list under the index that is being built."""

    def __init__(self, act):
        self.act = act

    def __hash__(self):
        self.act()
        return 1

    def __eq__(self, other):
        self.act()
        return False


def test_fields_that_change_the_list_while_it_is_searched():
    l = tuplelist()
    fields = [Hashing(lambda: None) for _ in range(4)]
    l.extend((f, i) for i, f in enumerate(fields))
    for act in (l.clean, lambda: list.clear(l), lambda: l.pop() if l else None, lambda: l.append((0, 0))):
        for f in fields:
            f.act = act
        assert l.select(fields[3]) in ([], [(fields[3], 3)])
        outcome(l.__contains__, (fields[0], 0))
        outcome(l.nextc, (fields[0], 0))
        for f in fields:
            f.act = lambda: None
        l.clean()
        l[:] = [(f, i) for i, f in enumerate(fields)]


def test_text():
    assert repr(tuplelist([(1, "a"), (20, "bc")])) == (
        "<zelvan.tuplelist (2 tuples, 2 values each):\n ( 1 , a )\n ( 20, bc)\n>"
    )
    assert str(tuplelist()) == "[]" and repr(tuplelist(["x", 1])) == "['x', 1]"
    assert repr(tuplelist([(), ()])) == "<zelvan.tuplelist (2 tuples, 0 values each):\n ( )\n ( )\n>"
    unchecked = tuplelist(ARCS)
    for member in ((1, 2, 3), (), 5):
        unchecked[1] = member
        assert repr(unchecked) == repr(list(unchecked))


class Routes(tuplelist):
    """A Python subclass that watches the calls that the class makes on itself."""

    def extend(self, members):
        super().extend(sorted(members))

    def select(self, *vals):
        self.__dict__.setdefault("calls", []).append(vals)
        return super().select(*vals)


def test_as_a_list(tmp_path):
    l = tuplelist(ARCS)
    assert isinstance(l, list) and json.loads(json.dumps(l)) == [list(a) for a in ARCS]
    assert type(l[1:3]) is list and type(l * 2) is list and type([0] + tuplelist([1])) is list
    first, *rest = l
    assert first == (1, 2) and sorted(l, reverse=True)[0] == (2, 4) and len(rest) == 3
    with pytest.raises(TypeError):
        hash(l)
    for name in ("__getslice__", "__delslice__"):
        with pytest.raises(AttributeError):
            getattr(l, name)(0, 1)
    routes = Routes(reversed(ARCS))
    assert routes == ARCS and routes.select([1, 2], 3) == [(1, 3), (2, 3)]
    assert routes.calls == [([1, 2], 3), (1, 3), (2, 3)]


@pytest.mark.parametrize("cls", [tuplelist, Routes])
def test_copies_keep_class_members_and_wildcard(cls):
    l = cls(ARCS, wild="any")
    l.note = ["kept"]
    l.select(1)
    copies = [pickle.loads(pickle.dumps(l, protocol)) for protocol in range(pickle.HIGHEST_PROTOCOL + 1)]
    for c in [*copies, copy.copy(l), copy.deepcopy(l)]:
        assert type(c) is cls and c == ARCS and c.note == ["kept"]
        assert c.select("any", 3) == [(1, 3), (2, 3)] and c.select("*") == []
        with pytest.raises(ValueError):
            c.append(1)
    for state in (None, (), ("*", 1), "ab"):
        with pytest.raises(TypeError):
            l.__setstate__(state)


def test_memory_is_given_back():
    def use():
        l = tuplelist(((i % 7, str(i)) for i in range(100)), wild=object())
        l.select(3), l.select(3, "3"), l.select([1, 2]), (0, "0") in l, l.nextc((0, "0"))
        l.me = l  # a cycle through the instance dictionary
        holder = tuplelist([object()])
        holder.append(holder.select)  # and one through a member
        refused = outcome(l.extend, [(1, 2), 3])
        assert refused[0] is ValueError
        return weakref.ref(l), weakref.ref(holder)

    gc.collect()
    for _ in range(3):
        use()
    gc.collect()
    blocks = sys.getallocatedblocks()
    refs = list(itertools.chain.from_iterable(use() for _ in range(50)))
    gc.collect()
    assert all(ref() is None for ref in refs)
    del refs
    assert sys.getallocatedblocks() - blocks < 50

    deep = tuplelist([0])
    for _ in range(100000):
        deep = tuplelist([deep])
    del deep
