#include "solve/outer.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>
#include <optional>
#include <utility>

#include "solve/certificate.h"
#include "solve/recession.h"
#include "solve/repair.h"

namespace zelvan {

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
// Violations up to here, relative to what a half-plane adds up, aren't cut off: HiGHS holds rows to this.
constexpr double kLeastViolation = 2e-9;
// The same, and the most rounds, where a point needn't hold.
constexpr double kRelaxedViolation = 1e-8;
constexpr int kMostRelaxedRounds = 20;
// A point is taken where it violates the model by this part of the tolerances, so that it passes the later checks.
constexpr double kPartOfTolerance = 0.5;
// Differences of an objective from its bound below this, relatively, are rounding; those that are left where nothing
// more can be cut off.
constexpr double kSameObjective = 1e-9, kCloseObjective = 1e-7;
// Of MIPGap, left to an integer program: the rest is for the objective of its point.
constexpr double kPartOfGap = 0.5;
// An integer program waits until a point of its relaxation violates the model, integers aside, by no more than so many
// tolerances, and has an objective this near to the bound, relatively; or until the bound rises no more.
constexpr double kNearTolerance = 100.0, kNearObjective = 1e-4;
constexpr int kSlowRounds = 20;
constexpr int kMostRootRounds = 200;
constexpr int kMostRounds = 1000;
// Rounds after a point that holds, for the sake of its dual values.
constexpr int kRoundsForDuals = 10;
// A running search ends at a solution that violates the model by so many tolerances, in the first rounds.
constexpr double kFarOff = 1e3;
constexpr int kRoundsEndedEarly = 20;
// A half-plane that holds a point by more than this, in terms of its largest product, is loose there.
constexpr double kLooseCut = 1e-6;
// Elements of a direction up to here are taken for 0.
constexpr double kNoDirection = 1e-9;

// A linear problem with half-planes of the cones, and the session that solves it.
struct Relaxation {
    Problem problem;
    HighsSession* session;
    std::size_t num_cuts = 0;
};

class Outer : private SolveEvents {
public:
    Outer(const Problem& problem, Context& context)
        : sense_(problem.sense),
          original_(problem),
          cones_(problem.cones),
          context_(context),
          claim_(*context.claim),
          version_(problem.version()),
          pool_(context.cones),
          cuts_(pool_->cuts),
          outer_care_(context.care),
          attached_(context.session, this),
          events_(attached_.before()),
          whole_(relaxed(problem)) {
        context_.care.node = true;
        context_.care.part_of_gap = kPartOfGap;
    }
    ~Outer() override {
        context_.care = outer_care_;
        pool_->relaxed = {version_, std::move(whole_.problem), whole_.num_cuts};
    }
    Outer(const Outer&) = delete;
    Outer& operator=(const Outer&) = delete;

    SolverResult run(const Start& start) {
        const Counts before{static_cast<const Counts&>(context_)};
        if (!outer_care_.node) log_begin();
        SolverResult result = whole_.problem.is_mip() ? run_mip(start) : run_lp();
        result.basis = {};  // one of the half-planes too
        result.iterations = context_.iterations - before.iterations;
        result.nodes = context_.nodes - before.nodes;
        return result;
    }

private:
    enum class Aim { kBound, kPoint };  // of the solves of an LP: a bound that rises no more, or a point that holds

    // The problem without cones; the latest one where that differs in values only, so that its basis serves.
    Relaxation relaxed(const Problem& problem) {
        std::optional<ConePool::Relaxed> latest = std::exchange(pool_->relaxed, std::nullopt);
        if (latest && latest->version == problem.version()) {
            latest->problem.take_values(problem);
            return {std::move(latest->problem), &context_.session, latest->num_cuts};
        }
        Relaxation relaxation{problem, &context_.session};
        relaxation.problem.cones.clear();
        return relaxation;
    }

