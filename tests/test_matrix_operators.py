"""Operators, items and sums of the matrix layer against the same calculation on numbers."""

import operator

import matrix_operands as made
import numpy as np
import pytest
import scipy.sparse as sp
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st

import zelvanpy
from zelvanpy import MLinExpr, MQuadExpr, MVar

ENV = zelvanpy.Env(params={"OutputFlag": 0})
WORLD = made.World(ENV)
many = settings(max_examples=600, deadline=None, suppress_health_check=list(HealthCheck))


def expected_values(op, left, right):
    """The result on numbers, or the kinds of exception that may be raised."""
    a, b = WORLD.of(left), WORLD.of(right)
    if op is operator.matmul:
        if made.degree(left) + made.degree(right) > 2:
            return None, (TypeError, ValueError)
        if np.ndim(a) not in (1, 2) or np.ndim(b) not in (1, 2):
            return None, (ValueError, TypeError)
    if op is operator.mul and made.degree(left) + made.degree(right) > 2:
        return None, (TypeError, ValueError)
    try:
        return op(a, b), None
    except ValueError:
        return None, (ValueError, TypeError) if sp.issparse(left) or sp.issparse(right) else ValueError


def same(result, reference):
    values = WORLD.of(result)
    return np.shape(values) == np.shape(reference) and np.array_equal(values, reference)


def is_wanted_form(op, left, right, result):
    """Whether a linear result is compact where its shape and its operands are."""
    if not isinstance(result, MLinExpr):
        return isinstance(result, MQuadExpr)
    if op is operator.mul and made.degree(left) == made.degree(right):  # of a constant without dimensions
        return result.shape == ()
    full = any(isinstance(e, MLinExpr) and not e._is_compact for e in (left, right))
    shapes = [e.shape for e in (left, right) if made.is_matrix_object(e)]
    wanted = not full and all(map(made.allows_compact, [*shapes, result.shape]))
    return result.size == 0 or result._is_compact == wanted


@many
@given(st.data(), st.sampled_from([operator.add, operator.sub, operator.mul]))
def test_elementwise_operators(data, op):
    shape = data.draw(made.shapes())
    # The other shape often broadcasts with the first.
    tail = shape[data.draw(st.integers(0, len(shape))) :]
    other = data.draw(st.one_of(st.just(shape), st.just(tail), st.just(tuple(1 for _ in shape)), made.shapes()))
    left, right = data.draw(made.matrix_objects(WORLD, shape)), data.draw(made.operands(WORLD, other))
    if data.draw(st.booleans()):
        left, right = right, left
    before = WORLD.of(left), WORLD.of(right)
    reference, refusal = expected_values(op, left, right)
    forms = [getattr(e, "_is_compact", None) for e in (left, right)]
    result, error = made.quietly(op, left, right)
    assert same(left, before[0]) and same(right, before[1])
    if refusal:
        assert isinstance(error, refusal), (left, right, result, error)
        return
    if error:
        raise error
    assert same(result, reference)
    if forms == [getattr(e, "_is_compact", None) for e in (left, right)]:
        assert is_wanted_form(op, left, right, result)


def test_products_without_inner_length():
    row = MVar.fromlist(WORLD.variables[:3]).reshape(1, 3)[:0]
    assert same(np.zeros(0) @ row, np.zeros(3)) and same(row.T @ np.zeros(0), np.zeros(3))
    assert same(np.zeros((2, 0)) @ row, np.zeros((2, 3))) and same(row.T @ sp.csr_matrix((0, 1)), np.zeros((3, 1)))
    assert same((row.T + 1) @ np.zeros((0, 2)), np.zeros((3, 2))) and same(row.T @ row, np.zeros((3, 3)))


@many
@given(st.data())
def test_matrix_products(data):
    inner = data.draw(st.sampled_from([1, 2, 3, 0]))
    shape = data.draw(st.sampled_from([(inner,), (2, inner), (1, inner), (3, inner), (), (2, 2, inner)]))
    other = data.draw(st.sampled_from([(inner,), (inner, 1), (inner, 3), (inner, 0), (4,), ()]))
    left = data.draw(made.operands(WORLD, shape))
    right = data.draw(made.operands(WORLD, other))
    if not made.is_matrix_object(left) and not made.is_matrix_object(right):
        return
    before = WORLD.of(left), WORLD.of(right)
    reference, refusal = expected_values(operator.matmul, left, right)
    result, error = made.quietly(operator.matmul, left, right)
    assert same(left, before[0]) and same(right, before[1])
    if refusal:
        assert isinstance(error, refusal), (left, right, result, error)
        return
    if error:
        raise error
    assert same(result, reference)


