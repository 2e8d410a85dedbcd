#pragma once
// Proofs of what HiGHS says of an LP: multipliers of its rows, evaluated on the problem itself.

#include <optional>
#include <vector>

#include "core/model_data.h"
#include "core/solution.h"
#include "solve/search.h"

namespace zelvan {

// Multipliers y, largest element 1 in absolute value, for which the smallest value of y'Ax over the column bounds
// exceeds its largest one over the row sides by `value`.
struct Farkas {
    std::vector<double> y;
    double value = 0.0;
};

// A proof from a ray of either sign; none when the ray proves nothing, rounding considered.
std::optional<Farkas> farkas_from(const Problem& problem, std::vector<double> ray);
// Whether a column has no value between its bounds.
bool has_crossed_bounds(const Problem& problem);
// A proof that takes one row and the column bounds.
std::optional<Farkas> farkas_of_one_row(const Problem& problem);

// What the LP with the least sum of row violations, in place of the objective, says of an infeasible problem.
struct Elastic {
    std::vector<double> x;  // its point, empty when it wasn't solved
    std::optional<Farkas> farkas;
};
Elastic solve_elastic(const Problem& problem, Context& context);

// The derivatives of the objective at x, less the dual values times the rows; `activity` gets those of the rows.
std::vector<double> reduced_costs(const Problem& problem, const std::vector<double>& x, const std::vector<double>& pi,
                                  std::vector<double>& activity);
// Whether the dual values prove the point of an LP optimal: their signs, and the products of dual values and
// distances to the sides that they speak for, next to the objective. `activity`, if given, gets those of the rows.
bool is_proven_optimal(const Problem& problem, const SolverResult& result, double tolerance,
                       std::vector<double>* activity = nullptr);

// Fills ray (unbounded) or farkas and farkas_proof (infeasible) of the solution of an LP, from a direction of its
// columns that holds, and from multipliers of its rows. Those are left empty when they don't hold for the model.
void store_certificate(const ModelData& data, std::vector<double> farkas, std::vector<double> ray, Solution& solution);

}  // namespace zelvan
