#pragma once

#include <string>
#include <vector>

#include "core/model_data.h"
#include "zelvan100.h"

namespace zelvan {

// Names of the status codes.
inline constexpr const char* kStatusNames[] = {
    "",        "LOADED",          "OPTIMAL",    "INFEASIBLE",     "INF_OR_UNBD",    "UNBOUNDED",
    "CUTOFF",  "ITERATION_LIMIT", "NODE_LIMIT", "TIME_LIMIT",     "SOLUTION_LIMIT", "INTERRUPTED",
    "NUMERIC", "SUBOPTIMAL",      "INPROGRESS", "USER_OBJ_LIMIT", "WORK_LIMIT",     "MEM_LIMIT"};

// What the latest solve left. Vectors are empty when the solve gave no such values. All values are in
// the terms of the model (its own sense and columns), never of a bridged or presolved one.
struct Solution {
    int status = ZVN_LOADED;
    double runtime = 0.0;  // seconds
    double work = 0.0;     // deterministic work units
    double iterations = 0.0;
    int barrier_iterations = 0;
    double nodes = 0.0;
    bool is_mip = false;
    int concurrent_winner = -1;

    std::vector<double> x, slack;     // primal: slack[i] = rhs[i] - row activity
    std::vector<double> qcslack;      // of quadratic constraints, as slack
    std::vector<double> rc, pi;       // dual, of an LP
    std::vector<double> qcpi;         // dual values of quadratic constraints
    std::vector<int> vbasis, cbasis;  // 0 basic, -1 at lower, -2 at upper, -3 superbasic
    std::vector<double> ray, farkas;  // certificates, when InfUnbdInfo asked for them
    double farkas_proof = kUndefined;
    double obj_val = kUndefined;
    double obj_bound = kUndefined;
    double mip_gap = kUndefined;            // kInfinity without an incumbent
    std::vector<std::vector<double>> pool;  // solutions found, best first; pool[0] equals x
    std::vector<double> pool_obj;
    std::vector<double> multi_obj;  // value of each objective of a multi-objective model

    int count() const { return obj_val == kUndefined ? 0 : (pool.empty() ? 1 : static_cast<int>(pool.size())); }
};

}  // namespace zelvan
