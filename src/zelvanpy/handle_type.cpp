#include "handle_type.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "attrutil.h"
#include "dormant.h"
#include "pyargs.h"
#include "pytype.h"

namespace zelvanpy {

py::object name_attribute(Handle& handle, const char* attribute) {
    return get_attribute(py::handle(reinterpret_cast<PyObject*>(&handle)), py::str(attribute));
}

PyObject* numbered_repr(Handle& handle) {
    const char* name = find_handle_kind(reinterpret_cast<PyObject*>(&handle))->name;
    if (handle.index == -1) return PyUnicode_FromFormat("<zelvan.%s *Awaiting Model Update*>", name);
    if (handle.index == -2) return PyUnicode_FromFormat("<zelvan.%s *Removed*>", name);
    return PyUnicode_FromFormat("<zelvan.%s %d%s>", name, handle.cindex(), handle.index < -2 ? " (Removed)" : "");
}

namespace {

const HandleKind& kind_of(Handle& self) { return *find_handle_kind(reinterpret_cast<PyObject*>(&self)); }
py::handle object_of(Handle& self) { return reinterpret_cast<PyObject*>(&self); }

// --- life

PyObject* handle_new(PyTypeObject* type, py::handle, py::handle) {
    if (type != Var_Type && PyType_IsSubtype(type, Var_Type)) inherit_operators(type, Var_Type);
    py::object object = steal(type->tp_alloc(type, 0));
    Handle* self = as_handle(object);
    self->cmodel = none().release().ptr();
    self->index = -1;
    // Tracked again when a field is stored, as in new_handle.
    if (type == *find_handle_kind(object.ptr())->type) PyObject_GC_UnTrack(object.ptr());
    return object.release().ptr();
}

void handle_init(Handle& self, PyObject* args, PyObject* kwargs) {
    static const std::vector<Signature<2>> signatures = [] {
        std::vector<Signature<2>> made;
        for (const HandleKind& kind : handle_kinds)
            made.push_back({"__init__", 2, {Name("cmodel"), Name(kind.index_field + 1)}});
        return made;
    }();
    const char* index_keyword = kind_of(self).index_field + 1;
    const auto [cmodel, index] = signatures[&kind_of(self) - handle_kinds].parse(args, kwargs);
    if (cmodel != Py_None && !PyCapsule_CheckExact(cmodel)) {
        PyErr_Format(PyExc_TypeError, "cmodel must be the capsule of a model or None, not %.200s",
                     Py_TYPE(cmodel)->tp_name);
        throw PythonError{};
    }
    const int value = to_int(index, index_keyword);
    Py_INCREF(cmodel);
    Py_XSETREF(self.cmodel, cmodel);
    self.index = value;
}

int handle_traverse(PyObject* object, visitproc visit, void* arg) {
    Handle* self = as_handle(object);
    Py_VISIT(self->cmodel);
    Py_VISIT(self->dict);
    return visit_type(object, visit, arg);
}

int handle_clear(PyObject* object) {
    // The dict stays: that the handle has one tells that it is tracked.
    if (PyObject* dict = as_handle(object)->dict) PyDict_Clear(dict);
    return 0;
}

void handle_dealloc(PyObject* object) {
    Handle* self = as_handle(object);
    PyObject_GC_UnTrack(object);
    if (self->weakrefs) PyObject_ClearWeakRefs(object);
    Py_XDECREF(self->dict);
    Py_XDECREF(self->cmodel);
    PyTypeObject* own = *find_handle_kind(object)->type;
    free_instance(object, own);
}

// --- attributes

[[noreturn]] void raise_read_only(Handle& self, py::handle name) {
    PyErr_Format(PyExc_AttributeError, "'%s' object attribute '%U' is read-only", kind_of(self).full_name, name.ptr());
    throw PythonError{};
}

PyObject* handle_getattro(PyObject* object, PyObject* name) {
    Handle& self = *as_handle(object);
    if (PyObject* value = stored_attribute(object, self.dict, name)) return value;
    if (is_underscored(name)) raise_no_attribute(object, name);
    const HandleKind& kind = kind_of(self);
    if (Py_TYPE(object) == *kind.type) return get_handle_attribute(self, kind, name);
    static const Name get_attr("getAttr");
    return PyObject_CallMethodObjArgs(object, get_attr.get(), name, nullptr);
}

void store_field(Handle& self, PyObject* name, PyObject* value) {
    static const Name cmodel("_cmodel");
    if (cmodel.is(name) || PyUnicode_CompareWithASCIIString(name, kind_of(self).index_field) == 0)
        raise_read_only(self, name);
    py::object fields = self.dict ? py::object() : steal(PyDict_New());
    if (!self.dict) {  // asked again: making the dict may have run code that stored a field
        self.dict = fields.release().ptr();
        // Only now can the handle be part of a cycle. Instances of subclasses are tracked from the start.
        if (Py_TYPE(object_of(self).ptr()) == *kind_of(self).type) PyObject_GC_Track(object_of(self).ptr());
        handle_gained_dict();
    }
    checked(PyDict_SetItem(self.dict, name, value));
}

void delete_field(Handle& self, PyObject* name) {
    if (self.dict && checked(PyDict_Contains(self.dict, name)))
        checked(PyDict_DelItem(self.dict, name));
    else
        raise(PyExc_AttributeError, name);
}

int handle_setattro(PyObject* object, PyObject* name, PyObject* value) {
    Handle& self = *as_handle(object);
    if (!PyUnicode_Check(name)) {
        PyErr_Format(PyExc_TypeError, "attribute name must be string, not '%.200s'", Py_TYPE(name)->tp_name);
        throw PythonError{};
    }
    if (!value) {
        delete_field(self, name);
    } else if (is_underscored(name)) {
        store_field(self, name, value);
    } else if (Py_TYPE(object) == *kind_of(self).type) {
        set_attribute(object, name, value);
    } else {
        static const Name set_attr("setAttr");
        steal(PyObject_CallMethodObjArgs(object, set_attr.get(), name, value, nullptr));
    }
    return 0;
}

py::object get_dict(Handle& self) {
    py::dict fields;
    fields["_cmodel"] = py::handle(self.cmodel);
    fields[kind_of(self).index_field] = self.index;
    if (self.dict) checked(PyDict_Update(fields.ptr(), self.dict));
    return fields;
}

// --- methods

PyObject* handle_cindex(Handle& self) { return PyLong_FromLong(self.cindex()); }
PyObject* handle_typename(Handle& self) { return PyUnicode_FromString(kind_of(self).name); }
PyObject* handle_typeenum(Handle& self) { return PyLong_FromLong(static_cast<int>(kind_of(self).kind)); }

py::object handle_getAttr(Handle& self, Args args) {
    static const Signature<1> signature{"getAttr", 1, {Name("attrname")}};
    const auto [name] = signature.parse(args);
    return get_attribute(object_of(self), name);
}

void handle_setAttr(Handle& self, Args args) {
    static const Signature<2> signature{"setAttr", 2, {Name("attrname"), Name("newval")}};
    const auto [name, value] = signature.parse(args);
    set_attribute(object_of(self), name, value);
}

void handle_prefetchAttr(Handle& self, Args args) {
    static const Signature<1> signature{"prefetchAttr", 1, {Name("attrname")}};
    const auto [name] = signature.parse(args);
    prefetch_attribute(object_of(self), name);
}

py::object handle_getattr_method(Handle& self, py::handle name) {
    static const Name kGetAttr("getAttr");
    return steal(PyObject_CallMethodObjArgs(object_of(self).ptr(), kGetAttr.get(), name.ptr(), nullptr));
}

py::object handle_dir(Handle& self) {
    return directory(object_of(self), borrow(self.dict),
                     attribute_names(self.cmodel, static_cast<int>(kind_of(self).kind)));
}

PyMethodDef shared_methods[] = {
    {"__cindex__", method<handle_cindex>, METH_NOARGS,
     "__cindex__($self)\n--\n\n"
     "Index of the object in the library's model (int), also while it is marked for removal.\n\n"
     "-1 when it waits for the model's update or the model is disposed, -2 when it was removed."},
    {"getAttr", method<handle_getAttr>, kKeywords,
     "getAttr($self, attrname)\n--\n\n"
     "Value of an attribute (int, float or str) as of the last update or solve; capitals don't matter.\n\n"
     "Raises AttributeError for an unknown or unavailable attribute and ZelvanError for an object that is not in the "
     "model yet or any more."},
    {"setAttr", method<handle_setAttr>, kKeywords,
     "setAttr($self, attrname, newval)\n--\n\n"
     "Set an attribute; the change takes effect at the next update.\n\n"
     "Raises AttributeError for an unknown or read-only attribute or a value of the wrong type, and ZelvanError for "
     "an object that is not in the model yet or any more."},
    {"prefetchAttr", method<handle_prefetchAttr>, kKeywords,
     "prefetchAttr($self, attrname)\n--\n\n"
     "Tell the library that an attribute will be read. Raises AttributeError for an unknown one."},
    {"__getattr__", method<handle_getattr_method>, METH_O,
     "__getattr__($self, name, /)\n--\n\nThe attribute `name` of the object, as getAttr gives it."},
    {"__dir__", method<handle_dir>, METH_NOARGS,
     "__dir__($self)\n--\n\nSorted names of methods, stored fields and attributes."},
};

PyGetSetDef shared_properties[] = {
    {"_typename", getter_of<handle_typename>, nullptr, "Name of the kind of object (str).", nullptr},
    {"_typeenum", getter_of<handle_typeenum>, nullptr, "Number of the kind of object (int).", nullptr},
    {"__dict__", getter_of<get_dict>, nullptr, "A dict of the handle's fields.", nullptr},
};

PyObject* handle_index(Handle& self) { return handle_cindex(self); }

// Tables that a type points to for its whole life.
template <class Def>
Def* keep_table(const Def* shared, std::size_t num, const std::vector<Def>& extra) {
    Def* table = new Def[num + extra.size() + 1]{};
    std::copy(extra.begin(), extra.end(), std::copy(shared, shared + num, table));
    return table;
}

}  // namespace

PyObject* handle_sameAs(Handle& self, Args args) {
    static const Signature<1> signature{"sameAs", 1, {Name("other")}};
    const auto [other] = signature.parse(args);
    const HandleKind& kind = kind_of(self);
    if (!PyObject_TypeCheck(other, *kind.type)) return boolean(false).release().ptr();
    const Handle& that = *as_handle(other);
    bool same = self.cmodel == that.cmodel && self.index == that.index;
    if (same && (self.dict || that.dict)) {
        const py::dict empty;
        same = checked(
            PyObject_RichCompareBool(self.dict ? self.dict : empty.ptr(), that.dict ? that.dict : empty.ptr(), Py_EQ));
    }
    return boolean(same).release().ptr();
}

PyMethodDef same_as_method() {
    return {"sameAs", method<handle_sameAs>, kKeywords,
            "sameAs($self, other)\n--\n\n"
            "Whether `other` is a handle of the same object with the same stored fields (bool)."};
}

PyGetSetDef index_property() {
    return {"index", getter_of<handle_index>, nullptr,
            "Index in the model (int): -1 while it waits for the update, -2 after removal.", nullptr};
}

void make_handle_type(py::module_& module, Kind which, HandleExtras extras) {
    const HandleKind& kind = handle_kind(which);
    auto* members = new PyMemberDef[5]{
        {"_cmodel", T_OBJECT, offsetof(Handle, cmodel), READONLY, "The capsule of the model, None after its disposal."},
        {kind.index_field, T_INT, offsetof(Handle, index), READONLY,
         "Index and state (int): 0 and up live, -1 pending, -2 removed, -3 - index marked for removal."},
        dict_at(offsetof(Handle, dict)),
        weakrefs_at(offsetof(Handle, weakrefs)),
    };
    PyMethodDef* methods = keep_table(shared_methods, std::size(shared_methods), extras.methods);
    PyGetSetDef* properties = keep_table(shared_properties, std::size(shared_properties), extras.properties);
    std::vector<PyType_Slot> slots = {
        {Py_tp_doc, const_cast<char*>(kind.doc)},
        {Py_tp_new, slot<handle_new>()},
        {Py_tp_init, slot<handle_init>()},
        {Py_tp_dealloc, reinterpret_cast<void*>(handle_dealloc)},
        {Py_tp_traverse, reinterpret_cast<void*>(handle_traverse)},
        {Py_tp_clear, reinterpret_cast<void*>(handle_clear)},
        {Py_tp_getattro, slot<handle_getattro>()},
        {Py_tp_setattro, slot<handle_setattro>()},
        {Py_tp_methods, methods},
        {Py_tp_members, members},
        {Py_tp_getset, properties},
    };
    slots.insert(slots.end(), extras.slots.begin(), extras.slots.end());
    slots.push_back({0, nullptr});
    PyType_Spec spec{kind.full_name, sizeof(Handle), 0, Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_HAVE_GC,
                     slots.data()};
    *kind.type = make_type(module, spec);
}

}  // namespace zelvanpy
