#pragma once
// Arrays of constraints.

#include "handle_array.h"

namespace zelvanpy {

extern PyTypeObject* MConstr_Type;
extern PyTypeObject* MQConstr_Type;

inline bool is_mconstr(py::handle h) { return PyObject_TypeCheck(h.ptr(), MConstr_Type); }
inline bool is_mqconstr(py::handle h) { return PyObject_TypeCheck(h.ptr(), MQConstr_Type); }

}  // namespace zelvanpy
