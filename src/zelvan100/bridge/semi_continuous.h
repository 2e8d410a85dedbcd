#pragma once
// Semi-continuous and semi-integer columns to binaries.
//
// Reformulation
//   x = 0  or  l <= x <= u     becomes     l z <= x <= u z,  z binary
//   An interval that holds 0 already is kept as plain bounds, an empty one fixes x at 0.
//   Where a bound is too large for such a row the column goes to Problem::disjunctions.
//
// Takes
//   columns of type 'S' and 'N'; of their bounds behind the gap, own and implied, the one nearer to 0
//
// Makes
//   for each such column one binary column and two rows; x keeps its place, so values map back by themselves

#include "bridge/indicators.h"
#include "core/model_data.h"

namespace zelvan {

void bridge_semi_continuous(const ModelData& data, Problem& problem, Indicators& indicators);

}  // namespace zelvan
