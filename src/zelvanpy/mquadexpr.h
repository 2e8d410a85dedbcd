#pragma once
// Arrays of quadratic expressions, in two forms: compact, for one cell, as a sum of x' Q y, and full, as an array of
// QuadExpr. The linear half is an MLinExpr in both.

#include <vector>

#include "mlinexpr.h"
#include "quadexpr.h"

namespace zelvanpy {

// left' Q right, where Q right is the block.
struct QuadPart {
    SharedVars left;
    Block block;
};

struct MQuadExpr {
    PyObject_HEAD PyObject* ndle;  // the linear half; null until __init__()
    PyObject* qearr;               // the cells of the full form, each without a linear part
    std::vector<QuadPart>* parts;  // of the compact form; null in full form
    PyObject* dict;
    PyObject* weakrefs;
};

inline MQuadExpr& as_mquadexpr(py::handle h) { return *reinterpret_cast<MQuadExpr*>(h.ptr()); }
inline py::handle object_of(MQuadExpr& self) { return reinterpret_cast<PyObject*>(&self); }

// Whether a compact quadratic expression can have the shape: at most one cell.
bool mquadexpr_allows_compact(const Shape& shape);
bool keeps_mquadexpr_compact(PyTypeObject* type, const Shape& shape);
// The road of an operator, as for linear ones.
bool takes_compact_road(MQuadExpr& self);

// New expressions; halves and cells are taken over.
py::object mquadexpr_compact(std::vector<QuadPart> parts, py::object ndle, PyTypeObject* type = MQuadExpr_Type);
py::object mquadexpr_full(py::object qearr, py::object ndle, PyTypeObject* type = MQuadExpr_Type);
py::object mquadexpr_zeros(const Shape& shape, PyTypeObject* type = MQuadExpr_Type);
py::object mquadexpr_zeros_full(const Shape& shape, PyTypeObject* type = MQuadExpr_Type);
py::object mquadexpr_from_mlinexpr(py::handle mlinexpr, bool force_full = false, PyTypeObject* type = MQuadExpr_Type);
py::object mquadexpr_from_quadexpr(py::handle quadexpr, PyTypeObject* type = MQuadExpr_Type);
// Of an array of cells that are LinExpr or QuadExpr and nobody else's.
py::object mquadexpr_from_cells(py::object mixed);
// Elementwise product of two MVars.
py::object mquadexpr_from_mvars(py::handle left, py::handle right, bool force_full = false,
                                PyTypeObject* type = MQuadExpr_Type);

// The halves, kept alive; throw before __init__().
py::object linear_half(MQuadExpr& self);
py::object quad_cells_of(MQuadExpr& self);
py::object quadexpr_at(const char* cell);
Shape mquadexpr_shape(MQuadExpr& self);
std::vector<QuadPart>& parts_of(MQuadExpr& self);

std::size_t num_quadparts(const std::vector<QuadPart>& parts);
void join_quadparts(std::vector<QuadPart>& parts);
std::vector<QuadPart> shared_quadparts(const std::vector<QuadPart>& parts);
// The parts as one with stored entries.
QuadPart joined_quadparts(const QuadPart* parts, std::size_t num);
// The quadratic terms of a compact expression.
py::object extracted_quadexpr(MQuadExpr& self);

py::object mquadexpr_to_full(MQuadExpr& self);
void mquadexpr_convert_to_full(MQuadExpr& self);
py::object full_mquadexpr(py::handle mquadexpr);
py::object mquadexpr_copy(MQuadExpr& self);
py::object copied_quad_cells(py::handle qearr, const Shape& shape);

}  // namespace zelvanpy
