#pragma once
// The types of bounds in MPS files.

#include <string_view>

namespace zelvan {

enum class BoundValue { kNeeded, kOptional, kNone };
enum class Bound { kKept, kGiven, kInfinite, kOfBinary };  // what becomes of a bound
struct BoundCode {
    std::string_view code;
    BoundValue value;
    Bound lower, upper;
    char type;  // of the column, 0 when it stays
};
inline constexpr BoundCode kBoundCodes[] = {
    {"UP", BoundValue::kNeeded, Bound::kKept, Bound::kGiven, 0},
    {"LO", BoundValue::kNeeded, Bound::kGiven, Bound::kKept, 0},
    {"FX", BoundValue::kNeeded, Bound::kGiven, Bound::kGiven, 0},
    {"FR", BoundValue::kNone, Bound::kInfinite, Bound::kInfinite, 0},
    {"MI", BoundValue::kNone, Bound::kInfinite, Bound::kKept, 0},
    {"PL", BoundValue::kNone, Bound::kKept, Bound::kInfinite, 0},
    {"BV", BoundValue::kNone, Bound::kOfBinary, Bound::kOfBinary, 'B'},
    {"LI", BoundValue::kNeeded, Bound::kGiven, Bound::kKept, 'I'},
    {"UI", BoundValue::kNeeded, Bound::kKept, Bound::kGiven, 'I'},
    {"SC", BoundValue::kOptional, Bound::kKept, Bound::kGiven, 'S'},
    {"SI", BoundValue::kOptional, Bound::kKept, Bound::kGiven, 'N'},
};

// nullptr for what is none; codes are in capital letters.
inline const BoundCode* find_bound_code(std::string_view code) {
    for (const BoundCode& bound : kBoundCodes)
        if (bound.code == code) return &bound;
    return nullptr;
}

}  // namespace zelvan
