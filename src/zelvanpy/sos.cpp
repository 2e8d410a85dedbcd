// `SOS`: the handle of a special ordered set, which has no name and shows its number.

#include "handle_type.h"

namespace zelvanpy {

void init_sos(py::module_& module) {
    HandleExtras extras;
    extras.slots = {{Py_tp_repr, slot<numbered_repr>()}};
    make_handle_type(module, Kind::kSos, std::move(extras));
}

}  // namespace zelvanpy
