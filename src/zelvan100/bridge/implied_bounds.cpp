#include "bridge/implied_bounds.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zelvan {

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr int kPasses = 4;

// A sum of which some terms may be infinite, all of one sign.
struct Sum {
    double finite = 0.0;
    int infinite = 0;

    void add(double value) {
        if (std::isinf(value))
            ++infinite;
        else
            finite += value;
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
        bool changed = false;
        for (int k = problem_.start[i]; k < problem_.start[i + 1]; ++k) {
            const double coeff = problem_.val()[k];
            if (coeff == 0.0) continue;
            const double largest = (problem_.row_upper[i] - low.without(least(k), -kInf)) / coeff;
            const double smallest = (problem_.row_lower[i] - high.without(most(k), kInf)) / coeff;
            changed |= tighten(problem_.col()[k], coeff > 0.0 ? smallest : largest, coeff > 0.0 ? largest : smallest);
        }
        return changed;
    }

    // Only infinite bounds are replaced: finite ones serve as they are, and tiny steps could go on for ever.
    bool tighten(int j, double lower, double upper) {
        const bool new_lower = std::isinf(bounds_.lb[j]) && std::isfinite(lower);
        const bool new_upper = std::isinf(bounds_.ub[j]) && std::isfinite(upper);
        if (new_lower) bounds_.lb[j] = lower;
        if (new_upper) bounds_.ub[j] = upper;
        return new_lower || new_upper;
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
