#include "mlinexpr_rows.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#ifdef __linux__
#include <sys/mman.h>
#endif

#include "matrix.h"
#include "pynumber.h"

namespace zelvanpy {

namespace {

constexpr std::size_t kHugePages = std::size_t{1} << 22;  // bytes from which large pages save time
constexpr std::size_t kMaxEntries = std::numeric_limits<std::int32_t>::max();

void* allocate(std::size_t bytes) {
    void* memory = std::malloc(bytes ? bytes : 1);
    if (!memory) throw std::bad_alloc();
#ifdef __linux__
    if (bytes >= kHugePages) {
        const auto address = reinterpret_cast<std::uintptr_t>(memory);
        const std::size_t ahead = 4096 - address % 4096;
        // A hint, which may be refused.
        madvise(static_cast<char*>(memory) + ahead, bytes - ahead, MADV_HUGEPAGE);
    }
#endif
    return memory;
}

void check_entries(std::size_t num) {
    if (num > kMaxEntries) raise(PyExc_OverflowError, "A matrix expression holds at most 2147483647 entries");
}

}  // namespace

template <class T>
Buffer<T>::Buffer(std::size_t size) : data_(static_cast<T*>(allocate(size * sizeof(T)))), size_(size) {}

template <class T>
Buffer<T>::Buffer(py::object array) : data_(data_of<T>(array)), size_(size_of(array)), owner_(std::move(array)) {}

template <class T>
Buffer<T>::~Buffer() {
    if (!owner_) std::free(data_);
}

template class Buffer<double>;
template class Buffer<std::int32_t>;

SharedRows identity_rows(Py_intptr_t size, double multiple) {
    check_entries(static_cast<std::size_t>(size));
    auto rows = std::make_shared<Rows>();
    rows->num_rows = rows->num_cols = size;
    rows->is_identity = true;
    rows->multiple = multiple;
    return rows;
}

SharedRows new_rows(Py_intptr_t num_rows, Py_intptr_t num_cols, std::size_t num_entries) {
    check_entries(num_entries);
    check_entries(static_cast<std::size_t>(num_cols));
    auto rows = std::make_shared<Rows>();
    rows->num_rows = num_rows;
    rows->num_cols = num_cols;
    rows->begin = Buffer<std::int32_t>(num_rows + 1);
    rows->index = Buffer<std::int32_t>(num_entries);
    rows->value = Buffer<double>(num_entries);
    return rows;
}

namespace {

// A dense matrix as rows and columns of doubles that lie somewhere.
struct Dense {
    const char* data;
    Py_intptr_t num_rows, num_cols, row_stride, col_stride;

