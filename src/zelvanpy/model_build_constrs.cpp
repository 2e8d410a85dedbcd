// addConstr, addLConstr, addQConstr, addRange and addConstrs.

#include <algorithm>
#include <cmath>
#include <optional>

#include "exception.h"
#include "linexpr.h"
#include "model.h"
#include "model_build_key.h"
#include "model_build_names.h"
#include "model_build_rows.h"
#include "model_matrix.h"
#include "pyargs.h"
#include "pyiter.h"
#include "tempconstr.h"
#include "tupledict.h"

namespace zelvanpy {

namespace {

const char* const kInvalidL = "Invalid argument to Model.addLConstr";
const char* const kComparison = "a comparison such as x + y <= 1";

// A side of a range row is infinite from here on.
constexpr double kRangeInfinity = 1e25;

bool given(PyObject* argument) { return argument && argument != Py_None; }

py::object difference(PyObject* lhs, PyObject* rhs) {
    const py::object left = borrow(lhs), right = borrow(rhs ? rhs : Py_None);
    return steal(PyNumber_Subtract(left.ptr(), right.ptr()));
}

// The same where no comparison was given; without a right side, one was meant.
py::object explicit_difference(const char* function, PyObject* lhs, PyObject* rhs) {
    try {
        return difference(lhs, rhs);
    } catch (const PythonError&) {
        const bool is_operand = is_var(lhs) || is_linexpr(lhs) || is_quadexpr(lhs) || PyUnicode_Check(lhs) ||
                                PyFloat_Check(lhs) || PyLong_Check(lhs);
        if (given(rhs) || !is_operand || !PyErr_ExceptionMatches(PyExc_TypeError)) throw;
    }
    PyErr_Clear();
    refuse_argument(PyExc_TypeError, {function, "lhs"}, kComparison, lhs);
}

py::object constant_row(bool holds) { return steal(reinterpret_cast<PyObject*>(new_linexpr(holds ? 0.0 : 1.0))); }

// ---- ranges

py::object add_range(Model& self, py::handle expr, py::handle lower, py::handle upper, PyObject* name) {
    model_setup(self);
    const double left = checked_double(PyFloat_AsDouble(lower.ptr()));
    const double right = checked_double(PyFloat_AsDouble(upper.ptr()));
    const Row row{ZVN_LESS_EQUAL, left < -kRangeInfinity ? -kRangeInfinity : left,
                  right > kRangeInfinity ? kRangeInfinity : right};
    py::object constr = add_row(self, expr, row, name);
    ++self.new_ranges;  // the library decides on a helper column, by its UpdateMode of now and the sides
    return constr;
}

bool is_real(PyObject* value) {
    if (PyFloat_Check(value) || PyLong_Check(value)) return true;
    static PyObject* real = nullptr;  // not made by its initializer: another thread would wait for that with the lock
    if (!real) real = py::object(py::module_::import("numbers").attr("Real")).release().ptr();
    return checked(PyObject_IsInstance(value, real)) != 0;
}

// expr == [lower, upper]
py::object add_range_form(Model& self, TempConstr* constr, PyObject* name) {
    // Kept: conversions of the sides run code that may change the TempConstr.
    const py::object expr = borrow(constr->lhs), keep = borrow(constr->rhs);
    PyObject* sides = keep.ptr();
    if (PyTuple_Check(sides)) raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT, "Range constraint requires a list [lb,ub]");
    if (PyList_GET_SIZE(sides) != 2) raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT, "Range constraint requires two values");
    const py::object lower = borrow(PyList_GET_ITEM(sides, 0)), upper = borrow(PyList_GET_ITEM(sides, 1));
    if (!is_real(lower.ptr()) || !is_real(upper.ptr()))
        raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT, "Range constraint requires numeric values");
    if (Py_TYPE(as_object(self)) == Model_Type) return add_range(self, expr, lower, upper, name);
    static const Name kEmpty("");
    return py::handle(as_object(self)).attr("addRange")(expr, lower, upper, py::handle(name ? name : kEmpty.get()));
}

// trigger >> constraint: the trigger is tested; there are no indicator constraints to make of it.
[[noreturn]] void refuse_indicator(TempConstr* constr) {
    if (is_tempconstr(constr->lhs)) {
        TempConstr* trigger = reinterpret_cast<TempConstr*>(constr->lhs);
        if (is_linexpr(trigger->lhs) && trigger->sense == ZVN_EQUAL) {
            const py::object flat = flat_copy(trigger->lhs);
            const LinExpr* expr = as_linexpr(flat);
            if (expr->size == 1 && std::abs(expr->terms[0].coeff - 1.0) < 1e-6) raise_zelvan(0, kInvalid);
        }
    }
    raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT,
                 "Indicator constraints can only be triggered by a single binary variable at a given value");
}

