#pragma once
// Shapes of the matrix layer.

#include "pyarray.h"

namespace zelvanpy {

// The shape of the matrix product of operands of one or two dimensions; throws ValueError.
Shape matmul_shape(const Shape& left, const Shape& right);
// numpy's broadcast; throws its ValueError.
Shape broadcast_shapes(const Shape& left, const Shape& right);
// Any argument that numpy takes as a shape.
Shape normalized_shape(py::handle shape);

// What summing over `axis` leaves: the shape, and for each axis of the operand its place there, -1 for one that is
// summed.
struct Reduction {
    Shape shape;
    int places[kMaxDims];
};
// Throws ZelvanError for an axis that isn't there.
Reduction reduction_over(py::handle axis, const Shape& shape);
// The cells of the array of sums as seen from the shape of the operand.
Cells reduced_cells(py::handle sums, const Reduction& reduction, int ndim);

// Refuses an operand in place that would make an array of the shape larger, as numpy does.
void require_same_shape(const Shape& own, py::handle operand);
// Whether cells of both arrays may lie in the same memory.
bool overlaps(py::handle left, py::handle right);
// Whether both arrays hold the same objects at all positions.
bool all_refs_match(py::handle left, py::handle right);

}  // namespace zelvanpy
