#include "solve/multi_objective.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <set>

#include "core/error.h"
#include "solve/answer.h"
#include "solve/store.h"

namespace zelvan {

namespace {

// A weighted sum of objectives over the columns of the problem.
struct Blend {
    std::vector<double> cost;
    double offset = 0.0;

    void add(const std::vector<double>& coeff, double constant, double weight) {
        for (std::size_t j = 0; j < coeff.size(); ++j) cost[j] += weight * coeff[j];
        offset += weight * constant;
    }
    void add(const SparseVector& coeff, double constant, double weight) {
        for (std::size_t k = 0; k < coeff.col.size(); ++k) cost[coeff.col[k]] += weight * coeff.val[k];
        offset += weight * constant;
    }
};

class Hierarchy {
public:
    Hierarchy(const ModelData& data, Problem base, Start start, Context& context)
        : data_(data),
          problem_(std::move(base)),
          start_(std::move(start)),
          context_(context),
          main_{problem_.cost, problem_.offset} {}

    Solution solve() {
        std::set<int, std::greater<int>> priorities;
        for (const Objective& objective : data_.objectives) priorities.insert(objective.priority);
        Solution solution;
        solution.is_mip = problem_.is_mip();
        SolverResult best;
        for (int priority : priorities) {
            SolverResult result = solve_priority(priority);
            solution.status = status_of(result, context_);
            // A later solve that found no point leaves the point of the one before.
            if (!result.x.empty() || best.x.empty()) best = std::move(result);
            if (solution.status != ZVN_OPTIMAL) break;
            limit_worsening(priority, best.x);
            start_ = {best.x, {}};
        }
        store_result(data_, std::move(best), solution);
        return without_single_objective_values(std::move(solution));
    }

private:
    Blend blend_of(int priority) const {
        Blend blend{std::vector<double>(problem_.cost.size(), 0.0)};
        for (std::size_t k = 0; k < data_.objectives.size(); ++k) {
            const Objective& objective = data_.objectives[k];
            if (objective.priority != priority) continue;
            if (k == 0)
                blend.add(main_.cost, main_.offset, 1.0);
            else
                blend.add(objective.coeff, objective.constant, objective.weight);
        }
        return blend;
    }

    SolverResult solve_priority(int priority) {
        const Blend blend = blend_of(priority);
        check_costs(blend.cost, priority);
        problem_.cost = blend.cost;
        problem_.offset = blend.offset;
        context_.monitor.log("\nSolving for the objectives of priority " + std::to_string(priority) + "\n");
        const auto blended = [this, priority](const double* x) { return value_of(priority, x); };
        const auto excess = [this](const double* x) {
            double most = 0.0;
            for (const Limit& limit : limits_)
                most = std::max(most, relative_excess(problem_.sense, value_of(limit.priority, x), limit.value));
            return most;
        };
        return checked_search(problem_, start_, {data_, blended, excess, tolerances_of(context_.params)}, context_);
    }

    void check_costs(const std::vector<double>& cost, int priority) const {
        for (int j = 0; j < data_.cols.size(); ++j) {
            if (std::abs(cost[j]) < kInfinityThreshold) continue;
            throw Error(ZVN_ERROR_NUMERIC, "The coefficient of variable '" + data_.col_name(j) +
                                               "' in the weighted objectives of priority " + std::to_string(priority) +
                                               " is too large to solve with: less than 1e20 is possible");
        }
    }

    // The weighted sum of the objectives of a priority.
    double value_of(int priority, const double* x) const {
        const std::vector<double> values = objective_values(data_, x);
        double sum = 0.0;
        for (std::size_t k = 0; k < values.size(); ++k)
            if (data_.objectives[k].priority == priority) sum += data_.objectives[k].weight * values[k];
        return sum;
    }

    void limit_worsening(int priority, const std::vector<double>& x) {
        const std::vector<double> values = objective_values(data_, x.data());
        double allowance = 0.0;
        for (std::size_t k = 0; k < data_.objectives.size(); ++k) {
            const Objective& objective = data_.objectives[k];
            if (objective.priority != priority) continue;
            const double tolerance = std::max(objective.abs_tol, objective.rel_tol * std::abs(values[k]));
            allowance = std::max(allowance, std::abs(objective.weight) * tolerance);
        }
        double reached = 0.0;
        for (int j = 0; j < problem_.num_cols(); ++j) reached += problem_.cost[j] * x[j];
        limits_.push_back({priority, value_of(priority, x.data()) + problem_.sense * allowance});
        problem_.begin_additions();
        problem_.limit_objective(reached + problem_.sense * allowance);
    }

    // Bound, dual values and basis belong to the last solve and its rows, not to the model.
    Solution without_single_objective_values(Solution solution) const {
        solution.obj_bound = solution.mip_gap = kUndefined;
        solution.rc.clear();
        solution.pi.clear();
        solution.vbasis.clear();
        solution.cbasis.clear();
        if (solution.obj_val == kUndefined) return solution;
        solution.multi_obj = objective_values(data_, solution.x.data());
        solution.obj_val = solution.multi_obj[0];
        return solution;
    }

    const ModelData& data_;
    Problem problem_;
    Start start_;  // of the next solve
    struct Limit {
        int priority;
        double value;  // of its objectives, at worst
    };
    std::vector<Limit> limits_;
    Context& context_;
    const Blend main_;  // the main objective with its weight, over the columns of the problem
};

}  // namespace

std::vector<double> objective_values(const ModelData& data, const double* x) {
    std::vector<double> values{main_objective(data, x)};
    for (std::size_t k = 1; k < data.objectives.size(); ++k) {
        const Objective& objective = data.objectives[k];
        values.push_back(objective.constant);
        for (std::size_t e = 0; e < objective.coeff.col.size(); ++e)
            values[k] += objective.coeff.val[e] * x[objective.coeff.col[e]];
    }
    return values;
}

Solution solve_multi_objective(const ModelData& data, Problem base, Start start, Context& context) {
    return Hierarchy(data, std::move(base), std::move(start), context).solve();
}

}  // namespace zelvan
