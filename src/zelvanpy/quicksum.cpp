#include "quicksum.h"

#include "linexpr.h"
#include "pyargs.h"
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
    reserve_terms(as_linexpr(result), PyList_GET_SIZE(list));
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
    if (Py_TYPE(result.ptr()) == LinExpr_Type) shrink_terms(as_linexpr(result));
    return result;
}

namespace {

py::object quicksum_function(py::handle, Args args) {
    static const Signature<1> kQuicksum{"quicksum", 1, {Name("list")}};
    const auto [list] = kQuicksum.parse(args);
    return quicksum(list);
}

PyMethodDef functions[] = {
    {"quicksum", method<quicksum_function>, kKeywords,
     "quicksum(list)\n--\n\n"
     "Sum of an iterable of variables, expressions and numbers, faster than sum(): all terms go into one "
     "expression.\n\n"
     "quicksum(c[i] * x[i] for i in range(n))"},
    {},
};

}  // namespace

void init_quicksum(py::module_& module) { checked(PyModule_AddFunctions(module.ptr(), functions)); }

}  // namespace zelvanpy
