// Products of arrays of linear expressions with numbers, and elementwise ones with variables.

#include <cmath>

#include "exception.h"
#include "linexpr_ops.h"
#include "mlinexpr_build.h"
#include "mlinexpr_ops.h"
#include "mquadexpr.h"
#include "mvar.h"

namespace zelvanpy {

void scale_block(Block& block, double factor) {
    if (factor == -1.0 && block.rows->exports == 0) {
        block.negated = !block.negated;
        return;
    }
    if (block.rows->is_identity) {
        block.rows = identity_rows(block.rows->num_rows, block.rows->multiple * factor);
        return;
    }
    if (block.rows.use_count() - block.rows->exports > 1) block.rows = copy_rows(*block.rows);
    double* values = block.rows->value.data();
    for (std::size_t k = 0, num = block.rows->num_entries(); k < num; ++k) values[k] *= factor;
}

namespace {

// Doubles of an array of factors, all of them finite.
py::object checked_factors(py::handle array, const char* refusal) {
    py::object doubles = as_doubles(array);
    const Shape shape = shape_of(doubles);
    bool finite = true;
    walk<1>(shape, {cells_in(doubles, shape)}, [&](const auto& at) { finite &= std::isfinite(double_at(at[0])); });
    if (!finite) raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT, refusal);
    return doubles;
}
constexpr char kCompactRefusal[] = "Multiplier is infinite or NaN";
constexpr char kFullRefusal[] = "Multiplier is Nan or Inf";

// Multiplies each row by its factor; the rows are nobody else's.
void scale_rows(Rows& rows, const double* factors) {
    for (Py_intptr_t i = 0; i < rows.num_rows; ++i)
        for (std::int32_t k = rows.begin[i]; k < rows.begin[i + 1]; ++k) rows.value[k] *= factors[i];
}

// Rows for a change of their values: stored entries, which nobody else has.
void make_private(Block& block) {
    const SharedRows before = block.rows;
    block.rows = stored_rows(before);
    const long owners = block.rows.use_count() - block.rows->exports - (block.rows == before ? 1 : 0);
    if (owners > 1) block.rows = copy_rows(*block.rows);
}

// Readies blocks for scale_blocks(), which then takes no memory.
void prepare_blocks(std::vector<Block>& blocks, py::handle factors) {
    if (size_of(factors) != 1)
        for (Block& block : blocks) make_private(block);
}

void scale_blocks(std::vector<Block>& blocks, py::handle factors) {
    const double* numbers = data_of<double>(factors);
    if (size_of(factors) == 1) {
        for (Block& block : blocks) scale_block(block, numbers[0]);
        return;
    }
    for (Block& block : blocks) scale_rows(*block.rows, numbers);
}

// --- compact

void multiply_number(Constants& constants, double factor) {
    if (!constants.array) {
        constants.fill *= factor;
        return;
    }
    constants.data();
    double* numbers = data_of<double>(constants.array);
    for (Py_intptr_t i = 0, size = constants.shape.size(); i < size; ++i) numbers[i] *= factor;
}

void imul_compact_scalar(CompactForm& form, double factor) {
    if (factor == 1.0) return;
    check_multiplier(factor);
    multiply_number(form.constants, factor);
    form.join_parts();
    for (Block& block : form.blocks) scale_block(block, factor);
}

void imul_compact_array(CompactForm& form, py::handle array) {
    py::object factors = checked_factors(array, kCompactRefusal);
    if (!is_contiguous(factors)) factors = private_doubles(factors);
    require_same_shape(form.constants.shape, factors);
    prepare_blocks(form.blocks, factors);
    multiply_in_place(form.constants, factors);
    form.join_parts();
    scale_blocks(form.blocks, factors);
}

// Constants as they are seen from a larger shape.
Constants broadcast_constants(const Constants& constants, const Shape& shape) {
    if (!constants.array) return {shape, constants.fill};
    constants.data();
    py::object wide = new_array(shape, CellType::kDouble);
    double* out = data_of<double>(wide);
    walk<1>(shape, {cells_in(constants.array, shape)}, [&](const auto& at) { *out++ = double_at(at[0]); });
    return Constants(wide);
}

py::object full_times_array(MLinExpr& self, py::handle array);

py::object compact_times_array(MLinExpr& self, py::handle array) {
    const Shape own = mlinexpr_shape(self), shape = broadcast_shapes(own, shape_of(array));
    if (!allows_compact(shape)) return full_times_array(as_mlinexpr(mlinexpr_to_full(self)), array);
    self.compact->join_parts();
    CompactForm product{broadcast_constants(self.compact->constants, shape), {}};
    if (!shape.has_zero()) product.blocks = shared_blocks(*self.compact);
    if (own.size() != shape.size())
        for (Block& block : product.blocks) block.rows = repeated_row(*block.rows, shape.size());
    imul_compact_array(product, array);
    return new_mlinexpr(std::move(product));
}

// --- full

void imul_full_scalar(MLinExpr& self, double factor) {
    if (factor == 1.0) return;
    check_multiplier(factor);
    const py::object cells = cells_of(self);
    const Shape shape = shape_of(cells);
    walk<1>(shape, {cells_in(cells, shape)}, [&](const auto& at) {
        const py::object cell = linexpr_at(at[0]);
        linexpr_scale(as_linexpr(cell), factor);
    });
}

void imul_full_array(MLinExpr& self, py::handle array) {
    const py::object cells = cells_of(self), factors = checked_factors(array, kFullRefusal);
    const Shape shape = shape_of(cells);
    require_same_shape(shape, factors);
    walk<2>(shape, {cells_in(cells, shape), cells_in(factors, shape)}, [](const auto& at) {
        const py::object cell = linexpr_at(at[0]);
        linexpr_scale(as_linexpr(cell), double_at(at[1]));
    });
}

py::object full_times_array(MLinExpr& self, py::handle array) {
    const py::object cells = cells_of(self), factors = checked_factors(array, kFullRefusal);
    const Shape shape = broadcast_shapes(shape_of(cells), shape_of(factors));
    py::object products = new_objects(shape);
    walk<3>(shape, {cells_in(products, shape), cells_in(cells, shape), cells_in(factors, shape)}, [](const auto& at) {
        const py::object cell = linexpr_at(at[1]);
        py::object product = owned(linexpr_copy(as_linexpr(cell)));
        linexpr_scale(as_linexpr(product), double_at(at[2]));
        set_object(at[0], std::move(product));
    });
    return wrap_cells(std::move(products));
}

py::object copy_times(MLinExpr& self, py::handle other) {
    const py::object product = mlinexpr_copy(self);
    return mlinexpr_itimes(as_mlinexpr(product), other);
}

// Elementwise with variables or expressions: the result is quadratic.
py::object times_cells(MLinExpr& self, py::handle other_cells) {
    const py::object full = full_of(object_of(self));
    const py::object cells = cells_of(as_mlinexpr(full));
    const Shape shape = broadcast_shapes(shape_of(cells), shape_of(other_cells));
    py::object products = new_objects(shape);
    walk<3>(shape, {cells_in(products, shape), cells_in(cells, shape), cells_in(other_cells, shape)},
            [](const auto& at) {
                const py::object cell = linexpr_at(at[1]), other = object_at(at[2]);
                set_object(at[0], steal(PyNumber_Multiply(cell.ptr(), other.ptr())));
            });
    // Without dimensions, a constant factor leaves the product linear.
    if (shape.ndim == 0 && is_linexpr(object_at(array_fields(products).data))) return wrap_cells(std::move(products));
    return mquadexpr_from_cells(std::move(products));
}

}  // namespace

