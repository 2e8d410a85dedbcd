#pragma once
// What the updates since some moment did to the numbering of columns and rows, for those who hold a copy of the model
// and want to follow it. Values (bounds, costs, sides) are cheaper to compare than to list.

#include <cstdint>
#include <vector>

namespace zelvan {

// Of the objects that were there, those not deleted come first, in their order; all behind them are new.
struct ListChange {
    int before = 0;            // objects at that moment
    std::vector<int> deleted;  // their numbers then, rising

    int kept() const { return before - static_cast<int>(deleted.size()); }
    // Whether the `size` objects that there are now are those that were there.
    bool is_none(int size) const { return deleted.empty() && before == size; }
    // `deleted` as it becomes when the objects that `keep` doesn't hold are deleted now.
    std::vector<int> deleted_after(const std::vector<char>& keep) const;
};

struct Changes {
    std::uint64_t since = 0;  // stamp of the model at that moment; see Model::stamp
    ListChange cols, rows;

    // Whether the coefficients are those of that moment.
    bool keep_matrix(int num_cols, int num_rows) const { return cols.is_none(num_cols) && rows.is_none(num_rows); }
};

}  // namespace zelvan
