#include "attrutil.h"

#include <strings.h>

#include <array>
#include <cstdint>
#include <cstring>

#include "exception.h"
#include "pyargs.h"
#include "pynearest.h"

namespace zelvanpy {

namespace {

// What the library said of a name, found again by the address of the interned str.
struct Entry {
    PyObject* name = nullptr;  // owned, so that no other str gets its address
    AttrInfo info{};
};
std::array<Entry, 512> cache;

Entry& cache_entry(PyObject* name) {
    const auto address = reinterpret_cast<std::uintptr_t>(name) >> 4;
    return cache[(address ^ (address >> 9)) % cache.size()];
}

// The library's own spelling of a name that it knows. Its pointer is a constant, and passing it back
// saves the library the look-up by letters.
const char* canonical_name(ZVNmodel* model, const char* name) {
    const int count = ZVNgetnumattributes(model);
    for (int i = 0; i < count; ++i) {
        char* known = nullptr;
        if (ZVNgetattrname(model, i, &known) == 0 && known && strcasecmp(known, name) == 0) return known;
    }
    return nullptr;
}

bool ask_library(ZVNmodel* model, const char* name, AttrInfo& info) {
    int settable = 0;
    if (ZVNgetattrinfo(model, name, &info.type, &info.kind, &settable)) return false;
    info.name = name;
    info.settable = settable != 0;
    return true;
}

// False when the library refuses the name. `name` is a str, which info.name may point into.
bool find_info(ZVNmodel* model, PyObject* name, AttrInfo& info) {
    Entry& entry = cache_entry(name);
    if (entry.name == name && model) {
        info = entry.info;
        return true;
    }
    Py_ssize_t length = 0;
    const char* text = PyUnicode_AsUTF8AndSize(name, &length);
    if (!text) throw PythonError{};
    if (std::strlen(text) != static_cast<std::size_t>(length)) return false;  // the library would stop at the NUL
    if (!ask_library(model, text, info)) return false;
    if (!PyUnicode_CHECK_INTERNED(name)) return true;
    if (const char* known = canonical_name(model, text)) {
        info.name = known;
        Py_INCREF(name);
        Py_XSETREF(entry.name, name);
        entry.info = info;
    }
    return true;
}

py::object as_text(py::handle name) {
    return PyUnicode_Check(name.ptr()) ? borrow(name) : bytes_to_string(string_to_bytes(name));
}

[[noreturn]] void raise_library_message(py::handle object) { raise(PyExc_AttributeError, error_message(object)); }

}  // namespace

ZVNmodel* model_of(py::handle object) {
    if (is_model(object)) return model_pointer(reinterpret_cast<ModelHead*>(object.ptr())->cmodel);
    if (find_handle_kind(object.ptr())) return model_pointer(as_handle(object)->cmodel);
    return model_pointer(object.attr("_cmodel"));
}

void raise_attribute(const char* format, py::handle name) {
    PyErr_Format(PyExc_AttributeError, format, as_text(name).ptr());
    throw PythonError{};
}

namespace {

void offer_methods(NearestName& nearest, PyTypeObject* type) {
    const py::object bases = borrow(type->tp_mro);
    for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(bases.ptr()); ++i) {
        auto* base = reinterpret_cast<PyTypeObject*>(PyTuple_GET_ITEM(bases.ptr(), i));
        PyObject *name, *value;
        for (Py_ssize_t at = 0; base != &PyBaseObject_Type && PyDict_Next(base->tp_dict, &at, &name, &value);) {
            const char* text = PyUnicode_Check(name) && !is_underscored(name) ? PyUnicode_AsUTF8(name) : nullptr;
            if (text) nearest.offer(text);
            PyErr_Clear();  // of surrogates
        }
    }
}

void offer_attributes(NearestName& nearest, ZVNmodel* model, const HandleKind* kind) {
    for (int i = 0, count = ZVNgetnumattributes(model); i < count; ++i) {
        char* name = nullptr;
        AttrInfo info;
        if (ZVNgetattrname(model, i, &name) || !ask_library(model, name, info)) continue;
        if (!kind || info.kind == static_cast<int>(kind->kind)) nearest.offer(name);
    }
}

// Whose attribute it is, or which name may have been meant; empty where there is nothing to tell.
py::object hint_at_name(py::handle object, py::handle name, ZVNmodel* model, const HandleKind* kind) {
    AttrInfo info;
    if (kind && find_info(model, name.ptr(), info) && info.kind != static_cast<int>(kind->kind)) {
        const char* owner = info.kind ? handle_kind(static_cast<Kind>(info.kind)).name : "Model";
        return steal(PyUnicode_FromFormat("%s is an attribute of %s", info.name, owner));
    }
    NearestName nearest(name);
    offer_attributes(nearest, model, kind);
    offer_methods(nearest, Py_TYPE(object.ptr()));
    return nearest.hint();
}

// The same. The latest answer is kept, as loops ask many objects for one name that they haven't.
py::object kept_hint(py::handle object, py::handle name, ZVNmodel* model, const HandleKind* kind) {
    static PyObject *last_name = nullptr, *last_hint = nullptr;
    static const HandleKind* last_kind = nullptr;
    const bool is_kept = Py_TYPE(object.ptr()) == (kind ? *kind->type : Model_Type) && PyUnicode_CheckExact(name.ptr());
    if (is_kept && name.ptr() == last_name && kind == last_kind) return borrow(last_hint);
    py::object hint = hint_at_name(object, name, model, kind);
    if (!is_kept) return hint;
    last_kind = kind;
    Py_XSETREF(last_name, borrow(name).release().ptr());
    Py_XSETREF(last_hint, borrow(hint).release().ptr());
    return hint;
}

// Why a Model or handle hasn't the attribute; empty where there is nothing to tell.
py::object why_no_attribute(py::handle object, py::handle name) {
    const HandleKind* kind = find_handle_kind(object.ptr());
    if (is_underscored(name.ptr()) || (!kind && !is_model(object))) return {};
    if (ZVNmodel* model = model_of(object)) return kept_hint(object, name, model, kind);
    return kind ? steal(PyUnicode_FromFormat("The model of the %s has been freed", kind->name)) : py::object();
}

}  // namespace

