#include "operand.h"

#include "exception.h"
#include "pynames.h"

namespace zelvanpy {

namespace operand_detail {

Operand classify_other(py::handle operand, double& value) {
    PyTypeObject* type = Py_TYPE(operand.ptr());
    if (type == &PyLong_Type || PyFloat_Check(operand.ptr())) {
        value = PyFloat_AsDouble(operand.ptr());
        if (value != -1.0 || !PyErr_Occurred()) return Operand::kScalar;
        PyErr_Clear();
        return Operand::kForeign;
    }
    if (PyType_IsSubtype(type, Var_Type)) return Operand::kVar;
    if (PyType_IsSubtype(type, LinExpr_Type)) return Operand::kLinExpr;
    return scalar_value(operand, value) ? Operand::kScalar : Operand::kForeign;
}

}  // namespace operand_detail

double float_of(py::handle object) {
    if (PyFloat_CheckExact(object.ptr())) return PyFloat_AS_DOUBLE(object.ptr());
    return PyFloat_AS_DOUBLE(steal(PyNumber_Float(object.ptr())).ptr());
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

void inherit_operators(PyTypeObject* type, PyTypeObject* own) {
    static const struct {
        Name method, reflected;
        binaryfunc PyNumberMethods::* slot;
    } kOperators[] = {{Name("__add__"), Name("__radd__"), &PyNumberMethods::nb_add},
                      {Name("__sub__"), Name("__rsub__"), &PyNumberMethods::nb_subtract},
                      {Name("__mul__"), Name("__rmul__"), &PyNumberMethods::nb_multiply}};
    const auto inherits = [&](const Name& name) {
        return _PyType_Lookup(type, name.get()) == _PyType_Lookup(own, name.get());
    };
    for (const auto& op : kOperators)
        if (inherits(op.method) && inherits(op.reflected)) type->tp_as_number->*op.slot = own->tp_as_number->*op.slot;
}

void prefer_to_numpy_scalars(PyTypeObject* type) {
    const py::object priority = steal(PyFloat_FromDouble(-1.0));
    checked(PyObject_SetAttrString(reinterpret_cast<PyObject*>(type), "__array_priority__", priority.ptr()));
}

}  // namespace zelvanpy
