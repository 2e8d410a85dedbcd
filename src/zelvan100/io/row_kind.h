#pragma once

#include "core/infinity.h"

namespace zelvan {

// How a row with these sides is stored: one-sided and equality rows as such, 'R' for what is left.
struct RowKind {
    char sense;
    double rhs;
    double lower;  // of 'R'
};

inline RowKind row_kind(double lower, double upper) {
    const bool has_lower = lower > -kInfinityThreshold, has_upper = upper < kInfinityThreshold;
    if (lower == upper) return {'=', upper, -kInfinity};
    if (has_lower && !has_upper) return {'>', lower, -kInfinity};
    if (has_upper && !has_lower) return {'<', upper, -kInfinity};
    return {'R', upper, lower};
}

}  // namespace zelvan
