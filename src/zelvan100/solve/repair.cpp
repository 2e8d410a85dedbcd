#include "solve/repair.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <queue>
#include <utility>

namespace zelvan {

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
// Differences of objectives below this, relatively, are rounding.
constexpr double kObjectiveRounding = 1e-9;
// Subproblems that one repair solves at most.
constexpr int kMostNodes = 200;

bool has_ended(Outcome outcome) { return outcome == Outcome::kOptimal || outcome == Outcome::kInfeasible; }

std::vector<double> rounded(const Problem& problem, std::vector<double> x) {
    for (int j = 0; j < problem.num_cols(); ++j)
        if (problem.integer[j]) x[j] = std::clamp(std::round(x[j]), problem.lb[j], problem.ub[j]);
    return x;
}

// The integer column to branch on where rounding breaks a row: the one that weighs most in the row that is broken
// most. -1 when there is none.
int branching_column(const Problem& problem, const std::vector<double>& x, double tolerance) {
    int chosen = -1;
    double worst = tolerance;
    for (int i = 0; i < problem.num_rows(); ++i) {
        double activity = 0.0, largest = 0.0;
        int heaviest = -1;
        for (int k = problem.start[i]; k < problem.start[i + 1]; ++k) {
            const int j = problem.col()[k];
            const double size = std::fabs(problem.val()[k]);
            activity += problem.val()[k] * x[j];
            if (!problem.integer[j] || problem.lb[j] == problem.ub[j] || size <= largest) continue;
            largest = size;
            heaviest = j;
        }
        const double amount = outside(activity, problem.row_lower[i], problem.row_upper[i]);
        if (heaviest < 0 || amount <= worst) continue;
        worst = amount;
        chosen = heaviest;
    }
    return chosen;
}

class Repair {
public:
    Repair(const Problem& problem, const Claim& claim, Context& context)
        : problem_(problem), claim_(claim), context_(context), is_mip_(problem.is_mip()) {}

    SolverResult run(SolverResult failed) {
        result_ = std::move(failed);
        bound_ = is_mip_ ? result_.bound : -problem_.sense * kInf;
        const std::vector<double> x = std::exchange(result_.x, {});
        result_.activity.clear();
        const bool ended = result_.outcome == Outcome::kOptimal;
        if (is_mip_ && fix(problem_, x) && ended && is_proven()) return proven();
        // A limit or an interrupt leaves no time for further solves.
        if (!ended) return unproven(result_.outcome);
        return is_mip_ ? run_mip() : run_lp();
    }

private:
    // With tighter tolerances, then also without presolve.
    static constexpr Care kCares[] = {{.tight = true}, {.tight = true, .presolve = false}};

    SolverResult run_lp() {
        for (Care care : kCares) {
            care.simplex = true;
            SolverResult again = search_aside(problem_, {}, care, context_);
            if (!has_ended(again.outcome)) return unproven(again.outcome);
            if (!take(again.x) || again.outcome != Outcome::kOptimal) continue;
            return again;
        }
        return unproven(Outcome::kUnknown);
    }

    SolverResult run_mip() {
        std::vector<double> failing;
        for (const Care& care : kCares) {
            SolverResult again = search_aside(problem_, {best_, {}}, care, context_);
            const Outcome outcome = settle(problem_, again);
            if (!has_ended(outcome)) return unproven(outcome);
            if (outcome == Outcome::kInfeasible) continue;
            bound_ = again.bound;
            if (is_proven()) return proven();
            failing = std::move(again.x);
        }
        return failing.empty() ? unproven(Outcome::kUnknown) : branch(failing);
    }

    // Takes the point of a search, or the one with its integers fixed.
    Outcome settle(const Problem& problem, const SolverResult& result) {
        if (!result.x.empty() && !take(result.x)) fix(problem, result.x);
        return result.outcome;
    }

    bool take(const std::vector<double>& x) {
        if (x.empty()) return false;
        if (std::optional<std::string> fault = claim_.fault(x)) {
            fault_ = std::move(*fault);
            return false;
        }
        const double objective = claim_.objective(x.data());
        if (best_.empty() || problem_.sense * objective < problem_.sense * best_objective_) {
            best_ = x;
            best_objective_ = objective;
        }
        return true;
    }

    // The LP that is left when the integers are fixed at their rounded values.
    bool fix(const Problem& problem, const std::vector<double>& x) {
        Problem fixed = problem;
        const std::vector<double> at = rounded(problem, x);
        for (int j = 0; j < fixed.num_cols(); ++j) {
            if (!fixed.integer[j]) continue;
            fixed.lb[j] = fixed.ub[j] = at[j];
            fixed.integer[j] = 0;
        }
        Care care = kCares[0];
        care.simplex = true;
        return take(search_aside(fixed, {}, care, context_).x);
    }

    struct Node {
        double bound;  // as of a minimization
        std::vector<double> lb, ub;
        std::vector<double> failing;  // its own point, which breaks the claim
        bool operator<(const Node& other) const { return bound > other.bound; }
    };

