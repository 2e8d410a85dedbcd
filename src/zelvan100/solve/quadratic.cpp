#include "solve/quadratic.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>
#include <utility>

#include "core/error.h"
#include "solve/convexity.h"
#include "solve/options.h"
#include "solve/polish.h"
#include "solve/recession.h"
#include "solve/reshaped.h"

namespace zelvan {

namespace {

using Shape = Reshaped::Shape;

// Values of the parameter Method.
constexpr int kPrimalSimplex = 0, kDualSimplex = 1, kBarrier = 2;
// Squares take the place of terms where they have fewer entries by this factor.
constexpr std::size_t kFewerEntries = 4;
// The active-set method comes first where there are this many terms, and this share of all that there could be.
constexpr std::size_t kManyTerms = 200;
constexpr double kFullShare = 0.1;
// More iterations of the interior-point method than this lead nowhere.
constexpr int kMostBarrierIterations = 200;
// Iterations of the active-set method for each row and column, and besides, before another way is tried.
constexpr int kIterationsForEach = 4, kIterationsAlways = 200;
// Additions and multiplications between two looks at limits that the active-set method doesn't know, and the least
// iterations then.
constexpr double kOperationsOfRun = 4e8;
constexpr int kFewIterations = 100;
// What is added to the diagonal for the active-set method where squares leave directions open; else nothing.
constexpr double kRegularization = 1e-7;
// A relative gap, in terms of the objective, that is optimal, and the largest one that isn't polished away.
constexpr double kLargestGap = 1e-7;
constexpr double kPrecise = 1e-9;
// Rows and columns of a problem that is solved in all ways until one is precise.
constexpr int kSmall = 300;

// A limit or a stop ended the recognition.
struct Stopped {};

enum class Way { kBarrierOnSquares, kBarrier, kActiveSet };

struct WayName {
    Way way;
    const char* text;
};
constexpr WayName kWayNames[] = {
    {Way::kBarrierOnSquares, "by interior points, on the squares of the objective"},
    {Way::kBarrier, "by interior points"},
    {Way::kActiveSet, "by active sets"},
};

const char* text_of(Way way) {
    const auto is_it = [way](const WayName& name) { return name.way == way; };
    return std::find_if(std::begin(kWayNames), std::end(kWayNames), is_it)->text;
}

bool is_full(const Problem& problem) {
    const double num = problem.num_cols();
    const std::size_t size = problem.quad.size();
    return size >= kManyTerms && static_cast<double>(size) >= kFullShare * 0.5 * num * num;
}

std::vector<Way> ways_of(const Problem& problem, const Context& context) {
    std::vector<Way> ways;
    if (kFewerEntries * problem.squares->num_entries() <= problem.quad.size()) ways.push_back(Way::kBarrierOnSquares);
    ways.push_back(Way::kBarrier);
    const int method = context.params.get_int(Param::Method);
    const bool is_simplex = method == kPrimalSimplex || method == kDualSimplex;
    const bool prefers_active_set = ways.size() == 1 && is_full(problem) && method != kBarrier;
    if (context.care.simplex || is_simplex || prefers_active_set)
        ways.insert(ways.begin(), Way::kActiveSet);
    else
        ways.push_back(Way::kActiveSet);
    return ways;
}

bool is_within_limits(Outcome outcome) {
    return outcome != Outcome::kTimeLimit && outcome != Outcome::kIterationLimit && outcome != Outcome::kStopped;
}

class Search {
public:
    Search(const Problem& problem, Context& context) : problem_(problem), context_(context) {}

    SolverResult run() {
        SolverResult result;
        for (Way way : ways_of(problem_, context_)) {
            context_.monitor.log(std::string("Solving the quadratic program ") + text_of(way) + "\n");
            // The active-set method doesn't ask by itself.
            if (context_.monitor.poll() == Answer::kStop) {
                result.outcome = Outcome::kStopped;
                break;
            }
            result = run_way(way);
            if (!is_within_limits(result.outcome) || result.outcome == Outcome::kInfeasible) break;
            if (is_unlimited(result)) break;
            result.outcome = Outcome::kUnknown;
            if (best_ && is_optimal(*best_) && (best_->error() <= kPrecise || !is_small())) break;
            context_.monitor.log("The optimality conditions don't hold to the last digits\n");
        }
        if (result.outcome == Outcome::kUnknown && best_ && is_optimal(*best_)) result.outcome = Outcome::kOptimal;
        return with_best(std::move(result));
    }

private:
    // Both methods call bounded problems unbounded at times. Where a direction shows that one is, the check of the
    // answer looks for a feasible point.
    bool is_unlimited(SolverResult& result) {
        if (result.outcome != Outcome::kUnbounded && result.outcome != Outcome::kInfeasibleOrUnbounded) return false;
        if (confirmed_direction(problem_, context_).empty()) return false;
        result.outcome = Outcome::kUnbounded;
        return true;
    }

    SolverResult run_way(Way way) {
        const Shape shape = way == Way::kBarrierOnSquares ? Shape::kSquares
                            : way == Way::kBarrier        ? Shape::kTwoSided
                                                          : Shape::kActiveSet;
        const Reshaped reshaped(problem_, shape);
        set_options(context_.session, context_.params, reshaped.problem(), context_.care);
        context_.session.load(reshaped.problem());
        SolverResult result = way == Way::kActiveSet ? run_active_set(reshaped.problem()) : run_barrier();
        if (!result.x.empty()) take(reshaped, result);
        return result;
    }

