#pragma once
// What the units share that put matrix expressions into a model.

#include <vector>

#include "mlinexpr.h"
#include "model_build.h"
#include "model_build_names.h"
#include "mquadexpr.h"

namespace zelvanpy {

// The variables that an argument x means: an MVar, a list of Var, or None for all of the model.
py::object matrix_vars(Model& self, py::handle x);
// The columns of variables in a row, each one's handle with an index in this model; throws
// ZelvanError(NOT_IN_MODEL). Python code doesn't run.
std::vector<int> columns_of(const Model& self, const Vars::Span& vars);
// The names of the cells of an array for a false or true `name`; null for none.
char* const* cell_names(NameBuffer& names, py::handle name, const Shape& shape);

// Rows A x (sense) rhs as an array of the given shape. Senses and right-hand sides are one for each row.
py::object add_matrix_rows(Model& self, const Rows& rows, Vars& vars, const std::vector<char>& senses,
                           const std::vector<double>& rhs, char* const* names, const Shape& shape);
// What addConstr does with a comparison of matrix expressions, all of which stands on the left.
py::object add_matrix_constr(Model& self, py::handle mlinexpr, char sense, py::handle name);
py::object add_matrix_qconstr(Model& self, py::handle mquadexpr, char sense, py::handle name);
// setObjective() with a compact expression
void set_compact_objective(Model& self, py::handle expr, int sense);

}  // namespace zelvanpy