void raise_no_attribute(py::handle object, py::handle name) {
    const py::object type_name = object.attr("_typename"), asked = as_text(name);
    const py::object text =
        steal(PyUnicode_FromFormat("'zelvanpy.%S' object has no attribute '%U'", type_name.ptr(), asked.ptr()));
    if (const py::object why = why_no_attribute(object, asked)) raise(PyExc_AttributeError, text, why);
    raise(PyExc_AttributeError, text);
}

namespace {

// Raises AttributeError with the name at the one %U; the cause tells of the value.
[[noreturn]] void refuse_type(const char* format, py::handle name, py::handle value) {
    const py::object text = steal(PyUnicode_FromFormat(format, name.ptr()));
    raise(PyExc_AttributeError, text, steal(PyUnicode_FromFormat("The value is %U", shown_value(value).ptr())));
}

}  // namespace

Attribute::Attribute(py::handle object, py::handle name) : text_(as_text(name)) {
    if (!find_info(model_of(object), text_.ptr(), info_)) raise_no_attribute(object, text_);
}

char first_byte(py::handle text, py::handle name) {
    const Py_UCS4 character = PyUnicode_READ_CHAR(text.ptr(), 0);
    if (character > 0xff) {
        PyErr_Format(PyExc_OverflowError, "Character '%c' for attribute '%U' is larger than a byte", character,
                     name.ptr());
        throw PythonError{};
    }
    return static_cast<char>(character);
}

