#include "mquadexpr.h"

#include <algorithm>

#include "handle_array.h"
#include "mlinexpr_build.h"
#include "mvar.h"

namespace zelvanpy {

PyTypeObject* MQuadExpr_Type = nullptr;

bool mquadexpr_allows_compact(const Shape& shape) {
    return shape.ndim <= 2 &&
           std::all_of(shape.dims, shape.dims + shape.ndim, [](Py_intptr_t length) { return length <= 1; });
}

bool keeps_mquadexpr_compact(PyTypeObject* type, const Shape& shape) {
    return keeps_compact(type) && mquadexpr_allows_compact(shape);
}

bool takes_compact_road(MQuadExpr& self) {
    if (self.parts && keeps_compact(MQuadExpr_Type)) return true;
    mquadexpr_convert_to_full(self);
    return false;
}

// --- construction

py::object mquadexpr_compact(std::vector<QuadPart> parts, py::object ndle, PyTypeObject* type) {
    auto held = std::make_unique<std::vector<QuadPart>>(std::move(parts));
    py::object e = steal(type->tp_alloc(type, 0));
    as_mquadexpr(e).parts = held.release();
    as_mquadexpr(e).ndle = ndle.release().ptr();
    return e;
}

py::object mquadexpr_full(py::object qearr, py::object ndle, PyTypeObject* type) {
    py::object e = steal(type->tp_alloc(type, 0));
    as_mquadexpr(e).qearr = qearr.release().ptr();
    as_mquadexpr(e).ndle = ndle.release().ptr();
    return e;
}

namespace {

// An array with a new QuadExpr for each cell.
template <class Make>
py::object new_quad_cells(const Shape& shape, Make make) {
    py::object cells = new_objects(shape);
    for (Py_intptr_t i = 0, size = shape.size(); i < size; ++i)
        set_object(array_fields(cells).data + i * static_cast<Py_intptr_t>(sizeof(PyObject*)), owned(make()));
    return cells;
}

}  // namespace

py::object mquadexpr_zeros_full(const Shape& shape, PyTypeObject* type) {
    return mquadexpr_full(new_quad_cells(shape, new_quadexpr), mlinexpr_zeros(shape), type);
}

py::object mquadexpr_zeros(const Shape& shape, PyTypeObject* type) {
    if (keeps_mquadexpr_compact(type, shape)) return mquadexpr_compact({}, mlinexpr_zeros(shape), type);
    return mquadexpr_zeros_full(shape, type);
}

py::object mquadexpr_from_mlinexpr(py::handle mlinexpr, bool force_full, PyTypeObject* type) {
    const Shape shape = mlinexpr_shape(as_mlinexpr(mlinexpr));
    py::object linear = mlinexpr_zeros(shape);
    linear = steal(PyNumber_InPlaceAdd(linear.ptr(), mlinexpr.ptr()));
    if (!force_full && keeps_mquadexpr_compact(type, shape)) return mquadexpr_compact({}, std::move(linear), type);
    return mquadexpr_full(new_quad_cells(shape, new_quadexpr), std::move(linear), type);
}

namespace {

// Takes the linear part, flattened, out of an expression that is nobody else's.
py::object taken_linear_part(QuadExpr* e) {
    quadexpr_flatten(e);
    if (!e->lin) return owned(new_linexpr());
    py::object linear = borrow(as_result(e->lin));
    set_linear_part(e, owned(new_linexpr()));
    return linear;
}

}  // namespace

py::object mquadexpr_from_quadexpr(py::handle quadexpr, PyTypeObject* type) {
    py::object quadratic = owned(quadexpr_copy(as_quadexpr(quadexpr)));
    py::object linear = taken_linear_part(as_quadexpr(quadratic));
    return mquadexpr_full(object_scalar(quadratic), wrap_cells(object_scalar(linear)), type);
}

py::object mquadexpr_from_cells(py::object mixed) {
    const Shape shape = shape_of(mixed);
    py::object linear = new_objects(shape);
    walk<2>(shape, {cells_in(mixed, shape), cells_in(linear, shape)}, [](const auto& at) {
        const py::object cell = object_at(at[0]);
        if (is_quadexpr(cell)) {
            quadexpr_normalize(as_quadexpr(cell));
            return set_object(at[1], taken_linear_part(as_quadexpr(cell)));
        }
        linexpr_normalize(as_linexpr(linexpr_at(at[0])));
        set_object(at[1], cell);
        set_object(at[0], owned(new_quadexpr()));
    });
    return mquadexpr_full(std::move(mixed), wrap_cells(std::move(linear)));
}

py::object mquadexpr_from_mvars(py::handle left, py::handle right, bool force_full, PyTypeObject* type) {
    const py::object first = array_of(left), second = array_of(right);
    const Shape shape = broadcast_shapes(shape_of(first), shape_of(second));
    if (!force_full && keeps_mquadexpr_compact(type, shape)) {
        std::vector<QuadPart> parts;
        if (!shape.has_zero())
            parts.push_back(
                {std::make_shared<Vars>(borrow(left)), {identity_rows(1, 1.0), std::make_shared<Vars>(borrow(right))}});
        return mquadexpr_compact(std::move(parts), mlinexpr_zeros(shape), type);
    }
    py::object cells = new_objects(shape);
    walk<3>(shape, {cells_in(cells, shape), cells_in(first, shape), cells_in(second, shape)}, [](const auto& at) {
        const auto var = [](char* cell) { return var_in(*reinterpret_cast<PyObject**>(cell)); };
        Handle *x = var(at[1]), *y = var(at[2]);
        py::object product = owned(new_quadexpr());
        append_term(as_quadexpr(product), {1.0, x, y});
        set_object(at[0], std::move(product));
    });
    return mquadexpr_full(std::move(cells), mlinexpr_zeros(shape), type);
}

// --- halves

py::object linear_half(MQuadExpr& self) {
    if (!self.ndle) raise(PyExc_AttributeError, "MQuadExpr is not initialised");
    return borrow(self.ndle);
}

py::object quad_cells_of(MQuadExpr& self) {
    if (!self.qearr)
        raise(PyExc_AttributeError, self.parts ? "a compact expression has no cells" : "MQuadExpr is not initialised");
    if (!has_cells(self.qearr, CellType::kObject)) raise(PyExc_TypeError, "The cells of an MQuadExpr must be QuadExpr");
    return borrow(self.qearr);
}

py::object quadexpr_at(const char* cell) {
    py::object object = object_at(cell);
    if (is_quadexpr(object)) return object;
    PyErr_Format(PyExc_TypeError, "A cell of an MQuadExpr holds no QuadExpr but an object of type %.200s",
                 Py_TYPE(object.ptr())->tp_name);
    throw PythonError{};
}

Shape mquadexpr_shape(MQuadExpr& self) { return mlinexpr_shape(as_mlinexpr(linear_half(self))); }

std::vector<QuadPart>& parts_of(MQuadExpr& self) {
    if (!self.parts) raise(PyExc_AssertionError, "the expression isn't compact");
    return *self.parts;
}

// --- parts

std::size_t num_quadparts(const std::vector<QuadPart>& parts) {
    return std::count_if(parts.begin(), parts.end(), [](const QuadPart& part) { return part.block.opens_part; });
}

void join_quadparts(std::vector<QuadPart>& parts) {
    for (std::size_t p = 1; p < parts.size(); ++p) parts[p].block.opens_part = false;
}

std::vector<QuadPart> shared_quadparts(const std::vector<QuadPart>& parts) {
    std::vector<QuadPart> shared = parts;
    for (QuadPart& part : shared)
        if (part.block.rows->exports > 0) part.block.rows = copy_rows(*part.block.rows);
    return shared;
}

QuadPart joined_quadparts(const QuadPart* parts, std::size_t num) {
    if (num == 1) return {parts->left, joined_blocks(&parts->block, 1)};
    std::vector<Block> blocks;
    std::vector<SharedVars> left, right;
    for (std::size_t p = 0; p < num; ++p) {
        blocks.push_back(joined_blocks(&parts[p].block, 1));
        left.push_back(parts[p].left);
        right.push_back(blocks.back().vars);
    }
    return {std::make_shared<Vars>(std::move(left)),
            {block_diagonal(blocks), std::make_shared<Vars>(std::move(right))}};
}

py::object extracted_quadexpr(MQuadExpr& self) {
    py::object result = owned(new_quadexpr());
    QuadExpr* e = as_quadexpr(result);
    std::vector<QuadPart>& parts = parts_of(self);
    join_quadparts(parts);
    const std::vector<QuadPart> kept = parts;
    for (const QuadPart& part : kept) {
        const Vars::Span left = part.left->span(), right = part.block.vars->span();
        const SharedRows rows = stored_rows(part.block.rows);
        reserve_terms(e, std::size_t{e->size} + rows->num_entries());
        for (Py_intptr_t i = 0; i < rows->num_rows; ++i)
            for (std::int32_t k = rows->begin[i]; k < rows->begin[i + 1]; ++k) {
                const auto j = static_cast<std::size_t>(rows->index[k]);
                if (j >= right.size || static_cast<std::size_t>(i) >= left.size)
                    raise(PyExc_IndexError, "The indices of a quadratic part were changed to lie beyond its variables");
                append_term(e, {part.block.sign() * rows->value[k], left[i], right[j]});
            }
    }
    return result;
}

// --- forms

py::object mquadexpr_to_full(MQuadExpr& self) {
    const py::object quadratic = extracted_quadexpr(self), linear = linear_half(self);
    const Shape shape = mquadexpr_shape(self);
    py::object cells = new_quad_cells(shape, [&] { return quadexpr_copy(as_quadexpr(quadratic)); });
    return mquadexpr_full(std::move(cells), mlinexpr_copy(as_mlinexpr(linear)));
}

void mquadexpr_convert_to_full(MQuadExpr& self) {
    if (!self.parts) return;
    const py::object full = mquadexpr_to_full(self);
    py::object cells = quad_cells_of(as_mquadexpr(full)), linear = linear_half(as_mquadexpr(full));
    const std::unique_ptr<std::vector<QuadPart>> old(std::exchange(self.parts, nullptr));
    const py::object old_cells = py::reinterpret_steal<py::object>(std::exchange(self.qearr, cells.release().ptr()));
    const py::object old_linear = py::reinterpret_steal<py::object>(std::exchange(self.ndle, linear.release().ptr()));
}

py::object full_mquadexpr(py::handle mquadexpr) {
    return as_mquadexpr(mquadexpr).parts ? mquadexpr_to_full(as_mquadexpr(mquadexpr)) : borrow(mquadexpr);
}

py::object copied_quad_cells(py::handle qearr, const Shape& shape) {
    py::object copy = new_objects(shape);
    walk<2>(shape, {cells_in(copy, shape), cells_in(qearr, shape)}, [](const auto& at) {
        const py::object cell = quadexpr_at(at[1]);
        set_object(at[0], owned(quadexpr_copy(as_quadexpr(cell))));
    });
    return copy;
}

py::object mquadexpr_copy(MQuadExpr& self) {
    const py::object linear = mlinexpr_copy(as_mlinexpr(linear_half(self)));
    if (self.parts) {
        join_quadparts(*self.parts);
        return mquadexpr_compact(shared_quadparts(*self.parts), linear);
    }
    const py::object cells = quad_cells_of(self);
    return mquadexpr_full(copied_quad_cells(cells, shape_of(cells)), linear);
}

}  // namespace zelvanpy
