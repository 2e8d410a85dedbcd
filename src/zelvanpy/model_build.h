#pragma once
// What the units that build rows, columns and objectives share.

#include <vector>

#include "exception.h"
#include "model.h"
#include "model_lists.h"
#include "quadexpr.h"

namespace zelvanpy {

// Library indices and coefficients of linear terms, on their way to one library call.
class LibraryTerms {
public:
    void clear() {
        ind_.clear();
        val_.clear();
    }
    void reserve(std::size_t terms) {
        ind_.reserve(terms);
        val_.reserve(terms);
    }
    void add(int index, double value) {
        ind_.push_back(index);
        val_.push_back(value);
    }
    // Merges duplicates and drops zeros.
    void clean();
    int size() const { return static_cast<int>(ind_.size()); }
    int* ind() { return ind_.data(); }
    double* val() { return val_.data(); }

private:
    std::vector<int> ind_;
    std::vector<double> val_;
};

// Library indices and coefficients of quadratic terms.
struct LibraryQuadTerms {
    std::vector<int> row, col;
    std::vector<double> val;

    int size() const { return static_cast<int>(val.size()); }
};

// The terms of the call that is running, in the memory of the call before; a buffer that grew large is given back
// when the call ends.
class CallBuffer {
public:
    CallBuffer();
    ~CallBuffer();
    CallBuffer(const CallBuffer&) = delete;
    CallBuffer& operator=(const CallBuffer&) = delete;
    LibraryTerms* operator->() { return &buffer_; }
    LibraryTerms& operator*() { return buffer_; }

private:
    LibraryTerms buffer_;
};

// Appends mult * the terms of a flat expression. A variable without index or of another model raises
// ZelvanError(NOT_IN_MODEL).
void append_terms(const Model& model, const LinExpr* expr, double mult, LibraryTerms& buffer);
void append_var(const Model& model, const Handle* var, double mult, LibraryTerms& buffer);
// The same for quadratic terms.
void append_terms(const Model& model, const QuadExpr* expr, double mult, LibraryQuadTerms& buffer);
// Whether all variables of the quadratic terms have an index in the model.
bool owns_terms(const Model& model, const QuadExpr* expr);
// Appends terms that the library has given, each index being that of one of the model's variables.
void append_quadratic(const Model& model, const LibraryQuadTerms& terms, QuadExpr* expr);
// The LinExpr itself when it is flat, otherwise a flattened copy.
py::object flat_copy(py::handle expr);

// New handles, in a list, for the variables or rows that come next in the model.
py::object new_handles(Model& self, Kind kind, Py_ssize_t count);
// Appends such handles, which the library has objects for now; the list of them is given up.
void list_handles(Model& self, Kind kind, const py::object& handles);

// Queues an object by `call`, which gives the library's code, and lists its handle, which comes from new_member().
template <class Call>
py::object add_object(Model& self, Kind kind, py::object handle, Call call) {
    require_member(self, handle);
    const ListRow& row = list_row(kind);
    const bool indexed = row.live && model_update_mode(self) == 1;
    check(call(model_pointer(self)), as_object(self));
    if (indexed) as_handle(handle)->index = static_cast<int>(PyList_GET_SIZE(self.*row.list));
    checked(PyList_Append(self.*row.list, handle.ptr()));
    return handle;
}

}  // namespace zelvanpy
