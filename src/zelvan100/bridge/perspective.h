#pragma once
// Squares of columns that a binary switches off.
//
// Reformulation
//   Q - D and D convex, D diagonal     x'Q x  becomes  x'(Q - D) x + sum D_j t_j,  t_j b_j >= x_j^2
//
// The cone says more of what is between 0 and 1 than t_j >= x_j^2 does: t_j of a switch half on is twice as large
// (Frangioni and Gentile 2006).
//
// Takes
//   convex forms of up to 500 columns, of which some are 0 where a binary is, by rows of the two

#include <unordered_map>
#include <utility>
#include <vector>

#include "core/quad.h"
#include "solve/problem.h"

namespace zelvan {

// The binary of each column that has one.
using Switches = std::unordered_map<int, int>;

Switches switches_of(const Problem& problem);
// Takes as much as can be found out of the diagonal of the columns that have a switch: the columns, with what was
// taken. Nothing where the form isn't convex.
std::vector<std::pair<int, double>> take_diagonal(QuadTerms& terms, const Switches& switches);

}  // namespace zelvan
