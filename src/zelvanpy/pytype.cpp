#include "pytype.h"

#include <cstring>

#include "pynames.h"

namespace zelvanpy {

namespace {

constexpr const char* kDictOffset = "__dictoffset__";
constexpr const char* kWeakListOffset = "__weaklistoffset__";

#if PY_VERSION_HEX < 0x03090000
// Before 3.9 the table of members couldn't give the places of the dictionary and of weak references.
void take_offsets(PyTypeObject* type, const PyMemberDef* members) {
    for (const PyMemberDef* member = members; member && member->name; ++member) {
        if (std::strcmp(member->name, kDictOffset) == 0) type->tp_dictoffset = member->offset;
        if (std::strcmp(member->name, kWeakListOffset) == 0) type->tp_weaklistoffset = member->offset;
    }
}
#endif

// These entries of the table of members aren't fields: dir() of an instance needn't show them.
void hide_offsets(PyTypeObject* type) {
    for (const char* name : {kDictOffset, kWeakListOffset})
        if (PyDict_GetItemString(type->tp_dict, name)) checked(PyDict_DelItemString(type->tp_dict, name));
    PyType_Modified(type);
}

}  // namespace

PyTypeObject* make_type(py::module_& module, PyType_Spec& spec, PyObject* bases) {
    py::object base_tuple;
    if (bases) base_tuple = PyTuple_Check(bases) ? borrow(bases) : steal(PyTuple_Pack(1, bases));
    py::object type = steal(PyType_FromSpecWithBases(&spec, base_tuple.ptr()));
    auto* created = reinterpret_cast<PyTypeObject*>(type.ptr());
#if PY_VERSION_HEX < 0x03090000
    take_offsets(created, created->tp_members);
#endif
    hide_offsets(created);
    const char* dot = std::strrchr(spec.name, '.');
    module.add_object(dot ? dot + 1 : spec.name, type);
    return reinterpret_cast<PyTypeObject*>(type.release().ptr());
}

void inherit_operators(PyTypeObject* type, PyTypeObject* own) {
    static const struct {
        Name method, reflected;
        binaryfunc PyNumberMethods::* slot;
    } kOperators[] = {{Name("__add__"), Name("__radd__"), &PyNumberMethods::nb_add},
                      {Name("__sub__"), Name("__rsub__"), &PyNumberMethods::nb_subtract},
                      {Name("__mul__"), Name("__rmul__"), &PyNumberMethods::nb_multiply}};
    const auto inherits = [&](const Name& name) {
        return _PyType_Lookup(type, name.get()) == _PyType_Lookup(own, name.get());
    };
    for (const auto& op : kOperators)
        if (inherits(op.method) && inherits(op.reflected)) type->tp_as_number->*op.slot = own->tp_as_number->*op.slot;
}

void prefer_to_numpy_scalars(PyTypeObject* type) {
    const py::object priority = steal(PyFloat_FromDouble(-1.0));
    checked(PyObject_SetAttrString(reinterpret_cast<PyObject*>(type), "__array_priority__", priority.ptr()));
}

}  // namespace zelvanpy
