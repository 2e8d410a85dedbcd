// The module: creates the classes of all units, in the order in which they build on each other.

#include "pybase.h"

namespace zelvanpy {
#define ZELVAN_UNIT(unit) void init_##unit(py::module_& module);
#include "units.inc"
#undef ZELVAN_UNIT
}  // namespace zelvanpy

// The extension is _zelvanpy inside the package; to users, pickles and the logger everything is `zelvanpy`.
PYBIND11_MODULE(_zelvanpy, module) {
    module.attr("__name__") = "zelvanpy";
    try {
#define ZELVAN_UNIT(unit) zelvanpy::init_##unit(module);
#include "units.inc"
#undef ZELVAN_UNIT
    } catch (const zelvanpy::PythonError&) {
        throw pybind11::error_already_set();
    }
}
