// What building methods share, and their table.

#include "model_build.h"

#include "exception.h"

namespace zelvanpy {

namespace {

LibraryTerms spare_buffer;
// Entries that a buffer may keep between calls.
constexpr std::size_t kKeptTerms = 1 << 16;

// Variables are fetched into the cache so many terms before their turn.
constexpr std::ptrdiff_t kAhead = 16;

inline int index_in(const Model& model, const Handle* var) {
    const int index = var->cindex();
    if (index < 0 || !model_owns(model, var)) raise_zelvan(ZVN_ERROR_NOT_IN_MODEL, "Variable not in model");
    return index;
}

}  // namespace

void LibraryTerms::clean() {
    int size = static_cast<int>(ind_.size());
    if (const int code = ZVNclean2(&size, ind_.data(), val_.data()); code == ZVN_ERROR_OUT_OF_MEMORY)
        throw std::bad_alloc();
    ind_.resize(size);
    val_.resize(size);
}

CallBuffer::CallBuffer() : buffer_(std::move(spare_buffer)) { buffer_.clear(); }

CallBuffer::~CallBuffer() {
    if (static_cast<std::size_t>(buffer_.size()) <= kKeptTerms) spare_buffer = std::move(buffer_);
}

void append_var(const Model& model, const Handle* var, double mult, LibraryTerms& buffer) {
    buffer.add(index_in(model, var), mult);
}

void append_terms(const Model& model, const LinExpr* expr, double mult, LibraryTerms& buffer) {
    buffer.reserve(buffer.size() + expr->size);
    const Term* const end = expr->terms + expr->size;
    for (const Term* term = expr->terms; term != end; ++term) {
        if (end - term > kAhead) __builtin_prefetch(term[kAhead].var);
        buffer.add(index_in(model, term->var), mult * term->coeff);
    }
}

py::object flat_copy(py::handle expr) {
    LinExpr* source = as_linexpr(expr);
    if (!source->tail) return borrow(expr);
    py::object copy = steal(reinterpret_cast<PyObject*>(linexpr_copy(source)));
    linexpr_flatten(as_linexpr(copy));
    return copy;
}

PyMethodDef model_build_methods[] = {
    {"addVar", method<Model_addVar>, kKeywords,
     "addVar($self, lb=0.0, ub=1e100, obj=0.0, vtype='C', name='', column=None)\n--\n\n"
     "Add one variable and return its Var.\n\n"
     "lb, ub: bounds; magnitudes of 1e20 and above are infinite. obj: objective coefficient. vtype: one of\n"
     "ZVN.CONTINUOUS, BINARY, INTEGER, SEMICONT, SEMIINT. name: at most 255 bytes; '' gives a default name.\n"
     "column: a Column with the coefficients of the variable in existing constraints; it is normalised.\n"
     "The variable is part of the model from the next update() on. Raises ZelvanError when the library refuses\n"
     "a value, and with ZVN.ERROR_NOT_IN_MODEL for a constraint without index."},
    {"addVars", method<Model_addVars>, kKeywords,
     "addVars($self, *indexes, lb=0.0, ub=1e100, obj=0.0, vtype='C', name='')\n--\n\n"
     "Add one variable for each key of an index set and return a tupledict from key to Var.\n\n"
     "indexes: each an int n (for range(n)) or an iterable; several make their cross product, with tuple keys.\n"
     "lb, ub, obj, vtype, name: one value for all, a dict by key, or a list (nested lists and arrays are\n"
     "flattened in row order). A single name is completed by the key: 'x[1,2]'.\n"
     "Raises KeyError for duplicate keys (the variables stay in the model), TypeError for unknown keywords.\n\n"
     "    x = m.addVars(3, 4, vtype=ZVN.BINARY, name='x')\n"
     "    m.addConstrs(x.sum(i, '*') == 1 for i in range(3))"},
    {"addConstr", method<Model_addConstr>, kKeywords,
     "addConstr($self, lhs, sense=None, rhs=None, name='')\n--\n\n"
     "Add one constraint and return its handle.\n\n"
     "lhs: a comparison of expressions (x + y <= 1), a range (x + y == [1, 2]), or a bool (True is a row that\n"
     "holds, False one that doesn't). The name may stand in second place: addConstr(x <= 1, 'c').\n"
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
     "behind the other new variables; under UpdateMode 0 it is kept as one two-sided row."},
    {"addConstrs", method<Model_addConstrs>, kKeywords,
     "addConstrs($self, constrs, name='')\n--\n\n"
     "Add the constraints of a generator expression and return a tupledict from its loop variables to handles.\n\n"
     "name: a base name that is completed by the key ('c[1,2]'), a dict by key, or '_' for the key itself.\n"
     "Raises KeyError when `constrs` is no generator or its loop variables can't be determined.\n\n"
     "    m.addConstrs((x[i] + y[j] <= 1 for i in I for j in J), name='c')"},
    {"addQConstr", method<Model_addQConstr>, kKeywords,
     "addQConstr($self, lhs, sense=None, rhs=None, name='')\n--\n\n"
     "Add one constraint from a comparison, or from lhs, sense and rhs, and return its handle; a linear one\n"
     "becomes a Constr."},
    {"setObjective", method<Model_setObjective>, kKeywords,
     "setObjective($self, expr, sense=None)\n--\n\n"
     "Replace the objective by an expression. sense: ZVN.MINIMIZE, ZVN.MAXIMIZE, or None to leave ModelSense.\n\n"
     "Raises ZelvanError with ZVN.ERROR_NOT_IN_MODEL for a variable of another model or without index."},
    {"setObjectiveN", method<Model_setObjectiveN>, kKeywords,
     "setObjectiveN($self, expr, index, priority=0, weight=1.0, abstol=1e-6, reltol=0.0, name='')\n--\n\n"
     "Set objective number `index` of a model with several objectives, which are optimized by falling priority;\n"
     "objectives of equal priority are added up by weight. abstol, reltol: how far a lower priority may worsen it."},
    {"getObjective", method<Model_getObjective>, kKeywords,
     "getObjective($self, index=None)\n--\n\n"
     "The objective as of the last update, or objective number `index`, as an expression with one term for each\n"
     "variable of non-zero coefficient."},
    {"setPWLObj", method<Model_setPWLObj>, kKeywords,
     "setPWLObj($self, var, x, y)\n--\n\n"
     "Set a piecewise-linear objective term for a variable: the function through the points (x[i], y[i]), its\n"
     "first and last pieces continued. x must not decrease; two points of equal x make a jump.\n"
     "Raises ZelvanError for sequences of different length and points that the library refuses."},
    {"getPWLObj", method<Model_getPWLObj>, kKeywords,
     "getPWLObj($self, var)\n--\n\n"
     "The points of a variable's piecewise-linear objective term as list of (x, y) tuples; [] when it has none."},
    {nullptr, nullptr, 0, nullptr}};

}  // namespace zelvanpy
