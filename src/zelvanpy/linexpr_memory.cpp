#include "linexpr_memory.h"

#include <vector>

#include "pyfreelist.h"

namespace zelvanpy {

PyTypeObject* LinExpr_Type = nullptr;

namespace {

FreeList<LinExpr, 256> free_list;

bool linexpr_must_wake(PyObject* object) {
    const LinExpr* e = reinterpret_cast<LinExpr*>(object);
    if (e->tail) return true;
    for (std::uint32_t i = 0; i < e->size; ++i)
        if (!is_inert(e->terms[i].var)) return true;
    return false;
}

DormantClass dormant_class{nullptr, offsetof(LinExpr, link), linexpr_must_wake};

void init_fields(LinExpr* e) {
    init_terms(e);
    e->constant = 0.0;
    e->tail = nullptr;
}

}  // namespace

void set_tail(LinExpr* e, LinExpr* tail) {
    Py_XINCREF(tail);
    LinExpr* old = std::exchange(e->tail, tail);
    if (tail && !is_inert(reinterpret_cast<PyObject*>(tail))) wake_linexpr(e);
    if (old) release_tail(old, LinExpr_Type);
}

void swap_terms(LinExpr* e, TermBuffer<Term>& buffer) {
    std::vector<Term>& terms = buffer.terms();
    reserve_terms(e, terms.size());
    std::vector<Term> old(e->terms, e->terms + e->size);
    bool inert = true;
    for (std::size_t i = 0; i < terms.size(); ++i) {
        e->terms[i] = terms[i];
        inert &= is_inert(terms[i].var);
    }
    e->size = static_cast<std::uint32_t>(terms.size());
    terms.swap(old);
    if (!inert) wake_linexpr(e);
}

void linexpr_clear(LinExpr* e) {
    TermBuffer<Term> nothing;
    swap_terms(e, nothing);
    e->constant = 0.0;
    set_tail(e, nullptr);
}

void grow_linexpr(LinExpr* e) { set_capacity(e, grown_capacity(std::size_t{e->size} + 1)); }
void double_linexpr(LinExpr* e) { set_capacity(e, 2 * std::size_t{e->size}); }

LinExpr* allocate_linexpr(PyTypeObject* type) {
    LinExpr* e;
    if (type != LinExpr_Type) {
        inherit_operators(type, LinExpr_Type);
        e = reinterpret_cast<LinExpr*>(type->tp_alloc(type, 0));
        if (!e) throw PythonError{};
        init_fields(e);
        return e;
    }
    e = free_list.take(LinExpr_Type);
    init_fields(e);
    fall_asleep(dormant_class, e->link);
    return e;
}

void wake_linexpr(LinExpr* e) {
    if (e->link.next) wake(reinterpret_cast<PyObject*>(e), e->link);
}

void LinExpr_dealloc(PyObject* self) {
    LinExpr* e = reinterpret_cast<LinExpr*>(self);
    if (e->link.next)
        leave_ring(e->link);
    else
        PyObject_GC_UnTrack(self);
    free_terms(e);
    if (e->tail) release_tail(e->tail, LinExpr_Type);
    free_list.give(e, LinExpr_Type);
}

int LinExpr_traverse(PyObject* self, visitproc visit, void* arg) {
    const LinExpr* e = reinterpret_cast<LinExpr*>(self);
    for (std::uint32_t i = 0; i < e->size; ++i) Py_VISIT(e->terms[i].var);
    Py_VISIT(e->tail);
    return visit_type(self, visit, arg);
}

namespace {
void clear_all(LinExpr& e) { linexpr_clear(&e); }
}  // namespace

int LinExpr_tp_clear(PyObject* self) { return slot_function<clear_all>(self); }

void register_linexpr_memory() {
    dormant_class.type = LinExpr_Type;
    add_dormant_class(dormant_class);
}

}  // namespace zelvanpy
