#include "solve/certificate.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "solve/check.h"
#include "solve/convexity.h"

namespace zelvan {

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
// Multipliers below this, relative to the largest one, and sums of products below it, relative to their
// magnitudes, may be rounding errors of the LP.
constexpr double kRelativeZero = 1e-9;
// Rounding of a sum of products, relative to its magnitude.
constexpr double kRounding = 8.0 * std::numeric_limits<double>::epsilon();
// Complementarity of an optimal LP, relative to its objective.
constexpr double kLargestGap = 1e-6;

// A sum with the rounding that it may carry.
struct Sum {
    double value = 0.0, rounding = 0.0;

    void add(double factor, double magnitude, double side) {
        if (factor == 0.0) return;
        if (std::isinf(side)) {
            value += std::copysign(kInf, factor * side);
            return;
        }
        value += factor * side;
        rounding += kRounding * magnitude * std::fabs(side);
    }
};

// By how much the smallest value of y'Ax over the column bounds exceeds its largest one over the row sides, but
// for rounding: positive when y proves that there is no x. -infinity when a row or column is unlimited there.
double proof(const Problem& problem, const std::vector<double>& y) {
    std::vector<double> combined(problem.num_cols(), 0.0), magnitude(problem.num_cols(), 0.0);
    Sum most, least;
    for (int i = 0; i < problem.num_rows(); ++i) {
        if (y[i] == 0.0) continue;
        most.add(y[i], std::fabs(y[i]), y[i] > 0.0 ? problem.row_upper[i] : problem.row_lower[i]);
        for (int k = problem.start[i]; k < problem.start[i + 1]; ++k) {
            const double term = y[i] * problem.val()[k];
            combined[problem.col()[k]] += term;
            magnitude[problem.col()[k]] += std::fabs(term);
        }
    }
    for (int j = 0; j < problem.num_cols(); ++j) {
        const double side = combined[j] > 0.0 ? problem.lb[j] : problem.ub[j];
        // What cancels out but for rounding errors doesn't count on a free side.
        if (std::isinf(side) && std::fabs(combined[j]) <= kRelativeZero * magnitude[j]) continue;
        least.add(combined[j], magnitude[j], side);
    }
    const double value = least.value - most.value;
    return value > least.rounding + most.rounding ? value : -kInf;
}

// Scaled to largest element 1, with the sign that `sense` asks for, without elements that only rounding
// made different from 0.
std::vector<double> scaled(std::vector<double> ray, double sign) {
    double largest = 0.0;
    for (double value : ray) largest = std::max(largest, std::fabs(value));
    if (largest == 0.0) return {};
    for (double& value : ray) {
        value *= sign / largest;
        if (std::fabs(value) < kRelativeZero) value = 0.0;
    }
    return ray;
}

// The model of one more column for each finite side, which takes up what violates the row there.
ModelData elastic_model(const Problem& problem) {
    ModelData model;
    for (int j = 0; j < problem.num_cols(); ++j) model.cols.push_back(problem.lb[j], problem.ub[j], 0.0, 'C', {});
    for (int i = 0; i < problem.num_rows(); ++i) {
        const auto begin = problem.start[i], end = problem.start[i + 1];
        model.rows.col.insert(model.rows.col.end(), problem.col() + begin, problem.col() + end);
        model.rows.val.insert(model.rows.val.end(), problem.val() + begin, problem.val() + end);
        for (double sign : {1.0, -1.0}) {
            if (std::isinf(sign > 0.0 ? problem.row_lower[i] : problem.row_upper[i])) continue;
            model.rows.col.push_back(model.cols.size());
            model.rows.val.push_back(sign);
            model.cols.push_back(0.0, kInf, 1.0, 'C', {});
        }
        model.rows.push_back_range(problem.row_lower[i], problem.row_upper[i], {});
    }
    return model;
}

// Subtracts the row, times its dual value, from `rest`. The answer is its activity, in two sums, as each addition has
// to wait for the one before.
double take_off(const Problem& problem, int i, double dual, const double* x, double* rest) {
    const int* const col = problem.col();
    const double* const val = problem.val();
    const int end = problem.start[i + 1];
    double sums[2] = {};
    int k = problem.start[i];
    const auto take = [&](int entry, double& sum) {
        sum += val[entry] * x[col[entry]];
        if (dual != 0.0) rest[col[entry]] -= dual * val[entry];
    };
    for (; k + 2 <= end; k += 2) {
        take(k, sums[0]);
        take(k + 1, sums[1]);
    }
    if (k < end) take(k, sums[0]);
    return sums[0] + sums[1];
}

}  // namespace

std::optional<Farkas> farkas_from(const Problem& problem, std::vector<double> ray) {
    if (static_cast<int>(ray.size()) != problem.num_rows()) return std::nullopt;
    for (double sign : {1.0, -1.0}) {
        std::vector<double> y = scaled(ray, sign);
        if (y.empty()) return std::nullopt;
        const double value = proof(problem, y);
        if (value > 0.0) return Farkas{std::move(y), value};
    }
    return std::nullopt;
}

