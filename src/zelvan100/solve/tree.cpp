#include "solve/tree.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>
#include <optional>
#include <queue>
#include <utility>

#include "solve/branching.h"
#include "solve/certificate.h"
#include "solve/local_search.h"
#include "solve/products.h"
#include "solve/recession.h"
#include "solve/repair.h"

namespace zelvan {

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
// Objectives that differ by less, relatively, are those of one solution.
constexpr double kSameObjective = 1e-9;
// How far out along a direction a point shows where that leads: no element of a direction is between 0 and 1e-9.
constexpr double kFarOut = 1e10;
// Nodes after which the search gives up a branch.
constexpr int kLongestBranch = 200;
// Once in so many times that the search takes the node with the best bound it goes on along its branch.
constexpr int kPicksOfBranch = 100;
// Nodes with products between two local searches.
constexpr int kNodesBetweenSearches = 100;
// A point is taken where it violates the model by this part of the tolerances, so that it passes the later checks.
constexpr double kPartOfTolerance = 0.5;
// Up to here an incumbent may violate a node and still be its start.
constexpr double kStartTolerance = 1e-6;

// Bounds and objectives of nodes are those of a minimization.
struct Node {
    double bound;
    Narrowings narrowings;

    // Of equal bounds the node that is nearer to a solution comes first.
    bool operator<(const Node& other) const {
        return bound != other.bound ? bound > other.bound : narrowings.size() < other.narrowings.size();
    }
};

// The best point so far, and what it rules out.
class Incumbent {
public:
    Incumbent(const Problem& problem, const ParamValues& params)
        : sense_(problem.sense), offset_(problem.offset), cost_(problem.cost), params_(params) {}

    // In the sense of the problem.
    double objective_of(const double* x) const {
        double sum = offset_;
        for (std::size_t j = 0; j < cost_.size(); ++j) sum += cost_[j] * x[j];
        return sum;
    }
    // The answer is whether the point was better and is taken.
    bool offer(const double* x) {
        const double value = sense_ * objective_of(x);
        if (exists() && value >= least_improved()) return false;
        x_.assign(x, x + cost_.size());
        value_ = value;
        return true;
    }
    // Whether nothing of that bound is better.
    bool rules_out(double bound) const { return exists() && bound >= least_improved(); }
    // Whether it is better at most by the gap that the parameters allow.
    bool is_enough(double bound) const { return exists() && is_within_gap(params_, 1, value_, bound); }
    bool exists() const { return !x_.empty(); }
    double value() const { return value_; }
    const std::vector<double>& x() const { return x_; }

private:
    double least_improved() const { return value_ - kSameObjective * std::max(1.0, std::fabs(value_)); }

    const int sense_;
    const double offset_;
    const std::vector<double> cost_;
    const ParamValues& params_;
    std::vector<double> x_;
    double value_ = kInf;
};

struct Visit {
    enum class End {
        kEmpty,
        kPoint,
        kUnlimited,  // x is far out where the objective goes on for ever
        kRuledOut,   // by the incumbent
        kLost,       // HiGHS couldn't tell
        kLimit,
    };
    End end;
    double bound = -kInf;
    std::vector<double> x = {};
    Outcome limit = Outcome::kUnknown;
};

// Solves nodes, and stands between them and the monitor, which is told of the whole.
class Visitor : private SolveEvents {
public:
    Visitor(const Problem& problem, Context& context)
        : disjunctions(problem.disjunctions),
          incumbent(problem, context.params),
          whole_(problem),
          problem_(problem),
          context_(context),
          outer_care_(context.care),
          attached_(context.session, this) {
        problem_.disjunctions = {};
        context_.care.node = true;
        context_.care.relaxed = !disjunctions.products.empty();
        add_hulls(disjunctions.products, problem_);
    }
    ~Visitor() override { context_.care = outer_care_; }
    Visitor(const Visitor&) = delete;
    Visitor& operator=(const Visitor&) = delete;

    const Disjunctions& disjunctions;
    Incumbent incumbent;

