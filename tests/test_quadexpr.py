"""Quadratic expressions: operators beside a plain list of terms, forms and refusals, long sums, memory, collection."""

import copy
import gc
import io
import math
import pickle
import sys
import weakref
from fractions import Fraction

import numpy
import pytest
from hypothesis import settings
from hypothesis import strategies as st
from hypothesis.stateful import Bundle, RuleBasedStateMachine, invariant, multiple, rule

import zelvanpy
from zelvanpy import LinExpr, QuadExpr, TempConstr, Var, ZelvanError, quicksum, tupledict

INVALID = 10003
simple_expression = getattr(zelvanpy, "__simpleexpr")
DEGREE = "Invalid argument to QuadExpr multiplication"


def handles(count):
    """Handles without a model: expressions only store them."""
    return [Var(None, i) for i in range(count)]


def linear(e):
    return e.getConstant(), [(e.getCoeff(i), e.getVar(i).index) for i in range(e.size())]


def content(e):
    """Constant, linear terms and quadratic terms of any operand."""
    if isinstance(e, Var):
        return 0.0, [(1.0, e.index)], []
    if not isinstance(e, (LinExpr, QuadExpr)):
        return float(e), [], []
    if isinstance(e, LinExpr):
        return (*linear(e), [])
    quad = [(e.getCoeff(i), e.getVar1(i).index, e.getVar2(i).index) for i in range(e.size())]
    return (*linear(e.getLinExpr()), quad)


@pytest.fixture
def xyz():
    return handles(3)


def refused(text, function, *args, code=INVALID):
    with pytest.raises(ZelvanError) as caught:
        function(*args)
    assert (caught.value.errno, str(caught.value)) == (code, text)


def test_forms(xyz):
    x, y, z = xyz
    for empty in (QuadExpr(), QuadExpr(None), QuadExpr(0), QuadExpr(expr=0.0), QuadExpr([])):
        assert content(empty) == (0.0, [], []) and str(empty) == "0.0" and empty.size() == 0
    for form in (x, 2.5, x + 2 * y + 1, [(3, x)], numpy.float64(2)):
        assert content(QuadExpr(form)) == content(LinExpr(form)) and QuadExpr(form).size() == 0
    assert content((x + 1) * (y + 2)) == (2.0, [(1, 1), (2, 0)], [(1, 0, 1)])
    assert content((x + 1) * y) == (0.0, [(1, 1)], [(1, 0, 1)])
    assert content(y * (x + 1)) == (0.0, [(1, 1)], [(1, 1, 0)])
    assert content(x**2) == content(x * x) == (0.0, [], [(1, 0, 0)])
    assert content((x - 1) ** 2) == (1.0, [(-1, 0), (-1, 0)], [(1, 0, 0)])
    assert content(LinExpr(3) * (x * 1)) == (0.0, [(3, 0)], [])
    q = 2 * x * y + z - 1
    for same in (q.copy(), QuadExpr(q), q + 0, 0 + q, (q * 2) / 2, q * -1 / -1, 1 * q, copy.copy(q)):
        assert content(same) == (-1.0, [(1, 2)], [(2, 0, 1)]) and type(same) is QuadExpr
    assert content(1 - q) == (2.0, [(-1, 2)], [(-2, 0, 1)])
    assert [type(v) for v in (q.getCoeff(0), q.getLinExpr(), q.getVar2(-1))] == [float, LinExpr, Var]
    assert content(quicksum([x, 2 * y, x * y, 3, z * z + z])) == (3, [(1, 0), (2, 1), (1, 2)], [(1, 0, 1), (1, 2, 2)])


