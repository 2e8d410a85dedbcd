#pragma once
// The table of bridges: what a model says beyond the terms of HiGHS becomes columns, rows and disjunctions of a
// problem. Columns and rows of the model keep their places in front, so values map back by cutting off behind them.

#include "bridge/indicators.h"
#include "core/model_data.h"
#include "solve/problem.h"

namespace zelvan {

struct Bridge {
    bool (*is_needed)(const ModelData& data);
    // Throws Error where the model asks for more than the bridge can make.
    void (*build)(const ModelData& data, Problem& problem, Indicators& indicators);
};

// In the order in which they are built: the first one widens bounds, which the others use.
inline constexpr int kNumBridges = 3;
extern const Bridge kBridges[kNumBridges];

}  // namespace zelvan
