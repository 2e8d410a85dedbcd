#pragma once
// The algebra of quadratic expressions; their methods are in quadexpr_methods.cpp, operators in quadexpr_ops.cpp.

#include "linexpr.h"
#include "quadexpr_memory.h"

namespace zelvanpy {

// All throw PythonError. New references are of exact type QuadExpr.
QuadExpr* new_quadexpr();
// The linear part, made where there is none yet; that may run code of finalizers.
LinExpr* linear_part(QuadExpr* e);
// Replaces the linear part by another object, of exact type LinExpr.
void set_linear_part(QuadExpr* e, py::object linear);
// A copy of the head that shares the tail: QuadExpr(e); with room for `extra` more quadratic terms.
QuadExpr* quadexpr_copy(QuadExpr* e, std::size_t extra = 0);
// A quadratic expression of what a linear one, which is given up, holds.
QuadExpr* quadexpr_of_linear(py::object linear);
void quadexpr_flatten(QuadExpr* e);
// The expression itself when it is flat, otherwise a flattened copy.
py::object flat_quadexpr(QuadExpr* e);
// e += mult * other, where other is any QuadExpr, left as it is.
void quadexpr_add(QuadExpr* e, QuadExpr* other, double mult);
// e._mul(mult) for a number.
void quadexpr_scale(QuadExpr* e, double mult);
// e._mul(factor) for an e without quadratic terms and a Var or LinExpr.
void quadexpr_multiply_linear(QuadExpr* e, py::handle factor);
// Merges terms of equal columns and drops zeros.
void quadexpr_normalize(QuadExpr* e);
// left * right, where each is a Var or a LinExpr; new reference.
QuadExpr* product_of_expressions(py::handle left, py::handle right);

// e += term for a term of known exact class, which runs no Python code but that of finalizers; false for any other.
template <void (*Grow)(QuadExpr*), void (*GrowLinear)(LinExpr*)>
bool add_known(QuadExpr* e, PyObject* term) {
    PyTypeObject* type = Py_TYPE(term);
    if (type == QuadExpr_Type) {
        QuadExpr* other = as_quadexpr(term);
        if (other->size != 1 || other->tail || other->lin) {
            quadexpr_add(e, other, 1.0);
            return true;
        }
        if (e->size == e->capacity) Grow(e);
        append_term(e, other->terms[0]);
        return true;
    }
    if (type != LinExpr_Type && type != Var_Type && type != &PyFloat_Type) return false;
    return add_known<GrowLinear>(linear_part(e), term);
}

}  // namespace zelvanpy
