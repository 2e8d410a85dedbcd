// `Model`: getAttr, setAttr and what belongs to them.

#include "attr_lists.h"
#include "attrutil.h"
#include "exception.h"
#include "model.h"
#include "pyargs.h"
#include "tupledict.h"

namespace zelvanpy {

namespace {

const Name kCindex("__cindex__"), kTypeenum("_typeenum"), kKeys("keys");

// The index of anything with __cindex__, a handle as a rule.
int cindex_of(PyObject* object) {
    if (find_handle_kind(object)) return as_handle(object)->cindex();
    return to_int(steal(PyObject_CallMethodObjArgs(object, kCindex.get(), nullptr)), "__cindex__()");
}

bool is_of_kind(PyObject* object, int kind) {
    if (const HandleKind* row = find_handle_kind(object)) return static_cast<int>(row->kind) == kind;
    return to_int(steal(PyObject_GetAttr(object, kTypeenum.get())), "_typeenum") == kind;
}

// Throws what a read of the attribute from an object of the wrong kind throws.
[[noreturn]] void refuse_kind(PyObject* object, const Attribute& attribute) {
    get_attribute(object, attribute.text());
    raise_no_attribute(object, attribute.text());
}

// The fast half of reading indices: false at the first object that is no plain handle of the type. It runs
// no code of the user, so that the list stays as it is.
bool plain_indices(py::handle list, PyTypeObject* type, std::vector<int>& indices) {
    const Py_ssize_t num = PySequence_Fast_GET_SIZE(list.ptr());
    PyObject* const* objects = PySequence_Fast_ITEMS(list.ptr());
    indices.resize(num);
    for (Py_ssize_t i = 0; i < num; ++i) {
        if (Py_TYPE(objects[i]) != type) return false;
        indices[i] = as_handle(objects[i])->cindex();
    }
    return true;
}

// __cindex__() of each object of a list or tuple.
std::vector<int> any_indices(const py::object& list) {
    const py::tuple objects(list);
    std::vector<int> indices;
    indices.reserve(objects.size());
    for (py::handle object : objects) indices.push_back(cindex_of(object.ptr()));
    return indices;
}

// The indices of objects that must be of the attribute's kind.
std::vector<int> indices_of_kind(const py::object& list, const Attribute& attribute) {
    std::vector<int> indices;
    if (attribute->kind != 0 && plain_indices(list, *handle_kind(static_cast<Kind>(attribute->kind)).type, indices))
        return indices;
    const py::tuple objects(list);
    for (py::handle object : objects)
        if (!is_of_kind(object.ptr(), attribute->kind)) refuse_kind(object.ptr(), attribute);
    return any_indices(objects);
}

// The indices of objects of any kind.
std::vector<int> indices_of_objects(const py::object& list) {
    std::vector<int> indices;
    if (PySequence_Fast_GET_SIZE(list.ptr()) == 0) return indices;
    const HandleKind* kind = find_handle_kind(PySequence_Fast_GET_ITEM(list.ptr(), 0));
    return kind && plain_indices(list, *kind->type, indices) ? indices : any_indices(list);
}

// Keys and values of a dict; those of a subclass in the order of its own keys().
struct Pairs {
    py::object keys, values;

