// optimize(): from a model to the values of its solution.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

#include "bridge/bridge.h"
#include "bridge/quadratic.h"
#include "core/error.h"
#include "io/data_files.h"
#include "io/values.h"
#include "solve/answer.h"
#include "solve/certificate.h"
#include "solve/multi_objective.h"
#include "solve/quadratic.h"
#include "solve/relaxation_bound.h"
#include "solve/search.h"
#include "solve/solve.h"
#include "solve/store.h"

namespace zelvan {

namespace {

// Marks the model as being solved, so that nothing else changes or frees it, whatever way the solve ends.
class SolvingMark {
public:
    explicit SolvingMark(Model& model) : model_(model) {
        bool expected = false;
        if (!model.solving.compare_exchange_strong(expected, true))
            throw Error(ZVN_ERROR_OPTIMIZATION_IN_PROGRESS, "The model is being solved already");
        model.stop = false;
    }
    ~SolvingMark() {
        {
            const std::lock_guard lock(model_.state_mutex);
            if (model_.solution.status == ZVN_INPROGRESS) model_.solution = Solution();
        }
        model_.solving = false;
    }
    SolvingMark(const SolvingMark&) = delete;
    SolvingMark& operator=(const SolvingMark&) = delete;

private:
    Model& model_;
};

template <class... Values>
std::string text(const char* format, Values... values) {
    char line[256];
    std::snprintf(line, sizeof line, format, values...);
    return line;
}

void log_begin(Model& model) {
    if (model.env.is_silent()) return;
    const ModelData& data = model.data;
    const auto count = [&](char type, char other) {
        return static_cast<int>(std::count(data.cols.type.begin(), data.cols.type.end(), type) +
                                std::count(data.cols.type.begin(), data.cols.type.end(), other));
    };
    model.env.log(text("Zelvan optimizer version %d.%d.%d (%s)\n", ZVN_VERSION_MAJOR, ZVN_VERSION_MINOR,
                       ZVN_VERSION_TECHNICAL, ZVNplatform()));
    model.env.log(text("Optimize a model with %d rows, %d columns and %lld nonzeros\n", model.num_rows(),
                       model.num_cols(), static_cast<long long>(data.rows.num_entries())));
    if (!data.is_mip()) return;
    model.env.log(text("Variable types: %d continuous, %d integer, %d semi-continuous or semi-integer\n",
                       model.num_cols() - count('B', 'I') - count('S', 'N'), count('B', 'I'), count('S', 'N')));
}

void log_end(Model& model) {
    if (model.env.is_silent()) return;
    const Solution& solution = model.solution;
    model.env.log(text("Ended with status %s after %.2f seconds (%.2f work units)\n", kStatusNames[solution.status],
                       solution.runtime, solution.work));
    if (solution.obj_val != kUndefined) model.env.log(text("Objective %.10g\n", solution.obj_val));
}

// The start of a MIP that the user gave; NaN where a column has no value.
std::vector<double> user_start(const ModelData& data) {
    const std::vector<double>* values = data.cols.optional.find(Option::kStart);
    if (!values) return {};
    std::vector<double> x = *values;
    std::replace_if(x.begin(), x.end(), [](double value) { return value >= kInfinity; }, std::nan(""));
    return x;
}

// A basis that the user set; empty without one. Where there are statuses of columns only, the rows are basic.
Basis user_basis(const ModelData& data, Monitor& monitor) {
    const auto* cols = data.cols.optional.find(Option::kColumnBasis);
    const auto* rows = data.rows.optional.find(Option::kRowBasis);
    if (!cols && !rows) return {};
    Basis basis{{}, std::vector<int>(data.rows.size(), ZVN_BASIC)};
    if (cols) basis.cols.assign(cols->begin(), cols->end());
    for (int i = 0; rows && i < data.rows.size(); ++i)
        basis.rows[i] = side_status(static_cast<int>((*rows)[i]), data.rows.sense[i]);
    const auto num_basic = std::count(basis.cols.begin(), basis.cols.end(), ZVN_BASIC) +
                           std::count(basis.rows.begin(), basis.rows.end(), ZVN_BASIC);
    if ((cols && rows) || num_basic == data.rows.size()) return basis;
    monitor.log(cols ? "VBasis alone doesn't make a basis and is not used: CBasis isn't set\n"
                     : "CBasis alone doesn't make a basis and is not used: VBasis isn't set\n");
    return {};
}

// Infeasible rather than cut off a MIP can't be told from its search: both end without a solution.
int status_with_cutoff(int status, bool is_mip, double worse) {
    if (is_mip) return status == ZVN_INFEASIBLE ? ZVN_CUTOFF : status;
    return status == ZVN_OPTIMAL && worse > 0.0 ? ZVN_CUTOFF : status;
}

void store_counts(const Context& context, Solution& solution) {
    solution.runtime = context.monitor.elapsed();
    solution.work = context.work;
    solution.iterations = context.iterations;
    solution.barrier_iterations = context.barrier_iterations;
    solution.nodes = context.nodes;
    solution.concurrent_winner = context.concurrent_winner;
}

// What a solve tells goes to the model's log, and points that hold to its pool and solution files.
class ModelListener : public Listener {
public:
    ModelListener(const Model& model, const ParamValues& params)
        : model_(model),
          prefix_(params.get_str(Param::SolFiles)),
          tolerances_(tolerances_of(params)),
          pool_(params.get_int(Param::PoolSolutions), model.data.sense) {}

