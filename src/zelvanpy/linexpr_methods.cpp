// The type LinExpr: its methods, texts, pickling.

#include <cmath>
#include <vector>

#include "exception.h"
#include "expr_methods.h"
#include "expr_ops.h"
#include "expr_pickle.h"
#include "expr_value.h"
#include "linexpr.h"
#include "linexpr_build.h"
#include "linexpr_ops.h"
#include "linexpr_text.h"
#include "pyargs.h"

namespace zelvanpy {

namespace {

PyObject* restore_function = nullptr;

py::handle object_of(LinExpr& self) { return reinterpret_cast<PyObject*>(&self); }

PyObject* LinExpr_new(PyTypeObject* type, py::handle, py::handle) {
    return as_result(ExprMemory<LinExpr>::allocate(type));
}

void LinExpr_init(LinExpr& self, PyObject* args, PyObject* kwargs) {
    static const Signature<2> kInit{"LinExpr", 0, {Name("arg1"), Name("arg2")}};
    const auto [arg1, arg2] = kInit.parse(args, kwargs);
    const py::object zero = arg1 ? borrow(arg1) : steal(PyFloat_FromDouble(0.0));
    if (!arg2 || arg2 == Py_None)
        linexpr_init(&self, zero);
    else
        linexpr_init(&self, zero, arg2);
}

void LinExpr_addMethod(LinExpr& self, Args args) {
    static const Signature<2> kAdd{"add", 1, {Name("arg1"), Name("mult")}};
    const auto [arg, mult] = kAdd.parse(args);
    double value, factor = 1.0;
    const Operand kind = classify(arg, value);
    if (mult && kind != Operand::kForeign) factor = kind == Operand::kVar ? float_of(mult) : as_double(mult);
    linexpr_add_any(&self, arg, factor);
}

void LinExpr_addConstant(LinExpr& self, Args args) {
    static const Signature<1> kAddConstant{"addConstant", 1, {Name("c")}};
    const auto [c] = kAddConstant.parse(args);
    linexpr_add_number(&self, c);
}

void LinExpr_addTerms(LinExpr& self, Args args) {
    static const Signature<2> kAddTerms{"addTerms", 2, {Name("newcoeffs"), Name("newvars")}};
    const auto [coeffs, vars] = kAddTerms.parse(args);
    linexpr_add_terms(&self, coeffs, vars);
}

PyObject* LinExpr_size(LinExpr& self) {
    linexpr_flatten(&self);
    return PyLong_FromUnsignedLong(self.size);
}

PyObject* LinExpr_getConstant(LinExpr& self) {
    linexpr_flatten(&self);
    return PyFloat_FromDouble(self.constant);
}

std::size_t position_of(LinExpr& self, py::handle index) { return expr_position<linexpr_flatten>(&self, index); }

PyObject* LinExpr_getCoeff(LinExpr& self, Args args) {
    static const Signature<1> kGetCoeff{"getCoeff", 1, {Name("i")}};
    const auto [i] = kGetCoeff.parse(args);
    const std::size_t position = position_of(self, i);  // may move the terms
    return PyFloat_FromDouble(self.terms[position].coeff);
}

py::object LinExpr_getVar(LinExpr& self, Args args) {
    static const Signature<1> kGetVar{"getVar", 1, {Name("i")}};
    const auto [i] = kGetVar.parse(args);
    const std::size_t position = position_of(self, i);
    return borrow(reinterpret_cast<PyObject*>(self.terms[position].var));
}

PyObject* LinExpr_getValue(LinExpr& self) { return PyFloat_FromDouble(linexpr_value(&self)); }

void LinExpr_remove(LinExpr& self, Args args) {
    static const Signature<1> kRemove{"remove", 1, {Name("item")}};
    const auto [item] = kRemove.parse(args);
    linexpr_flatten(&self);
    if (is_var(item)) return remove_variable(&self, as_handle(item));
    if (PyLong_Check(item)) remove_term(&self, position_of(self, item));
}

void LinExpr_clear(LinExpr& self) { clear_expr(&self); }
PyObject* LinExpr_copy(LinExpr& self) { return as_result(linexpr_copy(&self)); }

void LinExpr_mul(LinExpr& self, Args args) {
    static const Signature<1> kMul{"_mul", 1, {Name("mult")}};
    const auto [mult] = kMul.parse(args);
    double value;
    if (!scalar_value(mult, value))
        raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT, "Invalid argument to LinExpr multiplication");
    linexpr_scale(&self, value);
}

void LinExpr_flatten(LinExpr& self) { linexpr_flatten(&self); }
void LinExpr_normalize(LinExpr& self) { linexpr_normalize(&self); }
PyObject* LinExpr_isNested(LinExpr& self) { return PyBool_FromLong(self.tail != nullptr); }

py::object LinExpr_asprettystring(LinExpr& self) { return linexpr_text(&self); }

py::object LinExpr_repr(LinExpr& self) {
    return steal(PyUnicode_FromFormat("<zelvan.LinExpr: %U>", LinExpr_asprettystring(self).ptr()));
}

void LinExpr_dbgprint(LinExpr& self) {
    const auto block_text = [](const char* before, const LinExpr& block) {
        const py::object constant = number_text(block.constant, 'f', 6, 0);
        return steal(PyUnicode_FromFormat("%s%u const=%U", before, block.size, constant.ptr()));
    };
    py::list pieces;
    pieces.append(block_text("<DBGLinExpr len=", self));
    for (const LinExpr* block = self.tail; block; block = block->tail) {
        pieces.append(block_text("\n  |  <DBGLinExpr ", *block));
        pieces.append(py::str(">"));
    }
    pieces.append(py::str(self.tail ? " >" : ">"));
    py::print(py::str("").attr("join")(pieces));
}

PyObject* LinExpr_sizeof(LinExpr& self) { return expr_sizeof(&self); }

py::object LinExpr_reduce(LinExpr& self) {
    py::list coeffs, vars;
    for (std::uint32_t i = 0; i < self.size; ++i) {
        coeffs.append(self.terms[i].coeff);
        vars.append(py::handle(reinterpret_cast<PyObject*>(self.terms[i].var)));
    }
    const py::object tail = self.tail ? borrow(object_of(*self.tail)) : none();
    return reduced_expr(&self, restore_function, py::make_tuple(coeffs, self.constant, tail, vars));
}

PyObject* restore_linexpr(py::handle, py::handle args) {
    const PickledExpr pickled(args, LinExpr_Type);
    PyObject *coeffs, *tail, *vars;
    double constant;
    if (!PyArg_ParseTuple(pickled.state, "OdOO", &coeffs, &constant, &tail, &vars)) throw PythonError{};
    if (tail != Py_None && !is_linexpr(tail)) raise_bad_pickle();
    TermBuffer<Term> buffer;
    const Py_ssize_t size = pickled_size(coeffs, {vars});
    for (Py_ssize_t i = 0; i < size; ++i) buffer.append({pickled_coefficient(coeffs, i), pickled_variable(vars, i)});
    py::object e = owned(ExprMemory<LinExpr>::allocate(pickled.type));
    swap_terms(as_linexpr(e), buffer);
    as_linexpr(e)->constant = constant;
    set_tail(as_linexpr(e), tail == Py_None ? nullptr : as_linexpr(tail));
    return e.release().ptr();
}

PyMethodDef methods[] = {
    {"add", method<LinExpr_addMethod>, kKeywords,
     "add($self, arg1, mult=1.0)\n--\n\n"
     "Add `mult * arg1` in place; `arg1` is a Var, LinExpr or number.\n\n"
     "Raises ZelvanError for another type, for a multiplier of a Var that is infinite or NaN, and for a NaN constant."},
    {"addConstant", method<LinExpr_addConstant>, kKeywords,
     "addConstant($self, c)\n--\n\nAdd the number `c` to the constant. Raises ZelvanError for NaN."},
    {"addTerms", method<LinExpr_addTerms>, kKeywords,
     "addTerms($self, newcoeffs, newvars)\n--\n\n"
     "Append terms: a number and a Var, or two iterables of equal length.\n\n"
     "Raises ZelvanError, and adds nothing, for different lengths, an element of `newvars` that is no Var, a "
     "coefficient that is no number, infinite or NaN."},
    {"size", method<LinExpr_size>, METH_NOARGS,
     "size($self)\n--\n\nNumber of terms (int), equal variables counted as often as they stand."},
    {"getConstant", method<LinExpr_getConstant>, METH_NOARGS, "getConstant($self)\n--\n\nThe constant (float)."},
    {"getCoeff", method<LinExpr_getCoeff>, kKeywords,
     "getCoeff($self, i)\n--\n\n"
     "Coefficient (float) of term `i`; negative positions count from the end. Raises IndexError."},
    {"getVar", method<LinExpr_getVar>, kKeywords,
     "getVar($self, i)\n--\n\nVar of term `i`; negative positions count from the end. Raises IndexError."},
    {"getValue", method<LinExpr_getValue>, METH_NOARGS,
     "getValue($self)\n--\n\n"
     "Value (float) in the current solution. Raises what reading the attribute X of a variable raises."},
    {"remove", method<LinExpr_remove>, kKeywords,
     "remove($self, item)\n--\n\n"
     "Drop the term at position `item` (int, raises IndexError), or every term of the variable `item` (Var)."},
    {"clear", method<LinExpr_clear>, METH_NOARGS, "clear($self)\n--\n\nDrop all terms and the constant."},
    {"copy", method<LinExpr_copy>, METH_NOARGS, "copy($self)\n--\n\nAn independent copy (LinExpr)."},
    {"_mul", method<LinExpr_mul>, kKeywords,
     "_mul($self, mult)\n--\n\n"
     "Multiply by a number in place. Raises ZelvanError for another type, infinity and NaN."},
    {"_flatten", method<LinExpr_flatten>, METH_NOARGS,
     "_flatten($self)\n--\n\nJoin the blocks of a long sum, in the order of addition."},
    {"_normalize", method<LinExpr_normalize>, METH_NOARGS,
     "_normalize($self)\n--\n\nMerge terms of equal column into the first of them and drop zero coefficients."},
    {"_is_nested", method<LinExpr_isNested>, METH_NOARGS,
     "_is_nested($self)\n--\n\nWhether the expression has several blocks now (bool)."},
    {"_asprettystring", method<LinExpr_asprettystring>, METH_NOARGS,
     "_asprettystring($self)\n--\n\nThe expression as text: constant, then coefficients and names."},
    {"_dbgprint", method<LinExpr_dbgprint>, METH_NOARGS,
     "_dbgprint($self)\n--\n\nPrint the number of terms and the constant of every block."},
    {"__radd__", method<expr_radd>, METH_O | METH_COEXIST, "__radd__($self, expr, /)\n--\n\nReturn self + expr."},
    {"__rsub__", method<linexpr_rsub>, METH_O | METH_COEXIST,
     "__rsub__($self, expr, /)\n--\n\nReturn expr + (-1 * self)."},
    {"__rmul__", method<expr_rmul>, METH_O | METH_COEXIST, "__rmul__($self, expr, /)\n--\n\nReturn self * expr."},
    {"__reduce__", method<LinExpr_reduce>, METH_NOARGS, "__reduce__($self)\n--\n\nState for pickling."},
    {"__sizeof__", method<LinExpr_sizeof>, METH_NOARGS,
     "__sizeof__($self)\n--\n\nBytes of the object with its terms, without older blocks of a long sum."},
    {},
};

const char kDoc[] =
    "LinExpr(arg1=0.0, arg2=None)\n--\n\n"
    "Linear expression: a constant and terms coefficient * variable, in the order in which they were added.\n\n"
    "LinExpr(c) is a constant, LinExpr(x) the term 1.0 * x, LinExpr(expr) a copy, LinExpr(pairs) the terms of an\n"
    "iterable of (coefficient, Var), LinExpr(c, x) one term and LinExpr(coeffs, vars) the terms of two sequences.\n"
    "Raises ZelvanError for lengths that differ, elements of the wrong type, infinite or NaN coefficients and a NaN\n"
    "constant.\n\n"
    "Terms of equal variables are not merged. `==`, `<=` and `>=` build a constraint.";

PyMethodDef functions[] = {
    {"_restore_linexpr", reinterpret_cast<PyCFunction>(slot<restore_linexpr>()), METH_VARARGS,
     "_restore_linexpr(type, format, *older, state)\n--\n\n"
     "A LinExpr from its pickled state. `older` are blocks of it that had to be restored before."},
    {},
};

void make_linexpr_type(py::module_& module) {
    std::vector<PyType_Slot> slots = {
        {Py_tp_doc, const_cast<char*>(kDoc)},        {Py_tp_new, slot<LinExpr_new>()},
        {Py_tp_init, slot<LinExpr_init>()},          {Py_tp_repr, slot<LinExpr_repr>()},
        {Py_tp_str, slot<LinExpr_asprettystring>()}, {Py_tp_methods, methods},
    };
    append_linexpr_slots(slots);
    make_expr_type<LinExpr>(module, "zelvanpy.LinExpr", slots, LinExpr_Type);
}

}  // namespace

void init_linexpr_methods(py::module_& module) {
    make_linexpr_type(module);
    checked(PyModule_AddFunctions(module.ptr(), functions));
    restore_function = steal(PyObject_GetAttrString(module.ptr(), "_restore_linexpr")).release().ptr();
}

}  // namespace zelvanpy
