#pragma once
// Operators and comparisons of expressions. Operands come in source order: either may be the expression. An algebra
// `A` tells what differs between linear and quadratic ones:
//   Expr                     the class
//   takes(kind)              whether it works with such operands
//   from(operand)            Expr(operand), a new reference
//   copy(e, extra)           a copy that shares the older blocks, with room for `extra` more terms
//   add_any(e, operand, m)   e += m * operand
//   add_known(e, operand)    e += operand for one that runs no Python code, false for any other
//   is_full(e)               whether a sum goes on in a new block
//   scale(e, m)              e *= m
//   multiply(left, right)    the product, a new reference or NotImplemented
//   check_divisor(d)         refuses a zero

#include <vector>

#include "exception.h"
#include "operand.h"
#include "pynumber.h"

namespace zelvanpy {

inline constexpr char kNoDivisor[] = "Divisor must be a constant";

// The comparison of an expression with anything, as a constraint.
PyObject* compare_expr(py::handle self, py::handle other, int op);

// left + mult * right as the operators + and - build it: a full block starts a chain.
template <class A>
PyObject* expr_sum(py::handle left, py::handle right, double mult) {
    using E = typename A::Expr;
    double value;
    const Operand kind = classify(right, value);
    if (!A::takes(kind) || (Py_TYPE(left.ptr()) != E::type() && !A::takes(classify(left, value))))
        return not_implemented();
    E* e = Py_TYPE(left.ptr()) == E::type() ? A::copy(reinterpret_cast<E*>(left.ptr()), A::growth(right, kind))
                                            : A::from(left);
    py::object keep = owned(e);
    A::add_any(e, right, mult);
    if (!A::is_full(e)) return keep.release().ptr();
    py::object head = owned(ExprMemory<E>::allocate(E::type()));
    set_tail(reinterpret_cast<E*>(head.ptr()), e);
    return head.release().ptr();
}
template <class A>
PyObject* expr_plus(py::handle left, py::handle right) {
    return expr_sum<A>(left, right, 1.0);
}
template <class A>
PyObject* expr_minus(py::handle left, py::handle right) {
    return expr_sum<A>(left, right, -1.0);
}

// operand * mult as a new expression
template <class A>
PyObject* scaled_copy(py::handle operand, double mult) {
    py::object e = owned(A::from(operand));
    A::scale(reinterpret_cast<typename A::Expr*>(e.ptr()), mult);
    return e.release().ptr();
}

template <class A>
PyObject* expr_divide(py::handle dividend, py::handle divisor) {
    double value;
    if (!scalar_value(divisor, value)) raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT, kNoDivisor);
    A::check_divisor(value);
    const py::object factor = steal(PyFloat_FromDouble(1.0 / value));
    return A::multiply(dividend, factor);
}

template <class A>
PyObject* expr_negative(py::handle self) {
    const py::object factor = steal(PyFloat_FromDouble(-1.0));
    return A::multiply(self, factor);
}

template <class A>
PyObject* expr_iadd(py::handle self, py::handle operand) {
    auto* e = reinterpret_cast<typename A::Expr*>(self.ptr());
    if (!A::add_known(e, operand.ptr())) {
        double value;
        if (!A::takes(classify(operand, value))) return not_implemented();
        A::add_any(e, operand, 1.0);
    }
    return self.inc_ref().ptr();
}

template <class A>
PyObject* expr_isub(py::handle self, py::handle operand) {
    double value;
    if (!A::takes(classify(operand, value))) return not_implemented();
    A::add_any(reinterpret_cast<typename A::Expr*>(self.ptr()), operand, -1.0);
    return self.inc_ref().ptr();
}

// The reflected operators as methods: by name, unlike by the operator, the expression comes first.
PyObject* expr_radd(py::handle self, py::handle expr);
PyObject* expr_rmul(py::handle self, py::handle expr);
template <class A>
PyObject* expr_rsub(py::handle self, py::handle expr) {
    using E = typename A::Expr;
    const py::object negative = owned(A::copy(reinterpret_cast<E*>(self.ptr()), 0));
    A::scale(reinterpret_cast<E*>(negative.ptr()), -1.0);
    return PyNumber_Add(expr.ptr(), negative.ptr());
}

// Slots for the operators that both classes have, besides *=.
template <class A>
void append_operator_slots(std::vector<PyType_Slot>& slots) {
    slots.insert(slots.end(), {
                                  {Py_nb_add, slot<expr_plus<A>>()},
                                  {Py_nb_subtract, slot<expr_minus<A>>()},
                                  {Py_nb_multiply, slot<A::multiply>()},
                                  {Py_nb_true_divide, slot<expr_divide<A>>()},
                                  {Py_nb_negative, slot<expr_negative<A>>()},
                                  {Py_nb_inplace_add, slot<expr_iadd<A>>()},
                                  {Py_nb_inplace_subtract, slot<expr_isub<A>>()},
                                  {Py_tp_richcompare, slot<compare_expr>()},
                              });
}

}  // namespace zelvanpy