    // `others` is the bound of all that is open besides.
    Visit visit(const Node& node, double others, const Start& start) {
        others_ = others;
        own_ = node.bound;
        if (!narrow(node.narrowings)) return {Visit::End::kEmpty};
        const double nodes = context_.nodes;
        Visit visit = understood(solve(start), node.narrowings.empty());
        if (visit.end != End::kLimit) context_.nodes = std::max(context_.nodes, nodes + 1.0);
        visit.bound = std::max(visit.bound, node.bound);
        return visit;
    }
    // The problem with the bounds of the latest node.
    const Problem& node() const { return problem_; }
    Answer offer(const double* x) {
        const bool improves = incumbent.offer(x);
        return context_.monitor.solution(incumbent.objective_of(x), x, improves);
    }
    // Takes the point with its products made right, where the model holds there.
    bool try_point(std::vector<double> x) {
        complete(problem_, disjunctions.products, x);
        const Claim& claim = *context_.claim;
        const Tolerances tolerances{kPartOfTolerance * claim.tolerances.feasibility, claim.tolerances.integrality};
        const std::vector<double> point(x.begin(), x.begin() + claim.data.cols.size());
        if (claim.fault(point, row_activities(claim.data.rows, x.data()), tolerances)) return false;
        offer(x.data());
        return true;
    }
    // Looks for better points near x.
    void improve(const std::vector<double>& x) {
        if (!local_search_) local_search_ = std::make_unique<LocalSearch>(whole_, context_);
        local_search_->run(x, [this](const std::vector<double>& point) { return try_point(point); });
    }
    Answer report(double bound) {
        Progress progress;
        progress.is_mip = true;
        return report(progress, bound);
    }

private:
    using End = Visit::End;

    void log(std::string_view text) override { context_.monitor.log(text); }
    Answer poll() override { return context_.monitor.poll(); }
    Answer solution(double, const double* x, bool) override {
        if (!disjunctions.products.empty()) {
            try_point({x, x + problem_.num_cols()});
            return Answer::kGoOn;
        }
        return holds(disjunctions, x) ? offer(x) : Answer::kGoOn;
    }
    Answer progress(const Progress& progress) override {
        if (!progress.is_mip) return context_.monitor.progress(progress);
        const double bound = has_objective_ ? problem_.sense * progress.dual_bound : -kInf;
        if (incumbent.rules_out(bound)) {
            ruled_out_ = bound;
            return Answer::kStop;
        }
        return report(progress, std::min(others_, std::max(own_, bound)));
    }
    Answer report(Progress progress, double bound) {
        progress.primal_bound = problem_.sense * incumbent.value();
        progress.dual_bound = problem_.sense * bound;
        return context_.monitor.progress(progress);
    }

    // Whether each column keeps a value.
    bool narrow(const Narrowings& narrowings) {
        problem_.lb = whole_.lb;
        problem_.ub = whole_.ub;
        for (const auto& [j, lower, upper] : narrowings) {
            problem_.lb[j] = std::max(problem_.lb[j], lower);
            problem_.ub[j] = std::min(problem_.ub[j], upper);
            if (problem_.lb[j] > problem_.ub[j]) return false;
        }
        if (disjunctions.products.empty()) return true;
        update_hulls(disjunctions.products, problem_);
        if (!tighten_bounds(disjunctions.products, problem_)) return false;
        update_hulls(disjunctions.products, problem_);
        return true;
    }

    SolverResult solve(Start start) {
        ruled_out_.reset();
        if (problem_.is_mip()) {
            if (incumbent.exists() && problem_.is_feasible(incumbent.x(), kStartTolerance)) start.x = incumbent.x();
            return search(problem_, start, context_);
        }
        SolverResult result = search(problem_, start, context_);
        if (is_sound(result)) return result;
        context_.session.forget_basis();
        return search(problem_, {}, context_);
    }

    // A basis of another node can lead the simplex method astray.
    bool is_sound(const SolverResult& result) {
        if (is_trivial(problem_)) return true;
        if (result.outcome == Outcome::kOptimal)
            return is_proven_optimal(problem_, result, context_.params.get_dbl(Param::OptimalityTol));
        return result.outcome != Outcome::kInfeasible || farkas_of_one_row(problem_) ||
               farkas_from(problem_, context_.session.dual_ray());
    }

    Visit understood(SolverResult result, bool is_root) {
        switch (result.outcome) {
            case Outcome::kOptimal:
                return result.x.empty() ? Visit{End::kLost} : at_optimum(std::move(result), is_root);
            case Outcome::kInfeasible:
                return {End::kEmpty};
            case Outcome::kInfeasibleOrUnbounded:
            case Outcome::kUnbounded:
                return without_optimum();
            case Outcome::kUnknown:
                return {End::kLost};
            default:
                if (ruled_out_) return {End::kRuledOut, *ruled_out_};
                return {End::kLimit, problem_.is_mip() ? problem_.sense * result.bound : -kInf, {}, result.outcome};
        }
    }

    // An optimum of integer columns may be one only of what the search looked at.
    Visit at_optimum(SolverResult result, bool is_root) {
        if (!problem_.is_mip()) return {End::kPoint, problem_.sense * result.objective, std::move(result.x)};
        if (!is_limited_) {
            const std::vector<double> direction = improving_direction(problem_, context_);
            if (!direction.empty()) return {End::kUnlimited, -kInf, far_out(result.x, direction)};
            is_limited_ = is_root;
        }
        return {End::kPoint, problem_.sense * result.bound, std::move(result.x)};
    }

