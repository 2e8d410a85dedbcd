#include "solve/recession.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "solve/convexity.h"

namespace zelvan {

namespace {

// Elements and sums of products below this, in terms of the largest one, are taken for rounding errors of the LP.
constexpr double kRelativeZero = 1e-9;
constexpr double kRounding = 1e-13;
constexpr double kRoundingOfLarge = 1e-9;

// No direction improves the objective unless some column by itself does so on an infinite side.
bool has_improving_side(const Problem& problem) {
    for (int j = 0; j < problem.num_cols(); ++j) {
        const double uphill = problem.sense * problem.cost[j];
        if (uphill < 0.0 && std::isinf(problem.ub[j])) return true;
        if (uphill > 0.0 && std::isinf(problem.lb[j])) return true;
    }
    return false;
}

// The relaxation with 0 in place of every finite bound and side, in a box.
Problem cone_of(Problem problem) {
    const auto at_zero = [](double side) { return std::isinf(side) ? side : 0.0; };
    for (int j = 0; j < problem.num_cols(); ++j) {
        problem.lb[j] = std::isinf(problem.lb[j]) ? -1.0 : 0.0;
        problem.ub[j] = std::isinf(problem.ub[j]) ? 1.0 : 0.0;
        problem.integer[j] = 0;
    }
    std::transform(problem.row_lower.begin(), problem.row_lower.end(), problem.row_lower.begin(), at_zero);
    std::transform(problem.row_upper.begin(), problem.row_upper.end(), problem.row_upper.begin(), at_zero);
    problem.offset = 0.0;
    // Along a direction that goes on for ever no square may grow.
    if (const auto squares = std::exchange(problem.squares, nullptr)) {
        for (int k = 0; k < squares->size(); ++k) {
            Problem::Terms terms;
            for (int p = squares->start[k]; p < squares->start[k + 1]; ++p)
                terms.emplace_back(squares->col[p], squares->val[p]);
            problem.add_row(terms, 0.0, 0.0);
        }
    }
    problem.quad = {};
    return problem;
}

std::vector<double> best_direction(const Problem& cone, Context& context) {
    Care care;
    care.simplex = true;  // a vertex: most of its elements are exactly 0, 1 or -1
    return search_aside(cone, {}, care, context).x;
}

bool holds(const Problem& cone, const std::vector<double>& direction, double rounding) {
    for (int i = 0; i < cone.num_rows(); ++i) {
        double sum = 0.0, magnitude = 0.0;
        for (int k = cone.start[i]; k < cone.start[i + 1]; ++k) {
            const double term = cone.val()[k] * direction[cone.col()[k]];
            sum += term;
            magnitude += std::fabs(term);
        }
        const double allowed = rounding * magnitude;
        if (sum < cone.row_lower[i] - allowed || sum > cone.row_upper[i] + allowed) return false;
    }
    double rate = 0.0, magnitude = 0.0;
    for (int j = 0; j < cone.num_cols(); ++j) {
        rate += cone.sense * cone.cost[j] * direction[j];
        magnitude += std::fabs(cone.cost[j] * direction[j]);
    }
    return rate < -kRelativeZero * magnitude;
}

// Scaled to largest element 1, and without small elements unless it needs them; empty when it doesn't hold.
std::vector<double> cleaned(const Problem& cone, std::vector<double> direction, double rounding) {
    double largest = 0.0;
    for (double value : direction) largest = std::max(largest, std::fabs(value));
    if (largest == 0.0) return {};
    for (int j = 0; j < cone.num_cols(); ++j) direction[j] = std::clamp(direction[j] / largest, cone.lb[j], cone.ub[j]);
    std::vector<double> without = direction;
    for (double& value : without)
        if (std::fabs(value) < kRelativeZero) value = 0.0;
    if (holds(cone, without, rounding)) return without;
    return holds(cone, direction, rounding) ? direction : std::vector<double>();
}

}  // namespace

std::vector<double> improving_direction(const Problem& problem, Context& context) {
    if (!has_improving_side(problem)) return {};
    const Problem cone = cone_of(problem);
    return cleaned(cone, best_direction(cone, context), kRounding);
}

std::vector<double> confirmed_direction(const Problem& problem, Context& context) {
    if (!has_improving_side(problem)) return {};
    const Problem cone = cone_of(problem);
    std::vector<double> direction = cleaned(cone, best_direction(cone, context), kRoundingOfLarge);
    if (direction.empty() && !problem.is_mip() && problem.quad.empty())
        direction = cleaned(cone, context.session.primal_ray(), kRoundingOfLarge);
    return direction;
}

}  // namespace zelvan
