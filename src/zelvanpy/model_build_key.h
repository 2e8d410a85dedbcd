#pragma once
// The loop variables of a generator expression, found in its compiled code: the targets of the loops that are
// running where it yields, and of `for j in [value]`, which is compiled to a plain assignment. Loops of
// comprehensions inside it end before the yield, so their variables, which newer interpreters compile into the same
// code object, are told apart.

#include "pybase.h"

namespace zelvanpy {

// The keys of a generator expression, from its loop variables.
class GeneratorKey {
public:
    // Raises KeyError for an object that is no running generator and where the loop variables can't be told.
    explicit GeneratorKey(py::handle generator);
    // The key of the iteration that the generator has just yielded.
    py::object current() const;

private:
    py::object frame_;
    py::object names_;  // tuple of str
};

}  // namespace zelvanpy
