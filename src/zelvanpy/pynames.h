#pragma once
// Interned strings made on first use and kept for the life of the process.

#include "pybase.h"

namespace zelvanpy {

class Name {
public:
    explicit constexpr Name(const char* text) : text_(text) {}
    const char* text() const { return text_; }
    PyObject* get() const {
        if (!object_) {
            object_ = PyUnicode_InternFromString(text_);
            if (!object_) throw PythonError{};
        }
        return object_;
    }
    operator py::handle() const { return get(); }
    // Whether a str object spells this name; identity first.
    bool is(PyObject* other) const {
        if (other == get()) return true;
        const int equal = PyUnicode_Compare(other, object_);
        if (equal == -1 && PyErr_Occurred()) throw PythonError{};
        return equal == 0;
    }

private:
    const char* text_;
    mutable PyObject* object_ = nullptr;
};

// Whether a str begins with "_": such names belong to Python, never to the library.
inline bool is_underscored(PyObject* name) {
    return PyUnicode_GET_LENGTH(name) > 0 && PyUnicode_READ_CHAR(name, 0) == '_';
}

// The attribute f_locals of a frame, or of what stands for one.
inline py::object frame_locals(py::handle frame) {
#if PY_VERSION_HEX >= 0x030B0000
    if (PyFrame_Check(frame.ptr())) return steal(PyFrame_GetLocals(reinterpret_cast<PyFrameObject*>(frame.ptr())));
#endif
    static const Name kLocals("f_locals");
    return steal(PyObject_GetAttr(frame.ptr(), kLocals.get()));
}

// What __reduce__ gives for an instance that its class makes of `arguments`, with the attributes that a subclass has.
inline py::object reduced(py::handle self, const py::object& arguments) {
    static const Name kDict("__dict__");
    const py::handle type = reinterpret_cast<PyObject*>(Py_TYPE(self.ptr()));
    py::object attributes = py::reinterpret_steal<py::object>(PyObject_GetAttr(self.ptr(), kDict.get()));
    if (!attributes && !PyErr_ExceptionMatches(PyExc_AttributeError)) throw PythonError{};
    PyErr_Clear();
    if (!attributes) return py::make_tuple(type, arguments);
    return py::make_tuple(type, arguments, attributes);
}

}  // namespace zelvanpy
