"""Random operands of the matrix layer, and what they are worth when the variables have values."""

import warnings

import numpy as np
import scipy.sparse as sp
from hypothesis import strategies as st

from zelvanpy import LinExpr, MLinExpr, Model, MQuadExpr, MVar, QuadExpr, Var

SPARSE_FORMATS = ["csr", "csc", "coo", "lil", "dok", "bsr", "dia"]


class World:
    """Variables of a model, some of which await its update, with a value for each."""

    def __init__(self, env):
        self.model = Model(env=env)
        self.model.Params.UpdateMode = 0  # new variables have no index yet
        self.variables = [self.model.addVar(name="v%d" % i) for i in range(12)]
        self.model.update()
        self.variables += [self.model.addVar() for _ in range(6)]
        self.value = {id(v): float(3 * i % 7 - 2) for i, v in enumerate(self.variables)}

    def of(self, thing):
        """The worth of any operand or result: a float, or an array of its shape."""
        worth = self.worth(thing)
        return np.array(worth) if is_matrix_object(thing) else worth

    def worth(self, thing):
        if isinstance(thing, Var):
            return self.value[id(thing)]
        if isinstance(thing, LinExpr):
            return thing.getConstant() + sum(thing.getCoeff(i) * self.of(thing.getVar(i)) for i in range(thing.size()))
        if isinstance(thing, QuadExpr):
            terms = (
                thing.getCoeff(i) * self.of(thing.getVar1(i)) * self.of(thing.getVar2(i)) for i in range(thing.size())
            )
            return sum(terms) + self.of(thing.getLinExpr())
        if isinstance(thing, MVar):
            return self.cells(thing._vararr)
        if isinstance(thing, MLinExpr):
            return self.compact(thing) if thing._is_compact else self.cells(thing._learr)
        if isinstance(thing, MQuadExpr):
            return self.of(thing._ndle) + self.quadratic(thing)
        return thing.toarray() if sp.issparse(thing) else np.asarray(thing, dtype=float)

    def cells(self, array):
        return np.array([self.of(cell) for cell in array.flat], dtype=float).reshape(array.shape)

    def compact(self, e):
        assert e._learr is None
        result = e._const.copy()
        for matrix, x in e._matmulparts:
            assert isinstance(matrix, sp.csr_matrix) and matrix.dtype == np.float64
            assert matrix.shape == (e._leading_adim, x.size) and x.ndim == 1
            result = result + (matrix @ self.of(x)).reshape(result.shape)
        return result

    def quadratic(self, q):
        if not q._is_compact:
            assert all(cell.getLinExpr().size() == 0 for cell in q._qearr.flat)
            return self.cells(q._qearr)
        assert q._qearr is None
        return sum(self.of(x) @ matrix.toarray() @ self.of(y) for x, matrix, y in q._quadparts)


NUMBERS = st.integers(-3, 3).map(float)


@st.composite
def shapes(draw, max_dims=3):
    return tuple(draw(st.lists(st.sampled_from([1, 2, 3, 0]), max_size=max_dims)))


@st.composite
def arrays(draw, shape, nonzero=False):
    """ndarrays of numbers in every layout."""
    size = int(np.prod(shape))
    cells = draw(st.lists(NUMBERS, min_size=size, max_size=size))
    array = np.array(cells).reshape(shape)
    if nonzero:
        array = np.where(array == 0, 4.0, array)
    kind = draw(st.sampled_from(["C", "F", "strided", "read-only", "int32", "int64", "float32", "bool", "big-endian"]))
    if kind == "F":
        return np.array(array, order="F")
    if kind == "strided" and array.ndim:
        wide = np.full([2 * n for n in shape], 9.0)
        wide[tuple(slice(None, None, 2) for _ in shape)] = array
        return wide[tuple(slice(None, None, 2) for _ in shape)]
    if kind == "read-only":
        array.flags.writeable = False
    if kind in ("int32", "int64", "float32") or (kind == "bool" and not nonzero):
        return array.astype(kind)
    return array.astype(">f8") if kind == "big-endian" else array


@st.composite
def sparse_matrices(draw, shape):
    dense = draw(arrays(shape))
    matrix = sp.coo_matrix(dense.astype(float))
    if draw(st.booleans()) and matrix.nnz:  # duplicates and stored zeros
        row, col = matrix.row, matrix.col
        data = np.concatenate([matrix.data - 1, np.ones_like(matrix.data), np.zeros_like(matrix.data)])
        matrix = sp.coo_matrix((data, (np.tile(row, 3), np.tile(col, 3))), shape=shape)
    kind = draw(st.sampled_from(SPARSE_FORMATS + ["unsorted", "int64 indices", "array"]))
    if kind in SPARSE_FORMATS:
        return matrix.asformat(kind)
    matrix = matrix.tocsr()
    if kind == "array":
        return sp.csr_array(matrix) if hasattr(sp, "csr_array") else matrix
    order = np.concatenate(
        [np.arange(a, b)[::-1] for a, b in zip(matrix.indptr, matrix.indptr[1:])] + [np.array([], int)]
    )
    data, indices = matrix.data[order], matrix.indices[order]
    turned = sp.csr_matrix(matrix.shape)
    turned.data, turned.indices, turned.indptr = data, indices, matrix.indptr
    turned.has_sorted_indices = False
    if kind == "int64 indices":
        turned.indices, turned.indptr = turned.indices.astype(np.int64), turned.indptr.astype(np.int64)
    return turned


