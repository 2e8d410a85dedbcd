#include "linexpr_ops.h"

#include <cmath>

#include "expr_ops.h"
#include "linexpr_build.h"
#include "quadexpr.h"

namespace zelvanpy {

namespace {

struct LinearAlgebra {
    using Expr = LinExpr;
    static bool takes(Operand kind) { return is_linear(kind); }
    static LinExpr* from(py::handle operand) { return linexpr_from(operand); }
    static LinExpr* copy(LinExpr* e, std::size_t extra) { return linexpr_copy(e, extra); }
    static std::size_t growth(py::handle operand, Operand kind) {
        return kind == Operand::kLinExpr ? as_linexpr(operand)->size : kind == Operand::kVar;
    }
    static void add_any(LinExpr* e, py::handle operand, double mult) { linexpr_add_any(e, operand, mult); }
    static bool add_known(LinExpr* e, PyObject* operand) {
        return zelvanpy::add_known<grow_terms<LinExpr>>(e, operand);
    }
    static bool is_full(const LinExpr* e) { return is_full_block(e); }
    static void scale(LinExpr* e, double mult) { linexpr_scale(e, mult); }
    static PyObject* multiply(py::handle left, py::handle right) { return linexpr_multiply(left, right); }
    static void check_divisor(double divisor) {
        if (divisor == 0.0) raise(PyExc_ZeroDivisionError, "float division");
    }
};

// Flattens as size() does.
bool is_constant(py::handle operand, Operand kind) {
    if (kind != Operand::kLinExpr) return false;
    linexpr_flatten(as_linexpr(operand));
    return as_linexpr(operand)->size == 0;
}

PyObject* LinExpr_power(py::handle base, py::handle exponent, py::handle modulo) {
    double value;
    if (!modulo.is_none() || classify(exponent, value) != Operand::kScalar || value != 2.0) return not_implemented();
    return linexpr_multiply(base, base);
}

}  // namespace

PyObject* linexpr_multiply(py::handle left, py::handle right) {
    double left_value, right_value;
    const Operand right_kind = classify(right, right_value);
    if (!is_linear(right_kind)) return not_implemented();
    const Operand left_kind = classify(left, left_value);
    if (!is_linear(left_kind)) return not_implemented();
    if (left_kind == Operand::kScalar) return scaled_copy<LinearAlgebra>(right, left_value);
    if (is_constant(left, left_kind)) return scaled_copy<LinearAlgebra>(right, as_linexpr(left)->constant);
    if (is_constant(right, right_kind)) return scaled_copy<LinearAlgebra>(left, as_linexpr(right)->constant);
    if (right_kind == Operand::kScalar) return scaled_copy<LinearAlgebra>(left, right_value);
    return as_result(product_of_expressions(left, right));
}

PyObject* linexpr_iadd(py::handle self, py::handle operand) { return expr_iadd<LinearAlgebra>(self, operand); }
PyObject* linexpr_isub(py::handle self, py::handle operand) { return expr_isub<LinearAlgebra>(self, operand); }

PyObject* linexpr_imul(py::handle self, py::handle operand) {
    double value;
    const Operand kind = classify(operand, value);
    if (!is_linear(kind)) return not_implemented();
    if (kind != Operand::kScalar || !std::isfinite(value)) return linexpr_multiply(self, operand);
    linexpr_scale(as_linexpr(self), value);
    return self.inc_ref().ptr();
}

PyObject* linexpr_rsub(py::handle self, py::handle operand) { return expr_rsub<LinearAlgebra>(self, operand); }

void append_linexpr_slots(std::vector<PyType_Slot>& slots) {
    append_operator_slots<LinearAlgebra>(slots);
    slots.push_back({Py_nb_power, slot<LinExpr_power>()});
    slots.push_back({Py_nb_inplace_multiply, slot<linexpr_imul>()});
}

}  // namespace zelvanpy
