#pragma once
// Sparse data: rows one behind the other, and single vectors.

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

namespace zelvan {

// Rows of (column, value) entries; row i has the entries start[i] .. start[i+1]-1.
struct SparseRows {
    std::vector<std::int64_t> start{0};
    std::vector<int> col;
    std::vector<double> val;

    std::int64_t num_entries() const { return start.back(); }
    // Closes a row whose entries were pushed to col and val.
    void close_row() { start.push_back(static_cast<std::int64_t>(col.size())); }
};

// A vector that is zero almost everywhere: its other elements by rising column.
struct SparseVector {
    std::vector<int> col;
    std::vector<double> val;

    static SparseVector of(const std::vector<double>& dense) {
        SparseVector sparse;
        for (std::size_t j = 0; j < dense.size(); ++j) {
            if (dense[j] == 0.0) continue;
            sparse.col.push_back(static_cast<int>(j));
            sparse.val.push_back(dense[j]);
        }
        return sparse;
    }
    // Behind what is there; a value for the last column replaces that.
    void push_back(int column, double value) {
        if (!col.empty() && col.back() == column) {
            val.back() = value;
            return;
        }
        col.push_back(column);
        val.push_back(value);
    }
    std::vector<double> dense(std::size_t size) const {
        std::vector<double> values(size, 0.0);
        for (std::size_t k = 0; k < col.size(); ++k) values[col[k]] = val[k];
        return values;
    }
    double at(int j) const {
        const auto found = std::lower_bound(col.begin(), col.end(), j);
        return found != col.end() && *found == j ? val[found - col.begin()] : 0.0;
    }
};

}  // namespace zelvan
