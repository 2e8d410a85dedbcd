#pragma once
// Term lists with repeated indices, merged.

#include "core/quad.h"

namespace zelvan {

// Adds up the values of equal indices at the place of the first and drops entries of value 0; returns the
// new length. Negative indices stay as they are, each for itself.
int merge_terms(int num, int* ind, double* val);
// The same for quadratic terms; (i, j) and (j, i) are one.
int merge_quadratic_terms(int num, int* row, int* col, double* val);
// The same for terms that stay as they are; a place of its own for what they come to.
QuadTerms merged_terms(int num, const int* row, const int* col, const double* val);

}  // namespace zelvan