    // Without a point there is none to go on for ever from.
    Visit without_optimum() {
        has_objective_ = false;
        problem_.cost.assign(problem_.cost.size(), 0.0);
        const SolverResult result = search(problem_, {}, context_);
        problem_.cost = whole_.cost;
        has_objective_ = true;
        if (result.outcome == Outcome::kInfeasible) return {End::kEmpty};
        if (result.outcome != Outcome::kOptimal && result.outcome != Outcome::kUnknown)
            return {End::kLimit, -kInf, {}, result.outcome};
        const std::vector<double> direction = improving_direction(problem_, context_);
        if (result.x.empty() || direction.empty()) return {End::kLost};
        return {End::kUnlimited, -kInf, far_out(result.x, direction)};
    }

    std::vector<double> far_out(std::vector<double> x, const std::vector<double>& direction) const {
        double size = 1.0;
        for (double value : x) size = std::max(size, std::fabs(value));
        for (const Gap& gap : disjunctions.gaps)
            size = std::max(size, std::min(std::fabs(gap.lower), std::fabs(gap.upper)));
        for (std::size_t j = 0; j < x.size(); ++j) x[j] += kFarOut * size * direction[j];
        return x;
    }

    const Problem& whole_;
    Problem problem_;
    Context& context_;
    const Care outer_care_;
    const Attached attached_;
    double others_ = kInf, own_ = -kInf;
    bool has_objective_ = true;
    std::unique_ptr<LocalSearch> local_search_;
    bool is_limited_ = false;  // no direction improves the objective for ever
    std::optional<double> ruled_out_;
};

// The nodes to be visited. Now and then the search follows one branch down to a solution, the latest node first, and
// else takes the node with the best bound.
class OpenNodes {
public:
    bool empty() const { return queue_.empty() && branch_.empty(); }
    std::size_t size() const { return queue_.size() + branch_.size(); }
    double bound() const {
        double least = queue_.empty() ? kInf : queue_.top().bound;
        for (const Node& node : branch_) least = std::min(least, node.bound);
        return least;
    }
    void push(Node node) {
        if (follows_branch_)
            branch_.push_back(std::move(node));
        else
            queue_.push(std::move(node));
    }
    Node pop() {
        if (branch_.empty()) {
            Node node = queue_.top();
            queue_.pop();
            return node;
        }
        Node node = std::move(branch_.back());
        branch_.pop_back();
        return node;
    }
    bool ends_branch() const { return branch_.empty(); }
    void follow_branch(bool follows) {
        follows_branch_ = follows;
        for (Node& node : branch_) queue_.push(std::move(node));
        branch_.clear();
    }

private:
    std::priority_queue<Node> queue_;
    std::vector<Node> branch_;
    bool follows_branch_ = false;
};

// What is visited, and when that ends.
class Tree {
public:
    Tree(const Problem& problem, Context& context)
        : sense_(problem.sense), context_(context), visitor_(problem, context) {}

    SolverResult run(const Start& start) {
        const Counts before{static_cast<const Counts&>(context_)};
        log_begin();
        context_.monitor.begin_run(visitor_.node());
        open_.push({-kInf, {}});
        if (!start.x.empty()) try_near(start);
        const Start none;
        const Start* node_start = &start;
        for (; !is_over(before); node_start = &none) {
            choose_order();
            explore(open_.pop(), *node_start);
            log_progress();
        }
        SolverResult result = ended();
        result.iterations = context_.iterations - before.iterations;
        result.nodes = context_.nodes - before.nodes;
        return result;
    }

private:
    using End = Visit::End;

    // Of all that could still be better than the incumbent, or isn't known to be worse.
    double bound() const { return std::min(settled_, open_.bound()); }
    void settle(double bound) { settled_ = std::min(settled_, bound); }

    bool is_over(const Counts& before) {
        if (outcome_ || open_.empty() || visitor_.incumbent.is_enough(open_.bound())) return true;
        if (visitor_.report(bound()) == Answer::kStop)
            outcome_ = Outcome::kStopped;
        else if (context_.nodes > before.nodes && context_.nodes >= context_.params.get_dbl(Param::NodeLimit))
            outcome_ = Outcome::kSolutionLimit;
        return outcome_.has_value();
    }

    void choose_order() {
        if (!open_.ends_branch() && ++branch_length_ < kLongestBranch) return;
        open_.follow_branch(!visitor_.incumbent.exists() || ++num_picks_ % kPicksOfBranch == 0);
        branch_length_ = 0;
    }

