#pragma once
// A row of the attribute table: what an attribute is and where its values come from.

#include "attr/attr.h"
#include "core/names.h"

namespace zelvan {

// The largest number that doesn't count as infinite.
inline constexpr double kLargestFinite = kInfinityThreshold - 16384;
static_assert(kLargestFinite < kInfinityThreshold);

// Where the numbers of an attribute of columns or rows lie: in one of the arrays, or all are `same`.
struct Values {
    const double* doubles = nullptr;
    const int* ints = nullptr;
    const char* chars = nullptr;
    double same = 0.0;

    static Values of(const std::vector<double>& array) { return {array.data(), nullptr, nullptr, 0.0}; }
    static Values of(const std::vector<int>& array) { return {nullptr, array.data(), nullptr, 0.0}; }
    static Values of(const std::vector<char>& array) { return {nullptr, nullptr, array.data(), 0.0}; }
    static Values all(double value) { return {nullptr, nullptr, nullptr, value}; }
    double at(int i) const { return doubles ? doubles[i] : ints ? ints[i] : chars ? chars[i] : same; }
};

// Texts of objects; entry i without one is `prefix` and i, or "" without prefix.
struct Texts {
    const Names* names;
    const char* prefix;
};

struct AttrSpec {
    const char* name;
    AttrType type;
    Kind kind;
    bool settable = false;
    // At most one of the readers is there; each throws Error while there is no value. Without one, `why`
    // tells why there is none.
    double (*number)(const Model&) = nullptr;         // of the model
    const char* (*text)(const Model&) = nullptr;      // of the model
    Values (*values)(const Model&) = nullptr;         // of columns or rows
    double (*value_at)(const Model&, int) = nullptr;  // of columns or rows, one by one
    Texts (*texts)(const Model&) = nullptr;           // of columns or rows
    const char* why = "";
    // Whether there is a value, for readers that compute long.
    bool (*available)(const Model&) = nullptr;
    // What may be written: numbers within [minimum, maximum], one of the letters, texts of at most max_length.
    double minimum = 0.0, maximum = 0.0;
    const char* letters = nullptr;
    int max_length = 0;

    // How a written value is applied; numbers and texts each have theirs.
    const WriteRule* rule = nullptr;
    const TextRule* text_rule = nullptr;

    constexpr AttrSpec when(bool (*has_value)(const Model&)) const {
        AttrSpec spec = *this;
        spec.available = has_value;
        return spec;
    }
    constexpr AttrSpec set(double lower, double upper, const WriteRule& how) const {
        AttrSpec spec = *this;
        spec.settable = true;
        spec.minimum = lower;
        spec.maximum = upper;
        spec.rule = &how;
        return spec;
    }
    constexpr AttrSpec set(const char* allowed, const WriteRule& how) const {
        AttrSpec spec = *this;
        spec.settable = true;
        spec.letters = allowed;
        spec.rule = &how;
        return spec;
    }
    constexpr AttrSpec set_text(int longest, const TextRule& how) const {
        AttrSpec spec = *this;
        spec.settable = true;
        spec.max_length = longest;
        spec.text_rule = &how;
        return spec;
    }
};

const AttrSpec& attr_spec(int attr);

// The failure of a reader: there is no value, and why. Who called the reader puts the attribute's name to it.
inline Error missing(const std::string& why) { return {ZVN_ERROR_DATA_NOT_AVAILABLE, why}; }

}  // namespace zelvan
