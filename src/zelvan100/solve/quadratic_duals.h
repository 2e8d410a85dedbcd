#pragma once
// Dual values of a continuous model with convex quadratic constraints, from the linear relaxation that holds them.

#include "core/model_data.h"
#include "solve/highs.h"
#include "solve/problem.h"

namespace zelvan {

// Puts `rc` and `pi` of a relaxation in terms of the model, and sets `qcpi`: the multiplier of the row that stands for
// a constraint, divided by the column that the row was. Where with these the optimality conditions don't hold at `x`,
// there are none.
void set_quadratic_duals(const ModelData& data, const Problem& problem, SolverResult& result);

}  // namespace zelvan
