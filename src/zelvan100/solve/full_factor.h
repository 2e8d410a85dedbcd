#pragma once
// The elimination of a full symmetric matrix.

#include <functional>
#include <vector>

#include "solve/convexity.h"

namespace zelvan {

// What counts as zero, and what may be missing on the diagonal, in a matrix with that largest entry.
struct Threshold {
    double rounding, missing;

    Threshold(double largest, int size, double tolerance);
};

// Eliminated with the largest diagonal element first, as LAPACK's pstrf does: the rank is reached where nothing but
// rounding is left.
class FullFactor {
public:
    // A matrix of zeros whose rows have these names in the squares.
    FullFactor(std::vector<int> names, const Threshold& threshold);

    // An entry of the lower triangle, i >= j.
    double& at(int i, int j) { return i == j ? diagonal_[i] : column(j)[i]; }
    // Appends the squares; false when the matrix isn't convex.
    bool run(SumOfSquares& squares, const std::function<void()>& go_on);

private:
    double* column(int j) { return entries_.data() + static_cast<std::size_t>(j) * size_; }
    double* panel(int k) { return panel_.data() + static_cast<std::size_t>(k) * size_; }
    int eliminate_panel(int begin, int end, SumOfSquares& squares);
    void swap(int a, int b, int num_columns);
    void eliminate(int k, int num_columns);
    void append(int k, const double* values, SumOfSquares& squares) const;
    void update_rest(int begin, int end);
    bool is_negligible(int begin);

    std::vector<int> names_;
    const int size_;
    const Threshold& threshold_;
    std::vector<double> entries_, diagonal_, panel_;
};

}  // namespace zelvan
