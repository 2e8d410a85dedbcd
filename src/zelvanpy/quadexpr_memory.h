#pragma once
// Quadratic expressions as objects.

#include "linexpr_memory.h"

namespace zelvanpy {

extern PyTypeObject* QuadExpr_Type;

// A linear expression plus unmerged quadratic terms; long sums by `+` chain blocks.
struct QuadExpr {
    using TermType = QuadTerm;

    PyObject_HEAD LinExpr* lin;  // of exact type, owned; null until there is a linear part or someone asks for it
    QuadTerm* terms;             // inline_terms, or an array from PyMem
    std::uint32_t size;
    std::uint32_t capacity;
    QuadExpr* tail;  // next older block of a chained sum, owned; null for a flat expression
    DormantLink link;
    QuadTerm inline_terms[1];

    static PyTypeObject* type() { return QuadExpr_Type; }
    void init_rest() { lin = nullptr; }
    void clear_rest() {
        if (lin) clear_expr(lin);
    }
    void free_rest() { Py_CLEAR(lin); }
    bool rest_is_inert() const { return !lin || is_inert(as_result(lin)); }
    int visit_rest(visitproc visit, void* arg) const {
        Py_VISIT(lin);
        return 0;
    }
};

inline bool is_quadexpr(py::handle h) {
    return Py_TYPE(h.ptr()) == QuadExpr_Type || PyObject_TypeCheck(h.ptr(), QuadExpr_Type);
}
inline QuadExpr* as_quadexpr(py::handle h) { return reinterpret_cast<QuadExpr*>(h.ptr()); }

}  // namespace zelvanpy
