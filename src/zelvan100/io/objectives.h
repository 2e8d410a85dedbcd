#pragma once
// What both formats ask of the fields of several objectives.

#include <string_view>

#include "core/model_data.h"

namespace zelvan {

// The fields of an objective by which it stands among several, in the order in which files show them.
struct ObjectiveField {
    std::string_view name;
    double (*get)(const Objective& objective);
    bool (*set)(Objective& objective, double value);  // false when the value is out of range
};
inline constexpr int kNumObjectiveFields = 4;
extern const ObjectiveField kObjectiveFields[kNumObjectiveFields];

}  // namespace zelvan