def test_sums_of_products(xyz):
    expected = (0.0, [], [(c * 2.0, i, i) for c, i in ((1, 0), (2, 1), (3, 2))])
    kept = [2 * c * v * v for c, v in zip((1, 2, 3), xyz)]
    squares = tupledict((i, v * v) for i, v in enumerate(xyz))
    roads = [kept, iter(kept), tuple(kept), (2 * c * v * v for c, v in zip((1, 2, 3), xyz))]
    sums = [quicksum(road) for road in roads] + [quicksum(tupledict(enumerate(kept))), squares.prod([2, 4, 6])]
    for q in sums:
        assert content(q) == expected
    assert content(squares.sum()) == content(sum(squares.values()))
    assert [q.size() for q in kept] == [1, 1, 1]
    with_rest = quicksum(v * v + 2 * v + 1 for v in xyz)
    assert content(with_rest) == (3.0, [(2, 0), (2, 1), (2, 2)], [(1, 0, 0), (1, 1, 1), (1, 2, 2)])
    e = LinExpr(xyz[0])
    shared = e
    e += kept[0]
    assert type(e) is QuadExpr and content(shared) == (0.0, [(1, 0)], [])

    class Keeping:
        def __radd__(self, other):
            kept.append(other)
            return other

    kept = []
    q = quicksum([xyz[0], Keeping(), xyz[1] * xyz[1], xyz[2]])
    assert content(kept[0]) == (0.0, [(1, 0)], []) and content(q) == (0.0, [(1, 0), (1, 2)], [(1, 1, 1)])


def test_methods_that_change(xyz):
    x, y, z = xyz
    q = QuadExpr()
    assert q.add(x * y) is None
    q.add(expr=z, mult=2)
    q.add(x * x + 3 * y + 1, 2.0)
    q.add(4, 0.5)
    q.addConstant(numpy.float32(1.0))
    q.addTerms(5, x)
    q.addTerms([1, 2], (v for v in (y, z)))
    q.addTerms(7, z, vars2=z)
    q.addTerms(numpy.array([1, 2]), (x, y), [y, z])
    q.addTerms([], [], [])
    expected = (5.0, [(2, 2), (6, 1), (5, 0), (1, 1), (2, 2)], [(1, 0, 1), (2, 0, 0), (7, 2, 2), (1, 0, 1), (2, 1, 2)])
    assert content(q) == expected
    part = q.getLinExpr()
    assert part is q.getLinExpr()
    part += 1
    q.add(part)
    q.add(q)
    assert content(q) == (24.0, expected[1] * 4, expected[2] * 2) and part is q.getLinExpr()
    q.remove(Var(None, 1))
    assert content(q)[1:] == ([(2, 2), (5, 0), (2, 2)] * 4, [(2, 0, 0), (7, 2, 2)] * 2)
    q.remove(0)
    q.remove(-1)
    q.remove(1.0)
    assert content(q)[2] == [(7, 2, 2), (2, 0, 0)] and part.size() == 12
    with pytest.raises(IndexError):
        q.remove(2)
    q.clear()
    assert content(q) == (0.0, [], []) and part is q.getLinExpr() and part.size() == 0
    q.add(x * y, math.inf)
    assert q.getCoeff(0) == math.inf and math.isnan(part.getConstant())
    q = QuadExpr(x + 2)
    part = q.getLinExpr()
    q *= part
    assert content(q) == (4.0, [(2, 0), (2, 0)], [(1, 0, 0)]) and part is q.getLinExpr()
    q.__init__(q)
    assert content(q) == (4.0, [(2, 0), (2, 0)], [(1, 0, 0)])
    q.__init__(x)
    assert content(q) == (0.0, [(1, 0)], []) and part.size() == 2


