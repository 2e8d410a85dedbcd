// What MQuadExpr has of numpy's arrays: items, sums, values, text.

#include "expr_value.h"
#include "handle_array.h"
#include "mlinexpr_build.h"
#include "mlinexpr_items.h"
#include "mlinexpr_ops.h"
#include "mquadexpr_ops.h"
#include "quadexpr_build.h"

namespace zelvanpy {

namespace {

// Calls `visit` with each cell of a full expression.
template <class Visit>
void for_each_cell(MQuadExpr& self, Visit visit) {
    const py::object cells = quad_cells_of(self);
    const Shape shape = shape_of(cells);
    walk<1>(shape, {cells_in(cells, shape)}, [&](const auto& at) {
        const py::object cell = quadexpr_at(at[0]);
        visit(as_quadexpr(cell));
    });
}

MLinExpr& linear_of(MQuadExpr& self) { return as_mlinexpr(linear_half(self)); }

}  // namespace

py::object mquadexpr_item(MQuadExpr& self) {
    static const Name kItem("item");
    const py::object full = full_mquadexpr(object_of(self));
    const py::object cells = quad_cells_of(as_mquadexpr(full));
    const py::object quadratic = steal(PyObject_CallMethodObjArgs(cells.ptr(), kItem.get(), nullptr));
    const py::object linear = mlinexpr_item(linear_of(as_mquadexpr(full)));
    return steal(PyNumber_Add(quadratic.ptr(), linear.ptr()));
}

py::object mquadexpr_getitem(MQuadExpr& self, py::handle index) {
    mquadexpr_convert_to_full(self);
    py::object linear = mlinexpr_getitem(linear_of(self), index);
    const py::object cells = quad_cells_of(self);
    const py::object sub = steal(PyObject_GetItem(cells.ptr(), index.ptr()));
    if (is_quadexpr(sub)) return mquadexpr_full(object_scalar(sub), std::move(linear));
    if (!is_ndarray(sub)) raise(PyExc_TypeError, "A cell of an MQuadExpr holds no QuadExpr");
    return mquadexpr_full(overlaps(cells, sub) ? sub : copied_quad_cells(sub, shape_of(sub)), std::move(linear));
}

// --- assignment

namespace {

py::object target_cells(MQuadExpr& self, py::handle index) {
    return steal(PyObject_GetItem(quad_cells_of(self).ptr(), index_of_view(index).ptr()));
}

void assign_linear(MQuadExpr& self, py::handle index, py::handle value) {
    const py::object target = target_cells(self, index);
    mlinexpr_setitem(linear_of(self), index, value);
    const Shape shape = shape_of(target);
    walk<1>(shape, {cells_in(target, shape)}, [](const auto& at) {
        const py::object cell = quadexpr_at(at[0]);
        clear_expr(as_quadexpr(cell));
    });
}

void assign_quadratic(MQuadExpr& self, py::handle index, const py::object& value) {
    const py::object target = target_cells(self, index);
    py::object cells = quad_cells_of(as_mquadexpr(value));
    const Shape shape = shape_of(target);
    require_same_shape(shape, cells);
    if (overlaps(quad_cells_of(self), cells) || all_refs_match(target, cells))
        cells = copied_quad_cells(cells, shape_of(cells));
    mlinexpr_setitem(linear_of(self), index, linear_half(as_mquadexpr(value)));
    walk<2>(shape, {cells_in(target, shape), cells_in(cells, shape)}, [](const auto& at) {
        const py::object cell = quadexpr_at(at[0]), source = quadexpr_at(at[1]);
        if (cell.ptr() == source.ptr()) return;
        quadexpr_flatten(as_quadexpr(source));
        quadexpr_init(as_quadexpr(cell), source);
    });
}

py::object numbers_of(py::handle value) {
    try {
        return private_doubles(value);
    } catch (const PythonError&) {
        const py::object cause = taken_exception();
        const py::object text = steal(PyUnicode_FromFormat("Cannot assign %S to MQuadExpr", value.ptr()));
        raise_from(steal(PyObject_CallFunctionObjArgs(PyExc_ValueError, text.ptr(), nullptr)), cause);
    }
}

}  // namespace

void mquadexpr_setitem(MQuadExpr& self, py::handle index, py::handle value) {
    mquadexpr_convert_to_full(self);
    double number;
    switch (classify_matrix(value, number)) {
        case MatrixOperand::kQuadExpr:
            return assign_quadratic(self, index, mquadexpr_from_quadexpr(value));
        case MatrixOperand::kMQuadExpr:
            return assign_quadratic(self, index, full_mquadexpr(value));
        case MatrixOperand::kSparse:
        case MatrixOperand::kForeign:
            return assign_linear(self, index, numbers_of(value));
        default:
            return assign_linear(self, index, value);
    }
}

// --- the whole array

py::object mquadexpr_sum(MQuadExpr& self, py::handle axis) {
    mquadexpr_convert_to_full(self);
    const py::object cells = quad_cells_of(self);
    const Shape shape = shape_of(cells);
    const Reduction reduction = reduction_over(axis, shape);
    const py::object linear = mlinexpr_sum(linear_of(self), axis);
    py::object result = mquadexpr_from_mlinexpr(linear, true);
    const py::object sums = quad_cells_of(as_mquadexpr(result));
    mquadexpr_flatten(self);
    walk<2>(shape, {reduced_cells(sums, reduction, shape.ndim), cells_in(cells, shape)}, [](const auto& at) {
        QuadExpr* sum = *reinterpret_cast<QuadExpr**>(at[0]);  // nobody else has them
        const py::object cell = quadexpr_at(at[1]);
        quadexpr_add(sum, as_quadexpr(cell), 1.0);
    });
    return result;
}

void mquadexpr_clear(MQuadExpr& self) {
    mlinexpr_clear(linear_of(self));
    if (self.parts) return self.parts->clear();
    for_each_cell(self, [](QuadExpr* e) { clear_expr(e); });
}

void mquadexpr_flatten(MQuadExpr& self) {
    if (!self.parts) for_each_cell(self, quadexpr_flatten);
}

void mquadexpr_normalize(MQuadExpr& self) {
    mlinexpr_normalize_cells(linear_of(self));
    if (!self.parts) for_each_cell(self, quadexpr_normalize);
}

namespace {

// x' Q y in the current solution.
double part_value(const QuadPart& part) {
    static const Name kX("X");
    const QuadPart whole = joined_quadparts(&part, 1);
    const py::object left = handle_array_attribute(whole.left->mvar(), kX);
    const py::object right = handle_array_attribute(whole.block.vars->mvar(), kX);
    const double *x = data_of<double>(left), *y = data_of<double>(right);
    const auto num = static_cast<std::size_t>(size_of(right));
    const Rows& rows = *whole.block.rows;
    double sum = 0.0;
    for (Py_intptr_t i = 0; i < rows.num_rows; ++i)
        for (std::int32_t k = rows.begin[i]; k < rows.begin[i + 1]; ++k) {
            const auto j = static_cast<std::size_t>(rows.index[k]);
            if (j >= num)
                raise(PyExc_IndexError, "The indices of a quadratic part were changed to lie beyond its variables");
            sum += x[i] * rows.value[k] * y[j];
        }
    return sum;
}

}  // namespace

py::object mquadexpr_values(MQuadExpr& self) {
    const py::object keep = borrow(object_of(self));
    py::object result = mlinexpr_values(linear_of(self));
    double* out = data_of<double>(result);
    if (self.parts) {
        join_quadparts(*self.parts);
        const std::vector<QuadPart> parts = *self.parts;
        for (const QuadPart& part : parts) *out += part_value(part);
        return result;
    }
    for_each_cell(self, [&](QuadExpr* e) { *out++ += quadexpr_value(e); });
    return result;
}

py::object mquadexpr_repr(MQuadExpr& self) {
    static const char* const kBlanks[] = {" ", "  ", "   "};
    const char* blanks = self.parts ? kBlanks[std::min<std::size_t>(num_quadparts(*self.parts), 2)] : "";
    const py::object full = full_mquadexpr(object_of(self));
    const py::object quadratic = quad_cells_of(as_mquadexpr(full));
    const py::object linear = full_of(linear_half(as_mquadexpr(full)));
    const py::object linear_cells = cells_of(as_mlinexpr(linear));
    const Shape shape = shape_of(quadratic);
    const py::object cells = new_objects(shape);
    walk<3>(shape, {cells_in(cells, shape), cells_in(quadratic, shape), cells_in(linear_cells, shape)},
            [](const auto& at) {
                const py::object left = quadexpr_at(at[1]), right = linexpr_at(at[2]);
                set_object(at[0], steal(PyNumber_Add(left.ptr(), right.ptr())));
            });
    return cells_repr("MQuadExpr", shape, blanks, cells);
}

}  // namespace zelvanpy
