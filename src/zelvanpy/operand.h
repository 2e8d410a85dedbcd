#pragma once
// What an operand of an operator or an argument of an expression is.

#include "linexpr_memory.h"

namespace zelvanpy {

// What `<` and `>` of variables and expressions say.
inline constexpr char kNoStrictConstraints[] = "A constraint takes <=, >= or ==, there are no strict ones";

enum class Operand { kVar, kLinExpr, kScalar, kForeign };

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
    return operand_detail::classify_other(operand, value);
}

}  // namespace zelvanpy
