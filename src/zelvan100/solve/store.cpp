#include "solve/store.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "core/infinity.h"
#include "solve/check.h"

namespace zelvan {

namespace {

double gap(double objective, double bound) {
    if (bound == objective) return 0.0;
    return objective == 0.0 ? kInfinity : clipped(std::abs((objective - bound) / objective));
}

void store_basis(const ModelData& data, Basis basis, Solution& solution) {
    if (basis.cols.empty() && basis.rows.empty()) return;
    basis.cols.resize(data.cols.size());
    basis.rows.resize(data.rows.size());
    for (int i = 0; i < data.rows.size(); ++i) basis.rows[i] = slack_status(basis.rows[i], data.rows.sense[i]);
    solution.vbasis = std::move(basis.cols);
    solution.cbasis = std::move(basis.rows);
}

}  // namespace

// Only a row with two sides has a slack with two bounds.
int slack_status(int side_status, char sense) {
    if (side_status == ZVN_BASIC) return ZVN_BASIC;
    return sense == ZVN_RANGE && side_status == ZVN_NONBASIC_LOWER ? ZVN_NONBASIC_UPPER : ZVN_NONBASIC_LOWER;
}

int side_status(int slack_status, char sense) {
    if (slack_status == ZVN_BASIC) return ZVN_BASIC;
    const bool at_rhs = sense != ZVN_RANGE || slack_status != ZVN_NONBASIC_UPPER;
    const bool upper = sense == ZVN_GREATER_EQUAL ? !at_rhs : at_rhs;
    return upper && sense != ZVN_EQUAL ? ZVN_NONBASIC_UPPER : ZVN_NONBASIC_LOWER;
}

void store_result(const ModelData& data, SolverResult result, Solution& solution) {
    store_basis(data, std::move(result.basis), solution);
    const int status = solution.status;
    if (status == ZVN_INFEASIBLE || status == ZVN_INF_OR_UNBD || status == ZVN_UNBOUNDED || status == ZVN_CUTOFF)
        return;
    if (solution.is_mip) {
        solution.obj_bound = clipped(result.bound);
        solution.mip_gap = kInfinity;
    }
    if (result.x.size() < data.cols.lb.size() || (result.x.empty() && status != ZVN_OPTIMAL)) return;

    result.x.resize(data.cols.size());
    solution.x = std::move(result.x);
    solution.obj_val = main_objective(data, solution.x.data());
    if (!solution.is_mip && status == ZVN_OPTIMAL) solution.obj_bound = solution.obj_val;
    if (solution.is_mip) {
        // What was reached is the better bound where rounding puts it beyond the proven one.
        if (data.sense * solution.obj_val < data.sense * solution.obj_bound) solution.obj_bound = solution.obj_val;
        solution.mip_gap = gap(solution.obj_val, solution.obj_bound);
    }
    solution.slack.resize(data.rows.size());
    if (result.activity.empty()) result.activity = row_activities(data.rows, solution.x.data());
    for (int i = 0; i < data.rows.size(); ++i) solution.slack[i] = data.rows.rhs[i] - result.activity[i];
    solution.qcslack.resize(data.qrows.size());
    for (int i = 0; i < data.qrows.size(); ++i)
        solution.qcslack[i] = data.qrows.rhs[i] - quad_activity(data.qrows, i, solution.x.data());
    if (solution.is_mip || (result.rc.empty() && !solution.x.empty())) return;
    result.rc.resize(data.cols.size());
    result.pi.resize(data.rows.size());
    solution.rc = std::move(result.rc);
    solution.pi = std::move(result.pi);
    solution.qcpi = std::move(result.qcpi);
}

bool Pool::wants(double objective) const {
    return found_.size() < capacity_ || sense_ * objective < sense_ * found_.back().objective;
}

void Pool::add(double objective, std::vector<double> x) {
    const auto worse = [this](double value, const Found& other) { return sense_ * value < sense_ * other.objective; };
    const auto place = std::upper_bound(found_.begin(), found_.end(), objective, worse);
    for (auto behind = place; behind != found_.begin() && std::prev(behind)->objective == objective; --behind)
        if (std::prev(behind)->x == x) return;
    found_.insert(place, {objective, std::move(x)});
    if (found_.size() > capacity_) found_.pop_back();
}

void Pool::store(const ParamValues& params, Solution& solution) {
    if (!solution.is_mip || solution.x.empty()) return;
    const double best = solution.obj_val;
    solution.pool.push_back(solution.x);
    solution.pool_obj.push_back(best);
    const double most = std::min(params.get_dbl(Param::PoolGapAbs), params.get_dbl(Param::PoolGap) * std::abs(best));
    for (Found& other : found_) {
        const double worse = sense_ * (other.objective - best);
        // The search hands the final solution over too, at times with a last digit changed.
        if (worse <= 1e-9 * std::max(1.0, std::abs(best)) || worse > most) continue;
        if (solution.pool.size() >= capacity_) break;
        solution.pool.push_back(std::move(other.x));
        solution.pool_obj.push_back(other.objective);
    }
}

}  // namespace zelvan
