#include "linexpr.h"

#include <cmath>
#include <limits>
#include <vector>

#include "exception.h"

namespace zelvanpy {

namespace {

// The first terms of another block, scaled, behind those of e; the block may be e itself.
void append_terms(LinExpr* e, const LinExpr* block, std::uint32_t count, double mult) {
    reserve_terms(e, std::size_t{e->size} + count);
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
    if (size > std::size(copy->inline_terms)) set_capacity(copy, size);
    append_terms(copy, e, e->size, 1.0);
    set_tail(copy, e->tail);
    keep.release();
    return copy;
}

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
    reserve_terms(e, e->size + chain_size(blocks));
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
    TermBuffer<Term> buffer;
    buffer.terms().reserve(chain_size(blocks));
    double constant = 0.0;
    for (const LinExpr* block : blocks) {
        for (std::uint32_t i = 0; i < block->size; ++i) buffer.append(block->terms[i]);
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

void linexpr_normalize(LinExpr* e) {
    linexpr_flatten(e);
    merge_columns(e);
    std::uint32_t kept = 0;
    for (std::uint32_t i = 0; i < e->size; ++i)
        if (e->terms[i].coeff != 0.0) ++kept;
    if (kept == e->size) return;
    TermBuffer<Term> buffer;
    buffer.terms().reserve(kept);
    for (std::uint32_t i = 0; i < e->size; ++i)
        if (e->terms[i].coeff != 0.0) buffer.append(e->terms[i]);
    swap_terms(e, buffer);
}

void linexpr_add_constant(LinExpr* e, double c) {
    if (std::isnan(c)) raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT, "Constant is Nan");
    e->constant += c;
}

}  // namespace zelvanpy
