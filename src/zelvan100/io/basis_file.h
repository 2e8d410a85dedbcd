#pragma once

#include <string>

#include "core/model.h"

namespace zelvan {

// Bases in the MPS form (.bas): XL and XU name a basic column and a row that is nonbasic in its place, at
// its lower or upper side; UL names a column at its upper bound; all others are at their lower bound or,
// rows, basic.
void write_basis(Model& model, const std::string& path);
// Queues the attributes VBasis and CBasis. Throws Error with file and line, with nothing queued.
void read_basis(Model& model, const std::string& path);

}  // namespace zelvan
