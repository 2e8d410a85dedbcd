// Violations and residuals of the solution.
//
// Scaled figures belong to the model whose rows are divided by their largest coefficient, and whose columns
// then are by theirs: row i is multiplied by r[i], the unit of column j divided by c[j].
// Violated constraints are counted in one sequence: rows, quadratic constraints, SOS. In the dual, index i < NumConstrs
// means row i and NumConstrs + j column j; complementarity counts columns first: j < NumVars means column j and NumVars
// + i row i.

#include <algorithm>
#include <cmath>

#include "attr/readers.h"
#include "solve/check.h"
#include "solve/convexity.h"

namespace zelvan {

namespace {

struct Scale {
    std::vector<double> row, col;
};

Scale scale_of(const ModelData& data, bool scaled) {
    const Rows& rows = data.rows;
    Scale scale{std::vector<double>(rows.size(), 1.0), std::vector<double>(data.cols.size(), 1.0)};
    if (!scaled) return scale;
    std::vector<double> largest(data.cols.size(), 0.0);
    for (int i = 0; i < rows.size(); ++i) {
        double biggest = 0.0;
        for (std::int64_t k = rows.start[i]; k < rows.start[i + 1]; ++k)
            biggest = std::max(biggest, std::fabs(rows.val[k]));
        if (biggest > 0.0) scale.row[i] = 1.0 / biggest;
        for (std::int64_t k = rows.start[i]; k < rows.start[i + 1]; ++k)
            largest[rows.col[k]] = std::max(largest[rows.col[k]], std::fabs(rows.val[k]) * scale.row[i]);
    }
    for (std::size_t j = 0; j < largest.size(); ++j)
        if (largest[j] > 0.0) scale.col[j] = 1.0 / largest[j];
    return scale;
}

double quad_row_scale(const QuadRows& rows, int i) {
    double biggest = 0.0;
    for (std::int64_t k = rows.start[i]; k < rows.start[i + 1]; ++k)
        biggest = std::max(biggest, std::fabs(rows.val[k]));
    for (std::int64_t k = rows.quad_start[i]; k < rows.quad_start[i + 1]; ++k)
        biggest = std::max(biggest, std::fabs(rows.quad.val[k]));
    return biggest > 0.0 ? 1.0 / biggest : 1.0;
}

}  // namespace

void Amounts::add(double amount, int where) {
    if (!(amount > 0.0)) return;
    sum += amount;
    if (amount <= worst) return;
    worst = amount;
    index = where;
}

Amounts bound_violation(const Model& m, bool scaled) {
    const double* x = primal_values(m).doubles;
    const Scale scale = scale_of(m.data, scaled);
    const Columns& cols = m.data.cols;
    Amounts amounts;
    for (int j = 0; j < cols.size(); ++j) amounts.add(bound_violation(cols, j, x[j]) / scale.col[j], j);
    return amounts;
}

Amounts constr_violation(const Model& m, bool scaled) {
    const double* x = primal_values(m).doubles;
    const Scale scale = scale_of(m.data, scaled);
    Amounts amounts;
    for (int i = 0; i < m.num_rows(); ++i) {
        const auto [lower, upper] = m.data.rows.sides(i);
        amounts.add(outside(row_activity(m.data.rows, i, x), lower, upper) * scale.row[i], i);
    }
    const QuadRows& quadratic = m.data.qrows;
    int at = m.num_rows();
    for (int i = 0; i < quadratic.size(); ++i, ++at) {
        const auto [lower, upper] = sides_of(quadratic.sense[i], quadratic.rhs[i]);
        const double factor = scaled ? quad_row_scale(quadratic, i) : 1.0;
        amounts.add(outside(quad_activity(quadratic, i, x), lower, upper) * factor, at);
    }
    for (int k = 0; k < m.data.sos.size(); ++k, ++at) amounts.add(sos_violation(m.data.sos, k, x), at);
    return amounts;
}

Amounts constr_residual(const Model& m, bool scaled) {
    const double *x = primal_values(m).doubles, *slack = slacks(m).doubles;
    const Scale scale = scale_of(m.data, scaled);
    Amounts amounts;
    for (int i = 0; i < m.num_rows(); ++i) {
        const double right = m.data.rows.rhs[i];
        if (std::fabs(right) >= kInfinityThreshold) continue;
        amounts.add(std::fabs(row_activity(m.data.rows, i, x) + slack[i] - right) * scale.row[i], i);
    }
    const QuadRows& quadratic = m.data.qrows;
    const double* quad_slack = quad_slacks(m).doubles;
    for (int i = 0; i < quadratic.size(); ++i) {
        if (std::fabs(quadratic.rhs[i]) >= kInfinityThreshold) continue;
        const double factor = scaled ? quad_row_scale(quadratic, i) : 1.0;
        const double off = std::fabs(quad_activity(quadratic, i, x) + quad_slack[i] - quadratic.rhs[i]);
        amounts.add(off * factor, m.num_rows() + i);
    }
    return amounts;
}

Amounts dual_violation(const Model& m, bool scaled) {
    const double *rc = reduced_costs(m).doubles, *pi = duals(m).doubles;
    const Scale scale = scale_of(m.data, scaled);
    const Columns& cols = m.data.cols;
    Amounts amounts;
    for (int i = 0; i < m.num_rows(); ++i) {
        const auto [lower, upper] = m.data.rows.sides(i);
        amounts.add(wrong_sign(m.data.sense * pi[i], lower, upper) / scale.row[i], i);
    }
    for (int j = 0; j < cols.size(); ++j)
        amounts.add(wrong_sign(m.data.sense * rc[j], cols.lb[j], cols.ub[j]) * scale.col[j], m.num_rows() + j);
    return amounts;
}

Amounts dual_residual(const Model& m, bool scaled) {
    const double *rc = reduced_costs(m).doubles, *pi = duals(m).doubles;
    const Scale scale = scale_of(m.data, scaled);
    const Rows& rows = m.data.rows;
    if (!m.data.pwl_obj.empty()) throw missing("the objective is piecewise linear");
    std::vector<double> rest = m.data.cols.obj;
    const QuadRows& quadratic = m.data.qrows;
    if (!m.data.quad_obj.empty() || quadratic.size() > 0) {
        const double *x = primal_values(m).doubles, *multipliers = quad_duals(m).doubles;
        add_gradient(m.data.quad_obj, 1.0, x, rest.data());
        for (int i = 0; i < quadratic.size(); ++i) {
            const QuadView terms(quadratic.quad, quadratic.quad_start[i], quadratic.quad_start[i + 1]);
            add_gradient(terms, -multipliers[i], x, rest.data());
            for (std::int64_t k = quadratic.start[i]; k < quadratic.start[i + 1]; ++k)
                rest[quadratic.col[k]] -= multipliers[i] * quadratic.val[k];
        }
    }
    for (int i = 0; i < rows.size(); ++i)
        for (std::int64_t k = rows.start[i]; k < rows.start[i + 1]; ++k) rest[rows.col[k]] -= pi[i] * rows.val[k];
    Amounts amounts;
    for (int j = 0; j < m.num_cols(); ++j) amounts.add(std::fabs(rest[j] - rc[j]) * scale.col[j], j);
    return amounts;
}

Amounts complementarity_violation(const Model& m, bool) {
    const double *x = primal_values(m).doubles, *rc = reduced_costs(m).doubles, *pi = duals(m).doubles;
    const Columns& cols = m.data.cols;
    Amounts amounts;
    for (int j = 0; j < cols.size(); ++j)
        amounts.add(complementarity(m.data.sense * rc[j], x[j], cols.lb[j], cols.ub[j]), j);
    for (int i = 0; i < m.num_rows(); ++i) {
        const auto [lower, upper] = m.data.rows.sides(i);
        const double value = row_activity(m.data.rows, i, x);
        amounts.add(complementarity(m.data.sense * pi[i], value, lower, upper), m.num_cols() + i);
    }
    return amounts;
}

Amounts integrality_violation(const Model& m, bool) {
    const double* x = primal_values(m).doubles;
    Amounts amounts;
    for (int j = 0; j < m.num_cols(); ++j)
        if (is_integer_type(m.data.cols.type[j])) amounts.add(integrality_violation(x[j]), j);
    return amounts;
}

double max_violation(const Model& m) {
    double most = 0.0;
    for (Measure measure : {bound_violation, constr_violation, integrality_violation})
        most = std::max(most, measure(m, false).worst);
    if (!m.solution.rc.empty() && !m.solution.pi.empty()) most = std::max(most, dual_violation(m, false).worst);
    return most;
}

}  // namespace zelvan
