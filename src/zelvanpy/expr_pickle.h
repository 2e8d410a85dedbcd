#pragma once
// Expressions as pickles: (restore, (type, format, older blocks..., state)[, fields]).

#include <initializer_list>
#include <vector>

#include "expr_memory.h"

namespace zelvanpy {

// pickle goes down a chain by recursion, and no deeper than this number of blocks.
constexpr std::size_t kPickledBlocks = 20;

[[noreturn]] void raise_bad_pickle();  // ValueError

// The arguments of a restore function.
struct PickledExpr {
    PyTypeObject* type;
    PyObject* state;  // a tuple
    PickledExpr(py::handle args, PyTypeObject* own);
};
// The common length of a list of coefficients and its lists of variables.
Py_ssize_t pickled_size(PyObject* coeffs, std::initializer_list<PyObject*> vars);
double pickled_coefficient(PyObject* coeffs, Py_ssize_t i);
Handle* pickled_variable(PyObject* vars, Py_ssize_t i);

// The tuple for __reduce__ from its parts.
py::object reduced_expr(py::handle e, PyTypeObject* own, py::handle restore, py::list args);

// Older blocks that are pickled before the state, oldest first, so that each finds those below it done: every
// kPickledBlocks-th, counted from the oldest. A block between two of them names the one below it, which names the rest.
template <class E>
void append_milestones(E* e, py::list& args) {
    if (!e->tail) return;
    const std::vector<E*> blocks = blocks_of(e->tail);
    if (blocks.size() <= kPickledBlocks) return;
    const std::size_t above = blocks.size() % kPickledBlocks;
    for (std::size_t i = above ? blocks.size() - above : 0; i < blocks.size(); i += kPickledBlocks)
        args.append(py::handle(as_result(blocks[i])));
}

template <class E>
py::object reduced_expr(E* e, py::handle restore, const py::tuple& state) {
    py::list older;
    append_milestones(e, older);
    older.append(state);
    return reduced_expr(as_result(e), E::type(), restore, older);
}

}  // namespace zelvanpy