def test_refusals_change_nothing(xyz):
    x, y, z = xyz
    q = 2 * x * y + z + 1
    before = content(q)
    coefficient, lengths = "Coefficient is Nan or Inf", "Array lengths don't match"
    refused(DEGREE, q._mul, x)
    refused(DEGREE, q._mul, q)
    refused(DEGREE, q._mul, "2")
    refused("Constant is Nan", q._mul, math.nan)
    refused("Multiplier is Nan or Inf", q._mul, math.inf)
    refused("Multiplier is Nan or Inf", (x * y)._mul, -math.inf)
    refused("Invalid argument to QuadExpr addition", q.add, "1")
    refused(coefficient, q.add, x, math.nan)
    refused("Constant is Nan", q.add, 1.0, math.nan)
    refused("Constant is Nan", q.addConstant, math.nan)
    refused("Array lengths don't match", q.addTerms, [1.0], [x, y])
    refused(coefficient, q.addTerms, math.inf, x, y)
    refused(lengths, q.addTerms, [1.0], [x, y], [x, y])
    refused(lengths, q.addTerms, [1.0, 2.0], [x, y], [x])
    refused("Second argument should be a list of Var", q.addTerms, [1.0, math.nan], [x, 1], [x, 2])
    refused("Third argument should be a list of Var", q.addTerms, [1.0, math.nan], [x, y], [x, 2])
    refused(coefficient, q.addTerms, [1.0, math.nan], [x, y], [x, y])
    for divide in (lambda: q / 0, lambda: q / x, lambda: 2 / q, lambda: x / q, lambda: q / "2"):
        refused("Divisor must be a constant", divide)
    for product in (
        lambda: q * x,
        lambda: x * q,
        lambda: (x + 1) * q,
        lambda: q * q,
        lambda: x * x * y,
        lambda: QuadExpr(x) * QuadExpr(y),
        lambda: x * QuadExpr(y),
        lambda: LinExpr(2) * q,
    ):
        refused(DEGREE, product)
    refused("Inequality constraints not supported", lambda: q != 1, code=0)
    for error, call in [
        (TypeError, lambda: q + "a"),
        (TypeError, lambda: [] * q),
        (TypeError, lambda: q**2),
        (TypeError, lambda: hash(q)),
        (TypeError, lambda: LinExpr(q)),
        (TypeError, lambda: QuadExpr(object())),
        (TypeError, lambda: QuadExpr(x, y)),
        (TypeError, lambda: q.addTerms([1.0], x, [y])),
        (ValueError, lambda: q.addTerms(["a"], [x], [y])),
        (TypeError, lambda: q.add(x * y, "2")),
        (IndexError, lambda: q.getVar1(1)),
        (NotImplementedError, lambda: q < 1),
        (NotImplementedError, lambda: x * y > 1),
    ]:
        with pytest.raises(error):
            call()
    assert content(q) == before


def test_comparisons(xyz):
    x, y, _ = xyz
    q = x * y
    assert (q == None) is False  # noqa: E711
    for record, sense, left, right in [
        (q <= 1, "<", q, 1),
        (1 <= q, ">", q, 1),
        (q == x + y, "=", q, None),
        (x >= q, ">", None, q),
        (x + 1 <= q, "<", None, q),
        (numpy.float64(2) >= q, "<", q, None),
    ]:
        assert type(record) is TempConstr and record._sense == sense
        assert left is None or record._lhs is left
        assert right is None or record._rhs is right


def test_normalize(xyz):
    x, y, z = xyz
    q = x * y + 3 * z * z + y * x - 3 * z * z + 0 * x * z + x + 2 - x
    q._normalize()
    assert content(q) == (2.0, [], [(2, 0, 1)])
    q = z * y - x * z
    q._normalize()
    assert content(q) == (0.0, [], [(1, 1, 2), (-1, 0, 2)])
    source = x * y + y * x + x
    simple = simple_expression(source)
    assert content(simple) == (0.0, [(1, 0)], [(2, 0, 1)]) and source.size() == 2
    assert type(simple_expression(QuadExpr(x + x))) is LinExpr
    empty = simple_expression(x * y - x * y)
    assert type(empty) is QuadExpr and content(empty) == (0.0, [], [])
    xs = handles(60)
    q = quicksum((i + 1) * xs[i] * xs[j] for i in range(60) for j in range(60))
    q._normalize()
    assert content(q)[2] == [(i + j + 2 if i < j else i + 1, i, j) for i in range(60) for j in range(i, 60)]


class Own(QuadExpr):
    pass


class OwnLinear(LinExpr):
    pass


