#pragma once
// The memory of expressions: objects, their terms and blocks, and what the collector knows of them. An expression `E`
// has the fields that terms.h and chain.h ask for, a DormantLink `link`, the name TermType of its terms, and
//   type()           its exact type
//   init_rest()      sets the fields besides terms and blocks, clear_rest() empties and free_rest() lets go of them
//   rest_is_inert()  whether nothing that the collector knows can be reached over them
//   visit_rest()     shows them to the collector

#include <cstddef>
#include <cstdint>
#include <vector>

#include "chain.h"
#include "dormant.h"
#include "pyfreelist.h"
#include "terms.h"

namespace zelvanpy {

template <class E>
PyObject* as_result(E* e) {
    return reinterpret_cast<PyObject*>(e);
}
template <class E>
py::object owned(E* e) {
    return py::reinterpret_steal<py::object>(as_result(e));
}

template <class T>
bool has_inert_variables(const T& term) {
    bool inert = true;
    term.variables([&](const Handle* var) { inert &= is_inert(var); });
    return inert;
}

template <class E>
class ExprMemory {
public:
    // An instance of the type or a subclass with no terms.
    static E* allocate(PyTypeObject* type) {
        E* e;
        if (type != E::type()) {
            inherit_operators(type, E::type());
            e = reinterpret_cast<E*>(type->tp_alloc(type, 0));
            if (!e) throw PythonError{};
        } else {
            e = free_list_.take(type);
            fall_asleep(dormant_class_, e->link);
        }
        init_terms(e);
        e->tail = nullptr;
        e->init_rest();
        return e;
    }
    // The collector gets to know e, which has taken in something that may lead back to it.
    static void wake(E* e) {
        if (e->link.next) zelvanpy::wake(as_result(e), e->link);
    }

    // Slots for the type.
    static void dealloc(PyObject* self) {
        E* e = reinterpret_cast<E*>(self);
        if (e->link.next)
            leave_ring(e->link);
        else
            PyObject_GC_UnTrack(self);
        free_terms(e);
        e->free_rest();
        if (e->tail) release_tail(e->tail, E::type());
        free_list_.give(e, E::type());
    }
    static int traverse(PyObject* self, visitproc visit, void* arg) {
        const E* e = reinterpret_cast<E*>(self);
        int result = 0;
        for (std::uint32_t i = 0; i < e->size && !result; ++i)
            e->terms[i].variables([&](Handle* var) {
                if (!result) result = visit(reinterpret_cast<PyObject*>(var), arg);
            });
        if (result) return result;
        Py_VISIT(e->tail);
        if (const int stop = e->visit_rest(visit, arg)) return stop;
        return visit_type(self, visit, arg);
    }
    static int clear(PyObject* self) { return slot_function<clear_all>(self); }
    // To be called when the type is there.
    static void register_type() {
        dormant_class_.type = E::type();
        add_dormant_class(dormant_class_);
    }

private:
    static bool must_wake(PyObject* object) {
        const E* e = reinterpret_cast<E*>(object);
        if (e->tail || !e->rest_is_inert()) return true;
        for (std::uint32_t i = 0; i < e->size; ++i)
            if (!has_inert_variables(e->terms[i])) return true;
        return false;
    }
    static void clear_all(E& e);

    inline static FreeList<E, 256> free_list_;
    inline static DormantClass dormant_class_{nullptr, offsetof(E, link), must_wake};
};

// Sets the older blocks of e; tail may be null.
template <class E>
void set_tail(E* e, E* tail) {
    Py_XINCREF(tail);
    E* old = std::exchange(e->tail, tail);
    if (tail && !is_inert(as_result(tail))) ExprMemory<E>::wake(e);
    if (old) release_tail(old, E::type());
}

// Room for at least one more term: little, or as much again for a sum that is cut to size at its end.
template <class E>
void grow_terms(E* e) {
    set_capacity(e, grown_capacity(std::size_t{e->size} + 1));
}
template <class E>
void double_terms(E* e) {
    set_capacity(e, 2 * std::size_t{e->size});
}

// Appends where there is room.
template <class E>
void append_term(E* e, const typename E::TermType& term) {
    term.variables([](Handle* var) { Py_INCREF(var); });
    e->terms[e->size++] = term;
    if (!has_inert_variables(term)) ExprMemory<E>::wake(e);
}

// e exchanges its terms with those of the buffer.
template <class E>
void swap_terms(E* e, TermBuffer<typename E::TermType>& buffer) {
    auto& terms = buffer.terms();
    reserve_terms(e, terms.size());
    std::vector<typename E::TermType> old(e->terms, e->terms + e->size);
    bool inert = true;
    for (std::size_t i = 0; i < terms.size(); ++i) {
        e->terms[i] = terms[i];
        inert &= has_inert_variables(terms[i]);
    }
    e->size = static_cast<std::uint32_t>(terms.size());
    terms.swap(old);
    if (!inert) ExprMemory<E>::wake(e);
}

// The first terms of another block, scaled, behind those of e; the block may be e itself.
template <class E>
void append_scaled(E* e, const E* block, std::uint32_t count, double mult) {
    reserve_terms(e, std::size_t{e->size} + count);
    auto* out = e->terms + e->size;
    bool inert = true;
    for (std::uint32_t i = 0; i < count; ++i) {
        out[i] = block->terms[i].scaled(mult);
        out[i].variables([](Handle* var) { Py_INCREF(var); });
        inert &= has_inert_variables(out[i]);
    }
    e->size += count;
    if (!inert) ExprMemory<E>::wake(e);
}

// The terms of all blocks behind those of the buffer.
template <class E>
void gather_terms(const std::vector<E*>& blocks, TermBuffer<typename E::TermType>& buffer) {
    buffer.terms().reserve(buffer.terms().size() + chain_size(blocks));
    for (const E* block : blocks)
        for (std::uint32_t i = 0; i < block->size; ++i) buffer.append(block->terms[i]);
}

// Whether a sum by `+` that has come to this size goes on in a new block.
template <class E>
bool is_full_block(const E* e) {
    return e->size >= kBlockTerms;
}

// No terms, no older blocks, nothing else.
template <class E>
void clear_expr(E* e) {
    TermBuffer<typename E::TermType> nothing;
    swap_terms(e, nothing);
    e->clear_rest();
    set_tail(e, static_cast<E*>(nullptr));
}

template <class E>
void ExprMemory<E>::clear_all(E& e) {
    TermBuffer<typename E::TermType> nothing;
    swap_terms(&e, nothing);
    e.free_rest();
    set_tail(&e, static_cast<E*>(nullptr));
}

}  // namespace zelvanpy
