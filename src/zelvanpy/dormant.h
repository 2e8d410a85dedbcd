#pragma once
// Objects that the cycle collector need not look at yet.
//
// Expressions are made by the million, and over plain handles none of them can be part of a cycle. So they
// start dormant, unknown to the collector, and join it when they take in something that can lead back to
// them. One road is seen from the other end only: a handle that gets fields of its own after it was put into
// an expression. Then all dormant objects are gone through once, at the start of the next full collection.

#include <cstddef>

#include "handle.h"
#include "pybase.h"

namespace zelvanpy {

// Member of a struct that may be dormant: its place in the ring of its class, null while the collector has it.
struct DormantLink {
    DormantLink* previous;
    DormantLink* next;
};

// One class whose instances of exact type may be dormant.
struct DormantClass {
    PyTypeObject* type;
    std::size_t link_offset;
    bool (*must_wake)(PyObject*);  // whether an instance may have become part of a cycle
    DormantLink ring;
    DormantClass* next_class;
};

// `listed` lives as long as the process. Classes are gone through in the order in which they were added,
// so that what an object contains comes before it.
void add_dormant_class(DormantClass& listed);

inline void fall_asleep(DormantClass& of, DormantLink& link) {
    link.previous = &of.ring;
    link.next = of.ring.next;
    link.next->previous = &link;
    of.ring.next = &link;
}
inline void leave_ring(DormantLink& link) {
    link.previous->next = link.next;
    link.next->previous = link.previous;
    link.previous = link.next = nullptr;
}
// The object joins the collector.
void wake(PyObject* object, DormantLink& link);

// Whether nothing that the collector knows can be reached over this handle.
inline bool is_inert(const Handle* var) {
    return !var->dict && Py_TYPE(reinterpret_cast<PyObject*>(const_cast<Handle*>(var))) == Var_Type;
}
// Whether nothing that the collector knows can be reached over this object: a number, a string, an inert
// variable, a dormant object.
bool is_inert(PyObject* object);

// To be called when a handle gets a dict.
void handle_gained_dict() noexcept;

}  // namespace zelvanpy