namespace {

// --- single values

// The index of a handle that an attribute of this kind can be read from or written to.
int accessible_index(py::handle object, const Handle& handle, const HandleKind& kind, const AttrInfo& attribute,
                     py::handle name) {
    const int index = handle.cindex();
    if (index < 0) {
        const char* state = index == -1 ? " has not yet been added to the model" : " was removed from the model";
        raise_zelvan(0, py::str(std::string(kind.name) + state));
    }
    if (attribute.kind != static_cast<int>(kind.kind)) raise_no_attribute(object, name);
    return index;
}

PyObject* read_element(py::handle object, ZVNmodel* model, const AttrInfo& attribute, int index) {
    switch (attribute.type) {
        case kDoubleAttr: {
            double value;
            if (ZVNgetdblattrelement(model, attribute.name, index, &value)) raise_library_message(object);
            return PyFloat_FromDouble(python_double(value));
        }
        case kIntAttr: {
            int value;
            if (ZVNgetintattrelement(model, attribute.name, index, &value)) raise_library_message(object);
            return PyLong_FromLong(value);
        }
        case kCharAttr: {
            char value;
            if (ZVNgetcharattrelement(model, attribute.name, index, &value)) raise_library_message(object);
            return PyUnicode_FromOrdinal(static_cast<unsigned char>(value));
        }
        default: {
            char* value = nullptr;
            if (ZVNgetstrattrelement(model, attribute.name, index, &value)) raise_library_message(object);
            return to_str(value).release().ptr();
        }
    }
}

PyObject* read_model_value(py::handle object, ZVNmodel* model, const Attribute& attribute) {
    switch (attribute->type) {
        case kDoubleAttr: {
            double value;
            if (ZVNgetdblattr(model, attribute->name, &value)) raise_library_message(object);
            return PyFloat_FromDouble(python_double(value));
        }
        case kIntAttr: {
            int value;
            if (ZVNgetintattr(model, attribute->name, &value)) raise_library_message(object);
            return PyLong_FromLong(value);
        }
        case kStringAttr: {
            char* value = nullptr;
            if (ZVNgetstrattr(model, attribute->name, &value)) raise_library_message(object);
            return to_str(value).release().ptr();
        }
        default:
            raise_no_attribute(object, attribute.text());
    }
}

char char_value(py::handle value, py::handle name) {
    if (!PyUnicode_Check(value.ptr())) refuse_type("Attribute '%U' takes character value", name, value);
    if (PyUnicode_GET_LENGTH(value.ptr()) == 0) raise(PyExc_IndexError, "string index out of range");
    return first_byte(value, name);
}

int exact_int_value(py::handle value, const Attribute& attribute) {
    if (!PyLong_Check(value.ptr())) refuse_type("Attribute '%U' takes integer value", attribute.text(), value);
    return to_int(value, attribute->name);
}

double double_value(py::handle value, py::handle name) {
    double result;
    if (!scalar_value(value, result)) refuse_type("Attribute '%U' takes double value", name, value);
    return library_double(result);
}

void require_str(py::handle value, py::handle name) {
    if (!PyUnicode_Check(value.ptr())) refuse_type("Attribute '%U' takes string value", name, value);
}

// Converts before it looks at model and index: a conversion may run code that changes them.
int write_element(const Handle& handle, const Attribute& attribute, py::handle value) {
    const auto write = [&](auto call, auto converted) {
        return call(model_pointer(handle.cmodel), attribute->name, handle.cindex(), converted);
    };
    switch (attribute->type) {
        case kCharAttr:
            return write(ZVNsetcharattrelement, char_value(value, attribute.text()));
        case kIntAttr:
            return write(ZVNsetintattrelement, exact_int_value(value, attribute));
        case kDoubleAttr:
            return write(ZVNsetdblattrelement, double_value(value, attribute.text()));
        default:
            require_str(value, attribute.text());
            return write(ZVNsetstrattrelement, CString(value).get());
    }
}

int write_model_value(py::handle object, const Attribute& attribute, py::handle value) {
    const auto write = [&](auto call, auto converted) { return call(model_of(object), attribute->name, converted); };
    switch (attribute->type) {
        case kIntAttr:
            return write(ZVNsetintattr, exact_int_value(value, attribute));
        case kDoubleAttr:
            return write(ZVNsetdblattr, double_value(value, attribute.text()));
        case kStringAttr:
            require_str(value, attribute.text());
            return write(ZVNsetstrattr, CString(value).get());
        default:
            raise_no_attribute(object, attribute.text());
    }
}

// The handle that a read or write of a single value goes to; throws for what is neither handle nor Model.
Handle& require_handle(py::handle object, const HandleKind* kind) {
    if (!kind) {
        PyErr_Format(PyExc_TypeError, "a Model, Var, Constr, SOS, QConstr or GenConstr is required, not %.200s",
                     Py_TYPE(object.ptr())->tp_name);
        throw PythonError{};
    }
    return *as_handle(object);
}

}  // namespace

PyObject* get_handle_attribute(Handle& handle, const HandleKind& kind, PyObject* name) {
    const py::handle object(reinterpret_cast<PyObject*>(&handle));
    ZVNmodel* model = model_pointer(handle.cmodel);
    AttrInfo info;
    if (!find_info(model, name, info)) raise_no_attribute(object, name);
    return read_element(object, model, info, accessible_index(object, handle, kind, info, name));
}

py::object get_attribute(py::handle object, py::handle name) {
    if (is_model(object)) {
        const Attribute attribute(object, name);
        return steal(read_model_value(object, model_of(object), attribute));
    }
    const HandleKind* kind = find_handle_kind(object.ptr());
    Handle& handle = require_handle(object, kind);  // before *kind, which is null for what is no handle
    return steal(get_handle_attribute(handle, *kind, as_text(name).ptr()));
}

void set_attribute(py::handle object, py::handle name, py::handle value) {
    int error;
    if (is_model(object)) {
        const Attribute attribute(object, name);
        error = write_model_value(object, attribute, value);
    } else {
        const HandleKind* kind = find_handle_kind(object.ptr());
        const Handle& handle = require_handle(object, kind);
        const Attribute attribute(object, name);
        accessible_index(object, handle, *kind, *attribute.operator->(), attribute.text());
        if (!attribute->settable) raise_attribute("Attribute '%U' cannot be set", attribute.text());
        error = write_element(handle, attribute, value);
    }
    if (error) raise_library_message(object);
}

