#include "solve/answer.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "solve/certificate.h"
#include "solve/outer.h"
#include "solve/quadratic_duals.h"
#include "solve/recession.h"

namespace zelvan {

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
// A point that is to refute an infeasibility has to hold better than the tolerances ask.
constexpr Tolerances kNearlyExact{1e-9, 1e-9};
// Spread of coefficients or bounds from which presolve isn't believed without a second solve.
constexpr double kWideSpread = 1e9;
// The relaxation whose rounded point is tried may take as long as the search, or this long.
constexpr int kFewIterations = 200;
// By how much a recomputed objective may be worse than the one that was claimed, relatively.
constexpr double kObjectiveTolerance = 1e-6;

class Range {
public:
    void add(double value) {
        value = std::fabs(value);
        if (value == 0.0 || value >= kInfinityThreshold) return;
        least_ = std::min(least_, value);
        most_ = std::max(most_, value);
    }
    bool is_wide() const { return most_ > kWideSpread * least_; }

private:
    double least_ = kInf, most_ = 0.0;
};

// Of the coefficients, or of bounds and sides.
bool has_wide_spread(const Problem& problem) {
    Range coefficients, bounds;
    for (int k = 0; k < problem.num_entries(); ++k) coefficients.add(problem.val()[k]);
    for (const auto* values : {&problem.lb, &problem.ub, &problem.row_lower, &problem.row_upper})
        for (double value : *values) bounds.add(value);
    return coefficients.is_wide() || bounds.is_wide();
}

bool is_without_limit(Outcome outcome) {
    return outcome == Outcome::kUnbounded || outcome == Outcome::kInfeasibleOrUnbounded;
}

class Checker {
public:
    Checker(const Problem& problem, const Start& start, const Claim& claim, Context& context)
        : problem_(problem), start_(start), claim_(claim), context_(context), is_mip_(problem.is_mip()) {}

    SolverResult run() {
        const bool warm = !is_mip_ && (context_.session.has_basis() || !start_.basis.rows.empty());
        SolverResult result = search(problem_, start_, context_);
        if (result.x.empty() && is_trivial(problem_)) return result;
        if (!problem_.cones.empty() || !problem_.disjunctions.products.empty()) return approximated(std::move(result));
        if (warm && problem_.quad.empty() && result.outcome == Outcome::kOptimal)
            result = with_proof(std::move(result));
        return judged(std::move(result));
    }

private:
    SolverResult judged(SolverResult result) {
        if (is_without_limit(result.outcome)) return unlimited(std::move(result));
        if (result.outcome == Outcome::kInfeasible) return is_mip_ ? doubted(result) : confirmed(std::move(result));
        if (result.outcome == Outcome::kUnknown && !is_mip_) return settled(std::move(result));
        return held(std::move(result));
    }

    void log(const std::string& text) { context_.monitor.log(text); }

    bool is_proven(SolverResult& result) const {
        std::vector<double> activity;
        if (!is_proven_optimal(problem_, result, context_.params.get_dbl(Param::OptimalityTol), &activity))
            return false;
        activity.resize(problem_.model_rows());
        if (!problem_.has_multiplied_rows()) result.activity = std::move(activity);
        return true;
    }

    // A point with cones holds or is none: what the search tells was proven of its linear programs.
    SolverResult approximated(SolverResult result) {
        if (result.x.empty()) {
            if (result.outcome == Outcome::kOptimal) result.outcome = Outcome::kUnknown;
            return result;
        }
        result.activity = row_activities(claim_.data.rows, result.x.data());
        if (const std::optional<std::string> fault = claim_.fault(result.x, result.activity, claim_.tolerances)) {
            log("The point found " + *fault + "\n");
            result.x.clear();
            result.outcome = Outcome::kUnknown;
            return result;
        }
        result.objective = claim_.objective(result.x.data());
        if (context_.params.get_int(Param::QCPDual) && claim_.data.objectives.size() <= 1 && !is_mip_)
            set_quadratic_duals(claim_.data, problem_, result);
        else
            result.rc.clear();
        return result;
    }

    // A basis of an earlier solve can lead the simplex method astray.
    SolverResult with_proof(SolverResult result) {
        if (is_proven(result)) return result;
        log("The optimality conditions don't hold: solving anew from scratch\n");
        context_.session.forget_basis();
        result = search(problem_, {}, context_);
        if (result.outcome != Outcome::kOptimal || is_proven(result)) return result;
        log("The optimality conditions don't hold again: solving anew with tighter tolerances, without presolve\n");
        result = search_aside(problem_, {}, {.tight = true, .presolve = false, .simplex = true}, context_);
        if (result.outcome != Outcome::kOptimal || is_proven(result)) return result;
        log("The optimality of the point found isn't proven\n");
        result.outcome = Outcome::kUnknown;
        return result;
    }

