#pragma once
// Merging terms of equal columns.

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include "expr_memory.h"

namespace zelvanpy {

// Position of the first term of its variables among the terms so far, by open addressing.
class FirstOccurrence {
public:
    explicit FirstOccurrence(std::uint32_t terms) {
        std::size_t slots = 16;
        while (slots < 2 * std::size_t{terms}) slots *= 2;
        positions_.assign(slots, kNone);
    }
    // The position of the first term of the same variables; the given one is entered where there is none.
    template <class T>
    std::uint32_t find_or_enter(const T* terms, std::uint32_t position) {
        for (std::size_t slot = mixed(terms[position].hash());; ++slot) {
            std::uint32_t& entry = positions_[slot & (positions_.size() - 1)];
            if (entry == kNone) return entry = position;
            if (terms[entry].merges_with(terms[position])) return entry;
        }
    }

private:
    static constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();
    // Every bit of the key moves the low bits (the finalizer of MurmurHash3).
    static std::size_t mixed(std::uint64_t key) {
        key = (key ^ key >> 33) * 0xFF51AFD7ED558CCD;
        return (key ^ key >> 33) * 0xC4CEB9FE1A85EC53 >> 20;
    }
    std::vector<std::uint32_t> positions_;
};

// A term whose variables were seen before adds its coefficient to the first occurrence; terms of coefficient 0 go.
template <class E>
void merge_terms(E* e) {
    if (e->size > 1) {
        FirstOccurrence first(e->size);
        for (std::uint32_t i = 0; i < e->size; ++i) {
            const std::uint32_t position = first.find_or_enter(e->terms, i);
            if (position == i) continue;
            e->terms[position].coeff += e->terms[i].coeff;
            e->terms[i].coeff = 0.0;
        }
    }
    const auto is_kept = [](const auto& term) { return term.coeff != 0.0; };
    const auto kept = static_cast<std::size_t>(std::count_if(e->terms, e->terms + e->size, is_kept));
    if (kept == e->size) return;
    TermBuffer<typename E::TermType> buffer;
    buffer.terms().reserve(kept);
    for (std::uint32_t i = 0; i < e->size; ++i)
        if (is_kept(e->terms[i])) buffer.append(e->terms[i]);
    swap_terms(e, buffer);
}

}  // namespace zelvanpy
