#include "solve/products.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

#include "bridge/implied_bounds.h"
#include "solve/cones.h"

namespace zelvan {

namespace {

// Products that differ by less, relatively, aren't divided for.
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kSameProduct = 1e-10;
// Columns this narrow, relatively, aren't divided.
constexpr double kNarrow = 1e-9;
// A part has at least this share of a column's width.
constexpr double kLeastShare = 0.1;
// How much the middle counts against the point where a column is divided.
constexpr double kShareOfMiddle = 0.25;

struct Row {
    Problem::Terms terms;
    double lower, upper;
};

// Calls `take` with each row of the hull.
template <class Take>
void for_each_row(const Product& product, const Problem& problem, Take take) {
    const auto [w, x, y] = product;
    const double a = problem.lb[x], b = problem.ub[x], c = problem.lb[y], d = problem.ub[y];
    if (x == y) {
        take(Row{{{w, 1.0}, {x, -(a + b)}}, -kInf, -a * b});
        return;
    }
    take(Row{{{w, 1.0}, {x, -c}, {y, -a}}, -a * c, kInf});
    take(Row{{{w, 1.0}, {x, -d}, {y, -b}}, -b * d, kInf});
    take(Row{{{w, 1.0}, {x, -d}, {y, -a}}, -kInf, -a * d});
    take(Row{{{w, 1.0}, {x, -c}, {y, -b}}, -kInf, -b * c});
}

std::pair<double, double> range_of(const Product& product, const Problem& problem) {
    const auto [w, x, y] = product;
    const double a = problem.lb[x], b = problem.ub[x], c = problem.lb[y], d = problem.ub[y];
    const auto [least, most] = std::minmax({a * c, a * d, b * c, b * d});
    return {x == y && a <= 0.0 && b >= 0.0 ? 0.0 : least, most};
}

bool narrow(Problem& problem, int j, double lower, double upper) {
    const double size = kNarrow * std::max({1.0, std::fabs(problem.lb[j]), std::fabs(problem.ub[j])});
    if (problem.integer[j]) {
        lower = std::ceil(lower - size);
        upper = std::floor(upper + size);
    }
    problem.lb[j] = std::max(problem.lb[j], lower);
    problem.ub[j] = std::min(problem.ub[j], upper);
    if (problem.lb[j] <= problem.ub[j]) return true;
    if (problem.lb[j] > problem.ub[j] + size) return false;
    std::swap(problem.lb[j], problem.ub[j]);
    return true;
}

}  // namespace

void add_hulls(const std::vector<Product>& products, Problem& problem) {
    problem.begin_variable_rows();
    for (const Product& product : products)
        for_each_row(product, problem, [&](const Row& row) { problem.add_row(row.terms, row.lower, row.upper); });
    problem.end_variable_rows();
}

void update_hulls(const std::vector<Product>& products, Problem& problem) {
    int i = problem.variable_rows().first;
    for (const Product& product : products)
        for_each_row(product, problem,
                     [&](const Row& row) { problem.change_row(i++, row.terms, row.lower, row.upper); });
}

bool tighten_bounds(const std::vector<Product>& products, Problem& problem) {
    for (const Product& product : products) {
        const auto [least, most] = range_of(product, problem);
        if (!narrow(problem, product.w, least, most)) return false;
    }
    const ColumnBounds bounds = implied_bounds(problem);
    for (const Product& product : products)
        for (int j : {product.w, product.x, product.y})
            if (!narrow(problem, j, bounds.lb[j], bounds.ub[j])) return false;
    return true;
}

void complete(const Problem& problem, const std::vector<Product>& products, std::vector<double>& x) {
    for (const Product& product : products) x[product.w] = x[product.x] * x[product.y];
    for (const Cone& cone : problem.cones) x[cone.t] = std::max(x[cone.t], least_t(cone, x.data()));
}

std::optional<std::pair<Narrowings, Narrowings>> parts_by_products(const Problem& problem,
                                                                   const std::vector<Product>& products,
                                                                   const std::vector<double>& x) {
    std::map<int, double> scores;
    const auto is_narrow = [&](int j) {
        return problem.ub[j] - problem.lb[j] <=
               kNarrow * std::max({1.0, std::fabs(problem.lb[j]), std::fabs(problem.ub[j])});
    };
    for (const Product& product : products) {
        const double value = x[product.x] * x[product.y], off = std::fabs(x[product.w] - value);
        if (off <= kSameProduct * std::max(1.0, std::fabs(value))) continue;
        for (int j : {product.x, product.y}) {
            if (is_narrow(j)) continue;
            const double within = std::min(x[j] - problem.lb[j], problem.ub[j] - x[j]);
            scores[j] += off * (0.1 + std::max(0.0, within / (problem.ub[j] - problem.lb[j])));
        }
    }
    if (scores.empty()) return std::nullopt;
    const int j = std::max_element(scores.begin(), scores.end(), [](const auto& left, const auto& right) {
                      return left.second < right.second;
                  })->first;
    const double lower = problem.lb[j], upper = problem.ub[j], width = upper - lower;
    double at = kShareOfMiddle * (lower + upper) / 2 + (1.0 - kShareOfMiddle) * x[j];
    at = std::clamp(at, lower + kLeastShare * width, upper - kLeastShare * width);
    if (problem.integer[j]) at = std::clamp(std::floor(at), lower, upper - 1.0);
    std::pair<Narrowings, Narrowings> parts{{{j, lower, at}}, {{j, problem.integer[j] ? at + 1.0 : at, upper}}};
    if (x[j] > at) std::swap(parts.first, parts.second);
    return parts;
}

}  // namespace zelvan