class Plain:
    """The same algebra over lists: kind "number", "linear" or "quadratic", constant and terms in order."""

    def __init__(self, kind, constant=0.0, lin=(), quad=()):
        self.kind, self.constant, self.lin, self.quad = kind, constant, list(lin), list(quad)

    def scaled(self, k):
        lin, quad = [(c * k, i) for c, i in self.lin], [(c * k, i, j) for c, i, j in self.quad]
        return Plain(self.kind, self.constant * k, lin, quad)

    def plus(self, other):
        kind = max((self.kind, other.kind), key=["number", "linear", "quadratic"].index)
        return Plain(kind, self.constant + other.constant, self.lin + other.lin, self.quad + other.quad)

    def times(self, other):
        """None where the product is refused."""
        if other.kind == "number":
            return self.scaled(other.constant)
        if self.kind == "number":
            return other.scaled(self.constant)
        if other.kind == "quadratic" or self.quad:
            return None
        if self.kind == "linear" and not self.lin:
            return other.scaled(self.constant)
        if self.kind == "linear" and not other.lin:
            return self.scaled(other.constant)
        lin = [(c * self.constant, i) for c, i in other.lin] if self.constant else []
        lin += [(c * other.constant, i) for c, i in self.lin] if other.constant else []
        quad = [(a * b, i, j) for a, i in self.lin for b, j in other.lin]
        return Plain("quadratic", self.constant * other.constant, lin, quad)

    def content(self):
        return self.constant, self.lin, self.quad

    def is_small(self):
        numbers = [self.constant, *(t[0] for t in self.lin), *(t[0] for t in self.quad)]
        return len(numbers) < 3000 and max(map(abs, numbers)) < 2**40


xs = handles(6)
SCALARS = (int, float, numpy.float64, numpy.int32, lambda k: Fraction(k, 2), bool)


class Pool(RuleBasedStateMachine):
    """Operands of all kinds that share blocks, each beside its plain twin."""

    operands = Bundle("operands")
    small = st.integers(-3, 3)
    term_lists = st.lists(st.tuples(small, st.integers(0, 5)), max_size=4)

    def __init__(self):
        super().__init__()
        self.pairs = []

    def keep(self, e, plain):
        if not plain.is_small():
            return multiple()
        self.pairs.append([e, plain])
        return self.pairs[-1]

    @rule(target=operands, kind=st.sampled_from(SCALARS), k=small)
    def scalar(self, kind, k):
        return self.keep(kind(k), Plain("number", float(kind(k))))

    @rule(target=operands, i=st.integers(0, 5))
    def variable(self, i):
        return self.keep(xs[i], Plain("linear", 0.0, [(1.0, i)]))

    @rule(
        target=operands,
        of=st.sampled_from([LinExpr, OwnLinear]),
        c=small,
        terms=st.lists(st.tuples(small, st.integers(0, 5)), max_size=4),
    )
    def linear_expression(self, of, c, terms):
        e = of([(k, xs[i]) for k, i in terms])
        e.addConstant(c)
        return self.keep(e, Plain("linear", float(c), [(float(k), i) for k, i in terms]))

    @rule(target=operands, count=st.sampled_from([1, 3, 150, 199, 200]), cls=st.sampled_from([QuadExpr, Own]))
    def quadratic_expression(self, count, cls):
        terms = [(float(k), k % 6, k % 5) for k in range(count)]
        return self.keep(cls(quicksum(c * xs[i] * xs[j] for c, i, j in terms)), Plain("quadratic", 0.0, [], terms))

    @rule(target=operands, a=operands, b=operands, sign=st.sampled_from([1.0, -1.0]))
    def add(self, a, b, sign):
        if a[1].kind == b[1].kind == "number":
            return multiple()
        return self.keep(a[0] + b[0] if sign > 0 else a[0] - b[0], a[1].plus(b[1].scaled(sign)))

    @rule(target=operands, a=operands, b=operands)
    def multiply(self, a, b):
        if a[1].kind == b[1].kind == "number":
            return multiple()
        expected = a[1].times(b[1])
        if expected:
            return self.keep(a[0] * b[0], expected)
        refused(DEGREE, lambda: a[0] * b[0])
        return multiple()

    @rule(target=operands, a=operands, k=st.sampled_from([-4, 2, 0.5]))
    def divide(self, a, k):
        return self.keep(a[0] / k, a[1].scaled(1 / k))

    @rule(target=operands, a=operands)
    def share(self, a):
        e = a[0].copy() if hasattr(a[0], "copy") else a[0]
        return self.keep(e, Plain(a[1].kind, *a[1].content()))

    @rule(target=operands, some=st.lists(operands, max_size=5), as_list=st.booleans())
    def quicksum(self, some, as_list):
        total = Plain("linear")
        for _, plain in some:
            total = total.plus(plain)
        return self.keep(quicksum([e for e, _ in some] if as_list else (e for e, _ in some)), total)

    @rule(a=operands, b=operands, sign=st.sampled_from([1.0, -1.0]))
    def add_in_place(self, a, b, sign):
        expected = a[1].plus(b[1].scaled(sign))
        if isinstance(a[0], QuadExpr) and expected.is_small():
            e = a[0]
            if sign > 0:
                e += b[0]
            else:
                e -= b[0]
            assert e is a[0]
            a[1] = expected

    @rule(a=operands, b=operands)
    def multiply_in_place(self, a, b):
        expected = a[1].times(b[1])
        if isinstance(a[0], QuadExpr) and expected and expected.is_small():
            e = a[0]
            e *= b[0]
            assert e is a[0]
            a[1] = expected

    @rule(a=operands, i=st.integers(0, 5))
    def remove(self, a, i):
        if isinstance(a[0], (LinExpr, QuadExpr)):
            a[0].remove(xs[i])
            a[1].lin = [t for t in a[1].lin if t[1] != i]
            a[1].quad = [t for t in a[1].quad if i not in t[1:]]

    @rule(a=operands)
    def flatten(self, a):
        if isinstance(a[0], QuadExpr):
            a[0]._flatten()

    @invariant()
    def all_as_expected(self):
        for e, plain in self.pairs:
            assert content(e.copy() if isinstance(e, (LinExpr, QuadExpr)) else e) == plain.content()


