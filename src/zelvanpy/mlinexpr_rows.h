#pragma once
// The parts of a compact expression: sparse rows times a vector of variables. Both are shared between expressions and
// not changed while they are.

#include <cstdint>
#include <memory>
#include <vector>

#include "handle_array.h"
#include "pyarray.h"

namespace zelvanpy {

// Numbers in memory of their own or in that of a numpy array.
template <class T>
class Buffer {
public:
    Buffer() = default;
    explicit Buffer(std::size_t size);  // not set
    explicit Buffer(py::object array);  // of T, contiguous
    Buffer(Buffer&& other) noexcept { swap(other); }
    Buffer& operator=(Buffer&& other) noexcept {
        swap(other);
        return *this;
    }
    ~Buffer();
    T* data() const { return data_; }
    std::size_t size() const { return size_; }
    T& operator[](std::size_t i) const { return data_[i]; }

private:
    void swap(Buffer& other) noexcept {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
        std::swap(owner_, other.owner_);
    }
    T* data_ = nullptr;
    std::size_t size_ = 0;
    py::object owner_;  // the array; empty where the memory is the buffer's own
};

// A sparse matrix in compressed rows, entries in the order in which they were stored; or a multiple of the identity.
struct Rows {
    Py_intptr_t num_rows = 0, num_cols = 0;
    bool is_identity = false;
    double multiple = 1.0;  // of the identity
    Buffer<std::int32_t> begin, index;
    Buffer<double> value;
    int exports = 0;  // scipy objects over the same memory, which anyone may change

    std::size_t num_entries() const { return is_identity ? num_rows : begin[num_rows]; }
};
using SharedRows = std::shared_ptr<Rows>;

SharedRows identity_rows(Py_intptr_t size, double multiple);
// `num_entries` entries, nothing set.
SharedRows new_rows(Py_intptr_t num_rows, Py_intptr_t num_cols, std::size_t num_entries);
// The nonzero entries of a dense matrix of one or two dimensions or, if `transposed`, of its transpose. A vector is a
// row either way.
SharedRows rows_of_dense(py::handle matrix, bool transposed);
// A scipy matrix as rows: a private copy, or one that shares the arrays of a csr_matrix of doubles.
SharedRows rows_of_sparse(py::handle matrix, bool copy);
// csr_matrix(matrix.T) with sorted rows
SharedRows rows_of_transposed(py::handle matrix);
SharedRows copy_rows(const Rows& rows);
// The identity as entries, other rows as they are.
SharedRows stored_rows(const SharedRows& rows);
// The rows with `num` copies of their only one.
SharedRows repeated_row(const Rows& rows, Py_intptr_t num);
// The first and the last `num` rows.
SharedRows end_rows(const Rows& rows, Py_intptr_t num);
// A csr_matrix over the memory of the rows, which aren't of the identity.
py::object csr_matrix_over(const SharedRows& rows);
bool is_sparse(py::handle object);

// The variables of one MVar, or of several behind each other.
class Vars {
public:
    explicit Vars(py::object mvar) : mvar_(std::move(mvar)) {}
    explicit Vars(std::vector<std::shared_ptr<Vars>> pieces) : pieces_(std::move(pieces)) {}
    // The variables in a row. Valid while no Python code runs.
    struct Span {
        PyObject* const* data;
        std::size_t size;
        // Throws TypeError where someone put another object into the array of the MVar.
        Handle* operator[](std::size_t i) const { return var_in(data[i]); }
    };
    Span span();
    // As an MVar of one dimension.
    py::object mvar();

private:
    void gather();
    py::object mvar_;
    std::vector<std::shared_ptr<Vars>> pieces_;  // until someone asks for the whole
};
using SharedVars = std::shared_ptr<Vars>;

// rows * vars, or its negative.
struct Block {
    SharedRows rows;
    SharedVars vars;
    bool negated = false;
    bool opens_part = true;  // blocks of one part stand side by side

    double sign() const { return negated ? -1.0 : 1.0; }
};
// The blocks as one, side by side.
Block joined_blocks(const Block* blocks, std::size_t num);
// The rows of the blocks below each other, the columns behind each other.
SharedRows block_diagonal(const std::vector<Block>& blocks);

}  // namespace zelvanpy
