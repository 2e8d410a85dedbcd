#pragma once

#include "solve/search.h"

namespace zelvan {

// Solves the LP that the session holds by its dual simplex and, in a thread of its own, by barrier. The
// one that ends first stops the other; the context's concurrent_winner becomes its number as parameter Method
// counts.
SolverResult run_concurrently(const Problem& problem, Context& context);

}  // namespace zelvan
