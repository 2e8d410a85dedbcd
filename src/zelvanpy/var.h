#pragma once
// `Var`: what the handle of a variable has besides the shared parts. Its operators are in var_arith.cpp.

#include "handle.h"

namespace zelvanpy {

// What a Var shows in expressions: name and flags as _safename() gives them.
struct SafeName {
    py::object text;
    bool pending, removed;
};
SafeName safe_name(Handle* var);

// Operator and comparison slots and the methods that go with them, from var_arith.cpp.
extern PyType_Slot var_operator_slots[];
extern const int num_var_operator_slots;
extern PyMethodDef var_operator_methods[];
extern const int num_var_operator_methods;

}  // namespace zelvanpy
