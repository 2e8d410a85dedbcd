#include "solve/polish.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "solve/certificate.h"
#include "solve/check.h"
#include "solve/convexity.h"

namespace zelvan {

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
// A system of more unknowns is not solved.
constexpr int kMostUnknowns = 500;
constexpr int kMostRounds = 20;
constexpr int kMostRefinements = 10;
// Added to the diagonal of the system, in terms of its largest entry, as it may be singular.
constexpr double kRegularization = 1e-9;
// Rounding of a sum of products, relative to their magnitudes.
constexpr double kRounding = 1e-15;
// A candidate that is better than this is good enough.
constexpr double kPrecise = 1e-12;
// Distances to sides below this, relatively, are none.
constexpr double kAtSide = 1e-10;

enum class Side { kNone, kLower, kUpper };

// The side that a value is held at. A dual value that is larger than the distance speaks for it.
Side side_of(double value, double dual, double lower, double upper) {
    if (lower == upper) return Side::kLower;
    const auto is_at = [](double side, double distance, double for_it) {
        return std::isfinite(side) && distance <= std::max(for_it, kAtSide * (1.0 + std::fabs(side)));
    };
    if (is_at(lower, value - lower, dual)) return Side::kLower;
    return is_at(upper, upper - value, -dual) ? Side::kUpper : Side::kNone;
}

// A full symmetric matrix that is positive definite in its first rows and negative definite in the others: it has a
// factorization in any order.
class QuasiDefinite {
public:
    explicit QuasiDefinite(int size) : size_(size), entries_(static_cast<std::size_t>(size) * size, 0.0) {}

    double& at(int i, int j) { return entries_[static_cast<std::size_t>(i) * size_ + j]; }  // i >= j

    void factor() {
        std::vector<double> scaled(size_);
        for (int i = 0; i < size_; ++i) {
            double diagonal = at(i, i);
            for (int j = 0; j < i; ++j) {
                double sum = at(i, j);
                for (int k = 0; k < j; ++k) sum -= scaled[k] * at(j, k);
                scaled[j] = sum;
                at(i, j) = sum / at(j, j);
                diagonal -= sum * at(i, j);
            }
            at(i, i) = diagonal;
        }
    }

    void solve(std::vector<double>& v) {
        for (int i = 0; i < size_; ++i)
            for (int j = 0; j < i; ++j) v[i] -= at(i, j) * v[j];
        for (int i = 0; i < size_; ++i) v[i] /= at(i, i);
        for (int i = size_ - 1; i >= 0; --i)
            for (int j = 0; j < i; ++j) v[j] -= at(i, j) * v[i];
    }

private:
    const int size_;
    std::vector<double> entries_;
};

// The problem on the sides that a candidate is at: free columns and rows with equality.
class Held {
public:
    Held(const Problem& problem, const Candidate& candidate)
        : problem_(problem), place_(problem.num_cols(), -1), at_col_(problem.num_cols()), at_row_(problem.num_rows()) {
        for (int j = 0; j < problem.num_cols(); ++j) {
            const double dual = problem.sense * candidate.rc[j];
            at_col_[j] = side_of(candidate.x[j], dual, problem.lb[j], problem.ub[j]);
            if (at_col_[j] != Side::kNone) continue;
            place_[j] = static_cast<int>(free_.size());
            free_.push_back(j);
        }
        for (int i = 0; i < problem.num_rows(); ++i) {
            const double dual = problem.sense * candidate.pi[i];
            at_row_[i] = side_of(candidate.activity[i], dual, problem.row_lower[i], problem.row_upper[i]);
            if (at_row_[i] != Side::kNone) tight_.push_back(i);
        }
    }

    bool is_small() const { return free_.size() + tight_.size() <= kMostUnknowns; }
    bool is_like(const Held& other) const { return at_col_ == other.at_col_ && at_row_ == other.at_row_; }

    Candidate solve(const Candidate& from) const {
        QuasiDefinite system = matrix();
        system.factor();
        std::vector<double> x = from.x, pi = from.pi;
        for (int j = 0; j < problem_.num_cols(); ++j)
            if (at_col_[j] != Side::kNone) x[j] = at_col_[j] == Side::kLower ? problem_.lb[j] : problem_.ub[j];
        for (int i = 0; i < problem_.num_rows(); ++i)
            if (at_row_[i] == Side::kNone) pi[i] = 0.0;
        Candidate best = candidate_of(problem_, x, pi);
        double least = kInf;
        for (int round = 0; round < kMostRefinements; ++round) {
            std::vector<double> step = residuals(best);
            const double size = largest_of(step);
            if (!(size < 0.5 * least) || size == 0.0) break;
            least = size;
            system.solve(step);
            for (std::size_t k = 0; k < free_.size(); ++k) x[free_[k]] += step[k];
            for (std::size_t k = 0; k < tight_.size(); ++k) pi[tight_[k]] -= problem_.sense * step[free_.size() + k];
            best = candidate_of(problem_, x, pi);
        }
        return best;
    }

private:
    static double largest_of(const std::vector<double>& values) {
        double largest = 0.0;
        for (double value : values) largest = std::max(largest, std::fabs(value));
        return largest;
    }

