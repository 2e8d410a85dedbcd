#pragma once
// The five kinds of handle: capsule of the model and an index that also tells the state. What differs between the
// kinds is one row for each.

#include "extern.h"

namespace zelvanpy {

struct Handle {
    PyObject_HEAD PyObject* cmodel;  // the capsule that all handles of a model share, None after disposal
    PyObject* dict;                  // fields set by the user; null until the first
    PyObject* weakrefs;
    int index;  // 0 and up live, -1 pending, -2 removed, -3 - index marked for removal

    // The index to pass to the library: -1 pending, -2 removed.
    int cindex() const { return index >= -2 ? index : -index - 3; }
};

enum class Kind { kVar = 1, kConstr, kSos, kQConstr, kGenConstr };

extern PyTypeObject* Var_Type;
extern PyTypeObject* Constr_Type;
extern PyTypeObject* SOS_Type;
extern PyTypeObject* QConstr_Type;
extern PyTypeObject* GenConstr_Type;

// Subclasses count as well.
inline bool is_var(py::handle h) { return Py_TYPE(h.ptr()) == Var_Type || PyObject_TypeCheck(h.ptr(), Var_Type); }
inline bool is_constr(py::handle h) {
    return Py_TYPE(h.ptr()) == Constr_Type || PyObject_TypeCheck(h.ptr(), Constr_Type);
}
inline bool is_qconstr(py::handle h) {
    return Py_TYPE(h.ptr()) == QConstr_Type || PyObject_TypeCheck(h.ptr(), QConstr_Type);
}
inline Handle* as_handle(py::handle h) { return reinterpret_cast<Handle*>(h.ptr()); }

// What a Model begins with, which is all that handles and attributes need of it.
struct ModelHead {
    PyObject_HEAD PyObject* cmodel;  // capsule or None
};
extern PyTypeObject* Model_Type;
inline bool is_model(py::handle h) { return PyObject_TypeCheck(h.ptr(), Model_Type); }

struct HandleKind {
    PyTypeObject** type;
    Kind kind;
    const char* full_name;    // "zelvanpy.Var"
    const char* name;         // "Var"
    const char* index_field;  // "_colno"; without "_" the keyword of the constructor
    const char* count_attr;   // "NumVars"
    const char* doc;
};

// Rows in the order of `Kind`, which starts at 1.
extern const HandleKind handle_kinds[5];
inline const HandleKind& handle_kind(Kind kind) { return handle_kinds[static_cast<int>(kind) - 1]; }
// The row of an object; null when it is no handle.
const HandleKind* find_handle_kind(PyObject* object);

// Number of objects of the kind in the library's model; 0 when there is no model any more.
int library_count(const Handle& handle, Kind kind);

// A new reference to a handle of the type; throws PythonError.
PyObject* new_handle(PyTypeObject* type, PyObject* cmodel, int index);

}  // namespace zelvanpy
