// Matrix products of arrays of linear expressions.

#include <algorithm>

#include "linexpr_ops.h"
#include "mlinexpr_build.h"
#include "mlinexpr_ops.h"
#include "mquadexpr.h"
#include "mvar.h"

namespace zelvanpy {

namespace {

constexpr Py_intptr_t kQuietLength = 25;  // of the longest dimension that gives no warning

void warn_of_objects(const Shape& left, const Shape& right) {
    Py_intptr_t longest = 0;
    for (const Shape* shape : {&left, &right})
        for (int i = 0; i < shape->ndim; ++i) longest = std::max(longest, shape->dims[i]);
    if (longest <= kQuietLength) return;
    checked(PyErr_WarnEx(PyExc_RuntimeWarning,
                         "Chained matrix multiplications of MVars is inefficient, collect numeric terms first when "
                         "building expressions",
                         1));
}

py::object matrix_product(py::handle left, py::handle right) {
    return steal(PyNumber_MatrixMultiply(left.ptr(), right.ptr()));
}
py::object as_array(const py::object& product) { return is_ndarray(product) ? product : private_doubles(product); }
py::object transposed(py::handle matrix) {
    static const Name kT("T");
    return steal(PyObject_GetAttr(matrix.ptr(), kT.get()));
}

// scipy.sparse.kron(left, right)
py::object kron(py::handle left, py::handle right) {
    static PyObject* function = nullptr;
    if (!function) {
        const py::object module = steal(PyImport_ImportModule("scipy.sparse"));
        function = steal(PyObject_GetAttrString(module.ptr(), "kron")).release().ptr();
    }
    return steal(PyObject_CallFunctionObjArgs(function, left.ptr(), right.ptr(), nullptr));
}

bool is_empty_product(const Shape& left, const Shape& right, const Shape& result) {
    return left.dims[left.ndim - 1] == 0 || right.dims[0] == 0 || result.has_zero();
}

// --- times numbers

SharedRows rows_from(const py::object& product) {
    return is_ndarray(product) ? rows_of_dense(product, false) : rows_of_sparse(product, false);
}

// The rows of numbers @ (rows x), or of (rows x) @ numbers.
SharedRows multiplied_rows(const SharedRows& rows, const Shape& shape, py::handle numbers, bool is_left) {
    const bool is_row = shape.ndim == 2 && shape.dims[0] == 1, is_column = shape.ndim == 2 && !is_row;
    const bool by_kron = is_left ? is_column : is_row;
    const py::object factor = is_left ? transposed(numbers) : borrow(numbers);
    if (rows->is_identity && !by_kron) {  // no product to form
        SharedRows same = is_sparse(numbers) ? (is_left ? rows_of_transposed(numbers) : rows_of_sparse(numbers, true))
                                             : rows_of_dense(numbers, is_left);
        if (rows->multiple != 1.0)
            for (std::size_t k = 0, num = same->num_entries(); k < num; ++k) same->value[k] *= rows->multiple;
        return same;
    }
    const py::object matrix = csr_matrix_over(stored_rows(rows));
    return rows_from(by_kron ? kron(factor, matrix) : matrix_product(factor, matrix));
}

py::object compact_times_numbers(MLinExpr& self, py::handle numbers, bool is_left, const Shape& result) {
    CompactForm& form = *self.compact;
    const py::object& constants = form.constants.stored();
    const Shape own = form.constants.shape;
    CompactForm product{Constants(private_doubles(as_array(is_left ? matrix_product(constants, numbers)
                                                                   : matrix_product(numbers, constants)))),
                        {}};
    if (!(product.constants.shape == result)) raise(PyExc_ValueError, "the product has an unexpected shape");
    form.join_parts();
    if (!result.has_zero() && !form.blocks.empty()) {
        const Block block = form.blocks.size() == 1 && form.blocks[0].rows->is_identity && !form.blocks[0].negated
                                ? form.blocks[0]
                                : single_block(form);
        product.blocks.push_back({multiplied_rows(block.rows, own, numbers, is_left), block.vars});
    }
    return new_mlinexpr(std::move(product));
}

// The cells of a product of arrays of objects by numpy, an array also where there is one cell.
py::object cell_product(py::handle left, py::handle right) {
    py::object product = matrix_product(left, right);
    return is_ndarray(product) ? product : object_scalar(product);
}

py::object full_times_numbers(MLinExpr& self, py::handle numbers, bool is_left) {
    const Shape own = mlinexpr_shape(self), other = matrix_shape(numbers);
    const Shape &left = is_left ? own : other, &right = is_left ? other : own;
    if (is_left) warn_of_objects(left, right);
    const Shape result = matmul_shape(left, right);
    if (is_empty_product(left, right, result)) return mlinexpr_zeros(result);
    if (!is_left) warn_of_objects(left, right);
    const py::object matrix = is_sparse(numbers) ? dense_of(numbers) : borrow(numbers);
    const py::object cells = cells_of(self);
    py::object product = is_left ? cell_product(cells, matrix) : cell_product(matrix, cells);
    const Shape shape = shape_of(product);
    walk<1>(shape, {cells_in(product, shape)}, [](const auto& at) {
        const py::object cell = linexpr_at(at[0]);
        linexpr_normalize(as_linexpr(cell));
    });
    return wrap_cells(std::move(product));
}

py::object times_numbers(MLinExpr& self, py::handle numbers, bool is_left) {
    if (!takes_compact_road(self)) return full_times_numbers(self, numbers, is_left);
    const Shape own = mlinexpr_shape(self), other = matrix_shape(numbers);
    const Shape result = is_left ? matmul_shape(own, other) : matmul_shape(other, own);
    if (allows_compact(result)) return compact_times_numbers(self, numbers, is_left, result);
    return full_times_numbers(as_mlinexpr(mlinexpr_to_full(self)), numbers, is_left);
}

// --- times variables and expressions

py::object full_times_cells(py::handle left, py::handle right) {
    const Shape result = matmul_shape(shape_of(left), shape_of(right));
    if (is_empty_product(shape_of(left), shape_of(right), result)) return mquadexpr_zeros(result);
    return mquadexpr_from_cells(cell_product(left, right));
}

// self @ mvar, or mvar @ self
py::object times_mvar(MLinExpr& self, py::handle mvar, bool is_left) {
    const py::object vars = array_of(mvar);
    const Shape own = mlinexpr_shape(self), other = shape_of(vars);
    const bool compact = takes_compact_road(self);
    const Shape result = is_left ? matmul_shape(own, other) : matmul_shape(other, own);
    if (!compact || !mquadexpr_allows_compact(result)) {
        const py::object full = full_of(object_of(self));
        const py::object cells = cells_of(as_mlinexpr(full));
        return is_left ? full_times_cells(cells, vars) : full_times_cells(vars, cells);
    }
    CompactForm& form = *self.compact;
    const py::object constants = form.constants.stored();
    py::object linear =
        is_left ? mlinexpr_from_matmul_right(constants, mvar) : mlinexpr_from_matmul_left(mvar, constants);
    std::vector<QuadPart> parts;
    form.join_parts();
    if (!form.blocks.empty()) {
        single_block(form);
        const Block block = shared_blocks(form).front();
        if (!result.has_zero()) parts.push_back({std::make_shared<Vars>(borrow(mvar)), block});
    }
    return mquadexpr_compact(std::move(parts), std::move(linear));
}

// The part of a product's linear half: the constants of one factor, as a row, times the rows of the other.
void append_cross_part(CompactForm& linear, const py::object& constants, CompactForm& other) {
    if (other.blocks.empty()) return;
    const Block& block = single_block(other);
    const py::object row = numpy().attr("ravel")(constants);
    const py::object product = matrix_product(row, csr_matrix_over(copy_rows(*block.rows)));
    linear.blocks.push_back({rows_of_dense(product, false), block.vars});
}

py::object compact_times_compact(CompactForm& left, CompactForm& right, const Shape& result) {
    const py::object b = left.constants.stored(), d = right.constants.stored();
    CompactForm linear{Constants(private_doubles(as_array(matrix_product(b, d)))), {}};
    std::vector<QuadPart> parts;
    if (!result.has_zero() && left.constants.shape.size() > 0) {
        append_cross_part(linear, b, right);
        append_cross_part(linear, d, left);
        if (!left.blocks.empty() && !right.blocks.empty()) {
            const Block first = single_block(left), second = single_block(right);
            const py::object matrix = matrix_product(transposed(csr_matrix_over(copy_rows(*first.rows))),
                                                     csr_matrix_over(copy_rows(*second.rows)));
            parts.push_back({first.vars, {rows_of_sparse(matrix, false), second.vars}});
        }
    }
    return mquadexpr_compact(std::move(parts), new_mlinexpr(std::move(linear)));
}

py::object times_mlinexpr(MLinExpr& self, MLinExpr& other) {
    const bool compact = takes_compact_road(self);
    const Shape left = mlinexpr_shape(self), right = mlinexpr_shape(other), result = matmul_shape(left, right);
    if (compact && other.compact && mquadexpr_allows_compact(result))
        return compact_times_compact(*self.compact, *other.compact, result);
    mlinexpr_convert_to_full(self);
    if (is_empty_product(left, right, result)) return mquadexpr_zeros(result);
    warn_of_objects(left, right);
    mlinexpr_convert_to_full(other);
    return full_times_cells(cells_of(self), cells_of(other));
}

}  // namespace

py::object mlinexpr_matmul(MLinExpr& self, py::handle other) {
    double value;
    switch (classify_matrix(other, value)) {
        case MatrixOperand::kArray:
        case MatrixOperand::kSparse:
            return times_numbers(self, other, true);
        case MatrixOperand::kMVar:
            return times_mvar(self, other, true);
        case MatrixOperand::kMLinExpr:
            return times_mlinexpr(self, as_mlinexpr(other));
        default:
            return borrow(Py_NotImplemented);
    }
}

py::object mlinexpr_rmatmul(MLinExpr& self, py::handle other) {
    double value;
    switch (classify_matrix(other, value)) {
        case MatrixOperand::kArray:
        case MatrixOperand::kSparse:
            return times_numbers(self, other, false);
        case MatrixOperand::kMVar:
            return times_mvar(self, other, false);
        default:
            return borrow(Py_NotImplemented);
    }
}

}  // namespace zelvanpy
