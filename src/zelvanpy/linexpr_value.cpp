// The value of an expression in the current solution, read in one call of the library where that gives the
// same as reading the variables one by one.

#include "linexpr_value.h"

#include <climits>
#include <limits>
#include <vector>

#include "extern.h"
#include "operand.h"
#include "pynames.h"

namespace zelvanpy {

namespace {

const Name kX("x");

// Whether `var.x` can only be the library's attribute.
bool reads_plainly(const Handle* var) {
    if (is_inert(var)) return true;
    if (Py_TYPE(reinterpret_cast<PyObject*>(const_cast<Handle*>(var))) != Var_Type) return false;
    return !checked(PyDict_Contains(var->dict, kX.get()));
}

bool in_one_model(const LinExpr* e) {
    if (e->size == 0 || e->size > INT_MAX) return false;
    const PyObject* cmodel = e->terms[0].var->cmodel;
    for (std::uint32_t i = 0; i < e->size; ++i) {
        const Handle* var = e->terms[i].var;
        if (var->cmodel != cmodel || var->cindex() < 0 || !reads_plainly(var)) return false;
    }
    return true;
}

double shown(double value) {
    constexpr double kInfinity = 1e100, kUndefined = 1e101;
    if (value == kUndefined) return value;
    if (value >= kInfinity) return std::numeric_limits<double>::infinity();
    return value <= -kInfinity ? -std::numeric_limits<double>::infinity() : value;
}

bool read_values(const LinExpr* e, std::vector<double>& values) {
    if (!in_one_model(e)) return false;
    std::vector<int> indices(e->size);
    for (std::uint32_t i = 0; i < e->size; ++i) indices[i] = e->terms[i].var->cindex();
    values.resize(e->size);
    ZVNmodel* model = model_pointer(e->terms[0].var->cmodel);
    return model && !ZVNgetdblattrlist(model, "X", static_cast<int>(e->size), indices.data(), values.data());
}

double value_by_attributes(LinExpr* e) {
    double sum = e->constant;
    // Reading an attribute may run a subclass's code, which may change the expression.
    for (std::uint32_t i = 0; i < e->size; ++i) {
        const double coeff = e->terms[i].coeff;
        const py::object var = borrow(reinterpret_cast<PyObject*>(e->terms[i].var));
        sum += as_double(steal(PyObject_GetAttr(var.ptr(), kX.get()))) * coeff;
    }
    return sum;
}

}  // namespace

double linexpr_value(LinExpr* e) {
    linexpr_flatten(e);
    std::vector<double> values;
    if (!read_values(e, values)) return value_by_attributes(e);
    double sum = e->constant;
    for (std::uint32_t i = 0; i < e->size; ++i) sum += shown(values[i]) * e->terms[i].coeff;
    return sum;
}

}  // namespace zelvanpy
