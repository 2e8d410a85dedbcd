#include "extern.h"

#include <climits>
#include <cstring>

namespace zelvanpy {

namespace {

PyObject* module_dict;  // owned: the module may be deleted and imported again

// Capsules of freed objects point here: a capsule can't hold null.
char freed_sentinel;

const Name kEncode("encode"), kDecode("decode"), kItem("item"), kCmodel("_cmodel"), kCenv("_cenv");

// Strings of numpy have the slots too.
bool has_number_slot(py::handle value, unaryfunc PyNumberMethods::* slot) {
    PyNumberMethods* number = Py_TYPE(value.ptr())->tp_as_number;
    return number && number->*slot && !PyUnicode_Check(value.ptr()) && !PyBytes_Check(value.ptr());
}

// The object to convert by the slot; empty where there is none. Arrays of one element are replaced by it,
// as their own __float__ and __int__ warn.
py::object convertible(py::handle value, unaryfunc PyNumberMethods::* slot) {
    if (!has_number_slot(value, slot)) return {};
    PyMappingMethods* mapping = Py_TYPE(value.ptr())->tp_as_mapping;
    if (!mapping || !mapping->mp_length) return borrow(value);
    PyObject* element = PyObject_CallMethodObjArgs(value.ptr(), kItem.get(), nullptr);
    if (!element) {
        PyErr_Clear();
        return borrow(value);
    }
    py::object result = py::reinterpret_steal<py::object>(element);
    return has_number_slot(result, slot) ? result : py::object();
}

[[noreturn]] void raise_not_number(py::handle value, const char* what, const char* wanted) {
    PyErr_Format(PyExc_TypeError, "%s must be %s, not %U", what, wanted, shown_value(value).ptr());
    throw PythonError{};
}

}  // namespace

py::object string_to_bytes(py::handle text) {
    if (PyBytes_Check(text.ptr())) return borrow(text);
    if (PyUnicode_CheckExact(text.ptr())) return steal(PyUnicode_AsUTF8String(text.ptr()));
    py::object encode = steal(PyObject_GetAttr(text.ptr(), kEncode.get()));
    return steal(PyObject_CallFunction(encode.ptr(), "s", "UTF-8"));
}

py::object bytes_to_string(py::handle bytes) {
    if (!PyBytes_Check(bytes.ptr())) return borrow(bytes);
    return steal(PyObject_CallMethodObjArgs(bytes.ptr(), kDecode.get(), nullptr));
}

py::object to_str(const char* text) { return steal(PyUnicode_FromString(text ? text : "")); }

py::object message_to_str(const char* text) {
    return steal(PyUnicode_DecodeUTF8(text, static_cast<Py_ssize_t>(std::strlen(text)), "replace"));
}

char first_char(py::handle text) {
    py::object first;
    if (PyUnicode_Check(text.ptr()) && PyUnicode_READY(text.ptr()) == 0 && PyUnicode_GET_LENGTH(text.ptr()) > 0) {
        const Py_UCS4 code = PyUnicode_READ_CHAR(text.ptr(), 0);
        if (code > 127) raise(PyExc_OverflowError, "value too large to convert to char");
        return static_cast<char>(code);
    }
    first = steal(PySequence_GetItem(text.ptr(), 0));
    if (!PyUnicode_Check(first.ptr())) {
        PyErr_Format(PyExc_TypeError, "ord() expected string of length 1, but %.200s found",
                     Py_TYPE(first.ptr())->tp_name);
        throw PythonError{};
    }
    return first_char(first);
}

char letter_argument(py::handle text, const Argument& argument, const char* wanted) {
    try {
        return first_char(text);
    } catch (const PythonError&) {
        const PySequenceMethods* own = Py_TYPE(text.ptr())->tp_as_sequence;  // which then raised what it raised
        if (!PyUnicode_Check(text.ptr()) && own && own->sq_item) throw;
    }
    const bool is_empty = PyErr_ExceptionMatches(PyExc_IndexError), is_type = PyErr_ExceptionMatches(PyExc_TypeError);
    if (!is_empty && !is_type) throw PythonError{};
    PyErr_Clear();
    refuse_argument(is_empty ? PyExc_IndexError : PyExc_TypeError, argument, wanted, text);
}

py::object file_name(py::handle name) {
    static const Name kFspath("__fspath__");
    const bool is_path = _PyType_Lookup(Py_TYPE(name.ptr()), kFspath.get());
    return is_path ? steal(PyOS_FSPath(name.ptr())) : borrow(name);
}

CString::CString(py::handle text) {
    Py_ssize_t length = 0;
    if (PyUnicode_CheckExact(text.ptr())) {
        text_ = PyUnicode_AsUTF8AndSize(text.ptr(), &length);
        if (!text_) throw PythonError{};
        keep_ = borrow(text);
    } else {
        keep_ = string_to_bytes(text);
        char* chars;
        if (PyBytes_AsStringAndSize(keep_.ptr(), &chars, &length)) throw PythonError{};
        text_ = chars;
    }
    if (std::memchr(text_, 0, static_cast<std::size_t>(length))) {
        PyErr_SetString(PyExc_ValueError, "embedded null character");
        throw PythonError{};
    }
}

py::object wrap_pointer(void* pointer) { return pointer ? steal(PyCapsule_New(pointer, nullptr, nullptr)) : none(); }

void* unwrap_pointer(py::handle capsule) {
    if (capsule.is_none()) return nullptr;
    void* pointer = PyCapsule_GetPointer(capsule.ptr(), nullptr);
    if (!pointer) PyErr_WriteUnraisable(to_str("zelvanpy.__ptr").ptr());
    return pointer == &freed_sentinel ? nullptr : pointer;
}

void invalidate_capsule(py::handle capsule) {
    if (PyCapsule_CheckExact(capsule.ptr())) checked(PyCapsule_SetPointer(capsule.ptr(), &freed_sentinel));
}

double library_double(double value) {
    if (value == Py_HUGE_VAL) return ZVN_INFINITY;
    if (value == -Py_HUGE_VAL) return -ZVN_INFINITY;
    return value;
}

double python_double(double value) {
    if (value == ZVN_UNDEFINED) return value;
    if (value >= ZVN_INFINITY) return Py_HUGE_VAL;
    if (value <= -ZVN_INFINITY) return -Py_HUGE_VAL;
    return value;
}

bool scalar_value(py::handle value, double& result) {
    if (PyFloat_CheckExact(value.ptr())) {
        result = PyFloat_AS_DOUBLE(value.ptr());
        return true;
    }
    const py::object number = convertible(value, &PyNumberMethods::nb_float);
    if (!number) return false;
    result = PyFloat_AsDouble(number.ptr());
    if (result != -1.0 || !PyErr_Occurred()) return true;
    PyErr_Clear();
    return false;
}

bool is_scalar(py::handle value) {
    double ignored;
    return scalar_value(value, ignored);
}

double to_double(py::handle value, const char* what) {
    const py::object number = convertible(value, &PyNumberMethods::nb_float);
    if (!number) raise_not_number(value, what, "a number");
    return checked_double(PyFloat_AsDouble(number.ptr()));
}

int to_int(py::handle value, const char* what) {
    const py::object number = convertible(value, &PyNumberMethods::nb_int);
    if (!number) raise_not_number(value, what, "an integer");
    const py::object integer = steal(PyNumber_Long(number.ptr()));
    int overflow = 0;
    const long long wide = PyLong_AsLongLongAndOverflow(integer.ptr(), &overflow);
    if (overflow || wide < INT_MIN || wide > INT_MAX) {
        PyErr_Format(PyExc_OverflowError, "%s does not fit a 32-bit integer", what);
        throw PythonError{};
    }
    return static_cast<int>(wide);
}

py::object module_class(const char* name) { return borrow(PyDict_GetItemString(module_dict, name)); }

py::object error_message(py::handle object) {
    if (py::object cmodel = find_attribute(object, kCmodel))
        return message_to_str(ZVNgetmerrormsg(model_pointer(cmodel)));
    if (py::object cenv = find_attribute(object, kCenv)) return message_to_str(ZVNgeterrormsg(env_pointer(cenv)));
    return to_str("");
}

py::object find_attribute(py::handle object, const Name& name) {
    PyObject* value = PyObject_GetAttr(object.ptr(), name.get());
    if (!value) {
        if (!PyErr_ExceptionMatches(PyExc_AttributeError)) throw PythonError{};
        PyErr_Clear();
    }
    return py::reinterpret_steal<py::object>(value);
}

namespace {

py::object wrapptr(py::handle, py::handle address) {
    void* pointer = PyLong_AsVoidPtr(address.ptr());
    if (!pointer && PyErr_Occurred()) throw PythonError{};
    return wrap_pointer(pointer);
}

py::object ptr(py::handle, py::handle capsule) { return steal(PyLong_FromVoidPtr(unwrap_pointer(capsule))); }

py::object stringtobytes(py::handle, py::handle string_in) { return string_to_bytes(string_in); }
py::object bytestostring(py::handle, py::handle bytes_in) { return bytes_to_string(bytes_in); }
py::object isscalar(py::handle, py::handle value) { return boolean(is_scalar(value)); }
py::object geterrormsg(py::handle, py::handle object) { return error_message(object); }

PyMethodDef functions[] = {
    {"__stringtobytes", method<stringtobytes>, METH_O,
     "__stringtobytes(string_in, /)\n--\n\n`bytes` as they are, anything else by its `encode('UTF-8')`."},
    {"__bytestostring", method<bytestostring>, METH_O,
     "__bytestostring(bytes_in, /)\n--\n\n`bytes` by their `decode()`, anything else as it is."},
    {"__wrapptr", method<wrapptr>, METH_O,
     "__wrapptr(p, /)\n--\n\nA capsule without name and destructor round the address `p` (int), None for 0."},
    {"__ptr", method<ptr>, METH_O,
     "__ptr(obj, /)\n--\n\nThe address in a capsule as int; 0 for None and for anything that is no capsule."},
    {"__isscalar", method<isscalar>, METH_O,
     "__isscalar(value, /)\n--\n\nWhether `value` converts to a double by its `__float__` protocol."},
    {"__geterrormsg", method<geterrormsg>, METH_O,
     "__geterrormsg(obj, /)\n--\n\nThe library's latest message for an object with a handle, otherwise \"\"."},
    {},
};

}  // namespace

void init_extern(py::module_& module) {
    module_dict = borrow(PyModule_GetDict(module.ptr())).release().ptr();
    checked(PyModule_AddFunctions(module.ptr(), functions));
}

}  // namespace zelvanpy
