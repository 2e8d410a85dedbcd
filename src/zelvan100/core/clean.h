#pragma once
// Term lists with repeated indices, merged in place.

namespace zelvan {

// Adds up the values of equal indices at the place of the first and drops entries of value 0; returns the
// new length. Negative indices stay as they are, each for itself.
int merge_terms(int num, int* ind, double* val);
// The same for quadratic terms; (i, j) and (j, i) are one.
int merge_quadratic_terms(int num, int* row, int* col, double* val);

}  // namespace zelvan