@st.composite
def mvars(draw, world, shape):
    size = int(np.prod(shape))
    array = np.empty(size, dtype=object)
    array[:] = [world.variables[i] for i in draw(st.lists(st.integers(0, 17), min_size=size, max_size=size))]
    return MVar(array.reshape(shape))


@st.composite
def mlinexprs(draw, world, shape):
    """Every form: constants only, one part, several parts, full, and full without cells of its own yet."""
    x = draw(mvars(world, shape))
    kind = draw(st.sampled_from(["zeros", "mvar", "affine", "parts", "full", "scaled", "product"]))
    if kind == "zeros":
        return MLinExpr.zeros(shape) + draw(NUMBERS)
    if kind == "mvar":
        return x._toexpr()
    if kind == "scaled":
        return x * draw(arrays(shape))
    if kind == "product" and len(shape) == 1:
        y = draw(mvars(world, (3,)))
        matrix = draw(st.one_of(arrays(shape + (3,)), sparse_matrices(shape + (3,))))
        return matrix @ y
    e = 2 * x + draw(arrays(shape))
    if kind in ("parts", "full"):
        e += draw(mvars(world, shape))
        e += world.variables[draw(st.integers(0, 17))]
    if kind == "full":
        e = e[...]
    return e


@st.composite
def mquadexprs(draw, world, shape):
    kind = draw(st.sampled_from(["product", "form", "zeros"]))
    if kind == "zeros":
        return MQuadExpr.zeros(shape)
    if kind == "form" and shape == ():
        x, y = draw(mvars(world, (2,))), draw(mvars(world, (3,)))
        form = x @ draw(st.one_of(arrays((2, 3)), sparse_matrices((2, 3)))) @ y
        if draw(st.booleans()):
            form += y @ y
        return form + draw(mlinexprs(world, ()))
    return draw(mvars(world, shape)) * draw(mlinexprs(world, shape)) + draw(arrays(shape))


@st.composite
def scalars(draw, nonzero=False):
    value = draw(NUMBERS)
    if nonzero and value == 0:
        value = 2.0
    return draw(st.sampled_from([float, int, np.float64, np.int32, np.float32]))(value)


@st.composite
def scalar_expressions(draw, world):
    v, w = (world.variables[draw(st.integers(0, 17))] for _ in range(2))
    kinds = [lambda: v, lambda: 2 * v - w + 1, lambda: LinExpr(3.0), lambda: v * w, lambda: v * v + 2 * w - 1]
    return kinds[draw(st.integers(0, 4))]()


@st.composite
def matrix_objects(draw, world, shape):
    make = draw(st.sampled_from([mvars, mlinexprs, mlinexprs, mquadexprs]))
    return draw(make(world, shape))


@st.composite
def operands(draw, world, shape):
    """Anything that an operator may meet beside a matrix object."""
    kind = draw(st.sampled_from(["matrix", "matrix", "array", "sparse", "scalar", "expression"]))
    if kind == "matrix":
        return draw(matrix_objects(world, shape))
    if kind == "sparse" and len(shape) == 2:
        return draw(sparse_matrices(shape))
    if kind == "scalar":
        return draw(scalars())
    return draw(scalar_expressions(world)) if kind == "expression" else draw(arrays(shape))


def degree(thing):
    if isinstance(thing, (MQuadExpr, QuadExpr)):
        return 2
    return 1 if isinstance(thing, (MVar, MLinExpr, Var, LinExpr)) else 0


def is_matrix_object(thing):
    return isinstance(thing, (MVar, MLinExpr, MQuadExpr))


def allows_compact(shape):
    return len(shape) <= 2 and sum(n > 1 for n in shape) <= 1 and (len(shape) < 2 or min(shape) <= 1)


def quietly(function, *arguments):
    """What the function gives or raises, without the warning of slow products."""
    with warnings.catch_warnings():
        warnings.simplefilter("ignore", RuntimeWarning)
        warnings.simplefilter("ignore", sp.SparseEfficiencyWarning)
        try:
            return function(*arguments), None
        except Exception as error:
            return None, error
