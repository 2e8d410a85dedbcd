#include "core/clean.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>
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
    std::unordered_map<std::uint64_t, int> first;
    int merged = 0;
    for (int k = 0; k < num; ++k) {
        const auto [low, high] = std::minmax(row[k], col[k]);
        const std::uint64_t pair =
            static_cast<std::uint64_t>(static_cast<std::uint32_t>(low)) << 32 | static_cast<std::uint32_t>(high);
        const auto [found, added] = first.try_emplace(pair, merged);
        if (!added && low >= 0) {
            val[found->second] += val[k];
            continue;
        }
        row[merged] = row[k];
        col[merged] = col[k];
        val[merged++] = val[k];
    }
    int kept = 0;
    for (int k = 0; k < merged; ++k) {
        if (val[k] == 0.0) continue;
        row[kept] = row[k];
        col[kept] = col[k];
        val[kept++] = val[k];
    }
    return kept;
}

}  // namespace zelvan
