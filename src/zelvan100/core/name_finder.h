#pragma once

#include <cstdint>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "core/names.h"

namespace zelvan {

// Finds objects by name. New and renamed objects are taken in at the next search, so that adding and finding in turn
// stays cheap; a hash that no longer fits its object's name does no harm, as names are compared.
class NameFinder {
public:
    // The first object of that name, -1 when there is none.
    int find(const Names& names, std::string_view name);

    // The name of object i will change: room to note it, then the note.
    void expect_renames(std::size_t num);
    void renamed(int i) noexcept;
    // Objects were deleted; number[i] is the new number of object i, negative for those that are gone.
    void renumber(const std::vector<int>& number) noexcept;

private:
    using Key = std::pair<std::uint64_t, int>;  // hash of a name, object

    void take_in(const Names& names);
    void insert(const Names& names, int i);
    int first_of(const Names& names, std::string_view name, std::uint64_t hash) const;

    std::vector<Key> keys_;     // sorted
    std::set<Key> recent_;      // few against keys_
    std::vector<int> renamed_;  // not yet taken in
    int known_ = 0;             // objects taken in
};

}  // namespace zelvan
