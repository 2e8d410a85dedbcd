#pragma once
// The functions behind the attribute table, in the units named at each group.

#include "attr/spec.h"

namespace zelvan {

// --- model_attrs.cpp: size and kind of the model
double num_constrs(const Model&);
double num_vars(const Model&);
double num_sos(const Model&);
double num_nonzeros(const Model&);  // refused beyond an int
double num_nonzeros_dbl(const Model&);
double num_integer_vars(const Model&);  // binary ones included
double num_binary_vars(const Model&);
double num_pwl_vars(const Model&);
double num_quad_rows(const Model&);
double num_quad_objective_terms(const Model&);
double num_quad_row_terms(const Model&);  // quadratic ones
double num_starts(const Model&);
double none(const Model&);  // 0: a count or range over objects that no model has
const char* model_name(const Model&);
double model_sense(const Model&);
double objective_constant(const Model&);
double is_mip(const Model&);
double is_qp(const Model&);  // with quadratic constraints it is a QCP instead
double is_qcp(const Model&);

// Smallest and largest magnitude, zeros and infinities left out; 0 when nothing is left.
double max_coeff(const Model&);
double min_coeff(const Model&);
double max_bound(const Model&);
double min_bound(const Model&);
double max_obj_coeff(const Model&);
double min_obj_coeff(const Model&);
double max_rhs(const Model&);
double min_rhs(const Model&);
double max_quad_rhs(const Model&);
double min_quad_rhs(const Model&);
double max_quad_coeff(const Model&);
double min_quad_coeff(const Model&);
double max_quad_linear_coeff(const Model&);
double min_quad_linear_coeff(const Model&);
double max_quad_obj_coeff(const Model&);
double min_quad_obj_coeff(const Model&);

// --- fingerprint.cpp
double fingerprint(const Model&);

// --- result_attrs.cpp: what the latest solve left
double objective_value(const Model&);
double objective_bound(const Model&);
double pool_objective_value(const Model&);
double mip_gap(const Model&);
double runtime(const Model&);
double work(const Model&);
double status(const Model&);
double solution_count(const Model&);
double iteration_count(const Model&);
double node_count(const Model&);
double barrier_iteration_count(const Model&);
double farkas_proof(const Model&);
double concurrent_winner(const Model&);
double condition_estimate(const Model&);
double condition(const Model&);
Values primal_values(const Model&);
Values barrier_values(const Model&);
Values pool_values(const Model&);
Values reduced_costs(const Model&);
Values duals(const Model&);
Values slacks(const Model&);
Values quad_duals(const Model&);
Values quad_slacks(const Model&);
Values column_basis(const Model&);
Values row_basis(const Model&);
Values unbounded_ray(const Model&);
Values farkas_dual(const Model&);

// --- objective_attrs.cpp: several objectives; parameter ObjNumber selects
bool is_multi_objective(const Model&);
double is_multi_objective_number(const Model&);
double num_objectives(const Model&);
double objective_n(const Model&, int col);
double objective_n_constant(const Model&);
double objective_n_priority(const Model&);
double objective_n_weight(const Model&);
double objective_n_rel_tol(const Model&);
double objective_n_abs_tol(const Model&);
double objective_n_value(const Model&);
const char* objective_n_name(const Model&);

// --- element_attrs.cpp: columns, rows, quadratic constraints
Values lower_bounds(const Model&);
Values upper_bounds(const Model&);
Values objective_coeffs(const Model&);
Values types(const Model&);
Values senses(const Model&);
Values right_sides(const Model&);
Values quad_senses(const Model&);
Values quad_right_sides(const Model&);
template <Kind kind>
Texts names(const Model& m) {
    return {&m.data.family(kind).names, spec_of(kind).prefix};
}
template <Kind kind>
Texts tags(const Model& m) {
    return {&m.data.family(kind).tags, nullptr};
}
double pwl_convex(const Model&, int col);
Values option_values(const Identity&, Option);
template <Kind kind, Option option>
Values option_of(const Model& m) {
    return option_values(m.data.family(kind), option);
}

// --- quality.cpp: how far the solution is off. A measure gives the largest amount, the index where it
// occurs (-1 when all amounts are 0) and the sum.
struct Amounts {
    double worst = 0.0, sum = 0.0;
    int index = -1;

    void add(double amount, int where);
};
Amounts bound_violation(const Model&, bool scaled);
Amounts constr_violation(const Model&, bool scaled);
Amounts constr_residual(const Model&, bool scaled);
Amounts dual_violation(const Model&, bool scaled);
Amounts dual_residual(const Model&, bool scaled);
Amounts complementarity_violation(const Model&, bool scaled);
Amounts integrality_violation(const Model&, bool scaled);
double max_violation(const Model&);

using Measure = Amounts (*)(const Model&, bool scaled);
template <Measure measure, bool scaled>
double worst(const Model& model) {
    return measure(model, scaled).worst;
}
template <Measure measure, bool scaled>
double where(const Model& model) {
    return measure(model, scaled).index;
}
template <Measure measure, bool scaled>
double sum(const Model& model) {
    return measure(model, scaled).sum;
}

}  // namespace zelvan
