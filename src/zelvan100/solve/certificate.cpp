#include "solve/certificate.h"

#include <cmath>
#include <limits>

namespace zelvan {

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
// Multipliers below this, relative to the largest one, may be rounding errors.
constexpr double kRelativeZero = 1e-9;

double product(double factor, double side) {
    if (factor == 0.0) return 0.0;
    return std::abs(side) >= kInfinityThreshold ? std::copysign(kInf, factor * side) : factor * side;
}

// By how much the smallest value of y'Ax over the column bounds exceeds its largest one over the row
// sides: positive when y proves that there is no x. -infinity when a row or column is unlimited there.
double proof(const ModelData& data, const std::vector<double>& y) {
    const Rows& rows = data.rows;
    std::vector<double> combined(data.cols.size(), 0.0);
    double most = 0.0;
    for (int i = 0; i < rows.size(); ++i) {
        if (y[i] == 0.0) continue;
        const auto [lower, upper] = rows.sides(i);
        most += product(y[i], y[i] > 0.0 ? upper : lower);
        for (std::int64_t k = rows.start[i]; k < rows.start[i + 1]; ++k) combined[rows.col[k]] += y[i] * rows.val[k];
    }
    double least = 0.0;
    for (int j = 0; j < data.cols.size(); ++j) {
        const double side = combined[j] > 0.0 ? data.cols.lb[j] : data.cols.ub[j];
        // What cancels out but for rounding errors doesn't count on a free side.
        if (std::abs(combined[j]) < kRelativeZero && std::abs(side) >= kInfinityThreshold) continue;
        least += product(combined[j], side);
    }
    return least - most;
}

// Scaled to largest element 1, with the sign that `sense` asks for, without elements that only rounding
// made different from 0.
std::vector<double> scaled(std::vector<double> ray, double sign) {
    double largest = 0.0;
    for (double value : ray) largest = std::max(largest, std::abs(value));
    if (largest == 0.0) return {};
    for (double& value : ray) {
        value *= sign / largest;
        if (std::abs(value) < kRelativeZero) value = 0.0;
    }
    return ray;
}

// Whether y or -y proves the model infeasible; if so it is stored.
bool store_proof(const ModelData& data, const std::vector<double>& ray, Solution& solution) {
    for (double sign : {1.0, -1.0}) {
        std::vector<double> y = scaled(ray, sign);
        if (y.empty()) return false;
        const double value = proof(data, y);
        if (!(value > 0.0)) continue;
        solution.farkas = std::move(y);
        solution.farkas_proof = value;
        return true;
    }
    return false;
}

// HiGHS has no certificates for an LP without matrix: a row that excludes 0, or a column by itself.
void store_without_matrix(const ModelData& data, Solution& solution) {
    if (solution.status == ZVN_INFEASIBLE) {
        for (int i = 0; i < data.rows.size() && solution.farkas.empty(); ++i) {
            std::vector<double> unit(data.rows.size(), 0.0);
            unit[i] = 1.0;
            store_proof(data, unit, solution);
        }
        return;
    }
    for (int j = 0; j < data.cols.size(); ++j) {
        const double downhill = -data.sense * data.cols.obj[j];
        if (downhill == 0.0 || std::abs(downhill > 0.0 ? data.cols.ub[j] : data.cols.lb[j]) < kInfinity) continue;
        solution.ray.assign(data.cols.size(), 0.0);
        solution.ray[j] = std::copysign(1.0, downhill);
        return;
    }
}

}  // namespace

void store_certificate(const ModelData& data, HighsSession& session, Solution& solution) {
    if (data.rows.num_entries() == 0) return store_without_matrix(data, solution);
    if (solution.status == ZVN_UNBOUNDED) {
        std::vector<double> ray = session.primal_ray();
        if (ray.empty()) return;
        ray.resize(data.cols.size());
        solution.ray = scaled(std::move(ray), 1.0);
    } else if (solution.status == ZVN_INFEASIBLE) {
        std::vector<double> ray = session.dual_ray();
        if (ray.empty()) return;
        ray.resize(data.rows.size());
        store_proof(data, ray, solution);
    }
}

}  // namespace zelvan
