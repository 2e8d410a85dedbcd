#pragma once
// Makes a point hold on the data that the user wrote where the search's own fails there: the tolerances of a
// reformulated problem are not those of the model.

#include <functional>
#include <vector>

#include "solve/check.h"
#include "solve/search.h"

namespace zelvan {

// What an answer is held to.
struct Claim {
    const ModelData& data;
    // Of the columns of the model, in its own sense.
    std::function<double(const double* x)> objective;
    // Conditions on a point that are none of the model: a cutoff, what earlier objectives reached.
    std::function<bool(const double* x)> admits;
    Tolerances tolerances;

    std::optional<Breach> breach(const std::vector<double>& x) const {
        return find_breach(data, x, row_activities(data.rows, x.data()), tolerances);
    }
};

Tolerances tolerances_of(const ParamValues& params);
// Whether an objective is as good as the bound within MIPGap or MIPGapAbs.
bool is_within_gap(const ParamValues& params, int sense, double objective, double bound);

// The result of a search, whose point fails the claim. The answer is optimal only if the repaired point is within
// the gap of a proven bound; otherwise it has the best point that holds, or none.
SolverResult repair(const Problem& problem, const Claim& claim, SolverResult failed, Context& context);

}  // namespace zelvan
