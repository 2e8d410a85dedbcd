#include "handle_array.h"

#include <algorithm>
#include <climits>
#include <cstddef>

#include "attr_lists.h"
#include "attrutil.h"
#include "exception.h"
#include "pyargs.h"
#include "pyiter.h"
#include "pynumber.h"
#include "pytype.h"

namespace zelvanpy {

namespace {

std::vector<const HandleArrayKind*> kinds;

const HandleArrayKind& kind_of(const HandleArray& self) {
    for (const HandleArrayKind* kind : kinds)
        if (PyType_IsSubtype(self.ob_base.ob_type, *kind->type)) return *kind;
    raise(PyExc_TypeError, "no array of handles");
}

py::handle object_of(HandleArray& self) { return reinterpret_cast<PyObject*>(&self); }

}  // namespace

py::object array_of(const HandleArray& self) {
    if (!self.array) {
        PyErr_Format(PyExc_AttributeError, "'%s' object has no attribute '%s'", kind_of(self).name,
                     kind_of(self).field);
        throw PythonError{};
    }
    return borrow(self.array);
}

Handle* handle_in(PyObject* cell, Kind kind) {
    PyTypeObject* type = *handle_kind(kind).type;
    if (cell && (Py_TYPE(cell) == type || PyObject_TypeCheck(cell, type))) return as_handle(cell);
    PyErr_Format(PyExc_TypeError, "An array of %s holds an object of type %.200s", handle_kind(kind).name,
                 Py_TYPE(cell ? cell : Py_None)->tp_name);
    throw PythonError{};
}

namespace {

py::object model_of_first(const HandleArrayKind& kind, py::handle array) {
    static const Name kCmodel("_cmodel");
    if (size_of(array) == 0) return {};
    const py::object first = object_at(array_fields(array).data);
    if (PyObject_TypeCheck(first.ptr(), *handle_kind(kind.kind).type)) return borrow(as_handle(first)->cmodel);
    return steal(PyObject_GetAttr(first.ptr(), kCmodel.get()));
}

}  // namespace

void set_handle_array(HandleArray& self, py::object array) {
    py::object cmodel = model_of_first(kind_of(self), array);
    const py::object old_array = py::reinterpret_steal<py::object>(std::exchange(self.array, array.release().ptr()));
    const py::object old_cmodel = py::reinterpret_steal<py::object>(std::exchange(self.cmodel, cmodel.release().ptr()));
}

py::object new_handle_array(PyTypeObject* type, py::object array) {
    py::object self = steal(type->tp_alloc(type, 0));
    set_handle_array(*reinterpret_cast<HandleArray*>(self.ptr()), std::move(array));
    return self;
}

std::vector<int> handle_indices(const HandleArray& self) {
    const py::object array = array_of(self);
    const Kind kind = kind_of(self).kind;
    const Shape shape = shape_of(array);
    std::vector<int> indices;
    indices.reserve(static_cast<std::size_t>(shape.size()));
    walk<1>(shape, {cells_in(array, shape)},
            [&](const auto& at) { indices.push_back(handle_in(*reinterpret_cast<PyObject**>(at[0]), kind)->index); });
    if (indices.size() > INT_MAX) raise(PyExc_OverflowError, "an attribute can't be read for so many objects at once");
    return indices;
}

namespace {

// --- attributes

// An attribute that each of the handles has.
Attribute own_attribute(HandleArray& self, py::handle name) {
    const HandleArrayKind& kind = kind_of(self);
    Attribute attribute(object_of(self), name);
    if (attribute->kind != static_cast<int>(kind.kind)) {
        PyErr_Format(PyExc_AttributeError, "'zelvanpy.%s' object has no attribute '%U'", kind.named_as,
                     attribute.text().ptr());
        throw PythonError{};
    }
    return attribute;
}

py::object read_letters(ZVNmodel* model, const AttrInfo& attribute, const std::vector<int>& indices, const Shape& shape,
                        py::handle object) {
    static const Name kEmpty("empty");
    std::vector<char> letters(indices.size());
    check(ZVNgetcharattrlist(model, attribute.name, static_cast<int>(indices.size()), indices.data(), letters.data()),
          object);
    const py::object array = numpy_function(kEmpty)(shape_tuple(shape), "U1");
    std::copy_n(reinterpret_cast<const unsigned char*>(letters.data()), letters.size(), data_of<Py_UCS4>(array));
    return array;
}

py::object read_array(HandleArray& self, const AttrInfo& attribute) {
    const py::handle object = object_of(self);
    const std::vector<int> indices = handle_indices(self);
    const Shape shape = shape_of(array_of(self));
    const int count = static_cast<int>(indices.size());
    py::object result;
    switch (attribute.type) {
        case kCharAttr:
            return read_letters(model_pointer(self.cmodel), attribute, indices, shape, object);
        case kIntAttr:
            result = new_array(shape, CellType::kInt32);
            check(ZVNgetintattrlist(model_pointer(self.cmodel), attribute.name, count, indices.data(),
                                    data_of<int>(result)),
                  object);
            return result;
        case kDoubleAttr: {
            result = new_array(shape, CellType::kDouble);
            double* values = data_of<double>(result);
            check(ZVNgetdblattrlist(model_pointer(self.cmodel), attribute.name, count, indices.data(), values), object);
            std::transform(values, values + indices.size(), values, python_double);
            return result;
        }
        default: {
            const py::object texts = get_attribute_list(object, attribute, indices);
            result = new_objects(shape);
            for (std::size_t i = 0; i < indices.size(); ++i)
                set_object(array_fields(result).data + i * sizeof(PyObject*), borrow(PyList_GET_ITEM(texts.ptr(), i)));
            return result;
        }
    }
}

// One value for all handles, or a list with one for each.
struct Values {
    py::object object;
    bool is_broadcast;
};

[[noreturn]] void raise_mismatch() { raise(PyExc_AttributeError, "Shape mismatch"); }

Values values_of_array(py::handle array, const Shape& shape) {
    static const Name kItem("item"), kFlat("flat");
    if (size_of(array) == 1) return {py::float_(float_of(py::getattr(array, kItem)())), true};
    if (!(shape_of(array) == shape)) raise_mismatch();
    return {steal(PySequence_List(py::getattr(array, kFlat).ptr())), false};
}

Values values_for(py::handle value, const Shape& shape) {
    if (PyUnicode_Check(value.ptr())) return {borrow(value), true};
    if (is_ndarray(value)) return values_of_array(value, shape);
    double number;
    if (scalar_value(value, number)) return {py::float_(number), true};
    if (!is_iterable(value)) raise(PyExc_AttributeError, "Use scalar or ndarray to set attribute");
    py::object list = steal(PySequence_List(value.ptr()));
    if (PyList_GET_SIZE(list.ptr()) == 1) return {borrow(PyList_GET_ITEM(list.ptr(), 0)), true};
    if (shape.ndim != 1 || shape.dims[0] != PyList_GET_SIZE(list.ptr())) raise_mismatch();
    return {list, false};
}

// Doubles of an array in one call, without an object for each.
bool write_doubles(HandleArray& self, const AttrInfo& attribute, const std::vector<int>& indices, py::handle value,
                   const Shape& shape) {
    if (attribute.type != kDoubleAttr || !is_ndarray(value) || !has_cells(value, CellType::kDouble)) return false;
    if (size_of(value) == 1 || !(shape_of(value) == shape)) return false;
    std::vector<double> values;
    values.reserve(indices.size());
    walk<1>(shape, {cells_in(value, shape)},
            [&](const auto& at) { values.push_back(library_double(double_at(at[0]))); });
    const int code = ZVNsetdblattrlist(model_pointer(self.cmodel), attribute.name, static_cast<int>(indices.size()),
                                       indices.data(), values.data());
    if (code) raise(PyExc_AttributeError, error_message(object_of(self)));
    return true;
}

void write_array(HandleArray& self, py::handle name, py::handle value) {
    if (!self.cmodel) return;
    const py::object keep = borrow(object_of(self));
    const Attribute attribute = own_attribute(self, name);
    if (!attribute->settable) raise_attribute("Attribute '%U' cannot be set", attribute.text());
    const Shape shape = shape_of(array_of(self));
    const std::vector<int> indices = handle_indices(self);
    if (write_doubles(self, *attribute.operator->(), indices, value, shape)) return;
    const Values values = values_for(value, shape);
    set_attribute_list(object_of(self), *attribute.operator->(), indices, values.object, values.is_broadcast);
}

}  // namespace

py::object handle_array_attribute(py::handle object, py::handle name) {
    HandleArray& self = *reinterpret_cast<HandleArray*>(object.ptr());
    const py::object keep = borrow(object);
    if (!self.cmodel) return new_doubles(shape_of(array_of(self)), 0.0);
    const Attribute attribute = own_attribute(self, name);
    return read_array(self, *attribute.operator->());
}

namespace {

py::object array_getAttr(HandleArray& self, Args args) {
    static const Signature<1> kSignature{"getAttr", 1, {Name("attrname")}};
    const auto [name] = kSignature.parse(args);
    return handle_array_attribute(object_of(self), name);
}

void array_setAttr(HandleArray& self, Args args) {
    static const Signature<2> kSignature{"setAttr", 2, {Name("attrname"), Name("value")}};
    const auto [name, value] = kSignature.parse(args);
    write_array(self, name, value);
}

void array_prefetchAttr(HandleArray& self, Args args) {
    static const Signature<1> kSignature{"prefetchAttr", 1, {Name("attrname")}};
    const auto [name] = kSignature.parse(args);
    if (self.cmodel) prefetch_attribute(object_of(self), name);
}

// Names that begin with "_" belong to Python: numpy and others ask for many of them.
py::object array_getattr(HandleArray& self, py::handle name) {
    static const Name kGetAttr("getAttr");
    if (PyUnicode_Check(name.ptr()) && is_underscored(name.ptr())) {
        PyErr_Format(PyExc_AttributeError, "'%s' object has no attribute '%U'", kind_of(self).name, name.ptr());
        throw PythonError{};
    }
    return steal(PyObject_CallMethodObjArgs(object_of(self).ptr(), kGetAttr.get(), name.ptr(), nullptr));
}

PyObject* array_getattro(PyObject* object, PyObject* name) {
    HandleArray& self = *reinterpret_cast<HandleArray*>(object);
    if (PyObject* value = stored_attribute(object, self.dict, name)) return value;
    return array_getattr(self, name).release().ptr();
}

int array_setattro(PyObject* object, PyObject* name, PyObject* value) {
    static const Name kSetAttr("setAttr");
    if (!value || !PyUnicode_Check(name) || is_underscored(name)) {
        checked(PyObject_GenericSetAttr(object, name, value));
        return 0;
    }
    steal(PyObject_CallMethodObjArgs(object, kSetAttr.get(), name, value, nullptr));
    return 0;
}

py::object array_dir(HandleArray& self) {
    const py::object names =
        self.cmodel ? attribute_names(self.cmodel, static_cast<int>(kind_of(self).kind)) : py::list();
    return directory(object_of(self), borrow(self.dict), names);
}

// --- shape

py::object array_attribute(HandleArray& self, const Name& name) {
    return steal(PyObject_GetAttr(array_of(self).ptr(), name.get()));
}
py::object array_shape(HandleArray& self) { return shape_tuple(shape_of(array_of(self))); }
PyObject* array_ndim(HandleArray& self) { return PyLong_FromLong(shape_of(array_of(self)).ndim); }
PyObject* array_size(HandleArray& self) { return PyLong_FromSsize_t(size_of(array_of(self))); }
py::object array_item(HandleArray& self) {
    static const Name kItem("item");
    return steal(PyObject_CallObject(array_attribute(self, kItem).ptr(), nullptr));
}
py::object array_tolist(HandleArray& self) {
    static const Name kTolist("tolist");
    return steal(PyObject_CallObject(array_attribute(self, kTolist).ptr(), nullptr));
}

py::object array_idxarr(HandleArray& self) {
    const std::vector<int> indices = handle_indices(self);
    py::object array = new_array(shape_of(array_of(self)), CellType::kInt32);
    std::copy(indices.begin(), indices.end(), data_of<int>(array));
    return array;
}

py::object array_field(HandleArray& self) { return array_of(self); }
py::object array_cmodel(HandleArray& self) { return self.cmodel ? borrow(self.cmodel) : none(); }
PyObject* array_typename(HandleArray& self) { return PyUnicode_FromString(kind_of(self).name); }
PyObject* array_typeenum(HandleArray& self) { return PyLong_FromLong(static_cast<int>(kind_of(self).kind)); }

// --- life

int array_traverse(PyObject* object, visitproc visit, void* arg) {
    const HandleArray& self = *reinterpret_cast<HandleArray*>(object);
    Py_VISIT(self.array);
    Py_VISIT(self.cmodel);
    Py_VISIT(self.dict);
    return visit_type(object, visit, arg);
}

int array_clear(PyObject* object) {
    Py_CLEAR(reinterpret_cast<HandleArray*>(object)->dict);
    return 0;
}

void array_dealloc(PyObject* object) {
    HandleArray& self = *reinterpret_cast<HandleArray*>(object);
    PyTypeObject* own = *kind_of(self).type;
    PyObject_GC_UnTrack(object);
    if (self.weakrefs) PyObject_ClearWeakRefs(object);
    Py_CLEAR(self.dict);
    Py_CLEAR(self.array);
    Py_CLEAR(self.cmodel);
    free_instance(object, own);
}

const PyMethodDef kMethods[] = {
    {"getAttr", method<array_getAttr>, kKeywords,
     "getAttr($self, attrname)\n--\n\n"
     "Values of an attribute for all elements: an ndarray of the same shape (float64, int32, U1 or object).\n\n"
     "Raises AttributeError for an unknown attribute, ZelvanError where a value isn't available."},
    {"setAttr", method<array_setAttr>, kKeywords,
     "setAttr($self, attrname, value)\n--\n\n"
     "Set an attribute of all elements; the change takes effect at the next update.\n\n"
     "`value` is a scalar or text for all, an ndarray of the same shape, or for one dimension any iterable of that\n"
     "length. Raises AttributeError for an unknown or read-only attribute and for another shape."},
    {"prefetchAttr", method<array_prefetchAttr>, kKeywords,
     "prefetchAttr($self, attrname)\n--\n\nTell the library that an attribute will be read."},
    {"__getattr__", method<array_getattr>, METH_O,
     "__getattr__($self, name, /)\n--\n\nThe attribute `name` of all elements, as getAttr gives it."},
    {"__dir__", method<array_dir>, METH_NOARGS,
     "__dir__($self)\n--\n\nSorted names of methods, stored fields and attributes."},
    {"item", method<array_item>, METH_NOARGS,
     "item($self)\n--\n\nThe only element. Raises ValueError for any other size than 1."},
    {"tolist", method<array_tolist>, METH_NOARGS,
     "tolist($self)\n--\n\nThe elements as nested lists; without dimensions the element itself."},
    {"_idxarr", method<array_idxarr>, METH_NOARGS,
     "_idxarr($self)\n--\n\n"
     "Indices of the elements as an int32 ndarray of the same shape: -1 for one that awaits update, below that for "
     "one\n"
     "that is removed."},
};

const PyGetSetDef kProperties[] = {
    {"shape", getter_of<array_shape>, nullptr, "Lengths of the dimensions (tuple of int).", nullptr},
    {"ndim", getter_of<array_ndim>, nullptr, "Number of dimensions (int).", nullptr},
    {"size", getter_of<array_size>, nullptr, "Number of elements (int).", nullptr},
    {"_cmodel", getter_of<array_cmodel>, nullptr, "The capsule of the model, None for an empty array.", nullptr},
    {"_typename", getter_of<array_typename>, nullptr, "Name of the class (str).", nullptr},
    {"_typeenum", getter_of<array_typeenum>, nullptr, "Number of the kind of element (int).", nullptr},
    dict_property(),
};

// Tables that a type points to for its whole life.
template <class Def, std::size_t N>
Def* keep_table(const Def (&shared)[N], const std::vector<Def>& extra) {
    Def* table = new Def[N + extra.size() + 1]{};
    std::copy(extra.begin(), extra.end(), std::copy(shared, shared + N, table));
    return table;
}

}  // namespace

void make_handle_array_type(py::module_& module, const HandleArrayKind& kind, HandleExtras extras) {
    kinds.push_back(&kind);
    static PyMemberDef members[] = {
        dict_at(offsetof(HandleArray, dict)),
        weakrefs_at(offsetof(HandleArray, weakrefs)),
        {},
    };
    extras.properties.push_back({kind.field, getter_of<array_field>, nullptr, "The ndarray of the elements.", nullptr});
    std::vector<PyType_Slot> slots = {
        {Py_tp_doc, const_cast<char*>(kind.doc)},
        {Py_tp_dealloc, reinterpret_cast<void*>(array_dealloc)},
        {Py_tp_traverse, reinterpret_cast<void*>(array_traverse)},
        {Py_tp_clear, reinterpret_cast<void*>(array_clear)},
        {Py_tp_getattro, slot<array_getattro>()},
        {Py_tp_setattro, slot<array_setattro>()},
        {Py_tp_methods, keep_table(kMethods, extras.methods)},
        {Py_tp_members, members},
        {Py_tp_getset, keep_table(kProperties, extras.properties)},
    };
    slots.insert(slots.end(), extras.slots.begin(), extras.slots.end());
    slots.push_back({0, nullptr});
    PyType_Spec spec{kind.full_name, sizeof(HandleArray), 0,
                     Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_HAVE_GC, slots.data()};
    *kind.type = make_type(module, spec);
}

}  // namespace zelvanpy
