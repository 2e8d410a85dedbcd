#pragma once
// Numbers, indices and sequences as Python's own functions take them.

#include <cstddef>

#include "pybase.h"

namespace zelvanpy {

// float(object)
double float_of(py::handle object);
// int(object), as a C int
int int_of(py::handle object);
// PyFloat_AsDouble, as math.isnan() converts its argument.
inline double as_double(py::handle object) {
    if (PyFloat_CheckExact(object.ptr())) return PyFloat_AS_DOUBLE(object.ptr());
    return checked_double(PyFloat_AsDouble(object.ptr()));
}
// isinstance(object, collections.abc.Iterable)
bool is_iterable(py::handle object);

// The number that a list index is. Its __index__() may be anyone's code and change what the index is for, so sizes
// are read afterwards.
Py_ssize_t list_index(py::handle index);
// The position that it means, where negative ones count from the end; IndexError beyond.
std::size_t list_position(Py_ssize_t index, std::size_t size);

inline PyObject* not_implemented() {
    Py_INCREF(Py_NotImplemented);
    return Py_NotImplemented;
}

}  // namespace zelvanpy