@many
@given(st.data(), st.sampled_from(["+", "-", "*", "/"]))
def test_operators_in_place(data, sign):
    shape = data.draw(made.shapes())
    e = data.draw(st.one_of(made.mlinexprs(WORLD, shape), made.mquadexprs(WORLD, shape)))
    other = data.draw(st.one_of(st.just(shape), st.just(shape[1:]), made.shapes()))
    number = sign in "*/"
    right = data.draw(
        st.one_of(made.arrays(other, nonzero=sign == "/"), made.scalars(nonzero=sign == "/"))
        if number
        else st.one_of(made.operands(WORLD, other), st.just(e))
    )
    alias, before, value = e, WORLD.of(e), WORLD.of(right)
    op = {"+": operator.iadd, "-": operator.isub, "*": operator.imul, "/": operator.itruediv}[sign]
    plain = {"+": operator.add, "-": operator.sub, "*": operator.mul, "/": operator.truediv}[sign]
    result, error = made.quietly(op, e, right)
    if error is not None:
        assert isinstance(error, (ValueError, TypeError)), error
        grown = (
            np.shape(value) != () and np.broadcast(np.empty(shape), np.empty(np.shape(value))).shape != shape
            if _fits(shape, np.shape(value))
            else True
        )
        assert grown or sp.issparse(right), (alias, right, error)
        assert same(alias, before)
        return
    assert np.allclose(WORLD.of(result), plain(before, value), rtol=1e-6) and result.shape == np.shape(
        plain(before, value)
    )
    if made.degree(right) <= made.degree(alias) and not (isinstance(right, MVar) and isinstance(alias, MQuadExpr)):
        assert result is alias
    if right is not alias:
        assert same(right, value)


def _fits(a, b):
    try:
        np.broadcast(np.empty(a), np.empty(b))
    except ValueError:
        return False
    return True


@many
@given(st.data())
def test_division_and_signs(data):
    shape = data.draw(made.shapes())
    e = data.draw(made.matrix_objects(WORLD, shape))
    divisor = data.draw(st.one_of(made.arrays(shape, nonzero=True), made.scalars(nonzero=True)))
    before = WORLD.of(e)
    assert np.allclose(WORLD.of(e / divisor), before / WORLD.of(divisor), rtol=1e-6)
    assert same(-e, -before) and same(+e, before) and same(e, before)
    for refused in (lambda: divisor / e, lambda: e / e, lambda: e**e, lambda: e % 2, lambda: e < 1, lambda: 1 > e):
        with pytest.raises((TypeError, zelvanpy.ZelvanError)):
            refused()
    assert same((e <= divisor)._lhs, before - WORLD.of(divisor)) and (e <= divisor)._rhs == 0.0
    assert same((divisor == e)._lhs, before - WORLD.of(divisor)) and (divisor >= e)._sense == "<"


@st.composite
def indices(draw, shape):
    """Indices of numpy: numbers, slices, Ellipsis, new axes, lists and masks."""
    parts = []
    for length in shape[: draw(st.integers(0, len(shape)))]:
        kinds = ["slice", "all", "newaxis", "reverse"] + ["int", "list", "mask"] * (length > 0)
        kind = draw(st.sampled_from(kinds))
        if kind == "newaxis":
            parts.append(np.newaxis)
        if kind == "int":
            parts.append(draw(st.integers(-length, length - 1)))
        elif kind == "list":
            parts.append(draw(st.lists(st.integers(-length, length - 1), min_size=2, max_size=2)))
        elif kind == "mask":
            parts.append(np.array(draw(st.lists(st.booleans(), min_size=length, max_size=length))))
        else:
            parts.append({"slice": slice(0, 2), "reverse": slice(None, None, -1)}.get(kind, slice(None)))
    if draw(st.booleans()):
        parts.insert(draw(st.integers(0, len(parts))), Ellipsis)
    return tuple(parts) if len(parts) != 1 or draw(st.booleans()) else parts[0]


