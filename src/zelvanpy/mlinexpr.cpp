#include "mlinexpr.h"

#include <cmath>

#include "handle_array.h"

namespace zelvanpy {

PyTypeObject* MLinExpr_Type = nullptr;

// --- constants

Constants Constants::copy() const { return array ? Constants(private_doubles(array)) : Constants(shape, fill); }

const py::object& Constants::stored() {
    if (!array) array = new_doubles(shape, fill);
    return array;
}

const double* Constants::data() const {
    if (!array) return nullptr;
    if (!has_cells(array, CellType::kDouble) || !is_contiguous(array) || !(shape_of(array) == shape))
        raise(PyExc_ValueError, "The array _const of a matrix expression was changed in shape or type");
    return data_of<double>(array);
}

// --- forms

std::size_t CompactForm::num_parts() const {
    std::size_t num = 0;
    for (const Block& block : blocks) num += block.opens_part;
    return num;
}

void CompactForm::join_parts() {
    for (std::size_t b = 1; b < blocks.size(); ++b) blocks[b].opens_part = false;
}

bool allows_compact(const Shape& shape) {
    if (shape.ndim > 2) return false;
    return shape.ndim < 2 || shape.dims[0] <= 1 || shape.dims[1] <= 1;
}

bool keeps_compact(PyTypeObject* type) {
    static const Name kKeepCompact("_keep_compact");
    PyObject* value = _PyType_Lookup(type, kKeepCompact.get());
    if (value && PyLong_CheckExact(value)) return PyLong_AsLong(value) == 1;
    const py::object asked = steal(PyObject_GetAttr(reinterpret_cast<PyObject*>(type), kKeepCompact.get()));
    const py::object one = py::int_(1);
    return checked(PyObject_RichCompareBool(asked.ptr(), one.ptr(), Py_EQ));
}

bool takes_compact_road(MLinExpr& self) {
    if (self.compact && keeps_compact(MLinExpr_Type)) return true;
    mlinexpr_convert_to_full(self);
    return false;
}

py::object new_mlinexpr(CompactForm form, PyTypeObject* type) {
    auto held = std::make_unique<CompactForm>(std::move(form));
    py::object e = steal(type->tp_alloc(type, 0));
    as_mlinexpr(e).compact = held.release();
    return e;
}

py::object wrap_cells(py::object learr, PyTypeObject* type) {
    py::object e = steal(type->tp_alloc(type, 0));
    as_mlinexpr(e).learr = learr.release().ptr();
    return e;
}

py::object wrap_scaled(ScaledVars scaled) {
    auto held = std::make_unique<ScaledVars>(std::move(scaled));
    py::object e = steal(MLinExpr_Type->tp_alloc(MLinExpr_Type, 0));
    as_mlinexpr(e).scaled = held.release();
    return e;
}

namespace {

// An array with a new LinExpr for each cell.
template <class Make>
py::object new_cells(const Shape& shape, Make make) {
    py::object cells = new_objects(shape);
    char* cell = array_fields(cells).data;
    const Py_intptr_t size = shape.size();
    for (Py_intptr_t i = 0; i < size; ++i, cell += sizeof(PyObject*)) set_object(cell, owned(make(i)));
    return cells;
}

}  // namespace

py::object mlinexpr_zeros_full(const Shape& shape, PyTypeObject* type) {
    return wrap_cells(new_cells(shape, [](Py_intptr_t) { return new_linexpr(); }), type);
}

py::object mlinexpr_zeros(const Shape& shape, PyTypeObject* type) {
    if (keeps_compact(type) && allows_compact(shape)) return new_mlinexpr({Constants(shape, 0.0), {}}, type);
    return mlinexpr_zeros_full(shape, type);
}

CompactForm& compact_of(MLinExpr& self) {
    if (!self.compact) raise(PyExc_AssertionError, "the expression isn't compact");
    return *self.compact;
}

namespace {

void make_cells(MLinExpr& self) {
    const ScaledVars scaled = *self.scaled;
    const Shape& shape = scaled.shape;
    py::object cells = new_objects(shape);
    walk<3>(shape, {cells_in(cells, shape), cells_in(scaled.vars, shape), cells_in(scaled.factors, shape)},
            [](const auto& at) {
                Handle* var = var_in(*reinterpret_cast<PyObject**>(at[1]));
                set_object(at[0], owned(linexpr_of_var(var, double_at(at[2]))));
            });
    delete std::exchange(self.scaled, nullptr);
    self.learr = cells.release().ptr();
}

}  // namespace

py::object cells_of(MLinExpr& self) {
    if (self.scaled) make_cells(self);
    if (!self.learr)
        raise(PyExc_AttributeError, self.compact ? "a compact expression has no cells" : "MLinExpr is not initialised");
    if (!has_cells(self.learr, CellType::kObject)) raise(PyExc_TypeError, "The cells of an MLinExpr must be LinExpr");
    return borrow(self.learr);
}

py::object linexpr_at(const char* cell) {
    PyObject* object = *reinterpret_cast<PyObject* const*>(cell);
    if (!object || !is_linexpr(object)) {
        PyErr_Format(PyExc_TypeError, "A cell of an MLinExpr holds no LinExpr but an object of type %.200s",
                     Py_TYPE(object ? object : Py_None)->tp_name);
        throw PythonError{};
    }
    return borrow(object);
}

Shape mlinexpr_shape(MLinExpr& self) {
    if (self.compact) return self.compact->constants.shape;
    return self.scaled ? self.scaled->shape : shape_of(cells_of(self));
}

// --- from one form to the other

namespace {

// Adds the entries of row i to the expression, which has room for them.
void add_row(LinExpr* e, const Block& block, const Vars::Span& vars, Py_intptr_t i) {
    const Rows& rows = *block.rows;
    const double sign = block.sign();
    if (rows.is_identity) return append_term(e, {sign * rows.multiple, vars[i]});
    for (std::int32_t k = rows.begin[i]; k < rows.begin[i + 1]; ++k) {
        const auto j = static_cast<std::size_t>(rows.index[k]);
        if (j >= vars.size)
            raise(PyExc_IndexError, "The indices of a matrix part were changed to lie beyond its variables");
        append_term(e, {sign * rows.value[k], vars[j]});
    }
}

std::size_t row_length(const Block& block, Py_intptr_t i) {
    const Rows& rows = *block.rows;
    if (rows.is_identity) return 1;
    const std::int32_t first = rows.begin[i], last = rows.begin[i + 1];
    if (first < 0 || first > last || static_cast<std::size_t>(last) > rows.index.size())
        raise(PyExc_IndexError, "The indices of a matrix part were changed to lie beyond its entries");
    return static_cast<std::size_t>(last - first);
}

}  // namespace

py::object mlinexpr_to_full(MLinExpr& self) {
    CompactForm& form = compact_of(self);
    form.join_parts();
    const double* constants = form.constants.data();
    std::vector<Vars::Span> vars;
    for (const Block& block : form.blocks) vars.push_back(block.vars->span());
    const std::vector<Block> blocks = form.blocks;  // kept, as making objects may run any finalizer
    const py::object array = form.constants.array;
    return wrap_cells(new_cells(form.constants.shape, [&, fill = form.constants.fill](Py_intptr_t i) {
        LinExpr* e = new_linexpr(constants ? constants[i] : fill);
        const py::object keep = owned(e);
        std::size_t length = 0;
        for (const Block& block : blocks) length += row_length(block, i);
        reserve_terms(e, length);
        for (std::size_t b = 0; b < blocks.size(); ++b) add_row(e, blocks[b], vars[b], i);
        keep.inc_ref();
        return e;
    }));
}

void mlinexpr_become_full(MLinExpr& self, py::handle full) {
    py::object cells = cells_of(as_mlinexpr(full));
    const std::unique_ptr<CompactForm> old(std::exchange(self.compact, nullptr));
    const py::object old_cells = py::reinterpret_steal<py::object>(std::exchange(self.learr, cells.release().ptr()));
}

void mlinexpr_convert_to_full(MLinExpr& self) {
    if (self.compact) mlinexpr_become_full(self, mlinexpr_to_full(self));
}

py::object full_of(py::handle mlinexpr) {
    return as_mlinexpr(mlinexpr).compact ? mlinexpr_to_full(as_mlinexpr(mlinexpr)) : borrow(mlinexpr);
}

std::vector<Block> shared_blocks(const CompactForm& form) {
    std::vector<Block> blocks = form.blocks;
    for (Block& block : blocks)
        if (block.rows->exports > 0) block.rows = copy_rows(*block.rows);
    return blocks;
}

Block& single_block(CompactForm& form) {
    form.blocks = {joined_blocks(form.blocks.data(), form.blocks.size())};
    return form.blocks.front();
}

py::object copied_cells(py::handle learr) {
    const Shape shape = shape_of(learr);
    py::object copy = new_objects(shape);
    walk<2>(shape, {cells_in(copy, shape), cells_in(learr, shape)}, [](const auto& at) {
        const py::object cell = linexpr_at(at[1]);
        set_object(at[0], owned(linexpr_copy(as_linexpr(cell))));
    });
    return copy;
}

py::object mlinexpr_copy(MLinExpr& self) {
    if (!takes_compact_road(self)) return wrap_cells(copied_cells(cells_of(self)));
    CompactForm& form = *self.compact;
    form.join_parts();
    return new_mlinexpr({form.constants.copy(), shared_blocks(form)});
}

}  // namespace zelvanpy
