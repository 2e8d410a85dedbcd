"""Columns under construction."""

import copy
import gc
import math
import weakref

import pytest

from zelvanpy import Column, Constr, ZelvanError

ROWS = [Constr(None, i) for i in range(3)]


def content(column):
    return [(column.getCoeff(i), column.getConstr(i)) for i in range(column.size())]


def refused(text, function, *args):
    with pytest.raises(ZelvanError) as caught:
        function(*args)
    assert (caught.value.errno, str(caught.value)) == (10003, text)


def test_building():
    a, b, c = ROWS
    assert content(Column()) == content(Column(None, None)) == []
    assert content(Column("2", a)) == [(2.0, a)]
    column = Column([1, 2.0], (a, b))
    column.addTerms(math.inf, c)
    column.addTerms(coeffs=(3, 4), constrs=[a, c])
    assert content(column) == [(1.0, a), (2.0, b), (math.inf, c), (3.0, a), (4.0, c)]
    assert column._coeffs == [1.0, 2.0, math.inf, 3.0, 4.0] and column._constrs == [a, b, c, a, c]
    assert Column([1], [2])._constrs == [2]
    again = Column(1.0, a)
    again.__init__([2.0], [b])
    assert content(again) == [(2.0, b)]
    twins = column.copy(), copy.copy(column)
    column.clear()
    assert column.size() == 0 and all(twin.size() == 5 and twin.getConstr(-1) is c for twin in twins)


def test_removing_and_merging():
    a, b, c = ROWS
    column = Column([1, 2, 3, 4], [a, b, a, c])
    column.remove(True)
    column.remove("a")
    assert content(column) == [(1.0, a), (3.0, a), (4.0, c)]
    column.addTerms([-4, 0.0], [c, b])
    column._normalize()
    assert content(column) == [(4.0, a)]
    column.remove(Constr(None, 0))
    assert column.size() == 1
    column.remove(a)
    assert column.size() == 0
    with pytest.raises(IndexError):
        column.remove(0)


def test_position_whose_code_changes_the_column():
    for method in (Column.getCoeff, Column.getConstr):
        column = Column([1.0] * 100, [Constr(None, i) for i in range(100)])

        class Position:
            def __index__(self, column=column):
                column.clear()
                return 50

        with pytest.raises(IndexError):
            method(column, Position())


def test_failures_change_nothing():
    a, b, _ = ROWS
    column = Column(1.0, a)
    one, other = "<class 'float'>", "<class 'list'>"
    refused(f"No constructor available for Column({one}, {other})", Column, 1.0, [a])
    refused("Array lengths don't match", Column, [1.0], [a, b])
    refused("Array lengths don't match", column.addTerms, [1.0, 2.0], [a])
    refused("Second argument should be a list of Constr", column.addTerms, [1], [2])
    refused("Unsupported data type (<class 'str'>) for constraint argument", column.addTerms, 1.0, "x")

    class Short(list):
        def __len__(self):
            return 2

    refused("Array lengths don't match", column.addTerms, Short([1.0]), [a, b])
    refused("Array lengths don't match", column.addTerms, [1.0, 2.0], Short([a]))
    for error, args in [(ValueError, (["a"], [a])), (TypeError, ([1.0], a)), (TypeError, ((i for i in [1]), [a]))]:
        with pytest.raises(error):
            column.addTerms(*args)
    assert content(column) == [(1.0, a)]


def test_cycle_is_collected():
    class Canary:
        pass

    row, canary = Constr(None, 0), Canary()
    gone = weakref.ref(canary)
    row._column, row._canary = Column(1.0, row), canary
    del row, canary
    gc.collect()
    assert gone() is None
