#pragma once
// Makes a point hold on the data that the user wrote where the search's own fails there: the tolerances of a
// reformulated problem are not those of the model.

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "solve/check.h"
#include "solve/search.h"

namespace zelvan {

// What an answer is held to.
struct Claim {
    const ModelData& data;
    // Of the columns of the model, in its own sense.
    std::function<double(const double* x)> objective;
    // By how much a point is worse than a cutoff or what earlier objectives reached, relatively; none without them.
    std::function<double(const double* x)> excess;
    Tolerances tolerances;

    // What is wrong with a point, as a part of a sentence; `activity` has the activities of the rows there.
    std::optional<std::string> fault(const std::vector<double>& x, std::span<const double> activity,
                                     const Tolerances& allowed) const;
    std::optional<std::string> fault(const std::vector<double>& x) const {
        return fault(x, row_activities(data.rows, x.data()), tolerances);
    }
};

// By how much a value is worse than a limit, in terms of the limit where that is larger than 1.
double relative_excess(int sense, double value, double limit);

Tolerances tolerances_of(const ParamValues& params);
// Whether an objective is as good as the bound within MIPGap or MIPGapAbs.
bool is_within_gap(const ParamValues& params, int sense, double objective, double bound);

// The result of a search, whose point fails the claim. The answer is optimal only if the repaired point is within
// the gap of a proven bound; otherwise it has the best point that holds, or none.
SolverResult repair(const Problem& problem, const Claim& claim, SolverResult failed, Context& context);

}  // namespace zelvan
