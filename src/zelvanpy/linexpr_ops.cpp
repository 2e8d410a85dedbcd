#include "linexpr_ops.h"

#include <cmath>

#include "exception.h"
#include "linexpr_build.h"
#include "operand.h"
#include "pynumber.h"
#include "tempconstr.h"

namespace zelvanpy {

namespace {

// LinExpr(left) + mult * right as the operators + and - build it: a full block starts a chain.
PyObject* sum(py::handle left, py::handle right, double mult) {
    double value;
    const Operand kind = classify(right, value);
    if (kind == Operand::kForeign ||
        (Py_TYPE(left.ptr()) != LinExpr_Type && classify(left, value) == Operand::kForeign))
        return not_implemented();
    const std::uint32_t growth = kind == Operand::kLinExpr ? as_linexpr(right)->size : kind == Operand::kVar;
    LinExpr* e = Py_TYPE(left.ptr()) == LinExpr_Type ? linexpr_copy(as_linexpr(left), growth) : linexpr_from(left);
    py::object keep = owned(e);
    linexpr_add_any(e, right, mult);
    if (e->size < kBlockTerms) return keep.release().ptr();
    py::object head = owned(new_linexpr());
    set_tail(as_linexpr(head), e);
    return head.release().ptr();
}

PyObject* LinExpr_subtract(py::handle left, py::handle right) { return sum(left, right, -1.0); }

PyObject* scaled_copy(py::handle operand, double mult) {
    py::object e = owned(linexpr_from(operand));
    linexpr_scale(as_linexpr(e), mult);
    return e.release().ptr();
}

// Flattens as size() does.
bool is_constant(py::handle operand, Operand kind) {
    if (kind != Operand::kLinExpr) return false;
    linexpr_flatten(as_linexpr(operand));
    return as_linexpr(operand)->size == 0;
}

PyObject* LinExpr_divide(py::handle dividend, py::handle divisor) {
    double value;
    if (!scalar_value(divisor, value)) raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT, "Divisor must be a constant");
    if (value == 0.0) raise(PyExc_ZeroDivisionError, "float division");
    const py::object factor = steal(PyFloat_FromDouble(1.0 / value));
    return linexpr_multiply(dividend, factor);
}

PyObject* LinExpr_negative(py::handle self) {
    const py::object factor = steal(PyFloat_FromDouble(-1.0));
    return linexpr_multiply(self, factor);
}

PyObject* LinExpr_power(py::handle base, py::handle exponent, py::handle modulo) {
    double value;
    if (!modulo.is_none() || classify(exponent, value) != Operand::kScalar || value != 2.0) return not_implemented();
    return linexpr_multiply(base, base);
}

PyObject* LinExpr_compare(py::handle self, py::handle other, int op) {
    switch (op) {
        case Py_EQ:
            if (other.is_none()) return boolean(false).release().ptr();
            return new_tempconstr(borrow(self), '=', borrow(other));
        case Py_LE:
            return new_tempconstr(borrow(self), '<', borrow(other));
        case Py_GE:
            return new_tempconstr(borrow(self), '>', borrow(other));
        case Py_NE:
            raise_zelvan(0, "Inequality constraints not supported");
        default:
            raise_from(steal(PyObject_CallObject(PyExc_NotImplementedError, nullptr)),
                       steal(PyObject_CallFunction(PyExc_TypeError, "s", kNoStrictConstraints)));
    }
}

}  // namespace

py::object product_of_expressions(py::handle, py::handle) {
    raise(PyExc_TypeError, "quadratic expressions are not available yet");
}

PyObject* linexpr_multiply(py::handle left, py::handle right) {
    double left_value, right_value;
    const Operand right_kind = classify(right, right_value);
    if (right_kind == Operand::kForeign) return not_implemented();
    const Operand left_kind = classify(left, left_value);
    if (left_kind == Operand::kForeign) return not_implemented();
    if (left_kind == Operand::kScalar) return scaled_copy(right, left_value);
    if (is_constant(left, left_kind)) return scaled_copy(right, as_linexpr(left)->constant);
    if (is_constant(right, right_kind)) return scaled_copy(left, as_linexpr(right)->constant);
    if (right_kind == Operand::kScalar) return scaled_copy(left, right_value);
    return product_of_expressions(left, right).release().ptr();
}

PyObject* linexpr_iadd(py::handle self, py::handle operand) {
    LinExpr* e = as_linexpr(self);
    if (!add_known<grow_linexpr>(e, operand.ptr())) {
        double value;
        if (classify(operand, value) == Operand::kForeign) return not_implemented();
        linexpr_add_any(e, operand, 1.0);
    }
    return self.inc_ref().ptr();
}

PyObject* linexpr_isub(py::handle self, py::handle operand) {
    double value;
    if (classify(operand, value) == Operand::kForeign) return not_implemented();
    linexpr_add_any(as_linexpr(self), operand, -1.0);
    return self.inc_ref().ptr();
}

PyObject* linexpr_imul(py::handle self, py::handle operand) {
    double value;
    const Operand kind = classify(operand, value);
    if (kind == Operand::kForeign) return not_implemented();
    if (kind != Operand::kScalar || !std::isfinite(value)) return linexpr_multiply(self, operand);
    linexpr_scale(as_linexpr(self), value);
    return self.inc_ref().ptr();
}

PyObject* linexpr_plus(py::handle left, py::handle right) { return sum(left, right, 1.0); }

PyType_Slot linexpr_operator_slots[] = {
    {Py_nb_add, slot<linexpr_plus>()},
    {Py_nb_subtract, slot<LinExpr_subtract>()},
    {Py_nb_multiply, slot<linexpr_multiply>()},
    {Py_nb_true_divide, slot<LinExpr_divide>()},
    {Py_nb_negative, slot<LinExpr_negative>()},
    {Py_nb_power, slot<LinExpr_power>()},
    {Py_nb_inplace_add, slot<linexpr_iadd>()},
    {Py_nb_inplace_subtract, slot<linexpr_isub>()},
    {Py_nb_inplace_multiply, slot<linexpr_imul>()},
    {Py_tp_richcompare, slot<LinExpr_compare>()},
};
const int num_linexpr_operator_slots = std::size(linexpr_operator_slots);

}  // namespace zelvanpy
