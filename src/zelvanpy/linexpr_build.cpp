// How linear expressions take in terms: the forms of the constructor, add() and addTerms().

#include "linexpr_build.h"

#include <cmath>

#include "exception.h"
#include "operand.h"
#include "pyiter.h"
#include "pynumber.h"

namespace zelvanpy {

void raise_invalid(const char* text) { raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT, text); }

void check_coefficient(double coeff) {
    if (!std::isfinite(coeff)) raise_invalid("Coefficient is Nan or Inf");
}

namespace {

py::object element_of_pair(py::handle pair, Py_ssize_t i) {
    if (PyTuple_CheckExact(pair.ptr()) && i < PyTuple_GET_SIZE(pair.ptr()))
        return borrow(PyTuple_GET_ITEM(pair.ptr(), i));
    const py::object index = steal(PyLong_FromSsize_t(i));
    return steal(PyObject_GetItem(pair.ptr(), index.ptr()));
}

void append_pair(LinExpr* e, py::handle pair) {
    const py::object var = element_of_pair(pair, 1);
    if (!is_var(var)) raise_invalid("Second tuple member should be a Var");
    const py::object number = element_of_pair(pair, 0);
    const double coeff = as_double(number);
    check_coefficient(coeff);
    linexpr_append(e, coeff, as_handle(var));
}

void copy_into(LinExpr* e, LinExpr* source) {
    TermBuffer<Term> buffer;
    if (is_older_block(e, source)) {  // its chain would lead back to itself
        const py::object flat = owned(linexpr_copy(source));
        linexpr_flatten(as_linexpr(flat));
        return copy_into(e, as_linexpr(flat));
    }
    buffer.terms().reserve(source->size);
    for (std::uint32_t i = 0; i < source->size; ++i) buffer.append(source->terms[i]);
    swap_terms(e, buffer);
    e->constant = source->constant;
    set_tail(e, source->tail);
}

void init_empty(LinExpr* e) {
    TermBuffer<Term> nothing;
    swap_terms(e, nothing);
    e->constant = 0.0;
}

void init_from_two_lists(LinExpr* e, py::handle coeffs, py::handle vars) {
    if (checked(PyObject_Size(coeffs.ptr())) != checked(PyObject_Size(vars.ptr())))
        raise_invalid("Linear expression arguments of different length");
    std::vector<double> values;
    bool finite = true;
    for_each(coeffs, [&](const py::object& coeff) {
        values.push_back(float_of(coeff));
        finite &= std::isfinite(values.back());
    });
    if (!finite) raise_invalid("Coefficient is Nan or Inf");
    TermBuffer<Term> buffer;
    buffer.terms().reserve(values.size());
    for_each(vars, [&](const py::object& var) {
        if (!is_var(var)) raise_invalid("Second argument should be a list of Var");
        if (buffer.terms().size() == values.size()) raise_invalid("Linear expression arguments of different length");
        buffer.append({values[buffer.terms().size()], as_handle(var)});
    });
    if (buffer.terms().size() != values.size()) raise_invalid("Linear expression arguments of different length");
    swap_terms(e, buffer);
}

// Coefficients of addTerms(), each converted and tested in turn.
std::vector<double> checked_coefficients(py::handle coeffs) {
    std::vector<double> values;
    values.reserve(PyList_GET_SIZE(coeffs.ptr()));
    for_each(coeffs, [&](const py::object& coeff) {
        double value;
        try {
            value = float_of(coeff);
        } catch (...) {
            translate_exception();
            PyErr_Clear();
            raise_invalid("First argument should be a list of floats");
        }
        check_coefficient(value);
        values.push_back(value);
    });
    return values;
}

}  // namespace

void linexpr_init(LinExpr* e, py::handle arg) {
    if (Py_TYPE(arg.ptr()) == LinExpr_Type) return copy_into(e, as_linexpr(arg));
    init_empty(e);
    double value = 0.0;
    const Operand kind = classify(arg, value);
    if (arg.is_none() || (kind == Operand::kScalar && value == 0.0)) return;
    if (kind == Operand::kVar) return linexpr_append(e, 1.0, as_handle(arg));
    if (kind == Operand::kScalar && (PyFloat_CheckExact(arg.ptr()) || PyLong_CheckExact(arg.ptr())))
        return linexpr_add_constant(e, value);
    if (is_iterable(arg)) return for_each(arg, [&](const py::object& pair) { append_pair(e, pair); });
    if (kind == Operand::kLinExpr) return copy_into(e, as_linexpr(arg));
    linexpr_add_constant(e, as_double(arg));
}

void linexpr_init(LinExpr* e, py::handle coeffs, py::handle vars) {
    if (!is_var(vars)) {
        init_empty(e);
        return init_from_two_lists(e, coeffs, vars);
    }
    const double coeff = float_of(coeffs);
    init_empty(e);
    linexpr_append(e, coeff, as_handle(vars));
}

LinExpr* linexpr_from(py::handle arg) {
    if (Py_TYPE(arg.ptr()) == Var_Type) return linexpr_of_var(as_handle(arg), 1.0);
    if (Py_TYPE(arg.ptr()) == LinExpr_Type) return linexpr_copy(as_linexpr(arg));
    py::object e = owned(new_linexpr());
    linexpr_init(as_linexpr(e), arg);
    return as_linexpr(e.release());
}

void linexpr_add_any(LinExpr* e, py::handle arg, double mult) {
    double value;
    switch (classify(arg, value)) {
        case Operand::kVar:
            check_coefficient(mult);
            return linexpr_append(e, mult, as_handle(arg));
        case Operand::kLinExpr:
            return linexpr_add(e, as_linexpr(arg), mult);
        case Operand::kScalar:
            return linexpr_add_constant(e, mult * value);
        case Operand::kQuadExpr:
        case Operand::kForeign:
            break;
    }
    const py::object type = py::str(py::type::handle_of(arg));
    raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT,
                 steal(PyUnicode_FromFormat("Unsupported type (%U) for LinExpr addition argument", type.ptr())));
}

void linexpr_add_number(LinExpr* e, py::handle c) {
    if (std::isnan(float_of(c))) raise_invalid("Constant is Nan");
    linexpr_add_constant(e, as_double(c));
}

void linexpr_add_terms(LinExpr* e, py::handle coeffs, py::handle vars) {
    if (is_var(vars)) {
        const double coeff = float_of(coeffs);
        check_coefficient(coeff);
        return linexpr_append(e, coeff, as_handle(vars));
    }
    if (!is_iterable(coeffs) || !is_iterable(vars)) raise_invalid("Unrecognized arguments");
    const py::object var_list = steal(PySequence_List(vars.ptr()));
    const py::object coeff_list = steal(PySequence_List(coeffs.ptr()));
    const Py_ssize_t size = PyList_GET_SIZE(var_list.ptr());
    if (size != PyList_GET_SIZE(coeff_list.ptr())) raise_invalid("Array lengths don't match");
    if (size == 0) return;
    for (Py_ssize_t i = 0; i < size; ++i)
        if (!is_var(PyList_GET_ITEM(var_list.ptr(), i))) raise_invalid("Second argument should be a list of Var");
    const std::vector<double> values = checked_coefficients(coeff_list);
    reserve_terms(e, e->size + values.size());
    for (Py_ssize_t i = 0; i < size; ++i) linexpr_append(e, values[i], as_handle(PyList_GET_ITEM(var_list.ptr(), i)));
}

}  // namespace zelvanpy