void prefetch_attribute(py::handle object, py::handle name) {
    const Attribute attribute(object, name);
    if (!is_model(object)) {
        const int kind = object.attr("_typeenum").cast<int>();
        if (attribute->kind != kind) raise_no_attribute(object, attribute.text());
    }
    if (ZVNprefetchattr(model_of(object), attribute->name)) raise_library_message(object);
}

py::object attribute_names(py::handle cmodel, int kind) {
    ZVNmodel* model = model_pointer(cmodel);
    py::list names;
    const int count = ZVNgetnumattributes(model);
    for (int i = 0; i < count; ++i) {
        char* name = nullptr;
        AttrInfo info;
        if (ZVNgetattrname(model, i, &name) || !ask_library(model, name, info)) continue;
        if (info.kind == kind) names.append(to_str(name));
    }
    return names;
}

py::object directory(py::handle object, const py::object& fields, py::handle attributes) {
    py::set names(steal(PyObject_Dir(reinterpret_cast<PyObject*>(Py_TYPE(object.ptr())))));
    if (fields) names.attr("update")(fields);
    names.attr("update")(attributes);
    py::object sorted = steal(PySequence_List(names.ptr()));
    checked(PyList_Sort(sorted.ptr()));
    return sorted;
}

PyObject* stored_attribute(PyObject* object, PyObject* dict, PyObject* name) {
    if (!PyUnicode_Check(name) || _PyType_Lookup(Py_TYPE(object), name))
        return steal(PyObject_GenericGetAttr(object, name)).release().ptr();
    if (!dict) return nullptr;
    const py::object kept = borrow(dict);  // a comparison of keys may run code that replaces the dict
    PyObject* value = PyDict_GetItemWithError(dict, name);
    if (!value && PyErr_Occurred()) throw PythonError{};
    Py_XINCREF(value);
    return value;
}

namespace {

// --- the functions of the module

py::object attrinfo_function(py::handle, Args args) {
    static const Signature<2> signature{"__getattrinfo", 2, {Name("obj"), Name("attrname")}};
    const auto [object, name] = signature.parse(args);
    const Attribute attribute(object, name);
    return py::make_tuple(attribute->type, attribute->kind, static_cast<int>(attribute->settable));
}

py::object getattr_function(py::handle, Args args) {
    static const Signature<2> signature{"__getattr", 2, {Name("obj"), Name("attrname")}};
    const auto [object, name] = signature.parse(args);
    return get_attribute(object, name);
}

void setattr_function(py::handle, Args args) {
    static const Signature<3> signature{"__setattr", 3, {Name("obj"), Name("attrname"), Name("newval")}};
    const auto [object, name, value] = signature.parse(args);
    set_attribute(object, name, value);
}

void prefetchattr_function(py::handle, Args args) {
    static const Signature<2> signature{"__prefetchattr", 2, {Name("obj"), Name("attrname")}};
    const auto [object, name] = signature.parse(args);
    prefetch_attribute(object, name);
}

py::object attrlist_function(py::handle, Args args) {
    static const Signature<2> signature{"__attrlist", 2, {Name("cmodel"), Name("type")}};
    const auto [cmodel, kind] = signature.parse(args);
    return attribute_names(cmodel, to_int(kind, "type"));
}

PyMethodDef functions[] = {
    {"__getattrinfo", method<attrinfo_function>, kKeywords,
     "__getattrinfo($module, obj, attrname)\n--\n\n"
     "Tuple (type, kind, settable) of an attribute: type 0 char, 1 int, 2 double, 3 string; kind 0 model, 1 Var, "
     "2 Constr, 3 SOS, 4 QConstr, 5 GenConstr. Raises AttributeError for an unknown name."},
    {"__getattr", method<getattr_function>, kKeywords,
     "__getattr($module, obj, attrname)\n--\n\nValue of one attribute of a Model or a handle."},
    {"__setattr", method<setattr_function>, kKeywords,
     "__setattr($module, obj, attrname, newval)\n--\n\nSet one attribute of a Model or a handle."},
    {"__prefetchattr", method<prefetchattr_function>, kKeywords,
     "__prefetchattr($module, obj, attrname)\n--\n\nTell the library that an attribute will be read."},
    {"__attrlist", method<attrlist_function>, kKeywords,
     "__attrlist($module, cmodel, type)\n--\n\nNames of all attributes of a kind of object, 0 for the model."},
    {},
};

}  // namespace

void init_attrutil(py::module_& module) {
    if (PyModule_AddFunctions(module.ptr(), functions)) throw PythonError{};
}

}  // namespace zelvanpy
