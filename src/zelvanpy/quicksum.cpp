// quicksum() and the conversion of any scalar expression.

#include "exception.h"
#include "linexpr_memory.h"
#include "operand.h"

namespace zelvanpy {

py::object accumulate(py::object result, py::handle term) {
    if (Py_TYPE(result.ptr()) != LinExpr_Type) return steal(PyNumber_InPlaceAdd(result.ptr(), term.ptr()));
    LinExpr* e = as_linexpr(result);
    PyTypeObject* type = Py_TYPE(term.ptr());
    if (type == Var_Type)
        linexpr_append(e, 1.0, as_handle(term));
    else if (type == LinExpr_Type)
        linexpr_add(e, as_linexpr(term), 1.0);
    else if (type == &PyFloat_Type)
        linexpr_add_constant(e, PyFloat_AS_DOUBLE(term.ptr()));
    else
        return steal(PyNumber_InPlaceAdd(result.ptr(), term.ptr()));
    return result;
}

namespace {

// The collector may have nothing to gain from memory that the caller keeps for good.
py::object finished(py::object result) {
    if (Py_TYPE(result.ptr()) == LinExpr_Type) linexpr_shrink(as_linexpr(result));
    return result;
}

}  // namespace

py::object quicksum(py::handle terms) {
    py::object result = owned(new_linexpr());
    if (PyList_CheckExact(terms.ptr())) {
        for (Py_ssize_t i = 0; i < PyList_GET_SIZE(terms.ptr()); ++i)
            result = accumulate(std::move(result), borrow(PyList_GET_ITEM(terms.ptr(), i)));
        return finished(std::move(result));
    }
    const py::object iterator = steal(PyObject_GetIter(terms.ptr()));
    const iternextfunc next = Py_TYPE(iterator.ptr())->tp_iternext;
    while (PyObject* term = next(iterator.ptr()))
        result = accumulate(std::move(result), py::reinterpret_steal<py::object>(term));
    if (PyErr_Occurred()) {
        if (!PyErr_ExceptionMatches(PyExc_StopIteration)) throw PythonError{};
        PyErr_Clear();
    }
    return finished(std::move(result));
}

py::object simple_expr(py::handle arg) {
    double value;
    if (classify(arg, value) == Operand::kForeign) raise_zelvan(-1, "Unable to convert argument to an expression");
    py::object e = owned(linexpr_from(arg));
    linexpr_normalize(as_linexpr(e));
    return e;
}

}  // namespace zelvanpy
