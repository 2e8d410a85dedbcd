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
    // The option that is written, for those rules; its array is there when apply runs.
    const Option* option = nullptr;
    Identity& (*family)(Families& families) = nullptr;
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

extern const WriteRule kLowerBound, kUpperBound, kCost, kType, kSense, kRightSide;
extern const WriteRule kModelSense, kConstant, kNumStarts, kNumObjectives;
extern const WriteRule kObjectiveCost, kObjectiveConstant, kPriority, kWeight, kRelTol, kAbsTol;
// These stand for an entry of the queue's own lists.
extern const WriteRule kText, kObjective, kPwl;

extern const TextRule kColumnName, kColumnTag, kRowName, kRowTag, kModelName, kObjectiveName;

Identity& columns(Families& families);
Identity& rows(Families& families);
Identity& sos_sets(Families& families);
void set_column_option(ModelData& data, const Write& write) noexcept;
void set_row_option(ModelData& data, const Write& write) noexcept;
void set_sos_option(ModelData& data, const Write& write) noexcept;

template <Option option>
inline constexpr Option kHeld = option;
template <Option option>
inline constexpr WriteRule kColumnOption{Effect::kHint, set_column_option, &kHeld<option>, columns};
template <Option option>
inline constexpr WriteRule kRowOption{Effect::kHint, set_row_option, &kHeld<option>, rows};
template <Option option>
inline constexpr WriteRule kSosOption{Effect::kHint, set_sos_option, &kHeld<option>, sos_sets};

}  // namespace rules

}  // namespace zelvan
