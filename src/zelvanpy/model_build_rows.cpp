#include "model_build_rows.h"

#include <cmath>

#include "pyargs.h"

namespace zelvanpy {

namespace {
const Name kNoName("");
}

bool is_empty(PyObject* name) { return !name || (PyUnicode_Check(name) && PyUnicode_GetLength(name) == 0); }

char sense_argument(PyObject* sense) { return letter_argument(sense, {nullptr, "sense"}, "'<', '>' or '='"); }

RowName::RowName(PyObject* name) {
    try {
        text_.emplace(is_empty(name) ? kNoName.get() : name);
    } catch (...) {
        translate_exception();
        refusal_.emplace();
    }
}

RowName::operator const char*() const {
    if (!text_) throw py::error_already_set(*refusal_);
    return *text_;
}

py::object add_linear_row(Model& self, py::object constr, LibraryTerms& terms, const Row& row, const char* name) {
    terms.clean();
    return add_object(self, Kind::kConstr, std::move(constr), [&](ZVNmodel* model) {
        return row.lower == -ZVN_INFINITY
                   ? ZVNaddconstr(model, terms.size(), terms.ind(), terms.val(), row.sense, row.upper, name)
                   : ZVNaddrangeconstr(model, terms.size(), terms.ind(), terms.val(), row.lower, row.upper, name);
    });
}

namespace {

// The same for a quadratic one, which has one side.
py::object add_quadratic_row(Model& self, py::object constr, LibraryTerms& terms, const LibraryQuadTerms& quad,
                             const Row& row, const char* name) {
    terms.clean();
    return add_object(self, Kind::kQConstr, std::move(constr), [&](ZVNmodel* model) {
        return ZVNaddqconstr(model, terms.size(), terms.ind(), terms.val(), quad.size(), quad.row.data(),
                             quad.col.data(), quad.val.data(), row.sense, row.upper, name);
    });
}

// One side of a row: a number, a variable, or an expression, flat.
class Side {
public:
    // Whether a side of a comparison is one of those that aren't left to the operators.
    static bool takes(py::handle operand) {
        PyTypeObject* const type = Py_TYPE(operand.ptr());
        if (type == &PyFloat_Type) return !std::isnan(PyFloat_AS_DOUBLE(operand.ptr()));
        return type == &PyLong_Type || type == Var_Type || type == LinExpr_Type || type == QuadExpr_Type;
    }
    explicit Side(py::handle operand) {
        if (is_var(operand)) {
            var_ = as_handle(operand);
        } else if (is_quadexpr(operand)) {
            quadratic_ = flat_quadexpr(as_quadexpr(operand));
            const py::object linear = borrow(as_result(linear_part(as_quadexpr(quadratic_))));
            linear_ = flat_copy(linear);
        } else if (is_linexpr(operand)) {
            linear_ = flat_copy(operand);
        } else {
            constant_ = checked_double(PyFloat_AsDouble(operand.ptr()));
        }
    }
    bool is_quadratic() const { return static_cast<bool>(quadratic_); }
    double constant() const { return linear_ ? as_linexpr(linear_)->constant : constant_; }
    void append(const Model& model, double mult, LibraryTerms& linear, LibraryQuadTerms& quadratic) const {
        if (var_) append_var(model, var_, mult, linear);
        if (linear_) append_terms(model, as_linexpr(linear_), mult, linear);
        if (quadratic_) append_terms(model, as_quadexpr(quadratic_), mult, quadratic);
    }

private:
    double constant_ = 0.0;
    Handle* var_ = nullptr;  // which the caller holds
    py::object linear_, quadratic_;
};

[[noreturn]] void refuse_expression(py::handle expr) {
    PyErr_Format(PyExc_TypeError, "A constraint takes variables, expressions and numbers, not %U",
                 shown_value(expr).ptr());
    raise_zelvan_from_set(0, kInvalid);
}

}  // namespace

py::object add_row(Model& self, py::handle expr, Row row, PyObject* name, PyObject* sense) {
    model_setup(self);
    py::object operand = borrow(expr);
    if (is_var(expr) || (!is_linexpr(expr) && !is_quadexpr(expr) && is_scalar(expr)))
        operand = steal(PyObject_CallFunctionObjArgs(reinterpret_cast<PyObject*>(LinExpr_Type), expr.ptr(), nullptr));
    if (!is_linexpr(operand) && !is_quadexpr(operand)) refuse_expression(operand);
    if (sense) row.sense = sense_argument(sense);
    const RowName text(name);
    py::object constr = new_member(self, is_quadexpr(operand) ? QConstr_Type : Constr_Type);
    const Side side(operand);
    row.upper -= side.constant();
    if (row.lower != -ZVN_INFINITY) row.lower -= side.constant();
    CallBuffer linear;
    LibraryQuadTerms quadratic;
    side.append(self, 1.0, *linear, quadratic);
    if (!side.is_quadratic()) return add_linear_row(self, std::move(constr), *linear, row, text);
    return add_quadratic_row(self, std::move(constr), *linear, quadratic, row, text);
}

bool add_difference(Model& self, TempConstr* constr, PyObject* name, py::object& result) {
    if (Py_TYPE(constr->lhs) != LinExpr_Type && Py_TYPE(constr->lhs) != QuadExpr_Type) return false;
    const py::object lhs = borrow(constr->lhs), rhs = borrow(constr->rhs);  // the next line runs code of subclasses
    model_setup(self);
    if (!Side::takes(rhs)) return false;
    const char sense = sense_letter(*constr);
    const RowName text(name);
    const bool is_quadratic = Py_TYPE(lhs.ptr()) == QuadExpr_Type || Py_TYPE(rhs.ptr()) == QuadExpr_Type;
    py::object handle = new_member(self, is_quadratic ? QConstr_Type : Constr_Type);
    const Side right(rhs), left(lhs);
    const Row row{sense, -ZVN_INFINITY, right.constant() - left.constant()};
    CallBuffer linear;
    LibraryQuadTerms quadratic;
    left.append(self, 1.0, *linear, quadratic);
    right.append(self, -1.0, *linear, quadratic);
    result = is_quadratic ? add_quadratic_row(self, std::move(handle), *linear, quadratic, row, text)
                          : add_linear_row(self, std::move(handle), *linear, row, text);
    return true;
}

}  // namespace zelvanpy