    // Neither unbounded nor infeasible or unbounded is believed without a direction that improves the objective for
    // ever. With a feasible point it means unbounded.
    SolverResult unlimited(SolverResult result) {
        if (!problem_.disjunctions.empty()) return result;
        std::vector<double> direction = confirmed_direction(problem_, context_);
        if (direction.empty()) return limited();
        const bool has_point = admissible(result.x, claim_.tolerances) || !cheap_point().empty();
        if (!has_point && result.outcome == Outcome::kUnbounded) {
            SolverResult found = point_anywhere();
            if (found.outcome == Outcome::kInfeasible) return judged(std::move(found));
            result.outcome = found.outcome;
            result.x.clear();
        } else if (has_point) {
            result.outcome = Outcome::kUnbounded;
        }
        if (result.outcome == Outcome::kUnbounded) result.ray = std::move(direction);
        return result;
    }

    // The answer without the objective: unbounded when a feasible point is found.
    SolverResult point_anywhere() {
        Problem anywhere = problem_;
        anywhere.clear_objective();
        SolverResult found = search_aside(anywhere, {}, {}, context_);
        if (found.outcome != Outcome::kOptimal) return found;
        found.outcome = Outcome::kUnbounded;
        if (admissible(found.x, claim_.tolerances)) return found;
        log("No feasible point was found that holds: the model may be infeasible\n");
        found.outcome = Outcome::kInfeasibleOrUnbounded;
        return found;
    }

    // After an unboundedness that lacks a proof.
    SolverResult limited() {
        log("No direction improves the objective for ever: solving anew without presolve\n");
        SolverResult result = search_aside(problem_, {}, {.presolve = false, .simplex = true}, context_);
        if (!is_without_limit(result.outcome)) return judged(std::move(result));
        log("Called unbounded again, though without a proof that holds\n");
        result.outcome = Outcome::kUnknown;
        return is_mip_ ? held(std::move(result)) : settled(std::move(result));
    }

    // An LP of which HiGHS can't tell anything: infeasible with a proof, unbounded with a point and a direction.
    SolverResult settled(SolverResult result) {
        std::optional<Farkas> farkas = farkas_of_one_row(problem_);
        Elastic elastic;
        if (!farkas) {
            elastic = solve_elastic(problem_, context_);
            farkas = std::move(elastic.farkas);
        }
        if (farkas) {
            result.outcome = Outcome::kInfeasible;
            result.farkas = std::move(farkas->y);
            result.x.clear();
            return result;
        }
        if (!admissible(elastic.x, claim_.tolerances)) return held(std::move(result));
        std::vector<double> direction = confirmed_direction(problem_, context_);
        if (direction.empty()) return held(std::move(result));
        result.outcome = Outcome::kUnbounded;
        result.ray = std::move(direction);
        result.x.clear();
        return result;
    }

    // A point that holds, with its objective recomputed; without one the answer isn't optimal.
    SolverResult held(SolverResult result) {
        if (result.x.empty()) {
            if (result.outcome == Outcome::kOptimal) result.outcome = Outcome::kUnknown;
            return result;
        }
        if (result.activity.empty()) result.activity = row_activities(claim_.data.rows, result.x.data());
        if (const std::optional<std::string> fault = claim_.fault(result.x, result.activity, claim_.tolerances)) {
            log("The point found " + *fault + "\n");
            result = repair(problem_, claim_, std::move(result), context_);
        } else if (is_worse_than_claimed(result)) {
            log("The objective of the point found is worse than claimed\n");
            result = repair(problem_, claim_, std::move(result), context_);
        }
        if (result.x.empty()) return result;
        result.objective = claim_.objective(result.x.data());
        if (result.outcome == Outcome::kOptimal && is_mip_) return bounded(std::move(result));
        return result;
    }

    bool is_worse_than_claimed(const SolverResult& result) const {
        if (!is_mip_ || result.outcome != Outcome::kOptimal) return false;
        const double objective = claim_.objective(result.x.data());
        const double allowed = std::max({kObjectiveTolerance * std::max(1.0, std::fabs(objective)),
                                         context_.params.get_dbl(Param::MIPGap) * std::fabs(objective),
                                         context_.params.get_dbl(Param::MIPGapAbs)});
        return !(problem_.sense * (objective - result.objective) <= allowed);
    }

    SolverResult bounded(SolverResult result) {
        // A direction of the relaxation may break disjunctions, which are searched with their own.
        if (!problem_.disjunctions.empty()) return result;
        if (improving_direction(problem_, context_).empty()) return result;
        log("A feasible point and a direction that improves the objective for ever: the model is unbounded\n");
        result.outcome = Outcome::kUnbounded;
        return result;
    }

