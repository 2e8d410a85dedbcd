#include "solve/relaxation_bound.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zelvan {

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr int kMostPrograms = 200;
// Simplex iterations of one LP, besides one for each row and column.
constexpr int kFewIterations = 1000;
// What cancels out but for this, relative to its terms, is taken for 0.
constexpr double kRounding = 1e-11;
// What a bound is loosened by, relative to the terms that make it.
constexpr double kLoosened = 1e-9;

// The least value of the objective that multipliers of the rows prove, whatever they are.
double proven_bound(const Problem& problem, const std::vector<double>& multipliers) {
    std::vector<double> rest = problem.cost, magnitude(problem.num_cols());
    double bound = 0.0, size = 1.0;
    const auto add = [&](double factor, double lower, double upper) {
        if (factor == 0.0) return;
        const double term = factor * (factor > 0.0 ? lower : upper);
        bound += term;
        size += std::fabs(term);
    };
    for (int i = 0; i < problem.num_rows(); ++i) {
        const double y = multipliers[i];
        if (y == 0.0 || std::isinf(y > 0.0 ? problem.row_lower[i] : problem.row_upper[i])) continue;
        add(y, problem.row_lower[i], problem.row_upper[i]);
        for (int k = problem.start[i]; k < problem.start[i + 1]; ++k) {
            rest[problem.col()[k]] -= y * problem.val()[k];
            magnitude[problem.col()[k]] += std::fabs(y * problem.val()[k]);
        }
    }
    for (int j = 0; j < problem.num_cols(); ++j)
        add(std::fabs(rest[j]) <= kRounding * magnitude[j] ? 0.0 : rest[j], problem.lb[j], problem.ub[j]);
    return std::isfinite(bound) ? bound - kLoosened * size : -kInf;
}

}  // namespace

// Kept, with its basis, from one LP to the next.
struct RelaxationBound::Relaxation {
    explicit Relaxation(const Problem& original) : problem(original) {
        problem.disjunctions = {};
        problem.cones.clear();
        problem.sense = 1;
        problem.integer.assign(problem.integer.size(), 0);
        problem.clear_objective();
    }

    HighsSession session;
    Problem problem;
};

RelaxationBound::RelaxationBound(Context& context) : context_(context), num_left_(kMostPrograms) {}
RelaxationBound::~RelaxationBound() = default;

double RelaxationBound::operator()(const Problem& problem, int col, bool upper) {
    const double infinite = upper ? kInf : -kInf;
    if (num_left_ == 0) return infinite;
    --num_left_;
    if (!relaxation_) relaxation_ = std::make_unique<Relaxation>(problem);
    Problem& program = relaxation_->problem;
    program.cost[col] = upper ? -1.0 : 1.0;
    Care care;
    care.node = true;
    care.simplex = true;
    care.iteration_limit = kFewIterations + program.num_rows() + program.num_cols();
    const SolverResult result = search_with(relaxation_->session, program, {}, care, context_);
    const bool is_solved = result.outcome == Outcome::kOptimal && !result.pi.empty();
    const double bound = is_solved ? proven_bound(program, result.pi) : -kInf;
    program.cost[col] = 0.0;
    return upper ? -bound : bound;
}

}  // namespace zelvan