TestPool = Pool.TestCase
TestPool.settings = settings(max_examples=60, stateful_step_count=30, deadline=None)


def chain(vs):
    q = QuadExpr()
    for v in vs:
        q = q + v * vs[0]
    return q


def blocks(q):
    """Numbers of quadratic terms from the head to the oldest block."""
    sizes = []
    while q is not None:
        _, coeffs, q, _, _ = q.__reduce__()[1][-1]
        sizes.append(len(coeffs))
    return sizes


def test_long_sums_by_plus():
    vs = handles(450)
    q = chain(vs)
    assert blocks(q) == [50, 200, 200]
    shared = q + vs[0]
    twin = q.copy()
    f = QuadExpr(1.5)
    f.add(q, 2.0)
    assert blocks(q) == blocks(twin) and content(f) == (1.5, [], [(2.0, i, 0) for i in range(450)])
    assert q.size() == 450 and blocks(q) == [450] and blocks(twin) == [50, 200, 200]
    q *= 3
    twin += twin
    terms = [(1.0, i, 0) for i in range(450)]
    assert content(twin) == (0.0, [], terms * 2) and content(shared) == (0.0, [(1, 0)], terms)
    q = vs[0] * vs[0]
    for v in vs:
        q = q + v
    assert len(blocks(q)) == 3 and content(q) == (0.0, [(1.0, i) for i in range(450)], [(1, 0, 0)])
    long = LinExpr()
    for v in vs:
        long = long + v
    assert content(vs[1] * vs[1] + long)[1] == content(long.copy())[1]
    part = QuadExpr(long)
    assert part.getLinExpr()._is_nested()
    part *= long + 1
    assert part.size() == 450 * 450 and part.getLinExpr().size() == 450
    older = chain(vs)
    inner = older.__reduce__()[1][-1][2]
    inner.__init__(older)
    assert blocks(inner) == [450]


def test_positions_whose_code_changes_the_expression():
    for method in (QuadExpr.getCoeff, QuadExpr.getVar1, QuadExpr.getVar2):
        q = chain(handles(450))

        class Position:
            def __index__(self, q=q):
                q.clear()
                return 400

        with pytest.raises(IndexError):
            method(q, Position())

        class Growing:
            def __index__(self, q=q):
                q.add(quicksum(v * v for v in handles(5000)))
                return -1

        assert method(q, Growing()) is not None and q.size() == 5000


