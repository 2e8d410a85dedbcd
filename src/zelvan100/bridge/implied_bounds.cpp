#include "bridge/implied_bounds.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zelvan {

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr int kPasses = 6;
// What rounding may take from an implied bound, relative to the terms that it was computed from; less than kNoticed
// is left alone, so that round data give round bounds.
constexpr double kRounding = 1e-14;
constexpr double kNoticed = 1e-9;
constexpr double kNearlyInteger = 1e-6;
// A finite bound is replaced when that takes away at least this part of it: steps that get ever smaller could go on
// for ever.
constexpr double kWorthwhile = 0.01;

// A sum of which some terms may be infinite, all of one sign.
struct Sum {
    double finite = 0.0, magnitude = 0.0;
    int infinite = 0;

    void add(double value) {
        if (std::isinf(value)) {
            ++infinite;
        } else {
            finite += value;
            magnitude += std::abs(value);
        }
    }
    // Without one of its terms; infinity is the value of an infinite sum.
    double without(double value, double infinity) const {
        const int others = infinite - std::isinf(value);
        return others ? infinity : finite - (std::isinf(value) ? 0.0 : value);
    }
};

class Tightener {
public:
    explicit Tightener(const Problem& problem) : problem_(problem), bounds_{problem.lb, problem.ub} {}

    bool pass() {
        bool changed = false;
        for (int i = 0; i < problem_.num_rows(); ++i) changed |= tighten_row(i);
        return changed;
    }
    ColumnBounds take() { return std::move(bounds_); }

private:
    double least(int k) const { return term(k, problem_.val()[k] > 0.0 ? bounds_.lb : bounds_.ub); }
    double most(int k) const { return term(k, problem_.val()[k] > 0.0 ? bounds_.ub : bounds_.lb); }
    double term(int k, const std::vector<double>& side) const {
        return problem_.val()[k] == 0.0 ? 0.0 : problem_.val()[k] * side[problem_.col()[k]];
    }

    bool tighten_row(int i) {
        Sum low, high;
        for (int k = problem_.start[i]; k < problem_.start[i + 1]; ++k) {
            low.add(least(k));
            high.add(most(k));
        }
        const double upper = problem_.row_upper[i], lower = problem_.row_lower[i];
        if ((std::isinf(upper) || low.infinite > 1) && (std::isinf(lower) || high.infinite > 1)) return false;
        bool changed = false;
        for (int k = problem_.start[i]; k < problem_.start[i + 1]; ++k) {
            const double coeff = problem_.val()[k];
            if (coeff == 0.0) continue;
            const int j = problem_.col()[k];
            const double largest = loosened(upper, low, low.without(least(k), -kInf), 1.0) / coeff;
            const double smallest = loosened(lower, high, high.without(most(k), kInf), -1.0) / coeff;
            changed |= tighten(j, coeff > 0.0 ? smallest : largest, coeff > 0.0 ? largest : smallest);
        }
        return changed;
    }

    // What a side leaves for a term, moved outward by what rounding may have taken.
    static double loosened(double side, const Sum& sum, double others, double outward) {
        const double left = side - others;
        const double rounding = kRounding * (std::abs(side) + sum.magnitude);
        return std::isinf(left) || rounding < kNoticed ? left : left + outward * rounding;
    }

    bool tighten(int j, double lower, double upper) {
        if (problem_.integer[j]) {
            lower = std::ceil(lower - kNearlyInteger);
            upper = std::floor(upper + kNearlyInteger);
        }
        const bool new_lower = is_better(lower - bounds_.lb[j], lower, bounds_.lb[j]);
        const bool new_upper = is_better(bounds_.ub[j] - upper, upper, bounds_.ub[j]);
        if (new_lower) bounds_.lb[j] = lower;
        if (new_upper) bounds_.ub[j] = upper;
        return new_lower || new_upper;
    }

    static bool is_better(double gain, double implied, double present) {
        if (!std::isfinite(implied)) return false;
        return std::isinf(present) || gain > kWorthwhile * std::abs(present);
    }

    const Problem& problem_;
    ColumnBounds bounds_;
};

}  // namespace

ColumnBounds implied_bounds(const Problem& problem) {
    Tightener tightener(problem);
    for (int pass = 0; pass < kPasses && tightener.pass();) ++pass;
    return tightener.take();
}

}  // namespace zelvan
