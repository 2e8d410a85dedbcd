#include "var.h"

#include "attrutil.h"
#include "exception.h"
#include "handle_type.h"

namespace zelvanpy {

namespace {

// Whether the library has no such column yet, or the model is gone.
bool awaits_update(const Handle& self) { return self.index == -1 || self.cindex() >= library_count(self, Kind::kVar); }

}  // namespace

SafeName safe_name(Handle* var) {
    const bool marked = var->index < -2;
    if (awaits_update(*var)) return {py::str("*Awaiting Model Update*"), true, marked};
    if (var->index == -2) return {py::str("*Removed*"), false, true};
    return {name_attribute(*var, "VarName"), marked, marked};
}

namespace {

py::object Var_safename(Handle& self) {
    const SafeName name = safe_name(&self);
    return py::make_tuple(name.text, name.pending, name.removed);
}

PyObject* Var_numcols(Handle& self) { return PyLong_FromLong(library_count(self, Kind::kVar)); }

Py_hash_t Var_hash(Handle& self) {
    if (self.index < -1) raise_zelvan(0, "Variable was removed from the model");
    if (awaits_update(self)) raise_zelvan(0, "Variable has not yet been added to the model");
    return self.index;  // as hash(int) has it
}

// " (value ...)" when there is a solution that holds one, otherwise "".
py::object value_suffix(Handle& self) {
    int solutions = 0;
    if (ZVNgetintattr(model_pointer(self.cmodel), "SolCount", &solutions) || solutions <= 0) return py::str("");
    try {
        const py::object value = get_attribute(reinterpret_cast<PyObject*>(&self), py::str("X"));
        return steal(PyUnicode_FromFormat(" (value %S)", value.ptr()));
    } catch (...) {
        translate_exception();
        PyErr_Clear();
        return py::str("");
    }
}

PyObject* Var_repr(Handle& self) {
    const SafeName name = safe_name(&self);
    if (name.pending != name.removed) return PyUnicode_FromFormat("<zelvan.Var %U>", name.text.ptr());
    const py::object suffix = name.removed ? py::str(" (Removed)") : value_suffix(self);
    return PyUnicode_FromFormat("<zelvan.Var %U%U>", name.text.ptr(), suffix.ptr());
}

}  // namespace

void init_var(py::module_& module) {
    HandleExtras extras;
    extras.slots = {{Py_tp_repr, slot<Var_repr>()}, {Py_tp_hash, slot<Var_hash>()}};
    extras.slots.insert(extras.slots.end(), var_operator_slots, var_operator_slots + num_var_operator_slots);
    extras.methods = {
        same_as_method(),
        {"__numcols__", method<Var_numcols>, METH_NOARGS,
         "__numcols__($self)\n--\n\nNumber of variables of the library's model (int), 0 without a model."},
        {"_safename", method<Var_safename>, METH_NOARGS,
         "_safename($self)\n--\n\n"
         "Tuple (text, pending, removed): the name, or what stands for it in a variable that has none now."},
    };
    extras.methods.insert(extras.methods.end(), var_operator_methods, var_operator_methods + num_var_operator_methods);
    extras.properties = {index_property()};
    make_handle_type(module, Kind::kVar, std::move(extras));
}

}  // namespace zelvanpy
