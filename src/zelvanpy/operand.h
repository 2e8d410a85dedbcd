#pragma once
// What an operand of an operator or an argument of an expression is.

#include "quadexpr_memory.h"

namespace zelvanpy {

// What `<` and `>` of variables and expressions say.
inline constexpr char kNoStrictConstraints[] = "A constraint takes <=, >= or ==, there are no strict ones";

enum class Operand { kVar, kLinExpr, kScalar, kQuadExpr, kForeign };

// What linear expressions take as an operand, and what quadratic ones do.
constexpr bool is_linear(Operand kind) { return kind < Operand::kQuadExpr; }
constexpr bool is_known(Operand kind) { return kind < Operand::kForeign; }

namespace operand_detail {
Operand classify_other(py::handle operand, double& value);
}

// Exact types first; `value` is set for a scalar.
inline Operand classify(py::handle operand, double& value) {
    PyTypeObject* type = Py_TYPE(operand.ptr());
    if (type == Var_Type) return Operand::kVar;
    if (type == LinExpr_Type) return Operand::kLinExpr;
    if (type == &PyFloat_Type) {
        value = PyFloat_AS_DOUBLE(operand.ptr());
        return Operand::kScalar;
    }
    if (type == QuadExpr_Type) return Operand::kQuadExpr;
    return operand_detail::classify_other(operand, value);
}

}  // namespace zelvanpy
