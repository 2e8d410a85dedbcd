#include "pynumber.h"

namespace zelvanpy {

double float_of(py::handle object) {
    if (PyFloat_CheckExact(object.ptr())) return PyFloat_AS_DOUBLE(object.ptr());
    return PyFloat_AS_DOUBLE(steal(PyNumber_Float(object.ptr())).ptr());
}

int int_of(py::handle object) {
    const py::object number = steal(PyNumber_Long(object.ptr()));
    int overflow;
    const long long result = PyLong_AsLongLongAndOverflow(number.ptr(), &overflow);
    if (result == -1 && PyErr_Occurred()) throw PythonError{};
    if (overflow || result != static_cast<int>(result)) raise(PyExc_OverflowError, "value too large to convert to int");
    return static_cast<int>(result);
}

bool is_iterable(py::handle object) {
    if (PyList_Check(object.ptr()) || PyTuple_Check(object.ptr()) || PyDict_Check(object.ptr())) return true;
    static PyObject* iterable = nullptr;
    if (!iterable) {
        py::object abc = steal(PyImport_ImportModule("collections.abc"));
        iterable = steal(PyObject_GetAttrString(abc.ptr(), "Iterable")).release().ptr();
    }
    return checked(PyObject_IsInstance(object.ptr(), iterable));
}

Py_ssize_t list_index(py::handle index) {
    if (!PyIndex_Check(index.ptr())) {
        PyErr_Format(PyExc_TypeError, "list indices must be integers, not %.200s", Py_TYPE(index.ptr())->tp_name);
        throw PythonError{};
    }
    const Py_ssize_t i = PyNumber_AsSsize_t(index.ptr(), PyExc_IndexError);
    if (i == -1 && PyErr_Occurred()) throw PythonError{};
    return i;
}

std::size_t list_position(Py_ssize_t index, std::size_t size) {
    if (index < 0) index += static_cast<Py_ssize_t>(size);
    if (index < 0 || index >= static_cast<Py_ssize_t>(size)) raise(PyExc_IndexError, "list index out of range");
    return static_cast<std::size_t>(index);
}

}  // namespace zelvanpy
