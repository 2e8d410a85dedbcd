#pragma once
// What the methods of linear and quadratic expressions have in common.

#include <algorithm>
#include <vector>

#include "expr_memory.h"
#include "pynumber.h"
#include "pytype.h"

namespace zelvanpy {

// var.sameAs(other), without a call where the handles themselves decide.
bool is_same(Handle* var, Handle* other);

// The position of a term that an index means; the index may run code that changes the expression.
template <auto Flatten, class E>
std::size_t expr_position(E* e, py::handle index) {
    Flatten(e);
    const Py_ssize_t i = list_index(index);
    Flatten(e);
    return list_position(i, e->size);
}

template <class E>
void remove_term(E* e, std::size_t position) {
    const auto term = e->terms[position];
    std::copy(e->terms + position + 1, e->terms + e->size, e->terms + position);
    --e->size;
    term.variables([](Handle* var) { Py_DECREF(var); });
}

// Drops each term of a flat expression that has the variable. Terms are copied before any is looked at: sameAs() may be
// a subclass's own and change the expression.
template <class E>
void remove_variable(E* e, Handle* var) {
    TermBuffer<typename E::TermType> all, kept;
    gather_terms<E>({e}, all);
    for (const auto& term : all.terms()) {
        bool has_it = false;
        term.variables([&](Handle* own) { has_it = has_it || is_same(own, var); });
        if (!has_it) kept.append(term);
    }
    swap_terms(e, kept);
}

// Bytes of the object and its terms.
template <class E>
PyObject* expr_sizeof(E* e) {
    const std::size_t array = is_inline(e) ? 0 : e->capacity * sizeof(typename E::TermType);
    return PyLong_FromSize_t(Py_TYPE(as_result(e))->tp_basicsize + array);
}

// Makes the type from these slots and those for its memory.
template <class E>
void make_expr_type(py::module_& module, const char* name, std::vector<PyType_Slot> slots, PyTypeObject*& type) {
    slots.insert(slots.end(), {
                                  {Py_tp_dealloc, reinterpret_cast<void*>(ExprMemory<E>::dealloc)},
                                  {Py_tp_traverse, reinterpret_cast<void*>(ExprMemory<E>::traverse)},
                                  {Py_tp_clear, reinterpret_cast<void*>(ExprMemory<E>::clear)},
                                  {Py_tp_hash, reinterpret_cast<void*>(PyObject_HashNotImplemented)},
                                  {0, nullptr},
                              });
    PyType_Spec spec{name, sizeof(E), 0, Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_HAVE_GC, slots.data()};
    type = make_type(module, spec);
    ExprMemory<E>::register_type();
    prefer_to_numpy_scalars(type);
}

}  // namespace zelvanpy