def test_pickles_and_copies():
    vs = handles(9000)
    place = {id(v): i for i, v in enumerate(vs)}
    q = chain(vs) + 1
    later = q + vs[0] + 2
    tagged = Own(vs[0] * vs[1])
    tagged.tag = "t"

    class Unpickler(pickle.Unpickler):
        def persistent_load(self, position):
            return vs[position]

    class Pickler(pickle._Pickler):
        def persistent_id(self, thing):
            return place[id(thing)] if isinstance(thing, Var) else None

    stream = io.BytesIO()
    Pickler(stream, 4).dump([q, later, tagged])
    for twins in (Unpickler(io.BytesIO(stream.getvalue())).load(), [copy.copy(e) for e in (q, later, tagged)]):
        assert [blocks(e) for e in twins] == [blocks(e) for e in (q, later, tagged)]
        assert [content(e.copy()) for e in twins] == [content(e.copy()) for e in (q, later, tagged)]
        assert type(twins[2]) is Own and twins[2].tag == "t"
    twin = copy.copy(tagged)
    twin.getLinExpr().add(vs[5])
    assert content(tagged) == (0.0, [], [(1, 0, 1)])
    restore, args = (vs[0] * vs[1]).__reduce__()
    good = args[2]
    for position, wrong in [(0, None), (0, OwnLinear()), (1, [1.0, 2.0]), (2, LinExpr()), (3, [1]), (4, (vs[0],))]:
        state = [*good]
        state[position] = wrong
        with pytest.raises(ValueError):
            restore(QuadExpr, args[1], tuple(state))
    with pytest.raises(ValueError):
        restore(LinExpr, *args[1:])


def test_subclass(xyz):
    x, y, _ = xyz
    t = Own(x * y)
    t += y
    assert type(t) is Own
    for e in (t + 1, 1 + t, x + t, t + x, (x + 1) - t, t - t, t.copy(), t * 2, 2 * t, -t, t / 2, quicksum([t])):
        assert type(e) is QuadExpr
    assert content(y * x + t) == (0.0, [(1, 1)], [(1, 1, 0), (1, 0, 1)])
    assert content(t.__radd__(y)) == content(t + y) and content(t.__rsub__(1)) == content(1 - t)
    assert content(t.__rmul__(3)) == content(3 * t)

    class Sum(QuadExpr):
        def __add__(self, other):
            return "own sum"

        def __radd__(self, other):
            return "own reflected sum"

        def __mul__(self, other):
            return "own product"

    assert Sum() * 1 == 2 * Sum() == "own product"
    assert Sum() + 1 == "own sum" and x * y + Sum() == "own reflected sum"

    class Number(Var):
        def __float__(self):
            return 3.0

    assert content(x * Number(None, 5)) == (0.0, [(3, 0)], [])


def test_long_chains_use_no_stack():
    block = quicksum(v * v for v in handles(200)) + 1
    q = QuadExpr()
    for _ in range(60000):
        q = q + block
    shared = q.copy()
    del q
    gc.collect()
    del shared


