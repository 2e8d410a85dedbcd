#include "solve/local_search.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "solve/outer.h"
#include "solve/products.h"

namespace zelvan {

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr int kMostSteps = 30;
// The region of a step, in parts of the widths of the factors' bounds: the first one, and the one that ends the search.
constexpr double kFirstRegion = 1.0, kLastRegion = 1e-7;
constexpr double kShrink = 0.25, kGrow = 2.0;
// A step that gains less, relatively, is the last one.
constexpr double kLeastGain = 1e-9;

Problem::Terms tangent(const Product& product, const std::vector<double>& x) {
    const auto [w, i, j] = product;
    if (i == j) return {{w, 1.0}, {i, -2.0 * x[i]}};
    return {{w, 1.0}, {i, -x[j]}, {j, -x[i]}};
}

}  // namespace

LocalSearch::LocalSearch(const Problem& problem, Context& context)
    : products_(problem.disjunctions.products),
      whole_(problem),
      problem_(problem),
      context_(context),
      session_(std::make_unique<HighsSession>()),
      cones_(std::make_shared<ConePool>()) {
    problem_.disjunctions = {};
    std::fill(problem_.integer.begin(), problem_.integer.end(), 0);
    // The tangent of a square leaves it no room above.
    std::erase_if(problem_.cones, [&](const Cone& cone) {
        return std::any_of(products_.begin(), products_.end(),
                           [&](const Product& product) { return product.w == cone.t && product.x == product.y; });
    });
    problem_.begin_variable_rows();
    const std::vector<double> origin(problem_.cost.size(), 0.0);
    for (const Product& product : products_) problem_.add_row(tangent(product, origin), 0.0, 0.0);
    problem_.end_variable_rows();
}

LocalSearch::~LocalSearch() = default;

void LocalSearch::set_tangents(const std::vector<double>& x) {
    int i = problem_.variable_rows().first;
    for (const Product& product : products_) {
        const double side = -x[product.x] * x[product.y];
        problem_.change_row(i++, tangent(product, x), side, side);
    }
}

void LocalSearch::set_region(const std::vector<double>& x, double part) {
    for (const Product& product : products_) {
        for (int j : {product.x, product.y}) {
            if (whole_.integer[j]) continue;
            const double width = part * (whole_.ub[j] - whole_.lb[j]);
            problem_.lb[j] = std::max(whole_.lb[j], std::min(x[j] - width, whole_.ub[j]));
            problem_.ub[j] = std::min(whole_.ub[j], std::max(x[j] + width, whole_.lb[j]));
        }
    }
}

double LocalSearch::objective(const std::vector<double>& x) const {
    double sum = 0.0;
    for (std::size_t j = 0; j < x.size(); ++j) sum += whole_.cost[j] * x[j];
    return whole_.sense * sum;
}

void LocalSearch::run(std::vector<double> x, const std::function<bool(const std::vector<double>&)>& offer) {
    problem_.lb = whole_.lb;
    problem_.ub = whole_.ub;
    for (std::size_t j = 0; j < x.size(); ++j) {
        if (!whole_.integer[j]) continue;
        x[j] = std::clamp(std::round(x[j]), whole_.lb[j], whole_.ub[j]);
        problem_.lb[j] = problem_.ub[j] = x[j];
    }
    complete(whole_, products_, x);
    double best = offer(x) ? objective(x) : kInf;
    const Care care{.node = true, .simplex = true, .relaxed = true};
    double region = kFirstRegion;
    for (int step = 0; step < kMostSteps && region > kLastRegion; ++step) {
        set_tangents(x);
        set_region(x, region);
        // Other cones, other half-planes.
        std::swap(context_.cones, cones_);
        std::vector<double> next = search_with(*session_, problem_, {}, care, context_).x;
        std::swap(context_.cones, cones_);
        if (next.empty()) {
            // What the tangents of a point that doesn't hold leave may be nothing: the region isn't to blame.
            if (best == kInf) return;
            region *= kShrink;
            continue;
        }
        complete(whole_, products_, next);
        const bool holds = offer(next);
        const double value = holds ? objective(next) : kInf;
        const double gain = best - value;
        if (best == kInf || gain > 0.0) {
            x = std::move(next);
            if (best < kInf && gain <= kLeastGain * std::max(1.0, std::fabs(best))) return;
            best = std::min(best, value);
            region = std::min(region * kGrow, kFirstRegion);
        } else {
            region *= kShrink;
        }
    }
}

}  // namespace zelvan
