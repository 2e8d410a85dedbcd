#pragma once

#include "constclass.h"

namespace zelvanpy {

// Adds the status codes, which stand in ZVN as well.
void add_status_constants(PyTypeObject* type);

}  // namespace zelvanpy
