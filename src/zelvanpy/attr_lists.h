#pragma once
// Attributes of many objects at once.

#include <vector>

#include "attrutil.h"

namespace zelvanpy {

// Values for a list of indices; throws ZelvanError(code, object) when the library refuses.
py::object get_attribute_list(py::handle object, const AttrInfo& attribute, const std::vector<int>& indices);
// One value for all indices when `broadcast`, otherwise values[i] for indices[i].
void set_attribute_list(py::handle object, const AttrInfo& attribute, const std::vector<int>& indices,
                        py::handle values, bool broadcast);
// The integers of any sequence.
std::vector<int> index_vector(py::handle sequence);

}  // namespace zelvanpy
