#pragma once
// What bridges share: the ranges of columns, and binaries that tell whether a column is 0.
//
// Reformulation
//   x = 0 where z = 0     becomes     l z <= x <= u z,  z binary
//
// Takes
//   a column and the smallest interval [l, u] that its own bounds and the rows leave it
//
// Makes
//   one binary column and two rows, once for each column; none for a column that is such a binary itself

#include <optional>
#include <unordered_map>

#include "bridge/implied_bounds.h"
#include "solve/problem.h"

namespace zelvan {

struct Interval {
    double lower, upper;

    bool is_finite() const;
};

class Indicators {
public:
    explicit Indicators(Problem& problem) : problem_(problem) {}

    // Of a column of the model as bounds and rows imply it at the first call: bounds that a bridge widens have to be
    // widened before.
    Interval range(int col);
    // The binary of a column, -1 where an infinite bound leaves no constant for it.
    int of(int col);
    // Makes a binary for values that are 0 or within a finite interval.
    int add(int col, Interval values);

private:
    Problem& problem_;
    std::optional<ColumnBounds> bounds_;
    std::unordered_map<int, int> binaries_;  // by column
};

}  // namespace zelvan