    SolverResult confirmed(SolverResult result) {
        if (has_crossed_bounds(problem_)) return result;
        std::optional<Farkas> farkas = farkas_of_one_row(problem_);
        if (!farkas && problem_.quad.empty()) farkas = farkas_from(problem_, context_.session.dual_ray());
        Elastic elastic;
        if (!farkas) {
            log("The proof of infeasibility doesn't hold: looking for another one\n");
            elastic = solve_elastic(problem_, context_);
            farkas = std::move(elastic.farkas);
        }
        if (farkas) {
            result.farkas = std::move(farkas->y);
            return result;
        }
        return solved_anew(std::move(result), admissible(elastic.x, kNearlyExact) ? elastic.x : std::vector<double>());
    }

    // The points that cost next to nothing, a look for what goes on for ever, which the search calls infeasible at
    // times, then what another way of solving says.
    SolverResult doubted(const SolverResult& result) {
        const std::vector<double> point = refuting_point(result);
        if (problem_.disjunctions.empty()) {
            std::vector<double> direction = improving_direction(problem_, context_);
            if (!direction.empty()) {
                SolverResult found = endless(result, !point.empty());
                if (found.outcome == Outcome::kUnbounded) found.ray = std::move(direction);
                if (found.outcome != Outcome::kInfeasible) return found;
            }
        }
        if (point.empty() && !has_wide_spread(problem_)) return result;
        return solved_anew(result, point);
    }

    // The answer for a problem with a direction that improves its objective for ever: a feasible point decides.
    SolverResult endless(SolverResult result, bool has_point) {
        if (!has_point)
            log("A direction improves the objective for ever: looking for a feasible point without the objective\n");
        result.outcome = has_point ? Outcome::kUnbounded : point_anywhere().outcome;
        return result;
    }

    // Without presolve, after an infeasibility that lacks a proof or is refuted by a point.
    SolverResult solved_anew(SolverResult result, const std::vector<double>& point) {
        log(point.empty() ? "The infeasibility isn't certain: solving anew without presolve\n"
                          : "A feasible point refutes the infeasibility: solving anew without presolve\n");
        Start start;
        if (is_mip_) start.x = point;
        Care care;
        care.presolve = false;
        care.simplex = true;
        SolverResult again = search_aside(problem_, start, care, context_);
        if (again.outcome != Outcome::kInfeasible) return judged(std::move(again));
        if (point.empty()) {
            if (!is_mip_) log("Infeasible by two methods, though without a proof that holds\n");
            return result;
        }
        result.outcome = Outcome::kUnknown;
        result.x = point;
        result.objective = claim_.objective(point.data());
        result.bound = -problem_.sense * kInf;
        return result;
    }

    bool admissible(const std::vector<double>& x, const Tolerances& tolerances) const {
        return x.size() >= claim_.data.cols.lb.size() &&
               !claim_.fault(x, row_activities(claim_.data.rows, x.data()), tolerances);
    }

    // In the columns of the model, as the next one. Empty without one.
    std::vector<double> cheap_point() const {
        const Columns& cols = claim_.data.cols;
        const std::size_t size = cols.lb.size();
        const auto at_bounds = [&](const std::vector<double>& side, const std::vector<double>& other) {
            std::vector<double> x(size);
            for (std::size_t j = 0; j < size; ++j)
                x[j] = std::fabs(side[j]) < kInfinity ? side[j] : std::fabs(other[j]) < kInfinity ? other[j] : 0.0;
            return x;
        };
        for (std::vector<double> x :
             {std::vector<double>(size, 0.0), at_bounds(cols.lb, cols.ub), at_bounds(cols.ub, cols.lb), start_.x})
            if (admissible(x, kNearlyExact)) return x;
        return {};
    }

    std::vector<double> refuting_point(const SolverResult& result) {
        std::vector<double> x = cheap_point();
        if (!x.empty()) return x;
        x = rounded_relaxation(result);
        return admissible(x, kNearlyExact) ? x : std::vector<double>();
    }

    std::vector<double> rounded_relaxation(const SolverResult& result) {
        Problem relaxation = problem_;
        std::fill(relaxation.integer.begin(), relaxation.integer.end(), 0);
        relaxation.disjunctions = {};
        Care care;
        care.simplex = true;
        care.iteration_limit = std::max(kFewIterations, static_cast<int>(std::min(result.iterations, 1e9)));
        std::vector<double> x = search_aside(relaxation, {}, care, context_).x;
        for (std::size_t j = 0; j < x.size(); ++j)
            if (problem_.integer[j]) x[j] = std::round(x[j]);
        return x;
    }

    const Problem& problem_;
    const Start& start_;
    const Claim& claim_;
    Context& context_;
    const bool is_mip_;
};

}  // namespace

SolverResult checked_search(const Problem& problem, const Start& start, const Claim& claim, Context& context) {
    context.claim = &claim;
    *context.cones = {};
    SolverResult result = Checker(problem, start, claim, context).run();
    context.claim = nullptr;
    problem.unscale(result.pi);
    return result;
}

}  // namespace zelvan
