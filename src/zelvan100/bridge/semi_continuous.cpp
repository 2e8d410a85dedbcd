#include "bridge/semi_continuous.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "bridge/implied_bounds.h"
#include "core/error.h"

namespace zelvan {

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

struct Gap {
    int col;
    double lower, upper;  // of the interval beyond 0
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

void bridge_semi_continuous(const ModelData& data, Problem& problem) {
    std::vector<Gap> gaps;
    for (int j = 0; j < data.cols.size(); ++j) {
        if (data.cols.type[j] != 'S' && data.cols.type[j] != 'N') continue;
        const Gap gap{j, problem.lb[j], problem.ub[j]};
        if (widen_to_hull(problem, j)) gaps.push_back(gap);
    }
    if (gaps.empty()) return;
    const ColumnBounds implied = implied_bounds(problem);
    for (Gap& gap : gaps) {
        // The side behind the gap may come nearer to it, but not within.
        if (gap.lower > 0.0)
            gap.upper = std::clamp(implied.ub[gap.col], gap.lower, gap.upper);
        else
            gap.lower = std::clamp(implied.lb[gap.col], gap.lower, gap.upper);
        if (std::isinf(gap.lower) || std::isinf(gap.upper))
            throw Error(ZVN_ERROR_NOT_SUPPORTED,
                        "The semi-continuous variable '" + data.col_name(gap.col) +
                            "' has an infinite bound, and the constraints imply no finite one: set a bound");
        const int z = problem.add_col(0.0, 1.0, 0.0, true);
        problem.add_row({{gap.col, 1.0}, {z, -gap.upper}}, -kInf, 0.0);
        problem.add_row({{gap.col, 1.0}, {z, -gap.lower}}, 0.0, kInf);
    }
}

}  // namespace zelvan
