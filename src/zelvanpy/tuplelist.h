#pragma once
// A list of tuples of one length, or of scalars, with selection by patterns.

#include "pattern.h"
#include "pybase.h"

namespace zelvanpy {

// What is computed from the members and dropped by the methods that change them.
struct Derived {
    std::vector<std::shared_ptr<Members>> members;  // of all indices, each once
    std::vector<std::shared_ptr<KeyIndex>> indices;
    py::object contents;       // set of the members
    py::object neighbours[4];  // dicts of prev, next, prevc, nextc
};

struct TupleList {
    PyListObject list;
    PyObject* wild;  // null stands for "*"
    Py_ssize_t kind;
    Derived* derived;  // null when nothing is built
    PyObject* dict;
    PyObject* weakrefs;

    // `kind` is a length plus one, or one of these. An instance that list made by itself is of unknown kind.
    static constexpr Py_ssize_t kUnknown = 0, kScalars = -1, kTuples = -2;

    py::handle self() { return reinterpret_cast<PyObject*>(this); }
    Py_ssize_t size() const { return PyList_GET_SIZE(reinterpret_cast<const PyObject*>(this)); }
    PyObject* member(Py_ssize_t i) const { return list.ob_item[i]; }
    bool scalar() const { return kind == kScalars; }
};

extern PyTypeObject* TupleList_Type;

inline bool is_tuplelist(py::handle h) { return PyObject_TypeCheck(h.ptr(), TupleList_Type); }
inline TupleList& as_tuplelist(py::handle h) { return *reinterpret_cast<TupleList*>(h.ptr()); }

// A new tuplelist with the members of a plain list that nobody else holds, which is empty afterwards.
// ValueError where the members don't fit together. `wild` null stands for "*".
py::object new_tuplelist(py::object plain, py::object wild = {});
// tuplelist.extend: all members or, with ValueError, none.
void tuplelist_extend(TupleList& list, py::handle members);
void tuplelist_clean(TupleList& list);
py::object tuplelist_wild(const TupleList& list);
Derived& derived_of(TupleList& list);

// Selection by patterns: tuplelist_select.cpp.

// The tuplelist of a group, the same object each time.
py::object group_list(KeyIndex& index, std::uint32_t group);

// What a pattern selected: groups and whole lists, one after the other.
struct Selection {
    struct Part {
        std::shared_ptr<KeyIndex> index;
        std::uint32_t group;
        py::object list;  // in place of index and group
    };
    std::vector<Part> parts;
    bool expanded = false;  // a value of the pattern was a collection of alternatives

    std::size_t size() const;
};

// The members of the list that match the pattern, by the rules of tuplelist.select.
Selection select(TupleList& list, PyObject* const* vals, std::size_t num);
// The same as one tuplelist: the list itself, the list of a group, or a new one.
py::object selected_list(const Selection& selection);

}  // namespace zelvanpy
