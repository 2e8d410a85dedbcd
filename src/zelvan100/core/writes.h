#pragma once
// How a queued value is applied to the model, and what that invalidates. Attributes name their rule in their table.

#include <string>

#include "core/model_data.h"

namespace zelvan {

struct Write;
struct TextWrite;

enum class Effect : char {
    kNone,     // the solution stays
    kHint,     // so it does; what is written is information for the solver, which a full reset drops
    kProblem,  // the solution is another model's now
};

// A number. `apply` takes no memory: the update made what it needs (see UpdatePlan).
struct WriteRule {
    Effect effect;
    void (*apply)(ModelData& data, const Write& write) noexcept;
    // The option that is written, and of what kind, for those rules; its array is there when apply runs.
    const Option* option = nullptr;
    Kind kind = Kind::kModel;
};

// A text: of an object, in one of the families' arrays, or of the model or an objective.
struct TextRule {
    Kind kind;
    Names& (*names)(Families& families) = nullptr;
    std::string& (*text)(ModelData& data, int objective) = nullptr;
    bool is_name = false;  // of an object: parameter IgnoreNames drops it
};

struct Write {
    const WriteRule* rule;
    int number;  // objective number of what belongs to one of several, otherwise 0
    int index;   // column or row; -1 for the model; for texts, objectives, terms the place in the queue
    double value;
};
struct TextWrite {
    const TextRule* rule;
    int number;
    int index;
    std::string value;
};

namespace rules {

extern const WriteRule kLowerBound, kUpperBound, kCost, kType, kSense, kRightSide, kQuadSense, kQuadRightSide;
extern const WriteRule kModelSense, kConstant, kNumStarts, kNumObjectives;
extern const WriteRule kObjectiveCost, kObjectiveConstant, kPriority, kWeight, kRelTol, kAbsTol;
// These stand for an entry of the queue's own lists.
extern const WriteRule kText, kObjective, kPwl;

extern const TextRule kColumnName, kColumnTag, kRowName, kRowTag, kQuadRowName, kQuadRowTag;
extern const TextRule kModelName, kObjectiveName;

void set_option(ModelData& data, const Write& write) noexcept;

template <Option option>
inline constexpr Option kHeld = option;
template <Kind kind, Option option>
inline constexpr WriteRule kOption{Effect::kHint, set_option, &kHeld<option>, kind};

}  // namespace rules

}  // namespace zelvan
