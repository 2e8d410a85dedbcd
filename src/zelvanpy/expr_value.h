#pragma once

#include "quadexpr_memory.h"

namespace zelvanpy {

// e.getValue(): the constant plus each term's value in the current solution, in order. The variables are read in one
// call of the library where that gives the same as reading them one by one.
double linexpr_value(LinExpr* e);
double quadexpr_value(QuadExpr* e);

}  // namespace zelvanpy
