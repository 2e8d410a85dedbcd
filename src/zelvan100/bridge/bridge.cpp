#include "bridge/bridge.h"

#include <algorithm>

#include "bridge/pwl_objective.h"
#include "bridge/semi_continuous.h"
#include "bridge/sos.h"

namespace zelvan {

namespace {

bool has_semi_continuous(const ModelData& data) {
    return std::any_of(data.cols.type.begin(), data.cols.type.end(),
                       [](char type) { return type == 'S' || type == 'N'; });
}

bool has_sos(const ModelData& data) { return data.sos.size() > 0; }

bool has_pwl_objective(const ModelData& data) { return !data.pwl_obj.empty() && main_weight(data) != 0.0; }

}  // namespace

const Bridge kBridges[kNumBridges] = {
    {has_semi_continuous, bridge_semi_continuous},
    {has_sos, bridge_sos},
    {has_pwl_objective, bridge_pwl_objective},
};

}  // namespace zelvan
