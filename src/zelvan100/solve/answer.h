#pragma once
// The one place where every solve ends: a search whose answer is checked on the data that the user wrote, mended
// where that is possible, and otherwise not called what it isn't. docs/checks.md tells it to users.

#include "solve/repair.h"

namespace zelvan {

SolverResult checked_search(const Problem& problem, const Start& start, const Claim& claim, Context& context);

}  // namespace zelvan
