#pragma once
// MPS files: what reader and writer share, and the two themselves.

#include <utility>

#include "core/model_data.h"
#include "io/io.h"
#include "io/source.h"

namespace zelvan {

ModelData read_mps(const Source& source, const Warn& warn);
std::string write_mps(const ModelData& data, const Warn& warn);

// Whether a name can stand in a file whose fields are divided by blanks.
bool mps_holds_name(std::string_view name);
// Name of the row of objective `k` where it has none of its own.
std::string default_objective_row(std::size_t k);

// Sides of a row of type 'L', 'G' or 'E' with right-hand side `rhs` and a RANGES entry: for E rows the
// sign of the range tells on which side of rhs it lies. Computed in extended precision, so that a range
// can be written that gives back any pair of sides.
std::pair<double, double> range_sides(char type, double rhs, long double range);

}  // namespace zelvan
