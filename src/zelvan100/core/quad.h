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
    void push_back(int i, int j, double value) {
        row.push_back(i);
        col.push_back(j);
        val.push_back(value);
    }
    void append(const QuadTerms& terms) {
        row.insert(row.end(), terms.row.begin(), terms.row.end());
        col.insert(col.end(), terms.col.begin(), terms.col.end());
        val.insert(val.end(), terms.val.begin(), terms.val.end());
    }
};

}  // namespace zelvan
