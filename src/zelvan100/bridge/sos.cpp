#include "bridge/sos.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_map>

#include "bridge/implied_bounds.h"
#include "core/error.h"

namespace zelvan {

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

std::vector<int> ordered_members(const SosSets& sets, int k) {
    std::vector<std::pair<double, int>> members;  // weight, column
    for (std::int64_t m = sets.start[k]; m < sets.start[k + 1]; ++m) members.emplace_back(sets.val[m], sets.col[m]);
    std::stable_sort(members.begin(), members.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<int> cols;
    for (const auto& [weight, col] : members) cols.push_back(col);
    return cols;
}

class Builder {
public:
    Builder(const ModelData& data, Problem& problem)
        : data_(data), problem_(problem), bounds_(implied_bounds(problem)) {}

    void add_set(int k) {
        const std::vector<int> cols = ordered_members(data_.sos, k);
        const int type = data_.sos.type[k];
        if (static_cast<int>(cols.size()) <= type) return;
        std::vector<int> binaries;
        for (int j : cols) binaries.push_back(indicator(j, k));
        if (type == 1)
            add_at_most_one(binaries);
        else
            add_neighbours(binaries);
    }

private:
    // The binary that is 0 only where the column is.
    int indicator(int j, int k) {
        if (problem_.integer[j] && problem_.lb[j] >= 0.0 && problem_.ub[j] <= 1.0) return j;
        if (const auto found = indicators_.find(j); found != indicators_.end()) return found->second;
        double lower = bounds_.lb[j], upper = bounds_.ub[j];
        if (lower > upper) lower = problem_.lb[j], upper = problem_.ub[j];  // nothing is feasible
        if (std::isinf(lower) || std::isinf(upper))
            throw Error(ZVN_ERROR_NOT_SUPPORTED,
                        "Variable '" + data_.col_name(j) + "' of the special ordered set '" + data_.sos_name(k) +
                            "' has an infinite bound, and the constraints imply no finite one: set a bound");
        const int z = problem_.add_col(0.0, 1.0, 0.0, true);
        problem_.add_row({{j, 1.0}, {z, -upper}}, -kInf, 0.0);
        problem_.add_row({{j, 1.0}, {z, -lower}}, 0.0, kInf);
        indicators_.emplace(j, z);
        return z;
    }

    void add_at_most_one(const std::vector<int>& binaries) {
        Problem::Terms terms;
        for (int z : binaries) terms.emplace_back(z, 1.0);
        problem_.add_row(terms, -kInf, 1.0);
    }

    void add_neighbours(const std::vector<int>& binaries) {
        std::vector<int> pairs;
        for (std::size_t i = 0; i < binaries.size(); ++i) {
            Problem::Terms terms{{binaries[i], 1.0}};
            if (i > 0) terms.emplace_back(pairs.back(), -1.0);
            if (i + 1 < binaries.size()) {
                pairs.push_back(problem_.add_col(0.0, 1.0, 0.0, true));
                terms.emplace_back(pairs.back(), -1.0);
            }
            problem_.add_row(terms, -kInf, 0.0);
        }
        add_at_most_one(pairs);
    }

    const ModelData& data_;
    Problem& problem_;
    const ColumnBounds bounds_;
    std::unordered_map<int, int> indicators_;  // by column
};

}  // namespace

void bridge_sos(const ModelData& data, Problem& problem) {
    if (data.sos.size() == 0) return;
    Builder builder(data, problem);
    for (int k = 0; k < data.sos.size(); ++k) builder.add_set(k);
}

}  // namespace zelvan
