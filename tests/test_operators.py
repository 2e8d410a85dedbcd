"""Operators and comparisons of variables and linear expressions."""

import copy
import math
import pickle
from fractions import Fraction

import numpy
import pytest
from hypothesis import given, settings
from hypothesis import strategies as st

from zelvanpy import ZVN, LinExpr, TempConstr, Var, ZelvanError, quicksum

xs = [Var(None, i) for i in range(5)]
x, y, z = xs[:3]


def content(e):
    return e.getConstant(), [(e.getCoeff(i), e.getVar(i).index) for i in range(e.size())]


# A plain expression is (constant, terms); an operand is (value for the operators, plain expression).

numbers = st.integers(-8, 8)
scalars = st.one_of(
    numbers,
    numbers.map(float),
    numbers.map(numpy.float64),
    numbers.map(numpy.int32),
    numbers.map(numpy.float32),
    numbers.map(lambda k: Fraction(k, 4)),
    st.booleans(),
).map(lambda s: (s, (float(s), [])))
variables = st.integers(0, 4).map(lambda i: (xs[i], (0.0, [(1.0, i)])))
built = st.tuples(numbers, st.lists(st.tuples(numbers, st.integers(0, 4)), max_size=6)).map(
    lambda t: (LinExpr([(c, xs[i]) for c, i in t[1]]) + t[0], (float(t[0]), [(float(c), i) for c, i in t[1]]))
)


def plus(a, b, sign=1.0):
    return a[0] + sign * b[0], a[1] + [(sign * c, i) for c, i in b[1]]


def times(a, k):
    return a[0] * k, [(c * k, i) for c, i in a[1]]


def is_number(operand):
    return not isinstance(operand[0], (Var, LinExpr))


def add(a, b):
    return a[0] + b[0], plus(a[1], b[1])


def subtract(a, b):
    return a[0] - b[0], plus(a[1], b[1], -1.0)


def multiply(a, b):
    if not b[1][1]:
        return a[0] * b[0], times(a[1], b[1][0])
    if not a[1][1]:
        return a[0] * b[0], times(b[1], a[1][0])
    return None


def divide(a, b):
    if is_number(b) and b[1][0] != 0 and not is_number(a):
        return a[0] / b[0], times(a[1], 1.0 / b[1][0])
    return None


def negate(a, b):
    return -a[0], times(a[1], -1.0)


def increase(a, b):
    e = a[0].copy() if isinstance(a[0], LinExpr) else a[0]
    e += b[0]
    return e, plus(a[1], b[1])


def decrease(a, b):
    e = a[0].copy() if isinstance(a[0], LinExpr) else a[0]
    e -= b[0]
    return e, plus(a[1], b[1], -1.0)


def scale(a, b):
    if not is_number(b):
        return None
    e = a[0].copy() if isinstance(a[0], LinExpr) else a[0]
    e *= b[0]
    return e, times(a[1], b[1][0])


def add_all(a, b):
    return quicksum([a[0], b[0], a[0]]), plus(plus(a[1], b[1]), a[1])


ROADS = [add, subtract, multiply, divide, negate, increase, decrease, scale, add_all]


@settings(deadline=None, max_examples=300)
@given(st.lists(st.one_of(scalars, variables, built), min_size=2, max_size=6), st.data())
def test_random_roads(operands, data):
    """Whatever the road, terms stand in the order of addition and nothing else changes."""
    for _ in range(8):
        a, b = (operands[data.draw(st.integers(0, len(operands) - 1))] for _ in range(2))
        if is_number(a) and is_number(b):
            continue
        result = data.draw(st.sampled_from(ROADS))(a, b)
        if result and isinstance(result[0], LinExpr):
            assert content(result[0]) == result[1]
            operands.append(result)
    for value, plain in operands:
        if isinstance(value, LinExpr):
            assert content(value) == plain


