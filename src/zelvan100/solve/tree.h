#pragma once
// Branch and bound on the disjunctions of a problem, of which HiGHS has no notion.

#include "solve/search.h"

namespace zelvan {

// As search(), for a problem with disjunctions. A node is the problem without them and with narrower bounds; where its
// solution violates one, its two parts are the next nodes, the one with the best bound first. Limits, the incumbent and
// what the monitor is told are those of the whole.
SolverResult search_tree(const Problem& problem, const Start& start, Context& context);

}  // namespace zelvan
