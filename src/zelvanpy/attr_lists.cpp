// Attribute values of many objects: one call of the library for any number of them.

#include "attr_lists.h"

#include <memory>

#include "exception.h"
#include "pyargs.h"

namespace zelvanpy {

namespace {

// Items of a list or tuple directly, of any other object by its subscripts.
class Items {
public:
    explicit Items(py::handle sequence)
        : sequence_(sequence), direct_(PyList_CheckExact(sequence.ptr()) || PyTuple_CheckExact(sequence.ptr())) {}
    py::object operator[](Py_ssize_t i) const {
        if (!direct_) return steal(PyObject_GetItem(sequence_.ptr(), steal(PyLong_FromSsize_t(i)).ptr()));
        // The size is asked each time: converting an item may run code that changes the list.
        if (i >= PySequence_Fast_GET_SIZE(sequence_.ptr())) raise(PyExc_IndexError, "list index out of range");
        return borrow(PySequence_Fast_GET_ITEM(sequence_.ptr(), i));
    }

private:
    py::handle sequence_;
    bool direct_;
};

template <class Make>
py::object fill(py::object list, Make make) {
    const Py_ssize_t num = PyList_GET_SIZE(list.ptr());
    for (Py_ssize_t i = 0; i < num; ++i) PyList_SET_ITEM(list.ptr(), i, steal(make(i)).release().ptr());
    return list;
}

// A value array, filled by convert(item) for each item, or with one value throughout.
template <class T, class Convert>
std::vector<T> value_array(std::size_t num, py::handle values, bool broadcast, const char* name, Convert convert) {
    if (broadcast) return num ? std::vector<T>(num, convert(values, name)) : std::vector<T>();
    std::vector<T> array(num);
    const Items items(values);
    for (std::size_t i = 0; i < num; ++i) array[i] = convert(items[i], name);
    return array;
}

char ordinal(py::handle value, const char* name) {
    PyObject* text = value.ptr();
    if (!PyUnicode_Check(text)) {
        PyErr_Format(PyExc_TypeError, "ord() expected string of length 1, but %.200s found", Py_TYPE(text)->tp_name);
        throw PythonError{};
    }
    if (PyUnicode_GET_LENGTH(text) != 1) {
        PyErr_Format(PyExc_TypeError, "ord() expected a character, but string of length %zd found",
                     PyUnicode_GET_LENGTH(text));
        throw PythonError{};
    }
    return first_byte(text, to_str(name));
}

double double_of(py::handle value, const char* name) {
    const bool exact = PyFloat_CheckExact(value.ptr());
    const double number = exact ? PyFloat_AS_DOUBLE(value.ptr()) : to_double(value, name);
    return library_double(number);
}

int write_strings(py::handle object, const AttrInfo& attribute, const std::vector<int>& indices, py::handle values,
                  bool broadcast) {
    // An encoded text each, or one for all, kept alive for the call.
    std::vector<CString> texts;
    const std::size_t distinct = broadcast ? (indices.empty() ? 0 : 1) : indices.size();
    texts.reserve(distinct);
    const Items items(values);
    for (std::size_t i = 0; i < distinct; ++i) texts.emplace_back(broadcast ? borrow(values) : items[i]);
    std::vector<char*> pointers(indices.size());
    for (std::size_t i = 0; i < pointers.size(); ++i) pointers[i] = const_cast<char*>(texts[broadcast ? 0 : i].get());
    return ZVNsetstrattrlist(model_of(object), attribute.name, static_cast<int>(indices.size()), indices.data(),
                             pointers.data());
}

[[noreturn]] void raise_unknown_type(const AttrInfo& attribute) {
    PyErr_Format(PyExc_ValueError, "Attribute '%s': no value type has the number %d", attribute.name, attribute.type);
    throw PythonError{};
}

}  // namespace

std::vector<int> index_vector(py::handle sequence) {
    const Py_ssize_t length = checked(PyObject_Length(sequence.ptr()));
    std::vector<int> indices(length);
    const Items items(sequence);
    for (Py_ssize_t i = 0; i < length; ++i) indices[i] = to_int(items[i], "Index");
    return indices;
}

py::object get_attribute_list(py::handle object, const AttrInfo& attribute, const std::vector<int>& indices) {
    const std::size_t num = indices.size();
    const int count = static_cast<int>(num);
    // First: making a list may run code that changes the model, and with it the texts that the library points to.
    py::object list = steal(PyList_New(static_cast<Py_ssize_t>(num)));
    ZVNmodel* model = model_of(object);
    switch (attribute.type) {
        case kCharAttr: {
            const std::unique_ptr<char[]> values(new char[num]);
            check(ZVNgetcharattrlist(model, attribute.name, count, indices.data(), values.get()), object);
            return fill(std::move(list),
                        [&](Py_ssize_t i) { return PyUnicode_FromOrdinal(static_cast<unsigned char>(values[i])); });
        }
        case kIntAttr: {
            const std::unique_ptr<int[]> values(new int[num]);
            check(ZVNgetintattrlist(model, attribute.name, count, indices.data(), values.get()), object);
            return fill(std::move(list), [&](Py_ssize_t i) { return PyLong_FromLong(values[i]); });
        }
        case kDoubleAttr: {
            const std::unique_ptr<double[]> values(new double[num]);
            check(ZVNgetdblattrlist(model, attribute.name, count, indices.data(), values.get()), object);
            return fill(std::move(list), [&](Py_ssize_t i) { return PyFloat_FromDouble(python_double(values[i])); });
        }
        case kStringAttr: {
            std::vector<char*> values(num);
            check(ZVNgetstrattrlist(model, attribute.name, count, indices.data(), values.data()), object);
            return fill(std::move(list), [&](Py_ssize_t i) { return to_str(values[i]).release().ptr(); });
        }
        default:
            raise_unknown_type(attribute);
    }
}

void set_attribute_list(py::handle object, const AttrInfo& attribute, const std::vector<int>& indices,
                        py::handle values, bool broadcast) {
    const std::size_t num = indices.size();
    const int count = static_cast<int>(num);
    int error = 0;
    switch (attribute.type) {
        case kCharAttr: {
            const auto array = value_array<char>(num, values, broadcast, attribute.name, ordinal);
            error = ZVNsetcharattrlist(model_of(object), attribute.name, count, indices.data(), array.data());
            break;
        }
        case kIntAttr: {
            const auto array = value_array<int>(num, values, broadcast, attribute.name, to_int);
            error = ZVNsetintattrlist(model_of(object), attribute.name, count, indices.data(), array.data());
            break;
        }
        case kDoubleAttr: {
            const auto array = value_array<double>(num, values, broadcast, attribute.name, double_of);
            error = ZVNsetdblattrlist(model_of(object), attribute.name, count, indices.data(), array.data());
            break;
        }
        case kStringAttr:
            error = write_strings(object, attribute, indices, values, broadcast);
            break;
        default:
            raise_unknown_type(attribute);
    }
    if (error) raise(PyExc_AttributeError, error_message(object));
}

namespace {

// For the list functions, whose caller names the type of the values.
AttrInfo typed_attribute(const CString& name, py::handle type) { return {name, to_int(type, "attrtype"), 0, true}; }

py::object gettypedattrlist_function(py::handle, Args args) {
    static const Signature<4> signature{
        "__gettypedattrlist", 4, {Name("obj"), Name("attrname"), Name("attrtype"), Name("inputlist")}};
    const auto [object, name, type, indices] = signature.parse(args);
    const CString text(name);
    return get_attribute_list(object, typed_attribute(text, type), index_vector(indices));
}

void settypedattrlist_function(py::handle, Args args) {
    static const Signature<5> signature{
        "__settypedattrlist", 5, {Name("obj"), Name("attrname"), Name("attrtype"), Name("indlist"), Name("newval")}};
    const auto [object, name, type, indices, values] = signature.parse(args);
    const CString text(name);
    set_attribute_list(object, typed_attribute(text, type), index_vector(indices), values, false);
}

PyMethodDef functions[] = {
    {"__gettypedattrlist", method<gettypedattrlist_function>, kKeywords,
     "__gettypedattrlist($module, obj, attrname, attrtype, inputlist)\n--\n\n"
     "List of the values of an attribute of the given type for a list of indices."},
    {"__settypedattrlist", method<settypedattrlist_function>, kKeywords,
     "__settypedattrlist($module, obj, attrname, attrtype, indlist, newval)\n--\n\n"
     "Set an attribute of the given type for a list of indices to a sequence of values."},
    {},
};

}  // namespace

void init_attr_lists(py::module_& module) { checked(PyModule_AddFunctions(module.ptr(), functions)); }

}  // namespace zelvanpy
