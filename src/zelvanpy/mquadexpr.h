#pragma once
// Arrays of quadratic expressions, as products of variables and linear expressions make them.

#include <vector>

#include "mlinexpr.h"

namespace zelvanpy {

// x' Q y in the only cell of a compact expression.
struct QuadPart {
    SharedVars left;
    SharedRows rows;
    SharedVars right;
};

// Whether a compact quadratic expression can have the shape: at most one cell.
bool mquadexpr_allows_compact(const Shape& shape);
py::object mquadexpr_zeros(const Shape& shape);
// The linear part, which is an MLinExpr, is taken over.
py::object mquadexpr_compact(std::vector<QuadPart> parts, py::object ndle);
py::object mquadexpr_from_mlinexpr(py::handle mlinexpr);
// Takes over an array of cells that are LinExpr or QuadExpr.
py::object mquadexpr_from_cells(py::object mixed);
// Elementwise product of two MVars.
py::object mquadexpr_from_mvars(py::handle left, py::handle right);

}  // namespace zelvanpy
