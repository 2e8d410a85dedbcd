#include "core/clean.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

namespace zelvan {

namespace {

// Below this length a search back through the list beats any table.
constexpr int kShort = 12;

// Position of the first term with each index, for lists whose indices are not spread too wide.
class Positions {
public:
    bool fits(int num, int largest) {
        if (largest >= 16 * static_cast<std::int64_t>(num) + kAlways) return false;
        if (at_.size() <= static_cast<std::size_t>(largest)) at_.resize(largest + largest / 2 + 1, -1);
        return true;
    }
    int& operator[](int index) { return at_[index]; }

private:
    static constexpr std::int64_t kAlways = 1 << 22;
    std::vector<int> at_;  // -1 between calls
};

int merge_short(int num, int* ind, double* val) {
    int kept = 0;
    for (int k = 0; k < num; ++k) {
        int first = 0;
        if (ind[k] < 0)
            first = kept;
        else
            while (first < kept && ind[first] != ind[k]) ++first;
        if (first < kept) {
            val[first] += val[k];
        } else {
            ind[kept] = ind[k];
            val[kept++] = val[k];
        }
    }
    return kept;
}

template <class Table>
int merge_by_table(int num, int* ind, double* val, Table&& position) {
    int kept = 0;
    for (int k = 0; k < num; ++k) {
        if (ind[k] >= 0) {
            int& first = position(ind[k]);
            if (first >= 0) {
                val[first] += val[k];
                continue;
            }
            first = kept;
        }
        ind[kept] = ind[k];
        val[kept++] = val[k];
    }
    return kept;
}

int drop_zeros(int num, int* ind, double* val) {
    int kept = 0;
    for (int k = 0; k < num; ++k) {
        if (val[k] == 0.0) continue;
        ind[kept] = ind[k];
        val[kept++] = val[k];
    }
    return kept;
}

// Places of pairs of indices in a list that is being merged.
class FirstPairs {
public:
    explicit FirstPairs(int num) {
        if (num > kShort) slots_.assign(std::bit_ceil(2 * static_cast<std::size_t>(num)), -1);
    }
    // The place of the pair of term k among the first `size` ones, or `size`, where it is to go then. A pair with a
    // negative index is like no other.
    int find_or_add(const int* row, const int* col, int k, int size) {
        const auto [low, high] = std::minmax(row[k], col[k]);
        if (low < 0) return size;
        const auto fits = [&](int at) {
            return std::minmax(row[at], col[at]) == std::pair<const int&, const int&>(low, high);
        };
        if (slots_.empty()) {
            int at = 0;
            while (at < size && !fits(at)) ++at;
            return at;
        }
        const std::size_t mask = slots_.size() - 1;
        std::size_t slot = hash(low, high) & mask;
        while (slots_[slot] >= 0 && !fits(slots_[slot])) slot = (slot + 1) & mask;
        if (slots_[slot] < 0) slots_[slot] = size;
        return slots_[slot];
    }

private:
    static std::size_t hash(int low, int high) {
        const std::uint64_t pair = static_cast<std::uint64_t>(low) << 32 | static_cast<std::uint32_t>(high);
        const std::uint64_t product = pair * 0x9E3779B97F4A7C15u;
        return product ^ product >> 32;
    }

    std::vector<int> slots_;  // at most half of them taken; empty for a short list, which is searched instead
};

// Whether each pair is larger than the one before it, so that none comes twice.
bool are_rising(int num, const int* row, const int* col) {
    for (int k = 1; k < num; ++k)
        if (std::minmax(row[k - 1], col[k - 1]) >= std::minmax(row[k], col[k])) return false;
    return true;
}

int merge_pairs(int num, int* row, int* col, double* val) {
    FirstPairs first(num);
    int merged = 0;
    for (int k = 0; k < num; ++k) {
        const int place = first.find_or_add(row, col, k, merged);
        if (place < merged) {
            val[place] += val[k];
            continue;
        }
        row[merged] = row[k];
        col[merged] = col[k];
        val[merged++] = val[k];
    }
    return merged;
}

}  // namespace

int merge_terms(int num, int* ind, double* val) {
    if (num <= kShort) return drop_zeros(merge_short(num, ind, val), ind, val);
    const int largest = *std::max_element(ind, ind + num);
    thread_local Positions positions;
    int kept;
    if (largest < 0) {
        kept = num;
    } else if (positions.fits(num, largest)) {
        kept = merge_by_table(num, ind, val, [](int index) -> int& { return positions[index]; });
        for (int k = 0; k < kept; ++k)
            if (ind[k] >= 0) positions[ind[k]] = -1;
    } else {
        std::unordered_map<int, int> table;
        kept = merge_by_table(num, ind, val,
                              [&](int index) -> int& { return table.try_emplace(index, -1).first->second; });
    }
    return drop_zeros(kept, ind, val);
}

int merge_quadratic_terms(int num, int* row, int* col, double* val) {
    const int merged = are_rising(num, row, col) ? num : merge_pairs(num, row, col, val);
    int kept = 0;
    for (int k = 0; k < merged; ++k) {
        if (val[k] == 0.0) continue;
        row[kept] = row[k];
        col[kept] = col[k];
        val[kept++] = val[k];
    }
    return kept;
}

QuadTerms merged_terms(int num, const int* row, const int* col, const double* val) {
    QuadTerms terms{{row, row + num}, {col, col + num}, {val, val + num}};
    for (int k = 0; k < num; ++k)
        if (terms.row[k] > terms.col[k]) std::swap(terms.row[k], terms.col[k]);
    const int kept = merge_quadratic_terms(num, terms.row.data(), terms.col.data(), terms.val.data());
    terms.row.resize(kept);
    terms.col.resize(kept);
    terms.val.resize(kept);
    return terms;
}

}  // namespace zelvan
