#pragma once
// What bridges share: the ranges of columns, and binaries that tell whether a column is 0.
//
// Reformulation
//   x = 0 where z = 0     becomes     l z <= x <= u z,  z binary
//
// Takes
//   a column and the smallest interval [l, u] that its own bounds, the rows or else the linear relaxation leave it
//
// Makes
//   one binary column and two rows, once for each column; none for a column that is such a binary itself, or whose
//   interval is infinite or so large that a binary within its tolerance of 0 would leave x free

#include <functional>
#include <optional>
#include <unordered_map>

#include "bridge/implied_bounds.h"
#include "solve/problem.h"

namespace zelvan {

struct Interval {
    double lower, upper;

    // Whether both can be coefficients of a binary.
    bool is_small() const;
};

// The largest (`upper`) or smallest value of a column in the linear relaxation of a problem, infinite for none.
using ColumnLimit = std::function<double(const Problem& problem, int col, bool upper)>;

class Indicators {
public:
    Indicators(Problem& problem, ColumnLimit relaxation_limit)
        : problem_(problem), relaxation_limit_(std::move(relaxation_limit)) {}

    // Of a column of the model as bounds and rows imply it at the first call: bounds that a bridge widens have to be
    // widened before.
    Interval range(int col);
    // The binary of a column, -1 for none.
    int of(int col);
    // Makes a binary for values that are 0 or within a small interval.
    int add(int col, Interval values);

private:
    Problem& problem_;
    const ColumnLimit relaxation_limit_;
    std::optional<ColumnBounds> bounds_;
    std::unordered_map<int, int> binaries_;  // by column
};

}  // namespace zelvan
