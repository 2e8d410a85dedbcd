#include "pybase.h"

namespace zelvanpy {

void translate_exception() noexcept {
    try {
        throw;
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