    Pool& pool() { return pool_; }
    void log(std::string_view text) override { model_.env.log(text); }
    void solution(double objective, const double* x, bool improves) override {
        if (!improves && !pool_.wants(objective)) return;
        std::vector<double> point(x, x + model_.num_cols());  // without what bridges added
        const ModelData& data = model_.data;
        if (find_breach(data, point, row_activities(data.rows, x), tolerances_)) return;
        objective = main_objective(data, x);
        if (improves && !prefix_.empty()) write_file(point, objective);
        pool_.add(objective, std::move(point));
    }

private:
    void write_file(const std::vector<double>& x, double objective) {
        const std::string path = prefix_ + "_" + std::to_string(num_files_++) + ".sol";
        try {
            write_solution(model_.data, x, objective, path);
        } catch (const Error& e) {
            log("File '" + path + "' was not written: " + e.text() + "\n");
        }
    }

    const Model& model_;
    const std::string prefix_;
    const Tolerances tolerances_;
    int num_files_ = 0;
    Pool pool_;
};

Solution solve_single(const ModelData& data, Problem problem, Context& context, Pool& pool) {
    const ParamValues& params = context.params;
    Solution solution;
    solution.is_mip = problem.is_mip();
    const double cutoff = params.get_dbl(Param::Cutoff);
    const bool has_cutoff = std::abs(cutoff) < kInfinityThreshold;
    if (has_cutoff && solution.is_mip) problem.limit_objective(cutoff - problem.offset);

    Claim claim{data, [&](const double* x) { return main_objective(data, x); }, {}, tolerances_of(params)};
    if (has_cutoff && solution.is_mip)
        claim.excess = [&](const double* x) { return relative_excess(data.sense, main_objective(data, x), cutoff); };
    const Start start{user_start(data), user_basis(data, context.monitor)};
    SolverResult result = checked_search(problem, start, claim, context);
    solution.status = status_of(result, context);
    if (has_cutoff)
        solution.status =
            status_with_cutoff(solution.status, solution.is_mip, data.sense * (result.objective - cutoff));
    std::vector<double> farkas = std::move(result.farkas), ray = std::move(result.ray);
    store_result(data, std::move(result), solution);
    pool.store(params, solution);
    if (params.get_int(Param::InfUnbdInfo) && !solution.is_mip && !problem.has_empty_range())
        store_certificate(data, std::move(farkas), std::move(ray), solution);
    if (!data.objectives.empty() && solution.obj_val != kUndefined) solution.multi_obj = {solution.obj_val};
    return solution;
}

// Quadratic constraints, and an objective that HiGHS can't take as it is.
void lift_quadratics(const ModelData& data, Problem& problem, Indicators& indicators, Context& context) {
    const bool is_alone = data.qrows.size() == 0 && data.objectives.size() <= 1 && !problem.is_mip();
    if (problem.quad.empty() ? data.qrows.size() == 0 : is_alone && recognize_objective(problem, context)) return;
    const QuadraticCounts counts = bridge_quadratic(data, problem, indicators, context);
    context.monitor.log(text("Quadratic forms: %d convex, %d second-order cones, %d not convex; %d products\n",
                             counts.convex, counts.cones, counts.non_convex, counts.products));
}

Solution solve(Model& model) {
    const ModelData& data = model.data;
    ParamValues params = model.env.settings();
    ModelListener listener(model, params);
    Monitor monitor(std::move(params), listener, model.stop, std::exchange(model.watch_signal, false));
    if (!model.session) model.session = std::make_shared<HighsSession>();
    Problem problem(data, model.stamp, model.changes, model.session->held());
    Context context(*model.session, monitor);
    RelaxationBound relaxation_bound(context);
    Indicators indicators(problem, std::ref(relaxation_bound));
    for (const Bridge& bridge : kBridges)
        if (bridge.is_needed(data)) bridge.build(data, problem, indicators);
    lift_quadratics(data, problem, indicators, context);
    Solution solution =
        data.objectives.size() > 1
            ? solve_multi_objective(data, std::move(problem), {user_start(data), user_basis(data, monitor)}, context)
            : solve_single(data, std::move(problem), context, listener.pool());
    store_counts(context, solution);
    if (model.session->held().stamp == model.stamp) model.follow_changes();
    return solution;
}

// A file that can't be written leaves a line: the answer stays.
void write_result_file(Model& model) {
    const std::string path = model.env.settings().get_str(Param::ResultFile);
    if (path.empty()) return;
    try {
        write_any(model, path);
    } catch (const Error& e) {
        model.env.log("File '" + path + "' was not written: " + e.text() + "\n");
    }
}

}  // namespace

void optimize(Model& model) {
    const SolvingMark mark(model);
    {
        const std::lock_guard lock(model.state_mutex);
        model.update();
        model.solution = Solution();
        model.solution.status = ZVN_INPROGRESS;
    }
    log_begin(model);
    Solution solution = solve(model);
    {
        const std::lock_guard lock(model.state_mutex);
        model.solution = std::move(solution);
        // A start basis serves one solve, the next one goes on from the basis of this one.
        model.data.cols.optional.erase(Option::kColumnBasis);
        model.data.rows.optional.erase(Option::kRowBasis);
    }
    log_end(model);
    write_result_file(model);
}

}  // namespace zelvan
