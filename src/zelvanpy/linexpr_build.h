#pragma once
// How linear expressions take in anything: the forms of the constructor, of add() and addTerms().

#include "linexpr.h"

namespace zelvanpy {

[[noreturn]] void raise_invalid(const char* text);
// Refuses a coefficient that is infinite or NaN.
void check_coefficient(double coeff);
// LinExpr(arg) for any argument of the constructor, with its tests and texts.
LinExpr* linexpr_from(py::handle arg);
// e.add(arg, mult): Var, LinExpr or scalar, with all tests and texts of the method.
void linexpr_add_any(LinExpr* e, py::handle arg, double mult);
// e.addConstant(c)
void linexpr_add_number(LinExpr* e, py::handle c);
// e.__init__(arg), where arg2 is None.
void linexpr_init(LinExpr* e, py::handle arg);
// e.__init__(coeffs, vars)
void linexpr_init(LinExpr* e, py::handle coeffs, py::handle vars);
// e.addTerms(coeffs, vars)
void linexpr_add_terms(LinExpr* e, py::handle coeffs, py::handle vars);

}  // namespace zelvanpy
