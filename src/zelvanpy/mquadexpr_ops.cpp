// Operators of arrays of quadratic expressions. The linear half goes by its own rules.

#include "mquadexpr_ops.h"

#include <cmath>

#include "exception.h"
#include "mlinexpr_build.h"
#include "mlinexpr_items.h"
#include "mlinexpr_ops.h"

namespace zelvanpy {

namespace {

py::object in_place(const py::object& linear, py::handle other, PyObject* (*op)(PyObject*, PyObject*)) {
    py::object result = steal(op(linear.ptr(), other.ptr()));
    if (!is_mlinexpr(result)) raise(PyExc_TypeError, "The linear half of an MQuadExpr must stay linear");
    return result;
}

// --- sums

py::object copies_of(py::handle quadexpr, const Shape& shape) {
    return copied_quad_cells(object_scalar(quadexpr), shape);
}

py::object plus_linear(MQuadExpr& self, py::handle other) {
    py::object linear = steal(PyNumber_Add(linear_half(self).ptr(), other.ptr()));
    const Shape shape = mlinexpr_shape(as_mlinexpr(linear));
    if (!self.parts) return mquadexpr_full(copied_quad_cells(quad_cells_of(self), shape), std::move(linear));
    if (mquadexpr_allows_compact(shape)) {
        join_quadparts(*self.parts);
        auto parts = shape.has_zero() ? std::vector<QuadPart>() : shared_quadparts(*self.parts);
        return mquadexpr_compact(std::move(parts), std::move(linear));
    }
    return mquadexpr_full(copies_of(extracted_quadexpr(self), shape), std::move(linear));
}

py::object full_plus_full(py::handle left, py::handle right) {
    MQuadExpr &a = as_mquadexpr(left), &b = as_mquadexpr(right);
    py::object linear = steal(PyNumber_Add(linear_half(a).ptr(), linear_half(b).ptr()));
    const py::object first = quad_cells_of(a), second = quad_cells_of(b);
    const Shape shape = broadcast_shapes(shape_of(first), shape_of(second));
    py::object cells = new_objects(shape);
    walk<3>(shape, {cells_in(cells, shape), cells_in(first, shape), cells_in(second, shape)}, [](const auto& at) {
        const py::object x = quadexpr_at(at[1]), y = quadexpr_at(at[2]);
        py::object sum = owned(quadexpr_copy(as_quadexpr(x)));
        quadexpr_add(as_quadexpr(sum), as_quadexpr(y), 1.0);
        set_object(at[0], std::move(sum));
    });
    return mquadexpr_full(std::move(cells), std::move(linear));
}

py::object plus_quadratic(MQuadExpr& self, py::handle other) {
    MQuadExpr& summand = as_mquadexpr(other);
    if (!self.parts || !summand.parts) return full_plus_full(full_mquadexpr(object_of(self)), full_mquadexpr(other));
    py::object linear = steal(PyNumber_Add(linear_half(self).ptr(), linear_half(summand).ptr()));
    std::vector<QuadPart> parts;
    if (!mlinexpr_shape(as_mlinexpr(linear)).has_zero()) {
        parts = shared_quadparts(*self.parts);
        const std::vector<QuadPart> more = shared_quadparts(*summand.parts);
        parts.insert(parts.end(), more.begin(), more.end());
        join_quadparts(parts);
    }
    return mquadexpr_compact(std::move(parts), std::move(linear));
}

void set_linear_half(MQuadExpr& self, py::object linear) {
    const py::object old = py::reinterpret_steal<py::object>(std::exchange(self.ndle, linear.release().ptr()));
}

void iadd_cells(MQuadExpr& self, MQuadExpr& other) {
    const py::object cells = quad_cells_of(self);
    py::object summands = quad_cells_of(other);
    const Shape shape = shape_of(cells);
    if (overlaps(cells, summands) && !all_refs_match(cells, summands))
        summands = copied_quad_cells(summands, shape_of(summands));
    walk<2>(shape, {cells_in(cells, shape), cells_in(summands, shape)}, [](const auto& at) {
        const py::object cell = quadexpr_at(at[0]), summand = quadexpr_at(at[1]);
        quadexpr_add(as_quadexpr(cell), as_quadexpr(summand), 1.0);
    });
}

void iadd_quadratic(MQuadExpr& self, py::handle other) {
    MQuadExpr& summand = as_mquadexpr(other);
    const Shape shape = mquadexpr_shape(self);
    if (!(broadcast_shapes(shape, mquadexpr_shape(summand)) == shape)) {
        const py::object cells = mlinexpr_zeros_full(mquadexpr_shape(summand));
        require_same_shape(shape, cells_of(as_mlinexpr(cells)));
    }
    std::vector<QuadPart> more;
    if (self.parts && summand.parts) {
        join_quadparts(*summand.parts);
        more = shared_quadparts(*summand.parts);
        self.parts->reserve(self.parts->size() + more.size());
    } else if (self.parts) {
        mquadexpr_convert_to_full(self);
    }
    const py::object full = self.parts ? py::object() : full_mquadexpr(other);
    set_linear_half(self, in_place(linear_half(self), linear_half(summand), PyNumber_InPlaceAdd));
    if (self.parts)
        self.parts->insert(self.parts->end(), more.begin(), more.end());
    else
        iadd_cells(self, as_mquadexpr(full));
}

}  // namespace

py::object mquadexpr_plus(MQuadExpr& self, py::handle other) {
    double value;
    const MatrixOperand kind = classify_matrix(other, value);
    takes_compact_road(self);
    switch (kind) {
        case MatrixOperand::kMLinExpr:
        case MatrixOperand::kMVar:
        case MatrixOperand::kArray:
        case MatrixOperand::kSparse:
            return plus_linear(self, other);
        case MatrixOperand::kMQuadExpr:
            return plus_quadratic(self, other);
        case MatrixOperand::kForeign:
            return borrow(Py_NotImplemented);
        default:
            return mquadexpr_iplus(as_mquadexpr(mquadexpr_copy(self)), other);
    }
}

py::object mquadexpr_iplus(MQuadExpr& self, py::handle other) {
    py::object keep = borrow(object_of(self));
    double value;
    const MatrixOperand kind = classify_matrix(other, value);
    takes_compact_road(self);
    switch (kind) {
        case MatrixOperand::kMVar:
        case MatrixOperand::kForeign:
            return borrow(Py_NotImplemented);
        case MatrixOperand::kQuadExpr:
            iadd_quadratic(self, mquadexpr_from_quadexpr(other));
            break;
        case MatrixOperand::kMQuadExpr:
            iadd_quadratic(self, other);
            break;
        default:
            set_linear_half(self, in_place(linear_half(self), other, PyNumber_InPlaceAdd));
    }
    return keep;
}

// --- products

namespace {

// The only element of an array as numpy gives it.
double only_element(py::handle array) {
    static const Name kItem("item");
    return checked_double(PyFloat_AsDouble(steal(PyObject_CallMethodObjArgs(array.ptr(), kItem.get(), nullptr)).ptr()));
}

void scale_parts(std::vector<QuadPart>& parts, double factor) {
    join_quadparts(parts);
    if (factor == 1.0) return;
    for (QuadPart& part : parts) scale_block(part.block, factor);
}

void scale_cells(py::handle cells, double factor) {
    const Shape shape = shape_of(cells);
    walk<1>(shape, {cells_in(cells, shape)}, [&](const auto& at) {
        const py::object cell = quadexpr_at(at[0]);
        quadexpr_scale(as_quadexpr(cell), factor);
    });
}

void scale_cells(py::handle cells, py::handle factors) {
    const py::object doubles = as_doubles(factors);
    const Shape shape = shape_of(cells);
    walk<2>(shape, {cells_in(cells, shape), cells_in(doubles, shape)}, [](const auto& at) {
        const py::object cell = quadexpr_at(at[0]);
        quadexpr_scale(as_quadexpr(cell), double_at(at[1]));
    });
}

void imul_array(MQuadExpr& self, py::handle array) {
    const py::object linear = linear_half(self);
    if (self.parts) {
        const double factor = mquadexpr_shape(self).has_zero() ? 1.0 : only_element(array);
        set_linear_half(self, in_place(linear, array, PyNumber_InPlaceMultiply));
        return scale_parts(*self.parts, factor);
    }
    const py::object doubles = as_doubles(array);
    set_linear_half(self, in_place(linear, doubles, PyNumber_InPlaceMultiply));
    scale_cells(quad_cells_of(self), doubles);
}

void imul_scalar(MQuadExpr& self, double factor) {
    const py::object number = py::float_(factor);
    check_multiplier(factor);
    set_linear_half(self, in_place(linear_half(self), number, PyNumber_InPlaceMultiply));
    if (self.parts) return scale_parts(*self.parts, factor);
    scale_cells(quad_cells_of(self), factor);
}

py::object full_times_array(MQuadExpr& self, py::handle array) {
    const py::object doubles = as_doubles(array);
    py::object linear = steal(PyNumber_Multiply(linear_half(self).ptr(), doubles.ptr()));
    py::object cells = copied_quad_cells(quad_cells_of(self), mlinexpr_shape(as_mlinexpr(linear)));
    scale_cells(cells, doubles);
    return mquadexpr_full(std::move(cells), std::move(linear));
}

// A compact expression with another linear half and its parts times a number.
py::object scaled_compact(MQuadExpr& self, py::object linear, py::handle factor) {
    std::vector<QuadPart> parts;
    if (!self.parts->empty() && !mlinexpr_shape(as_mlinexpr(linear)).has_zero()) {
        const double value = only_element(factor);
        parts = shared_quadparts(*self.parts);
        scale_parts(parts, value);
    }
    return mquadexpr_compact(std::move(parts), std::move(linear));
}

py::object times_array(MQuadExpr& self, py::handle array) {
    if (!self.parts) return full_times_array(self, array);
    py::object linear = steal(PyNumber_Multiply(linear_half(self).ptr(), array.ptr()));
    if (mquadexpr_allows_compact(mlinexpr_shape(as_mlinexpr(linear))))
        return scaled_compact(self, std::move(linear), array);
    mquadexpr_convert_to_full(self);
    return full_times_array(self, array);
}

py::object full_matmul(MQuadExpr& self, py::handle numbers, bool is_left) {
    const Shape own = mquadexpr_shape(self), other = matrix_shape(numbers);
    const Shape &left = is_left ? own : other, &right = is_left ? other : own;
    const Shape result = matmul_shape(left, right);
    if (left.dims[left.ndim - 1] == 0 || right.dims[0] == 0 || result.has_zero()) return mquadexpr_zeros(result);
    const auto product = [&](const py::object& half, py::handle factor) {
        return steal(is_left ? PyNumber_MatrixMultiply(half.ptr(), factor.ptr())
                             : PyNumber_MatrixMultiply(factor.ptr(), half.ptr()));
    };
    py::object linear = product(linear_half(self), numbers);
    const py::object matrix = is_sparse(numbers) ? dense_of(numbers) : borrow(numbers);
    py::object cells = product(quad_cells_of(self), matrix);
    if (!is_ndarray(cells)) cells = object_scalar(cells);
    const Shape shape = shape_of(cells);
    walk<1>(shape, {cells_in(cells, shape)}, [](const auto& at) {
        const py::object cell = quadexpr_at(at[0]);
        quadexpr_normalize(as_quadexpr(cell));
    });
    mlinexpr_normalize_cells(as_mlinexpr(linear));
    return mquadexpr_full(std::move(cells), std::move(linear));
}

}  // namespace

py::object mquadexpr_times(MQuadExpr& self, py::handle other) {
    double value;
    const MatrixOperand kind = classify_matrix(other, value);
    takes_compact_road(self);
    if (kind == MatrixOperand::kArray) return times_array(self, other);
    if (kind == MatrixOperand::kSparse) return times_array(self, dense_of(other));
    if (kind != MatrixOperand::kScalar) return borrow(Py_NotImplemented);
    const py::object product = mquadexpr_copy(self);
    imul_scalar(as_mquadexpr(product), value);
    return product;
}

py::object mquadexpr_itimes(MQuadExpr& self, py::handle other) {
    double value;
    const MatrixOperand kind = classify_matrix(other, value);
    takes_compact_road(self);
    if (kind == MatrixOperand::kArray)
        imul_array(self, other);
    else if (kind == MatrixOperand::kSparse)
        imul_array(self, dense_of(other));
    else if (kind == MatrixOperand::kScalar)
        imul_scalar(self, value);
    else
        return borrow(Py_NotImplemented);
    return borrow(object_of(self));
}

py::object mquadexpr_matmul(MQuadExpr& self, py::handle numbers, bool is_left) {
    double value;
    const MatrixOperand kind = classify_matrix(numbers, value);
    if (kind != MatrixOperand::kArray && kind != MatrixOperand::kSparse) return borrow(Py_NotImplemented);
    if (!takes_compact_road(self)) return full_matmul(self, numbers, is_left);
    const py::object half = linear_half(self);
    py::object linear = steal(is_left ? PyNumber_MatrixMultiply(half.ptr(), numbers.ptr())
                                      : PyNumber_MatrixMultiply(numbers.ptr(), half.ptr()));
    if (mquadexpr_allows_compact(mlinexpr_shape(as_mlinexpr(linear))))
        return scaled_compact(self, std::move(linear),
                              kind == MatrixOperand::kSparse ? dense_of(numbers) : borrow(numbers));
    mquadexpr_convert_to_full(self);
    return full_matmul(self, numbers, is_left);
}

}  // namespace zelvanpy
