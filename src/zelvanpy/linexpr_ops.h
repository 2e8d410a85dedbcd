#pragma once
// Operators of linear expressions. Operands come in source order: either may be the LinExpr.

#include "linexpr.h"

namespace zelvanpy {

// e.__iadd__(operand), e.__isub__(operand), e.__imul__(operand): new references, to e or NotImplemented;
// __imul__ may also give another object.
PyObject* linexpr_iadd(py::handle e, py::handle operand);
PyObject* linexpr_isub(py::handle e, py::handle operand);
PyObject* linexpr_imul(py::handle e, py::handle operand);
// left * right by the rules of linear expressions, for operands of any kind
PyObject* linexpr_multiply(py::handle left, py::handle right);

// e.__rsub__(operand)
PyObject* linexpr_rsub(py::handle e, py::handle operand);
// Slots of LinExpr for operators and comparisons.
void append_linexpr_slots(std::vector<PyType_Slot>& slots);

}  // namespace zelvanpy