// ---- addLConstr

// One side of a linear row: -1 terms stands for a single Var.
struct LinearSide {
    py::object keep;
    const LinExpr* expr = nullptr;
    const Handle* var = nullptr;
    double number = 0.0;

    double constant() const { return expr ? expr->constant : number; }
    int terms() const { return var ? 1 : expr ? static_cast<int>(expr->size) : 0; }
};

// With the exception that is set, which tells why, as __cause__.
[[noreturn]] void refuse_linear() { raise_zelvan_from_set(0, kInvalidL); }
[[noreturn]] void refuse_linear(const char* why) {
    PyErr_SetString(PyExc_TypeError, why);
    refuse_linear();
}

// A constant side must convert to a float; anything else is refused.
LinearSide linear_side(py::handle side) {
    LinearSide result;
    result.keep = borrow(side);
    if (Py_TYPE(side.ptr()) == LinExpr_Type) {
        result.keep = flat_copy(side);
        result.expr = as_linexpr(result.keep);
    } else if (is_var(side)) {
        result.var = as_handle(side);
    } else {
        const py::object number = PyFloat_CheckExact(side.ptr())
                                      ? borrow(side)
                                      : py::reinterpret_steal<py::object>(PyNumber_Float(side.ptr()));
        if (!number) {
            PyErr_Clear();
            PyErr_Format(PyExc_TypeError, "A side of a linear constraint must be a Var, a LinExpr or a number, not %U",
                         shown_value(side).ptr());
            refuse_linear();
        }
        result.number = PyFloat_AS_DOUBLE(number.ptr());
    }
    return result;
}

// No test of owner or index here: the library judges them.
void append_side(const LinearSide& side, double mult, LibraryTerms& buffer) {
    if (side.var) buffer.add(side.var->cindex(), mult);
    if (!side.expr) return;
    buffer.reserve(buffer.size() + side.expr->size);
    for (std::uint32_t k = 0; k < side.expr->size; ++k)
        buffer.add(side.expr->terms[k].var->cindex(), mult * side.expr->terms[k].coeff);
}

py::object add_linear(Model& self, const LinearSide& lhs, const LinearSide& rhs, char sense, PyObject* name) {
    const RowName text(name);
    py::object constr = new_member(self, Constr_Type);
    CallBuffer buffer;
    append_side(lhs, 1.0, *buffer);
    append_side(rhs, -1.0, *buffer);
    return add_linear_row(self, std::move(constr), *buffer, {sense, -ZVN_INFINITY, rhs.constant() - lhs.constant()},
                          text);
}

py::object add_linear_comparison(Model& self, TempConstr* constr, PyObject* sense, PyObject* rhs, PyObject* name) {
    if (given(rhs)) refuse_linear("A comparison has its right side already, rhs is one too many");
    const LinearSide left = linear_side(constr->lhs);
    const LinearSide right = linear_side(constr->rhs);
    if (given(sense)) {
        if (!is_empty(name)) raise_zelvan(0, "Invalid sense or name to Model.addLConstr");
        name = sense;
    }
    return add_linear(self, left, right, sense_letter(*constr), name);
}

py::object add_linear_explicit(Model& self, PyObject* lhs, PyObject* sense, PyObject* rhs, PyObject* name) {
    const LinearSide left = linear_side(lhs);
    LinearSide right;
    if (given(rhs) || given(sense)) right = linear_side(rhs ? rhs : Py_None);
    if (given(sense)) return add_linear(self, left, right, sense_argument(sense), name);
    if (left.terms() + right.terms() > 0 || given(rhs) || !PyBool_Check(lhs))
        refuse_argument(PyExc_TypeError, {"addLConstr", "lhs"}, kComparison, lhs);
    LinearSide empty;
    empty.number = lhs == Py_True ? 0.0 : -1.0;
    return add_linear(self, LinearSide(), empty, ZVN_LESS_EQUAL, name);
}

