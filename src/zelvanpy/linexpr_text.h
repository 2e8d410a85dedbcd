#pragma once
// Expressions as text.

#include "linexpr.h"

namespace zelvanpy {

py::object number_text(double value, char format, int precision, int flags);
// Appends a coefficient as it stands before names: nothing for 1.
void append_coefficient(py::list& pieces, double coeff);
// The name, or what stands for it in a variable that is pending or removed.
py::object var_text(Handle* var);
py::object joined(const py::list& pieces);
// e._asprettystring()
py::object linexpr_text(LinExpr* e);

}  // namespace zelvanpy
