#pragma once

#include "core/model_data.h"
#include "core/solution.h"
#include "solve/highs.h"

namespace zelvan {

// Fills ray (unbounded) or farkas and farkas_proof (infeasible) of the solution of an LP that the session
// has just solved. Left empty when HiGHS finds none or the proof doesn't hold.
void store_certificate(const ModelData& data, HighsSession& session, Solution& solution);

}  // namespace zelvan
