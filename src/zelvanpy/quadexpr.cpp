#include "quadexpr.h"

#include <cmath>
#include <vector>

#include "exception.h"
#include "expr_merge.h"

namespace zelvanpy {

PyTypeObject* QuadExpr_Type = nullptr;

namespace {

// A factor of a product: its terms over all blocks, borrowed, and its constant.
struct Factor {
    std::vector<Term> terms;
    double constant = 0.0;
    bool is_variable;

    explicit Factor(py::handle factor) : is_variable(is_var(factor)) {
        if (is_variable) {
            terms.push_back({1.0, as_handle(factor)});
            return;
        }
        const std::vector<LinExpr*> blocks = blocks_of(as_linexpr(factor));
        for (const LinExpr* block : blocks) terms.insert(terms.end(), block->terms, block->terms + block->size);
        constant = chain_constant(blocks);
    }
};

// The linear part gets these terms and no older blocks; it stays the same object.
void fill_linear_part(QuadExpr* e, TermBuffer<Term>& terms, double constant) {
    if (!e->lin && terms.terms().empty() && constant == 0.0) return;
    LinExpr* linear = linear_part(e);
    swap_terms(linear, terms);
    linear->constant = constant;
    set_tail<LinExpr>(linear, nullptr);
}

// e = left * right. The factors may be parts of e.
void set_product(QuadExpr* e, const Factor& left, const Factor& right) {
    TermBuffer<QuadTerm> quadratic;
    TermBuffer<Term> linear;
    quadratic.terms().reserve(left.terms.size() * right.terms.size());
    for (const Term& a : left.terms)
        for (const Term& b : right.terms) quadratic.append({a.coeff * b.coeff, a.var, b.var});
    if (left.constant != 0.0)
        for (const Term& b : right.terms) linear.append(b.scaled(left.constant));
    if (right.constant != 0.0)
        for (const Term& a : left.terms) linear.append(a.scaled(right.constant));
    fill_linear_part(e, linear, right.is_variable ? 0.0 : left.constant * right.constant);
    swap_terms(e, quadratic);
}

// The term that a factor consists of; false where it has others, or a constant.
bool is_one_term(py::handle factor, Term& term) {
    if (is_var(factor)) {
        term = {1.0, as_handle(factor)};
        return true;
    }
    const LinExpr* e = as_linexpr(factor);
    if (e->size != 1 || e->tail || e->constant != 0.0) return false;
    term = e->terms[0];
    return true;
}

}  // namespace

QuadExpr* new_quadexpr() { return ExprMemory<QuadExpr>::allocate(QuadExpr_Type); }

LinExpr* linear_part(QuadExpr* e) {
    if (e->lin) return e->lin;
    py::object linear = owned(new_linexpr());
    if (!e->lin) e->lin = as_linexpr(linear.release());  // a finalizer may have asked for it
    return e->lin;
}

void set_linear_part(QuadExpr* e, py::object linear) {
    const py::object old = owned(std::exchange(e->lin, as_linexpr(linear.release())));
    if (!e->rest_is_inert()) ExprMemory<QuadExpr>::wake(e);
}

QuadExpr* quadexpr_copy(QuadExpr* e, std::size_t extra) {
    py::object keep = owned(new_quadexpr());
    QuadExpr* copy = as_quadexpr(keep);
    if (e->lin) {
        const py::object linear = borrow(as_result(e->lin));
        set_linear_part(copy, owned(linexpr_copy(as_linexpr(linear))));
    }
    const std::size_t size = e->size + extra;
    if (size > std::size(copy->inline_terms)) set_capacity(copy, size);
    append_scaled(copy, e, e->size, 1.0);
    set_tail(copy, e->tail);
    keep.release();
    return copy;
}

QuadExpr* quadexpr_of_linear(py::object linear) {
    py::object keep = owned(new_quadexpr());
    if (Py_REFCNT(linear.ptr()) > 1) linear = owned(linexpr_copy(as_linexpr(linear)));
    set_linear_part(as_quadexpr(keep), std::move(linear));
    return as_quadexpr(keep.release());
}

void quadexpr_flatten(QuadExpr* e) {
    if (!e->tail) return;
    const std::vector<QuadExpr*> blocks = blocks_of(e);
    TermBuffer<QuadTerm> quadratic;
    gather_terms(blocks, quadratic);
    TermBuffer<Term> linear;
    double constant = 0.0;
    for (const QuadExpr* block : blocks) {
        if (!block->lin) continue;
        const std::vector<LinExpr*> linear_blocks = blocks_of(block->lin);
        gather_terms(linear_blocks, linear);
        constant += chain_constant(linear_blocks);
    }
    fill_linear_part(e, linear, constant);
    swap_terms(e, quadratic);
    set_tail<QuadExpr>(e, nullptr);
}

py::object flat_quadexpr(QuadExpr* e) {
    if (!e->tail) return borrow(as_result(e));
    py::object copy = owned(quadexpr_copy(e));
    quadexpr_flatten(as_quadexpr(copy));
    return copy;
}

void quadexpr_add(QuadExpr* e, QuadExpr* other, double mult) {
    // First, as that may run code; also where the constant 0.0 of a missing linear part becomes NaN.
    if (other->lin || other->tail || !std::isfinite(mult)) linear_part(e);
    const py::object flat = flat_quadexpr(other);
    const QuadExpr* from = as_quadexpr(flat);
    reserve_terms(e, std::size_t{e->size} + from->size);
    if (e->lin && from->lin)
        linexpr_add(e->lin, from->lin, mult);
    else if (e->lin)
        e->lin->constant += mult * 0.0;
    append_scaled(e, from, from->size, mult);
}

void quadexpr_scale(QuadExpr* e, double mult) {
    quadexpr_flatten(e);
    if (std::isnan(mult)) raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT, "Constant is Nan");
    if (e->lin)
        linexpr_scale(e->lin, mult);
    else
        check_multiplier(mult);
    for (std::uint32_t i = 0; i < e->size; ++i) e->terms[i].coeff *= mult;
}

void quadexpr_multiply_linear(QuadExpr* e, py::handle factor) {
    set_product(e, Factor(as_result(linear_part(e))), Factor(factor));
}

void quadexpr_normalize(QuadExpr* e) {
    quadexpr_flatten(e);
    if (e->lin) linexpr_normalize(e->lin);
    for (std::uint32_t i = 0; i < e->size; ++i) {
        QuadTerm& term = e->terms[i];
        const int first = term.var1->index, second = term.var2->index;
        if (first > second || (first == second && identity_of(term.var1) > identity_of(term.var2)))
            std::swap(term.var1, term.var2);
    }
    merge_terms(e);
}

QuadExpr* product_of_expressions(py::handle left, py::handle right) {
    py::object keep = owned(new_quadexpr());  // first, as that may run code that changes the factors
    QuadExpr* product = as_quadexpr(keep);
    Term a, b;
    if (is_one_term(left, a) && is_one_term(right, b))
        append_term(product, {a.coeff * b.coeff, a.var, b.var});
    else
        set_product(product, Factor(left), Factor(right));
    keep.release();
    return product;
}

}  // namespace zelvanpy
