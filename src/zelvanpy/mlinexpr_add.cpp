// Sums, differences and comparisons of arrays of linear expressions.

#include <cmath>

#include "exception.h"
#include "linexpr_build.h"
#include "mlinexpr_build.h"
#include "mlinexpr_ops.h"
#include "mquadexpr.h"
#include "mvar.h"
#include "pynumber.h"
#include "tempconstr.h"

namespace zelvanpy {

MatrixOperand classify_matrix(py::handle operand, double& value) {
    if (is_mlinexpr(operand)) return MatrixOperand::kMLinExpr;
    if (is_mvar(operand)) return MatrixOperand::kMVar;
    if (is_ndarray(operand)) return MatrixOperand::kArray;
    if (is_mquadexpr(operand)) return MatrixOperand::kMQuadExpr;
    switch (classify(operand, value)) {
        case Operand::kVar:
            return MatrixOperand::kVar;
        case Operand::kLinExpr:
            return MatrixOperand::kLinExpr;
        case Operand::kQuadExpr:
            return MatrixOperand::kQuadExpr;
        case Operand::kScalar:
            return MatrixOperand::kScalar;
        default:
            return is_sparse(operand) ? MatrixOperand::kSparse : MatrixOperand::kForeign;
    }
}

py::object dense_of(py::handle sparse) {
    static const Name kToarray("toarray");
    return steal(PyObject_CallMethodObjArgs(sparse.ptr(), kToarray.get(), nullptr));
}

// --- constants

namespace {

Constants sum_of(const Constants& a, const Constants& b, const Shape& shape) {
    if (!a.array && !b.array) return {shape, a.fill + b.fill};
    const double *left = a.data(), *right = b.data();
    py::object sum = new_array(shape, CellType::kDouble);
    double* out = data_of<double>(sum);
    const Py_intptr_t size = shape.size();
    // In compact shapes, cells correspond by their position unless there is only one.
    const bool left_varies = left && a.shape.size() > 1, right_varies = right && b.shape.size() > 1;
    const double left_one = left && size ? left[0] : a.fill, right_one = right && size ? right[0] : b.fill;
    for (Py_intptr_t i = 0; i < size; ++i)
        out[i] = (left_varies ? left[i] : left_one) + (right_varies ? right[i] : right_one);
    return Constants(sum);
}

void add_number(Constants& constants, double value) {
    if (!constants.array) {
        constants.fill += value;
        return;
    }
    constants.data();
    double* numbers = data_of<double>(constants.array);
    for (Py_intptr_t i = 0, size = constants.shape.size(); i < size; ++i) numbers[i] += value;
}

void in_place(Constants& constants, py::handle array, PyObject* (*op)(PyObject*, PyObject*)) {
    const py::object numbers = constants.stored();
    constants.data();
    steal(op(numbers.ptr(), array.ptr()));
}

// The constants grow by those of another expression; numpy refuses those that are too many.
void add_constants(Constants& constants, Constants& other) {
    if (!other.array && broadcast_shapes(constants.shape, other.shape) == constants.shape)
        return add_number(constants, other.fill);
    add_in_place(constants, other.stored());
}

// The blocks of a summand for a sum with `num_rows` rows: a single row stands for all.
std::vector<Block> blocks_for(const CompactForm& form, Py_intptr_t num_rows) {
    std::vector<Block> blocks = shared_blocks(form);
    if (form.constants.shape.size() != num_rows)
        for (Block& block : blocks) block.rows = repeated_row(*block.rows, num_rows);
    return blocks;
}

// --- sums of compact expressions

py::object compact_sum(CompactForm& a, CompactForm& b, const Shape& shape) {
    CompactForm sum{sum_of(a.constants, b.constants, shape), {}};
    if (shape.has_zero()) return new_mlinexpr(std::move(sum));
    a.join_parts();
    b.join_parts();
    sum.blocks = blocks_for(a, shape.size());
    const std::vector<Block> more = blocks_for(b, shape.size());
    sum.blocks.insert(sum.blocks.end(), more.begin(), more.end());
    sum.join_parts();
    return new_mlinexpr(std::move(sum));
}

// --- sums of full expressions

// Cell by cell, where `add` is an operator of Python.
py::object sum_of_cells(py::handle left, py::handle right) {
    const Shape shape = broadcast_shapes(shape_of(left), shape_of(right));
    py::object sums = new_objects(shape);
    walk<3>(shape, {cells_in(sums, shape), cells_in(left, shape), cells_in(right, shape)}, [](const auto& at) {
        const py::object cell = linexpr_at(at[1]), other = object_at(at[2]);
        py::object sum = steal(PyNumber_Add(cell.ptr(), other.ptr()));
        if (!is_linexpr(sum)) raise(PyExc_TypeError, "An array to be added holds objects that aren't linear");
        set_object(at[0], std::move(sum));
    });
    return wrap_cells(std::move(sums));
}

py::object full_plus_array(MLinExpr& self, py::handle array) {
    const py::object cells = cells_of(self);
    if (has_cells(array, CellType::kObject)) return sum_of_cells(cells, array);
    const py::object doubles = as_doubles(array);
    const Shape shape = broadcast_shapes(shape_of(cells), shape_of(doubles));
    py::object sums = new_objects(shape);
    walk<3>(shape, {cells_in(sums, shape), cells_in(cells, shape), cells_in(doubles, shape)}, [](const auto& at) {
        const py::object cell = linexpr_at(at[1]);
        py::object sum = owned(linexpr_copy(as_linexpr(cell)));
        linexpr_add_constant(as_linexpr(sum), double_at(at[2]));
        set_object(at[0], std::move(sum));
    });
    return wrap_cells(std::move(sums));
}

py::object full_plus_mlinexpr(py::handle self, py::handle other) {
    const py::object left = full_of(self), right = full_of(other);
    return sum_of_cells(cells_of(as_mlinexpr(left)), cells_of(as_mlinexpr(right)));
}

py::object compact_plus_mlinexpr(MLinExpr& self, py::handle other) {
    MLinExpr& summand = as_mlinexpr(other);
    const Shape shape = broadcast_shapes(mlinexpr_shape(self), mlinexpr_shape(summand));
    if (summand.compact && allows_compact(shape)) return compact_sum(*self.compact, *summand.compact, shape);
    if (summand.compact) return full_plus_mlinexpr(object_of(self), other);
    py::object sum = mlinexpr_to_full(self);
    if (!(shape == mlinexpr_shape(as_mlinexpr(sum)))) return full_plus_mlinexpr(sum, other);
    mlinexpr_iadd_full(as_mlinexpr(sum), summand);
    return sum;
}

py::object compact_plus_array(MLinExpr& self, py::handle array) {
    const py::object constants = private_doubles(array);
    const Shape shape = broadcast_shapes(mlinexpr_shape(self), shape_of(constants));
    if (!allows_compact(shape)) return full_plus_array(as_mlinexpr(mlinexpr_to_full(self)), constants);
    CompactForm summand{Constants(constants), {}};
    return compact_sum(*self.compact, summand, shape);
}

py::object copy_plus(MLinExpr& self, py::handle other) {
    const py::object sum = mlinexpr_copy(self);
    return mlinexpr_iplus(as_mlinexpr(sum), other);
}

py::object plus_quadexpr(MLinExpr& self, py::handle other) {
    const py::object sum = mquadexpr_from_mlinexpr(object_of(self));
    return steal(PyNumber_InPlaceAdd(sum.ptr(), other.ptr()));
}

}  // namespace

void add_in_place(Constants& constants, py::handle array) { in_place(constants, array, PyNumber_InPlaceAdd); }
void multiply_in_place(Constants& constants, py::handle array) { in_place(constants, array, PyNumber_InPlaceMultiply); }

py::object mlinexpr_plus(MLinExpr& self, py::handle other) {
    double value;
    const MatrixOperand kind = classify_matrix(other, value);
    const bool compact = takes_compact_road(self);
    switch (kind) {
        case MatrixOperand::kMLinExpr:
            return compact ? compact_plus_mlinexpr(self, other) : full_plus_mlinexpr(object_of(self), other);
        case MatrixOperand::kMVar:
            return compact ? compact_plus_mlinexpr(self, mlinexpr_from_mvar(other))
                           : full_plus_mlinexpr(object_of(self), mlinexpr_from_mvar_full(other));
        case MatrixOperand::kArray:
            return compact ? compact_plus_array(self, other) : full_plus_array(self, other);
        case MatrixOperand::kSparse:
            return compact ? compact_plus_array(self, dense_of(other)) : full_plus_array(self, dense_of(other));
        case MatrixOperand::kQuadExpr:
            return plus_quadexpr(self, other);
        case MatrixOperand::kVar:
        case MatrixOperand::kLinExpr:
        case MatrixOperand::kScalar:
            return copy_plus(self, other);
        default:
            return borrow(Py_NotImplemented);
    }
}

// --- in place

namespace {

void iadd_compact_linexpr(CompactForm& form, py::handle linexpr) {
    LinExpr* e = as_linexpr(linexpr);
    linexpr_flatten(e);
    const Py_intptr_t num = form.constants.shape.size();
    std::size_t nonzeros = 0;
    const py::object vars = new_objects({static_cast<Py_ssize_t>(e->size)});
    for (std::uint32_t i = 0; i < e->size; ++i) {
        data_of<PyObject*>(vars)[i] = borrow(reinterpret_cast<PyObject*>(e->terms[i].var)).release().ptr();
        nonzeros += e->terms[i].coeff != 0.0;
    }
    const double constant = e->constant;
    SharedRows row = new_rows(1, static_cast<Py_intptr_t>(e->size), nonzeros);
    std::int32_t next = 0;
    row->begin[0] = 0;
    for (std::uint32_t i = 0; i < e->size; ++i) {
        if (e->terms[i].coeff == 0.0) continue;
        row->index[next] = static_cast<std::int32_t>(i);
        row->value[next++] = e->terms[i].coeff;
    }
    row->begin[1] = next;
    if (e->size > 0 && num > 0)
        form.blocks.push_back({repeated_row(*row, num), std::make_shared<Vars>(new_mvar(vars))});
    add_number(form.constants, constant);
}

void iadd_compact_var(CompactForm& form, py::handle var) {
    const Py_intptr_t num = form.constants.shape.size();
    if (num > 0)
        form.blocks.push_back({repeated_row(*identity_rows(1, 1.0), num), std::make_shared<Vars>(mvar_of(var))});
}

void iadd_compact_compact(CompactForm& form, CompactForm& other) {
    broadcast_shapes(form.constants.shape, other.constants.shape);
    const Py_intptr_t num = form.constants.shape.size();
    other.join_parts();
    std::vector<Block> more;
    if (num > 0) more = blocks_for(other, num);
    form.blocks.reserve(form.blocks.size() + more.size());
    if (&form == &other) {
        Constants same = other.constants.copy();
        add_constants(form.constants, same);
    } else {
        add_constants(form.constants, other.constants);
    }
    form.blocks.insert(form.blocks.end(), more.begin(), more.end());
}

void iadd_compact_mlinexpr(MLinExpr& self, py::handle other) {
    if (as_mlinexpr(other).compact) return iadd_compact_compact(*self.compact, *as_mlinexpr(other).compact);
    const py::object sum = mlinexpr_to_full(self);
    mlinexpr_iadd_full(as_mlinexpr(sum), as_mlinexpr(other));
    mlinexpr_become_full(self, sum);
}

void iadd_full_array(MLinExpr& self, py::handle array) {
    const py::object cells = cells_of(self), doubles = as_doubles(array);
    const Shape shape = shape_of(cells);
    require_same_shape(shape, doubles);
    walk<2>(shape, {cells_in(cells, shape), cells_in(doubles, shape)}, [](const auto& at) {
        const py::object cell = linexpr_at(at[0]);
        as_linexpr(cell)->constant += double_at(at[1]);
    });
}

void iadd_full_scalar(MLinExpr& self, double value) {
    if (value == 0.0) return;
    const py::object cells = cells_of(self);
    const Shape shape = shape_of(cells);
    walk<1>(shape, {cells_in(cells, shape)}, [&](const auto& at) {
        const py::object cell = linexpr_at(at[0]);
        as_linexpr(cell)->constant += value;
    });
}

bool iadd_compact(MLinExpr& self, MatrixOperand kind, py::handle other, double value) {
    CompactForm& form = *self.compact;
    switch (kind) {
        case MatrixOperand::kVar:
            iadd_compact_var(form, other);
            return true;
        case MatrixOperand::kLinExpr:
            iadd_compact_linexpr(form, other);
            return true;
        case MatrixOperand::kMVar:
            iadd_compact_mlinexpr(self, mlinexpr_from_mvar(other));
            return true;
        case MatrixOperand::kMLinExpr:
            iadd_compact_mlinexpr(self, other);
            return true;
        case MatrixOperand::kArray:
            add_in_place(form.constants, other);
            return true;
        case MatrixOperand::kSparse:
            add_in_place(form.constants, dense_of(other));
            return true;
        case MatrixOperand::kScalar:
            add_number(form.constants, value);
            return true;
        default:
            return false;
    }
}

bool iadd_full(MLinExpr& self, MatrixOperand kind, py::handle other, double value) {
    const auto add = [&](const py::object& expression) { mlinexpr_iadd_full(self, as_mlinexpr(expression)); };
    switch (kind) {
        case MatrixOperand::kMLinExpr:
            add(full_of(other));
            return true;
        case MatrixOperand::kMVar:
            add(mlinexpr_from_mvar_full(other));
            return true;
        case MatrixOperand::kLinExpr:
            add(mlinexpr_from_linexpr(other));
            return true;
        case MatrixOperand::kVar:
            add(mlinexpr_from_var(other));
            return true;
        case MatrixOperand::kArray:
            iadd_full_array(self, other);
            return true;
        case MatrixOperand::kSparse:
            iadd_full_array(self, dense_of(other));
            return true;
        case MatrixOperand::kScalar:
            iadd_full_scalar(self, value);
            return true;
        default:
            return false;
    }
}

}  // namespace

void mlinexpr_iadd_full(MLinExpr& self, MLinExpr& other) {
    const py::object cells = cells_of(self);
    py::object summands = cells_of(other);
    const Shape shape = shape_of(cells);
    require_same_shape(shape, summands);
    // Cells that are shared would be changed before their turn.
    if (overlaps(cells, summands) && !all_refs_match(cells, summands)) summands = copied_cells(summands);
    walk<2>(shape, {cells_in(cells, shape), cells_in(summands, shape)}, [](const auto& at) {
        const py::object cell = linexpr_at(at[0]), summand = linexpr_at(at[1]);
        linexpr_add(as_linexpr(cell), as_linexpr(summand), 1.0);
    });
}

py::object mlinexpr_iplus(MLinExpr& self, py::handle other) {
    double value;
    const MatrixOperand kind = classify_matrix(other, value);
    const bool done =
        takes_compact_road(self) ? iadd_compact(self, kind, other, value) : iadd_full(self, kind, other, value);
    return borrow(done ? object_of(self) : Py_NotImplemented);
}

// --- differences

py::object negated(py::handle operand) {
    if (Py_TYPE(operand.ptr()) == MVar_Type) return mlinexpr_from_scaled_mvar(operand, -1.0);
    const py::object factor = py::float_(-1.0);
    return steal(PyNumber_Multiply(factor.ptr(), operand.ptr()));
}

PyObject* compare_matrix(py::handle self, py::handle other, int op, int unequal) {
    switch (op) {
        case Py_LE:
            return new_tempconstr(borrow(self), '<', borrow(other));
        case Py_GE:
            return new_tempconstr(borrow(self), '>', borrow(other));
        case Py_EQ:
            return new_tempconstr(borrow(self), '=', borrow(other));
        case Py_NE:
            raise_zelvan(unequal, "Inequality constraints not supported");
        default:
            return PyErr_Format(PyExc_TypeError, "'%c' not supported between instances of '%.100s' and '%.100s'. %s",
                                op == Py_LT ? '<' : '>', Py_TYPE(self.ptr())->tp_name, Py_TYPE(other.ptr())->tp_name,
                                kNoStrictConstraints);
    }
}

}  // namespace zelvanpy
