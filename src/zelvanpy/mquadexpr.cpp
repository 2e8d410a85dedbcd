#include "mquadexpr.h"

#include "exception.h"

namespace zelvanpy {

PyTypeObject* MQuadExpr_Type = &PyEllipsis_Type;
namespace { [[noreturn]] void no() { raise_zelvan(ZVN_ERROR_NOT_SUPPORTED, "Arrays of quadratic expressions are not available"); } }
bool mquadexpr_allows_compact(const Shape& shape) {
    return shape.ndim <= 2 && std::all_of(shape.dims, shape.dims + shape.ndim, [](Py_intptr_t d) { return d <= 1; });
}
py::object mquadexpr_zeros(const Shape&) { no(); }
py::object mquadexpr_compact(std::vector<QuadPart>, py::object) { no(); }
py::object mquadexpr_from_mlinexpr(py::handle) { no(); }
py::object mquadexpr_from_cells(py::object) { no(); }
py::object mquadexpr_from_mvars(py::handle, py::handle) { no(); }
}
