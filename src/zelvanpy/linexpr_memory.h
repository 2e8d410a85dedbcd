#pragma once
// Linear expressions as objects.

#include "expr_memory.h"

namespace zelvanpy {

extern PyTypeObject* LinExpr_Type;

// A constant plus unmerged terms; long sums by `+` chain blocks.
struct LinExpr {
    using TermType = Term;

    PyObject_HEAD double constant;
    Term* terms;  // inline_terms, or an array from PyMem
    std::uint32_t size;
    std::uint32_t capacity;
    LinExpr* tail;  // next older block of a chained sum, owned; null for a flat expression
    DormantLink link;
    Term inline_terms[2];

    static PyTypeObject* type() { return LinExpr_Type; }
    void init_rest() { constant = 0.0; }
    void clear_rest() { constant = 0.0; }
    void free_rest() {}
    bool rest_is_inert() const { return true; }
    int visit_rest(visitproc, void*) const { return 0; }
};

inline bool is_linexpr(py::handle h) {
    return Py_TYPE(h.ptr()) == LinExpr_Type || PyObject_TypeCheck(h.ptr(), LinExpr_Type);
}
inline LinExpr* as_linexpr(py::handle h) { return reinterpret_cast<LinExpr*>(h.ptr()); }

}  // namespace zelvanpy
