#pragma once

#include "core/model.h"

namespace zelvan {

// Condition number of the basis matrix of the LP that was just solved, in the norm of column sums: exact by
// one solve for each row, or a lower bound that is mostly close, from a few solves (Higham 1988).
// kUndefined when there is no basis, or none that HiGHS can factor.
double basis_condition(const Model& model, bool exact);
// Whether the latest solve left a basis to ask for.
bool has_basis(const Model& model);

}  // namespace zelvan
