#include "solve/quadratic_duals.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "solve/convexity.h"

namespace zelvan {

namespace {

// Where a cone's apex is nearer to 0, its constraint has no gradient.
constexpr double kNoApex = 1e-6;
// What gradients at the point and at those where half-planes touch may differ by, in terms of the largest part of them.
constexpr double kSameGradient = 1e-4;

// Multipliers of the quadratic constraints; empty where one has none.
std::vector<double> multipliers_of(const Problem& problem, const SolverResult& result) {
    std::vector<double> pi = result.pi, found;
    problem.unscale(pi);
    for (const LiftedRow& lifted : problem.lifted_rows) {
        double value = lifted.sign * pi[lifted.row];
        if (lifted.divisor >= 0 && value != 0.0) {
            if (result.x[lifted.divisor] < kNoApex) return {};
            value /= result.x[lifted.divisor];
        }
        found.push_back(value);
    }
    return found;
}

// The gradient of the objective less that of all constraints, each times its multiplier, and for each column the
// largest part of that.
std::pair<std::vector<double>, std::vector<double>> reduced_costs(const ModelData& data, const SolverResult& result,
                                                                  const std::vector<double>& qcpi) {
    const int n = data.cols.size();
    std::vector<double> rc(n, 0.0), size(n, 1.0), part(n, 0.0);
    const auto take_part = [&](int j) {
        rc[j] += part[j];
        size[j] = std::max(size[j], std::fabs(part[j]));
        part[j] = 0.0;
    };
    const auto take_terms = [&](const QuadView& terms) {
        for (int j : terms.row) take_part(j);
        for (int j : terms.col) take_part(j);
    };
    for (int j = 0; j < n; ++j) {
        part[j] = data.cols.obj[j];
        take_part(j);
    }
    add_gradient(data.quad_obj, 1.0, result.x.data(), part.data());
    take_terms(data.quad_obj);
    const auto take_row = [&](int j, double value, double multiplier) {
        part[j] = -multiplier * value;
        take_part(j);
    };
    for (int i = 0; i < data.rows.size(); ++i)
        for (auto k = data.rows.start[i]; k < data.rows.start[i + 1]; ++k)
            take_row(data.rows.col[k], data.rows.val[k], result.pi[i]);
    const QuadRows& rows = data.qrows;
    for (int i = 0; i < rows.size(); ++i) {
        for (auto k = rows.start[i]; k < rows.start[i + 1]; ++k) take_row(rows.col[k], rows.val[k], qcpi[i]);
        const QuadView terms(rows.quad, rows.quad_start[i], rows.quad_start[i + 1]);
        add_gradient(terms, -qcpi[i], result.x.data(), part.data());
        take_terms(terms);
    }
    return {std::move(rc), std::move(size)};
}

}  // namespace

void set_quadratic_duals(const ModelData& data, const Problem& problem, SolverResult& result) {
    const std::vector<double> of_relaxation = std::exchange(result.rc, {});
    result.qcpi.clear();
    if (of_relaxation.empty() || result.pi.empty()) return;
    std::vector<double> qcpi = multipliers_of(problem, result);
    if (static_cast<int>(qcpi.size()) < data.qrows.size()) return;
    auto [rc, size] = reduced_costs(data, result, qcpi);
    for (int j = 0; j < data.cols.size(); ++j)
        if (!(std::fabs(rc[j] - of_relaxation[j]) <= kSameGradient * size[j])) return;
    result.rc = std::move(rc);
    result.qcpi = std::move(qcpi);
}

}  // namespace zelvan
