#include "pybase.h"

#include <chrono>
#include <thread>
#if defined(__GLIBCXX__)
#include <cxxabi.h>
#endif

namespace zelvanpy {

namespace {

// Until the process is gone.
[[noreturn]] void wait_for_the_end() {
    for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
}

}  // namespace

void raise(PyObject* type, const char* text) {
    PyErr_SetString(type, text);
    throw PythonError{};
}

void raise(PyObject* type, py::handle text) {
    PyErr_SetObject(type, text.ptr());
    throw PythonError{};
}

void raise_from(const py::object& error, const py::object& cause) {
    PyException_SetCause(error.ptr(), py::object(cause).release().ptr());
    raise(reinterpret_cast<PyObject*>(Py_TYPE(error.ptr())), error);
}

py::object taken_exception() {
    const py::error_already_set set;  // normalized
    if (set.trace()) checked(PyException_SetTraceback(set.value().ptr(), set.trace().ptr()));
    return set.value();
}

void raise(PyObject* type, py::handle text, py::handle why) {
    const auto made = [&](py::handle words) { return steal(PyObject_CallFunctionObjArgs(type, words.ptr(), nullptr)); };
    raise_from(made(text), made(why));
}

void translate_exception() noexcept {
    try {
        throw;
#if defined(__GLIBCXX__)
    } catch (const abi::__forced_unwind&) {
        // The interpreter ends this thread, as it asked for the lock while the process exits. To unwind
        // further would abort the process.
        wait_for_the_end();
#endif
    } catch (const PythonError&) {
    } catch (py::error_already_set& e) {
        e.restore();
    } catch (const py::builtin_exception& e) {
        e.set_error();
    } catch (const std::bad_alloc&) {
        PyErr_NoMemory();
    } catch (const std::exception& e) {
        PyErr_SetString(PyExc_RuntimeError, e.what());
    } catch (...) {
        PyErr_SetString(PyExc_RuntimeError, "unknown C++ exception");
    }
}

}  // namespace zelvanpy
