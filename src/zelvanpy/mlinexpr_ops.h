#pragma once
// Operators of arrays of linear expressions.

#include "mlinexpr.h"
#include "operand.h"

namespace zelvanpy {

// What an operand of the matrix layer is.
enum class MatrixOperand {
    kMQuadExpr,
    kMLinExpr,
    kMVar,
    kArray,
    kSparse,
    kVar,
    kLinExpr,
    kQuadExpr,
    kScalar,
    kForeign
};
// `value` is set for a scalar.
MatrixOperand classify_matrix(py::handle operand, double& value);
// matrix.toarray()
py::object dense_of(py::handle sparse);

// New references; NotImplemented for operands that they don't know.
py::object mlinexpr_plus(MLinExpr& self, py::handle other);
py::object mlinexpr_iplus(MLinExpr& self, py::handle other);
py::object mlinexpr_times(MLinExpr& self, py::handle other);
py::object mlinexpr_itimes(MLinExpr& self, py::handle other);
py::object mlinexpr_matmul(MLinExpr& self, py::handle other);
py::object mlinexpr_rmatmul(MLinExpr& self, py::handle other);
// 1.0 / other for what an expression can be divided by
py::object reciprocal(py::handle other);
// -1.0 * operand, in shared memory where that is possible
py::object negated(py::handle operand);

// self += other and self *= array for full expressions
void mlinexpr_iadd_full(MLinExpr& self, MLinExpr& other);

// numpy's in-place operator on the constants, with its errors.
void add_in_place(Constants& constants, py::handle array);
void multiply_in_place(Constants& constants, py::handle array);

// block = block * factor, in place where nobody else has its rows.
void scale_block(Block& block, double factor);

// The comparison of a matrix object with anything; `unequal` is the code of the error for !=.
PyObject* compare_matrix(py::handle self, py::handle other, int op, int unequal);

}  // namespace zelvanpy
