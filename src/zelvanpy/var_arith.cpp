// Operators and comparisons of variables: each builds a linear expression and goes by its rules.

#include "exception.h"
#include "linexpr.h"
#include "linexpr_ops.h"
#include "operand.h"
#include "pynumber.h"
#include "pytype.h"
#include "quadexpr.h"
#include "tempconstr.h"
#include "var.h"

namespace zelvanpy {

namespace {

// LinExpr(v).__iadd__(operand) and its like. A NotImplemented is the operator's result.
template <auto Operator>
PyObject* on_expression(py::handle var, double coeff, py::handle operand) {
    const py::object e = owned(linexpr_of_var(as_handle(var), coeff));
    return Operator(e, operand);
}

PyObject* Var_add(py::handle left, py::handle right) {
    return is_var(left) ? on_expression<linexpr_iadd>(left, 1.0, right) : on_expression<linexpr_iadd>(right, 1.0, left);
}

PyObject* Var_subtract(py::handle left, py::handle right) {
    if (is_var(left)) return on_expression<linexpr_isub>(left, 1.0, right);
    const py::object e = owned(linexpr_of_var(as_handle(right), 1.0));
    return PyNumber_Subtract(left.ptr(), e.ptr());
}

// float(operand), where strings count as well; whatever it raises is dropped.
bool converts_to_float(py::handle operand, double& value) {
    const Operand kind = classify(operand, value);
    if (kind == Operand::kScalar) return true;
    PyTypeObject* type = Py_TYPE(operand.ptr());
    if (type == Var_Type || type == LinExpr_Type || type == QuadExpr_Type) return false;
    PyObject* number = PyNumber_Float(operand.ptr());
    if (!number) {
        PyErr_Clear();
        return false;
    }
    value = PyFloat_AS_DOUBLE(py::reinterpret_steal<py::object>(number).ptr());
    return true;
}

PyObject* Var_multiply(py::handle left, py::handle right) {
    if (PyFloat_CheckExact(left.ptr()))
        return as_result(linexpr_of_var(as_handle(right), PyFloat_AS_DOUBLE(left.ptr())));
    if (Py_TYPE(left.ptr()) == Var_Type && Py_TYPE(right.ptr()) == Var_Type)
        return as_result(product_of_expressions(left, right));
    const bool is_left = is_var(left);
    const py::handle var = is_left ? left : right, operand = is_left ? right : left;
    double value;
    if (converts_to_float(operand, value)) return as_result(linexpr_of_var(as_handle(var), value));
    return linexpr_multiply(left, right);
}

PyObject* Var_imul(py::handle var, py::handle operand) { return on_expression<linexpr_imul>(var, 1.0, operand); }

PyObject* Var_divide(py::handle left, py::handle right) {
    if (!is_var(left)) return not_implemented();
    double divisor;
    if (!scalar_value(right, divisor) || divisor == 0.0)
        raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT, "Divisor must be a constant");
    const py::object e = owned(linexpr_of_var(as_handle(left), 1.0));
    linexpr_scale(as_linexpr(e), 1.0 / divisor);
    return e.inc_ref().ptr();
}

PyObject* Var_negative(py::handle var) { return as_result(linexpr_of_var(as_handle(var), -1.0)); }

PyObject* Var_power(py::handle base, py::handle exponent, py::handle modulo) {
    double value;
    if (!is_var(base) || !modulo.is_none() || classify(exponent, value) != Operand::kScalar || value != 2.0)
        return not_implemented();
    return Var_multiply(base, base);
}

// What Python says where neither side knows < and >, and what to write instead; other types may know them.
PyObject* refuse_strict(py::handle var, py::handle other, int op) {
    if (!is_var(other) && !PyFloat_Check(other.ptr()) && !PyLong_Check(other.ptr())) return not_implemented();
    return PyErr_Format(PyExc_TypeError, "'%c' not supported between instances of '%.100s' and '%.100s'. %s",
                        op == Py_LT ? '<' : '>', Py_TYPE(var.ptr())->tp_name, Py_TYPE(other.ptr())->tp_name,
                        kNoStrictConstraints);
}

PyObject* Var_compare(py::handle var, py::handle other, int op) {
    const auto comparison = [&](char sense) {
        return new_tempconstr(owned(linexpr_of_var(as_handle(var), 1.0)), sense, borrow(other));
    };
    switch (op) {
        case Py_LE:
            return comparison('<');
        case Py_GE:
            return comparison('>');
        case Py_EQ:
            return other.is_none() ? boolean(false).release().ptr() : comparison('=');
        case Py_NE:
            if (other.is_none()) return boolean(true).release().ptr();
            raise_zelvan(0, "Inequality constraints not supported");
        default:
            return refuse_strict(var, other, op);
    }
}

PyObject* Var_div(py::handle var, py::handle divisor) { return Var_divide(var, divisor); }

// By name, unlike by the operator, the variable comes first.
PyObject* Var_radd(py::handle var, py::handle expr) { return Var_add(var, expr); }
PyObject* Var_rmul(py::handle var, py::handle expr) { return Var_multiply(var, expr); }

}  // namespace

PyType_Slot var_operator_slots[] = {
    {Py_nb_add, slot<Var_add>()},
    {Py_nb_subtract, slot<Var_subtract>()},
    {Py_nb_multiply, slot<Var_multiply>()},
    {Py_nb_true_divide, slot<Var_divide>()},
    {Py_nb_negative, slot<Var_negative>()},
    {Py_nb_power, slot<Var_power>()},
    {Py_nb_inplace_add, slot<Var_add>()},
    {Py_nb_inplace_subtract, slot<Var_subtract>()},
    {Py_nb_inplace_multiply, slot<Var_imul>()},
    {Py_tp_richcompare, slot<Var_compare>()},
};
const int num_var_operator_slots = std::size(var_operator_slots);

PyMethodDef var_operator_methods[] = {
    {"__radd__", method<Var_radd>, METH_O | METH_COEXIST, "__radd__($self, expr, /)\n--\n\nReturn self + expr."},
    {"__rmul__", method<Var_rmul>, METH_O | METH_COEXIST, "__rmul__($self, expr, /)\n--\n\nReturn self * expr."},
    {"__div__", method<Var_div>, METH_O, "__div__($self, constant, /)\n--\n\nThe same as self / constant."},
};
const int num_var_operator_methods = std::size(var_operator_methods);

void init_var_arith(py::module_&) {
    // The slots bring these along, though a variable neither divides a number nor is an exponent.
    for (const char* name : {"__rtruediv__", "__rpow__"})
        checked(PyObject_DelAttrString(reinterpret_cast<PyObject*>(Var_Type), name));
    prefer_to_numpy_scalars(Var_Type);
}

}  // namespace zelvanpy
