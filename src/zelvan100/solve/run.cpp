#include "solve/run.h"

#include <algorithm>
#include <limits>

#include "core/error.h"
#include "solve/concurrent.h"
#include "solve/options.h"

namespace zelvan {

namespace {

constexpr int kConcurrent = 3;     // of parameter Method
constexpr int kPrimalSimplex = 4;  // of the HiGHS option simplex_strategy

}  // namespace

bool is_trivial(const Problem& problem) { return problem.num_cols() == 0 || problem.has_empty_range(); }

SolverResult solve_trivial(const Problem& problem, double tolerance) {
    SolverResult result;
    result.outcome = Outcome::kInfeasible;
    if (problem.has_empty_range()) return result;
    for (int i = 0; i < problem.num_rows(); ++i)
        if (problem.row_lower[i] > tolerance || problem.row_upper[i] < -tolerance) return result;
    result.outcome = Outcome::kOptimal;
    result.objective = result.bound = problem.offset;
    result.row_activity.assign(problem.num_rows(), 0.0);
    result.pi.assign(problem.num_rows(), 0.0);
    result.basis.rows.assign(problem.num_rows(), ZVN_BASIC);
    return result;
}

Run::Run(Model& model) : params(model.env.settings()), monitor(model, params), model_(model) {
    if (!model_.session) model_.session = std::make_shared<HighsSession>();
    session().attach(&monitor);
    const bool shown = params.get_int(Param::OutputFlag) &&
                       (params.get_int(Param::LogToConsole) || !params.get_str(Param::LogFile).empty());
    session().set_option("output_flag", shown);
}

Run::~Run() { session().attach(nullptr); }

SolverResult Run::solve(const Problem& problem, const Start& start) {
    monitor.begin_run(problem);
    SolverResult result;
    result.bound = -problem.sense * std::numeric_limits<double>::infinity();
    result.outcome = Outcome::kStopped;
    if (monitor.stop(Progress())) return result;
    if (is_trivial(problem)) return solve_trivial(problem, params.get_dbl(Param::FeasibilityTol));
    result.outcome = Outcome::kTimeLimit;
    if (monitor.time_left() <= 0.0) return result;

    set_options(session(), params, problem);
    if (params.get_int(Param::LPWarmStart) == 0) session().forget_basis();
    session().load(problem);
    pass_start(problem, start);
    result = run_loaded(problem);
    const bool must_know =
        params.get_int(Param::DualReductions) == 0 || (params.get_int(Param::InfUnbdInfo) != 0 && !problem.is_mip());
    if (result.outcome == Outcome::kInfeasibleOrUnbounded && must_know) result = tell_apart(problem);
    return result;
}

void Run::pass_start(const Problem& problem, const Start& start) {
    const bool is_mip = problem.is_mip();
    if (is_mip && !start.x.empty() && !session().set_start(start.x))
        monitor.log("The start violates bounds and is not used\n");
    if (is_mip || start.basis.rows.empty() || params.get_int(Param::LPWarmStart) == 0) return;
    if (!session().set_basis(start.basis)) monitor.log("The start basis is not a basis and is not used\n");
}

SolverResult Run::run_loaded(const Problem& problem) {
    SolverResult result = run_method(problem);
    if (result.outcome == Outcome::kUnknown && !problem.is_mip() && !monitor.stop_status()) {
        monitor.log("The result is uncertain: solving anew by primal simplex without presolve\n");
        session().forget_basis();
        session().set_option("presolve", "off");
        session().set_option("solver", "simplex");
        session().set_option("simplex_strategy", kPrimalSimplex);
        session().set_option("time_limit", monitor.time_left());
        result = run_session();
        set_options(session(), params, problem);
    }
    if (result.outcome == Outcome::kMemory)
        throw Error(ZVN_ERROR_OUT_OF_MEMORY, "HiGHS ran out of memory during the solve");
    return result;
}

SolverResult Run::run_method(const Problem& problem) {
    if (params.get_int(Param::Method) == kConcurrent && !problem.is_mip()) {
        SolverResult result = run_concurrently(session(), problem, monitor, params, concurrent_winner);
        end_run(result);
        return result;
    }
    session().set_option("time_limit", monitor.time_left());
    return run_session();
}

SolverResult Run::run_session() {
    SolverResult result = session().run(params.get_int(Param::Threads));
    end_run(result);
    return result;
}

// A model without optimum is unbounded when it has a feasible point.
SolverResult Run::tell_apart(const Problem& problem) {
    monitor.log("Solving without objective to tell infeasible from unbounded\n");
    session().change_costs(std::vector<double>(problem.cost.size(), 0.0), 0.0);
    SolverResult result = run_loaded(problem);
    session().change_costs(problem.cost, problem.offset);
    if (result.outcome == Outcome::kOptimal) result.outcome = Outcome::kUnbounded;
    return result;
}

void Run::end_run(const SolverResult& result) {
    Progress done;
    done.iterations = result.iterations;
    done.barrier_iterations = result.barrier_iterations;
    done.nodes = result.nodes;
    work = monitor.work_of(done);
    iterations += result.iterations;
    nodes += result.nodes;
    barrier_iterations += result.barrier_iterations;
    monitor.flush_log();
    monitor.begin_count(work, iterations);
}

int Run::status_of(const SolverResult& result) const {
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
            return ZVN_ITERATION_LIMIT;
        case Outcome::kSolutionLimit:
            return monitor.num_solutions() >= params.get_int(Param::SolutionLimit) ? ZVN_SOLUTION_LIMIT
                                                                                   : ZVN_NODE_LIMIT;
        default:
            if (monitor.stop_status()) return monitor.stop_status();
            return result.x.empty() ? ZVN_NUMERIC : ZVN_SUBOPTIMAL;
    }
}

}  // namespace zelvan
