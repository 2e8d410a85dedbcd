#pragma once
// Terms of an expression: one array of them, the first few in the object itself. An expression `E` has the fields
// terms (inline_terms, or an array from PyMem), size, capacity, inline_terms.

#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <new>
#include <vector>

#include "handle.h"

namespace zelvanpy {

constexpr std::uint32_t kTermsAhead = 16;  // variables are fetched into the cache so long before their turn

// What tells the variables of mergeable terms apart: the column, or the handle of one that has none yet.
inline std::uint64_t identity_of(const Handle* var) {
    if (var->index != -1) return static_cast<std::uint32_t>(var->index);
    return reinterpret_cast<std::uintptr_t>(var) | std::uint64_t{1} << 63;
}

struct Term {
    double coeff;
    Handle* var;  // owned

    // Calls `visit` with each variable.
    template <class Visit>
    void variables(Visit&& visit) const {
        visit(var);
    }
    Term scaled(double mult) const { return {mult * coeff, var}; }
    // For finding terms that can be merged.
    std::uint64_t hash() const { return identity_of(var); }
    bool merges_with(const Term& other) const { return identity_of(var) == identity_of(other.var); }
};

struct QuadTerm {
    double coeff;
    Handle *var1, *var2;  // owned

    template <class Visit>
    void variables(Visit&& visit) const {
        visit(var1);
        visit(var2);
    }
    QuadTerm scaled(double mult) const { return {mult * coeff, var1, var2}; }
    std::uint64_t hash() const { return identity_of(var1) << 32 ^ identity_of(var2); }
    bool merges_with(const QuadTerm& other) const {
        return identity_of(var1) == identity_of(other.var1) && identity_of(var2) == identity_of(other.var2);
    }
};

template <class E>
void init_terms(E* e) {
    e->terms = e->inline_terms;
    e->size = 0;
    e->capacity = std::size(e->inline_terms);
}

template <class E>
bool is_inline(const E* e) {
    return e->terms == e->inline_terms;
}

// Backwards: the variables added last are most likely still in the cache.
template <class T>
void release_terms(T* terms, std::uint32_t size) {
    while (size > kTermsAhead) {
        --size;
        terms[size - kTermsAhead].variables([](Handle* var) { __builtin_prefetch(var, 1); });
        terms[size].variables([](Handle* var) { Py_DECREF(var); });
    }
    while (size > 0) terms[--size].variables([](Handle* var) { Py_DECREF(var); });
}

template <class E>
void free_terms(E* e) {
    release_terms(e->terms, e->size);
    if (!is_inline(e)) PyMem_Free(e->terms);
}

template <class E>
void set_capacity(E* e, std::size_t capacity) {
    using T = typename std::iterator_traits<decltype(e->terms)>::value_type;
    if (capacity > std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
    void* array = PyMem_Realloc(is_inline(e) ? nullptr : e->terms, capacity * sizeof(T));
    if (!array) throw std::bad_alloc();
    if (is_inline(e)) std::memcpy(array, e->inline_terms, e->size * sizeof(T));
    e->terms = static_cast<T*>(array);
    e->capacity = static_cast<std::uint32_t>(capacity);
}

// Half more while small; later little more, as realloc then moves pages or extends the array where it is.
inline std::size_t grown_capacity(std::size_t terms) {
    if (terms <= 8) return 8;
    return terms + (terms < 32768 ? terms / 2 : terms / 16);
}

template <class E>
void reserve_terms(E* e, std::size_t terms) {
    if (terms > e->capacity) set_capacity(e, e->size ? grown_capacity(terms) : terms);
}

// Gives memory behind the last term back.
template <class E>
void shrink_terms(E* e) {
    if (!is_inline(e) && e->size > std::size(e->inline_terms) && e->size < e->capacity) set_capacity(e, e->size);
}

// Terms under construction, each holding its variables, until an expression takes them over.
template <class T>
class TermBuffer {
public:
    TermBuffer() = default;
    TermBuffer(const TermBuffer&) = delete;
    TermBuffer& operator=(const TermBuffer&) = delete;
    ~TermBuffer() { release_terms(terms_.data(), static_cast<std::uint32_t>(terms_.size())); }
    void append(const T& term) {
        terms_.push_back(term);
        term.variables([](Handle* var) { Py_INCREF(var); });
    }
    std::vector<T>& terms() { return terms_; }

private:
    std::vector<T> terms_;
};

}  // namespace zelvanpy