const Signature<4> kAddConstr{"addConstr", 1, {Name("lhs"), Name("sense"), Name("rhs"), Name("name")}};
const Signature<4> kAddLConstr{"addLConstr", 1, {Name("lhs"), Name("sense"), Name("rhs"), Name("name")}};
const Signature<4> kAddQConstr{"addQConstr", 1, {Name("lhs"), Name("sense"), Name("rhs"), Name("name")}};
const Signature<4> kAddRange{"addRange", 3, {Name("expr"), Name("lower"), Name("upper"), Name("name")}};
const Signature<2> kAddConstrs{"addConstrs", 1, {Name("constrs"), Name("name")}};

// lhs - rhs of a comparison as a row
py::object add_sides(Model& self, TempConstr* constr, PyObject* name) {
    py::object result;
    if (add_difference(self, constr, name, result)) return result;
    return add_row(self, difference(constr->lhs, constr->rhs), {sense_letter(*constr)}, name);
}

py::object add_comparison(Model& self, TempConstr* constr, PyObject* sense, PyObject* name) {
    if (is_mlinexpr(constr->lhs) || is_mquadexpr(constr->lhs)) {
        const py::object expr = borrow(constr->lhs), text = borrow(given(sense) ? sense : name ? name : Py_None);
        const char letter = sense_letter(*constr);
        return is_mlinexpr(expr) ? add_matrix_constr(self, expr, letter, text)
                                 : add_matrix_qconstr(self, expr, letter, text);
    }
    if (constr->sense == 'I') refuse_indicator(constr);
    if (constr->sense == ZVN_EQUAL && (PyTuple_Check(constr->rhs) || PyList_Check(constr->rhs)))
        return add_range_form(self, constr, name);
    if (given(sense)) name = sense;
    return add_sides(self, constr, name);
}

py::object add_constr(Model& self, PyObject* lhs, PyObject* sense, PyObject* rhs, PyObject* name) {
    if (is_tempconstr(lhs)) {
        const py::object keep = borrow(lhs);
        return add_comparison(self, reinterpret_cast<TempConstr*>(lhs), sense, name);
    }
    if (PyBool_Check(lhs)) {
        if (given(rhs) || (given(sense) && !is_empty(name))) {
            PyErr_SetString(PyExc_TypeError, "A bool takes one name and no right side");
            raise_zelvan_from_set(0, kInvalid);
        }
        if (given(sense)) name = sense;
        return add_row(self, constant_row(lhs == Py_True), {ZVN_LESS_EQUAL}, name);
    }
    if (lhs == Py_None)
        raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT, "Invalid None value for lhs when calling Model.addConstr");
    const py::object expr = explicit_difference("addConstr", lhs, rhs);
    checked(PyErr_WarnEx(PyExc_DeprecationWarning, "Deprecated, pass a TempConstr or use Model.addLConstr", 1));
    return add_row(self, expr, {}, name, sense ? sense : Py_None);
}

py::object Model_addConstr(Model& self, Args args) {
    const auto [lhs, sense, rhs, name] = kAddConstr.parse(args);
    return add_constr(self, lhs, sense, rhs, name);
}

py::object Model_addLConstr(Model& self, Args args) {
    const auto [lhs, sense, rhs, name] = kAddLConstr.parse(args);
    model_setup(self);
    try {
        if (is_tempconstr(lhs))
            return add_linear_comparison(self, reinterpret_cast<TempConstr*>(lhs), sense, rhs, name);
        return add_linear_explicit(self, lhs, sense, rhs, name);
    } catch (const PythonError&) {
        if (PyErr_ExceptionMatches(ZelvanError) || PyErr_ExceptionMatches(PyExc_MemoryError)) throw;
    } catch (py::error_already_set& error) {
        if (error.matches(ZelvanError)) throw;
        error.restore();
    }
    refuse_linear();
}

py::object Model_addQConstr(Model& self, Args args) {
    auto [lhs, sense, rhs, name] = kAddQConstr.parse(args);
    if (is_tempconstr(lhs)) {
        const py::object keep = borrow(lhs);
        return add_sides(self, reinterpret_cast<TempConstr*>(lhs), given(sense) ? sense : name);
    }
    if (PyBool_Check(lhs)) return add_row(self, constant_row(lhs == Py_True), {ZVN_LESS_EQUAL}, name);
    if (lhs == Py_None)
        raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT, "Invalid None value for lhs when calling Model.addQConstr");
    const py::object expr = explicit_difference("addQConstr", lhs, rhs);
    return add_row(self, expr, {}, name, sense ? sense : Py_None);
}

py::object Model_addRange(Model& self, Args args) {
    const auto [expr, lower, upper, name] = kAddRange.parse(args);
    return add_range(self, expr, lower, upper, name);
}

