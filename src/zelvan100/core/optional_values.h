#pragma once
// Values that most objects don't have: starts, hints, priorities. An array is there once one value was set.

#include <cstddef>
#include <utility>
#include <vector>

#include "zelvan100.h"

namespace zelvan {

// The value of an attribute that was never set.
inline constexpr double kUndefined = 1e101;

enum class Option : int {
    kStart,
    kHintValue,
    kHintPriority,
    kBranchPriority,
    kPartition,
    kColumnBasis,
    kPoolIgnore,
    kIisLowerForce,
    kIisUpperForce,
    kPrimalStart,
    kRowBasis,
    kIisForce,
    kDualStart,
    kLazy,
};

// The value of an option where it was never set, in the order of Option.
inline constexpr double kUnset[] = {kUndefined, kUndefined, 0.0,        0.0,       0.0,  ZVN_NONBASIC_LOWER, 0.0,
                                    -1.0,       -1.0,       kUndefined, ZVN_BASIC, -1.0, kUndefined,         0.0};

constexpr double unset(Option option) { return kUnset[static_cast<int>(option)]; }

class OptionalValues {
public:
    // The values of all objects, or nullptr where none was set.
    const std::vector<double>* find(Option option) const {
        for (const Entry& entry : entries_)
            if (entry.option == option) return &entry.values;
        return nullptr;
    }
    std::vector<double>* find(Option option) {
        return const_cast<std::vector<double>*>(static_cast<const OptionalValues*>(this)->find(option));
    }
    // Takes over an array for an option that has none. Room for it must have been made.
    void adopt(Option option, std::vector<double>&& values) noexcept {
        entries_.push_back({option, std::move(values)});
    }
    void make_room(std::size_t options) { entries_.reserve(entries_.size() + options); }
    void erase(Option option) noexcept {
        for (std::size_t k = 0; k < entries_.size(); ++k) {
            if (entries_[k].option != option) continue;
            entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(k));
            return;
        }
    }
    void clear() noexcept { entries_.clear(); }
    bool empty() const { return entries_.empty(); }

    // Grows or cuts all arrays; new objects have no values.
    void resize(std::size_t size) {
        for (Entry& entry : entries_) entry.values.resize(size, unset(entry.option));
    }
    template <class Body>
    void for_each(Body&& body) {
        for (Entry& entry : entries_) body(entry.values);
    }

private:
    struct Entry {
        Option option;
        std::vector<double> values;
    };
    std::vector<Entry> entries_;
};

}  // namespace zelvan
