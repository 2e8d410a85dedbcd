#pragma once
// Arrays of handles: what MVar and the matrix constraints share. What differs between the classes is one row for each.

#include <vector>

#include "handle_type.h"
#include "pyarray.h"

namespace zelvanpy {

struct HandleArray {
    PyObject_HEAD PyObject* array;  // of handles; null until __init__()
    PyObject* cmodel;               // of the first handle; null for an empty array
    PyObject* dict;
    PyObject* weakrefs;
};

struct HandleArrayKind {
    PyTypeObject** type;
    Kind kind;              // of the handles
    const char* full_name;  // "zelvanpy.MVar"
    const char* name;       // "MVar"
    const char* field;      // "_vararr"
    const char* named_as;   // in the text for an attribute of another kind of object
    const char* doc;
};

// The array, kept alive. Raises AttributeError before __init__().
py::object array_of(const HandleArray& self);
// The array of an MVar.
inline py::object array_of(py::handle self) { return array_of(*reinterpret_cast<HandleArray*>(self.ptr())); }
// The handle in a cell; TypeError for any other object.
Handle* handle_in(PyObject* cell, Kind kind);
inline Handle* var_in(PyObject* cell) {
    return cell && Py_TYPE(cell) == Var_Type ? as_handle(cell) : handle_in(cell, Kind::kVar);
}

// Takes over an array that nobody else changes.
py::object new_handle_array(PyTypeObject* type, py::object array);
// self.__init__() with an array that is taken over.
void set_handle_array(HandleArray& self, py::object array);
// self.getAttr(name)
py::object handle_array_attribute(py::handle self, py::handle name);
// The index fields of all handles as a flat list.
std::vector<int> handle_indices(const HandleArray& self);

void make_handle_array_type(py::module_& module, const HandleArrayKind& kind, HandleExtras extras);

}  // namespace zelvanpy