def test_sizes():
    vs = handles(1000)
    products = (vs[i % 1000] * vs[i // 1000] for i in range(100000))
    q = QuadExpr()
    for product in products:
        q += product
    for e in (q, quicksum(v * w for v in vs[:100] for w in vs), quicksum([v * w for v in vs[:100] for w in vs])):
        assert e.size() == 100000 and sys.getsizeof(e) <= 26 * 100000
    product = vs[0] * vs[1]
    assert sys.getsizeof(product) <= 150
    assert not any(isinstance(part, LinExpr) for part in gc.get_referents(product))


MODEL_VALUES = (3.0, 1.0)


@pytest.fixture
def solved(model):
    x, y = model.addVar(name="x", ub=3), model.addVar(name="y", ub=1)
    model.setObjective(-x - y)
    model.optimize()
    assert (x.X, y.X) == MODEL_VALUES
    return model


def test_text(solved, xyz):
    x, y = solved.getVars()
    assert str(x * x) == "0.0 + [ x ^ 2 ]" and str(2 * x * y) == "0.0 + [ 2.0 x * y ]"
    assert repr(1 + x + y * y - x * y) == "<zelvan.QuadExpr: 1.0 + x + [ y ^ 2 + -1.0 x * y ]>"
    assert str(x * y <= 1) == "<zelvan.TempConstr: 0.0 + [ x * y ] <= 1>"
    solved.remove(y)
    assert str(x * y) == "0.0 + [ x * <zelvan.Var y (Removed)> ]"
    solved.update()
    assert str(x * y) == "0.0 + [ x * <zelvan.Var *Removed*> ]"


def test_value_of_solution(solved):
    x, y = solved.getVars()
    q = quicksum(0.1 * i * v * w for i, (v, w) in enumerate([(x, y), (y, x), (x, x)] * 50)) + 0.7 + x / 3
    expected = q.getLinExpr().getValue()
    for i in range(q.size()):
        expected += q.getVar1(i).X * q.getVar2(i).X * q.getCoeff(i)
    assert q.getValue() == expected and QuadExpr(3).getValue() == 3.0
    y._note = "fields change nothing"
    assert q.getValue() == expected

    class Fixed(Var):
        x = 100.0

    class Clearing(Var):
        @property
        def x(self):
            q.clear()
            gc.collect()
            return 2.0

    assert (x * Fixed(solved._cmodel, 1)).getValue() == 300.0
    q = x * Clearing(solved._cmodel, 1) + 2 * x * x
    assert q.getValue() == 24.0 and q.size() == 0
    refused("Var has not yet been added to the model", (x * Var(solved._cmodel, -1)).getValue, code=0)


class Canary:
    pass


TIES = [
    lambda x, q: setattr(x, "_keep", q),
    lambda x, q: setattr(x, "_keep", [q <= 1]),
    lambda x, q: setattr(x, "_keep", q.getLinExpr()),
    lambda x, q: setattr(x, "_keep", chain([x, *handles(450)])),
    lambda x, q: setattr(x, "_keep", QuadExpr(x)),
    lambda x, q: setattr(x, "_keep", quicksum([x * x, q])),
]


@pytest.mark.parametrize("tie", TIES)
@pytest.mark.parametrize("fields_first", [False, True])
def test_cycles_are_collected(tie, fields_first):
    x, y = handles(2)
    if fields_first:
        x._note = 1
    q = 2 * y * x + x
    canary = Canary()
    gone = weakref.ref(canary)
    tie(x, q)
    x._canary = canary
    del x, q, canary
    gc.collect()
    assert gone() is None


def test_linear_part_outlives_a_cycle(xyz):
    x, y, z = xyz
    x._note = 1
    q = x * y + z + 3
    x._keep = q
    part = q.getLinExpr()
    gone = weakref.ref(x)
    del x, q, xyz[:]
    gc.collect()
    assert gone() is None and linear(part) == (3.0, [(1, 2)])
    # A change of the part alone closes a cycle.
    x, y = handles(2)
    canary = Canary()
    gone = weakref.ref(canary)
    q = y * y
    x._keep, x._canary = q, canary
    part = q.getLinExpr()
    part += x
    del x, q, part, canary
    gc.collect()
    assert gone() is None


def test_collector_is_not_burdened(xyz):
    x, y, _ = xyz
    made = [x * y, 2 * x * y + 1 <= y, chain(handles(300)), QuadExpr(x), (x + 1) ** 2]
    assert not any(gc.is_tracked(o) for o in made)
    x._field = 1
    assert gc.is_tracked(x * y) and gc.is_tracked(y * x) and gc.is_tracked(QuadExpr(x)) and not gc.is_tracked(y * y)
    assert gc.is_tracked(Own())


def test_reference_counts_stay(xyz):
    x, y, z = xyz
    e, f = x * y + x, chain(handles(250))
    one = 1.5

    def work(rounds):
        for _ in range(rounds):
            g = e + 2 * z * x - x / 4
            g += f
            g -= y * y
            g *= 2
            g.remove(x)
            g = quicksum([x, g, one, e, x * y])
            g._normalize()
            h = QuadExpr(x + 1)
            h *= y + one
            assert (g <= one)._lhs is g and str(h)
            refused(DEGREE, lambda: g * h)
            refused("Coefficient is Nan or Inf", g.addTerms, [one, math.nan], [x, y], [y, z])

    def counts():
        gc.collect()
        return [sys.getrefcount(o) for o in (x, y, z, e, f, one, LinExpr, QuadExpr, TempConstr)]

    work(300)
    before = counts()
    work(2000)
    assert counts() == before
