#pragma once

#include "core/model_data.h"
#include "core/solution.h"
#include "solve/search.h"

namespace zelvan {

// Solves a model with several objectives: by falling priority, objectives of one priority added up with
// their weights. Each later solve may worsen what the earlier ones reached by the tolerances of their
// objectives: by the largest of weight * max(ObjNAbsTol, ObjNRelTol * |value|) within a priority.
// `base` is the model without objective; the first of them begins with `start`.
Solution solve_multi_objective(const ModelData& data, Problem base, Start start, Context& context);

// Values of all objectives at a point.
std::vector<double> objective_values(const ModelData& data, const double* x);

}  // namespace zelvan
