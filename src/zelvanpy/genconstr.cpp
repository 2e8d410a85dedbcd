// `GenConstr`: the handle of a general constraint, which has no name and shows its number.

#include "handle_type.h"

namespace zelvanpy {

void init_genconstr(py::module_& module) {
    HandleExtras extras;
    extras.slots = {{Py_tp_repr, slot<numbered_repr>()}};
    make_handle_type(module, Kind::kGenConstr, std::move(extras));
}

}  // namespace zelvanpy