    SolverResult run_barrier() {
        context_.session.set_option("solver", "hipo");
        const int limit = std::exchange(context_.care.barrier_limit, kMostBarrierIterations);
        SolverResult result = run_session(context_);
        context_.care.barrier_limit = limit;
        const bool is_ours = context_.barrier_iterations >= context_.params.get_int(Param::BarIterLimit) ||
                             context_.monitor.reaches_limit(context_.work);
        if (result.outcome == Outcome::kIterationLimit && !is_ours) result.outcome = Outcome::kUnknown;
        return result;
    }

    // In runs of a few iterations, each from where the one before ended: nothing but its own limits stops the method.
    SolverResult run_active_set(const Problem& shaped) {
        HighsSession& session = context_.session;
        session.set_option("solver", "qpasm");
        session.set_option("qp_allow_hot_start", true);
        session.set_option("qp_regularization_value", is_definite() ? 0.0 : kRegularization);
        const double size = static_cast<double>(shaped.num_cols()) + shaped.num_rows();
        const int of_run = std::max(kFewIterations, static_cast<int>(std::min(1e6, kOperationsOfRun / (size * size))));
        int left = kIterationsAlways + kIterationsForEach * (shaped.num_cols() + shaped.num_rows());
        for (;;) {
            const int of_params = iterations_left();
            const int limit = std::min({of_run, left, of_params});
            session.set_option("qp_iteration_limit", limit);
            SolverResult result = run_session(context_);
            if (result.outcome != Outcome::kIterationLimit) return result;
            if (context_.monitor.poll() == Answer::kStop) {
                result.outcome = Outcome::kStopped;
                return result;
            }
            if (limit == of_params) return result;
            left -= limit;
            if (left > 0) continue;
            context_.monitor.log("The active-set method takes many iterations\n");
            result.outcome = Outcome::kUnknown;
            return result;
        }
    }

    // Solving it in another way costs next to nothing.
    bool is_small() const { return problem_.num_cols() + problem_.num_rows() <= kSmall; }

    int iterations_left() const {
        const double left = context_.params.get_dbl(Param::IterationLimit) - context_.iterations;
        return static_cast<int>(std::clamp(std::min(left, context_.monitor.iterations_left()), 0.0, 1e9));
    }

    // Whether each column has a square of its own.
    bool is_definite() const { return problem_.squares->size() == problem_.num_cols(); }

    void take(const Reshaped& reshaped, const SolverResult& result) {
        std::vector<double> x(result.x.begin(), result.x.begin() + problem_.num_cols());
        if (result.rc.empty()) {
            if (problem_.is_feasible(x, context_.params.get_dbl(Param::FeasibilityTol))) point_ = std::move(x);
            return;
        }
        Candidate candidate = candidate_of(problem_, std::move(x), reshaped.multipliers(result.pi));
        if (is_small() || candidate.error() > kPrecise) candidate = polished(problem_, std::move(candidate));
        if (!best_ || candidate.error() < best_->error()) best_ = std::move(candidate);
    }

    bool is_optimal(const Candidate& candidate) const {
        return candidate.breach <= context_.params.get_dbl(Param::FeasibilityTol) &&
               candidate.wrong <= context_.params.get_dbl(Param::OptimalityTol) &&
               candidate.gap <= kLargestGap + candidate.noise;
    }

    SolverResult with_best(SolverResult result) {
        result.basis = {};
        result.x.clear();
        result.rc.clear();
        result.pi.clear();
        const double tolerance = context_.params.get_dbl(Param::FeasibilityTol);
        if (best_ && (result.outcome == Outcome::kOptimal || best_->breach <= tolerance)) {
            point_ = std::move(best_->x);
            result.pi = std::move(best_->pi);
            result.rc = std::move(best_->rc);
        }
        if (point_.empty()) return result;
        result.objective = problem_.offset + value_of(problem_.quad, point_.data());
        for (int j = 0; j < problem_.num_cols(); ++j) result.objective += problem_.cost[j] * point_[j];
        result.bound = result.objective;
        result.x = std::move(point_);
        return result;
    }

    const Problem& problem_;
    Context& context_;
    std::optional<Candidate> best_;
    std::vector<double> point_;  // that holds, of a run that ended early
};

}  // namespace

bool recognize_objective(Problem& problem, Context& context) {
    const auto go_on = [&context] {
        if (context.monitor.poll() == Answer::kStop || context.monitor.time_left() <= 0.0) throw Stopped();
    };
    std::optional<SumOfSquares> squares;
    try {
        squares = sum_of_squares(problem.quad, problem.sense, context.params.get_dbl(Param::PSDTol), go_on);
    } catch (const Stopped&) {
        return true;  // so will the search
    }
    const char* shape = problem.sense > 0 ? "convex" : "concave";
    if (!squares) return false;
    char line[128];
    std::snprintf(line, sizeof line, "Quadratic objective with %zu terms: %s, %d squares\n", problem.quad.size(), shape,
                  squares->size());
    context.monitor.log(line);
    problem.squares = std::make_shared<const SumOfSquares>(std::move(*squares));
    return true;
}

SolverResult search_quadratic(const Problem& problem, Context& context) { return Search(problem, context).run(); }

}  // namespace zelvan
