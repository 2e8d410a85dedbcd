#include "solve/kappa.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "solve/highs.h"
#include "solve/store.h"

namespace zelvan {

namespace {

using Vector = std::vector<double>;

double norm(const Vector& x) {
    double sum = 0.0;
    for (double value : x) sum += std::fabs(value);
    return sum;
}

// The largest column sum of the basis matrix.
double basis_norm(const ModelData& data, const Solution& solution) {
    Vector sums(data.cols.size(), 0.0);
    for (std::size_t k = 0; k < data.rows.col.size(); ++k) sums[data.rows.col[k]] += std::fabs(data.rows.val[k]);
    double largest = std::count(solution.cbasis.begin(), solution.cbasis.end(), ZVN_BASIC) ? 1.0 : 0.0;
    for (int j = 0; j < data.cols.size(); ++j)
        if (solution.vbasis[j] == ZVN_BASIC) largest = std::max(largest, sums[j]);
    return largest;
}

std::optional<double> exact_inverse_norm(HighsSession& session, int n) {
    double largest = 0.0;
    for (int i = 0; i < n; ++i) {
        Vector x(n, 0.0);
        x[i] = 1.0;
        if (!session.solve_basis(false, x)) return {};
        largest = std::max(largest, norm(x));
    }
    return largest;
}

// A vector that alternates in sign and grows catches what the ascent misses.
std::optional<double> alternating_bound(HighsSession& session, int n) {
    Vector x(n);
    for (int i = 0; i < n; ++i) x[i] = (i % 2 ? -1.0 : 1.0) * (1.0 + (n > 1 ? static_cast<double>(i) / (n - 1) : 0.0));
    if (!session.solve_basis(false, x)) return {};
    return 2.0 * norm(x) / (3.0 * n);
}

// Ascent from unit vector to unit vector (Hager 1984, Higham 1988).
std::optional<double> estimated_inverse_norm(HighsSession& session, int n) {
    constexpr int kSteps = 5;
    Vector x(n, 1.0 / n);
    double estimate = 0.0;
    for (int step = 0; step < kSteps; ++step) {
        if (!session.solve_basis(false, x)) return {};
        const double reached = norm(x);
        if (step > 0 && reached <= estimate) break;
        estimate = reached;
        for (double& value : x) value = value < 0.0 ? -1.0 : 1.0;
        if (!session.solve_basis(true, x)) return {};
        const auto larger = [](double a, double b) { return std::fabs(a) < std::fabs(b); };
        const auto steepest = std::max_element(x.begin(), x.end(), larger) - x.begin();
        x.assign(n, 0.0);
        x[steepest] = 1.0;
    }
    const auto other = alternating_bound(session, n);
    if (!other) return {};
    return std::max(estimate, *other);
}

Basis basis_of(const Model& model) {
    Basis basis{model.solution.vbasis, model.solution.cbasis};
    for (int i = 0; i < model.num_rows(); ++i) basis.rows[i] = side_status(basis.rows[i], model.data.rows.sense[i]);
    return basis;
}

}  // namespace

bool has_basis(const Model& model) {
    return model.num_rows() > 0 && !model.solution.vbasis.empty() && !model.solution.cbasis.empty();
}

// A session of its own: the model's goes on from where its solve left it.
double basis_condition(const Model& model, bool exact) {
    if (!has_basis(model)) return kUndefined;
    HighsSession session;
    session.load(Problem(model.data));
    if (!session.set_basis(basis_of(model))) return kUndefined;
    const int n = model.num_rows();
    const auto inverse = exact ? exact_inverse_norm(session, n) : estimated_inverse_norm(session, n);
    return inverse ? basis_norm(model.data, model.solution) * *inverse : kUndefined;
}

}  // namespace zelvan
