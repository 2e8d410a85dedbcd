#pragma once

#include "constclass.h"

namespace zelvanpy {

// Adds the status codes, which stand in ZVN as well.
void add_status_constants(PyTypeObject* type);
// "OPTIMAL" for 2; "" for what is no status.
const char* status_name(int status);

}  // namespace zelvanpy