    SolverResult run_lp() {
        SolverResult result = tighten(whole_, Aim::kPoint);
        if (result.outcome == Outcome::kUnbounded) return without_limit(std::move(result));
        if (result.outcome != Outcome::kOptimal) {
            result.x.clear();
            return result;
        }
        result.bound = result.objective;
        return result;
    }

    // A direction of the cones makes it unbounded where there is a point.
    SolverResult without_limit(SolverResult result) {
        Relaxation anywhere{whole_.problem, whole_.session};
        anywhere.num_cuts = whole_.num_cuts;
        std::fill(anywhere.problem.cost.begin(), anywhere.problem.cost.end(), 0.0);
        ignores_objective_ = true;
        const SolverResult found = tighten(anywhere, Aim::kPoint);
        ignores_objective_ = false;
        result.outcome = found.outcome == Outcome::kOptimal ? Outcome::kUnbounded : found.outcome;
        result.x.clear();
        return result;
    }

    SolverResult run_mip(const Start& start) {
        const std::vector<char> integer = whole_.problem.integer;
        std::fill(whole_.problem.integer.begin(), whole_.problem.integer.end(), 0);
        const SolverResult root = tighten(whole_, Aim::kBound);
        whole_.problem.integer = integer;
        if (root.outcome == Outcome::kUnbounded) return ended(Outcome::kInfeasibleOrUnbounded);
        if (root.outcome != Outcome::kOptimal) return ended(root.outcome);
        bound_ = sense_ * root.objective;
        drop_loose_cuts(root.x);
        spread_cuts(root.x);
        for (int round = 0; round < kMostRounds; ++round) {
            if (!outer_care_.node) log_progress(round);
            if (is_enough()) return ended(Outcome::kOptimal);
            if (const std::optional<Outcome> outcome = run_round(round, start)) return ended(*outcome);
        }
        return ended(Outcome::kUnknown);
    }

    // One search for integers, whose point is cut off or holds. None while there is more to do.
    std::optional<Outcome> run_round(int round, const Start& start) {
        const std::size_t num_cuts = cuts_.size();
        take_cuts(whole_);
        ends_early_ = !is_relaxed() && round < kRoundsEndedEarly;
        far_off_.clear();
        const Start with{best_.empty() ? start.x : best_, {}};
        const SolverResult result = search(whole_.problem, with, context_);
        if (result.outcome == Outcome::kInfeasible) {
            if (!best_.empty()) bound_ = best_value_;
            return best_.empty() ? Outcome::kInfeasible : Outcome::kOptimal;
        }
        const bool ended_early = result.outcome == Outcome::kStopped && !far_off_.empty();
        if (result.outcome == Outcome::kOptimal || ended_early) raise_bound(sense_ * result.bound);
        if (result.outcome != Outcome::kOptimal && !ended_early) {
            raise_bound(sense_ * result.bound);
            return result.outcome;
        }
        const std::vector<double>& x = ended_early ? far_off_ : result.x;
        if (x.empty()) return Outcome::kUnknown;
        const bool is_cut = cut_off(x);
        if (is_relaxed() && !ended_early && (!is_cut || round >= kMostRelaxedRounds)) {
            best_ = x;
            best_value_ = sense_ * result.objective;
            return Outcome::kOptimal;
        }
        if (is_relaxed()) return std::nullopt;
        if (const Outcome outcome = fix(x); outcome != Outcome::kOptimal && outcome != Outcome::kInfeasible)
            return outcome;
        if (is_enough()) return Outcome::kOptimal;
        if (cuts_.size() == num_cuts && !ended_early) return Outcome::kUnknown;
        return std::nullopt;
    }

    // The problem with the integers of x, solved until a point holds.
    Outcome fix(const std::vector<double>& x) {
        if (!fixed_) {
            fixed_session_ = std::make_unique<HighsSession>();
            fixed_.emplace(Relaxation{whole_.problem, fixed_session_.get(), whole_.num_cuts});
            std::fill(fixed_->problem.integer.begin(), fixed_->problem.integer.end(), 0);
        }
        for (std::size_t j = 0; j < x.size(); ++j)
            if (whole_.problem.integer[j]) fixed_->problem.lb[j] = fixed_->problem.ub[j] = std::round(x[j]);
        return tighten(*fixed_, Aim::kPoint).outcome;
    }

