#include "bridge/semi_continuous.h"

#include <algorithm>

#include "core/error.h"

namespace zelvan {

namespace {

struct Gap {
    int col;
    Interval values;  // beyond 0
};

// Makes the bounds of the column the hull of 0 and its interval. The answer is whether there is a gap.
bool widen_to_hull(Problem& problem, int j) {
    const double lower = problem.lb[j], upper = problem.ub[j];
    if (lower > upper) {
        problem.lb[j] = problem.ub[j] = 0.0;
        return false;
    }
    problem.lb[j] = std::min(lower, 0.0);
    problem.ub[j] = std::max(upper, 0.0);
    return lower > 0.0 || upper < 0.0;
}

}  // namespace

void bridge_semi_continuous(const ModelData& data, Problem& problem, Indicators& indicators) {
    std::vector<Gap> gaps;
    for (int j = 0; j < data.cols.size(); ++j) {
        if (data.cols.type[j] != 'S' && data.cols.type[j] != 'N') continue;
        const Gap gap{j, {problem.lb[j], problem.ub[j]}};
        if (widen_to_hull(problem, j)) gaps.push_back(gap);
    }
    for (auto& [j, values] : gaps) {
        const auto [lower, upper] = indicators.range(j);
        // The side behind the gap may come nearer to it, but not within.
        if (values.lower > 0.0)
            values.upper = std::clamp(upper, values.lower, values.upper);
        else
            values.lower = std::clamp(lower, values.lower, values.upper);
        if (!values.is_finite())
            throw Error(ZVN_ERROR_NOT_SUPPORTED,
                        "The semi-continuous variable '" + data.col_name(j) +
                            "' has an infinite bound, and the constraints imply no finite one: set a bound");
        indicators.add(j, values);
    }
}

}  // namespace zelvan
