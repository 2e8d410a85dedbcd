#include "bridge/sos.h"

#include <algorithm>
#include <limits>

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

void add_at_most_one(Problem& problem, const std::vector<int>& binaries) {
    Problem::Terms terms;
    for (int z : binaries) terms.emplace_back(z, 1.0);
    problem.add_row(terms, -kInf, 1.0);
}

void add_neighbours(Problem& problem, const std::vector<int>& binaries) {
    std::vector<int> pairs;
    for (std::size_t i = 0; i < binaries.size(); ++i) {
        Problem::Terms terms{{binaries[i], 1.0}};
        if (i > 0) terms.emplace_back(pairs.back(), -1.0);
        if (i + 1 < binaries.size()) {
            pairs.push_back(problem.add_col(0.0, 1.0, 0.0, true));
            terms.emplace_back(pairs.back(), -1.0);
        }
        problem.add_row(terms, -kInf, 0.0);
    }
    add_at_most_one(problem, pairs);
}

}  // namespace

void bridge_sos(const ModelData& data, Problem& problem, Indicators& indicators) {
    for (int k = 0; k < data.sos.size(); ++k) {
        OrderedSet set{data.sos.type[k], ordered_members(data.sos, k)};
        if (static_cast<int>(set.cols.size()) <= set.type) continue;
        std::vector<int> binaries;
        for (int j : set.cols) binaries.push_back(indicators.of(j));
        if (std::find(binaries.begin(), binaries.end(), -1) != binaries.end())
            problem.disjunctions.sets.push_back(std::move(set));
        else
            (set.type == 1 ? add_at_most_one : add_neighbours)(problem, binaries);
    }
}

}  // namespace zelvan
