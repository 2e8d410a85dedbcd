#pragma once
// What the units of LinExpr share among themselves.

#include <vector>

#include "linexpr.h"

namespace zelvanpy {

constexpr std::uint32_t kInlineTerms = 2;
constexpr std::uint32_t kBlockTerms = 200;  // a sum by `+` starts a new block at this size
constexpr std::uint32_t kTermsAhead = 16;   // variables are fetched into the cache so long before their turn

// Terms under construction, each holding its variable, until an expression takes them over.
class TermBuffer {
public:
    TermBuffer() = default;
    TermBuffer(const TermBuffer&) = delete;
    TermBuffer& operator=(const TermBuffer&) = delete;
    ~TermBuffer() {
        for (const Term& term : terms_) Py_DECREF(term.var);
    }
    void append(double coeff, Handle* var) {
        terms_.push_back({coeff, var});
        Py_INCREF(var);
    }
    std::vector<Term>& terms() { return terms_; }

private:
    std::vector<Term> terms_;
};

// An instance of LinExpr or a subclass with no terms.
LinExpr* allocate_linexpr(PyTypeObject* type);
// The collector gets to know e, which has taken in something that may lead back to it.
void wake_linexpr(LinExpr* e);
// Room for at least one more term: little, or as much again for a sum that is cut to size at its end.
void grow_linexpr(LinExpr* e);
void double_linexpr(LinExpr* e);
// Appends where there is room.
inline void append_term(LinExpr* e, double coeff, Handle* var) {
    Py_INCREF(var);
    e->terms[e->size++] = {coeff, var};
    if (!is_inert(var)) wake_linexpr(e);
}
// e += term for a term of known exact class, which runs no Python code; false for any other.
template <void (*Grow)(LinExpr*)>
inline bool add_known(LinExpr* e, PyObject* term) {
    PyTypeObject* type = Py_TYPE(term);
    if (type == LinExpr_Type) {
        LinExpr* other = as_linexpr(term);
        if (other->size != 1 || other->tail) {
            linexpr_add(e, other, 1.0);
            return true;
        }
        if (e->size == e->capacity) Grow(e);
        append_term(e, other->terms[0].coeff, other->terms[0].var);
        e->constant += other->constant;
        return true;
    }
    if (type == Var_Type) {
        if (e->size == e->capacity) Grow(e);
        append_term(e, 1.0, as_handle(term));
        return true;
    }
    if (type != &PyFloat_Type) return false;
    linexpr_add_constant(e, PyFloat_AS_DOUBLE(term));
    return true;
}
// e exchanges its terms with those of the buffer.
void swap_terms(LinExpr* e, TermBuffer& buffer);
// The blocks of a chain, oldest first.
std::vector<LinExpr*> blocks_of(LinExpr* e);
// Sets the older blocks of e; tail may be null.
void set_tail(LinExpr* e, LinExpr* tail);
// Gives memory behind the last term back.
void linexpr_shrink(LinExpr* e);

// Slots for the type.
void LinExpr_dealloc(PyObject* self);
int LinExpr_traverse(PyObject* self, visitproc visit, void* arg);
int LinExpr_tp_clear(PyObject* self);
// Tells the collector's side of the new type.
void register_linexpr_memory();

}  // namespace zelvanpy
