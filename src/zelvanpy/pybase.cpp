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