    template <class Visit>
    void row(Py_intptr_t i, Visit visit) const {
        const char* at = data + i * row_stride;
        for (Py_intptr_t j = 0; j < num_cols; ++j, at += col_stride) visit(j, double_at(at));
    }
};

Dense dense_view(py::handle doubles, bool transposed) {
    const auto& fields = array_fields(doubles);
    if (fields.nd == 1) return {fields.data, 1, fields.dimensions[0], 0, fields.strides[0]};
    const int row = transposed ? 1 : 0, col = 1 - row;
    return {fields.data, fields.dimensions[row], fields.dimensions[col], fields.strides[row], fields.strides[col]};
}

// Rows that are read across the lines of the cache take a copy first.
py::object readable(py::handle doubles, bool transposed) {
    const Dense view = dense_view(doubles, transposed);
    const bool is_far = view.num_rows > 8 && view.num_cols > 8 && std::abs(view.col_stride) > std::abs(view.row_stride);
    if (!is_far) return borrow(doubles);
    static const Name kRavel("ascontiguousarray"), kT("T");
    const py::object turned = transposed ? steal(PyObject_GetAttr(doubles.ptr(), kT.get())) : borrow(doubles);
    py::object copy = numpy_function(kRavel)(turned);
    return transposed ? steal(PyObject_GetAttr(copy.ptr(), kT.get())) : copy;
}

}  // namespace

SharedRows rows_of_dense(py::handle matrix, bool transposed) {
    const py::object doubles =
        readable(has_cells(matrix, CellType::kDouble) ? borrow(matrix) : private_doubles(matrix), transposed);
    const Dense dense = dense_view(doubles, transposed);
    std::size_t num = 0;
    for (Py_intptr_t i = 0; i < dense.num_rows; ++i) dense.row(i, [&](Py_intptr_t, double v) { num += v != 0.0; });
    SharedRows rows = new_rows(dense.num_rows, dense.num_cols, num);
    std::int32_t next = 0;
    for (Py_intptr_t i = 0; i < dense.num_rows; ++i) {
        rows->begin[i] = next;
        dense.row(i, [&](Py_intptr_t j, double v) {
            if (v == 0.0) return;
            rows->index[next] = static_cast<std::int32_t>(j);
            rows->value[next++] = v;
        });
    }
    rows->begin[dense.num_rows] = next;
    return rows;
}

// --- scipy

namespace {

py::object sparse_module() {
    static PyObject* module = nullptr;
    if (!module) module = steal(PyImport_ImportModule("scipy.sparse")).release().ptr();
    return borrow(module);
}

py::object csr_matrix(py::handle matrix, bool copy) {
    static const Name kClass("csr_matrix"), kDtype("dtype"), kCopy("copy");
    const py::object make = steal(PyObject_GetAttr(sparse_module().ptr(), kClass.get()));
    const py::object arguments = py::make_tuple(borrow(matrix));
    const py::object options =
        steal(Py_BuildValue("{OsOO}", kDtype.get(), "d", kCopy.get(), copy ? Py_True : Py_False));
    return steal(PyObject_Call(make.ptr(), arguments.ptr(), options.ptr()));
}

// An array of one dimension with the cells wanted, the one given if it has them.
py::object flat_array(py::handle array, CellType type, const char* type_name) {
    static const Name kArray("ascontiguousarray");
    if (!is_ndarray(array) || array_fields(array).nd != 1)
        raise(PyExc_ValueError, "A sparse matrix has arrays of one dimension");
    if (has_cells(array, type) && is_contiguous(array)) return borrow(array);
    return numpy_function(kArray)(array, type_name);
}

// Positions beyond 32 bits are refused before they are cut.
void check_positions(const py::object& csr) {
    static const Name kIndptr("indptr");
    const py::object begin = flat_array(steal(PyObject_GetAttr(csr.ptr(), kIndptr.get())), CellType::kInt64, "i8");
    const std::int64_t* positions = data_of<std::int64_t>(begin);
    const Py_intptr_t num = size_of(begin);
    for (Py_intptr_t i = 0; i < num; ++i)
        check_entries(static_cast<std::size_t>(std::max<std::int64_t>(positions[i], 0)));
}

// Whether the begins of the rows are in order and within the arrays.
bool has_rows_within(const Rows& rows) {
    if (rows.begin.size() != static_cast<std::size_t>(rows.num_rows) + 1 || rows.begin[0] != 0) return false;
    for (Py_intptr_t i = 0; i < rows.num_rows; ++i)
        if (rows.begin[i] > rows.begin[i + 1]) return false;
    const auto num = static_cast<std::size_t>(rows.begin[rows.num_rows]);
    return num <= rows.index.size() && num <= rows.value.size();
}

// Negative where the index isn't that of one of the columns.
std::int32_t index_fault(std::int32_t index, std::int32_t last) { return index | (last - index); }

bool has_indices_within(const Rows& rows) {
    const auto last = static_cast<std::int32_t>(rows.num_cols - 1);
    std::int32_t fault = 0;
    for (std::size_t k = 0, num = rows.num_entries(); k < num; ++k) fault |= index_fault(rows.index[k], last);
    return fault >= 0;
}

// Copies the indices; false where one lies beyond the columns.
bool copy_indices(const Rows& rows, std::int32_t* to) {
    const auto last = static_cast<std::int32_t>(rows.num_cols - 1);
    const std::int32_t* from = rows.index.data();
    std::int32_t fault = 0;
    for (std::size_t k = 0, num = rows.num_entries(); k < num; ++k) {
        to[k] = from[k];
        fault |= index_fault(from[k], last);
    }
    return fault >= 0;
}

[[noreturn]] void raise_inconsistent() {
    raise(PyExc_ValueError, "The index arrays of a sparse matrix don't fit its shape");
}

// Takes the arrays of a csr_matrix of doubles, where `num_entries()` can be relied on but not yet the indices.
SharedRows adopted_unchecked(const py::object& csr) {
    static const Name kShape("shape"), kIndptr("indptr"), kIndices("indices"), kData("data");
    const py::object shape = steal(PyObject_GetAttr(csr.ptr(), kShape.get()));
    auto rows = std::make_shared<Rows>();
    rows->num_rows = list_index(steal(PySequence_GetItem(shape.ptr(), 0)));
    rows->num_cols = list_index(steal(PySequence_GetItem(shape.ptr(), 1)));
    check_entries(static_cast<std::size_t>(rows->num_cols));
    const py::object begin = steal(PyObject_GetAttr(csr.ptr(), kIndptr.get()));
    if (is_ndarray(begin) && !has_cells(begin, CellType::kInt32)) check_positions(csr);
    rows->begin = Buffer<std::int32_t>(flat_array(begin, CellType::kInt32, "i4"));
    rows->index =
        Buffer<std::int32_t>(flat_array(steal(PyObject_GetAttr(csr.ptr(), kIndices.get())), CellType::kInt32, "i4"));
    rows->value = Buffer<double>(flat_array(steal(PyObject_GetAttr(csr.ptr(), kData.get())), CellType::kDouble, "d"));
    if (!has_rows_within(*rows)) raise_inconsistent();
    return rows;
}

}  // namespace

namespace {

SharedRows adopted(const py::object& csr) {
    SharedRows rows = adopted_unchecked(csr);
    if (!has_indices_within(*rows)) raise_inconsistent();
    return rows;
}

SharedRows checked_copy(const Rows& rows) {
    const std::size_t num = rows.num_entries();
    SharedRows copy = new_rows(rows.num_rows, rows.num_cols, num);
    std::memcpy(copy->begin.data(), rows.begin.data(), (rows.num_rows + 1) * sizeof(std::int32_t));
    if (!copy_indices(rows, copy->index.data())) raise_inconsistent();
    std::memcpy(copy->value.data(), rows.value.data(), num * sizeof(double));
    return copy;
}

// Whether the matrix is in compressed rows of doubles already.
bool is_plain_csr(py::handle matrix) {
    static const Name kFormat("format"), kData("data"), kNdim("ndim");
    const py::object format = steal(PyObject_GetAttr(matrix.ptr(), kFormat.get()));
    if (!PyUnicode_Check(format.ptr()) || PyUnicode_CompareWithASCIIString(format.ptr(), "csr") != 0) return false;
    if (list_index(steal(PyObject_GetAttr(matrix.ptr(), kNdim.get()))) != 2) return false;
    const py::object data = steal(PyObject_GetAttr(matrix.ptr(), kData.get()));
    return is_ndarray(data) && has_cells(data, CellType::kDouble);
}

}  // namespace

bool is_sparse(py::handle object) {
    static const Name kIsSparse("issparse");
    // The type that was asked about last; a matrix exists only where scipy.sparse was imported.
    static PyObject* last_type = nullptr;
    static bool last_answer = false;
    PyObject* type = reinterpret_cast<PyObject*>(Py_TYPE(object.ptr()));
    if (type == last_type) return last_answer;
    static const Name kModule("scipy.sparse");
    if (!PyDict_GetItemWithError(PyImport_GetModuleDict(), kModule.get())) {
        if (PyErr_Occurred()) throw PythonError{};
        return false;
    }
    const py::object ask = steal(PyObject_GetAttr(sparse_module().ptr(), kIsSparse.get()));
    const py::object answer = steal(PyObject_CallFunctionObjArgs(ask.ptr(), object.ptr(), nullptr));
    const bool is = checked(PyObject_IsTrue(answer.ptr()));
    Py_INCREF(type);
    last_answer = is;
    Py_XSETREF(last_type, type);
    return is;
}

SharedRows rows_of_sparse(py::handle matrix, bool copy) {
    if (!is_plain_csr(matrix)) return adopted(csr_matrix(matrix, copy));
    return copy ? checked_copy(*adopted_unchecked(borrow(matrix))) : adopted(borrow(matrix));
}

SharedRows rows_of_transposed(py::handle matrix) {
    static const Name kT("T"), kSort("sort_indices");
    const py::object csr = csr_matrix(steal(PyObject_GetAttr(matrix.ptr(), kT.get())), true);
    steal(PyObject_CallObject(steal(PyObject_GetAttr(csr.ptr(), kSort.get())).ptr(), nullptr));
    return adopted(csr);
}

SharedRows copy_rows(const Rows& rows) {
    return rows.is_identity ? identity_rows(rows.num_rows, rows.multiple) : checked_copy(rows);
}

SharedRows stored_rows(const SharedRows& rows) {
    if (!rows->is_identity) return rows;
    SharedRows stored = new_rows(rows->num_rows, rows->num_cols, rows->num_rows);
    for (std::int32_t i = 0; i < rows->num_rows; ++i) {
        stored->begin[i] = stored->index[i] = i;
        stored->value[i] = rows->multiple;
    }
    stored->begin[rows->num_rows] = static_cast<std::int32_t>(rows->num_rows);
    return stored;
}

SharedRows repeated_row(const Rows& rows, Py_intptr_t num) {
    const std::size_t length = rows.num_entries();
    SharedRows result = new_rows(num, rows.num_cols, length * num);
    for (Py_intptr_t i = 0; i < num; ++i) {
        const std::size_t first = i * length;
        result->begin[i] = static_cast<std::int32_t>(first);
        for (std::size_t k = 0; k < length; ++k) {
            result->index[first + k] = rows.is_identity ? 0 : rows.index[k];
            result->value[first + k] = rows.is_identity ? rows.multiple : rows.value[k];
        }
    }
    result->begin[num] = static_cast<std::int32_t>(length * num);
    return result;
}

SharedRows end_rows(const Rows& rows, Py_intptr_t num) {
    const auto first_of = [&](Py_intptr_t i) {
        return rows.is_identity ? static_cast<std::int32_t>(i) : rows.begin[i];
    };
    const Py_intptr_t starts[] = {0, rows.num_rows - num};
    std::size_t entries = 0;
    for (const Py_intptr_t start : starts) entries += first_of(start + num) - first_of(start);
    SharedRows ends = new_rows(2 * num, rows.num_cols, entries);
    std::int32_t next = 0;
    for (Py_intptr_t i = 0; i < 2 * num; ++i) {
        const Py_intptr_t row = starts[i / num] + i % num;
        ends->begin[i] = next;
        for (std::int32_t k = first_of(row); k < first_of(row + 1); ++k) {
            ends->index[next] = rows.is_identity ? k : rows.index[k];
            ends->value[next++] = rows.is_identity ? rows.multiple : rows.value[k];
        }
    }
    ends->begin[2 * num] = next;
    return ends;
}

namespace {

void end_export(PyObject* capsule) {
    auto* rows = static_cast<SharedRows*>(PyCapsule_GetPointer(capsule, nullptr));
    --(*rows)->exports;
    delete rows;
}

}  // namespace

py::object csr_matrix_over(const SharedRows& rows) {
    static const Name kClass("csr_matrix"), kShape("shape"), kCopy("copy");
    auto kept = std::make_unique<SharedRows>(rows);
    const py::object owner = steal(PyCapsule_New(kept.get(), nullptr, end_export));
    ++rows->exports;
    kept.release();
    const auto num = static_cast<Py_ssize_t>(rows->num_entries());
    const py::object arrays =
        py::make_tuple(array_over({num}, CellType::kDouble, rows->value.data(), owner),
                       array_over({num}, CellType::kInt32, rows->index.data(), owner),
                       array_over({rows->num_rows + 1}, CellType::kInt32, rows->begin.data(), owner));
    const py::object options =
        steal(Py_BuildValue("{O(nn)OO}", kShape.get(), rows->num_rows, rows->num_cols, kCopy.get(), Py_False));
    const py::object make = steal(PyObject_GetAttr(sparse_module().ptr(), kClass.get()));
    return steal(PyObject_Call(make.ptr(), py::make_tuple(arrays).ptr(), options.ptr()));
}

// --- variables

namespace {

Vars::Span span_of(const py::object& mvar) {
    const py::object array = array_of(mvar);
    if (!has_cells(array, CellType::kObject) || !is_contiguous(array))
        raise(PyExc_ValueError, "The array of an MVar was changed");
    return {data_of<PyObject*>(array), static_cast<std::size_t>(size_of(array))};
}

}  // namespace

void Vars::gather() {
    if (pieces_.empty()) return;
    std::vector<Span> spans;
    Py_ssize_t size = 0;
    for (const std::shared_ptr<Vars>& piece : pieces_) {
        spans.push_back(piece->span());
        size += static_cast<Py_ssize_t>(spans.back().size);
    }
    py::object array = new_objects({size});
    PyObject** cell = data_of<PyObject*>(array);
    for (const Span& span : spans)
        for (std::size_t i = 0; i < span.size; ++i, ++cell) {
            *cell = reinterpret_cast<PyObject*>(span[i]);
            Py_INCREF(*cell);
        }
    mvar_ = new_handle_array(MVar_Type, std::move(array));
    pieces_.clear();
}

Vars::Span Vars::span() {
    gather();
    return span_of(mvar_);
}

py::object Vars::mvar() {
    const Span handles = span();
    if (array_fields(array_of(mvar_)).nd == 1) return mvar_;
    const py::object array = new_objects({static_cast<Py_ssize_t>(handles.size)});
    PyObject** cells = data_of<PyObject*>(array);
    for (std::size_t i = 0; i < handles.size; ++i) {
        const PyObject* const var = handles.data[i];
        cells[i] = borrow(var ? handles.data[i] : Py_None).release().ptr();
    }
    mvar_ = new_handle_array(MVar_Type, array);
    return mvar_;
}

namespace {

SharedVars joined_vars(const Block* blocks, std::size_t num) {
    std::vector<SharedVars> pieces;
    for (std::size_t b = 0; b < num; ++b) pieces.push_back(blocks[b].vars);
    return std::make_shared<Vars>(std::move(pieces));
}

// Copies row i of the block behind the entries that `rows` has so far.
std::int32_t append_row(const Rows& rows, std::int32_t next, const Block& block, Py_intptr_t i,
                        std::int32_t first_col) {
    const Rows& source = *block.rows;
    std::int32_t* index = rows.index.data() + next;
    double* value = rows.value.data() + next;
    if (source.is_identity) {
        *index = first_col + static_cast<std::int32_t>(i);
        *value = block.sign() * source.multiple;
        return next + 1;
    }
    const std::int32_t first = source.begin[i], num = source.begin[i + 1] - first;
    const std::int32_t* from_index = source.index.data() + first;
    const double* from_value = source.value.data() + first;
    for (std::int32_t k = 0; k < num; ++k) index[k] = first_col + from_index[k];
    if (block.negated)
        for (std::int32_t k = 0; k < num; ++k) value[k] = -from_value[k];
    else
        std::memcpy(value, from_value, num * sizeof(double));
    return next + num;
}

}  // namespace

Block joined_blocks(const Block* blocks, std::size_t num) {
    if (num == 1 && !blocks->negated && !blocks->rows->is_identity) return {blocks->rows, blocks->vars};
    std::size_t num_entries = 0, num_cols = 0;
    for (std::size_t b = 0; b < num; ++b) {
        num_entries += blocks[b].rows->num_entries();
        num_cols += blocks[b].rows->num_cols;
    }
    const Py_intptr_t num_rows = blocks->rows->num_rows;
    SharedRows rows = new_rows(num_rows, static_cast<Py_intptr_t>(num_cols), num_entries);
    std::int32_t next = 0;
    for (Py_intptr_t i = 0; i < num_rows; ++i) {
        rows->begin[i] = next;
        std::int32_t first_col = 0;
        for (std::size_t b = 0; b < num; ++b) {
            next = append_row(*rows, next, blocks[b], i, first_col);
            first_col += static_cast<std::int32_t>(blocks[b].rows->num_cols);
        }
    }
    rows->begin[num_rows] = next;
    return {rows, num == 1 ? blocks->vars : joined_vars(blocks, num)};
}

SharedRows block_diagonal(const std::vector<Block>& blocks) {
    std::size_t num_entries = 0;
    Py_intptr_t num_rows = 0, num_cols = 0;
    for (const Block& block : blocks) {
        num_entries += block.rows->num_entries();
        num_rows += block.rows->num_rows;
        num_cols += block.rows->num_cols;
    }
    SharedRows rows = new_rows(num_rows, num_cols, num_entries);
    std::int32_t next = 0, first_col = 0;
    Py_intptr_t row = 0;
    for (const Block& block : blocks) {
        for (Py_intptr_t i = 0; i < block.rows->num_rows; ++i) {
            rows->begin[row++] = next;
            next = append_row(*rows, next, block, i, first_col);
        }
        first_col += static_cast<std::int32_t>(block.rows->num_cols);
    }
    rows->begin[num_rows] = next;
    return rows;
}

}  // namespace zelvanpy
