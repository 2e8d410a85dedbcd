#include "pyargs.h"

#include "pynumber.h"

namespace zelvanpy::args_detail {

namespace {

std::size_t find(const char* function, const Name* names, std::size_t num, PyObject* keyword) {
    for (std::size_t i = 0; i < num; ++i)
        if (keyword == names[i].get()) return i;
    for (std::size_t i = 0; i < num; ++i)
        if (names[i].is(keyword)) return i;
    PyErr_Format(PyExc_TypeError, "%s() got an unexpected keyword argument '%U'", function, keyword);
    throw PythonError{};
}

void place_positional(const char* function, std::size_t num, Py_ssize_t count, PyObject* const* values,
                      PyObject** out) {
    if (static_cast<std::size_t>(count) > num) {
        PyErr_Format(PyExc_TypeError, "%s() takes at most %zu argument%s (%zd given)", function, num,
                     num == 1 ? "" : "s", count);
        throw PythonError{};
    }
    for (Py_ssize_t i = 0; i < count; ++i) out[i] = values[i];
}

void place_keyword(const char* function, const Name* names, std::size_t num, PyObject* keyword, PyObject* value,
                   PyObject** out) {
    if (!PyUnicode_Check(keyword)) {
        PyErr_Format(PyExc_TypeError, "%s() keywords must be strings", function);
        throw PythonError{};
    }
    const std::size_t i = find(function, names, num, keyword);
    if (out[i]) {
        PyErr_Format(PyExc_TypeError, "%s() got multiple values for argument '%s'", function, names[i].text());
        throw PythonError{};
    }
    out[i] = value;
}

void check_required(const char* function, const Name* names, std::size_t required, PyObject* const* out) {
    for (std::size_t i = 0; i < required; ++i)
        if (!out[i]) {
            PyErr_Format(PyExc_TypeError, "%s() missing required argument '%s' (pos %zu)", function, names[i].text(),
                         i + 1);
            throw PythonError{};
        }
}

}  // namespace

void parse(const char* function, const Name* names, std::size_t num, std::size_t required, const Args& args,
           PyObject** out) {
    place_positional(function, num, args.count, args.values, out);
    const Py_ssize_t keywords = args.keywords ? PyTuple_GET_SIZE(args.keywords) : 0;
    for (Py_ssize_t k = 0; k < keywords; ++k)
        place_keyword(function, names, num, PyTuple_GET_ITEM(args.keywords, k), args.values[args.count + k], out);
    check_required(function, names, required, out);
}

void parse(const char* function, const Name* names, std::size_t num, std::size_t required, PyObject* tuple,
           PyObject* dict, PyObject** out) {
    place_positional(function, num, PyTuple_GET_SIZE(tuple), &PyTuple_GET_ITEM(tuple, 0), out);
    if (dict) {
        PyObject *key, *value;
        Py_ssize_t position = 0;
        while (PyDict_Next(dict, &position, &key, &value)) place_keyword(function, names, num, key, value, out);
    }
    check_required(function, names, required, out);
}

}  // namespace zelvanpy::args_detail

namespace zelvanpy {

py::object shown_value(py::handle value) {
    if (value.is_none()) return py::str("None");
    if (PyUnicode_CheckExact(value.ptr())) return steal(PyUnicode_FromFormat("str %.60R", value.ptr()));
    return steal(PyUnicode_FromFormat("%.100s", Py_TYPE(value.ptr())->tp_name));
}

void refuse_argument(PyObject* type, const Argument& argument, const char* wanted, py::handle value) {
    const py::object call =
        argument.function ? steal(PyUnicode_FromFormat("%s() argument", argument.function)) : py::str("Argument");
    const py::object key =
        argument.key ? steal(PyUnicode_FromFormat(" at key %.60R", argument.key)) : py::object(py::str(""));
    PyErr_Format(type, "%U '%s'%U must be %s, not %U", call.ptr(), argument.name, key.ptr(), wanted,
                 shown_value(value).ptr());
    throw PythonError{};
}

double number_argument(py::handle value, const Argument& argument) {
    if (PyFloat_CheckExact(value.ptr())) return PyFloat_AS_DOUBLE(value.ptr());
    const double number = PyFloat_AsDouble(value.ptr());
    if (number != -1.0 || !PyErr_Occurred()) return number;
    const PyNumberMethods* own = Py_TYPE(value.ptr())->tp_as_number;  // which then raised what it raised
    if (!PyErr_ExceptionMatches(PyExc_TypeError) || (own && (own->nb_float || own->nb_index))) throw PythonError{};
    PyErr_Clear();
    refuse_argument(PyExc_TypeError, argument, "a number", value);
}

}  // namespace zelvanpy
