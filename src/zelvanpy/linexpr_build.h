#pragma once
// The forms of the constructor and of addTerms(), for the methods of LinExpr.

#include "linexpr.h"

namespace zelvanpy {

// e.__init__(arg), where arg2 is None.
void linexpr_init(LinExpr* e, py::handle arg);
// e.__init__(coeffs, vars)
void linexpr_init(LinExpr* e, py::handle coeffs, py::handle vars);
// e.addTerms(coeffs, vars)
void linexpr_add_terms(LinExpr* e, py::handle coeffs, py::handle vars);

}  // namespace zelvanpy
