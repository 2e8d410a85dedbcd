#pragma once

#include "solve/run.h"

namespace zelvan {

// Solves the LP that the session holds by its dual simplex and, in a thread of its own, by barrier. The
// one that ends first stops the other; `winner` receives its number as parameter Method counts.
SolverResult run_concurrently(HighsSession& session, const Problem& problem, Monitor& monitor,
                              const ParamValues& params, int& winner);

}  // namespace zelvan
