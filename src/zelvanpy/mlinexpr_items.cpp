#include "mlinexpr_items.h"

#include "expr_value.h"
#include "handle_array.h"
#include "linexpr_build.h"
#include "mlinexpr_build.h"
#include "mlinexpr_ops.h"
#include "mvar.h"

namespace zelvanpy {

namespace {

// Calls `visit` with each cell of a full expression.
template <class Visit>
void for_each_cell(MLinExpr& self, Visit visit) {
    const py::object cells = cells_of(self);
    const Shape shape = shape_of(cells);
    walk<1>(shape, {cells_in(cells, shape)}, [&](const auto& at) {
        const py::object cell = linexpr_at(at[0]);
        visit(as_linexpr(cell));
    });
}

}  // namespace

py::object mlinexpr_item(MLinExpr& self) {
    static const Name kItem("item");
    const py::object full = full_of(object_of(self));
    const py::object cells = cells_of(as_mlinexpr(full));
    const py::object cell = steal(PyObject_CallMethodObjArgs(cells.ptr(), kItem.get(), nullptr));
    if (!is_linexpr(cell)) raise(PyExc_TypeError, "A cell of an MLinExpr holds no LinExpr");
    return owned(linexpr_copy(as_linexpr(cell)));
}

py::object mlinexpr_getitem(MLinExpr& self, py::handle index) {
    mlinexpr_convert_to_full(self);
    const py::object cells = cells_of(self);
    py::object sub = steal(PyObject_GetItem(cells.ptr(), index.ptr()));
    if (is_linexpr(sub)) return wrap_cells(object_scalar(sub));
    if (!is_ndarray(sub)) raise(PyExc_TypeError, "A cell of an MLinExpr holds no LinExpr");
    // A new array may hold one cell at several positions.
    return wrap_cells(overlaps(cells, sub) ? sub : copied_cells(sub));
}

// --- assignment

py::object index_of_view(py::handle index) {
    const bool is_tuple = PyTuple_Check(index.ptr());
    py::object parts = is_tuple ? borrow(index) : py::make_tuple(borrow(index));
    for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(parts.ptr()); ++i)
        if (PyTuple_GET_ITEM(parts.ptr(), i) == Py_Ellipsis) return parts;
    const py::object end = py::make_tuple(py::ellipsis());
    return steal(PySequence_Concat(parts.ptr(), end.ptr()));
}

namespace {

// The cells that an index means.
py::object target_cells(MLinExpr& self, py::handle index) {
    const py::object cells = cells_of(self);
    return steal(PyObject_GetItem(cells.ptr(), index_of_view(index).ptr()));
}

void assign_linexpr(py::handle target, py::handle value) {
    const Shape shape = shape_of(target);
    walk<1>(shape, {cells_in(target, shape)}, [&](const auto& at) {
        const py::object cell = linexpr_at(at[0]);
        if (cell.ptr() != value.ptr()) linexpr_init(as_linexpr(cell), value);
    });
}

// `own` are the cells that the target was taken from.
void assign_cells(py::handle own, py::handle target, py::object value) {
    const Shape shape = shape_of(target);
    require_same_shape(shape, value);
    if (overlaps(own, value) || all_refs_match(target, value)) value = copied_cells(value);
    walk<2>(shape, {cells_in(target, shape), cells_in(value, shape)}, [](const auto& at) {
        const py::object cell = linexpr_at(at[0]), source = linexpr_at(at[1]);
        if (cell.ptr() == source.ptr()) return;
        linexpr_flatten(as_linexpr(source));
        linexpr_init(as_linexpr(cell), source);
    });
}

void assign_numbers(py::handle target, py::handle array) {
    const py::object doubles = as_doubles(array);
    const Shape shape = shape_of(target);
    require_same_shape(shape, doubles);
    walk<2>(shape, {cells_in(target, shape), cells_in(doubles, shape)}, [](const auto& at) {
        const py::object cell = linexpr_at(at[0]);
        clear_expr(as_linexpr(cell));
        as_linexpr(cell)->constant = double_at(at[1]);
    });
}

py::object numbers_of(py::handle value) {
    try {
        return private_doubles(value);
    } catch (const PythonError&) {
        const py::object cause = taken_exception();
        const py::object text = steal(PyUnicode_FromFormat("Cannot assign %S to MLinExpr", value.ptr()));
        raise_from(steal(PyObject_CallFunctionObjArgs(PyExc_ValueError, text.ptr(), nullptr)), cause);
    }
}

}  // namespace

