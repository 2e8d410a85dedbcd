#pragma once
// What MLinExpr has of numpy's arrays: items, sums, values, text.

#include "mlinexpr.h"

namespace zelvanpy {

py::object mlinexpr_item(MLinExpr& self);
py::object mlinexpr_getitem(MLinExpr& self, py::handle index);
void mlinexpr_setitem(MLinExpr& self, py::handle index, py::handle value);
// index with an Ellipsis at its end, so that an array of the cells comes out whatever it is
py::object index_of_view(py::handle index);
py::object mlinexpr_sum(MLinExpr& self, py::handle axis);
void mlinexpr_clear(MLinExpr& self);
void mlinexpr_flatten(MLinExpr& self);
void mlinexpr_normalize_cells(MLinExpr& self);
py::object mlinexpr_constants(MLinExpr& self);
py::object mlinexpr_values(MLinExpr& self);
py::object mlinexpr_repr(MLinExpr& self);
// "<name shape + blanks>" and numpy's text of the cells, each as str() of it behind a blank
py::object cells_repr(const char* name, const Shape& shape, const char* blanks, py::handle cells);

}  // namespace zelvanpy