    // Solves an LP again and again, with what is cut off.
    SolverResult tighten(Relaxation& relaxation, Aim aim) {
        double bound = -kInf;
        int num_slow = 0, num_holding = 0;
        for (int round = 0;; ++round) {
            take_cuts(relaxation);
            SolverResult result = solve(relaxation);
            if (result.outcome == Outcome::kUnbounded || result.outcome == Outcome::kInfeasibleOrUnbounded) {
                if (round >= kMostRounds) return result;
                std::vector<double> direction = improving_direction(without_squares(relaxation.problem), context_);
                const bool is_possible = !direction.empty();
                if (!is_possible) direction = confirmed_direction(relaxation.problem, context_);
                if (cut_off_direction(direction)) continue;
                if (is_possible) result.outcome = Outcome::kUnbounded;
                return result;
            }
            if (result.outcome != Outcome::kOptimal) return result;
            const bool holds = aim == Aim::kPoint && !is_relaxed() && offer(result);
            const bool is_cut = cut_off(result.x);
            if (is_relaxed() && (!is_cut || round >= kMostRelaxedRounds)) return result;
            if (!is_cut || (holds && (whole_.problem.is_mip() || ++num_holding > wanted_rounds()))) {
                if (aim == Aim::kPoint && !holds && !offer(result, kCloseObjective)) result.outcome = Outcome::kUnknown;
                return result;
            }
            const double raised = sense_ * result.objective;
            num_slow = raised - bound <= kSameObjective * std::max(1.0, std::fabs(raised)) ? num_slow + 1 : 0;
            bound = raised;
            const bool is_slow = num_slow > kSlowRounds || round >= kMostRootRounds;
            if (aim == Aim::kBound && (is_slow || is_near(result))) return result;
            if (round >= kMostRounds) {
                result.outcome = Outcome::kUnknown;
                return result;
            }
        }
    }

    bool is_relaxed() const { return outer_care_.relaxed; }
    int wanted_rounds() const { return context_.params.get_int(Param::QCPDual) ? kRoundsForDuals : 0; }

    SolverResult solve(Relaxation& relaxation) {
        SolverResult result = run(relaxation);
        if (is_trivial(relaxation.problem) || is_sound(relaxation, result)) return result;
        relaxation.session->forget_basis();
        return run(relaxation);
    }

    SolverResult run(Relaxation& relaxation) {
        const Care care{.tight = true, .node = true, .simplex = true};
        return search_with(*relaxation.session, relaxation.problem, {}, care, context_);
    }

    // A basis of an earlier solve can lead the simplex method astray.
    bool is_sound(const Relaxation& relaxation, const SolverResult& result) const {
        if (result.outcome == Outcome::kOptimal)
            return is_proven_optimal(relaxation.problem, result, context_.params.get_dbl(Param::OptimalityTol));
        return result.outcome != Outcome::kInfeasible || farkas_of_one_row(relaxation.problem) ||
               farkas_from(relaxation.problem, relaxation.session->dual_ray());
    }

    void take_cuts(Relaxation& relaxation) {
        if (relaxation.num_cuts == cuts_.size()) return;
        relaxation.problem.begin_additions();
        Problem::Terms terms;
        for (; relaxation.num_cuts < cuts_.size(); ++relaxation.num_cuts) {
            const double side = row_of(cones_, cuts_[relaxation.num_cuts], terms);
            relaxation.problem.add_row(terms, side, kInf);
        }
    }

