#include "mlinexpr_build.h"

#include "linexpr_build.h"
#include "mvar.h"
#include "pynumber.h"

namespace zelvanpy {

namespace {

const Name kShape("shape");

bool may_be_compact(PyTypeObject* type, const Shape& shape) { return keeps_compact(type) && allows_compact(shape); }

py::object vector_expression(py::handle mvar, const Shape& shape, double factor, PyTypeObject* type) {
    CompactForm form{Constants(shape, 0.0), {}};
    if (!shape.has_zero())
        form.blocks.push_back({identity_rows(shape.size(), factor), std::make_shared<Vars>(borrow(mvar))});
    return new_mlinexpr(std::move(form), type);
}

}  // namespace

py::object mlinexpr_from_mvar(py::handle mvar, bool force_full, PyTypeObject* type) {
    const Shape shape = mvar_shape(mvar);
    if (force_full || !may_be_compact(type, shape)) return mlinexpr_from_mvar_full(mvar, type);
    return vector_expression(mvar, shape, 1.0, type);
}

py::object mlinexpr_from_mvar_full(py::handle mvar, PyTypeObject* type) {
    const py::object vars = array_of(mvar);
    const Shape shape = shape_of(vars);
    py::object cells = new_objects(shape);
    walk<2>(shape, {cells_in(cells, shape), cells_in(vars, shape)}, [](const auto& at) {
        Handle* var = var_in(*reinterpret_cast<PyObject**>(at[1]));
        set_object(at[0], owned(linexpr_of_var(var, 1.0)));
    });
    return wrap_cells(std::move(cells), type);
}

py::object mlinexpr_from_scaled_mvar(py::handle mvar, double factor) {
    const Shape shape = mvar_shape(mvar);
    if (may_be_compact(MLinExpr_Type, shape)) return vector_expression(mvar, shape, factor, MLinExpr_Type);
    const py::object e = mlinexpr_from_mvar_full(mvar), number = py::float_(factor);
    return steal(PyNumber_InPlaceMultiply(e.ptr(), number.ptr()));
}

py::object mlinexpr_from_var(py::handle var, PyTypeObject* type) {
    return wrap_cells(object_scalar(owned(linexpr_of_var(as_handle(var), 1.0))), type);
}

py::object mlinexpr_from_linexpr(py::handle linexpr, PyTypeObject* type) {
    return wrap_cells(object_scalar(owned(linexpr_copy(as_linexpr(linexpr)))), type);
}

py::object mlinexpr_from_constants(py::handle b, PyTypeObject* type) {
    return new_mlinexpr({Constants(private_doubles(b)), {}}, type);
}

Shape matrix_shape(py::handle matrix) {
    if (is_ndarray(matrix)) return shape_of(matrix);
    const py::object lengths = steal(PyObject_GetAttr(matrix.ptr(), kShape.get()));
    const py::object tuple = steal(PySequence_Tuple(lengths.ptr()));
    if (PyTuple_GET_SIZE(tuple.ptr()) > kMaxDims) raise(PyExc_ValueError, "A matrix has too many dimensions");
    Shape shape;
    for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(tuple.ptr()); ++i)
        shape.append(list_index(PyTuple_GET_ITEM(tuple.ptr(), i)));
    return shape;
}

// --- the compact form

