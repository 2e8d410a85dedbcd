#pragma once
// The geometry of cones x[t] * x[z] >= x[y]^2: half-planes that hold them, and how far a point is outside.

#include <vector>

#include "solve/problem.h"

namespace zelvan {

// The half-plane a^2 x[t] - 2 a b x[y] + b^2 x[z] >= 0, which touches a cone in b x[z] = a x[y]. The largest product
// there is about 1, so that the tolerance of a row is relative to the values.
struct ConeCut {
    int cone;
    double a, b;
};

// The least x[t] that the other values allow, infinite for none.
double least_t(const Cone& cone, const double* x);
// The half-plane that a direction or point violates most, as far as a is positive where z is -1.
ConeCut cut_at(const std::vector<Cone>& cones, int k, double t, double y, double z);
// The half-plane that touches the cone in (y^2, y, 1).
ConeCut cut_touching(int k, double y);
// As a row of a problem: its terms are to be at least what is returned.
double row_of(const std::vector<Cone>& cones, const ConeCut& cut, Problem::Terms& terms);
// By how much a point violates the half-plane, in terms of its largest product where that is above 1.
double violation(const std::vector<Cone>& cones, const ConeCut& cut, const double* x);

}  // namespace zelvan
