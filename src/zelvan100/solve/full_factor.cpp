#include "solve/full_factor.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace zelvan {

namespace {

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
// Columns that are eliminated before the rest is updated.
constexpr int kPanel = 32;

}  // namespace

Threshold::Threshold(double largest, int size, double tolerance)
    : rounding(8.0 * kEpsilon * (size + 8.0) * largest),
      missing(std::max(tolerance * std::min(1.0, largest), 64.0 * rounding)) {}

FullFactor::FullFactor(std::vector<int> names, const Threshold& threshold)
    : names_(std::move(names)),
      size_(static_cast<int>(names_.size())),
      threshold_(threshold),
      entries_(static_cast<std::size_t>(size_) * size_),
      diagonal_(size_),
      panel_(static_cast<std::size_t>(size_) * kPanel) {}

bool FullFactor::run(SumOfSquares& squares, const std::function<void()>& go_on) {
    for (int begin = 0; begin < size_;) {
        go_on();
        const int end = eliminate_panel(begin, std::min(size_, begin + kPanel), squares);
        for (int i = end; i < size_; ++i)
            if (diagonal_[i] < -threshold_.missing) return false;
        update_rest(begin, end);
        if (end < std::min(size_, begin + kPanel)) return is_negligible(end);
        begin = end;
    }
    return true;
}

// Returns where it ended: at `end`, or where only rounding is left.
int FullFactor::eliminate_panel(int begin, int end, SumOfSquares& squares) {
    for (int k = begin; k < end; ++k) {
        const auto best = std::max_element(diagonal_.begin() + k, diagonal_.end());
        if (*best <= threshold_.rounding) return k;
        swap(k, static_cast<int>(best - diagonal_.begin()), k - begin);
        eliminate(k, k - begin);
        append(k, panel(k - begin), squares);
    }
    return end;
}

void FullFactor::swap(int a, int b, int num_columns) {
    if (a == b) return;
    std::swap(names_[a], names_[b]);
    std::swap(diagonal_[a], diagonal_[b]);
    for (int i = a + 1; i < size_; ++i)
        if (i != b) std::swap(at(std::max(i, a), std::min(i, a)), at(std::max(i, b), std::min(i, b)));
    for (int t = 0; t < num_columns; ++t) std::swap(panel(t)[a], panel(t)[b]);
}

void FullFactor::eliminate(int k, int num_columns) {
    double* const out = panel(num_columns);
    const double* const in = column(k);
    std::copy(in + k + 1, in + size_, out + k + 1);
    for (int t = 0; t < num_columns; ++t) {
        const double* const earlier = panel(t);
        const double factor = earlier[k];
        for (int i = k + 1; i < size_; ++i) out[i] -= factor * earlier[i];
    }
    double largest = 0.0;
    for (int i = k + 1; i < size_; ++i) largest = std::max(largest, std::fabs(out[i]));
    // Beside the largest diagonal element of a convex form nothing is larger.
    if (largest > diagonal_[k]) diagonal_[k] = std::max(diagonal_[k], threshold_.missing);
    out[k] = std::sqrt(diagonal_[k]);
    const double scale = 1.0 / out[k];
    for (int i = k + 1; i < size_; ++i) {
        out[i] *= scale;
        diagonal_[i] -= out[i] * out[i];
    }
}

void FullFactor::append(int k, const double* values, SumOfSquares& squares) const {
    const double small = kEpsilon * values[k];
    for (int i = k; i < size_; ++i) {
        if (std::fabs(values[i]) <= small) continue;
        squares.col.push_back(names_[i]);
        squares.val.push_back(values[i]);
    }
    squares.start.push_back(static_cast<int>(squares.col.size()));
}

// By four columns of the panel at once, so that each entry is loaded and stored once for them.
void FullFactor::update_rest(int begin, int end) {
    const int num = end - begin;
    for (int t = num; t % 4 != 0; ++t) std::fill(panel(t), panel(t) + size_, 0.0);
    for (int j = end; j < size_; ++j) {
        double* const out = column(j);
        for (int t = 0; t < num; t += 4) {
            const double *a = panel(t), *b = panel(t + 1), *c = panel(t + 2), *d = panel(t + 3);
            const double fa = a[j], fb = b[j], fc = c[j], fd = d[j];
            for (int i = j + 1; i < size_; ++i) out[i] -= (fa * a[i] + fb * b[i]) + (fc * c[i] + fd * d[i]);
        }
    }
}

bool FullFactor::is_negligible(int begin) {
    for (int j = begin; j < size_; ++j)
        for (int i = j + 1; i < size_; ++i)
            if (std::fabs(column(j)[i]) > threshold_.missing) return false;
    return true;
}

}  // namespace zelvan
