#include "expr_value.h"

#include <climits>
#include <vector>

#include "linexpr.h"
#include "pynames.h"
#include "pynumber.h"
#include "quadexpr.h"

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

// The terms of a flat expression: its own, or copies where looking at a variable may run code that changes it.
template <class E>
class StableTerms {
public:
    using T = typename E::TermType;
    explicit StableTerms(const E* e) : begin_(e->terms), size_(e->size) {
        bool inert = true;
        for (std::uint32_t i = 0; i < size_; ++i) inert &= has_inert_variables(begin_[i]);
        if (inert) return;
        for (std::uint32_t i = 0; i < size_; ++i) copies_.append(begin_[i]);
        begin_ = copies_.terms().data();
    }
    const T* begin() const { return begin_; }
    const T* end() const { return begin_ + size_; }

private:
    TermBuffer<T> copies_;
    const T* begin_;
    std::uint32_t size_;
};

// The columns of the variables, when all are live and of one model; none otherwise.
template <class E>
std::vector<int> columns_of(const StableTerms<E>& terms, const py::object& cmodel) {
    std::vector<int> columns;
    columns.reserve(terms.end() - terms.begin());
    bool plain = true;
    for (const auto& term : terms)
        term.variables([&](const Handle* var) {
            columns.push_back(var->cindex());
            plain = plain && var->cmodel == cmodel.ptr() && columns.back() >= 0 && reads_plainly(var);
        });
    if (!plain) columns.clear();
    return columns;
}

Handle* first_variable(const Term& term) { return term.var; }
Handle* first_variable(const QuadTerm& term) { return term.var1; }

template <class E>
bool read_values(const StableTerms<E>& terms, std::vector<double>& values) {
    if (terms.begin() == terms.end()) return false;
    const py::object cmodel = borrow(first_variable(*terms.begin())->cmodel);
    const std::vector<int> columns = columns_of(terms, cmodel);
    if (columns.empty() || columns.size() > INT_MAX) return false;
    values.resize(columns.size());
    ZVNmodel* model = model_pointer(cmodel);
    return model && !ZVNgetdblattrlist(model, "X", static_cast<int>(columns.size()), columns.data(), values.data());
}

double read_value(Handle* var) {
    const py::object keep = borrow(reinterpret_cast<PyObject*>(var));
    return as_double(steal(PyObject_GetAttr(keep.ptr(), kX.get())));
}

template <class Read>
double term_value(const Term& term, Read read) {
    return read(term.var) * term.coeff;
}
template <class Read>
double term_value(const QuadTerm& term, Read read) {
    const double first = read(term.var1);
    return first * read(term.var2) * term.coeff;
}

template <class E>
double add_values(const E* e, double sum) {
    const StableTerms<E> terms(e);
    std::vector<double> values;
    if (read_values(terms, values)) {
        const double* next = values.data();
        for (const auto& term : terms) sum += term_value(term, [&](Handle*) { return python_double(*next++); });
        return sum;
    }
    TermBuffer<typename E::TermType> kept;  // reading one by one may run any code
    for (const auto& term : terms) kept.append(term);
    for (const auto& term : kept.terms()) sum += term_value(term, read_value);
    return sum;
}

}  // namespace

double linexpr_value(LinExpr* e) {
    linexpr_flatten(e);
    return add_values(e, e->constant);
}

double quadexpr_value(QuadExpr* e) {
    quadexpr_flatten(e);
    const py::object linear = borrow(as_result(linear_part(e)));
    const double sum = linexpr_value(as_linexpr(linear));
    quadexpr_flatten(e);  // reading a variable may run code that makes a chain of it
    return add_values(e, sum);
}

}  // namespace zelvanpy
