#pragma once
// numpy's arrays, read and made through its C interface, and walked through cell by cell. numpy is imported at the
// first use; without it that raises ImportError.

#include <pybind11/numpy.h>

#include <algorithm>
#include <array>
#include <initializer_list>

#include "pynames.h"

namespace zelvanpy {

inline constexpr int kMaxDims = 64;  // of numpy 2; older ones have 32

// The lengths of the dimensions of an array.
struct Shape {
    int ndim = 0;
    Py_intptr_t dims[kMaxDims];

    Shape() = default;
    Shape(std::initializer_list<Py_ssize_t> lengths) { assign(lengths.begin(), static_cast<int>(lengths.size())); }
    Shape(const Py_intptr_t* lengths, int count) { assign(lengths, count); }
    Shape(const Shape& other) { assign(other.dims, other.ndim); }
    Shape& operator=(const Shape& other) {
        if (this != &other) assign(other.dims, other.ndim);
        return *this;
    }
    Py_intptr_t size() const {
        Py_intptr_t product = 1;
        for (int i = 0; i < ndim; ++i) product *= dims[i];
        return product;
    }
    bool has_zero() const { return std::find(dims, dims + ndim, 0) != dims + ndim; }
    void append(Py_intptr_t length) { dims[ndim++] = length; }
    friend bool operator==(const Shape& a, const Shape& b) {
        return a.ndim == b.ndim && std::equal(a.dims, a.dims + a.ndim, b.dims);
    }

private:
    void assign(const Py_intptr_t* lengths, int count) {
        ndim = count;
        std::copy(lengths, lengths + count, dims);
    }
};
py::object shape_tuple(const Shape& shape);

inline const py::detail::npy_api& numpy_api() {
    try {
        return py::detail::npy_api::get();
    } catch (py::error_already_set& error) {
        error.restore();
        throw PythonError{};
    }
}
// The module numpy, and one of its functions; borrowed.
py::handle numpy();
py::object numpy_function(const Name& name);

inline bool is_ndarray(py::handle h) { return numpy_api().PyArray_Check_(h.ptr()); }
inline const py::detail::PyArray_Proxy& array_fields(py::handle array) {
    return *reinterpret_cast<const py::detail::PyArray_Proxy*>(array.ptr());
}
inline Shape shape_of(py::handle array) { return {array_fields(array).dimensions, array_fields(array).nd}; }
inline Py_intptr_t size_of(py::handle array) { return shape_of(array).size(); }

enum class CellType : int {
    kBool = py::detail::npy_api::NPY_BOOL_,
    kInt32 = py::detail::npy_api::NPY_INT32_,
    kInt64 = py::detail::npy_api::NPY_INT64_,
    kDouble = py::detail::npy_api::NPY_DOUBLE_,
    kObject = py::detail::npy_api::NPY_OBJECT_
};
// Whether the cells are of the type, aligned and in the machine's order of bytes.
bool has_cells(py::handle array, CellType type);
inline bool is_contiguous(py::handle array) {
    return array_fields(array).flags & py::detail::npy_api::NPY_ARRAY_C_CONTIGUOUS_;
}

// A new array in C order. Objects begin as null, which reads as None; numbers are not set.
py::object new_array(const Shape& shape, CellType type);
inline py::object new_objects(const Shape& shape) { return new_array(shape, CellType::kObject); }
py::object new_doubles(const Shape& shape, double fill);
// An array over memory of somebody else's, who is kept alive by `owner`.
py::object array_over(const Shape& shape, CellType type, void* data, const py::object& owner);
// np.array(object, dtype=object) of one object, with no dimension.
py::object object_scalar(py::handle object);
// A copy in C order, of exact type ndarray, with cells of type object.
py::object object_copy(py::handle array);

// Of aligned doubles with the shape of the array, the array itself where it holds them. Throws numpy's TypeError where
// the cells don't convert safely.
py::object as_doubles(py::handle array);
// np.array(object, dtype=np.float64), in C order and private.
py::object private_doubles(py::handle object);

template <class T>
T* data_of(py::handle array) {
    return reinterpret_cast<T*>(array_fields(array).data);
}

// Where the cells of an array lie as seen from a shape that it is broadcast to.
struct Cells {
    char* data = nullptr;
    Py_intptr_t strides[kMaxDims];
};
// The array's shape must broadcast to `shape`.
Cells cells_in(py::handle array, const Shape& shape);

// Calls visit(pointers) for each cell of the shape in C order, with the place of the cell in each of the arrays.
template <std::size_t N, class Visit>
void walk(const Shape& shape, const std::array<Cells, N>& arrays, Visit visit) {
    if (shape.size() == 0) return;
    std::array<char*, N> row, at;
    for (std::size_t k = 0; k < N; ++k) row[k] = arrays[k].data;
    const int inner = shape.ndim - 1;
    const Py_intptr_t length = inner < 0 ? 1 : shape.dims[inner];
    Py_intptr_t index[kMaxDims] = {};
    while (true) {
        at = row;
        for (Py_intptr_t i = 0; i < length; ++i) {
            visit(at);
            if (inner >= 0)
                for (std::size_t k = 0; k < N; ++k) at[k] += arrays[k].strides[inner];
        }
        int d = inner - 1;
        for (; d >= 0; --d) {
            for (std::size_t k = 0; k < N; ++k) row[k] += arrays[k].strides[d];
            if (++index[d] < shape.dims[d]) break;
            for (std::size_t k = 0; k < N; ++k) row[k] -= shape.dims[d] * arrays[k].strides[d];
            index[d] = 0;
        }
        if (d < 0) return;
    }
}

// A cell of an array of objects; null is None.
inline py::object object_at(const char* cell) {
    PyObject* object = *reinterpret_cast<PyObject* const*>(cell);
    return borrow(object ? object : Py_None);
}
inline void set_object(char* cell, py::object object) {
    PyObject*& place = *reinterpret_cast<PyObject**>(cell);
    PyObject* old = std::exchange(place, object.release().ptr());
    Py_XDECREF(old);
}
inline double double_at(const char* cell) { return *reinterpret_cast<const double*>(cell); }

}  // namespace zelvanpy