    void explore(const Node& node, const Start& start) {
        if (visitor_.incumbent.rules_out(node.bound)) {
            settle(node.bound);
            return;
        }
        Visit visit = visitor_.visit(node, bound(), start);
        if (visit.end == End::kEmpty) return;
        if (visit.end == End::kLimit) {
            outcome_ = visit.limit;
            open_.push({visit.bound, node.narrowings});
            return;
        }
        const bool has_products = !visitor_.disjunctions.products.empty();
        if (visit.end == End::kPoint && has_products) {
            visitor_.try_point(visit.x);
            if (is_time_to_improve()) visitor_.improve(visit.x);
            if (visitor_.incumbent.is_enough(visit.bound)) {
                settle(visit.bound);
                return;
            }
        }
        if ((visit.end == End::kPoint || visit.end == End::kUnlimited) && divide(node, visit)) return;
        if (visit.end == End::kPoint && has_products) {
            // Only tolerances are left to blame.
            visitor_.improve(visit.x);
            is_incomplete_ |= !visitor_.incumbent.is_enough(visit.bound);
        } else if (visit.end == End::kPoint) {
            visitor_.offer(visit.x.data());
        }
        if (visit.end == End::kUnlimited) outcome_ = Outcome::kUnbounded;
        if (visit.end == End::kLost) is_incomplete_ = true;
        settle(visit.bound);
    }

    bool divide(const Node& node, const Visit& visit) {
        const auto parts = parts_without(visitor_.node(), visitor_.disjunctions, visit.x);
        if (!parts) return false;
        for (const Narrowings& part : {parts->second, parts->first}) push(visit.bound, node.narrowings, part);
        return true;
    }

    // Often at first, then now and then.
    bool is_time_to_improve() {
        ++num_points_;
        return (num_points_ & (num_points_ - 1)) == 0 || num_points_ % kNodesBetweenSearches == 0;
    }

    void push(double bound, Narrowings narrowings, const Narrowings& further) {
        narrowings.insert(narrowings.end(), further.begin(), further.end());
        open_.push({bound, std::move(narrowings)});
    }

    // Looks for a solution with the alternatives that suit a start. What is open stays as it is.
    void try_near(const Start& start) {
        const Node node{kInf, nearest_alternatives(visitor_.disjunctions, start.x)};
        const Visit visit = visitor_.visit(node, bound(), start);
        if (visit.end == End::kPoint && holds(visitor_.disjunctions, visit.x.data())) visitor_.offer(visit.x.data());
    }

    SolverResult ended() {
        const Incumbent& incumbent = visitor_.incumbent;
        SolverResult result;
        const Outcome all_seen = incumbent.exists() ? Outcome::kOptimal : Outcome::kInfeasible;
        const bool is_complete = !is_incomplete_ || incumbent.is_enough(bound());
        result.outcome = outcome_ ? *outcome_ : is_complete ? all_seen : Outcome::kUnknown;
        result.bound = sense_ * std::min(bound(), incumbent.value());
        result.objective = sense_ * incumbent.value();
        result.x = incumbent.x();
        return result;
    }

    void log_begin() {
        char line[160];
        std::snprintf(line, sizeof line,
                      "Branching on %zu semi-continuous variables and %zu special ordered sets of large bounds, "
                      "%zu products\n     Nodes      Open      Objective          Bound     Time\n",
                      visitor_.disjunctions.gaps.size(), visitor_.disjunctions.sets.size(),
                      visitor_.disjunctions.products.size());
        context_.monitor.log(line);
    }

    void log_progress() {
        const double now = context_.monitor.elapsed();
        if (now - shown_ < context_.params.get_int(Param::DisplayInterval)) return;
        shown_ = now;
        char line[160];
        std::snprintf(line, sizeof line, "%10.0f%10zu%15.8g%15.8g%8.1fs\n", context_.nodes, open_.size(),
                      sense_ * visitor_.incumbent.value(), sense_ * bound(), now);
        context_.monitor.log(line);
    }

    const int sense_;
    Context& context_;
    Visitor visitor_;
    OpenNodes open_;
    int branch_length_ = 0, num_picks_ = 0, num_points_ = 0;
    double settled_ = kInf;       // bound of the nodes that were visited and not divided
    bool is_incomplete_ = false;  // nodes were lost
    std::optional<Outcome> outcome_;
    double shown_ = -kInf;  // elapsed() of the latest line
};

}  // namespace

SolverResult search_tree(const Problem& problem, const Start& start, Context& context) {
    return Tree(problem, context).run(start);
}

}  // namespace zelvan
