// Arithmetic and comparison operators of `Var`.

#include <iterator>

#include "handle.h"

namespace zelvanpy {

PyType_Slot var_operator_slots[] = {{Py_tp_richcompare, nullptr}};
const int num_var_operator_slots = 0;

}  // namespace zelvanpy
