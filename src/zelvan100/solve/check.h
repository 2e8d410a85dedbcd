#pragma once
// What a point is worth on the data that the user wrote, and how far it is off: bounds, types, rows, quadratic
// constraints, SOS.

#include <cmath>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/model_data.h"

namespace zelvan {

double row_activity(const SparseRows& rows, int i, const double* x);
std::vector<double> row_activities(const SparseRows& rows, const double* x);
// A quadratic constraint: its linear and its quadratic terms.
double quad_activity(const QuadRows& rows, int i, const double* x);
// How far a value lies outside an interval, 0 inside.
double outside(double value, double lower, double upper);
// Distance to the nearest value that bounds and type leave, integrality aside: 0 is left to semi-continuous types.
double bound_violation(const Columns& cols, int j, double value);
bool is_integer_type(char type);
double integrality_violation(double value);
// The largest member, in absolute value, that is not 0 though it has to be, where the set keeps the members that
// suit it best.
double sos_violation(const SosSets& sets, int k, const double* x);

// What a dual value (of a minimization) is off the signs that the sides allow: positive ones need a lower side,
// negative ones an upper side.
inline double wrong_sign(double dual, double lower, double upper) {
    if (dual > 0.0) return lower > -kInfinity ? 0.0 : dual;
    return upper < kInfinity ? 0.0 : -dual;
}
// Product of a dual value and the distance to the side that its sign speaks for; 0 without such a side.
inline double complementarity(double dual, double value, double lower, double upper) {
    const double gap = dual > 0.0 ? value - lower : upper - value;
    return std::fabs(gap) < kInfinityThreshold ? std::fabs(dual * gap) : 0.0;
}

// c'x with the constant, the quadratic and the piecewise-linear terms. In a model of several objectives that of number
// 0.
double main_objective(const ModelData& data, const double* x);

struct Tolerances {
    double feasibility;  // parameter FeasibilityTol, of bounds, rows and quadratic constraints
    double integrality;  // parameter IntFeasTol, of integer types and SOS
};

// What a point violates beyond the tolerances.
struct Breach {
    Kind kind;  // column, row, quadratic row or SOS
    int index;
    bool of_integrality;  // of a column: not its bounds are violated but its type
    double amount, tolerance;
};

// The breach that is largest in terms of its tolerance, none when the point holds. A value counts as within where
// the rounding of its own evaluation could be all that is wrong with it. x has a value for each column, further ones
// are ignored. `activity` has the activities of the rows there.
std::optional<Breach> find_breach(const ModelData& data, std::span<const double> x, std::span<const double> activity,
                                  const Tolerances& tolerances);
// "constraint 'c1' by 0.5, where 1e-06 is allowed"
std::string text_of(const ModelData& data, const Breach& breach);

}  // namespace zelvan
