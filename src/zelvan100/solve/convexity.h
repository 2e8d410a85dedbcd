#pragma once
// Whether a quadratic form is convex, told by a factorization, and the squares that it is a sum of.

#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "core/quad.h"

namespace zelvan {

// Terms as in QuadTerms, or a part of them.
struct QuadView {
    std::span<const int> row, col;
    std::span<const double> val;

    QuadView(const QuadTerms& terms) : QuadView(terms, 0, terms.size()) {}
    QuadView(const QuadTerms& terms, std::size_t begin, std::size_t end)
        : row(terms.row.data() + begin, end - begin),
          col(terms.col.data() + begin, end - begin),
          val(terms.val.data() + begin, end - begin) {}
    std::size_t size() const { return val.size(); }
};

// The sum of the squares of linear functions, the entries of one behind those of the other.
struct SumOfSquares {
    std::vector<int> start{0}, col;
    std::vector<double> val;

    int size() const { return static_cast<int>(start.size()) - 1; }
    std::size_t num_entries() const { return val.size(); }
};

double value_of(const QuadView& terms, const double* x);
// Adds the derivatives at x, multiplied by `factor`.
void add_gradient(const QuadView& terms, double factor, const double* x, double* gradient);

// The squares that `sign` (1 or -1) times the form is the sum of; none when it isn't convex. `tolerance` is what may be
// missing on the diagonal, relative to the largest coefficient of the connected part where that is below 1; so much is
// then added there. `go_on` is asked now and then, and may throw.
std::optional<SumOfSquares> sum_of_squares(const QuadView& terms, double sign, double tolerance,
                                           const std::function<void()>& go_on);

}  // namespace zelvan