namespace {

[[noreturn]] void raise_not_compact(const char* what, const Shape& shape, const char* end) {
    PyErr_Format(PyExc_ValueError, "%s %S%s", what, shape_tuple(shape).ptr(), end);
    throw PythonError{};
}

// The constants b broadcast with the zeros of a product.
Constants constants_for(const Shape& product, py::handle b) {
    if (b.is_none()) return {product, 0.0};
    const py::object doubles = private_doubles(b);
    const Shape total = broadcast_shapes(product, shape_of(doubles));
    if (!allows_compact(total)) raise_not_compact("Compact state cannot have shape", total, "");
    if (total == shape_of(doubles)) return Constants(doubles);
    py::object wide = new_array(total, CellType::kDouble);
    double* out = data_of<double>(wide);
    walk<1>(total, {cells_in(doubles, total)}, [&](const auto& at) { *out++ = double_at(at[0]); });
    return Constants(wide);
}

SharedRows matrix_rows(py::handle matrix, bool transposed) {
    if (!is_sparse(matrix)) {
        const py::object array = is_ndarray(matrix) ? borrow(matrix) : private_doubles(matrix);
        if (shape_of(array).ndim != 1 && shape_of(array).ndim != 2)
            raise(PyExc_ValueError, "A matrix has one or two dimensions");
        return rows_of_dense(array, transposed);
    }
    return transposed ? rows_of_transposed(matrix) : rows_of_sparse(matrix, true);
}

// The rows of a 1 by 1 matrix that multiplies each of the variables.
SharedRows diagonal_rows(const Rows& single, Py_intptr_t size) {
    if (single.num_rows != 1 || single.num_cols != 1) raise(PyExc_AssertionError, "the matrix must be 1 by 1");
    double value = 0.0;
    for (std::size_t k = 0; k < single.num_entries(); ++k) value += single.value[k];
    if (value != 0.0) return identity_rows(size, value);
    SharedRows none = new_rows(size, size, 0);
    std::fill_n(none->begin.data(), size + 1, 0);
    return none;
}

}  // namespace

py::object mlinexpr_from_affine(py::handle x_left, py::handle matrix, py::handle x_right, py::handle b,
                                PyTypeObject* type) {
    const bool is_left = !x_left.is_none();
    if (is_left && !x_right.is_none()) raise(PyExc_ValueError, "Matmul expression has too many variables");
    const py::handle x = is_left ? x_left : x_right;
    if (x.is_none()) {
        if (!matrix.is_none()) raise(PyExc_ValueError, "Matmul expression has no variables");
        return b.is_none() ? new_mlinexpr({Constants(Shape(), 0.0), {}}, type) : mlinexpr_from_constants(b, type);
    }
    if (!is_mvar(x)) raise(PyExc_TypeError, "The variables of a product must be an MVar");
    const Shape shape = mvar_shape(x), other = matrix_shape(matrix);
    const Shape product = is_left ? matmul_shape(shape, other) : matmul_shape(other, shape);
    Constants constants = constants_for(product, b);
    if (!allows_compact(shape))
        raise_not_compact(is_left ? "Left variable's shape" : "Right variable's shape", shape, " is not compact");
    SharedRows rows = matrix_rows(matrix, is_left);
    const int across = is_left ? 0 : 1;
    if (shape.ndim == 2 && shape.dims[across] > 1) rows = diagonal_rows(*rows, shape.dims[across]);
    if (rows->num_cols != shape.size() || rows->num_rows != constants.shape.size())
        raise(PyExc_AssertionError, "the matrix doesn't fit the variables and the constants");
    CompactForm form{std::move(constants), {}};
    form.blocks.push_back({rows, std::make_shared<Vars>(borrow(x))});
    return new_mlinexpr(std::move(form), type);
}

// --- products cell by cell

namespace {

// The rows of a matrix or of its transpose: dense ones with all entries, sparse ones with those stored.
class Entries {
public:
    Entries(py::handle matrix, bool transposed) {
        if (is_sparse(matrix)) {
            rows_ = transposed ? rows_of_transposed(matrix) : rows_of_sparse(matrix, false);
            return;
        }
        dense_ = has_cells(matrix, CellType::kDouble) ? borrow(matrix) : private_doubles(matrix);
        const auto& fields = array_fields(dense_);
        const int row = transposed ? fields.nd - 1 : 0, col = transposed ? 0 : fields.nd - 1;
        row_stride_ = fields.nd == 1 ? 0 : fields.strides[row];
        col_stride_ = fields.strides[col];
        num_cols_ = fields.dimensions[col];
    }
    // A new expression of row i times the variables from `vars` on.
    LinExpr* times(Py_intptr_t i, const char* vars, Py_intptr_t stride) const {
        LinExpr* e = new_linexpr();
        const py::object keep = owned(e);
        if (rows_) {
            const std::int32_t first = rows_->begin[i], last = rows_->begin[i + 1];
            reserve_terms(e, last - first);
            for (std::int32_t k = first; k < last; ++k) append(e, rows_->value[k], vars + rows_->index[k] * stride);
        } else {
            reserve_terms(e, num_cols_);
            const char* at = array_fields(dense_).data + i * row_stride_;
            for (Py_intptr_t k = 0; k < num_cols_; ++k) append(e, double_at(at + k * col_stride_), vars + k * stride);
        }
        keep.inc_ref();
        return e;
    }

private:
    static void append(LinExpr* e, double coeff, const char* cell) {
        check_coefficient(coeff);
        linexpr_append(e, coeff, var_in(*reinterpret_cast<PyObject* const*>(cell)));
    }
    SharedRows rows_;
    py::object dense_;
    Py_intptr_t row_stride_ = 0, col_stride_ = 0, num_cols_ = 0;
};

// Where the vectors lie that the rows of the matrix are multiplied with: columns of a right operand, rows of a left
// one.
struct Vectors {
    const char* data;
    Py_intptr_t num, stride, step;  // from one vector to the next, and within one

