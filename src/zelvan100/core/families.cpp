#include "core/families.h"

#include <span>

namespace zelvan {

namespace {

// Entries of several lists, whose values are `val`; each of `col` holds one column of an entry.
template <class... Columns>
void renumber_lists(std::span<std::int64_t> start, const std::vector<int>& number, std::vector<double>& val,
                    Columns&... col) noexcept {
    std::int64_t to = 0, from = 0;
    for (std::size_t i = 0; i + 1 < start.size(); ++i) {
        for (; from < start[i + 1]; ++from) {
            if (((number[col[from]] < 0) || ...)) continue;
            ((col[to] = number[col[from]]), ...);
            val[to++] = val[from];
        }
        start[i + 1] = to;
    }
    (col.resize(to), ...);
    val.resize(to);
}

template <class... Columns>
void renumber_list(const std::vector<int>& number, std::vector<double>& val, Columns&... col) noexcept {
    std::int64_t start[] = {0, static_cast<std::int64_t>(val.size())};
    renumber_lists(start, number, val, col...);
}

}  // namespace

void renumber(SparseRows& rows, const std::vector<int>& number) noexcept {
    renumber_lists(rows.start, number, rows.val, rows.col);
}

void renumber(QuadRows& rows, const std::vector<int>& number) noexcept {
    renumber(static_cast<SparseRows&>(rows), number);
    renumber_lists(rows.quad_start, number, rows.quad.val, rows.quad.row, rows.quad.col);
}

void renumber(SparseVector& vector, const std::vector<int>& number) noexcept {
    renumber_list(number, vector.val, vector.col);
}

void renumber(QuadTerms& terms, const std::vector<int>& number) noexcept {
    renumber_list(number, terms.val, terms.row, terms.col);
}

}  // namespace zelvan
