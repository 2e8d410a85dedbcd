// quicksum() and the conversion of any scalar expression.

#include "exception.h"
#include "linexpr_memory.h"
#include "operand.h"
#include "pynames.h"
#include "tupledict.h"

namespace zelvanpy {

namespace {

const Name kValues("values");

bool add_to_sum(py::handle result, PyObject* term) {
    return Py_TYPE(result.ptr()) == LinExpr_Type && add_known<double_linexpr>(as_linexpr(result), term);
}

// A product that only the sum holds gives its variable away; false for any other term.
bool take_term(py::handle result, const py::object& term) {
    LinExpr* const from = as_linexpr(term);
    if (Py_TYPE(term.ptr()) != LinExpr_Type || Py_REFCNT(term.ptr()) != 1 || from->size != 1 || from->tail ||
        Py_TYPE(result.ptr()) != LinExpr_Type)
        return false;
    LinExpr* const to = as_linexpr(result);
    if (to->size == to->capacity) double_linexpr(to);
    to->terms[to->size++] = from->terms[0];
    from->size = 0;
    to->constant += from->constant;
    if (!is_inert(to->terms[to->size - 1].var)) wake_linexpr(to);
    return true;
}

void sum_list(py::object& result, PyObject* list) {
    linexpr_reserve(as_linexpr(result), PyList_GET_SIZE(list));
    for (Py_ssize_t i = 0; i < PyList_GET_SIZE(list); ++i) {
        PyObject* term = PyList_GET_ITEM(list, i);
        if (i + kTermsAhead < PyList_GET_SIZE(list)) __builtin_prefetch(PyList_GET_ITEM(list, i + kTermsAhead), 1);
        if (!add_to_sum(result, term)) result = steal(PyNumber_InPlaceAdd(result.ptr(), borrow(term).ptr()));
    }
}

void sum_iterable(py::object& result, py::handle terms) {
    const py::object iterator = steal(PyObject_GetIter(terms.ptr()));
    const iternextfunc next = Py_TYPE(iterator.ptr())->tp_iternext;
    while (PyObject* element = next(iterator.ptr())) {
        const py::object term = py::reinterpret_steal<py::object>(element);
        if (!take_term(result, term) && !add_to_sum(result, element))
            result = steal(PyNumber_InPlaceAdd(result.ptr(), element));
    }
    if (!PyErr_Occurred()) return;
    if (!PyErr_ExceptionMatches(PyExc_StopIteration)) throw PythonError{};
    PyErr_Clear();
}

}  // namespace

py::object accumulate(py::object result, py::handle term) {
    if (add_to_sum(result, term.ptr())) return result;
    return steal(PyNumber_InPlaceAdd(result.ptr(), term.ptr()));
}

py::object quicksum(py::handle terms) {
    if (is_tupledict(terms)) return quicksum(steal(PyObject_CallMethodObjArgs(terms.ptr(), kValues.get(), nullptr)));
    py::object result = owned(new_linexpr());
    if (PyList_CheckExact(terms.ptr()))
        sum_list(result, terms.ptr());
    else
        sum_iterable(result, terms);
    if (Py_TYPE(result.ptr()) == LinExpr_Type) linexpr_shrink(as_linexpr(result));
    return result;
}

py::object simple_expr(py::handle arg) {
    double value;
    if (classify(arg, value) == Operand::kForeign) raise_zelvan(-1, "Unable to convert argument to an expression");
    py::object e = owned(linexpr_from(arg));
    linexpr_normalize(as_linexpr(e));
    return e;
}

}  // namespace zelvanpy
