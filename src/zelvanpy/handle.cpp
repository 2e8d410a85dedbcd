#include "handle.h"

#include "pytype.h"

namespace zelvanpy {

PyTypeObject* Var_Type;
PyTypeObject* Constr_Type;
PyTypeObject* SOS_Type;
PyTypeObject* QConstr_Type;
PyTypeObject* GenConstr_Type;
PyTypeObject* Model_Type;

const HandleKind handle_kinds[5] = {
    {&Var_Type, Kind::kVar, "zelvanpy.Var", "Var", "_colno", "NumVars",
     "Handle of a variable of a model.\n\n"
     "Made by Model.addVar, Model.addVars and Model.getVars only. Attributes of the variable (x.LB, x.X, ...) are read "
     "and written as attributes of the handle; arithmetic and comparisons build expressions and constraints."},
    {&Constr_Type, Kind::kConstr, "zelvanpy.Constr", "Constr", "_rowno", "NumConstrs",
     "Handle of a linear constraint of a model.\n\n"
     "Made by Model.addConstr and its kin, and by Model.getConstrs only. Attributes of the constraint (c.RHS, c.Pi, "
     "...) are read and written as attributes of the handle."},
    {&SOS_Type, Kind::kSos, "zelvanpy.SOS", "SOS", "_sosno", "NumSOS",
     "Handle of a special ordered set of a model, made by the model only."},
    {&QConstr_Type, Kind::kQConstr, "zelvanpy.QConstr", "QConstr", "_qconstrno", "NumQConstrs",
     "Handle of a quadratic constraint of a model, made by the model only."},
    {&GenConstr_Type, Kind::kGenConstr, "zelvanpy.GenConstr", "GenConstr", "_genconstrno", "NumGenConstrs",
     "Handle of a general constraint of a model, made by the model only."},
};

const HandleKind* find_handle_kind(PyObject* object) {
    PyTypeObject* type = Py_TYPE(object);
    for (const HandleKind& kind : handle_kinds)
        if (type == *kind.type) return &kind;
    for (const HandleKind& kind : handle_kinds)
        if (*kind.type && PyType_IsSubtype(type, *kind.type)) return &kind;
    return nullptr;
}

PyObject* new_handle(PyTypeObject* type, PyObject* cmodel, int index) {
    py::object kept = borrow(cmodel);  // making an object may run code that disposes of the model
    Handle* handle = PyObject_GC_New(Handle, type);
    if (!handle) throw PythonError{};
    own_type(type);
    handle->cmodel = kept.release().ptr();
    handle->dict = nullptr;
    handle->weakrefs = nullptr;
    handle->index = index;
    return reinterpret_cast<PyObject*>(handle);
}

int library_count(const Handle& handle, Kind kind) {
    int count = 0;
    ZVNgetintattr(model_pointer(handle.cmodel), handle_kind(kind).count_attr, &count);
    return count;
}

}  // namespace zelvanpy
