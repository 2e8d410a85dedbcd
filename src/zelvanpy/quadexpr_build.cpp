#include "quadexpr_build.h"

#include "exception.h"
#include "linexpr_build.h"
#include "operand.h"
#include "pyiter.h"
#include "pynumber.h"

namespace zelvanpy {

namespace {

void copy_into(QuadExpr* e, QuadExpr* source) {
    // A chain of older blocks must not lead back to e.
    const py::object keep = is_older_block(e, source) ? flat_quadexpr(source) : borrow(as_result(source));
    const py::object copy = owned(quadexpr_copy(as_quadexpr(keep)));
    QuadExpr* from = as_quadexpr(copy);
    set_linear_part(e, owned(std::exchange(from->lin, nullptr)));
    TermBuffer<QuadTerm> buffer;
    swap_terms(from, buffer);
    swap_terms(e, buffer);
    set_tail(e, from->tail);
}

// The elements of a sequence, of which each must be a Var.
std::vector<py::object> variables_of(py::handle sequence, const char* refusal) {
    std::vector<py::object> vars;
    for_each(sequence, [&](const py::object& var) {
        if (!is_var(var)) raise_invalid(refusal);
        vars.push_back(var);
    });
    return vars;
}

std::vector<double> finite_coefficients(py::handle sequence) {
    std::vector<double> values;
    for_each(sequence, [&](const py::object& coeff) {
        values.push_back(float_of(coeff));
        check_coefficient(values.back());
    });
    return values;
}

}  // namespace

QuadExpr* quadexpr_from(py::handle arg) {
    if (is_quadexpr(arg)) return quadexpr_copy(as_quadexpr(arg));
    return quadexpr_of_linear(owned(linexpr_from(arg)));
}

void quadexpr_init(QuadExpr* e, py::handle arg) {
    if (is_quadexpr(arg)) return copy_into(e, as_quadexpr(arg));
    py::object linear = owned(linexpr_from(arg));
    TermBuffer<QuadTerm> nothing;
    swap_terms(e, nothing);
    set_linear_part(e, std::move(linear));
    set_tail<QuadExpr>(e, nullptr);
}

void quadexpr_add_any(QuadExpr* e, py::handle arg, double mult) {
    double value;
    const Operand kind = classify(arg, value);
    if (kind == Operand::kForeign) raise_invalid("Invalid argument to QuadExpr addition");
    if (kind == Operand::kQuadExpr) return quadexpr_add(e, as_quadexpr(arg), mult);
    const py::object linear = borrow(as_result(linear_part(e)));  // a number may be of a class that changes e
    linexpr_add_any(as_linexpr(linear), arg, mult);
}

void quadexpr_add_terms(QuadExpr* e, py::handle coeffs, py::handle vars1, py::handle vars2) {
    static const char* const kLengths = "Array lengths don't match";
    if (is_var(vars1) && is_var(vars2)) {
        const double coeff = float_of(coeffs);
        check_coefficient(coeff);
        if (e->size == e->capacity) grow_terms(e);
        return append_term(e, {coeff, as_handle(vars1), as_handle(vars2)});
    }
    const Py_ssize_t size = checked(PyObject_Size(coeffs.ptr()));
    if (size != checked(PyObject_Size(vars1.ptr())) || size != checked(PyObject_Size(vars2.ptr())))
        raise_invalid(kLengths);
    if (size == 0) return;
    const auto first = variables_of(vars1, "Second argument should be a list of Var");
    const auto second = variables_of(vars2, "Third argument should be a list of Var");
    const std::vector<double> values = finite_coefficients(coeffs);
    if (first.size() != values.size() || second.size() != values.size()) raise_invalid(kLengths);
    reserve_terms(e, e->size + values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        append_term(e, {values[i], as_handle(first[i]), as_handle(second[i])});
}

void quadexpr_multiply_any(QuadExpr* e, py::handle factor) {
    double value;
    const Operand kind = classify(factor, value);
    if (kind == Operand::kScalar) return quadexpr_scale(e, value);
    linear_part(e);
    quadexpr_flatten(e);
    if (e->size > 0 || (kind != Operand::kVar && kind != Operand::kLinExpr))
        raise_invalid("Invalid argument to QuadExpr multiplication");
    quadexpr_multiply_linear(e, factor);
}

py::object simple_expr(py::handle arg) {
    double value;
    const Operand kind = classify(arg, value);
    if (kind == Operand::kForeign) raise_zelvan(-1, "Unable to convert argument to an expression");
    py::object e;
    if (kind == Operand::kQuadExpr) {
        e = owned(quadexpr_copy(as_quadexpr(arg)));
        quadexpr_normalize(as_quadexpr(e));
        const py::object flat = flat_quadexpr(as_quadexpr(arg));
        if (as_quadexpr(flat)->size > 0) return e;
        return borrow(as_result(linear_part(as_quadexpr(e))));
    }
    e = owned(linexpr_from(arg));
    linexpr_normalize(as_linexpr(e));
    return e;
}

}  // namespace zelvanpy
