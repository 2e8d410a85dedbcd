#pragma once
// A constant plus unmerged terms in one array; long sums by `+` chain blocks that are never changed again.

#include <cstdint>

#include "dormant.h"
#include "handle.h"
#include "pybase.h"

namespace zelvanpy {

struct Term {
    double coeff;
    Handle* var;  // owned
};

struct LinExpr {
    PyObject_HEAD double constant;
    Term* terms;  // inline_terms, or an array from PyMem
    std::uint32_t size;
    std::uint32_t capacity;
    LinExpr* tail;  // next older block of a chained sum, owned; null for a flat expression
    DormantLink link;
    Term inline_terms[2];
};

extern PyTypeObject* LinExpr_Type;

inline bool is_linexpr(py::handle h) {
    return Py_TYPE(h.ptr()) == LinExpr_Type || PyObject_TypeCheck(h.ptr(), LinExpr_Type);
}
inline LinExpr* as_linexpr(py::handle h) { return reinterpret_cast<LinExpr*>(h.ptr()); }

// All throw PythonError. New references are of exact type LinExpr.
LinExpr* new_linexpr(double constant = 0.0);
LinExpr* linexpr_of_var(Handle* var, double coeff);
// LinExpr(arg) for any argument of the constructor, with its tests and texts.
LinExpr* linexpr_from(py::handle arg);
// A copy of the head that shares the tail: LinExpr(e); with room for `extra` more terms.
LinExpr* linexpr_copy(LinExpr* e, std::size_t extra = 0);
void linexpr_flatten(LinExpr* e);
void linexpr_reserve(LinExpr* e, std::size_t terms);
void linexpr_append(LinExpr* e, double coeff, Handle* var);
// e += mult * other, where other is any LinExpr, left as it is.
void linexpr_add(LinExpr* e, LinExpr* other, double mult);
// e._mul(mult), behind the test that mult is a scalar.
void linexpr_scale(LinExpr* e, double mult);
void linexpr_clear(LinExpr* e);
// Merges terms of equal column and drops zeros.
void linexpr_normalize(LinExpr* e);
// e.add(arg, mult): Var, LinExpr or scalar, with all tests and texts of the method.
void linexpr_add_any(LinExpr* e, py::handle arg, double mult);
// `_constant += c` behind the test for NaN.
void linexpr_add_constant(LinExpr* e, double c);
// result += term with the rules of quicksum; `result` may become another object.
py::object accumulate(py::object result, py::handle term);
py::object quicksum(py::handle terms);
// Any scalar expression as a normalised private copy.
py::object simple_expr(py::handle arg);

void init_linexpr(py::module_& module);

}  // namespace zelvanpy
