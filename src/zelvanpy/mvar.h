#pragma once
// Arrays of variables.

#include "handle_array.h"
#include "matrix.h"

namespace zelvanpy {

// Takes over an array of Var that nobody else changes.
inline py::object new_mvar(py::object array) { return new_handle_array(MVar_Type, std::move(array)); }
// With no dimension.
inline py::object mvar_of(py::handle var) { return new_mvar(object_scalar(var)); }
inline Shape mvar_shape(py::handle mvar) { return shape_of(array_of(mvar)); }

}  // namespace zelvanpy
