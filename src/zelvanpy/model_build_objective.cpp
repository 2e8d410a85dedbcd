// setObjective, setObjectiveN, getObjective and the piecewise-linear objective.

#include <vector>

#include "exception.h"
#include "linexpr.h"
#include "linexpr_build.h"
#include "model.h"
#include "model_build.h"
#include "model_lists.h"
#include "model_matrix.h"
#include "model_stranger.h"
#include "pyargs.h"
#include "pynumber.h"
#include "quadexpr_build.h"

namespace zelvanpy {

namespace {

// Anything but an expression as one, by simple_expr; the only cell of a matrix object.
py::object expression_of(py::handle expr) {
    if (is_mvar(expr) || is_mlinexpr(expr) || is_mquadexpr(expr)) {
        static const Name kItem("item");
        const py::object cell = steal(PyObject_CallMethodObjArgs(expr.ptr(), kItem.get(), nullptr));
        return is_mquadexpr(expr) ? simple_expr(cell) : owned(linexpr_from(cell));
    }
    return is_linexpr(expr) || is_quadexpr(expr) ? borrow(expr) : simple_expr(expr);
}

void require_var(py::handle var) {
    if (!is_var(var)) raise_zelvan(-1, "First argument must be a Var");
}

// int(sense), where a text that is none and an object without int() are refused by name.
int sense_of(py::handle sense) {
    try {
        return int_of(sense);
    } catch (const PythonError&) {
        const PyNumberMethods* own = Py_TYPE(sense.ptr())->tp_as_number;  // which then raised what it raised
        if (!PyUnicode_CheckExact(sense.ptr()) && own && (own->nb_int || own->nb_index)) throw;
    }
    const bool is_text = PyErr_ExceptionMatches(PyExc_ValueError);
    PyErr_Clear();
    refuse_argument(is_text ? PyExc_ValueError : PyExc_TypeError, {"setObjective", "sense"},
                    "ZVN.MINIMIZE (1) or ZVN.MAXIMIZE (-1)", sense);
}

const Signature<2> kSetObjective{"setObjective", 1, {Name("expr"), Name("sense")}};
const Signature<7> kSetObjectiveN{
    "setObjectiveN",
    2,
    {Name("expr"), Name("index"), Name("priority"), Name("weight"), Name("abstol"), Name("reltol"), Name("name")}};
const Signature<1> kGetObjective{"getObjective", 0, {Name("index")}};
const Signature<3> kSetPWLObj{"setPWLObj", 3, {Name("var"), Name("x"), Name("y")}};
const Signature<1> kGetPWLObj{"getPWLObj", 1, {Name("var")}};

// The quadratic terms of a flat expression. Where one has a stranger, terms that cancel don't count; the library merges
// the others.
LibraryQuadTerms quadratic_terms(Model& self, QuadExpr* expr) {
    LibraryQuadTerms buffer;
    if (owns_terms(self, expr)) {
        append_terms(self, expr, 1.0, buffer);
        return buffer;
    }
    const py::object merged = owned(quadexpr_copy(expr));
    quadexpr_normalize(as_quadexpr(merged));
    append_terms(self, as_quadexpr(merged), 1.0, buffer);
    return buffer;
}

// The linear part of an expression; both become flat.
py::object flat_linear_part(const py::object& expr) {
    py::object linear = expr;
    if (is_quadexpr(expr)) {
        quadexpr_flatten(as_quadexpr(expr));
        linear = borrow(as_result(linear_part(as_quadexpr(expr))));
    }
    linexpr_flatten(as_linexpr(linear));
    return linear;
}

void Model_setObjective(Model& self, Args args) {
    const auto [expr, sense] = kSetObjective.parse(args);
    model_setup(self);
    if ((is_mlinexpr(expr) && as_mlinexpr(expr).compact) || (is_mquadexpr(expr) && as_mquadexpr(expr).parts))
        return set_compact_objective(self, expr, sense && sense != Py_None ? sense_of(sense) : 0);
    const py::object expression = expression_of(expr);
    const int objsense = sense && sense != Py_None ? sense_of(sense) : 0;
    const py::object linear = flat_linear_part(expression);
    LibraryQuadTerms quad;
    if (is_quadexpr(expression)) quad = quadratic_terms(self, as_quadexpr(expression));
    CallBuffer buffer;
    append_terms(self, as_linexpr(linear), 1.0, *buffer);
    check(ZVNsetobjective(model_pointer(self), objsense, as_linexpr(linear)->constant, buffer->size(), buffer->ind(),
                          buffer->val(), quad.size(), quad.row.data(), quad.col.data(), quad.val.data()),
          as_object(self));
}

void Model_setObjectiveN(Model& self, Args args) {
    const auto [expr, index, priority, weight, abstol, reltol, name] = kSetObjectiveN.parse(args);
    model_setup(self);
    if (is_quadexpr(expr) || is_mquadexpr(expr)) raise_zelvan(-1, "Objective must be linear for multi-objective model");
    const py::object linear = flat_linear_part(expression_of(expr));
    const LinExpr* terms = as_linexpr(linear);
    const double constant = terms->constant;
    CallBuffer buffer;
    append_terms(self, terms, 1.0, *buffer);
    const CString text(name ? borrow(name) : steal(PyUnicode_FromString("")));
    const int number = int_of(index);
    const int rank = priority ? int_of(priority) : 0;
    const double factor = weight ? float_of(weight) : 1.0;
    const double absolute = abstol ? float_of(abstol) : 1e-6;
    const double relative = reltol ? float_of(reltol) : 0.0;
    check(ZVNsetobjectiven(model_pointer(self), number, rank, factor, absolute, relative, text, constant,
                           buffer->size(), buffer->ind(), buffer->val()),
          as_object(self));
}

// Sets the expression, new, to the constant + the non-zero coefficients, in column order.
void read_objective(Model& self, const char* constant, const char* coefficients, LinExpr* expr) {
    ZVNmodel* model = model_pointer(self);
    check(ZVNgetdblattr(model, constant, &expr->constant), as_object(self));
    const int count = static_cast<int>(self.live_vars);
    std::vector<int> index(count);
    for (int j = 0; j < count; ++j) index[j] = j;
    std::vector<double> coeff(count);
    check(ZVNgetdblattrlist(model, coefficients, count, index.data(), coeff.data()), as_object(self));
    for (int j = 0; j < count; ++j)
        if (coeff[j] != 0.0) linexpr_append(expr, coeff[j], as_handle(PyList_GET_ITEM(self.vars, j)));
}

// Puts the parameter ObjNumber back at the end of a scope.
class ObjNumberScope {
public:
    ObjNumberScope(Model& model, int number) : model_(model), env_(ZVNgetenv(model_pointer(model))) {
        check(ZVNgetintparaminfo(env_, "ObjNumber", &before_, nullptr, nullptr, nullptr), model_.env);
        check(ZVNsetintparam(env_, "ObjNumber", number), model_.env);
    }
    ~ObjNumberScope() { ZVNsetintparam(env_, "ObjNumber", before_); }

private:
    Model& model_;
    ZVNenv* env_;
    int before_ = 0;
};

// The objective with its quadratic terms, where it has any; the lists of handles are there.
py::object with_quadratic_terms(Model& self, py::object linear) {
    if (count_of(self, "NumQNZs") == 0) return linear;
    py::object result = owned(quadexpr_of_linear(std::move(linear)));
    require_lists(self);  // making an object may run code of the caller
    int size = count_of(self, "NumQNZs");
    LibraryQuadTerms terms{std::vector<int>(size), std::vector<int>(size), std::vector<double>(size)};
    check(ZVNgetq(model_pointer(self), &size, terms.row.data(), terms.col.data(), terms.val.data()), as_object(self));
    append_quadratic(self, terms, as_quadexpr(result));
    return result;
}

py::object Model_getObjective(Model& self, Args args) {
    const auto [index] = kGetObjective.parse(args);
    model_setup(self);
    const bool is_main = !index || index == Py_None;
    const int number = is_main ? 0 : int_of(index);
    py::object result = owned(new_linexpr());
    require_lists(self);  // converting and making an object may run code of the caller
    if (is_main) {
        read_objective(self, "ObjCon", "Obj", as_linexpr(result));
    } else {
        const ObjNumberScope scope(self, number);
        read_objective(self, "ObjNCon", "ObjN", as_linexpr(result));
    }
    return number > 0 ? result : with_quadratic_terms(self, std::move(result));
}

void Model_setPWLObj(Model& self, Args args) {
    const auto [var, x, y] = kSetPWLObj.parse(args);
    require_var(var);
    require_open(self);
    const Py_ssize_t count = checked(PyObject_Size(x));
    if (count != checked(PyObject_Size(y))) raise_zelvan(-1, "Arguments x and y must have the same length");
    std::vector<double> xs(count), ys(count);
    for (Py_ssize_t i = 0; i < count; ++i) {
        const auto element = [&](PyObject* sequence) {
            const py::object position = steal(PyLong_FromSsize_t(i));
            return checked_double(PyFloat_AsDouble(steal(PyObject_GetItem(sequence, position.ptr())).ptr()));
        };
        xs[i] = element(x);
        ys[i] = element(y);
    }
    check(ZVNsetpwlobj(model_pointer(self), as_handle(var)->cindex(), static_cast<int>(count), xs.data(), ys.data()),
          as_object(self));
}

py::object Model_getPWLObj(Model& self, Args args) {
    const auto [var] = kGetPWLObj.parse(args);
    require_var(var);
    if (as_handle(var)->cindex() >= 0) model_setup(self);
    const int col = as_handle(var)->cindex();
    if (col < 0 || col >= self.live_vars)
        refuse_stranger(self, *as_handle(var), ZVN_ERROR_NOT_IN_MODEL, "Variable not in model");
    ZVNmodel* model = model_pointer(self);
    int count = 0;
    check(ZVNgetpwlobj(model, col, &count, nullptr, nullptr), as_object(self));
    std::vector<double> x(count), y(count);
    check(ZVNgetpwlobj(model, col, &count, x.data(), y.data()), as_object(self));
    py::object points = steal(PyList_New(count));
    for (int i = 0; i < count; ++i)
        PyList_SET_ITEM(points.ptr(), i, steal(Py_BuildValue("(dd)", x[i], y[i])).release().ptr());
    return points;
}

}  // namespace

PyMethodDef model_build_objective_methods[] = {
    {"setObjective", method<Model_setObjective>, kKeywords,
     "setObjective($self, expr, sense=None)\n--\n\n"
     "Replace the objective by an expression, linear or quadratic. sense: ZVN.MINIMIZE, ZVN.MAXIMIZE, or None to leave "
     "ModelSense.\n\n"
     "Raises ZelvanError with ZVN.ERROR_NOT_IN_MODEL for a variable of another model or without index."},
    {"setObjectiveN", method<Model_setObjectiveN>, kKeywords,
     "setObjectiveN($self, expr, index, priority=0, weight=1.0, abstol=1e-6, reltol=0.0, name='')\n--\n\n"
     "Set objective number `index` of a model with several objectives, which are optimized by falling priority;\n"
     "objectives of equal priority are added up by weight. abstol, reltol: how far a lower priority may worsen it."},
    {"getObjective", method<Model_getObjective>, kKeywords,
     "getObjective($self, index=None)\n--\n\n"
     "The objective as of the last update, or objective number `index`, as an expression with one term for each\n"
     "variable of non-zero coefficient: a QuadExpr where it has quadratic terms, otherwise a LinExpr."},
    {"setPWLObj", method<Model_setPWLObj>, kKeywords,
     "setPWLObj($self, var, x, y)\n--\n\n"
     "Set a piecewise-linear objective term for a variable: the function through the points (x[i], y[i]), its\n"
     "first and last pieces continued. x must not decrease; two points of equal x make a jump.\n"
     "Raises ZelvanError for sequences of different length and points that the library refuses."},
    {"getPWLObj", method<Model_getPWLObj>, kKeywords,
     "getPWLObj($self, var)\n--\n\n"
     "The points of a variable's piecewise-linear objective term as list of (x, y) tuples; [] when it has none."},
    {},
};

}  // namespace zelvanpy
