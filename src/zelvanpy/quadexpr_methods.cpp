// The type QuadExpr: its methods, texts, pickling.

#include <vector>

#include "expr_methods.h"
#include "expr_ops.h"
#include "expr_pickle.h"
#include "expr_value.h"
#include "linexpr_build.h"
#include "linexpr_text.h"
#include "pyargs.h"
#include "quadexpr.h"
#include "quadexpr_build.h"
#include "quadexpr_ops.h"

namespace zelvanpy {

namespace {

PyObject* restore_function = nullptr;

PyObject* QuadExpr_new(PyTypeObject* type, py::handle, py::handle) {
    return as_result(ExprMemory<QuadExpr>::allocate(type));
}

void QuadExpr_init(QuadExpr& self, PyObject* args, PyObject* kwargs) {
    static const Signature<1> kInit{"QuadExpr", 0, {Name("expr")}};
    const auto [expr] = kInit.parse(args, kwargs);
    quadexpr_init(&self, expr ? expr : Py_None);
}

void QuadExpr_addMethod(QuadExpr& self, Args args) {
    static const Signature<2> kAdd{"add", 1, {Name("expr"), Name("mult")}};
    const auto [expr, mult] = kAdd.parse(args);
    double value, factor = 1.0;
    const Operand kind = classify(expr, value);
    if (mult && kind != Operand::kForeign) factor = kind == Operand::kVar ? float_of(mult) : as_double(mult);
    quadexpr_add_any(&self, expr, factor);
}

void QuadExpr_addConstant(QuadExpr& self, Args args) {
    static const Signature<1> kAddConstant{"addConstant", 1, {Name("c")}};
    const auto [c] = kAddConstant.parse(args);
    const py::object linear =
        borrow(as_result(linear_part(&self)));  // `c` may be of a class that changes the expression
    linexpr_add_number(as_linexpr(linear), c);
}

void QuadExpr_addTerms(QuadExpr& self, Args args) {
    static const Signature<3> kAddTerms{"addTerms", 2, {Name("coeffs"), Name("vars"), Name("vars2")}};
    const auto [coeffs, vars, vars2] = kAddTerms.parse(args);
    if (vars2 && vars2 != Py_None) return quadexpr_add_terms(&self, coeffs, vars, vars2);
    const py::object linear = borrow(as_result(linear_part(&self)));
    linexpr_add_terms(as_linexpr(linear), coeffs, vars);
}

PyObject* QuadExpr_size(QuadExpr& self) {
    quadexpr_flatten(&self);
    return PyLong_FromUnsignedLong(self.size);
}

py::object QuadExpr_getLinExpr(QuadExpr& self) {
    quadexpr_flatten(&self);
    return borrow(as_result(linear_part(&self)));
}

// The term that the argument `i` of a method means.
const QuadTerm& term_at(QuadExpr& self, const char* function, const Args& args) {
    static const Name kIndex("i");
    const Signature<1> signature{function, 1, {kIndex}};
    const auto [i] = signature.parse(args);
    const std::size_t position = expr_position<quadexpr_flatten>(&self, i);  // may move the terms
    return self.terms[position];
}

PyObject* QuadExpr_getCoeff(QuadExpr& self, Args args) {
    return PyFloat_FromDouble(term_at(self, "getCoeff", args).coeff);
}
py::object QuadExpr_getVar1(QuadExpr& self, Args args) {
    return borrow(reinterpret_cast<PyObject*>(term_at(self, "getVar1", args).var1));
}
py::object QuadExpr_getVar2(QuadExpr& self, Args args) {
    return borrow(reinterpret_cast<PyObject*>(term_at(self, "getVar2", args).var2));
}

PyObject* QuadExpr_getValue(QuadExpr& self) { return PyFloat_FromDouble(quadexpr_value(&self)); }

void QuadExpr_remove(QuadExpr& self, Args args) {
    static const Signature<1> kRemove{"remove", 1, {Name("item")}};
    const auto [item] = kRemove.parse(args);
    quadexpr_flatten(&self);
    if (is_var(item)) {
        remove_variable(&self, as_handle(item));
        const py::object linear = borrow(as_result(linear_part(&self)));
        linexpr_flatten(as_linexpr(linear));
        return remove_variable(as_linexpr(linear), as_handle(item));
    }
    if (PyLong_Check(item)) remove_term(&self, expr_position<quadexpr_flatten>(&self, item));
}

void QuadExpr_clear(QuadExpr& self) { clear_expr(&self); }
PyObject* QuadExpr_copy(QuadExpr& self) { return as_result(quadexpr_copy(&self)); }

void QuadExpr_mul(QuadExpr& self, Args args) {
    static const Signature<1> kMul{"_mul", 1, {Name("mult")}};
    const auto [mult] = kMul.parse(args);
    quadexpr_multiply_any(&self, mult);
}

void QuadExpr_flatten(QuadExpr& self) { quadexpr_flatten(&self); }
void QuadExpr_normalize(QuadExpr& self) { quadexpr_normalize(&self); }

py::object QuadExpr_asprettystring(QuadExpr& self) {
    quadexpr_flatten(&self);
    const py::object linear = borrow(as_result(linear_part(&self)));
    py::list pieces;
    pieces.append(linexpr_text(as_linexpr(linear)));
    if (self.size == 0) return joined(pieces);
    pieces.append(py::str(" + [ "));
    // The text of a variable may be made by Python code that changes the expression.
    for (std::uint32_t i = 0; i < self.size; ++i) {
        TermBuffer<QuadTerm> keep;
        keep.append(self.terms[i]);
        const QuadTerm term = keep.terms()[0];
        if (i > 0) pieces.append(py::str(" + "));
        append_coefficient(pieces, term.coeff);
        pieces.append(var_text(term.var1));
        if (is_same(term.var1, term.var2)) {
            pieces.append(py::str(" ^ 2"));
            continue;
        }
        pieces.append(py::str(" * "));
        pieces.append(var_text(term.var2));
    }
    pieces.append(py::str(" ]"));
    return joined(pieces);
}

py::object QuadExpr_repr(QuadExpr& self) {
    return steal(PyUnicode_FromFormat("<zelvan.QuadExpr: %U>", QuadExpr_asprettystring(self).ptr()));
}

PyObject* QuadExpr_sizeof(QuadExpr& self) { return expr_sizeof(&self); }

py::object QuadExpr_reduce(QuadExpr& self) {
    const py::object linear = borrow(as_result(linear_part(&self)));
    py::list coeffs, vars1, vars2;
    for (std::uint32_t i = 0; i < self.size; ++i) {
        coeffs.append(self.terms[i].coeff);
        vars1.append(py::handle(reinterpret_cast<PyObject*>(self.terms[i].var1)));
        vars2.append(py::handle(reinterpret_cast<PyObject*>(self.terms[i].var2)));
    }
    const py::object tail = self.tail ? borrow(as_result(self.tail)) : none();
    return reduced_expr(&self, restore_function, py::make_tuple(linear, coeffs, tail, vars1, vars2));
}

PyObject* restore_quadexpr(py::handle, py::handle args) {
    const PickledExpr pickled(args, QuadExpr_Type);
    PyObject *linear, *coeffs, *tail, *vars1, *vars2;
    if (!PyArg_ParseTuple(pickled.state, "OOOOO", &linear, &coeffs, &tail, &vars1, &vars2)) throw PythonError{};
    if (Py_TYPE(linear) != LinExpr_Type || (tail != Py_None && !is_quadexpr(tail))) raise_bad_pickle();
    TermBuffer<QuadTerm> buffer;
    const Py_ssize_t size = pickled_size(coeffs, {vars1, vars2});
    for (Py_ssize_t i = 0; i < size; ++i)
        buffer.append({pickled_coefficient(coeffs, i), pickled_variable(vars1, i), pickled_variable(vars2, i)});
    py::object e = owned(ExprMemory<QuadExpr>::allocate(pickled.type));
    swap_terms(as_quadexpr(e), buffer);
    set_linear_part(as_quadexpr(e), owned(linexpr_copy(as_linexpr(linear))));  // copy.copy() gives that of the original
    set_tail(as_quadexpr(e), tail == Py_None ? nullptr : as_quadexpr(tail));
    return e.release().ptr();
}

py::object simpleexpr_function(py::handle, Args args) {
    static const Signature<1> kSimpleExpr{"__simpleexpr", 1, {Name("arg")}};
    const auto [arg] = kSimpleExpr.parse(args);
    return simple_expr(arg);
}

PyMethodDef methods[] = {
    {"add", method<QuadExpr_addMethod>, kKeywords,
     "add($self, expr, mult=1.0)\n--\n\n"
     "Add `mult * expr` in place; `expr` is a Var, LinExpr, QuadExpr or number.\n\n"
     "Raises ZelvanError for another type, for a multiplier of a Var that is infinite or NaN, and for a NaN constant."},
    {"addConstant", method<QuadExpr_addConstant>, kKeywords,
     "addConstant($self, c)\n--\n\nAdd the number `c` to the constant. Raises ZelvanError for NaN."},
    {"addTerms", method<QuadExpr_addTerms>, kKeywords,
     "addTerms($self, coeffs, vars, vars2=None)\n--\n\n"
     "Append quadratic terms: a number and two Vars, or three sequences of equal length. Without `vars2` the terms\n"
     "are linear, as in LinExpr.addTerms.\n\n"
     "Raises ZelvanError, and adds nothing, for different lengths, an element that is no Var, a coefficient that is "
     "infinite or NaN."},
    {"size", method<QuadExpr_size>, METH_NOARGS,
     "size($self)\n--\n\nNumber of quadratic terms (int), equal pairs counted as often as they stand."},
    {"getLinExpr", method<QuadExpr_getLinExpr>, METH_NOARGS,
     "getLinExpr($self)\n--\n\n"
     "The linear part with the constant (LinExpr): no copy, changing it changes this expression."},
    {"getCoeff", method<QuadExpr_getCoeff>, kKeywords,
     "getCoeff($self, i)\n--\n\n"
     "Coefficient (float) of quadratic term `i`; negative positions count from the end. Raises IndexError."},
    {"getVar1", method<QuadExpr_getVar1>, kKeywords,
     "getVar1($self, i)\n--\n\n"
     "First Var of quadratic term `i`; negative positions count from the end. Raises IndexError."},
    {"getVar2", method<QuadExpr_getVar2>, kKeywords,
     "getVar2($self, i)\n--\n\n"
     "Second Var of quadratic term `i`; negative positions count from the end. Raises IndexError."},
    {"getValue", method<QuadExpr_getValue>, METH_NOARGS,
     "getValue($self)\n--\n\n"
     "Value (float) in the current solution. Raises what reading the attribute X of a variable raises."},
    {"remove", method<QuadExpr_remove>, kKeywords,
     "remove($self, item)\n--\n\n"
     "Drop the quadratic term at position `item` (int, raises IndexError), or every quadratic and linear term with\n"
     "the variable `item` (Var)."},
    {"clear", method<QuadExpr_clear>, METH_NOARGS, "clear($self)\n--\n\nDrop all terms and the constant."},
    {"copy", method<QuadExpr_copy>, METH_NOARGS, "copy($self)\n--\n\nAn independent copy (QuadExpr)."},
    {"_mul", method<QuadExpr_mul>, kKeywords,
     "_mul($self, mult)\n--\n\n"
     "Multiply in place by a number or, where there are no quadratic terms, by a Var or LinExpr.\n\n"
     "Raises ZelvanError for another type, a product of degree three, infinity and NaN."},
    {"_flatten", method<QuadExpr_flatten>, METH_NOARGS,
     "_flatten($self)\n--\n\nJoin the blocks of a long sum, in the order of addition."},
    {"_normalize", method<QuadExpr_normalize>, METH_NOARGS,
     "_normalize($self)\n--\n\n"
     "Put the smaller column first in each term, merge terms of equal columns into the first of them and drop zero\n"
     "coefficients, in the linear part as well."},
    {"_asprettystring", method<QuadExpr_asprettystring>, METH_NOARGS,
     "_asprettystring($self)\n--\n\nThe expression as text: the linear part, then quadratic terms in brackets."},
    {"__radd__", method<expr_radd>, METH_O | METH_COEXIST, "__radd__($self, expr, /)\n--\n\nReturn self + expr."},
    {"__rsub__", method<quadexpr_rsub>, METH_O | METH_COEXIST,
     "__rsub__($self, expr, /)\n--\n\nReturn expr + (-1 * self)."},
    {"__rmul__", method<expr_rmul>, METH_O | METH_COEXIST, "__rmul__($self, expr, /)\n--\n\nReturn self * expr."},
    {"__reduce__", method<QuadExpr_reduce>, METH_NOARGS, "__reduce__($self)\n--\n\nState for pickling."},
    {"__sizeof__", method<QuadExpr_sizeof>, METH_NOARGS,
     "__sizeof__($self)\n--\n\n"
     "Bytes of the object with its quadratic terms, without the linear part and older blocks of a long sum."},
    {},
};

const char kDoc[] =
    "QuadExpr(expr=None)\n--\n\n"
    "Quadratic expression: a linear expression and terms coefficient * variable * variable, in the order in which\n"
    "they were added.\n\n"
    "Products of variables and linear expressions give one: x * y, (x + 1) * (y - 2), x ** 2. QuadExpr(expr) is a\n"
    "copy of a QuadExpr, or takes as its linear part what LinExpr(expr) makes of anything else; QuadExpr() is "
    "empty.\n\n"
    "Terms of equal variables are not merged. `==`, `<=` and `>=` build a constraint.";

PyMethodDef functions[] = {
    {"__simpleexpr", method<simpleexpr_function>, kKeywords,
     "__simpleexpr($module, arg)\n--\n\n"
     "A normalised copy of a number, variable or expression: a QuadExpr where there are quadratic terms, otherwise a\n"
     "LinExpr. Raises ZelvanError for anything else."},
    {"_restore_quadexpr", reinterpret_cast<PyCFunction>(slot<restore_quadexpr>()), METH_VARARGS,
     "_restore_quadexpr(type, format, *older, state)\n--\n\n"
     "A QuadExpr from its pickled state. `older` are blocks of it that had to be restored before."},
    {},
};

}  // namespace

void init_quadexpr_methods(py::module_& module) {
    std::vector<PyType_Slot> slots = {
        {Py_tp_doc, const_cast<char*>(kDoc)},         {Py_tp_new, slot<QuadExpr_new>()},
        {Py_tp_init, slot<QuadExpr_init>()},          {Py_tp_repr, slot<QuadExpr_repr>()},
        {Py_tp_str, slot<QuadExpr_asprettystring>()}, {Py_tp_methods, methods},
    };
    append_quadexpr_slots(slots);
    make_expr_type<QuadExpr>(module, "zelvanpy.QuadExpr", slots, QuadExpr_Type);
    checked(PyModule_AddFunctions(module.ptr(), functions));
    restore_function = steal(PyObject_GetAttrString(module.ptr(), "_restore_quadexpr")).release().ptr();
}

}  // namespace zelvanpy