@many
@given(st.data())
def test_items_follow_numpy(data):
    shape = data.draw(made.shapes())
    e = data.draw(made.matrix_objects(WORLD, shape))
    index = data.draw(indices(shape))
    before = WORLD.of(e)
    reference, refusal = made.quietly(lambda: before[index])
    result, error = made.quietly(lambda: e[index])
    if refusal is not None:
        assert type(error) is type(refusal)
        return
    if error:
        raise error
    assert same(result, reference) and type(result) is type(e)
    if isinstance(e, MVar):
        return
    # A view shares its cells, anything else has cells of its own, each of them once.
    result += 1.0
    if np.shape(reference) == () or np.shares_memory(reference, before):
        before[index] += 1.0
        assert same(e, before)
    else:
        assert same(e, before) and same(result, reference + 1.0)


@many
@given(st.data())
def test_assignment_follows_numpy(data):
    shape = data.draw(made.shapes())
    e = data.draw(st.one_of(made.mlinexprs(WORLD, shape), made.mquadexprs(WORLD, shape)))
    index = data.draw(indices(shape))
    part = np.shape(made.quietly(lambda: WORLD.of(e)[index])[0])
    value = data.draw(
        st.one_of(made.operands(WORLD, part), made.operands(WORLD, part[1:]), made.arrays(part).map(np.ndarray.tolist))
    )
    if sp.issparse(value) or (isinstance(e, MLinExpr) and made.degree(value) == 2):
        return
    overlapping = data.draw(st.booleans()) and part == shape
    if overlapping:
        value = e[::-1] if shape else e[()]
    reference, worth = WORLD.of(e), WORLD.of(value).copy() if made.is_matrix_object(value) else WORLD.of(value)
    before = reference.copy()
    _, refusal = made.quietly(lambda: reference.__setitem__(index, worth))
    _, error = made.quietly(lambda: e.__setitem__(index, value))
    if refusal is not None:
        assert isinstance(error, (type(refusal), ValueError)), (error, refusal)
        assert same(e, before)
        return
    if error is not None:  # numpy lets dimensions of length 1 in front go, which no expression does
        assert isinstance(error, ValueError) and np.ndim(worth) > len(part)
        return
    assert same(e, reference)
    if not overlapping and made.is_matrix_object(value) and not isinstance(value, MVar):
        value += 1.0
        assert same(e, reference)


@many
@given(st.data())
def test_sums_copies_and_constants(data):
    shape = data.draw(made.shapes())
    e = data.draw(made.matrix_objects(WORLD, shape))
    before = WORLD.of(e)
    copy = e.copy()
    assert same(copy, before) and type(copy) is type(e)
    axes = st.integers(-len(shape), len(shape) - 1) if shape else st.nothing()
    axis = data.draw(st.one_of(st.none(), axes, st.sets(st.integers(0, 2).filter(lambda a: a < len(shape))).map(tuple)))
    total = e.sum(axis=axis)
    assert same(total, before.sum(axis=axis)) and not total._is_compact
    assert same(np.sum(e, axis=axis), before.sum(axis=axis)) and same(e, before)
    with pytest.raises(zelvanpy.ZelvanError, match="Invalid axis specifications: 7"):
        e.sum(axis=7)
    if isinstance(e, MVar):
        assert same(e.T, before.T) and same(e.reshape(-1, order="F"), before.reshape(-1, order="F"))
        return
    copy += 1.0
    copy *= 2.0
    assert same(e, before) and same(copy, 2 * (before + 1))
    copy.clear()
    assert same(copy, np.zeros(shape)) and same(e, before)
    if e.size == 1:
        assert WORLD.of(e.item()) == before.item()


@many
@given(st.data())
def test_full_form_without_compact(data):
    shape = data.draw(made.shapes(2))
    x, right = data.draw(made.mvars(WORLD, shape)), data.draw(made.operands(WORLD, shape))
    op = data.draw(st.sampled_from([operator.add, operator.mul]))
    if made.degree(right) > 1:
        return
    reference, _ = expected_values(op, x, right)
    MLinExpr._keep_compact = MQuadExpr._keep_compact = 0
    try:
        result = op(x, right)
        assert not result._is_compact and not MLinExpr.zeros(shape)._is_compact
    finally:
        MLinExpr._keep_compact = MQuadExpr._keep_compact = 1
    assert reference is None or same(result, reference)
