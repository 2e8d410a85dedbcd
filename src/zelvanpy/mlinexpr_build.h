#pragma once
// How matrix expressions of linear kind are made: of variables, constants and products with matrices.

#include "mlinexpr.h"

namespace zelvanpy {

py::object mlinexpr_from_mvar(py::handle mvar, bool force_full = false, PyTypeObject* type = MLinExpr_Type);
py::object mlinexpr_from_mvar_full(py::handle mvar, PyTypeObject* type = MLinExpr_Type);
// The same times a number, in compact form where that is allowed.
py::object mlinexpr_from_scaled_mvar(py::handle mvar, double factor);
// Of one cell without dimensions; the expression is copied.
py::object mlinexpr_from_var(py::handle var, PyTypeObject* type = MLinExpr_Type);
py::object mlinexpr_from_linexpr(py::handle linexpr, PyTypeObject* type = MLinExpr_Type);
// A compact expression of constants only, which are copied.
py::object mlinexpr_from_constants(py::handle b, PyTypeObject* type = MLinExpr_Type);
// matrix @ mvar and mvar @ matrix, for an ndarray or sparse matrix
py::object mlinexpr_from_matmul_right(py::handle matrix, py::handle mvar, PyTypeObject* type = MLinExpr_Type);
py::object mlinexpr_from_matmul_left(py::handle mvar, py::handle matrix, PyTypeObject* type = MLinExpr_Type);
// x_left @ A + b, A @ x_right + b or b, where any may be None
py::object mlinexpr_from_affine(py::handle x_left, py::handle matrix, py::handle x_right, py::handle b,
                                PyTypeObject* type = MLinExpr_Type);
// ndarray.shape, or the shape of a sparse matrix
Shape matrix_shape(py::handle matrix);

}  // namespace zelvanpy
