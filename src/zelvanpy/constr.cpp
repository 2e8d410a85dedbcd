// `Constr`: what the handle of a linear constraint has besides the shared parts.

#include "handle_type.h"

namespace zelvanpy {

namespace {

PyObject* Constr_numrows(Handle& self) { return PyLong_FromLong(library_count(self, Kind::kConstr)); }

PyObject* Constr_repr(Handle& self) {
    if (self.index == -2) return PyUnicode_FromString("<zelvan.Constr *Removed*>");
    const bool pending = self.index == -1 || self.cindex() >= library_count(self, Kind::kConstr);
    const py::object name = pending ? py::str("*Awaiting Model Update*") : name_attribute(self, "ConstrName");
    return PyUnicode_FromFormat("<zelvan.Constr %U%s>", name.ptr(), self.index < -2 ? " (Removed)" : "");
}

}  // namespace

void init_constr(py::module_& module) {
    HandleExtras extras;
    extras.slots = {{Py_tp_repr, slot<Constr_repr>()}};
    extras.methods = {
        same_as_method(),
        {"__numrows__", method<Constr_numrows>, METH_NOARGS,
         "__numrows__($self)\n--\n\nNumber of linear constraints of the library's model (int), 0 without a model."},
    };
    extras.properties = {index_property()};
    make_handle_type(module, Kind::kConstr, std::move(extras));
}

}  // namespace zelvanpy
