#pragma once
// Piecewise-linear objective terms to columns, and binaries where they are needed.
//
// Reformulation of f(x), minimized, through the points (x1, y1), (x2, y2), ...
//   f is cut into its longest convex pieces. Piece p begins at (b, f(b)) and has segments of length w_k and
//   slope s_k, with columns 0 <= d_k <= w_k.
//   one piece:     x = b + sum d_k,                        f(x) = f(b) + sum s_k d_k
//   more pieces:   x = sum over p of (b_p z_p + sum d_pk), d_pk <= w_pk z_p, sum z_p = 1, z binary,
//                  f(x) = sum over p of (f(b_p) z_p + sum s_pk d_pk)
//
// Takes
//   the terms of ModelData::pwl_obj. Beyond its ends f goes on with the slope of its first and last
//   segment; where two points share an x, f jumps and has the better value there. A jump at an end is an
//   end of f: x can't go beyond it.
//
// Makes
//   a column for each segment; with several pieces also a binary for each piece and a row for each segment.
//   x keeps its place and the objective its value, so both map back by themselves, as do the dual values of
//   a model that stays an LP.

#include "bridge/indicators.h"
#include "core/model_data.h"

namespace zelvan {

// Adds each term, with the weight of the main objective, to that of the problem. Throws Error when a term that isn't
// convex needs a bound on its column and none is implied.
void bridge_pwl_objective(const ModelData& data, Problem& problem, Indicators& indicators);

// f(x); at a jump the smaller value for direction 1, the larger one for -1. Infinite, in that direction, beyond a jump
// at an end.
double pwl_value(const PwlPoints& points, double x, double direction);

}  // namespace zelvan
