#pragma once
// How quadratic expressions take in anything: the forms of the constructor, of add() and addTerms().

#include "quadexpr.h"

namespace zelvanpy {

// QuadExpr(arg) for any argument of the constructor, with its tests and texts; new reference.
QuadExpr* quadexpr_from(py::handle arg);
// e.__init__(arg)
void quadexpr_init(QuadExpr* e, py::handle arg);
// e.add(arg, mult): Var, expression or scalar, with all tests and texts of the method.
void quadexpr_add_any(QuadExpr* e, py::handle arg, double mult);
// e.addTerms(coeffs, vars, vars2), where vars2 is given.
void quadexpr_add_terms(QuadExpr* e, py::handle coeffs, py::handle vars1, py::handle vars2);
// e._mul(factor)
void quadexpr_multiply_any(QuadExpr* e, py::handle factor);
// Any scalar expression as a normalised private copy: a LinExpr where there are no quadratic terms.
py::object simple_expr(py::handle arg);

}  // namespace zelvanpy
