#pragma once
// The five kinds of handle: capsule of the model and an index that also tells the state.

#include "extern.h"
#include "pybase.h"

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
inline Handle* as_handle(py::handle h) { return reinterpret_cast<Handle*>(h.ptr()); }

// A new reference to a handle of the type; throws PythonError.
PyObject* new_handle(PyTypeObject* type, PyObject* cmodel, int index);

// What a Var shows in expressions: name and flags as _safename() gives them.
struct SafeName {
    py::object text;
    bool pending, removed;
};
SafeName safe_name(Handle* var);

// Operator and comparison slots of Var and the methods that go with them (var_arith.cpp), put into its type by
// var.cpp.
extern PyType_Slot var_operator_slots[];
extern const int num_var_operator_slots;
extern PyMethodDef var_operator_methods[];
extern const int num_var_operator_methods;

}  // namespace zelvanpy
