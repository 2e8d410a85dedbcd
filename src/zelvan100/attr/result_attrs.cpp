#include "attr/readers.h"
#include "solve/kappa.h"

namespace zelvan {

namespace {

constexpr const char* kNoSolution = "no solution is available";
constexpr const char* kNoBasisMatrix = "it takes a linear model with constraints, solved to a basis";
constexpr const char* kNoDuals = "no dual solution is available";
constexpr const char* kNoQuadDuals = "no dual values of quadratic constraints are available";

// A result that the latest solve, of which the status is told, didn't leave.
Error no_result(const Model& m, const char* why) {
    return missing(std::string(why) + " (status " + kStatusNames[m.solution.status] + ")");
}

double defined(const Model& m, double value, const char* why) {
    if (value == kUndefined) throw no_result(m, why);
    return value;
}

// Of a solved model without columns or rows the arrays are empty and complete.
Values present(const std::vector<double>& values, int size, const Model& m, const char* why) {
    if (static_cast<int>(values.size()) != size || (size == 0 && m.solution.status == ZVN_LOADED))
        throw no_result(m, why);
    return Values::of(values);
}

int selected_solution(const Model& m) {
    const int number = m.env.params.get_int(Param::SolutionNumber), count = m.solution.count();
    if (count == 0) throw no_result(m, kNoSolution);
    if (number >= count)
        throw missing("parameter SolutionNumber is " + std::to_string(number) + ", but there are " +
                      std::to_string(count) + " solutions");
    return number;
}

Values basis(const Model& m, Kind kind) {
    const Model::BasisStatuses statuses = m.basis_statuses(kind);
    if (statuses.set) return Values::of(*statuses.set);
    if (!statuses.solved) throw no_result(m, "no basis is available");
    return Values::of(*statuses.solved);
}

}  // namespace

double objective_value(const Model& m) { return defined(m, m.solution.obj_val, kNoSolution); }

double objective_bound(const Model& m) {
    return defined(m, m.solution.obj_bound, "no bound on the objective is available");
}

double pool_objective_value(const Model& m) {
    const int number = selected_solution(m);
    return m.solution.pool_obj.empty() ? m.solution.obj_val : m.solution.pool_obj[number];
}

double mip_gap(const Model& m) {
    return defined(m, m.solution.mip_gap, "the latest solve left no objective value and bound to compare");
}

double runtime(const Model& m) { return m.solution.runtime; }
double work(const Model& m) { return m.solution.work; }
double status(const Model& m) { return m.solution.status; }
double solution_count(const Model& m) { return m.solution.count(); }
double iteration_count(const Model& m) { return m.solution.iterations; }
double node_count(const Model& m) { return m.solution.nodes; }
double barrier_iteration_count(const Model& m) { return m.solution.barrier_iterations; }
double concurrent_winner(const Model& m) { return m.solution.concurrent_winner; }

double condition_estimate(const Model& m) { return defined(m, basis_condition(m, false), kNoBasisMatrix); }
double condition(const Model& m) { return defined(m, basis_condition(m, true), kNoBasisMatrix); }

double farkas_proof(const Model& m) {
    return defined(m, m.solution.farkas_proof,
                   "it takes an infeasible LP that was solved with parameter InfUnbdInfo at 1");
}

Values primal_values(const Model& m) { return present(m.solution.x, m.num_cols(), m, kNoSolution); }

// The iterate before crossover is not kept, so it has to be that after which there was none.
Values barrier_values(const Model& m) {
    const Solution& solution = m.solution;
    if (solution.barrier_iterations == 0 || !solution.vbasis.empty() || solution.is_mip)
        throw missing("the solution isn't one of the barrier method without crossover");
    return primal_values(m);
}

Values pool_values(const Model& m) {
    const int number = selected_solution(m);
    return Values::of(m.solution.pool.empty() ? m.solution.x : m.solution.pool[number]);
}

Values reduced_costs(const Model& m) { return present(m.solution.rc, m.num_cols(), m, kNoDuals); }
Values duals(const Model& m) { return present(m.solution.pi, m.num_rows(), m, kNoDuals); }
Values slacks(const Model& m) { return present(m.solution.slack, m.num_rows(), m, kNoSolution); }
Values quad_duals(const Model& m) { return present(m.solution.qcpi, m.data.qrows.size(), m, kNoQuadDuals); }
Values quad_slacks(const Model& m) { return present(m.solution.qcslack, m.data.qrows.size(), m, kNoSolution); }

Values column_basis(const Model& m) { return basis(m, Kind::kColumn); }

Values row_basis(const Model& m) { return basis(m, Kind::kRow); }

Values unbounded_ray(const Model& m) {
    return present(m.solution.ray, m.num_cols(), m,
                   "it takes an unbounded LP that was solved with parameter InfUnbdInfo at 1");
}

Values farkas_dual(const Model& m) {
    return present(m.solution.farkas, m.num_rows(), m,
                   "it takes an infeasible LP that was solved with parameter InfUnbdInfo at 1");
}

}  // namespace zelvan
