#pragma once
// Special ordered sets to binaries.
//
// Reformulation of a set over x_1, ..., x_n in the order of the weights
//   x_i = 0 where z_i = 0     becomes     l_i z_i <= x_i <= u_i z_i,  z_i binary
//   type 1:  z_1 + ... + z_n <= 1
//   type 2:  z_i <= w_(i-1) + w_i,  w_1 + ... + w_(n-1) <= 1,  w binary: neighbours i and i+1 may be other than 0
//   A column that is binary is its own z, and a column has one z for all its sets.
//   Where a column's bounds are too large for a z the set goes to Problem::disjunctions.
//
// Takes
//   ModelData::sos; of the bounds of a column, own and implied, the ones nearer to 0
//
// Makes
//   the columns and rows above; x keeps its place, so values map back by themselves

#include "bridge/indicators.h"
#include "core/model_data.h"

namespace zelvan {

void bridge_sos(const ModelData& data, Problem& problem, Indicators& indicators);

}  // namespace zelvan
