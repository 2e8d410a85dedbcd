#include "io/objectives.h"

#include <cmath>

#include "zelvan100.h"

namespace zelvan {

namespace {

bool set_tolerance(double& tolerance, double value) {
    tolerance = value;
    return value >= 0.0;
}

}  // namespace

const ObjectiveField kObjectiveFields[kNumObjectiveFields] = {
    {"Priority", [](const Objective& o) { return static_cast<double>(o.priority); },
     [](Objective& o, double value) {
         if (!(std::fabs(value) <= ZVN_MAXINT) || value != std::trunc(value)) return false;
         o.priority = static_cast<int>(value);
         return true;
     }},
    {"Weight", [](const Objective& o) { return o.weight; },
     [](Objective& o, double value) {
         o.weight = value;
         return std::fabs(value) < kInfinityThreshold;
     }},
    {"AbsTol", [](const Objective& o) { return o.abs_tol; },
     [](Objective& o, double value) { return set_tolerance(o.abs_tol, value); }},
    {"RelTol", [](const Objective& o) { return o.rel_tol; },
     [](Objective& o, double value) { return set_tolerance(o.rel_tol, value); }},
};

}  // namespace zelvan
