#pragma once
// The algebra of linear expressions; their methods are in linexpr_methods.cpp, operators in
// linexpr_ops.cpp.

#include "linexpr_memory.h"

namespace zelvanpy {

// All throw PythonError. New references are of exact type LinExpr.
LinExpr* new_linexpr(double constant = 0.0);
LinExpr* linexpr_of_var(Handle* var, double coeff);
// A copy of the head that shares the tail: LinExpr(e); with room for `extra` more terms.
LinExpr* linexpr_copy(LinExpr* e, std::size_t extra = 0);
void linexpr_flatten(LinExpr* e);
// The sum of the constants of blocks, oldest first.
double chain_constant(const std::vector<LinExpr*>& blocks);
void linexpr_append(LinExpr* e, double coeff, Handle* var);
// e += mult * other, where other is any LinExpr, left as it is.
void linexpr_add(LinExpr* e, LinExpr* other, double mult);
// Refuses a multiplier that is infinite or NaN.
void check_multiplier(double mult);
// e._mul(mult), behind the test that mult is a scalar.
void linexpr_scale(LinExpr* e, double mult);
// Merges terms of equal column and drops zeros.
void linexpr_normalize(LinExpr* e);
// `_constant += c` behind the test for NaN.
void linexpr_add_constant(LinExpr* e, double c);
// e += term for a term of known exact class, which runs no Python code; false for any other.
template <void (*Grow)(LinExpr*)>
inline bool add_known(LinExpr* e, PyObject* term) {
    PyTypeObject* type = Py_TYPE(term);
    if (type == LinExpr_Type) {
        LinExpr* other = as_linexpr(term);
        if (other->size != 1 || other->tail) {
            linexpr_add(e, other, 1.0);
            return true;
        }
        if (e->size == e->capacity) Grow(e);
        append_term(e, other->terms[0]);
        e->constant += other->constant;
        return true;
    }
    if (type == Var_Type) {
        if (e->size == e->capacity) Grow(e);
        append_term(e, {1.0, as_handle(term)});
        return true;
    }
    if (type != &PyFloat_Type) return false;
    linexpr_add_constant(e, PyFloat_AS_DOUBLE(term));
    return true;
}

}  // namespace zelvanpy