    // A best-first search over exact values of the integers that the tolerances bend.
    SolverResult branch(std::vector<double> failing) {
        std::priority_queue<Node> open;
        open.push({problem_.sense * bound_, problem_.lb, problem_.ub, std::move(failing)});
        double lost = kInf;  // bound of nodes that can't be branched on
        // Special ordered sets lie in rows with binaries too.
        const double tolerance = std::min(claim_.tolerances.feasibility, claim_.tolerances.integrality);
        Problem child = problem_;
        for (int count = 0; !open.empty() && count < kMostNodes;) {
            const Node node = open.top();
            if (is_done(node.bound)) break;
            open.pop();
            child.lb = node.lb;
            child.ub = node.ub;
            const std::vector<double> at = rounded(child, node.failing);
            const int column = branching_column(child, at, tolerance);
            if (column < 0) {
                lost = std::min(lost, node.bound);
                continue;
            }
            for (const auto& [lower, upper] : parts(node.lb[column], node.ub[column], at[column])) {
                ++count;
                child.lb[column] = lower;
                child.ub[column] = upper;
                SolverResult result = search_aside(child, {best_, {}}, kCares[0], context_);
                const Outcome outcome = settle(child, result);
                if (!has_ended(outcome)) return unproven(outcome);
                if (outcome == Outcome::kInfeasible) continue;
                const double bound = std::max(node.bound, problem_.sense * result.bound);
                if (!is_done(bound)) open.push({bound, child.lb, child.ub, std::move(result.x)});
            }
        }
        const double least = open.empty() ? lost : std::min(lost, open.top().bound);
        const double reached = best_.empty() ? kInf : problem_.sense * best_objective_;
        bound_ = problem_.sense * std::min(least, reached);
        if (is_proven()) return proven();
        // Nothing is left that could hold a point.
        return unproven(least == kInf ? Outcome::kInfeasible : Outcome::kUnknown);
    }

    // The values below one, at it and above it, as far as the bounds go.
    static std::vector<std::pair<double, double>> parts(double lower, double upper, double value) {
        std::vector<std::pair<double, double>> parts;
        if (lower < value) parts.emplace_back(lower, value - 1.0);
        parts.emplace_back(value, value);
        if (value < upper) parts.emplace_back(value + 1.0, upper);
        return parts;
    }

    bool is_done(double bound) const {
        return !best_.empty() && is_within_gap(context_.params, 1, problem_.sense * best_objective_, bound);
    }
    bool is_proven() const { return is_done(problem_.sense * bound_); }

    SolverResult proven() {
        context_.monitor.log("Repaired: the objective is within the gap of the proven bound\n");
        return with_best(Outcome::kOptimal);
    }

    SolverResult unproven(Outcome outcome) {
        if (!best_.empty())
            context_.monitor.log("A point was found that holds, but it isn't proven optimal\n");
        else if (fault_.empty())
            context_.monitor.log("Not repaired: no other point was found\n");
        else
            context_.monitor.log("Not repaired: the latest point found " + fault_ + "\n");
        return with_best(outcome);
    }

    SolverResult with_best(Outcome outcome) {
        result_.outcome = outcome;
        result_.bound = bound_;
        result_.x = std::move(best_);
        result_.objective = best_objective_;
        result_.rc.clear();
        result_.pi.clear();
        if (is_mip_) result_.basis = {};
        return std::move(result_);
    }

    const Problem& problem_;
    const Claim& claim_;
    Context& context_;
    const bool is_mip_;
    SolverResult result_;
    double bound_ = 0.0;  // proven for the whole problem
    std::string fault_;   // of the latest point that fails
    std::vector<double> best_;
    double best_objective_ = 0.0;
};

}  // namespace

std::optional<std::string> Claim::fault(const std::vector<double>& x, std::span<const double> activity,
                                        const Tolerances& allowed) const {
    if (const std::optional<Breach> breach = find_breach(data, x, activity, allowed))
        return "violates " + text_of(data, *breach);
    if (!std::isfinite(objective(x.data()))) return "has no finite objective";
    const double worse = excess ? excess(x.data()) : 0.0;
    if (worse <= allowed.feasibility) return std::nullopt;
    char text[96];
    std::snprintf(text, sizeof text, "is beyond the limit of an objective by %.3g, where %.3g is allowed", worse,
                  allowed.feasibility);
    return text;
}

double relative_excess(int sense, double value, double limit) {
    return std::max(0.0, sense * (value - limit)) / std::max(1.0, std::fabs(limit));
}

Tolerances tolerances_of(const ParamValues& params) {
    return {params.get_dbl(Param::FeasibilityTol), params.get_dbl(Param::IntFeasTol)};
}

bool is_within_gap(const ParamValues& params, int sense, double objective, double bound) {
    const double size = std::fabs(objective);
    const double allowed = std::max({params.get_dbl(Param::MIPGapAbs), params.get_dbl(Param::MIPGap) * size,
                                     kObjectiveRounding * std::max(1.0, size)});
    return sense * (objective - bound) <= allowed;
}

SolverResult repair(const Problem& problem, const Claim& claim, SolverResult failed, Context& context) {
    return Repair(problem, claim, context).run(std::move(failed));
}

}  // namespace zelvan
