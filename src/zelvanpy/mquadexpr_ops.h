#pragma once
// Operators, items and values of arrays of quadratic expressions.

#include "mquadexpr.h"

namespace zelvanpy {

// New references; NotImplemented for operands that they don't know.
py::object mquadexpr_plus(MQuadExpr& self, py::handle other);
py::object mquadexpr_iplus(MQuadExpr& self, py::handle other);
py::object mquadexpr_times(MQuadExpr& self, py::handle other);
py::object mquadexpr_itimes(MQuadExpr& self, py::handle other);
// self @ numbers, or numbers @ self
py::object mquadexpr_matmul(MQuadExpr& self, py::handle numbers, bool is_left);

py::object mquadexpr_item(MQuadExpr& self);
py::object mquadexpr_getitem(MQuadExpr& self, py::handle index);
void mquadexpr_setitem(MQuadExpr& self, py::handle index, py::handle value);
py::object mquadexpr_sum(MQuadExpr& self, py::handle axis);
void mquadexpr_clear(MQuadExpr& self);
void mquadexpr_flatten(MQuadExpr& self);
void mquadexpr_normalize(MQuadExpr& self);
py::object mquadexpr_values(MQuadExpr& self);
py::object mquadexpr_repr(MQuadExpr& self);

}  // namespace zelvanpy
