#pragma once

#include "linexpr.h"

namespace zelvanpy {

// e.getValue(): the constant plus each variable's X times its coefficient, in order.
double linexpr_value(LinExpr* e);

}  // namespace zelvanpy
