#pragma once

#include <vector>

#include "core/model_data.h"
#include "core/solution.h"
#include "solve/highs.h"
#include "solve/monitor.h"

namespace zelvan {

// The status of a row of this sense as that of its slack (attribute CBasis), and back as that of the row.
int slack_status(int side_status, char sense);
int side_status(int slack_status, char sense);
// Fills the values of a solution, whose status and is_mip are set, in the terms of the model.
void store_result(const ModelData& data, SolverResult result, Solution& solution);
// Fills the pool from solutions in the order in which they were found; x stays the first.
void store_pool(const ModelData& data, std::vector<Monitor::Found> found, const ParamValues& params,
                Solution& solution);

}  // namespace zelvan