    QuasiDefinite matrix() const {
        const int num_free = static_cast<int>(free_.size()), size = num_free + static_cast<int>(tight_.size());
        QuasiDefinite system(size);
        double largest = 0.0;
        const auto add = [&](int i, int j, double value) {
            double& entry = system.at(std::max(i, j), std::min(i, j));
            entry += value;
            largest = std::max(largest, std::fabs(entry));
        };
        const QuadTerms& quad = problem_.quad;
        for (std::size_t k = 0; k < quad.size(); ++k) {
            const int i = place_[quad.row[k]], j = place_[quad.col[k]];
            if (i >= 0 && j >= 0) add(i, j, problem_.sense * (i == j ? 2.0 : 1.0) * quad.val[k]);
        }
        for (std::size_t t = 0; t < tight_.size(); ++t) {
            for (int k = problem_.start[tight_[t]]; k < problem_.start[tight_[t] + 1]; ++k)
                if (const int j = place_[problem_.col()[k]]; j >= 0)
                    add(num_free + static_cast<int>(t), j, problem_.val()[k]);
        }
        const double shift = kRegularization * std::max(largest, 1e-3);
        for (int i = 0; i < size; ++i) system.at(i, i) += i < num_free ? shift : -shift;
        return system;
    }

    // What the step has to make up for: derivatives of free columns, distances of tight rows to their sides.
    std::vector<double> residuals(const Candidate& candidate) const {
        std::vector<double> rest;
        for (int j : free_) rest.push_back(-problem_.sense * candidate.rc[j]);
        for (int i : tight_) {
            const double side = at_row_[i] == Side::kLower ? problem_.row_lower[i] : problem_.row_upper[i];
            rest.push_back(side - candidate.activity[i]);
        }
        return rest;
    }

    const Problem& problem_;
    std::vector<int> place_;  // of a column among the free ones, -1 for others
    std::vector<Side> at_col_, at_row_;
    std::vector<int> free_, tight_;
};

}  // namespace

double Candidate::error() const { return std::max({breach, wrong, gap, noise}); }

Candidate candidate_of(const Problem& problem, std::vector<double> x, std::vector<double> pi) {
    Candidate found{std::move(x), std::move(pi), {}, {}};
    found.rc = reduced_costs(problem, found.x, found.pi, found.activity);
    double products = 0.0, linear = 0.0, terms = 0.0;
    const auto add = [&](double dual, double value, double lower, double upper) {
        const bool is_number = std::isfinite(value) && std::isfinite(dual);
        found.breach = std::max(found.breach, is_number ? outside(value, lower, upper) : kInf);
        const double wrong = wrong_sign(dual, lower, upper);
        found.wrong = std::max(found.wrong, wrong);
        products += wrong > 0.0 ? wrong * std::fabs(value) : complementarity(dual, value, lower, upper);
    };
    for (int j = 0; j < problem.num_cols(); ++j) {
        add(problem.sense * found.rc[j], found.x[j], problem.lb[j], problem.ub[j]);
        linear += problem.cost[j] * found.x[j];
        terms += std::fabs(problem.cost[j] * found.x[j]);
    }
    for (int i = 0; i < problem.num_rows(); ++i)
        add(problem.sense * found.pi[i], found.activity[i], problem.row_lower[i], problem.row_upper[i]);
    const QuadTerms& quad = problem.quad;
    for (std::size_t k = 0; k < quad.size(); ++k)
        terms += std::fabs(quad.val[k] * found.x[quad.row[k]] * found.x[quad.col[k]]);
    const double scale = 1.0 + std::max(std::fabs(linear), std::fabs(value_of(quad, found.x.data())));
    found.gap = products / scale;
    found.noise = kRounding * terms / scale;
    return found;
}

Candidate polished(const Problem& problem, Candidate candidate) {
    std::optional<Held> before;
    Candidate best = candidate;
    for (int round = 0; round < kMostRounds && best.error() > kPrecise; ++round) {
        Held held(problem, candidate);
        if (!held.is_small() || (before && held.is_like(*before))) break;
        candidate = held.solve(candidate);
        if (!std::isfinite(candidate.error())) break;
        if (candidate.error() < best.error()) best = candidate;
        before.emplace(std::move(held));
    }
    return best;
}

}  // namespace zelvan
