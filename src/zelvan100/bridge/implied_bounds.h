#pragma once

#include "solve/problem.h"

namespace zelvan {

struct ColumnBounds {
    std::vector<double> lb, ub;
};

// Bounds of all columns as the rows imply them, never looser than the columns' own: what a row leaves for
// a column when all others are at their best, loosened by what rounding may have taken. A few passes over the matrix.
// In a problem without feasible point the two bounds of a column may cross.
ColumnBounds implied_bounds(const Problem& problem);

}  // namespace zelvan
