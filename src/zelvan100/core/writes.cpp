#include "core/writes.h"

#include <algorithm>

namespace zelvan::rules {

namespace {

void set_type(ModelData& data, const Write& write) noexcept {
    Columns& cols = data.cols;
    const int j = write.index;
    cols.type[j] = static_cast<char>(write.value);
    if (cols.type[j] != 'B') return;
    cols.lb[j] = std::max(cols.lb[j], 0.0);
    cols.ub[j] = std::min(cols.ub[j], 1.0);
}

// A coefficient replaces the piecewise-linear term.
void set_cost(ModelData& data, const Write& write) noexcept {
    data.cols.obj[write.index] = write.value;
    data.pwl_obj.erase(write.index);
}

// Of the further objectives the update writes the coefficients itself, all of one objective together.
void set_objective_cost(ModelData& data, const Write& write) noexcept {
    if (write.number == 0) set_cost(data, write);
}

void set_objective_constant(ModelData& data, const Write& write) noexcept {
    (write.number == 0 ? data.obj_constant : data.objectives[write.number].constant) = write.value;
}

void forget_starts(ModelData& data, const Write& write) noexcept {
    if (write.value != 0.0) return;
    std::vector<double>& starts = *data.cols.optional.find(Option::kStart);
    std::fill(starts.begin(), starts.end(), unset(Option::kStart));
}

void nothing(ModelData&, const Write&) noexcept {}

}  // namespace

void set_option(ModelData& data, const Write& write) noexcept {
    (*data.family(write.rule->kind).optional.find(*write.rule->option))[write.index] = write.value;
}

const WriteRule kLowerBound{Effect::kProblem, [](ModelData& data, const Write& write) noexcept {
                                data.cols.lb[write.index] = clipped(write.value);
                            }};
const WriteRule kUpperBound{Effect::kProblem, [](ModelData& data, const Write& write) noexcept {
                                data.cols.ub[write.index] = clipped(write.value);
                            }};
const WriteRule kCost{Effect::kProblem, set_cost};
const WriteRule kType{Effect::kProblem, set_type};
const WriteRule kSense{Effect::kProblem, [](ModelData& data, const Write& write) noexcept {
                           data.rows.sense[write.index] = static_cast<char>(write.value);
                       }};
const WriteRule kRightSide{Effect::kProblem, [](ModelData& data, const Write& write) noexcept {
                               data.rows.rhs[write.index] = clipped(write.value);
                           }};
const WriteRule kQuadSense{Effect::kProblem, [](ModelData& data, const Write& write) noexcept {
                               data.qrows.sense[write.index] = static_cast<char>(write.value);
                           }};
const WriteRule kQuadRightSide{Effect::kProblem, [](ModelData& data, const Write& write) noexcept {
                                   data.qrows.rhs[write.index] = clipped(write.value);
                               }};
const WriteRule kModelSense{
    Effect::kProblem, [](ModelData& data, const Write& write) noexcept { data.sense = write.value < 0 ? -1 : 1; }};
const WriteRule kConstant{Effect::kProblem,
                          [](ModelData& data, const Write& write) noexcept { data.obj_constant = write.value; }};
const WriteRule kNumStarts{Effect::kHint, forget_starts, &kHeld<Option::kStart>, Kind::kColumn};
const WriteRule kNumObjectives{Effect::kProblem, [](ModelData& data, const Write& write) noexcept {
                                   data.objectives.resize(static_cast<std::size_t>(write.value));
                               }};
const WriteRule kObjectiveCost{Effect::kProblem, set_objective_cost};
const WriteRule kObjectiveConstant{Effect::kProblem, set_objective_constant};
const WriteRule kPriority{Effect::kProblem, [](ModelData& data, const Write& write) noexcept {
                              data.objectives[write.number].priority = static_cast<int>(write.value);
                          }};
const WriteRule kWeight{Effect::kProblem, [](ModelData& data, const Write& write) noexcept {
                            data.objectives[write.number].weight = write.value;
                        }};
const WriteRule kRelTol{Effect::kProblem, [](ModelData& data, const Write& write) noexcept {
                            data.objectives[write.number].rel_tol = write.value;
                        }};
const WriteRule kAbsTol{Effect::kProblem, [](ModelData& data, const Write& write) noexcept {
                            data.objectives[write.number].abs_tol = write.value;
                        }};
const WriteRule kText{Effect::kNone, nothing};
const WriteRule kObjective{Effect::kProblem, nothing};
const WriteRule kPwl{Effect::kProblem, nothing};

const TextRule kColumnName{Kind::kColumn, [](Families& f) -> Names& { return f.cols.names; }, nullptr, true};
const TextRule kColumnTag{Kind::kColumn, [](Families& f) -> Names& { return f.cols.tags; }};
const TextRule kRowName{Kind::kRow, [](Families& f) -> Names& { return f.rows.names; }, nullptr, true};
const TextRule kRowTag{Kind::kRow, [](Families& f) -> Names& { return f.rows.tags; }};
const TextRule kQuadRowName{Kind::kQuadRow, [](Families& f) -> Names& { return f.qrows.names; }, nullptr, true};
const TextRule kQuadRowTag{Kind::kQuadRow, [](Families& f) -> Names& { return f.qrows.tags; }};
const TextRule kModelName{Kind::kModel, nullptr, [](ModelData& data, int) -> std::string& { return data.name; }};
const TextRule kObjectiveName{Kind::kModel, nullptr,
                              [](ModelData& data, int number) -> std::string& { return data.objectives[number].name; }};

}  // namespace zelvan::rules
