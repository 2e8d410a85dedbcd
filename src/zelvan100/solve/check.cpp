#include "solve/check.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

#include "bridge/pwl_objective.h"
#include "solve/convexity.h"

namespace zelvan {

namespace {

// Rounding of a sum of products, relative to the sum of their magnitudes: the values of x are rounded themselves,
// so are the products and the partial sums.
constexpr double kRounding = 8.0 * std::numeric_limits<double>::epsilon();

// The largest of some breaches. Everything is compared so that NaN is a breach.
class Worst {
public:
    void add(Kind kind, int index, double amount, double tolerance, double rounding, bool of_integrality = false) {
        if (amount <= tolerance) return;
        if (amount <= tolerance + kRounding * rounding) return;
        const double ratio = std::isnan(amount) ? std::numeric_limits<double>::infinity() : amount / tolerance;
        if (breach_ && ratio <= ratio_) return;
        ratio_ = ratio;
        breach_ = {kind, index, of_integrality, amount, tolerance};
    }
    const std::optional<Breach>& breach() const { return breach_; }

private:
    std::optional<Breach> breach_;
    double ratio_ = 0.0;
};

double magnitude(const SparseRows& rows, int i, const double* x) {
    double sum = 0.0;
    for (std::int64_t k = rows.start[i]; k < rows.start[i + 1]; ++k) sum += std::fabs(rows.val[k] * x[rows.col[k]]);
    return sum;
}

// Whether all columns are continuous ones within their bounds. Counted without branches, as it is asked of every point.
bool are_within_bounds(const Columns& cols, const double* x) {
    const auto num = static_cast<std::ptrdiff_t>(cols.size());
    if (std::count(cols.type.begin(), cols.type.end(), 'C') != num) return false;
    const double *lb = cols.lb.data(), *ub = cols.ub.data();
    std::ptrdiff_t within = 0;
    for (std::ptrdiff_t j = 0; j < num; ++j) within += (x[j] >= lb[j]) & (x[j] <= ub[j]);
    return within == num;
}

void check_columns(const Columns& cols, const double* x, const Tolerances& tolerances, Worst& worst) {
    if (are_within_bounds(cols, x)) return;
    for (int j = 0; j < cols.size(); ++j) {
        worst.add(Kind::kColumn, j, bound_violation(cols, j, x[j]), tolerances.feasibility, std::fabs(x[j]));
        if (is_integer_type(cols.type[j]))
            worst.add(Kind::kColumn, j, integrality_violation(x[j]), tolerances.integrality, 0.0, true);
    }
}

void check_rows(const Rows& rows, const double* x, std::span<const double> activity, const Tolerances& tolerances,
                Worst& worst) {
    for (int i = 0; i < rows.size(); ++i) {
        const auto [lower, upper] = rows.sides(i);
        const double amount = outside(activity[i], lower, upper);
        if (amount <= tolerances.feasibility) continue;
        worst.add(Kind::kRow, i, amount, tolerances.feasibility, magnitude(rows, i, x));
    }
}

void check_quad_rows(const QuadRows& rows, const double* x, const Tolerances& tolerances, Worst& worst) {
    for (int i = 0; i < rows.size(); ++i) {
        const auto [lower, upper] = sides_of(rows.sense[i], rows.rhs[i]);
        const double amount = outside(quad_activity(rows, i, x), lower, upper);
        if (amount <= tolerances.feasibility) continue;
        double size = magnitude(rows, i, x);
        for (std::int64_t k = rows.quad_start[i]; k < rows.quad_start[i + 1]; ++k)
            size += std::fabs(rows.quad.val[k] * x[rows.quad.row[k]] * x[rows.quad.col[k]]);
        worst.add(Kind::kQuadRow, i, amount, tolerances.feasibility, size);
    }
}

// In four sums, as each addition has to wait for the one before.
double dot(const std::vector<double>& a, const double* x) {
    double sums[4] = {};
    std::size_t j = 0;
    for (; j + 4 <= a.size(); j += 4)
        for (std::size_t k = 0; k < 4; ++k) sums[k] += a[j + k] * x[j + k];
    for (; j < a.size(); ++j) sums[0] += a[j] * x[j];
    return (sums[0] + sums[1]) + (sums[2] + sums[3]);
}

}  // namespace

double row_activity(const SparseRows& rows, int i, const double* x) {
    // In two sums, as each addition has to wait for the one before.
    double sums[2] = {};
    std::int64_t k = rows.start[i];
    const std::int64_t end = rows.start[i + 1];
    for (; k + 2 <= end; k += 2)
        for (std::int64_t part = 0; part < 2; ++part) sums[part] += rows.val[k + part] * x[rows.col[k + part]];
    if (k < end) sums[0] += rows.val[k] * x[rows.col[k]];
    return sums[0] + sums[1];
}

std::vector<double> row_activities(const SparseRows& rows, const double* x) {
    std::vector<double> activities(rows.start.size() - 1);
    for (std::size_t i = 0; i < activities.size(); ++i) activities[i] = row_activity(rows, static_cast<int>(i), x);
    return activities;
}

double quad_activity(const QuadRows& rows, int i, const double* x) {
    return row_activity(rows, i, x) + value_of(QuadView(rows.quad, rows.quad_start[i], rows.quad_start[i + 1]), x);
}

double outside(double value, double lower, double upper) {
    const double off = std::max(lower - value, value - upper);
    return off <= 0.0 ? 0.0 : off;
}

double bound_violation(const Columns& cols, int j, double value) {
    double lower = cols.lb[j], upper = cols.ub[j];
    const char type = cols.type[j];
    if (type == 'B') {
        lower = std::max(lower, 0.0);
        upper = std::min(upper, 1.0);
    }
    const double off = outside(value, lower, upper);
    return type == 'S' || type == 'N' ? std::min(off, std::fabs(value)) : off;
}

bool is_integer_type(char type) { return type == 'B' || type == 'I' || type == 'N'; }

double integrality_violation(double value) { return std::fabs(value - std::round(value)); }

double sos_violation(const SosSets& sets, int k, const double* x) {
    const auto begin = static_cast<std::size_t>(sets.start[k]), end = static_cast<std::size_t>(sets.start[k + 1]);
    std::vector<std::pair<double, double>> members;  // weight, size
    for (std::size_t m = begin; m < end; ++m) members.emplace_back(sets.val[m], std::fabs(x[sets.col[m]]));
    std::stable_sort(members.begin(), members.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    // The largest members behind each one; those in front of the window are kept while it moves on.
    const std::size_t size = members.size(), window = static_cast<std::size_t>(sets.type[k]);
    std::vector<double> behind(size + 1, 0.0);
    for (std::size_t m = size; m-- > 0;) behind[m] = std::max(behind[m + 1], members[m].second);
    double front = 0.0, least = behind[0];
    for (std::size_t m = 0; m < size; ++m) {
        least = std::min(least, std::max(front, behind[std::min(size, m + window)]));
        front = std::max(front, members[m].second);
    }
    return least;
}

double main_objective(const ModelData& data, const double* x) {
    double value = data.obj_constant + dot(data.cols.obj, x) + value_of(data.quad_obj, x);
    const bool reversed = !data.objectives.empty() && data.objectives[0].weight < 0.0;
    const double direction = reversed ? -data.sense : data.sense;
    for (const auto& [j, points] : data.pwl_obj) value += pwl_value(points, x[j], direction);
    return value;
}

std::optional<Breach> find_breach(const ModelData& data, std::span<const double> x, std::span<const double> activity,
                                  const Tolerances& tolerances) {
    Worst worst;
    check_columns(data.cols, x.data(), tolerances, worst);
    check_rows(data.rows, x.data(), activity, tolerances, worst);
    check_quad_rows(data.qrows, x.data(), tolerances, worst);
    for (int k = 0; k < data.sos.size(); ++k)
        worst.add(Kind::kSos, k, sos_violation(data.sos, k, x.data()), tolerances.integrality, 0.0);
    return worst.breach();
}

std::string text_of(const ModelData& data, const Breach& breach) {
    const std::string name = data.name_of(breach.kind, breach.index);
    char amount[64];
    std::snprintf(amount, sizeof amount, "%.3g, where %.3g is allowed", breach.amount, breach.tolerance);
    const char* what = breach.kind != Kind::kColumn ? "" : breach.of_integrality ? "integrality of " : "bounds of ";
    return what + std::string(spec_of(breach.kind).singular) + " '" + name + "' by " + amount;
}

}  // namespace zelvan
