#pragma once
// Quadratic terms.

#include <cstddef>
#include <vector>

namespace zelvan {

// The sum of val[k] * x[row[k]] * x[col[k]], where row[k] <= col[k], no pair comes twice and no coefficient is 0.
struct QuadTerms {
    std::vector<int> row, col;
    std::vector<double> val;

    std::size_t size() const { return val.size(); }
    bool empty() const { return val.empty(); }
};

}  // namespace zelvan
