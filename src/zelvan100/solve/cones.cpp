#include "solve/cones.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zelvan {

namespace {

// Products are taken for at least this.
constexpr double kLeastSize = 1e-6;

double value_of(int col, const double* x) { return col < 0 ? 1.0 : x[col]; }

}  // namespace

double least_t(const Cone& cone, const double* x) {
    const double y = x[cone.y], z = std::max(value_of(cone.z, x), 0.0);
    if (y == 0.0) return 0.0;
    return z == 0.0 ? std::numeric_limits<double>::infinity() : y * y / z;
}

// The cone is that of the points with |(2y, t - z)| <= t + z, and the half-plane that of the gradient there. With
// z = 1 the one straight above the point is nearer.
ConeCut cut_at(const std::vector<Cone>& cones, int k, double t, double y, double z) {
    double a = 1.0, b = y;
    if (cones[k].z >= 0) {
        b = 2.0 * y;
        a = std::hypot(2.0 * y, t - z) - (t - z);
        if (a <= 0.0) return {k, 0.0, 1.0};
    }
    const double most = std::max({a * a * std::fabs(t), 2.0 * a * std::fabs(b * y), b * b * z});
    const double size = std::sqrt(std::max(most, kLeastSize * std::max(a * a, b * b)));
    return {k, a / size, b / size};
}

ConeCut cut_touching(int k, double y) {
    const double size = std::max(std::fabs(y), std::sqrt(kLeastSize));
    return {k, 1.0 / size, y / size};
}

double row_of(const std::vector<Cone>& cones, const ConeCut& cut, Problem::Terms& terms) {
    const Cone& cone = cones[cut.cone];
    terms.clear();
    if (cut.a != 0.0) terms.emplace_back(cone.t, cut.a * cut.a);
    if (cut.a != 0.0 && cut.b != 0.0) terms.emplace_back(cone.y, -2.0 * cut.a * cut.b);
    if (cone.z < 0) return -cut.b * cut.b;
    if (cut.b != 0.0) terms.emplace_back(cone.z, cut.b * cut.b);
    return 0.0;
}

double violation(const std::vector<Cone>& cones, const ConeCut& cut, const double* x) {
    const Cone& cone = cones[cut.cone];
    const double t = cut.a * cut.a * x[cone.t], y = 2.0 * cut.a * cut.b * x[cone.y],
                 z = cut.b * cut.b * value_of(cone.z, x);
    return (y - t - z) / std::max({1.0, std::fabs(t), std::fabs(y), std::fabs(z)});
}

}  // namespace zelvan
