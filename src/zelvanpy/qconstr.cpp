// `QConstr`: what the handle of a quadratic constraint has besides the shared parts.

#include "handle_type.h"

namespace zelvanpy {

namespace {

PyObject* QConstr_repr(Handle& self) {
    if (self.index == -1) return PyUnicode_FromString("<zelvan.QConstr Not Yet Added>");
    if (self.index == -2) return PyUnicode_FromString("<zelvan.QConstr Deleted>");
    return PyUnicode_FromFormat("<zelvan.QConstr %U%s>", name_attribute(self, "QCName").ptr(),
                                self.index < -2 ? " (Deleted)" : "");
}

}  // namespace

void init_qconstr(py::module_& module) {
    HandleExtras extras;
    extras.slots = {{Py_tp_repr, slot<QConstr_repr>()}};
    make_handle_type(module, Kind::kQConstr, std::move(extras));
}

}  // namespace zelvanpy
