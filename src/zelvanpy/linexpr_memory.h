#pragma once
// The memory of linear expressions: objects, their terms, and what the collector knows of them.

#include "chain.h"
#include "dormant.h"
#include "terms.h"

namespace zelvanpy {

// A constant plus unmerged terms; long sums by `+` chain blocks.
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

// A new reference to an expression as the result of an operator.
inline PyObject* as_result(LinExpr* e) { return reinterpret_cast<PyObject*>(e); }
inline py::object owned(LinExpr* e) { return py::reinterpret_steal<py::object>(reinterpret_cast<PyObject*>(e)); }

// An instance of LinExpr or a subclass with no terms.
LinExpr* allocate_linexpr(PyTypeObject* type);
// The collector gets to know e, which has taken in something that may lead back to it.
void wake_linexpr(LinExpr* e);
// Room for at least one more term: little, or as much again for a sum that is cut to size at its end.
void grow_linexpr(LinExpr* e);
void double_linexpr(LinExpr* e);
// Appends where there is room.
inline void append_term(LinExpr* e, double coeff, Handle* var) {
    Py_INCREF(var);
    e->terms[e->size++] = {coeff, var};
    if (!is_inert(var)) wake_linexpr(e);
}
// e exchanges its terms with those of the buffer.
void swap_terms(LinExpr* e, TermBuffer<Term>& buffer);
// No terms, no constant.
void linexpr_clear(LinExpr* e);
// Sets the older blocks of e; tail may be null.
void set_tail(LinExpr* e, LinExpr* tail);

// Slots for the type.
void LinExpr_dealloc(PyObject* self);
int LinExpr_traverse(PyObject* self, visitproc visit, void* arg);
int LinExpr_tp_clear(PyObject* self);
// Tells the collector's side of the new type.
void register_linexpr_memory();

}  // namespace zelvanpy
