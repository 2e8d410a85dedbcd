#pragma once
// Heap types from a PyType_Spec, and free lists for their instances. The differences between CPython 3.7
// and 3.13 that concern types are settled here and nowhere else.

#include <cstddef>

#include "pybase.h"

namespace zelvanpy {

// Creates a type, names its module "zelvanpy" and adds it to the module under the last part of its name.
// `bases` is null, a type or a tuple of types. Returns a reference that lives as long as the process.
PyTypeObject* make_type(py::module_& module, PyType_Spec& spec, PyObject* bases = nullptr);

// tp_dealloc of type `own` ends here, after the memory was given back; `type` is the type of the instance.
// Before 3.8 the deallocator of a Python subclass gave the reference to the subclass back by itself.
inline void release_type(PyTypeObject* type, [[maybe_unused]] PyTypeObject* own) {
#if PY_VERSION_HEX < 0x03080000
    if (type != own) return;
#endif
    Py_DECREF(type);
}
// The end of a deallocator of type `own`.
inline void free_instance(PyObject* self, PyTypeObject* own) {
    PyTypeObject* const type = Py_TYPE(self);
    type->tp_free(self);
    release_type(type, own);
}
// An instance made by PyObject_New or PyObject_GC_New owns its type from 3.8 on; before, it is taken here.
inline void own_type([[maybe_unused]] PyTypeObject* type) {
#if PY_VERSION_HEX < 0x03080000
    Py_INCREF(type);
#endif
}
// An object from a free list lives again; there it kept its reference to the type.
inline void revive(PyObject* object) { _Py_NewReference(object); }
// tp_traverse of a heap type visits the type from 3.9 on.
inline int visit_type([[maybe_unused]] PyObject* self, [[maybe_unused]] visitproc visit, [[maybe_unused]] void* arg) {
#if PY_VERSION_HEX >= 0x03090000
    Py_VISIT(Py_TYPE(self));
#endif
    return 0;
}

// Entries of a type's tables: where an instance keeps its own attributes and its weak references.
constexpr PyMemberDef dict_at(Py_ssize_t offset) { return {"__dictoffset__", T_PYSSIZET, offset, READONLY, nullptr}; }
constexpr PyMemberDef weakrefs_at(Py_ssize_t offset) {
    return {"__weaklistoffset__", T_PYSSIZET, offset, READONLY, nullptr};
}
constexpr PyGetSetDef dict_property(const char* doc = nullptr) {
    return {"__dict__", PyObject_GenericGetDict, PyObject_GenericSetDict, doc, nullptr};
}

// A subclass of `own` made in Python would find + by the methods __add__ and __radd__, and `x + s` with s of the
// subclass would come out as `s + x`, because __radd__ is a method of its own. Unless the subclass has such methods
// itself, it gets the operators of `own`.
void inherit_operators(PyTypeObject* type, PyTypeObject* own);

// numpy's scalars then leave `2.0 * x` and `1.0 <= x` to the operators of the class, while its arrays go on
// cell by cell: their priority is 0, that of scalars -1000000.
void prefer_to_numpy_scalars(PyTypeObject* type);

}  // namespace zelvanpy