    // Whether some cone didn't hold.
    bool cut_off(const std::vector<double>& x) {
        const std::size_t num_cuts = cuts_.size();
        for (int k = 0; k < static_cast<int>(cones_.size()); ++k) {
            const Cone& cone = cones_[k];
            const double z = cone.z < 0 ? 1.0 : std::max(x[cone.z], 0.0);
            const ConeCut cut = cut_at(cones_, k, x[cone.t], x[cone.y], z);
            if (violation(cones_, cut, x.data()) > (is_relaxed() ? kRelaxedViolation : kLeastViolation))
                cuts_.push_back(cut);
        }
        return cuts_.size() > num_cuts;
    }

    // No square grows in a direction of the cones.
    Problem without_squares(Problem problem) const {
        for (const Cone& cone : cones_)
            if (cone.z < 0) problem.lb[cone.y] = problem.ub[cone.y] = 0.0;
        return problem;
    }

    // The same for a direction in which the relaxation is unbounded, if there is one.
    bool cut_off_direction(const std::vector<double>& direction) {
        if (direction.empty()) return false;
        const std::size_t num_cuts = cuts_.size();
        for (int k = 0; k < static_cast<int>(cones_.size()); ++k) {
            const Cone& cone = cones_[k];
            const double t = direction[cone.t], y = direction[cone.y];
            if (std::fabs(y) <= kNoDirection) continue;
            if (cone.z < 0) {
                const double slope = std::copysign(t / std::fabs(y) + 1.0, y);
                cuts_.push_back(cut_at(cones_, k, 0.0, slope, 1.0));
                continue;
            }
            const ConeCut cut = cut_at(cones_, k, t, y, std::max(direction[cone.z], 0.0));
            if (violation(cones_, cut, direction.data()) > kNoDirection) cuts_.push_back(cut);
        }
        return cuts_.size() > num_cuts;
    }

    // The integer program starts with those half-planes that hold the relaxation where it is.
    void drop_loose_cuts(const std::vector<double>& x) {
        std::erase_if(cuts_, [&](const ConeCut& cut) { return violation(cones_, cut, x.data()) < -kLooseCut; });
        whole_ = {original_, &context_.session};
        whole_.problem.cones.clear();
    }

    // Half-planes around a point of the relaxation, where those of integers will be.
    void spread_cuts(const std::vector<double>& x) {
        constexpr double kSpread[] = {-1.0, -0.5, 0.5, 1.0};
        for (int k = 0; k < static_cast<int>(cones_.size()); ++k) {
            const Cone& cone = cones_[k];
            const double lower = whole_.problem.lb[cone.y], upper = whole_.problem.ub[cone.y];
            if (!std::isfinite(lower) || !std::isfinite(upper) || lower == upper) continue;
            if (cone.z >= 0) {
                if (whole_.problem.integer[cone.z]) spread_cuts_of_switch(k, lower, upper);
                continue;
            }
            for (double part : kSpread) {
                const double y = x[cone.y] + part * (part < 0.0 ? x[cone.y] - lower : upper - x[cone.y]);
                cuts_.push_back(cut_at(cones_, k, 0.0, y, 1.0));
            }
        }
    }

    // Those that touch the cone where a switch is on.
    void spread_cuts_of_switch(int k, double lower, double upper) {
        constexpr double kSpread[] = {0.05, 0.1, 0.2, 0.35, 0.55, 0.8, 1.0};
        for (double part : kSpread)
            for (double side : {lower, upper})
                if (side != 0.0) cuts_.push_back(cut_touching(k, part * side));
    }

    bool holds(const double* x, double part) const {
        return holds(x, {part * claim_.tolerances.feasibility, claim_.tolerances.integrality});
    }
    bool holds(const double* x, const Tolerances& tolerances) const {
        const std::vector<double> point(x, x + claim_.data.cols.size());
        return !claim_.fault(point, row_activities(claim_.data.rows, x), tolerances);
    }