    Vectors(py::handle vars, bool is_right) {
        const auto& fields = array_fields(vars);
        const int within = is_right ? 0 : fields.nd - 1, across = is_right ? fields.nd - 1 : 0;
        data = fields.data;
        num = fields.nd == 1 ? 1 : fields.dimensions[across];
        stride = fields.nd == 1 ? 0 : fields.strides[across];
        step = fields.strides[within];
    }
};

// The cells of matrix @ vars (is_right) or vars @ matrix.
py::object product_cells(py::handle matrix, py::handle vars, bool is_right, const Shape& result) {
    const Entries entries(matrix, !is_right);
    const Vectors vectors(vars, is_right);
    py::object cells = new_objects(result);
    char* const first = array_fields(cells).data;
    const Py_intptr_t num_rows = result.size() / vectors.num;
    for (Py_intptr_t v = 0; v < vectors.num; ++v)
        for (Py_intptr_t i = 0; i < num_rows; ++i) {
            const Py_intptr_t position = is_right ? i * vectors.num + v : v * num_rows + i;
            LinExpr* e = entries.times(i, vectors.data + v * vectors.stride, vectors.step);
            set_object(first + position * static_cast<Py_intptr_t>(sizeof(PyObject*)), owned(e));
        }
    return cells;
}

[[noreturn]] void raise_cannot_construct(py::handle from) {
    PyErr_Format(PyExc_ValueError, "Cannot construct MLinExpr from %S", from.ptr());
    throw PythonError{};
}

Shape shape_of_operand(py::handle matrix) {
    try {
        return matrix_shape(matrix);
    } catch (const PythonError&) {
        PyErr_Clear();
        raise_cannot_construct(matrix);
    }
}

py::object from_matmul(py::handle matrix, py::handle mvar, bool is_right, PyTypeObject* type) {
    if (!is_mvar(mvar)) raise_cannot_construct(mvar);
    const Shape shape = mvar_shape(mvar), other = shape_of_operand(matrix);
    const Shape result = is_right ? matmul_shape(other, shape) : matmul_shape(shape, other);
    const Py_intptr_t inner = is_right ? shape.dims[0] : other.dims[0];
    if (inner == 0 || result.has_zero()) return mlinexpr_zeros(result, type);
    if (!is_ndarray(matrix) && !is_sparse(matrix)) raise_cannot_construct(matrix);
    if (may_be_compact(type, result) && allows_compact(shape)) {
        const py::handle nothing = Py_None;
        return is_right ? mlinexpr_from_affine(nothing, matrix, mvar, nothing, type)
                        : mlinexpr_from_affine(mvar, matrix, nothing, nothing, type);
    }
    const py::object vars = array_of(mvar);
    return wrap_cells(product_cells(matrix, vars, is_right, result), type);
}

}  // namespace

py::object mlinexpr_from_matmul_right(py::handle matrix, py::handle mvar, PyTypeObject* type) {
    return from_matmul(matrix, mvar, true, type);
}

py::object mlinexpr_from_matmul_left(py::handle mvar, py::handle matrix, PyTypeObject* type) {
    return from_matmul(matrix, mvar, false, type);
}

}  // namespace zelvanpy