    explicit Pairs(PyObject* dict) {
        read(dict);
        if (PyList_GET_SIZE(keys.ptr()) != PyList_GET_SIZE(values.ptr()))
            raise(PyExc_RuntimeError, "dictionary changed size during iteration");
    }

private:
    void read(PyObject* dict) {
        if (PyDict_CheckExact(dict)) {
            keys = steal(PyDict_Keys(dict));
            values = steal(PyDict_Values(dict));
            return;
        }
        if (is_tupledict(dict) && is_plain(as_tupledict(dict))) {
            keys = steal(PySequence_List(tupledict_keys(as_tupledict(dict)).ptr()));
            values = tupledict_values(as_tupledict(dict));
            return;
        }
        const py::object own_keys = steal(PyObject_CallMethodObjArgs(dict, kKeys.get(), nullptr));
        keys = steal(PySequence_List(own_keys.ptr()));
        values = steal(PyList_New(0));
        for (Py_ssize_t i = 0; i < PyList_GET_SIZE(keys.ptr()); ++i) {
            const py::object value = steal(PyObject_GetItem(dict, PyList_GET_ITEM(keys.ptr(), i)));
            checked(PyList_Append(values.ptr(), value.ptr()));
        }
    }
};

py::object values_by_key(Model& model, const Attribute& attribute, PyObject* dict) {
    if (is_tupledict(dict) && is_plain(as_tupledict(dict)) && !as_tupledict(dict).positions) {
        const py::object handles = tupledict_values(as_tupledict(dict));
        const auto indices = indices_of_kind(handles, attribute);
        const py::object values = get_attribute_list(as_object(model), *attribute.operator->(), indices);
        return new_tupledict_like(as_tupledict(dict), handles, values);
    }
    const Pairs pairs(dict);
    const auto indices = indices_of_kind(pairs.values, attribute);
    const py::object values = get_attribute_list(as_object(model), *attribute.operator->(), indices);
    return new_tupledict(pairs.keys, values);
}

py::object values_in_order(Model& model, const Attribute& attribute, PyObject* objects) {
    const py::object items = steal(PySequence_Fast(objects, "the objects are not iterable"));
    const auto indices = indices_of_kind(items, attribute);
    return get_attribute_list(as_object(model), *attribute.operator->(), indices);
}

// All objects of the kind that an attribute belongs to.
py::object all_objects(Model& model, int kind) {
    static const char* const getters[] = {nullptr, "getVars", "getConstrs", "getSOSs", "getQConstrs", "getGenConstrs"};
    return call_own(model, getters[kind], {});
}

}  // namespace

py::object model_get_attr(Model& model, py::handle name, py::handle objs) {
    require_open(model);
    const Attribute attribute(as_object(model), name);
    py::object objects = objs && !objs.is_none() ? borrow(objs) : py::object();
    if (!objects) {
        if (attribute->kind == 0) return get_attribute(as_object(model), name);
        objects = all_objects(model, attribute->kind);
    }
    if (PyDict_Check(objects.ptr())) return values_by_key(model, attribute, objects.ptr());
    if (Py_TYPE(objects.ptr())->tp_iter) return values_in_order(model, attribute, objects.ptr());
    raise_zelvan(-1, "Unrecognized argument to getAttr");
}

namespace {

// The objects and values of a write: values[i] for indices[i], or one value for all.
struct BulkWrite {
    std::vector<int> indices;
    py::object values;
    bool broadcast = false;
};

bool is_single_value(py::handle value) { return PyUnicode_Check(value.ptr()) || is_scalar(value); }

bool has_iterator(PyObject* object) { return Py_TYPE(object)->tp_iter != nullptr; }

BulkWrite write_by_key(const Attribute& attribute, PyObject* dict, py::handle values) {
    const Pairs pairs(dict);
    const Py_ssize_t num = PyList_GET_SIZE(pairs.values.ptr());
    BulkWrite write;
    write.broadcast = is_single_value(values);
    if (write.broadcast) {
        write.values = borrow(values);
    } else if (PyDict_Check(values.ptr()) || has_iterator(values.ptr())) {
        write.values = steal(PyList_New(num));
        for (Py_ssize_t i = 0; i < num; ++i) {
            py::object value = steal(PyObject_GetItem(values.ptr(), PyList_GET_ITEM(pairs.keys.ptr(), i)));
            PyList_SET_ITEM(write.values.ptr(), i, value.release().ptr());
        }
    } else {
        raise_attribute("Attribute '%U' argument types do not match", attribute.text());
    }
    write.indices = indices_of_objects(pairs.values);
    return write;
}

// The objects as a list: those of a list or tuple, objs[0], objs[1], ... of what has a length, or the one object.
py::object object_list(py::handle objs) {
    if (PyList_CheckExact(objs.ptr()) || PyTuple_CheckExact(objs.ptr())) return borrow(objs);
    const Py_ssize_t num = PyObject_Length(objs.ptr());
    if (num < 0) {
        if (!PyErr_ExceptionMatches(PyExc_TypeError)) throw PythonError{};
        PyErr_Clear();
        return py::make_tuple(objs);
    }
    py::list objects;
    for (Py_ssize_t i = 0; i < num; ++i) objects.append(objs[py::int_(i)]);
    return objects;
}

BulkWrite write_in_order(const Attribute& attribute, py::handle objs, py::handle values) {
    const py::object objects = object_list(objs);
    const Py_ssize_t num = PySequence_Fast_GET_SIZE(objects.ptr());
    BulkWrite write;
    write.values = borrow(values);
    write.broadcast = is_single_value(values);
    if (!write.broadcast && checked(PyObject_Length(values.ptr())) != num)
        raise_attribute("Attribute '%U' inconsistent lengths of both arguments", attribute.text());
    write.indices = indices_of_objects(objects);
    return write;
}

}  // namespace

void model_set_attr(Model& model, py::handle name, py::handle arg1, py::handle arg2) {
    require_open(model);
    const Attribute attribute(as_object(model), name);
    const bool of_model = !arg2 || arg2.is_none();
    if (of_model && attribute->kind != 0) raise_attribute("Attribute '%U' is not a Model attribute", attribute.text());
    if (!attribute->settable) raise_attribute("Attribute '%U' cannot be set", attribute.text());
    if (of_model) {
        set_attribute(as_object(model), name, arg1);
        return;
    }
    const BulkWrite write =
        PyDict_Check(arg1.ptr()) ? write_by_key(attribute, arg1.ptr(), arg2) : write_in_order(attribute, arg1, arg2);
    set_attribute_list(as_object(model), *attribute.operator->(), write.indices, write.values, write.broadcast);
}

namespace {

py::object Model_getAttr(Model& self, Args args) {
    static const Signature<2> signature{"getAttr", 1, {Name("attrname"), Name("objs")}};
    const auto [name, objs] = signature.parse(args);
    return model_get_attr(self, name, objs);
}

void Model_setAttr(Model& self, Args args) {
    static const Signature<3> signature{"setAttr", 2, {Name("attrname"), Name("arg1"), Name("arg2")}};
    const auto [name, arg1, arg2] = signature.parse(args);
    model_set_attr(self, name, arg1, arg2);
}

void Model_prefetchAttr(Model& self, Args args) {
    static const Signature<1> signature{"prefetchAttr", 1, {Name("attrname")}};
    const auto [name] = signature.parse(args);
    require_open(self);
    prefetch_attribute(as_object(self), name);
}

PyObject* Model_isAttrAvailable(Model& self, py::handle name) {
    return PyLong_FromLong(ZVNisattravailable(model_pointer(self), CString(name)));
}

}  // namespace

PyMethodDef model_attr_methods[] = {
    {"getAttr", method<Model_getAttr>, kKeywords,
     "getAttr($self, attrname, objs=None)\n--\n\n"
     "Value of an attribute of the model, or values of an attribute of its objects; capitals don't matter.\n\n"
     "attrname  name of the attribute\n"
     "objs      objects to read from: an iterable gives a list, a dict a tupledict with the same keys; None stands "
     "for all objects of the kind that the attribute belongs to\n\n"
     "Values are int, float or str, as of the last update or solve. Raises AttributeError for an unknown attribute "
     "and ZelvanError for a disposed model or when the values are not available.\n\n"
     ">>> m.getAttr(\"X\", m.getVars())"},
    {"setAttr", method<Model_setAttr>, kKeywords,
     "setAttr($self, attrname, arg1, arg2=None)\n--\n\n"
     "Set an attribute; the change takes effect at the next update.\n\n"
     "With two arguments arg1 is the value of an attribute of the model. With three, arg1 is an object, a sequence or "
     "a dict of objects, and arg2 one value for all, or as many values, or values by the same keys.\n\n"
     "Raises AttributeError for an unknown or read-only attribute, lengths that differ and values that the library "
     "refuses, KeyError for a missing key.\n\n"
     ">>> m.setAttr(\"UB\", m.getVars(), 10.0)"},
    {"prefetchAttr", method<Model_prefetchAttr>, kKeywords,
     "prefetchAttr($self, attrname)\n--\n\n"
     "Tell the library that an attribute will be read. Raises AttributeError for an unknown one."},
    {"_Model__isAttrAvailable", method<Model_isAttrAvailable>, METH_O,
     "__isAttrAvailable($self, attrname, /)\n--\n\nWhether the attribute can be read now (1 or 0)."},
    {},
};

}  // namespace zelvanpy
