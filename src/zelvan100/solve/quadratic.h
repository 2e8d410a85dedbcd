#pragma once
// Convex quadratic objectives over linear rows.

#include "solve/search.h"

namespace zelvan {

// Finds the squares that the objective of the problem is a sum of, and tells the log what it is. Throws Error where
// there are none, or where the problem has what goes with no quadratic objective.
void recognize_objective(Problem& problem, Context& context);

// As search(), for a recognized quadratic objective: by the interior-point and active-set methods of HiGHS, whichever
// suits, until the optimality conditions hold. Optimal is said of nothing else. There is no basis.
SolverResult search_quadratic(const Problem& problem, Context& context);

}  // namespace zelvan
