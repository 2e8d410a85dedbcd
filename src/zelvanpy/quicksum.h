#pragma once
// Sums of anything that adds up to an expression.

#include "pybase.h"

namespace zelvanpy {

// result += term with the rules of quicksum; `result` may become another object.
py::object accumulate(py::object result, py::handle term);
py::object quicksum(py::handle terms);

}  // namespace zelvanpy
