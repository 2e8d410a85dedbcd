#pragma once
// Iteration.

#include "pybase.h"

namespace zelvanpy {

// Calls `take` with each element that the iterator still has.
template <class Take>
void for_each_next(py::handle iterator, Take take) {
    while (PyObject* element = PyIter_Next(iterator.ptr())) take(py::reinterpret_steal<py::object>(element));
    if (PyErr_Occurred()) throw PythonError{};
}

// Calls `take` with each element. A list is read in place; `take` may change it.
template <class Take>
void for_each(py::handle iterable, Take take) {
    if (!PyList_CheckExact(iterable.ptr())) return for_each_next(steal(PyObject_GetIter(iterable.ptr())), take);
    for (Py_ssize_t i = 0; i < PyList_GET_SIZE(iterable.ptr()); ++i) take(borrow(PyList_GET_ITEM(iterable.ptr(), i)));
}

}  // namespace zelvanpy
