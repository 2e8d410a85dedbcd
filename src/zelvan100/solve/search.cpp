#include "solve/search.h"

#include <algorithm>
#include <limits>

#include "core/error.h"
#include "solve/concurrent.h"
#include "solve/options.h"
#include "solve/outer.h"
#include "solve/quadratic.h"
#include "solve/tree.h"

namespace zelvan {

namespace {

constexpr int kConcurrent = 3;     // of parameter Method
constexpr int kPrimalSimplex = 4;  // of the HiGHS option simplex_strategy

SolverResult solve_trivial(const Problem& problem, double tolerance) {
    SolverResult result;
    result.outcome = Outcome::kInfeasible;
    if (problem.has_empty_range()) return result;
    for (int i = 0; i < problem.num_rows(); ++i)
        if (problem.row_lower[i] > tolerance || problem.row_upper[i] < -tolerance) return result;
    result.outcome = Outcome::kOptimal;
    result.objective = result.bound = problem.offset;
    result.pi.assign(problem.num_rows(), 0.0);
    result.basis.rows.assign(problem.num_rows(), ZVN_BASIC);
    return result;
}

void pass_start(const Problem& problem, const Start& start, Context& context) {
    const bool is_mip = problem.is_mip();
    if (is_mip && !start.x.empty() && !context.session.set_start(start.x))
        context.monitor.log("The start violates bounds and is not used\n");
    if (is_mip || start.basis.rows.empty() || context.params.get_int(Param::LPWarmStart) == 0) return;
    if (!context.session.set_basis(start.basis))
        context.monitor.log("The start basis is not a basis and is not used\n");
}

void count(const SolverResult& result, Context& context) {
    Progress done;
    done.iterations = result.iterations;
    done.barrier_iterations = result.barrier_iterations;
    done.nodes = result.nodes;
    context.work = context.monitor.work_of(done);
    context.iterations += result.iterations;
    context.nodes += result.nodes;
    context.barrier_iterations += result.barrier_iterations;
    context.monitor.flush_log();
    context.monitor.begin_count(context.work, context.iterations);
}

SolverResult run_method(const Problem& problem, Context& context) {
    if (context.care.simplex || context.params.get_int(Param::Method) != kConcurrent || problem.is_mip())
        return run_session(context);
    SolverResult result = run_concurrently(problem, context);
    count(result, context);
    return result;
}

SolverResult run_loaded(const Problem& problem, Context& context) {
    HighsSession& session = context.session;
    SolverResult result = run_method(problem, context);
    const bool is_uncertain = result.outcome == Outcome::kUnknown && (result.x.empty() || !problem.is_mip());
    if (is_uncertain && !context.monitor.stop_status()) {
        context.monitor.log("The result is uncertain: solving anew without presolve\n");
        session.forget_basis();
        session.set_option("presolve", "off");
        if (!problem.is_mip()) {
            session.set_option("solver", "simplex");
            session.set_option("simplex_strategy", kPrimalSimplex);
        }
        result = run_session(context);
        set_options(session, context.params, problem, context.care);
    }
    if (result.outcome == Outcome::kMemory)
        throw Error(ZVN_ERROR_OUT_OF_MEMORY, "HiGHS ran out of memory during the solve");
    return result;
}

// A model without optimum is unbounded when it has a feasible point.
SolverResult tell_apart(const Problem& problem, Context& context) {
    context.monitor.log("Solving without objective to tell infeasible from unbounded\n");
    context.session.change_costs(std::vector<double>(problem.cost.size(), 0.0), 0.0);
    SolverResult result = run_loaded(problem, context);
    context.session.change_costs(problem.cost, problem.offset);
    if (result.outcome == Outcome::kOptimal) result.outcome = Outcome::kUnbounded;
    return result;
}

}  // namespace

Context::Context(HighsSession& highs, Monitor& events)
    : session(highs),
      monitor(events),
      params(events.params),
      cones(std::make_shared<ConePool>()),
      attached_(highs, &events) {}

SolverResult run_session(Context& context) {
    set_limits(context.session, context);
    SolverResult result = context.session.run(context.params.get_int(Param::Threads));
    count(result, context);
    return result;
}

void set_limits(HighsSession& session, const Context& context) {
    const ParamValues& params = context.params;
    const auto left = [](double limit, double used) {
        return static_cast<int>(std::clamp(limit - used, 0.0, static_cast<double>(std::numeric_limits<int>::max())));
    };
    // HiGHS looks at its own limits more often than it asks whether to go on.
    const Monitor& monitor = context.monitor;
    session.set_time_limit(monitor.time_left());
    session.set_option(
        "simplex_iteration_limit",
        std::min({context.care.iteration_limit, left(params.get_dbl(Param::IterationLimit), context.iterations),
                  left(monitor.iterations_left(), 0.0)}));
    session.set_option(
        "ipm_iteration_limit",
        std::min({context.care.barrier_limit, left(params.get_int(Param::BarIterLimit), context.barrier_iterations),
                  left(monitor.barrier_iterations_left(), 0.0)}));
    session.set_option("mip_max_nodes", left(params.get_dbl(Param::NodeLimit), context.nodes));
    // Not every solution of a node is one of the whole.
    const double solution_limit = context.care.node ? kInfinity : params.get_int(Param::SolutionLimit);
    session.set_option("mip_max_improving_sols", left(solution_limit, monitor.num_solutions()));
}

bool is_trivial(const Problem& problem) { return problem.num_cols() == 0 || problem.has_empty_range(); }

SolverResult search(const Problem& problem, const Start& start, Context& context) {
    if (!problem.disjunctions.empty()) return search_tree(problem, start, context);
    if (!problem.cones.empty()) return search_cones(problem, start, context);
    const ParamValues& params = context.params;
    Monitor& monitor = context.monitor;
    monitor.begin_run(problem);
    SolverResult result;
    result.bound = -problem.sense * std::numeric_limits<double>::infinity();
    result.outcome = Outcome::kStopped;
    if (monitor.poll() == Answer::kStop) return result;
    if (is_trivial(problem)) return solve_trivial(problem, params.get_dbl(Param::FeasibilityTol));
    result.outcome = Outcome::kTimeLimit;
    if (monitor.time_left() <= 0.0) return result;

    if (!problem.quad.empty()) return search_quadratic(problem, context);
    set_options(context.session, params, problem, context.care);
    if (params.get_int(Param::LPWarmStart) == 0) context.session.forget_basis();
    context.session.load(problem);
    pass_start(problem, start, context);
    result = run_loaded(problem, context);
    const bool must_know =
        params.get_int(Param::DualReductions) == 0 || (params.get_int(Param::InfUnbdInfo) != 0 && !problem.is_mip());
    if (result.outcome == Outcome::kInfeasibleOrUnbounded && must_know) result = tell_apart(problem, context);
    return result;
}

SolverResult search_aside(const Problem& problem, const Start& start, const Care& care, Context& context) {
    HighsSession session;
    return search_with(session, problem, start, care, context);
}

SolverResult search_with(HighsSession& session, const Problem& problem, const Start& start, const Care& care,
                         Context& context) {
    Context aside(session, context.monitor);
    static_cast<Counts&>(aside) = static_cast<const Counts&>(context);
    aside.care = care;
    aside.care.node |= context.care.node;
    aside.care.relaxed |= context.care.relaxed;
    aside.claim = context.claim;
    aside.cones = context.cones;
    SolverResult result = search(problem, start, aside);
    static_cast<Counts&>(context) = static_cast<const Counts&>(aside);
    return result;
}

int status_of(const SolverResult& result, const Context& context) {
    const Monitor& monitor = context.monitor;
    switch (result.outcome) {
        case Outcome::kOptimal:
            return ZVN_OPTIMAL;
        case Outcome::kInfeasible:
            return ZVN_INFEASIBLE;
        case Outcome::kInfeasibleOrUnbounded:
            return ZVN_INF_OR_UNBD;
        case Outcome::kUnbounded:
            return ZVN_UNBOUNDED;
        case Outcome::kTimeLimit:
            return ZVN_TIME_LIMIT;
        case Outcome::kIterationLimit:
            return monitor.reaches_limit(context.work) ? ZVN_WORK_LIMIT : ZVN_ITERATION_LIMIT;
        case Outcome::kSolutionLimit:
            return monitor.num_solutions() >= context.params.get_int(Param::SolutionLimit) ? ZVN_SOLUTION_LIMIT
                                                                                           : ZVN_NODE_LIMIT;
        default:
            if (monitor.stop_status()) return monitor.stop_status();
            return result.x.empty() ? ZVN_NUMERIC : ZVN_SUBOPTIMAL;
    }
}

}  // namespace zelvan