void mlinexpr_setitem(MLinExpr& self, py::handle index, py::handle value) {
    mlinexpr_convert_to_full(self);
    const py::object own = cells_of(self), target = target_cells(self, index);
    double number;
    switch (classify_matrix(value, number)) {
        case MatrixOperand::kLinExpr:
            return assign_linexpr(target, value);
        case MatrixOperand::kVar:
            return assign_linexpr(target, owned(linexpr_of_var(as_handle(value), 1.0)));
        case MatrixOperand::kMVar:
            return assign_cells(own, target, cells_of(as_mlinexpr(mlinexpr_from_mvar_full(value))));
        case MatrixOperand::kArray:
            return assign_numbers(target, value);
        case MatrixOperand::kMLinExpr:
            return assign_cells(own, target, cells_of(as_mlinexpr(full_of(value))));
        case MatrixOperand::kScalar:
            return assign_numbers(target, new_doubles({}, number));
        default:
            return assign_numbers(target, numbers_of(value));
    }
}

// --- the whole array

namespace {

py::object sum_of_scaled(const ScaledVars& scaled, py::handle axis) {
    const Shape& shape = scaled.shape;
    const Reduction reduction = reduction_over(axis, shape);
    py::object result = mlinexpr_zeros_full(reduction.shape);
    const py::object sums = cells_of(as_mlinexpr(result));
    const Py_intptr_t size = shape.size();
    if (size == 0) return result;
    const auto summands = static_cast<std::size_t>(size / reduction.shape.size());
    walk<3>(shape,
            {reduced_cells(sums, reduction, shape.ndim), cells_in(scaled.vars, shape), cells_in(scaled.factors, shape)},
            [&](const auto& at) {
                LinExpr* sum = *reinterpret_cast<LinExpr**>(at[0]);
                if (sum->size == 0) reserve_terms(sum, summands);
                append_term(sum, {double_at(at[2]), var_in(*reinterpret_cast<PyObject**>(at[1]))});
            });
    return result;
}

}  // namespace

py::object mlinexpr_sum(MLinExpr& self, py::handle axis) {
    if (self.scaled) return sum_of_scaled(ScaledVars(*self.scaled), axis);
    mlinexpr_convert_to_full(self);
    const py::object cells = cells_of(self);
    const Shape shape = shape_of(cells);
    const Reduction reduction = reduction_over(axis, shape);
    py::object result = mlinexpr_zeros_full(reduction.shape);
    const py::object sums = cells_of(as_mlinexpr(result));
    mlinexpr_flatten(self);
    walk<2>(shape, {reduced_cells(sums, reduction, shape.ndim), cells_in(cells, shape)}, [](const auto& at) {
        LinExpr* sum = *reinterpret_cast<LinExpr**>(at[0]);  // nobody else has them
        const py::object cell = linexpr_at(at[1]);
        linexpr_add(sum, as_linexpr(cell), 1.0);
    });
    return result;
}

void mlinexpr_clear(MLinExpr& self) {
    if (!self.compact) return for_each_cell(self, [](LinExpr* e) { clear_expr(e); });
    self.compact->blocks.clear();
    Constants& constants = self.compact->constants;
    constants.fill = 0.0;
    if (constants.array) {
        constants.data();
        std::fill_n(data_of<double>(constants.array), constants.shape.size(), 0.0);
    }
}

void mlinexpr_flatten(MLinExpr& self) {
    if (!self.compact) for_each_cell(self, linexpr_flatten);
}

void mlinexpr_normalize_cells(MLinExpr& self) {
    if (!self.compact) for_each_cell(self, linexpr_normalize);
}

py::object mlinexpr_constants(MLinExpr& self) {
    if (self.compact) return Constants(self.compact->constants.copy()).stored();
    const Shape shape = mlinexpr_shape(self);
    if (shape.has_zero()) raise(PyExc_ValueError, "cannot call `vectorize` on size 0 inputs unless `otypes` is set");
    py::object result = new_array(shape, CellType::kDouble);
    double* out = data_of<double>(result);
    for_each_cell(self, [&](LinExpr* e) {
        linexpr_flatten(e);
        *out++ = e->constant;
    });
    return result;
}

namespace {

// Adds rows * values of the variables.
void add_values(double* sums, const Block& block) {
    static const Name kX("X");
    const py::object mvar = block.vars->mvar();
    const py::object values = handle_array_attribute(mvar, kX);
    const double* x = data_of<double>(values);
    const auto num = static_cast<std::size_t>(size_of(values));
    const Rows& rows = *block.rows;
    for (Py_intptr_t i = 0; i < rows.num_rows; ++i) {
        double sum = 0.0;
        for (std::int32_t k = rows.begin[i]; k < rows.begin[i + 1]; ++k) {
            const auto j = static_cast<std::size_t>(rows.index[k]);
            if (j >= num)
                raise(PyExc_IndexError, "The indices of a matrix part were changed to lie beyond its variables");
            sum += rows.value[k] * x[j];
        }
        sums[i] += sum;
    }
}

}  // namespace

