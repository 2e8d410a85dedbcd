#pragma once

#include "quadexpr.h"

namespace zelvanpy {

// e.__rsub__(operand)
PyObject* quadexpr_rsub(py::handle e, py::handle operand);
// Slots of QuadExpr for operators and comparisons.
void append_quadexpr_slots(std::vector<PyType_Slot>& slots);

}  // namespace zelvanpy
