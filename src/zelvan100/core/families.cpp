#include "core/families.h"

#include <algorithm>

namespace zelvan {

void compact(SparseRows& rows, const std::vector<char>& keep) noexcept {
    std::int64_t to = 0;
    std::size_t next = 0;
    for (std::size_t i = 0; i < keep.size(); ++i) {
        const std::int64_t first = rows.start[i], length = rows.start[i + 1] - first;
        if (!keep[i]) continue;
        std::copy_n(rows.col.begin() + first, length, rows.col.begin() + to);
        std::copy_n(rows.val.begin() + first, length, rows.val.begin() + to);
        rows.start[next++] = to;  // not above i, so the starts still to be read stay
        to += length;
    }
    rows.start.resize(next + 1);
    rows.start[next] = to;
    rows.col.resize(to);
    rows.val.resize(to);
}

void renumber(SparseRows& rows, const std::vector<int>& number) noexcept {
    std::int64_t to = 0, from = 0;
    for (std::size_t i = 0; i + 1 < rows.start.size(); ++i) {
        for (; from < rows.start[i + 1]; ++from) {
            const int col = number[rows.col[from]];
            if (col < 0) continue;
            rows.col[to] = col;
            rows.val[to++] = rows.val[from];
        }
        rows.start[i + 1] = to;
    }
    rows.col.resize(to);
    rows.val.resize(to);
}

void renumber(SparseVector& vector, const std::vector<int>& number) noexcept {
    std::size_t to = 0;
    for (std::size_t k = 0; k < vector.col.size(); ++k) {
        const int col = number[vector.col[k]];
        if (col < 0) continue;
        vector.col[to] = col;
        vector.val[to++] = vector.val[k];
    }
    vector.col.resize(to);
    vector.val.resize(to);
}

}  // namespace zelvan
