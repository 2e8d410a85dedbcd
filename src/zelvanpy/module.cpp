// The module: creates the classes of all units, in the order in which they build on each other.

#include "pybase.h"

namespace zelvanpy {
#define ZELVAN_UNIT(unit) void init_##unit(py::module_& module);
#include "units.inc"
#undef ZELVAN_UNIT
}  // namespace zelvanpy

// The interpreter's own entry, which leads to that of pybind11, below.
extern "C" PYBIND11_EXPORT PyObject* init_with_pybind11();
// NOLINTNEXTLINE(bugprone-reserved-identifier): the name that the interpreter looks for
extern "C" PYBIND11_EXPORT PyObject* PyInit__zelvanpy() {
    // Types, interned names and the library's callbacks belong to one interpreter.
    if (!zelvanpy::is_main_interpreter()) {
        PyErr_SetString(PyExc_ImportError, "zelvanpy can't be imported in a sub-interpreter");
        return nullptr;
    }
    return init_with_pybind11();
}
#define PyInit__zelvanpy init_with_pybind11

// The extension is _zelvanpy inside the package; to users, pickles and the logger everything is `zelvanpy`.
PYBIND11_MODULE(_zelvanpy, module) {
    module.attr("__name__") = "zelvanpy";
    module.attr("__version__") = ZELVANPY_VERSION;
    try {
#define ZELVAN_UNIT(unit) zelvanpy::init_##unit(module);
#include "units.inc"
#undef ZELVAN_UNIT
    } catch (const zelvanpy::PythonError&) {
        throw pybind11::error_already_set();
    }
}
