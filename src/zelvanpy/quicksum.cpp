#include "quicksum.h"

#include "matrix.h"
#include "pyargs.h"
#include "quadexpr.h"
#include "tupledict.h"

namespace zelvanpy {

namespace {

const Name kValues("values");

// Adds a term of known class; `result` becomes a QuadExpr with the first quadratic term. False for any other term.
bool add_to_sum(py::object& result, PyObject* term) {
    if (Py_TYPE(result.ptr()) == LinExpr_Type && Py_TYPE(term) != QuadExpr_Type)
        return add_known<double_terms<LinExpr>>(as_linexpr(result), term);
    const py::object keep = borrow(term);  // making an object may run code that drops it
    if (Py_TYPE(result.ptr()) == LinExpr_Type) result = owned(quadexpr_of_linear(std::move(result)));
    return Py_TYPE(result.ptr()) == QuadExpr_Type &&
           add_known<double_terms<QuadExpr>, double_terms<LinExpr>>(as_quadexpr(result), term);
}

// The only term of an expression that nobody else has goes over to the sum without its variables being counted.
template <class E>
void take_only_term(E* to, E* from) {
    if (to->size == to->capacity) double_terms(to);
    to->terms[to->size++] = from->terms[0];
    from->size = 0;
    if (!has_inert_variables(to->terms[to->size - 1])) ExprMemory<E>::wake(to);
}

template <class E>
bool is_one_free_term(const py::object& term) {
    const E* e = reinterpret_cast<E*>(term.ptr());
    return Py_TYPE(term.ptr()) == E::type() && Py_REFCNT(term.ptr()) == 1 && e->size == 1 && !e->tail;
}

// A product that only the sum holds gives its variables away; false for any other term.
bool take_term(py::handle result, const py::object& term) {
    PyTypeObject* type = Py_TYPE(result.ptr());
    if (type == QuadExpr_Type && is_one_free_term<QuadExpr>(term) && !as_quadexpr(term)->lin) {
        take_only_term(as_quadexpr(result), as_quadexpr(term));
        return true;
    }
    if (type != LinExpr_Type || !is_one_free_term<LinExpr>(term)) return false;
    take_only_term(as_linexpr(result), as_linexpr(term));
    as_linexpr(result)->constant += as_linexpr(term)->constant;
    return true;
}

void shrink_quadexpr(QuadExpr* e) {
    shrink_terms(e);
    if (e->lin) shrink_terms(e->lin);
}

void sum_list(py::object& result, PyObject* list) {
    const Py_ssize_t size = PyList_GET_SIZE(list);
    if (size > 0 && Py_TYPE(PyList_GET_ITEM(list, 0)) == QuadExpr_Type) {
        result = owned(quadexpr_of_linear(std::move(result)));
        reserve_terms(as_quadexpr(result), size);
    } else {
        reserve_terms(as_linexpr(result), size);
    }
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
    if (is_matrix_operand(terms)) {
        static const Name kSum("sum");
        const py::object sum = steal(PyObject_GetAttr(terms.ptr(), kSum.get()));
        return sum(py::arg("axis") = 0);
    }
    if (is_tupledict(terms)) return quicksum(steal(PyObject_CallMethodObjArgs(terms.ptr(), kValues.get(), nullptr)));
    py::object result = owned(new_linexpr());
    if (PyList_CheckExact(terms.ptr()))
        sum_list(result, terms.ptr());
    else
        sum_iterable(result, terms);
    if (Py_TYPE(result.ptr()) == LinExpr_Type) shrink_terms(as_linexpr(result));
    if (Py_TYPE(result.ptr()) == QuadExpr_Type) shrink_quadexpr(as_quadexpr(result));
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
