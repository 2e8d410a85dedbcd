#pragma once
// Products x[w] = x[x] * x[y] of columns with finite bounds: their convex hull over those bounds, and how bounds divide
// them.

#include <optional>
#include <utility>
#include <vector>

#include "solve/branching.h"
#include "solve/problem.h"

namespace zelvan {

// Appends the rows of the hulls (McCormick 1976; for squares the secant), whose coefficients follow the bounds by
// update_hulls.
void add_hulls(const std::vector<Product>& products, Problem& problem);
void update_hulls(const std::vector<Product>& products, Problem& problem);
// Bounds that products, factors and rows, hulls among them, imply for each other. The answer is whether each column
// keeps a value.
bool tighten_bounds(const std::vector<Product>& products, Problem& problem);
// Products and squares of a point, and the columns of cones, as its other columns have them.
void complete(const Problem& problem, const std::vector<Product>& products, std::vector<double>& x);
// Two parts by the bounds of the factor that counts most in what x violates, the one nearer to x first. None where no
// factor can be divided.
std::optional<std::pair<Narrowings, Narrowings>> parts_by_products(const Problem& problem,
                                                                   const std::vector<Product>& products,
                                                                   const std::vector<double>& x);

}  // namespace zelvan
