#pragma once
// Operators and comparisons of linear expressions. Operands come in source order: either may be the LinExpr.

#include "linexpr.h"

namespace zelvanpy {

// e.__iadd__(operand), e.__isub__(operand), e.__imul__(operand): new references, to e or NotImplemented;
// __imul__ may also give another object.
PyObject* linexpr_iadd(py::handle e, py::handle operand);
PyObject* linexpr_isub(py::handle e, py::handle operand);
PyObject* linexpr_imul(py::handle e, py::handle operand);
// left + right, left * right, where one of them is a LinExpr.
PyObject* linexpr_plus(py::handle left, py::handle right);
PyObject* linexpr_multiply(py::handle left, py::handle right);

// The product of two expressions of which neither is constant.
py::object product_of_expressions(py::handle left, py::handle right);

// Slots of LinExpr for operators and comparisons.
extern PyType_Slot linexpr_operator_slots[];
extern const int num_linexpr_operator_slots;

}  // namespace zelvanpy
