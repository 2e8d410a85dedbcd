#include "expr_pickle.h"

#include "pynames.h"

namespace zelvanpy {

namespace {
constexpr long kPickleFormat = 1;
}

void raise_bad_pickle() { raise(PyExc_ValueError, "not the pickled state of an expression"); }

PickledExpr::PickledExpr(py::handle args, PyTypeObject* own) {
    const Py_ssize_t count = PyTuple_GET_SIZE(args.ptr());
    if (count < 3) raise_bad_pickle();
    type = reinterpret_cast<PyTypeObject*>(PyTuple_GET_ITEM(args.ptr(), 0));
    state = PyTuple_GET_ITEM(args.ptr(), count - 1);
    if (checked(PyLong_AsLong(PyTuple_GET_ITEM(args.ptr(), 1))) != kPickleFormat || !PyType_Check(type) ||
        !PyType_IsSubtype(type, own) || !PyTuple_Check(state))
        raise_bad_pickle();
}

Py_ssize_t pickled_size(PyObject* coeffs, std::initializer_list<PyObject*> vars) {
    if (!PyList_CheckExact(coeffs)) raise_bad_pickle();
    for (PyObject* list : vars)
        if (!PyList_CheckExact(list) || PyList_GET_SIZE(list) != PyList_GET_SIZE(coeffs)) raise_bad_pickle();
    return PyList_GET_SIZE(coeffs);
}

double pickled_coefficient(PyObject* coeffs, Py_ssize_t i) {
    PyObject* coeff = PyList_GET_ITEM(coeffs, i);
    if (!PyFloat_CheckExact(coeff)) raise_bad_pickle();
    return PyFloat_AS_DOUBLE(coeff);
}

Handle* pickled_variable(PyObject* vars, Py_ssize_t i) {
    PyObject* var = PyList_GET_ITEM(vars, i);
    if (!is_var(var)) raise_bad_pickle();
    return as_handle(var);
}

py::object reduced_expr(py::handle e, PyTypeObject* own, py::handle restore, py::list state) {
    PyTypeObject* type = Py_TYPE(e.ptr());
    py::list args;
    args.append(py::handle(reinterpret_cast<PyObject*>(type)));
    args.append(kPickleFormat);
    for (py::handle part : state) args.append(part);
    static const Name kDict("__dict__");
    if (type != own)
        if (const py::object fields = find_attribute(e, kDict)) return py::make_tuple(restore, py::tuple(args), fields);
    return py::make_tuple(restore, py::tuple(args));
}

}  // namespace zelvanpy
