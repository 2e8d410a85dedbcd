#pragma once
// The types of the matrix layer, as units below it know them.

#include "pybase.h"

namespace zelvanpy {

extern PyTypeObject* MVar_Type;
extern PyTypeObject* MLinExpr_Type;
extern PyTypeObject* MQuadExpr_Type;

// Subclasses count as well.
inline bool is_mvar(py::handle h) { return Py_TYPE(h.ptr()) == MVar_Type || PyObject_TypeCheck(h.ptr(), MVar_Type); }
inline bool is_mlinexpr(py::handle h) {
    return Py_TYPE(h.ptr()) == MLinExpr_Type || PyObject_TypeCheck(h.ptr(), MLinExpr_Type);
}
inline bool is_mquadexpr(py::handle h) {
    return Py_TYPE(h.ptr()) == MQuadExpr_Type || PyObject_TypeCheck(h.ptr(), MQuadExpr_Type);
}
inline bool is_matrix_operand(py::handle h) { return is_mvar(h) || is_mlinexpr(h) || is_mquadexpr(h); }

}  // namespace zelvanpy
