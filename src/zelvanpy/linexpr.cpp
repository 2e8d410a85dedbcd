// Memory and terms of linear expressions; methods are in linexpr_methods.cpp, operators in linexpr_ops.cpp.

#include "linexpr.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "exception.h"
#include "linexpr_memory.h"
#include "operand.h"
#include "pytype.h"

namespace zelvanpy {

PyTypeObject* LinExpr_Type = nullptr;

namespace {

constexpr int kMaxFree = 256;
LinExpr* free_list[kMaxFree];
int num_free = 0;

bool linexpr_must_wake(PyObject* object) {
    const LinExpr* e = reinterpret_cast<LinExpr*>(object);
    if (e->tail) return true;
    for (std::uint32_t i = 0; i < e->size; ++i)
        if (!is_inert(e->terms[i].var)) return true;
    return false;
}

DormantClass dormant_class{nullptr, offsetof(LinExpr, link), linexpr_must_wake};

void init_fields(LinExpr* e, double constant) {
    e->constant = constant;
    e->terms = e->inline_terms;
    e->size = 0;
    e->capacity = kInlineTerms;
    e->tail = nullptr;
}

// Backwards: the variables added last are most likely still in the cache.
void release_terms(Term* terms, std::uint32_t size) {
    while (size > kTermsAhead) {
        --size;
        __builtin_prefetch(terms[size - kTermsAhead].var, 1);
        Py_DECREF(terms[size].var);
    }
    while (size > 0) Py_DECREF(terms[--size].var);
}

// Gives a chain back block by block: a long one must not use the C stack.
void release_tail(LinExpr* tail) {
    while (tail && Py_REFCNT(tail) == 1 && Py_TYPE(tail) == LinExpr_Type) {
        LinExpr* next = std::exchange(tail->tail, nullptr);
        Py_DECREF(tail);
        tail = next;
    }
    Py_XDECREF(tail);
}

void free_array(LinExpr* e) {
    if (e->terms != e->inline_terms) PyMem_Free(e->terms);
}

// Half more while small; later little more, as realloc then moves pages or extends the array where it is.
std::size_t grown_capacity(std::size_t terms) {
    if (terms <= 8) return 8;
    return terms + (terms < 32768 ? terms / 2 : terms / 16);
}

void set_capacity(LinExpr* e, std::size_t capacity) {
    if (capacity > std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
    const bool is_inline = e->terms == e->inline_terms;
    void* array = PyMem_Realloc(is_inline ? nullptr : e->terms, capacity * sizeof(Term));
    if (!array) throw std::bad_alloc();
    if (is_inline) std::memcpy(array, e->inline_terms, e->size * sizeof(Term));
    e->terms = static_cast<Term*>(array);
    e->capacity = static_cast<std::uint32_t>(capacity);
}

// The first terms of another block, scaled, behind those of e; the block may be e itself.
void append_terms(LinExpr* e, const LinExpr* block, std::uint32_t count, double mult) {
    linexpr_reserve(e, std::size_t{e->size} + count);
    Term* out = e->terms + e->size;
    bool inert = true;
    for (std::uint32_t i = 0; i < count; ++i) {
        Handle* var = block->terms[i].var;
        Py_INCREF(var);
        inert &= is_inert(var);
        out[i] = {mult * block->terms[i].coeff, var};
    }
    e->size += count;
    if (!inert) wake_linexpr(e);
}

std::size_t chain_size(const std::vector<LinExpr*>& blocks) {
    std::size_t terms = 0;
    for (const LinExpr* block : blocks) terms += block->size;
    return terms;
}

// Position of the first term of each column among the terms so far, by open addressing.
class FirstOfColumn {
public:
    explicit FirstOfColumn(std::uint32_t terms) {
        std::size_t slots = 16;
        while (slots < 2 * std::size_t{terms}) slots *= 2;
        positions_.assign(slots, kNone);
    }
    // The position of the first term with this column; the given one is entered where there is none.
    std::uint32_t find_or_enter(const Term* terms, std::uint32_t position) {
        const int column = terms[position].var->index;
        std::size_t slot = (static_cast<std::uint32_t>(column) * std::size_t{0x9E3779B97F4A7C15}) >> 20;
        for (;; ++slot) {
            std::uint32_t& entry = positions_[slot & (positions_.size() - 1)];
            if (entry == kNone) return entry = position;
            if (terms[entry].var->index == column) return entry;
        }
    }

private:
    static constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();
    std::vector<std::uint32_t> positions_;
};

// A column seen before adds its coefficient to the first occurrence and keeps 0.
void merge_columns(LinExpr* e) {
    if (e->size < 2) return;
    FirstOfColumn first(e->size);
    for (std::uint32_t i = 0; i < e->size; ++i) {
        const std::uint32_t position = first.find_or_enter(e->terms, i);
        if (position == i) continue;
        e->terms[position].coeff += e->terms[i].coeff;
        e->terms[i].coeff = 0.0;
    }
}

}  // namespace

LinExpr* allocate_linexpr(PyTypeObject* type) {
    LinExpr* e;
    if (type != LinExpr_Type) {
        inherit_operators(type, LinExpr_Type);
        e = reinterpret_cast<LinExpr*>(type->tp_alloc(type, 0));
        if (!e) throw PythonError{};
        init_fields(e, 0.0);
        return e;
    }
    if (num_free) {
        e = free_list[--num_free];
        revive(reinterpret_cast<PyObject*>(e));
    } else {
        e = PyObject_GC_New(LinExpr, LinExpr_Type);
        if (!e) throw PythonError{};
        own_type(LinExpr_Type);
    }
    init_fields(e, 0.0);
    fall_asleep(dormant_class, e->link);
    return e;
}

void wake_linexpr(LinExpr* e) {
    if (e->link.next) wake(reinterpret_cast<PyObject*>(e), e->link);
}

void LinExpr_dealloc(PyObject* self) {
    LinExpr* e = reinterpret_cast<LinExpr*>(self);
    PyTypeObject* type = Py_TYPE(self);
    if (e->link.next)
        leave_ring(e->link);
    else
        PyObject_GC_UnTrack(self);
    release_terms(e->terms, e->size);
    free_array(e);
    if (e->tail) release_tail(e->tail);
    if (type == LinExpr_Type && num_free < kMaxFree) {
        free_list[num_free++] = e;
        return;
    }
    type->tp_free(self);
    release_type(type, LinExpr_Type);
}

int LinExpr_traverse(PyObject* self, visitproc visit, void* arg) {
    const LinExpr* e = reinterpret_cast<LinExpr*>(self);
    for (std::uint32_t i = 0; i < e->size; ++i) Py_VISIT(e->terms[i].var);
    Py_VISIT(e->tail);
    return visit_type(self, visit, arg);
}

namespace {
void clear_all(LinExpr& e) { linexpr_clear(&e); }
}  // namespace

int LinExpr_tp_clear(PyObject* self) { return slot_function<clear_all>(self); }

std::vector<LinExpr*> blocks_of(LinExpr* e) {
    std::vector<LinExpr*> blocks;
    for (LinExpr* block = e; block; block = block->tail) blocks.push_back(block);
    return {blocks.rbegin(), blocks.rend()};
}

void set_tail(LinExpr* e, LinExpr* tail) {
    Py_XINCREF(tail);
    LinExpr* old = std::exchange(e->tail, tail);
    if (tail && !is_inert(reinterpret_cast<PyObject*>(tail))) wake_linexpr(e);
    if (old) release_tail(old);
}

void swap_terms(LinExpr* e, TermBuffer& buffer) {
    std::vector<Term>& terms = buffer.terms();
    linexpr_reserve(e, terms.size());
    std::vector<Term> old(e->terms, e->terms + e->size);
    bool inert = true;
    for (std::size_t i = 0; i < terms.size(); ++i) {
        e->terms[i] = terms[i];
        inert &= is_inert(terms[i].var);
    }
    e->size = static_cast<std::uint32_t>(terms.size());
    terms.swap(old);
    if (!inert) wake_linexpr(e);
}

LinExpr* new_linexpr(double constant) {
    LinExpr* e = allocate_linexpr(LinExpr_Type);
    e->constant = constant;
    return e;
}

LinExpr* linexpr_of_var(Handle* var, double coeff) {
    LinExpr* e = allocate_linexpr(LinExpr_Type);
    Py_INCREF(var);
    e->terms[0] = {coeff, var};
    e->size = 1;
    if (!is_inert(var)) wake_linexpr(e);
    return e;
}

LinExpr* linexpr_copy(LinExpr* e, std::size_t extra) {
    LinExpr* copy = new_linexpr(e->constant);
    py::object keep = owned(copy);
    const std::size_t size = e->size + extra;
    if (size > kInlineTerms) set_capacity(copy, size);
    append_terms(copy, e, e->size, 1.0);
    set_tail(copy, e->tail);
    keep.release();
    return copy;
}

void linexpr_reserve(LinExpr* e, std::size_t terms) {
    if (terms <= e->capacity) return;
    set_capacity(e, e->size ? grown_capacity(terms) : terms);
}

void linexpr_shrink(LinExpr* e) {
    if (e->terms != e->inline_terms && e->size > kInlineTerms && e->size < e->capacity) set_capacity(e, e->size);
}

void grow_linexpr(LinExpr* e) { set_capacity(e, grown_capacity(std::size_t{e->size} + 1)); }
void double_linexpr(LinExpr* e) { set_capacity(e, 2 * std::size_t{e->size}); }

void linexpr_append(LinExpr* e, double coeff, Handle* var) {
    if (e->size == e->capacity) grow_linexpr(e);
    append_term(e, coeff, var);
}

void linexpr_add(LinExpr* e, LinExpr* other, double mult) {
    if (!other->tail) {
        append_terms(e, other, other->size, mult);
        e->constant += mult * other->constant;
        return;
    }
    const std::vector<LinExpr*> blocks = blocks_of(other);
    linexpr_reserve(e, e->size + chain_size(blocks));
    const std::uint32_t head_size = other->size;  // e grows on the way, and may be the head
    double constant = 0.0;
    for (const LinExpr* block : blocks) {
        append_terms(e, block, block == other ? head_size : block->size, mult);
        constant += block->constant;
    }
    e->constant += mult * constant;
}

void linexpr_flatten(LinExpr* e) {
    if (!e->tail) return;
    const std::vector<LinExpr*> blocks = blocks_of(e);
    TermBuffer buffer;
    buffer.terms().reserve(chain_size(blocks));
    double constant = 0.0;
    for (const LinExpr* block : blocks) {
        for (std::uint32_t i = 0; i < block->size; ++i) buffer.append(block->terms[i].coeff, block->terms[i].var);
        constant += block->constant;
    }
    swap_terms(e, buffer);
    e->constant = constant;
    set_tail(e, nullptr);
}

void linexpr_scale(LinExpr* e, double mult) {
    if (mult == 1.0) return;
    if (!std::isfinite(mult)) raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT, "Multiplier is Nan or Inf");
    linexpr_flatten(e);
    e->constant *= mult;
    for (std::uint32_t i = 0; i < e->size; ++i) e->terms[i].coeff *= mult;
}

void linexpr_clear(LinExpr* e) {
    TermBuffer nothing;
    swap_terms(e, nothing);
    e->constant = 0.0;
    set_tail(e, nullptr);
}

void linexpr_normalize(LinExpr* e) {
    linexpr_flatten(e);
    merge_columns(e);
    std::uint32_t kept = 0;
    for (std::uint32_t i = 0; i < e->size; ++i)
        if (e->terms[i].coeff != 0.0) ++kept;
    if (kept == e->size) return;
    TermBuffer buffer;
    buffer.terms().reserve(kept);
    for (std::uint32_t i = 0; i < e->size; ++i)
        if (e->terms[i].coeff != 0.0) buffer.append(e->terms[i].coeff, e->terms[i].var);
    swap_terms(e, buffer);
}

void linexpr_add_constant(LinExpr* e, double c) {
    if (std::isnan(c)) raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT, "Constant is Nan");
    e->constant += c;
}

void register_linexpr_memory() {
    dormant_class.type = LinExpr_Type;
    add_dormant_class(dormant_class);
}

}  // namespace zelvanpy