py::object mlinexpr_values(MLinExpr& self) {
    if (self.compact) {
        CompactForm& form = *self.compact;
        py::object result = Constants(form.constants.copy()).stored();
        if (form.blocks.empty()) return result;
        const Block block = single_block(form);
        add_values(data_of<double>(result), block);
        return result;
    }
    py::object result = new_array(mlinexpr_shape(self), CellType::kDouble);
    const py::object keep = borrow(object_of(self));
    double* out = data_of<double>(result);
    for_each_cell(self, [&](LinExpr* e) { *out++ = linexpr_value(e); });
    return result;
}

// --- text

namespace {

py::object cell_text(py::handle, py::handle cell) { return steal(PyUnicode_FromFormat(" %S", cell.ptr())); }
PyMethodDef cell_text_definition = {"cell_text", method<cell_text>, METH_O, nullptr};

// How many cells at each end numpy shows of `size`; -1 for all.
Py_intptr_t shown_at_each_end(Py_intptr_t size) {
    const py::object options = numpy().attr("get_printoptions")();
    const double threshold = options["threshold"].cast<double>();
    return static_cast<double>(size) > threshold ? options["edgeitems"].cast<Py_intptr_t>() : -1;
}

// Full cells of a compact expression where numpy shows them, None elsewhere.
py::object shown_cells(MLinExpr& self) {
    const Shape shape = mlinexpr_shape(self);
    const Py_intptr_t size = shape.size(), ends = shown_at_each_end(size);
    if (ends < 0 || 2 * ends >= size) return cells_of(as_mlinexpr(mlinexpr_to_full(self)));
    CompactForm& form = *self.compact;
    form.join_parts();
    CompactForm shown{Constants(Shape{2 * ends}, form.constants.fill), {}};
    if (const double* constants = form.constants.data()) {
        shown.constants = Constants(new_doubles(shown.constants.shape, 0.0));
        double* out = data_of<double>(shown.constants.array);
        std::copy_n(constants, ends, out);
        std::copy_n(constants + size - ends, ends, out + ends);
    }
    for (const Block& block : form.blocks)
        shown.blocks.push_back({end_rows(*block.rows, ends), block.vars, block.negated});
    const py::object few = new_mlinexpr(std::move(shown));
    const py::object ends_array = cells_of(as_mlinexpr(mlinexpr_to_full(as_mlinexpr(few))));
    py::object cells = new_objects(shape);
    PyObject** to = data_of<PyObject*>(cells);
    PyObject** from = data_of<PyObject*>(ends_array);
    for (Py_intptr_t i = 0; i < ends; ++i) {
        to[i] = borrow(from[i]).release().ptr();
        to[size - ends + i] = borrow(from[ends + i]).release().ptr();
    }
    return cells;
}

}  // namespace

py::object cells_repr(const char* name, const Shape& shape, const char* blanks, py::handle cells) {
    static PyObject* text_of_cell = nullptr;
    if (!text_of_cell) text_of_cell = steal(PyCFunction_New(&cell_text_definition, nullptr)).release().ptr();
    py::dict formatter, options;
    formatter["object"] = py::handle(text_of_cell);
    options["formatter"] = formatter;
    const py::object context = numpy().attr("printoptions")(**options);
    context.attr("__enter__")();
    py::object text, error;
    try {
        text = steal(PyObject_Repr(cells.ptr()));
    } catch (const PythonError&) {
        error = taken_exception();
    }
    context.attr("__exit__")(py::none(), py::none(), py::none());
    if (error) {
        PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(error.ptr())), error.ptr());
        throw PythonError{};
    }
    const Py_ssize_t cut = PyUnicode_FindChar(text.ptr(), ',', 0, PyUnicode_GET_LENGTH(text.ptr()), -1);
    const py::object shown =
        steal(PyUnicode_Substring(text.ptr(), 0, cut < 0 ? PyUnicode_GET_LENGTH(text.ptr()) : cut));
    return steal(PyUnicode_FromFormat("<%s %S%s>\n%U)", name, shape_tuple(shape).ptr(), blanks, shown.ptr()));
}

py::object mlinexpr_repr(MLinExpr& self) {
    static const char* const kBlanks[] = {" ", "  ", "   "};
    const char* blanks = self.compact ? kBlanks[std::min<std::size_t>(self.compact->num_parts(), 2)] : "";
    const py::object cells = self.compact ? shown_cells(self) : cells_of(self);
    return cells_repr("MLinExpr", shape_of(cells), blanks, cells);
}

}  // namespace zelvanpy
