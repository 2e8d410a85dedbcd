#include "bridge/indicators.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zelvan {

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
// Beyond this a binary within its tolerance of 0 leaves a column so free that HiGHS takes wrong points for optimal
// ones: seen at 1e9.
constexpr double kLargestConstant = 1e7;

}  // namespace

bool Interval::is_small() const { return std::max(std::abs(lower), std::abs(upper)) <= kLargestConstant; }

Interval Indicators::range(int col) {
    if (!bounds_) bounds_ = implied_bounds(problem_);
    double &lower = bounds_->lb[col], &upper = bounds_->ub[col];
    if (lower > upper) return {problem_.lb[col], problem_.ub[col]};  // nothing is feasible
    if (lower < -kLargestConstant) lower = std::max(lower, relaxation_limit_(problem_, col, false));
    if (upper > kLargestConstant) upper = std::min(upper, relaxation_limit_(problem_, col, true));
    return {lower, std::max(lower, upper)};
}

int Indicators::of(int col) {
    if (problem_.integer[col] && problem_.lb[col] >= 0.0 && problem_.ub[col] <= 1.0) return col;
    if (const auto found = binaries_.find(col); found != binaries_.end()) return found->second;
    const Interval values = range(col);
    const int z = values.is_small() ? add(col, values) : -1;
    binaries_.emplace(col, z);
    return z;
}

int Indicators::add(int col, Interval values) {
    const int z = problem_.add_col(0.0, 1.0, 0.0, true);
    problem_.add_row({{col, 1.0}, {z, -values.upper}}, -kInf, 0.0);
    problem_.add_row({{col, 1.0}, {z, -values.lower}}, 0.0, kInf);
    return z;
}

}  // namespace zelvan
