#pragma once
// What every unit of the module includes: CPython, the object layer and the exception trap.

#define PY_SSIZE_T_CLEAN
#include <Python.h>
#include <pybind11/pybind11.h>
#include <structmember.h>

#include <new>
#include <type_traits>
#include <utility>

namespace zelvanpy {

namespace py = pybind11;

// Thrown where a Python exception is already set.
struct PythonError {};

// Result of a C call that returns a new reference, or the exception that it set.
inline py::object steal(PyObject* result) {
    if (!result) throw PythonError{};
    return py::reinterpret_steal<py::object>(result);
}
inline py::object borrow(py::handle h) { return py::reinterpret_borrow<py::object>(h); }
inline py::object none() { return borrow(Py_None); }
inline py::object boolean(bool value) { return borrow(value ? Py_True : Py_False); }
// Raises the Python exception `type` with a text.
[[noreturn]] void raise(PyObject* type, const char* text);
[[noreturn]] void raise(PyObject* type, py::handle text);
// The same with a cause of the same type: what a text that others rely on leaves out.
[[noreturn]] void raise(PyObject* type, py::handle text, py::handle why);
// Raises an exception object with another one as its __cause__.
[[noreturn]] void raise_from(const py::object& error, const py::object& cause);
// Takes the exception that is set.
py::object taken_exception();
// Result of a C call that returns -1 with an exception set.
template <class Int>
Int checked(Int result) {
    if (result == static_cast<Int>(-1)) throw PythonError{};
    return result;
}
// Result of a conversion such as PyFloat_AsDouble, where -1 may also be the value.
inline double checked_double(double value) {
    if (value == -1.0 && PyErr_Occurred()) throw PythonError{};
    return value;
}

// Sets the Python exception that belongs to the C++ exception in flight.
void translate_exception() noexcept;

// Runs `body` where nobody can receive an exception, with one possibly in flight; one that it raises is reported.
template <class Body>
void run_unraisable(PyObject* context, Body body) noexcept {
    PyObject *type, *value, *traceback;
    PyErr_Fetch(&type, &value, &traceback);
    try {
        body();
    } catch (...) {
        translate_exception();
    }
    if (PyErr_Occurred()) PyErr_WriteUnraisable(context);
    PyErr_Restore(type, value, traceback);
}

// Whether Python code can still run: a thread that asks for the interpreter lock later is ended.
inline bool python_alive() {
#if PY_VERSION_HEX >= 0x030d0000
    return Py_IsInitialized() && !Py_IsFinalizing();
#else
    return Py_IsInitialized() && !_Py_IsFinalizing();
#endif
}

inline bool is_main_interpreter() {
#if PY_VERSION_HEX >= 0x03090000
    return PyInterpreterState_Get() == PyInterpreterState_Main();
#else
    return PyThreadState_Get()->interp == PyInterpreterState_Main();
#endif
}

// Arguments of a METH_FASTCALL | METH_KEYWORDS call.
struct Args {
    PyObject* const* values;  // positional ones, then those of the keywords
    Py_ssize_t count;         // of positional ones
    PyObject* keywords;       // tuple of names, or null
};

namespace trap_detail {

// Argument of the C function for a parameter of the C++ function: `T&` is an instance, py::handle any object.
template <class P>
struct Param {
    using C = P;
    static P get(C value) { return value; }
};
template <class T>
struct Param<T&> {
    using C = PyObject*;
    static T& get(C value) { return *reinterpret_cast<T*>(value); }
};
template <>
struct Param<py::handle> {
    using C = PyObject*;
    static py::handle get(C value) { return value; }
};

template <class R>
struct Result {
    using C = R;
    static C get(R value) { return value; }
    static C failure() { return static_cast<C>(-1); }
};
template <>
struct Result<PyObject*> {
    using C = PyObject*;
    static C get(PyObject* value) { return value; }
    static C failure() { return nullptr; }
};
template <>
struct Result<py::object> {
    using C = PyObject*;
    static C get(py::object&& value) { return value.release().ptr(); }
    static C failure() { return nullptr; }
};

template <auto F, class = decltype(F)>
struct Trap;

template <auto F, class R, class... P>
struct Trap<F, R (*)(P...)> {
    static typename Result<R>::C call(typename Param<P>::C... args) noexcept {
        try {
            return Result<R>::get(F(Param<P>::get(args)...));
        } catch (...) {
            translate_exception();
            return Result<R>::failure();
        }
    }
};

template <auto F, class... P>
struct Trap<F, void (*)(P...)> {  // a slot that returns int
    static int call(typename Param<P>::C... args) noexcept {
        try {
            F(Param<P>::get(args)...);
            return 0;
        } catch (...) {
            translate_exception();
            return -1;
        }
    }
};

template <auto F, class = decltype(F)>
struct MethodTrap;

template <auto F, class R, class Self>
struct MethodTrap<F, R (*)(Self)> {  // METH_NOARGS
    static PyObject* call(PyObject* self, PyObject*) noexcept { return Finish<R, Self>::run(self); }

private:
    template <class Res, class S>
    struct Finish {
        static PyObject* run(PyObject* self) noexcept {
            try {
                if constexpr (std::is_void_v<Res>) {
                    F(Param<S>::get(self));
                    Py_RETURN_NONE;
                } else {
                    return Result<Res>::get(F(Param<S>::get(self)));
                }
            } catch (...) {
                translate_exception();
                return nullptr;
            }
        }
    };
};

template <auto F, class R, class Self>
struct MethodTrap<F, R (*)(Self, py::handle)> {  // METH_O
    static PyObject* call(PyObject* self, PyObject* arg) noexcept {
        try {
            if constexpr (std::is_void_v<R>) {
                F(Param<Self>::get(self), arg);
                Py_RETURN_NONE;
            } else {
                return Result<R>::get(F(Param<Self>::get(self), arg));
            }
        } catch (...) {
            translate_exception();
            return nullptr;
        }
    }
};

template <auto F, class R, class Self>
struct MethodTrap<F, R (*)(Self, Args)> {  // METH_FASTCALL | METH_KEYWORDS
    static PyObject* call(PyObject* self, PyObject* const* values, Py_ssize_t count, PyObject* keywords) noexcept {
        try {
            const Args args{values, count, keywords};
            if constexpr (std::is_void_v<R>) {
                F(Param<Self>::get(self), args);
                Py_RETURN_NONE;
            } else {
                return Result<R>::get(F(Param<Self>::get(self), args));
            }
        } catch (...) {
            translate_exception();
            return nullptr;
        }
    }
};

}  // namespace trap_detail

// The C function for a type slot: slot<LinExpr_add>. Parameters map one to one: `T&` and py::handle are
// PyObject*, anything else is itself. A void function makes a slot that returns int.
template <auto F>
inline constexpr auto slot_function = &trap_detail::Trap<F>::call;

template <auto F>
void* slot() {
    return reinterpret_cast<void*>(slot_function<F>);
}

// The C function for a method table: method<LinExpr_add>. Takes (Self&), (Self&, py::handle) or
// (Self&, Args); use with METH_NOARGS, METH_O, or kKeywords. void gives None.
template <auto F>
inline PyCFunction method =
    reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(&trap_detail::MethodTrap<F>::call));

inline constexpr int kKeywords = METH_FASTCALL | METH_KEYWORDS;

// A property of a getset table.
template <auto F>
inline constexpr getter getter_of =
    [](PyObject* self, void*) noexcept -> PyObject* { return trap_detail::Trap<F>::call(self); };

}  // namespace zelvanpy
