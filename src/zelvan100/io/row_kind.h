#pragma once

#include "core/model_data.h"

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

// The same of row i as it is stored; a range may have lost its second side.
inline RowKind row_kind(const Rows& rows, int i) {
    if (rows.sense[i] != 'R') return {rows.sense[i], rows.rhs[i], -kInfinity};
    const auto [lower, upper] = rows.sides(i);
    return row_kind(lower, upper);
}

}  // namespace zelvan
