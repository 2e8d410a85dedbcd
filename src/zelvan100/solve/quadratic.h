#pragma once
// Convex quadratic objectives over linear rows.

#include "solve/search.h"

namespace zelvan {

// Finds the squares that the objective of the problem is a sum of, and tells the log what it is. The answer is whether
// there are any: a search for integers, or with cones, takes no quadratic objective.
bool recognize_objective(Problem& problem, Context& context);

// As search(), for a recognized quadratic objective: by the interior-point and active-set methods of HiGHS, whichever
// suits, until the optimality conditions hold. Optimal is said of nothing else. There is no basis.
SolverResult search_quadratic(const Problem& problem, Context& context);

}  // namespace zelvan
