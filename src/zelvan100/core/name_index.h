#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace zelvan {

constexpr char to_lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

constexpr bool equal_any_case(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (to_lower(a[i]) != to_lower(b[i])) return false;
    return true;
}

// Number of a name in a fixed list, in any letter case: open addressing over a table made at compile time.
template <std::size_t N>
class NameIndex {
public:
    constexpr explicit NameIndex(const std::array<const char*, N>& names) : names_(names) {
        for (auto& slot : slots_) slot = -1;
        for (std::size_t i = 0; i < N; ++i) {
            std::uint32_t at = hash(names[i]) % kSlots;
            while (slots_[at] >= 0) at = (at + 1) % kSlots;
            slots_[at] = static_cast<std::int16_t>(i);
        }
    }

    constexpr int find(std::string_view name) const {
        for (std::uint32_t at = hash(name) % kSlots; slots_[at] >= 0; at = (at + 1) % kSlots)
            if (equal_any_case(names_[slots_[at]], name)) return slots_[at];
        return -1;
    }

private:
    static constexpr std::uint32_t kSlots = 1024;
    static_assert(N * 4 <= kSlots);

    // FNV-1a (Fowler, Noll, Vo) over the letters in lower case.
    static constexpr std::uint32_t hash(std::string_view name) {
        std::uint32_t h = 2166136261u;
        for (char c : name) h = (h ^ static_cast<unsigned char>(to_lower(c))) * 16777619u;
        return h;
    }

    std::array<const char*, N> names_;
    std::array<std::int16_t, kSlots> slots_{};
};

}  // namespace zelvan
