// The type LinExpr: its methods, texts, pickling.

#include <climits>
#include <cmath>
#include <memory>
#include <vector>

#include "exception.h"
#include "linexpr.h"
#include "linexpr_build.h"
#include "linexpr_ops.h"
#include "linexpr_value.h"
#include "operand.h"
#include "pyargs.h"
#include "pynumber.h"
#include "pytype.h"
#include "var.h"

namespace zelvanpy {

namespace {

constexpr long kPickleFormat = 1;
// pickle goes down a chain by recursion, and no deeper than this number of blocks.
constexpr std::size_t kPickledBlocks = 20;

PyObject* restore_function = nullptr;

py::handle object_of(LinExpr& self) { return reinterpret_cast<PyObject*>(&self); }

PyObject* LinExpr_new(PyTypeObject* type, py::handle, py::handle) { return as_result(allocate_linexpr(type)); }

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
    if (std::isnan(float_of(c))) raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT, "Constant is Nan");
    linexpr_add_constant(&self, as_double(c));
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

std::size_t position_of(LinExpr& self, py::handle index) {
    linexpr_flatten(&self);
    const Py_ssize_t i = list_index(index);
    linexpr_flatten(&self);
    return list_position(i, self.size);
}

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

// var.sameAs(other), without a call where the handles themselves decide.
bool is_same(Handle* var, Handle* other) {
    if (var == other) return true;
    if (is_inert(var) && is_inert(other)) return var->cmodel == other->cmodel && var->index == other->index;
    static const Name kSameAs("sameAs");
    const py::object same = steal(PyObject_CallMethodObjArgs(reinterpret_cast<PyObject*>(var), kSameAs.get(),
                                                             reinterpret_cast<PyObject*>(other), nullptr));
    return checked(PyObject_IsTrue(same.ptr()));
}

// Terms are copied before any is looked at: sameAs() may be a subclass's own and change the expression.
void remove_var(LinExpr& self, Handle* var) {
    TermBuffer<Term> all, kept;
    for (std::uint32_t i = 0; i < self.size; ++i) all.append(self.terms[i]);
    for (const Term& term : all.terms())
        if (!is_same(term.var, var)) kept.append(term);
    swap_terms(&self, kept);
}

void LinExpr_remove(LinExpr& self, Args args) {
    static const Signature<1> kRemove{"remove", 1, {Name("item")}};
    const auto [item] = kRemove.parse(args);
    linexpr_flatten(&self);
    if (is_var(item)) return remove_var(self, as_handle(item));
    if (!PyLong_Check(item)) return;
    const std::size_t position = position_of(self, item);
    Handle* var = self.terms[position].var;
    std::copy(self.terms + position + 1, self.terms + self.size, self.terms + position);
    --self.size;
    Py_DECREF(var);
}

void LinExpr_clear(LinExpr& self) { linexpr_clear(&self); }
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

PyObject* LinExpr_radd(LinExpr& self, py::handle expr) { return PyNumber_Add(object_of(self).ptr(), expr.ptr()); }
PyObject* LinExpr_rmul(LinExpr& self, py::handle expr) { return PyNumber_Multiply(object_of(self).ptr(), expr.ptr()); }
PyObject* LinExpr_rsub(LinExpr& self, py::handle expr) {
    const py::object negative = owned(linexpr_copy(&self));
    linexpr_scale(as_linexpr(negative), -1.0);
    return PyNumber_Add(expr.ptr(), negative.ptr());
}

py::object number_text(double value, char format, int precision, int flags) {
    const std::unique_ptr<char, decltype(&PyMem_Free)> text(
        PyOS_double_to_string(value, format, precision, flags, nullptr), PyMem_Free);
    if (!text) throw PythonError{};
    return py::str(text.get());
}
py::object repr_text(double value) { return number_text(value, 'r', 0, Py_DTSF_ADD_DOT_0); }

py::object var_text(Handle* var) {
    const SafeName name = safe_name(var);
    if (!name.pending && !name.removed) return name.text;
    return steal(PyObject_Repr(reinterpret_cast<PyObject*>(var)));
}

py::object LinExpr_asprettystring(LinExpr& self) {
    linexpr_flatten(&self);
    py::list pieces;
    if (self.constant != 0.0)
        pieces.append(repr_text(self.constant));
    else if (self.size == 0)
        return py::str("0.0");
    // The text of a variable may be made by Python code that changes the expression.
    for (std::uint32_t i = 0; i < self.size; ++i) {
        const Term term = self.terms[i];
        const py::object keep = borrow(reinterpret_cast<PyObject*>(term.var));
        if (i > 0 || self.constant != 0.0) pieces.append(py::str(" + "));
        if (term.coeff != 1.0) {
            pieces.append(repr_text(term.coeff));
            pieces.append(py::str(" "));
        }
        pieces.append(var_text(term.var));
    }
    return py::str("").attr("join")(pieces);
}

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

PyObject* LinExpr_sizeof(LinExpr& self) {
    const std::size_t array = self.terms == self.inline_terms ? 0 : self.capacity * sizeof(Term);
    return PyLong_FromSize_t(Py_TYPE(object_of(self).ptr())->tp_basicsize + array);
}

// Older blocks that are pickled before the state, oldest first, so that each finds those below it done: every
// kPickledBlocks-th, counted from the oldest. A block between two of them names the one below it, which names the rest.
void append_milestones(LinExpr& self, py::list& args) {
    if (!self.tail) return;
    const std::vector<LinExpr*> blocks = blocks_of(self.tail);
    if (blocks.size() <= kPickledBlocks) return;
    const std::size_t above = blocks.size() % kPickledBlocks;
    for (std::size_t i = above ? blocks.size() - above : 0; i < blocks.size(); i += kPickledBlocks)
        args.append(object_of(*blocks[i]));
}

py::object LinExpr_reduce(LinExpr& self) {
    PyTypeObject* type = Py_TYPE(object_of(self).ptr());
    py::list coeffs, vars, args;
    args.append(py::handle(reinterpret_cast<PyObject*>(type)));
    args.append(kPickleFormat);
    append_milestones(self, args);
    for (std::uint32_t i = 0; i < self.size; ++i) {
        coeffs.append(self.terms[i].coeff);
        vars.append(py::handle(reinterpret_cast<PyObject*>(self.terms[i].var)));
    }
    const py::object tail = self.tail ? borrow(object_of(*self.tail)) : none();
    args.append(py::make_tuple(coeffs, self.constant, tail, vars));
    static const Name kDict("__dict__");
    if (type != LinExpr_Type)
        if (const py::object fields = find_attribute(object_of(self), kDict))
            return py::make_tuple(py::handle(restore_function), py::tuple(args), fields);
    return py::make_tuple(py::handle(restore_function), py::tuple(args));
}

[[noreturn]] void raise_bad_pickle() { raise(PyExc_ValueError, "not the pickled state of a LinExpr"); }

// Terms from parallel lists of floats and variables.
void read_state_terms(TermBuffer<Term>& buffer, py::handle coeffs, py::handle vars) {
    if (!PyList_CheckExact(coeffs.ptr()) || !PyList_CheckExact(vars.ptr()) ||
        PyList_GET_SIZE(coeffs.ptr()) != PyList_GET_SIZE(vars.ptr()))
        raise_bad_pickle();
    for (Py_ssize_t i = 0; i < PyList_GET_SIZE(coeffs.ptr()); ++i) {
        const py::handle coeff = PyList_GET_ITEM(coeffs.ptr(), i), var = PyList_GET_ITEM(vars.ptr(), i);
        if (!PyFloat_CheckExact(coeff.ptr()) || !is_var(var)) raise_bad_pickle();
        buffer.append({PyFloat_AS_DOUBLE(coeff.ptr()), as_handle(var)});
    }
}

PyObject* restore_linexpr(py::handle, py::handle args) {
    const Py_ssize_t count = PyTuple_GET_SIZE(args.ptr());
    if (count < 3) raise_bad_pickle();
    PyObject* type = PyTuple_GET_ITEM(args.ptr(), 0);
    PyObject* state = PyTuple_GET_ITEM(args.ptr(), count - 1);
    if (checked(PyLong_AsLong(PyTuple_GET_ITEM(args.ptr(), 1))) != kPickleFormat || !PyType_Check(type) ||
        !PyType_IsSubtype(reinterpret_cast<PyTypeObject*>(type), LinExpr_Type) || !PyTuple_Check(state))
        raise_bad_pickle();
    PyObject *coeffs, *tail, *vars;
    double constant;
    if (!PyArg_ParseTuple(state, "OdOO", &coeffs, &constant, &tail, &vars)) throw PythonError{};
    if (tail != Py_None && !is_linexpr(tail)) raise_bad_pickle();
    TermBuffer<Term> buffer;
    read_state_terms(buffer, coeffs, vars);
    py::object e = owned(allocate_linexpr(reinterpret_cast<PyTypeObject*>(type)));
    swap_terms(as_linexpr(e), buffer);
    as_linexpr(e)->constant = constant;
    set_tail(as_linexpr(e), tail == Py_None ? nullptr : as_linexpr(tail));
    return e.release().ptr();
}

py::object simpleexpr_function(py::handle, Args args) {
    static const Signature<1> kSimpleExpr{"__simpleexpr", 1, {Name("arg")}};
    const auto [arg] = kSimpleExpr.parse(args);
    return simple_expr(arg);
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
    {"__radd__", method<LinExpr_radd>, METH_O | METH_COEXIST, "__radd__($self, expr, /)\n--\n\nReturn self + expr."},
    {"__rsub__", method<LinExpr_rsub>, METH_O | METH_COEXIST,
     "__rsub__($self, expr, /)\n--\n\nReturn expr + (-1 * self)."},
    {"__rmul__", method<LinExpr_rmul>, METH_O | METH_COEXIST, "__rmul__($self, expr, /)\n--\n\nReturn self * expr."},
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
    {"__simpleexpr", method<simpleexpr_function>, kKeywords,
     "__simpleexpr($module, arg)\n--\n\n"
     "A normalised copy (LinExpr) of a number, variable or expression. Raises ZelvanError for anything else."},
    {"_restore_linexpr", reinterpret_cast<PyCFunction>(slot<restore_linexpr>()), METH_VARARGS,
     "_restore_linexpr(type, format, *older, state)\n--\n\n"
     "A LinExpr from its pickled state. `older` are blocks of it that had to be restored before."},
    {},
};

void make_linexpr_type(py::module_& module) {
    std::vector<PyType_Slot> slots = {
        {Py_tp_doc, const_cast<char*>(kDoc)},
        {Py_tp_new, slot<LinExpr_new>()},
        {Py_tp_init, slot<LinExpr_init>()},
        {Py_tp_dealloc, reinterpret_cast<void*>(LinExpr_dealloc)},
        {Py_tp_traverse, reinterpret_cast<void*>(LinExpr_traverse)},
        {Py_tp_clear, reinterpret_cast<void*>(LinExpr_tp_clear)},
        {Py_tp_repr, slot<LinExpr_repr>()},
        {Py_tp_str, slot<LinExpr_asprettystring>()},
        {Py_tp_hash, reinterpret_cast<void*>(PyObject_HashNotImplemented)},
        {Py_tp_methods, methods},
    };
    slots.insert(slots.end(), linexpr_operator_slots, linexpr_operator_slots + num_linexpr_operator_slots);
    slots.push_back({0, nullptr});
    PyType_Spec spec{"zelvanpy.LinExpr", sizeof(LinExpr), 0,
                     Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_HAVE_GC, slots.data()};
    LinExpr_Type = make_type(module, spec);
}

}  // namespace

void init_linexpr_methods(py::module_& module) {
    make_linexpr_type(module);
    register_linexpr_memory();
    prefer_to_numpy_scalars(LinExpr_Type);
    checked(PyModule_AddFunctions(module.ptr(), functions));
    restore_function = steal(PyObject_GetAttrString(module.ptr(), "_restore_linexpr")).release().ptr();
}

}  // namespace zelvanpy