// The name of the row with this key, by the `name` argument of addConstrs.
class RowNames {
public:
    explicit RowNames(PyObject* name) : base_(name ? borrow(name) : borrow(kNone.get())) {
        static const Name kUnderscore("_");
        by_dict_ = PyDict_Check(base_.ptr());
        by_key_ = !by_dict_ && checked(PyObject_RichCompareBool(base_.ptr(), kUnderscore.get(), Py_EQ));
    }
    py::object operator()(const py::object& key) const {
        static const Name kGet("get");
        if (by_dict_)
            return steal(PyObject_CallMethodObjArgs(base_.ptr(), kGet.get(), key.ptr(), kNone.get(), nullptr));
        return by_key_ ? key : index_name(base_, key);
    }

private:
    static const Name kNone;
    py::object base_;
    bool by_dict_, by_key_;
};
const Name RowNames::kNone("");

// A subclass may have an addConstr of its own.
py::object add_one_of_many(Model& self, const py::object& constr, const py::object& name) {
    if (Py_TYPE(as_object(self)) == Model_Type) return add_constr(self, constr.ptr(), nullptr, nullptr, name.ptr());
    return py::handle(as_object(self)).attr("addConstr")(constr, py::arg("name") = name);
}

py::object Model_addConstrs(Model& self, Args args) {
    const auto [constrs, name] = kAddConstrs.parse(args);
    const GeneratorKey key(constrs);
    const RowNames names(name);
    py::object result = new_tupledict();
    for_each(constrs, [&](const py::object& constr) {
        const py::object k = key.current();
        tupledict_set(as_tupledict(result), k, add_one_of_many(self, constr, names(k)));
    });
    return result;
}

}  // namespace

PyMethodDef model_build_constr_methods[] = {
    {"addConstr", method<Model_addConstr>, kKeywords,
     "addConstr($self, lhs, sense=None, rhs=None, name='')\n--\n\n"
     "Add one constraint and return its handle: a QConstr where a side has products, otherwise a Constr.\n\n"
     "lhs: a comparison of expressions (x + y <= 1, x*x + y*y <= z*z), a range (x + y == [1, 2]), or a bool (True is\n"
     "a row that holds, False one that doesn't). The name may stand in second place: addConstr(x <= 1, 'c').\n"
     "With lhs an expression, sense and rhs given, the form is deprecated in favour of addLConstr.\n"
     "Raises ZelvanError with ZVN.ERROR_NOT_IN_MODEL for a variable of another model or without index."},
    {"addLConstr", method<Model_addLConstr>, kKeywords,
     "addLConstr($self, lhs, sense=None, rhs=None, name='')\n--\n\n"
     "Add one linear constraint and return its Constr: addLConstr(x + y <= 1, 'c') or\n"
     "addLConstr(x + y, ZVN.LESS_EQUAL, 1, 'c'). The fastest way to add a row.\n\n"
     "Raises ZelvanError for anything that is not linear and for variables the library doesn't know."},
    {"addRange", method<Model_addRange>, kKeywords,
     "addRange($self, expr, lower, upper, name='')\n--\n\n"
     "Add the constraint lower <= expr <= upper and return its Constr. Sides beyond +-1e25 count as infinite.\n\n"
     "Under UpdateMode 1 a row with two finite sides gets a helper variable, which the next update() appends\n"
     "behind the other new variables; under UpdateMode 0 it is kept as one two-sided row.\n"
     "Of a quadratic expression only the upper side counts, as a QConstr has but one."},
    {"addConstrs", method<Model_addConstrs>, kKeywords,
     "addConstrs($self, constrs, name='')\n--\n\n"
     "Add the constraints of a generator expression and return a tupledict from its loop variables to handles.\n\n"
     "name: a base name that is completed by the key ('c[1,2]'), a dict by key, or '_' for the key itself.\n"
     "Raises KeyError when `constrs` is no generator or its loop variables can't be determined.\n\n"
     "    m.addConstrs((x[i] + y[j] <= 1 for i in I for j in J), name='c')"},
    {"addQConstr", method<Model_addQConstr>, kKeywords,
     "addQConstr($self, lhs, sense=None, rhs=None, name='')\n--\n\n"
     "Add one constraint from a comparison, or from lhs, sense and rhs, and return its handle: a QConstr, or a Constr\n"
     "where no side has products."},
    {},
};

}  // namespace zelvanpy
