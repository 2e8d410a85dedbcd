#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace zelvan {

// Distinct names, numbered in the order of their coming. The text stays the caller's and must outlive
// the table.
class NameTable {
public:
    int size() const { return static_cast<int>(names_.size()); }
    std::string_view name(int i) const { return names_[i]; }

    // Number of the name, -1 when there is none.
    int find(std::string_view name) const {
        if (slots_.empty()) return -1;
        return slots_[slot_of(name, hash(name))];
    }

    // Number of the name, added if it is new; tell by the size.
    int find_or_add(std::string_view name) {
        if (2 * names_.size() >= slots_.size()) grow();
        const std::uint32_t h = hash(name);
        int& slot = slots_[slot_of(name, h)];
        if (slot < 0) {
            slot = size();
            names_.push_back(name);
            hashes_.push_back(h);
        }
        return slot;
    }

    // False when the name was there already.
    bool add(std::string_view name) {
        const int before = size();
        return find_or_add(name) == before;
    }

private:
    static std::uint32_t hash(std::string_view name) {
        std::uint64_t h = name.size();
        const char* at = name.data();
        for (std::size_t left = name.size(); left > 0;) {
            std::uint64_t chunk = 0;
            const std::size_t n = left < 8 ? left : 8;
            std::memcpy(&chunk, at, n);
            h = (h ^ chunk) * 0x9E3779B97F4A7C15u;
            h ^= h >> 32;
            at += n;
            left -= n;
        }
        return static_cast<std::uint32_t>(h);
    }

    std::size_t slot_of(std::string_view name, std::uint32_t h) const {
        const std::size_t mask = slots_.size() - 1;
        std::size_t at = h & mask;
        while (slots_[at] >= 0 && (hashes_[slots_[at]] != h || names_[slots_[at]] != name)) at = (at + 1) & mask;
        return at;
    }

    void grow() {
        slots_.assign(slots_.empty() ? 64 : 2 * slots_.size(), -1);
        const std::size_t mask = slots_.size() - 1;
        for (int i = 0; i < size(); ++i) {
            std::size_t at = hashes_[i] & mask;
            while (slots_[at] >= 0) at = (at + 1) & mask;
            slots_[at] = i;
        }
    }

    std::vector<std::string_view> names_;
    std::vector<std::uint32_t> hashes_;
    std::vector<int> slots_;  // number of a name or -1; a power of two, at most half full
};

}  // namespace zelvan