py::object mlinexpr_times(MLinExpr& self, py::handle other) {
    double value;
    const MatrixOperand kind = classify_matrix(other, value);
    const bool compact = takes_compact_road(self);
    switch (kind) {
        case MatrixOperand::kArray:
            return compact ? compact_times_array(self, other) : full_times_array(self, other);
        case MatrixOperand::kSparse:
            return compact ? compact_times_array(self, dense_of(other)) : full_times_array(self, dense_of(other));
        case MatrixOperand::kMVar:
            return times_cells(self, array_of(other));
        case MatrixOperand::kMLinExpr:
            return times_cells(self, cells_of(as_mlinexpr(full_of(other))));
        case MatrixOperand::kVar:
        case MatrixOperand::kLinExpr:
            return times_cells(self, object_scalar(other));
        case MatrixOperand::kScalar:
            return copy_times(self, other);
        default:
            return borrow(Py_NotImplemented);
    }
}

py::object mlinexpr_itimes(MLinExpr& self, py::handle other) {
    double value;
    const MatrixOperand kind = classify_matrix(other, value);
    const bool compact = takes_compact_road(self);
    if (kind == MatrixOperand::kScalar) {
        if (compact)
            imul_compact_scalar(*self.compact, value);
        else
            imul_full_scalar(self, value);
    } else if (kind == MatrixOperand::kArray || kind == MatrixOperand::kSparse) {
        const py::object array = kind == MatrixOperand::kArray ? borrow(other) : dense_of(other);
        if (compact)
            imul_compact_array(*self.compact, array);
        else
            imul_full_array(self, array);
    } else {
        return borrow(Py_NotImplemented);
    }
    return borrow(object_of(self));
}

py::object reciprocal(py::handle other) {
    double value;
    const py::object one = py::float_(1.0);
    switch (classify_matrix(other, value)) {
        case MatrixOperand::kArray:
            return steal(PyNumber_TrueDivide(one.ptr(), other.ptr()));
        case MatrixOperand::kSparse:
            return steal(PyNumber_TrueDivide(one.ptr(), dense_of(other).ptr()));
        case MatrixOperand::kScalar:
            if (value == 0.0) raise(PyExc_ZeroDivisionError, "float division by zero");
            return py::float_(1.0 / value);
        default:
            return borrow(Py_NotImplemented);
    }
}

}  // namespace zelvanpy
