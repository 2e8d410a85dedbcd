#pragma once

#include <vector>

#include "pybase.h"

namespace zelvanpy {

// Slots of MVar for operators and comparisons.
const std::vector<PyType_Slot>& mvar_operator_slots();

}  // namespace zelvanpy
