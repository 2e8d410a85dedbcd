#pragma once
// The attribute engine: from an attribute's name to the typed call of the library and back.

#include <vector>

#include "handle.h"

namespace zelvanpy {

enum AttrType { kCharAttr = 0, kIntAttr, kDoubleAttr, kStringAttr };

struct AttrInfo {
    const char* name;  // what the library is asked with
    int type;          // AttrType
    int kind;          // 0 model, otherwise the value of Kind
    bool settable;
};

// An attribute of an object that the library knows; the constructor throws AttributeError for others.
class Attribute {
public:
    Attribute(py::handle object, py::handle name);
    // The name as it was asked for.
    py::handle text() const { return text_; }
    const AttrInfo* operator->() const { return &info_; }

private:
    py::object text_;
    AttrInfo info_;
};

// The model of a Model, of a handle, or of another object with a field _cmodel.
ZVNmodel* model_of(py::handle object);
// Raises AttributeError "'zelvanpy.Var' object has no attribute 'name'".
[[noreturn]] void raise_no_attribute(py::handle object, py::handle name);
// Raises AttributeError with a text that holds the attribute's name at its one %U.
[[noreturn]] void raise_attribute(const char* format, py::handle name);

// The first character of a text that isn't empty as a value of an attribute; OverflowError for one beyond a byte.
char first_byte(py::handle text, py::handle name);

py::object get_attribute(py::handle object, py::handle name);
// The same for attribute syntax on a handle, without a temporary object.
PyObject* get_handle_attribute(Handle& handle, const HandleKind& kind, PyObject* name);
void set_attribute(py::handle object, py::handle name, py::handle value);
void prefetch_attribute(py::handle object, py::handle name);
// A new list of names of the attributes of a kind (0 model).
py::object attribute_names(py::handle cmodel, int kind);
// First half of attribute syntax: what the class and the stored fields have under the name; null, without an
// exception, when the library is to be asked.
PyObject* stored_attribute(PyObject* object, PyObject* dict, PyObject* name);
// What __dir__ gives: the sorted distinct names of the class, the stored fields and the attributes.
py::object directory(py::handle object, const py::object& fields, py::handle attributes);

}  // namespace zelvanpy
