#pragma once
// The directions in which a problem goes on for ever: those that keep every finite bound and side. The data of a
// problem is rational, so one that improves the objective makes a MIP with a feasible point unbounded, as it does an
// LP.

#include <vector>

#include "solve/search.h"

namespace zelvan {

// Such a direction that improves the objective, over the columns of the problem, largest element 1. It was found by
// one LP over the box [-1, 1] and holds in every row but for rounding. Empty when there is none.
std::vector<double> improving_direction(const Problem& problem, Context& context);
// The same where HiGHS calls the problem unbounded, whose own ray is a candidate too: rounding errors as an LP of some
// size makes them don't count.
std::vector<double> confirmed_direction(const Problem& problem, Context& context);

}  // namespace zelvan