@pytest.mark.parametrize("scalar", [numpy.float64(2), numpy.int64(2), numpy.float32(2), numpy.int8(2), 2, Fraction(2)])
def test_scalars_on_either_side(scalar):
    for v, terms in ((x, [(1.0, 0)]), (x + y, [(1.0, 0), (1.0, 1)])):
        doubled, negative = [(2.0, i) for _, i in terms], [(-1.0, i) for _, i in terms]
        assert content(scalar * v) == content(v * scalar) == (0.0, doubled)
        assert content(scalar + v) == content(v + scalar) == (2.0, terms)
        assert content(scalar - v) == (2.0, negative) and content(v - scalar) == (-2.0, terms)
        assert content(v / scalar) == (0.0, [(0.5, i) for _, i in terms])
        for comparison, sense in ((scalar <= v, ">"), (scalar >= v, "<"), (scalar == v, "="), (v <= scalar, "<")):
            assert type(comparison) is TempConstr and comparison._sense == sense and comparison._rhs is scalar


def test_arrays_go_cell_by_cell():
    coefficients = numpy.array([1.0, 2.0])
    for product in (coefficients * x, x * coefficients, (x + 0) * coefficients):
        assert product.dtype == object and [content(e) for e in product] == [(0.0, [(1.0, 0)]), (0.0, [(2.0, 0)])]
    total = (numpy.array([x, y], dtype=object) + coefficients).sum()
    assert content(total) == (3.0, [(1.0, 0), (1.0, 1)])
    cells = numpy.array([x + 0, y + 0], dtype=object)
    kept = cells + cells
    assert [content(e) for e in cells] == [(0.0, [(1.0, 0)]), (0.0, [(1.0, 1)])]
    assert kept[0].size() == 2
    assert content(x * numpy.array([2.0])) == (0.0, [(2.0, 0)])


def test_fresh_results():
    e = x + y
    e2 = e + z
    e += x
    assert content(e2) == (0.0, [(1, 0), (1, 1), (1, 2)])
    alias = e
    e -= 1
    e *= 2
    assert alias is e and content(e) == (-2.0, [(2, 0), (2, 1), (2, 0)])
    for same in (e * 1, +1 * e, e / 1, LinExpr(e)):
        assert same is not e and content(same) == content(e)
    v = x
    v += y
    v -= 1
    assert v is not x and content(v) == (-1.0, [(1, 0), (1, 1)])
    assert content(e * 0) == (-0.0, [(0.0, 0), (0.0, 1), (0.0, 0)])


def test_reflected_methods_and_subclasses_of_variables():
    assert content(x.__radd__(y)) == (0.0, [(1, 0), (1, 1)])
    assert content(x.__rsub__(y)) == (0.0, [(1, 1), (-1, 0)])
    assert content(x.__rmul__(3)) == (0.0, [(3, 0)])

    class Named(Var):
        pass

    class Own(Var):
        def __radd__(self, other):
            return "own sum"

    s = Named(None, 1)
    assert content(x + s) == (0.0, [(1, 0), (1, 1)]) and content(s + x) == (0.0, [(1, 1), (1, 0)])
    assert content(2 * s - x) == (0.0, [(2, 1), (-1, 0)])
    assert x + Own(None, 1) == 1 + Own(None, 1) == "own sum"


def test_constant_expressions_multiply():
    three = LinExpr(3)
    assert content(three * x) == content(x * three) == (0.0, [(3.0, 0)])
    assert content(three * three) == content(three**2) == (9.0, [])
    assert content(three * 4) == (12.0, [])
    assert content(three * (x + 1)) == content((x + 1) * three) == (3.0, [(3.0, 0)])
    e = x + 1
    e *= three
    assert content(e) == (3.0, [(3.0, 0)])