bool has_crossed_bounds(const Problem& problem) {
    for (int j = 0; j < problem.num_cols(); ++j)
        if (problem.lb[j] > problem.ub[j]) return true;
    return false;
}

std::optional<Farkas> farkas_of_one_row(const Problem& problem) {
    for (int i = 0; i < problem.num_rows(); ++i) {
        Sum least, most;
        for (int k = problem.start[i]; k < problem.start[i + 1]; ++k) {
            const double coeff = problem.val()[k], lower = problem.lb[problem.col()[k]];
            const double upper = problem.ub[problem.col()[k]];
            least.add(coeff, std::fabs(coeff), coeff > 0.0 ? lower : upper);
            most.add(coeff, std::fabs(coeff), coeff > 0.0 ? upper : lower);
        }
        const double above = least.value - problem.row_upper[i], below = problem.row_lower[i] - most.value;
        if (!(above > least.rounding) && !(below > most.rounding)) continue;
        std::vector<double> unit(problem.num_rows(), 0.0);
        unit[i] = 1.0;
        return farkas_from(problem, std::move(unit));
    }
    return std::nullopt;
}

Elastic solve_elastic(const Problem& problem, Context& context) {
    const ModelData model = elastic_model(problem);
    Care care;
    care.simplex = true;
    SolverResult result = search_aside(Problem(model), {}, care, context);
    Elastic elastic;
    elastic.farkas = farkas_from(problem, std::move(result.pi));
    elastic.x = std::move(result.x);
    if (!elastic.x.empty()) elastic.x.resize(problem.num_cols());
    return elastic;
}

std::vector<double> reduced_costs(const Problem& problem, const std::vector<double>& x, const std::vector<double>& pi,
                                  std::vector<double>& activity) {
    std::vector<double> rest = problem.cost;
    add_gradient(problem.quad, 1.0, x.data(), rest.data());
    activity.resize(problem.num_rows());
    for (int i = 0; i < problem.num_rows(); ++i) activity[i] = take_off(problem, i, pi[i], x.data(), rest.data());
    return rest;
}

bool is_proven_optimal(const Problem& problem, const SolverResult& result, double tolerance,
                       std::vector<double>* activity) {
    if (result.x.empty() || result.rc.empty()) return false;
    // Of both sides that which the sign speaks for has the larger product, infinite where there is no such side.
    // Without branches, as the signs follow no pattern.
    const auto gap_of = [tolerance](double dual, double value, double lower, double upper) {
        const double gap = std::fabs(std::max(dual * (value - lower), dual * (value - upper)));
        return std::fabs(dual) <= tolerance ? 0.0 : gap;
    };
    std::vector<double> rest = problem.cost;
    if (activity) activity->resize(problem.num_rows());
    double gap = 0.0;
    for (int i = 0; i < problem.num_rows(); ++i) {
        const double value = take_off(problem, i, result.pi[i], result.x.data(), rest.data());
        if (activity) (*activity)[i] = value;
        gap += gap_of(problem.sense * result.pi[i], value, problem.row_lower[i], problem.row_upper[i]);
    }
    double gaps[4] = {};  // in several sums, as each addition has to wait for the one before
    for (int j = 0; j < problem.num_cols(); ++j)
        gaps[j % 4] += gap_of(problem.sense * rest[j], result.x[j], problem.lb[j], problem.ub[j]);
    gap += (gaps[0] + gaps[1]) + (gaps[2] + gaps[3]);
    if (gap <= kLargestGap) return true;
    double scale = 1.0;
    for (int j = 0; j < problem.num_cols(); ++j) scale += std::fabs(problem.cost[j] * result.x[j]);
    return gap <= kLargestGap * scale;
}

void store_certificate(const ModelData& data, std::vector<double> farkas, std::vector<double> ray, Solution& solution) {
    if (solution.status == ZVN_UNBOUNDED) {
        ray.resize(data.cols.size());
        solution.ray = std::move(ray);
    } else if (solution.status == ZVN_INFEASIBLE) {
        const Problem problem(data);
        const auto smaller = [](double a, double b) { return std::fabs(a) < std::fabs(b); };
        farkas.resize(data.rows.size());
        std::optional<Farkas> found = farkas_from(problem, std::move(farkas));
        if (!found) found = farkas_of_one_row(problem);
        if (!found) return;
        problem.unscale(found->y);
        const double largest = std::fabs(*std::max_element(found->y.begin(), found->y.end(), smaller));
        for (double& value : found->y) value /= largest;
        solution.farkas = std::move(found->y);
        solution.farkas_proof = found->value / largest;
    }
}

}  // namespace zelvan
