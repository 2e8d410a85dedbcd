// The value of an expression in the current solution, read in one call of the library where that gives the
// same as reading the variables one by one.

#include "linexpr_value.h"

#include <climits>
#include <vector>

#include "pynames.h"
#include "pynumber.h"

namespace zelvanpy {

namespace {

const Name kX("x");

// Whether `var.x` can only be the library's attribute.
bool reads_plainly(const Handle* var) {
    if (is_inert(var)) return true;
    if (Py_TYPE(reinterpret_cast<PyObject*>(const_cast<Handle*>(var))) != Var_Type) return false;
    const py::object fields = borrow(var->dict);
    return !checked(PyDict_Contains(fields.ptr(), kX.get()));
}

// The columns of the terms, when all are live and of one model; none otherwise.
std::vector<int> columns_of(const LinExpr* e, const py::object& cmodel) {
    std::vector<int> columns;
    columns.reserve(e->size);
    for (std::uint32_t i = 0; i < e->size; ++i) {
        const Handle* var = e->terms[i].var;
        columns.push_back(var->cindex());
        if (var->cmodel != cmodel.ptr() || columns.back() < 0 || !reads_plainly(var)) return {};
    }
    return columns;
}

bool read_values(const LinExpr* e, std::vector<double>& values) {
    if (e->size == 0 || e->size > INT_MAX) return false;
    const py::object cmodel = borrow(e->terms[0].var->cmodel);
    const std::vector<int> columns = columns_of(e, cmodel);
    // Looking a name up among a variable's own fields may run the code of a key, which may change the expression.
    if (columns.empty() || columns.size() != e->size || e->tail) return false;
    values.resize(columns.size());
    ZVNmodel* model = model_pointer(cmodel);
    return model && !ZVNgetdblattrlist(model, "X", static_cast<int>(columns.size()), columns.data(), values.data());
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
    for (std::uint32_t i = 0; i < e->size; ++i) sum += python_double(values[i]) * e->terms[i].coeff;
    return sum;
}

}  // namespace zelvanpy
