#include "solve/branching.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "solve/products.h"

namespace zelvan {

namespace {

// What counts as 0: at most any tolerance of a user.
constexpr double kZero = 1e-9;

double distance_to_interval(const Gap& gap, double value) {
    return std::max({gap.lower - value, value - gap.upper, 0.0});
}

bool is_near_zero(const Gap& gap, double value) { return std::fabs(value) < distance_to_interval(gap, value); }

// In parts of the width of the gap, at most 1/2.
double violation(const Gap& gap, double value) {
    const double off = std::min(std::fabs(value), distance_to_interval(gap, value));
    return off <= kZero ? 0.0 : off / std::max(std::fabs(value), std::min(std::fabs(gap.lower), std::fabs(gap.upper)));
}

// Whether the bounds leave more of the hull than one of the two alternatives.
bool is_open(const Gap& gap, const Problem& problem) {
    const double lower = problem.lb[gap.col], upper = problem.ub[gap.col];
    return lower <= 0.0 && upper >= 0.0 && (gap.lower > 0.0 ? upper > 0.0 : lower < 0.0);
}

// The members of a set at a point.
class Members {
public:
    Members(const OrderedSet& set, const double* x) : type_(set.type) {
        for (int j : set.cols) sizes_.push_back(std::fabs(x[j]));
    }

    // First and last position of those that are other than 0.
    int first() const {
        return static_cast<int>(std::find_if(sizes_.begin(), sizes_.end(), is_other) - sizes_.begin());
    }
    int last() const {
        return num() - 1 - static_cast<int>(std::find_if(sizes_.rbegin(), sizes_.rend(), is_other) - sizes_.rbegin());
    }
    bool hold() const { return last() - first() < type_; }
    // Where those that may stay other than 0 are largest together.
    int window() const {
        int best = 0;
        for (int m = 1; m + type_ <= num(); ++m)
            if (sum(m, m + type_) > sum(best, best + type_)) best = m;
        return best;
    }
    // The part of them that would have to be 0: never lost in rounding, however large the others are.
    double violation() const {
        if (hold()) return 0.0;
        const double others = sum(0, window()) + sum(window() + type_, num());
        return others / sum(0, num());
    }
    int centre() const {
        double moment = 0.0;
        for (int m = 0; m < num(); ++m) moment += m * sizes_[m];
        return static_cast<int>(moment / sum(0, num()));
    }
    int num() const { return static_cast<int>(sizes_.size()); }
    double sum(int begin, int end) const { return std::accumulate(sizes_.begin() + begin, sizes_.begin() + end, 0.0); }

private:
    static bool is_other(double size) { return size > kZero; }

    const int type_;
    std::vector<double> sizes_;
};

void fix_at_zero(const OrderedSet& set, int begin, int end, Narrowings& narrowings) {
    for (int m = begin; m < end; ++m) narrowings.push_back({set.cols[m], 0.0, 0.0});
}

// The member in the middle keeps its freedom on both sides where two neighbours may be other than 0.
std::pair<Narrowings, Narrowings> parts_of(const OrderedSet& set, const Members& members) {
    const int middle = std::clamp(members.centre(), members.first() + set.type - 1, members.last() - 1);
    std::pair<Narrowings, Narrowings> parts;
    fix_at_zero(set, middle + 1, members.num(), parts.first);
    fix_at_zero(set, 0, middle + 2 - set.type, parts.second);
    if (members.sum(0, middle) < members.sum(middle + 1, members.num())) std::swap(parts.first, parts.second);
    return parts;
}

}  // namespace

bool holds(const Disjunctions& disjunctions, const double* x) {
    return std::all_of(disjunctions.gaps.begin(), disjunctions.gaps.end(),
                       [x](const Gap& gap) { return violation(gap, x[gap.col]) == 0.0; }) &&
           std::all_of(disjunctions.sets.begin(), disjunctions.sets.end(),
                       [x](const OrderedSet& set) { return Members(set, x).hold(); });
}

std::optional<std::pair<Narrowings, Narrowings>> parts_without(const Problem& problem, const Disjunctions& disjunctions,
                                                               const std::vector<double>& x) {
    double worst = 0.0;
    std::optional<std::pair<Narrowings, Narrowings>> parts;
    for (const Gap& gap : disjunctions.gaps) {
        const double off = violation(gap, x[gap.col]);
        if (off <= worst || !is_open(gap, problem)) continue;
        worst = off;
        parts = {{{gap.col, 0.0, 0.0}}, {{gap.col, gap.lower, gap.upper}}};
        if (!is_near_zero(gap, x[gap.col])) std::swap(parts->first, parts->second);
    }
    for (const OrderedSet& set : disjunctions.sets) {
        const Members members(set, x.data());
        const double off = members.violation();
        if (off <= worst) continue;
        worst = off;
        parts = parts_of(set, members);
    }
    return parts ? parts : parts_by_products(problem, disjunctions.products, x);
}

Narrowings nearest_alternatives(const Disjunctions& disjunctions, const std::vector<double>& x) {
    Narrowings chosen;
    for (const Gap& gap : disjunctions.gaps) {
        const double value = x[gap.col];
        if (std::isnan(value)) continue;
        if (is_near_zero(gap, value))
            chosen.push_back({gap.col, 0.0, 0.0});
        else
            chosen.push_back({gap.col, gap.lower, gap.upper});
    }
    for (const OrderedSet& set : disjunctions.sets) {
        if (std::any_of(set.cols.begin(), set.cols.end(), [&](int j) { return std::isnan(x[j]); })) continue;
        const Members members(set, x.data());
        const int begin = members.window();
        fix_at_zero(set, 0, begin, chosen);
        fix_at_zero(set, begin + set.type, members.num(), chosen);
    }
    return chosen;
}

}  // namespace zelvan
