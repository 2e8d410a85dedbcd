// Operators of arrays of variables: each builds matrix expressions and goes by their rules.

#include "mvar_ops.h"

#include "exception.h"
#include "linexpr.h"
#include "linexpr_ops.h"
#include "mlinexpr_build.h"
#include "mlinexpr_ops.h"
#include "mquadexpr.h"
#include "mvar.h"
#include "pynumber.h"

namespace zelvanpy {

namespace {

py::object expression(py::handle mvar) { return mlinexpr_from_mvar(mvar); }

// mvar * array cell by cell, where the result can't be compact.
py::object times_array_full(py::handle mvar, py::handle array, const Shape& shape) {
    const py::object doubles = as_doubles(array), factors = private_doubles(doubles);
    const double* numbers = data_of<double>(factors);
    for (Py_intptr_t i = 0, size = size_of(factors); i < size; ++i) check_multiplier(numbers[i]);
    return wrap_scaled({array_of(mvar), factors, shape});
}

// mvar * other, or other * mvar if `reflected`.
py::object multiply(py::handle mvar, py::handle other, bool reflected) {
    if (is_mvar(other)) return reflected ? mquadexpr_from_mvars(other, mvar) : mquadexpr_from_mvars(mvar, other);
    if (is_ndarray(other)) {
        const Shape shape = broadcast_shapes(mvar_shape(mvar), shape_of(other));
        if (!keeps_compact(MLinExpr_Type) || !allows_compact(shape)) return times_array_full(mvar, other, shape);
        return mlinexpr_times(as_mlinexpr(expression(mvar)), other);
    }
    double value;
    if (scalar_value(other, value)) {
        check_multiplier(value);
        return mlinexpr_from_scaled_mvar(mvar, value);
    }
    const py::object e = expression(mvar);
    return steal(reflected ? PyNumber_Multiply(other.ptr(), e.ptr()) : PyNumber_Multiply(e.ptr(), other.ptr()));
}

py::object MVar_multiply(py::handle left, py::handle right) {
    return is_mvar(left) ? multiply(left, right, false) : multiply(right, left, true);
}

py::object MVar_add(py::handle left, py::handle right) {
    if (is_mvar(left)) return steal(PyNumber_Add(expression(left).ptr(), right.ptr()));
    return steal(PyNumber_Add(left.ptr(), expression(right).ptr()));
}

py::object MVar_subtract(py::handle left, py::handle right) {
    if (is_mvar(left)) return steal(PyNumber_Subtract(expression(left).ptr(), right.ptr()));
    return steal(PyNumber_Subtract(left.ptr(), expression(right).ptr()));
}

py::object MVar_divide(py::handle left, py::handle right) {
    if (!is_mvar(left)) return borrow(Py_NotImplemented);
    return steal(PyNumber_TrueDivide(expression(left).ptr(), right.ptr()));
}

[[noreturn]] void raise_scalar_product() { raise(PyExc_ValueError, "Input operand does not have enough dimensions"); }

py::object matmul(py::handle mvar, py::handle other) {
    double value;
    if (is_ndarray(other) || is_sparse(other)) return mlinexpr_from_matmul_left(mvar, other);
    if (is_mvar(other)) return mlinexpr_matmul(as_mlinexpr(expression(mvar)), other);
    if (scalar_value(other, value)) raise_scalar_product();
    return borrow(Py_NotImplemented);
}

py::object rmatmul(py::handle mvar, py::handle other) {
    double value;
    if (is_ndarray(other) || is_sparse(other)) return mlinexpr_from_matmul_right(other, mvar);
    if (scalar_value(other, value)) raise_scalar_product();
    return borrow(Py_NotImplemented);
}

py::object MVar_matmul(py::handle left, py::handle right) {
    return is_mvar(left) ? matmul(left, right) : rmatmul(right, left);
}

// float(exponent), where the only element of an array counts; whatever that raises means that there is none.
bool exponent_value(py::handle exponent, double& value) {
    static const Name kItem("item");
    try {
        const py::object number = is_ndarray(exponent)
                                      ? steal(PyObject_CallMethodObjArgs(exponent.ptr(), kItem.get(), nullptr))
                                      : borrow(exponent);
        value = float_of(number);
        return true;
    } catch (const PythonError&) {
        PyErr_Clear();
        return false;
    }
}

py::object MVar_power(py::handle base, py::handle exponent, py::handle modulo) {
    double value;
    if (!is_mvar(base) || !modulo.is_none() || !exponent_value(exponent, value)) return borrow(Py_NotImplemented);
    if (value != 2.0) raise_zelvan(0, "MVar can only be raised to a power of two");
    return mquadexpr_from_mvars(base, base);
}

py::object MVar_negative(py::handle mvar) { return mlinexpr_from_scaled_mvar(mvar, -1.0); }
py::object MVar_positive(py::handle mvar) { return borrow(mvar); }
PyObject* MVar_compare(py::handle self, py::handle other, int op) { return compare_matrix(self, other, op, -1); }

}  // namespace

const std::vector<PyType_Slot>& mvar_operator_slots() {
    static const std::vector<PyType_Slot> slots = {
        {Py_nb_multiply, slot<MVar_multiply>()},      {Py_nb_add, slot<MVar_add>()},
        {Py_nb_subtract, slot<MVar_subtract>()},      {Py_nb_true_divide, slot<MVar_divide>()},
        {Py_nb_matrix_multiply, slot<MVar_matmul>()}, {Py_nb_power, slot<MVar_power>()},
        {Py_nb_negative, slot<MVar_negative>()},      {Py_nb_positive, slot<MVar_positive>()},
        {Py_tp_richcompare, slot<MVar_compare>()},
    };
    return slots;
}

}  // namespace zelvanpy
