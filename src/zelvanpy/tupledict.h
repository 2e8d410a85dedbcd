#pragma once
// A dict whose keys can be searched by patterns, in a stable order of their own.

#include "pybase.h"
#include "pycontainer.h"

namespace zelvanpy {

struct TupleDict {
    VersionedDict dict;
    PyObject* wild;              // null stands for "*"
    PyObject* keys;              // the key list; null when not built
    std::uint64_t keys_version;  // of the dict when the key list was built
    PyObject* positions;         // dict from key to number; null while the numbers are ranks:
    Py_ssize_t ordered;          // the first `ordered` keys of the dict have theirs, the others none
    PyObject* attributes;
    PyObject* weakrefs;

    py::handle self() { return reinterpret_cast<PyObject*>(this); }
};

extern PyTypeObject* TupleDict_Type;

inline bool is_tupledict(py::handle h) { return PyObject_TypeCheck(h.ptr(), TupleDict_Type); }
inline TupleDict& as_tupledict(py::handle h) { return *reinterpret_cast<TupleDict*>(h.ptr()); }

py::object new_tupledict();
// A new tupledict from keys to values, two lists or tuples of equal length, as its constructor makes it: without
// positions, so in the order in which the keys first come.
py::object new_tupledict(py::handle keys, py::handle values);
// A new tupledict with the keys of one without positions, whose own values were these, and other values in their
// places.
py::object new_tupledict_like(TupleDict& source, py::handle own, py::handle values);
// t[key] = value.
void tupledict_set(TupleDict& t, py::handle key, py::handle value);
// Free of hashing where `ord` starts with the keys of the dict in its own order.
void tupledict_setord(TupleDict& t, py::handle ord);
// The cached key list, built where it is missing or the dict has changed.
py::object tupledict_keys(TupleDict& t);
// A list of the values in key order.
py::object tupledict_values(TupleDict& t);

// Methods that read through patterns: tupledict_query.cpp.
py::object tupledict_items(TupleDict& t);
py::object tupledict_select(TupleDict& t, Args args);
py::object tupledict_subset(TupleDict& t, Args args);
py::object tupledict_sum(TupleDict& t, Args args);
py::object tupledict_prod(TupleDict& t, Args args);
// Whether reading goes by dict and the key list alone, with no method replaced by a Python subclass.
bool is_plain(TupleDict& t);

// Iterators, which look at the keys when first asked: tupledict_iter.cpp.
py::object tupledict_iter(TupleDict& t);
py::object tupledict_itervalues(TupleDict& t);
py::object tupledict_iteritems(TupleDict& t, Args args);
void init_tupledict_iterator();

}  // namespace zelvanpy
