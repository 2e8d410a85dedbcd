#include "bridge/semi_continuous.h"

#include <algorithm>

namespace zelvan {

namespace {

// A gap up to here is within all tolerances.
constexpr double kNoGap = 1e-9;

// Makes the bounds of the column the hull of 0 and its interval. The answer is whether there is a gap.
bool widen_to_hull(Problem& problem, int j) {
    const double lower = problem.lb[j], upper = problem.ub[j];
    if (lower > upper) {
        problem.lb[j] = problem.ub[j] = 0.0;
        return false;
    }
    problem.lb[j] = std::min(lower, 0.0);
    problem.ub[j] = std::max(upper, 0.0);
    return lower > kNoGap || upper < -kNoGap;
}

}  // namespace

void bridge_semi_continuous(const ModelData& data, Problem& problem, Indicators& indicators) {
    std::vector<Gap> gaps;
    for (int j = 0; j < data.cols.size(); ++j) {
        if (data.cols.type[j] != 'S' && data.cols.type[j] != 'N') continue;
        const Gap gap{j, problem.lb[j], problem.ub[j]};
        if (widen_to_hull(problem, j)) gaps.push_back(gap);
    }
    for (const Gap& gap : gaps) {
        const auto [lower, upper] = indicators.range(gap.col);
        // The side behind the gap may come nearer to it, but not within.
        const Interval values = gap.lower > 0.0 ? Interval{gap.lower, std::clamp(upper, gap.lower, gap.upper)}
                                                : Interval{std::clamp(lower, gap.lower, gap.upper), gap.upper};
        if (values.is_small())
            indicators.add(gap.col, values);
        else
            problem.disjunctions.gaps.push_back(gap);
    }
}

}  // namespace zelvan
