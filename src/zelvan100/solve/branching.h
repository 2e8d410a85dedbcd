#pragma once
// The disjunctions of a problem: whether a point holds them, and how their alternatives divide a problem by bounds
// of columns alone.

#include <optional>
#include <utility>
#include <vector>

#include "solve/problem.h"

namespace zelvan {

// The column stays within these, besides its other bounds.
struct Narrowing {
    int col;
    double lower, upper;
};
using Narrowings = std::vector<Narrowing>;

bool holds(const Disjunctions& disjunctions, const double* x);
// Two parts of the problem that leave out x and no point that holds: those of the disjunction that x violates most, the
// one nearer to x first. None where x holds, or violates only what the bounds of the problem decide already.
std::optional<std::pair<Narrowings, Narrowings>> parts_without(const Problem& problem, const Disjunctions& disjunctions,
                                                               const std::vector<double>& x);
// For each disjunction the alternative that suits x best. Where a value of x is NaN nothing is chosen.
Narrowings nearest_alternatives(const Disjunctions& disjunctions, const std::vector<double>& x);

}  // namespace zelvan
