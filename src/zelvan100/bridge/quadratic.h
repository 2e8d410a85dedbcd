#pragma once
// Quadratic constraints, and a quadratic objective that is solved with them or with integers.
//
// Reformulation
//   sum d_k (l_k'x)^2 + a'x <= b     becomes     sum d_k t_k + a'x <= b,  y_k = l_k'x,  t_k >= y_k^2
//   sum d_k (l_k'x)^2 <= c z^2 + b   becomes     sum d_k t_k <= c z,  t_k z >= y_k^2,  with a constant y_k for b
//   sum d_k (l_k'x)^2 <= c u v + b   becomes     sum d_k t_k <= c u,  t_k v >= y_k^2
//   c u v, c u^2                     becomes     c w, to be branched on until w = u v
//   v x, v binary, l <= x <= u       becomes     w with  l v <= w <= u v  and  x - u (1-v) <= w <= x - l (1-v)
//
// Takes
//   convex quadratic forms (all d_k > 0), with b <= 0 where there is a cone, whose z, u and v aren't negative;
//   forms that aren't convex, of columns that have bounds or get some from the rows, by parameter NonConvex
//   products with a binary factor where their form isn't convex otherwise and the other factor has bounds
//
// Makes
//   a column y_k and its row where l_k has several entries, a column t_k, a cone; a column w and its rows

#include "bridge/indicators.h"
#include "core/model_data.h"
#include "solve/search.h"

namespace zelvan {

// What was recognised, for the log.
struct QuadraticCounts {
    int convex = 0, cones = 0, non_convex = 0, products = 0;
};

// The constraints of the model, and what is quadratic in the objective of the problem. Throws Error naming the
// constraint or objective that can't be solved. Where a limit or the user ends it, the problem is left unfinished.
QuadraticCounts bridge_quadratic(const ModelData& data, Problem& problem, Indicators& indicators, Context& context);

}  // namespace zelvan
