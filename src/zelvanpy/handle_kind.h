#pragma once
// What differs between the five kinds of handle: one row for each, from which its type is made.

#include <vector>

#include "handle.h"

namespace zelvanpy {

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

// What one kind adds to the shared slots, methods and properties.
struct HandleExtras {
    std::vector<PyType_Slot> slots;
    std::vector<PyMethodDef> methods;
    std::vector<PyGetSetDef> properties;
};
// Creates the type of a kind and adds it to the module.
void make_handle_type(py::module_& module, Kind kind, HandleExtras extras);

// `sameAs` and `index`, which only Var and Constr have.
PyObject* handle_sameAs(Handle& self, Args args);
PyMethodDef same_as_method();
PyGetSetDef index_property();
// Number of objects of the kind in the library's model; 0 when there is no model any more.
int library_count(const Handle& handle, Kind kind);
// Pieces of repr: the value of a name attribute, and the number of a handle that has no name.
py::object name_attribute(Handle& handle, const char* attribute);
PyObject* numbered_repr(Handle& handle);

}  // namespace zelvanpy
