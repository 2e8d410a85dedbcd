#include "model_build.h"

#include "exception.h"
#include "model_stranger.h"
#include "pycontainer.h"

namespace zelvanpy {

namespace {

LibraryTerms spare_buffer;
// Entries that a buffer may keep between calls.
constexpr std::size_t kKeptTerms = 1 << 16;

// Variables are fetched into the cache so many terms before their turn.
constexpr std::ptrdiff_t kAhead = 16;

inline int index_in(const Model& model, const Handle* var) {
    const int index = var->cindex();
    if (index < 0 || !model_owns(model, var))
        refuse_stranger(model, *var, ZVN_ERROR_NOT_IN_MODEL, "Variable not in model");
    return index;
}

}  // namespace

void LibraryTerms::clean() {
    int size = static_cast<int>(ind_.size());
    if (const int code = ZVNclean2(&size, ind_.data(), val_.data()); code == ZVN_ERROR_OUT_OF_MEMORY)
        throw std::bad_alloc();
    ind_.resize(size);
    val_.resize(size);
}

CallBuffer::CallBuffer() : buffer_(std::move(spare_buffer)) { buffer_.clear(); }

CallBuffer::~CallBuffer() {
    if (static_cast<std::size_t>(buffer_.size()) <= kKeptTerms) spare_buffer = std::move(buffer_);
}

void append_var(const Model& model, const Handle* var, double mult, LibraryTerms& buffer) {
    buffer.add(index_in(model, var), mult);
}

void append_terms(const Model& model, const LinExpr* expr, double mult, LibraryTerms& buffer) {
    buffer.reserve(buffer.size() + expr->size);
    const Term* const end = expr->terms + expr->size;
    for (const Term* term = expr->terms; term != end; ++term) {
        if (end - term > kAhead) __builtin_prefetch(term[kAhead].var);
        buffer.add(index_in(model, term->var), mult * term->coeff);
    }
}

void append_terms(const Model& model, const QuadExpr* expr, double mult, LibraryQuadTerms& buffer) {
    const std::size_t size = buffer.val.size() + expr->size;
    buffer.row.reserve(size);
    buffer.col.reserve(size);
    buffer.val.reserve(size);
    const QuadTerm* const end = expr->terms + expr->size;
    for (const QuadTerm* term = expr->terms; term != end; ++term) {
        if (end - term > kAhead) term[kAhead].variables([](Handle* var) { __builtin_prefetch(var); });
        buffer.row.push_back(index_in(model, term->var1));
        buffer.col.push_back(index_in(model, term->var2));
        buffer.val.push_back(mult * term->coeff);
    }
}

bool owns_terms(const Model& model, const QuadExpr* expr) {
    bool owned = true;
    for (std::uint32_t i = 0; i < expr->size; ++i)
        expr->terms[i].variables(
            [&](const Handle* var) { owned = owned && var->cindex() >= 0 && model_owns(model, var); });
    return owned;
}

void append_quadratic(const Model& model, const LibraryQuadTerms& terms, QuadExpr* expr) {
    reserve_terms(expr, std::size_t{expr->size} + terms.val.size());
    for (int k = 0; k < terms.size(); ++k)
        append_term(expr, {terms.val[k], as_handle(PyList_GET_ITEM(model.vars, terms.row[k])),
                           as_handle(PyList_GET_ITEM(model.vars, terms.col[k]))});
}

py::object new_handles(Model& self, Kind kind, Py_ssize_t count) {
    const bool indexed = list_row(kind).live && model_update_mode(self) == 1;
    const Py_ssize_t first = PyList_GET_SIZE(self.*list_row(kind).list);
    py::object handles = steal(PyList_New(count));
    for (Py_ssize_t i = 0; i < count; ++i)
        PyList_SET_ITEM(handles.ptr(), i,
                        new_handle(*handle_kind(kind).type, self.cmodel, indexed ? static_cast<int>(first + i) : -1));
    return handles;
}

void list_handles(Model& self, Kind kind, const py::object& handles) {
    PyObject* list = self.*list_row(kind).list;
    const Py_ssize_t end = PyList_GET_SIZE(list);
    if (end == 0) return swap_lists(list, handles.ptr());
    checked(PyList_SetSlice(list, end, end, handles.ptr()));
}

py::object flat_copy(py::handle expr) {
    LinExpr* source = as_linexpr(expr);
    if (!source->tail) return borrow(expr);
    py::object copy = steal(reinterpret_cast<PyObject*>(linexpr_copy(source)));
    linexpr_flatten(as_linexpr(copy));
    return copy;
}

}  // namespace zelvanpy
