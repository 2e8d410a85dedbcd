#pragma once
// The types of handles: what all five kinds share, and what one of them adds.

#include <vector>

#include "handle.h"

namespace zelvanpy {

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
// Pieces of repr: the value of a name attribute, and the number of a handle that has no name.
py::object name_attribute(Handle& handle, const char* attribute);
PyObject* numbered_repr(Handle& handle);

}  // namespace zelvanpy
