// Operators of quadratic expressions. Operands come in source order: either may be the QuadExpr.

#include "quadexpr_ops.h"

#include "expr_ops.h"
#include "quadexpr_build.h"

namespace zelvanpy {

namespace {

PyObject* quadexpr_multiply(py::handle left, py::handle right);

struct QuadraticAlgebra {
    using Expr = QuadExpr;
    static bool takes(Operand kind) { return is_known(kind); }
    static QuadExpr* from(py::handle operand) { return quadexpr_from(operand); }
    static QuadExpr* copy(QuadExpr* e, std::size_t extra) { return quadexpr_copy(e, extra); }
    static std::size_t growth(py::handle operand, Operand kind) {
        return kind == Operand::kQuadExpr ? as_quadexpr(operand)->size : 0;
    }
    static void add_any(QuadExpr* e, py::handle operand, double mult) { quadexpr_add_any(e, operand, mult); }
    static bool add_known(QuadExpr* e, PyObject* operand) {
        return zelvanpy::add_known<grow_terms<QuadExpr>, grow_terms<LinExpr>>(e, operand);
    }
    static bool is_full(const QuadExpr* e) { return is_full_block(e) || (e->lin && is_full_block(e->lin)); }
    static void scale(QuadExpr* e, double mult) { quadexpr_scale(e, mult); }
    static PyObject* multiply(py::handle left, py::handle right) { return quadexpr_multiply(left, right); }
    static void check_divisor(double divisor) {
        if (divisor == 0.0) raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT, kNoDivisor);
    }
};

PyObject* quadexpr_multiply(py::handle left, py::handle right) {
    double left_value, right_value;
    const Operand right_kind = classify(right, right_value), left_kind = classify(left, left_value);
    if (!is_known(right_kind) || !is_known(left_kind)) return not_implemented();
    if (left_kind == Operand::kScalar) return scaled_copy<QuadraticAlgebra>(right, left_value);
    const py::object product = owned(quadexpr_from(left));
    quadexpr_multiply_any(as_quadexpr(product), right);
    return product.inc_ref().ptr();
}

PyObject* quadexpr_imul(py::handle self, py::handle operand) {
    double value;
    if (!is_known(classify(operand, value))) return not_implemented();
    quadexpr_multiply_any(as_quadexpr(self), operand);
    return self.inc_ref().ptr();
}

}  // namespace

PyObject* quadexpr_rsub(py::handle self, py::handle operand) { return expr_rsub<QuadraticAlgebra>(self, operand); }

void append_quadexpr_slots(std::vector<PyType_Slot>& slots) {
    append_operator_slots<QuadraticAlgebra>(slots);
    slots.push_back({Py_nb_inplace_multiply, slot<quadexpr_imul>()});
}

}  // namespace zelvanpy
