#include "linexpr.h"

#include <cmath>
#include <vector>

#include "exception.h"
#include "expr_merge.h"

namespace zelvanpy {

PyTypeObject* LinExpr_Type = nullptr;

LinExpr* new_linexpr(double constant) {
    LinExpr* e = ExprMemory<LinExpr>::allocate(LinExpr_Type);
    e->constant = constant;
    return e;
}

LinExpr* linexpr_of_var(Handle* var, double coeff) {
    LinExpr* e = ExprMemory<LinExpr>::allocate(LinExpr_Type);
    append_term(e, {coeff, var});
    return e;
}

LinExpr* linexpr_copy(LinExpr* e, std::size_t extra) {
    LinExpr* copy = new_linexpr(e->constant);
    py::object keep = owned(copy);
    const std::size_t size = e->size + extra;
    if (size > std::size(copy->inline_terms)) set_capacity(copy, size);
    append_scaled(copy, e, e->size, 1.0);
    set_tail(copy, e->tail);
    keep.release();
    return copy;
}

void linexpr_append(LinExpr* e, double coeff, Handle* var) {
    if (e->size == e->capacity) grow_terms(e);
    append_term(e, {coeff, var});
}

double chain_constant(const std::vector<LinExpr*>& blocks) {
    double constant = 0.0;
    for (const LinExpr* block : blocks) constant += block->constant;
    return constant;
}

void linexpr_add(LinExpr* e, LinExpr* other, double mult) {
    if (!other->tail) {
        append_scaled(e, other, other->size, mult);
        e->constant += mult * other->constant;
        return;
    }
    const std::vector<LinExpr*> blocks = blocks_of(other);
    const double constant = chain_constant(blocks);
    reserve_terms(e, e->size + chain_size(blocks));
    const std::uint32_t head_size = other->size;  // e grows on the way, and may be the head
    for (const LinExpr* block : blocks) append_scaled(e, block, block == other ? head_size : block->size, mult);
    e->constant += mult * constant;
}

void linexpr_flatten(LinExpr* e) {
    if (!e->tail) return;
    const std::vector<LinExpr*> blocks = blocks_of(e);
    TermBuffer<Term> buffer;
    gather_terms(blocks, buffer);
    const double constant = chain_constant(blocks);
    swap_terms(e, buffer);
    e->constant = constant;
    set_tail<LinExpr>(e, nullptr);
}

void check_multiplier(double mult) {
    if (!std::isfinite(mult)) raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT, "Multiplier is Nan or Inf");
}

void linexpr_scale(LinExpr* e, double mult) {
    if (mult == 1.0) return;
    check_multiplier(mult);
    linexpr_flatten(e);
    e->constant *= mult;
    for (std::uint32_t i = 0; i < e->size; ++i) e->terms[i].coeff *= mult;
}

void linexpr_normalize(LinExpr* e) {
    linexpr_flatten(e);
    merge_terms(e);
}

void linexpr_add_constant(LinExpr* e, double c) {
    if (std::isnan(c)) raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT, "Constant is Nan");
    e->constant += c;
}

}  // namespace zelvanpy