    bool is_near(const SolverResult& result) const {
        const double objective = claim_.objective(result.x.data());
        return std::fabs(objective - result.objective) <= kNearObjective * std::fabs(objective) &&
               holds(result.x.data(), {kNearTolerance * claim_.tolerances.feasibility, kInf});
    }

    // Takes the point of a relaxation where it holds, with the objective that it really has; of an LP only where that
    // is the one of the relaxation.
    bool offer(SolverResult& result, double difference = kSameObjective) {
        if (!holds(result.x.data(), kPartOfTolerance)) return false;
        if (ignores_objective_) return true;
        const double objective = claim_.objective(result.x.data());
        if (whole_.problem.is_mip()) {
            offer(objective, result.x);
            return true;
        }
        return std::fabs(objective - result.objective) <= difference * std::max(1.0, std::fabs(objective));
    }

    Answer offer(double objective, const std::vector<double>& x) {
        const double value = sense_ * objective;
        const bool improves = best_.empty() || value < best_value_;
        if (improves) {
            best_ = x;
            best_value_ = value;
        }
        return events_.solution(objective, x.data(), improves);
    }

    void raise_bound(double bound) { bound_ = std::max(bound_, std::min(bound, best_value_)); }
    bool is_enough() const { return !best_.empty() && is_within_gap(context_.params, 1, best_value_, bound_); }

    SolverResult ended(Outcome outcome) const {
        SolverResult result;
        result.outcome = outcome;
        result.bound = sense_ * (outcome == Outcome::kOptimal ? std::min(bound_, best_value_) : bound_);
        result.objective = sense_ * best_value_;
        result.x = best_;
        return result;
    }

    void log(std::string_view text) override { events_.log(text); }
    Answer poll() override { return events_.poll(); }
    Answer solution(double, const double* x, bool) override {
        const std::size_t num_cols = whole_.problem.cost.size();
        if (holds(x, kPartOfTolerance)) return offer(claim_.objective(x), {x, x + num_cols});
        if (!ends_early_ || holds(x, kFarOff)) return Answer::kGoOn;
        far_off_.assign(x, x + num_cols);
        return Answer::kStop;
    }
    Answer progress(const Progress& progress) override {
        if (!progress.is_mip) return events_.progress(progress);
        Progress whole = progress;
        whole.primal_bound = sense_ * best_value_;
        whole.dual_bound = sense_ * std::max(bound_, sense_ * progress.dual_bound);
        return events_.progress(whole);
    }

    void log_begin() {
        char line[160];
        std::snprintf(line, sizeof line, "Outer approximation of %zu squares and cones\n", cones_.size());
        events_.log(line);
        if (!whole_.problem.is_mip()) return;
        events_.log("     Round     Nodes    Cuts      Objective          Bound     Time\n");
    }

    void log_progress(int round) {
        char line[160];
        std::snprintf(line, sizeof line, "%10d%10.0f%8zu%15.8g%15.8g%8.1fs\n", round, context_.nodes, cuts_.size(),
                      sense_ * best_value_, sense_ * bound_, context_.monitor.elapsed());
        events_.log(line);
    }

    const int sense_;
    const Problem& original_;
    const std::vector<Cone>& cones_;
    Context& context_;
    const Claim& claim_;
    const std::uint64_t version_;
    const std::shared_ptr<ConePool> pool_;
    std::vector<ConeCut>& cuts_;
    const Care outer_care_;
    const Attached attached_;
    SolveEvents& events_;
    Relaxation whole_;
    std::unique_ptr<HighsSession> fixed_session_;
    std::optional<Relaxation> fixed_;
    bool ignores_objective_ = false;
    bool ends_early_ = false;
    std::vector<double> far_off_;               // the solution at which a search was ended early
    std::vector<double> best_;                  // the best point that holds
    double best_value_ = kInf, bound_ = -kInf;  // as of a minimization
};

}  // namespace

SolverResult search_cones(const Problem& problem, const Start& start, Context& context) {
    return Outer(problem, context).run(start);
}

}  // namespace zelvan
