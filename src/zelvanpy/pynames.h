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

// The attribute f_locals of a frame, or of what stands for one.
inline py::object frame_locals(py::handle frame) {
#if PY_VERSION_HEX >= 0x030B0000
    if (PyFrame_Check(frame.ptr())) return steal(PyFrame_GetLocals(reinterpret_cast<PyFrameObject*>(frame.ptr())));
#endif
    static const Name kLocals("f_locals");
    return steal(PyObject_GetAttr(frame.ptr(), kLocals.get()));
}

}  // namespace zelvanpy