def test_refusals():
    e = x + y

    def refused(text, code, *functions):
        for function in functions:
            with pytest.raises(ZelvanError) as caught:
                function()
            assert (caught.value.errno, str(caught.value)) == (code, text)

    nan, inf = math.nan, math.inf
    no_divisor = "Divisor must be a constant"
    no_truth = 'Constraint has no bool value (are you trying "lb <= expr <= ub"?)'
    refused(no_divisor, 10003, lambda: 2 / e, lambda: e / x, lambda: x / 0, lambda: x / y, lambda: e / "2")
    refused("Constant is Nan", 10003, lambda: e + nan, lambda: nan + e, lambda: x - nan, lambda: quicksum([nan, x]))
    refused("Multiplier is Nan or Inf", 10003, lambda: e * nan, lambda: inf * e, lambda: x / nan, lambda: x / 1e-320)
    refused("Inequality constraints not supported", 0, lambda: e != 1, lambda: e != None, lambda: x != 1)  # noqa: E711
    refused(no_truth, 0, lambda: bool(x <= 1), lambda: 0 <= x <= 1, lambda: (x <= 1).__nonzero__())
    refused(no_truth, 0, lambda: [x].index(y))
    refused("Constraint comparison not implemented", 0, lambda: (x <= 1) <= 2, lambda: 2 <= (x <= 1))
    for power in (lambda: x**3, lambda: e**3, lambda: x**1):
        with pytest.raises(TypeError, match="unsupported operand"):
            power()
    for error, function in [
        (ZeroDivisionError, lambda: e / 0),
        (NotImplementedError, lambda: e < 1),
        (NotImplementedError, lambda: 1 < e),
        (TypeError, lambda: x < 1),
        (TypeError, lambda: (x <= 1) < 1),
        (TypeError, lambda: 2**x),
        (TypeError, lambda: 2**e),
        (TypeError, lambda: pow(e, 2, 5)),
        (TypeError, lambda: 2 / x),
        (AttributeError, lambda: Var.__rtruediv__),
        (TypeError, lambda: x + None),
        (TypeError, lambda: None - x),
        (TypeError, lambda: e + "a"),
        (TypeError, lambda: [1] * x),
        (TypeError, lambda: e + 10**400),
        (TypeError, lambda: e + 1j),
        (TypeError, lambda: hash(e)),
    ]:
        with pytest.raises(error):
            function()
    assert content(e) == (0.0, [(1.0, 0), (1.0, 1)])


def test_unchecked_coefficients_of_variables():
    assert math.isnan((x * math.nan).getCoeff(0)) and (math.inf * x).getCoeff(0) == math.inf
    assert content(x * "3") == (0.0, [(3.0, 0)])
    assert content(x.__div__(4)) == (0.0, [(0.25, 0)])


def test_comparisons():
    e, array = x + y, [1, 2]
    for comparison, sense in ((e <= array, ZVN.LESS_EQUAL), (e >= array, ZVN.GREATER_EQUAL), (e == array, ZVN.EQUAL)):
        assert comparison._lhs is e and comparison._rhs is array and comparison._sense == sense
    for comparison, sense in ((x <= e, "<"), (x >= e, ">"), (x == e, "=")):
        assert content(comparison._lhs) == (0.0, [(1.0, 0)]) and comparison._rhs is e and comparison._sense == sense
    assert (x == None) is False and (e == None) is False and (x != None) is True  # noqa: E711
    indicator = (x == 1) >> (e <= 2)
    assert indicator._sense == "I" and type(indicator._lhs) is type(indicator._rhs) is TempConstr
    assert indicator == indicator and (indicator == (x == 1)) is False and indicator != 1
    assert len({indicator, indicator}) == 1


def test_comparison_record():
    c = TempConstr(1, ZVN.EQUAL, "b")
    assert repr(c) == "<zelvan.TempConstr: 1 == b>"
    assert repr(TempConstr(LinExpr(2.5), "<", 1)) == "<zelvan.TempConstr: 2.5 <= 1>"
    assert repr(c >> 2) == "<zelvan.TempConstr: <zelvan.TempConstr: 1 == b> == 2>"
    for twin in (pickle.loads(pickle.dumps(c)), copy.copy(c)):
        assert (twin._lhs, twin._sense, twin._rhs) == (1, "=", "b")
    with pytest.raises(AttributeError):
        c._lhs = 2
