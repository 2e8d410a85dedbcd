#include "solve/elimination_order.h"

#include <algorithm>
#include <set>
#include <utility>

namespace zelvan {

namespace {

// What is left counts as full where each row has this share of it.
constexpr double kFullShare = 0.7;

// What is eliminated leaves an element: the rows that became neighbours of each other. A row keeps the neighbours that
// no element holds, and the elements that it is in.
class QuotientGraph {
public:
    explicit QuotientGraph(const Pattern& pattern)
        : neighbours_(pattern.size()),
          elements_(pattern.size()),
          members_(pattern.size()),
          mark_(pattern.size(), -1),
          outside_(pattern.size(), 0),
          seen_(pattern.size(), -1),
          degree_(pattern.size()) {
        for (int v = 0; v < pattern.size(); ++v) {
            neighbours_[v].assign(pattern.col.begin() + pattern.start[v], pattern.col.begin() + pattern.start[v + 1]);
            degree_[v] = static_cast<int>(neighbours_[v].size());
            queue_.insert({degree_[v], v});
        }
    }

    int num_left() const { return static_cast<int>(queue_.size()); }
    bool is_nearly_full() const { return queue_.begin()->first >= kFullShare * (num_left() - 1); }
    std::vector<int> left() const {
        std::vector<int> rows;
        for (const auto& [degree, v] : queue_) rows.push_back(v);
        return rows;
    }

    // The row of least degree.
    int eliminate() {
        const int v = queue_.begin()->second;
        queue_.erase(queue_.begin());
        make_element(v);
        count_outside(v);
        for (int u : members_[v]) update(u, v);
        return v;
    }

private:
    void make_element(int v) {
        std::vector<int>& members = members_[v];
        mark_[v] = v;
        const auto add = [&](int u) {
            if (mark_[u] == v) return;
            mark_[u] = v;
            members.push_back(u);
        };
        for (int u : neighbours_[v]) add(u);
        for (int e : elements_[v]) {
            for (int u : members_[e]) add(u);
            members_[e] = {};  // absorbed
        }
        neighbours_[v] = {};
        elements_[v] = {};
    }

    // How many members of the elements around v lie outside the one that v left.
    void count_outside(int v) {
        for (int u : members_[v]) {
            for (int e : elements_[u]) {
                if (seen_[e] != v) outside_[e] = static_cast<int>(members_[e].size());
                seen_[e] = v;
                --outside_[e];
            }
        }
    }

    void update(int u, int v) {
        std::erase_if(neighbours_[u], [&](int other) { return mark_[other] == v; });
        std::erase_if(elements_[u], [&](int e) { return members_[e].empty() || outside_[e] == 0; });
        int degree = static_cast<int>(neighbours_[u].size() + members_[v].size()) - 1;
        for (int e : elements_[u]) degree += outside_[e];
        elements_[u].push_back(v);
        queue_.erase({degree_[u], u});
        degree_[u] = std::min(degree, num_left());
        queue_.insert({degree_[u], u});
    }

    std::vector<std::vector<int>> neighbours_, elements_, members_;
    std::vector<int> mark_, outside_, seen_, degree_;
    std::set<std::pair<int, int>> queue_;  // degree, row
};

}  // namespace

EliminationOrder elimination_order(const Pattern& pattern) {
    QuotientGraph graph(pattern);
    EliminationOrder found;
    while (graph.num_left() > 0 && !graph.is_nearly_full()) found.order.push_back(graph.eliminate());
    found.dense_from = static_cast<int>(found.order.size());
    const std::vector<int> rest = graph.left();
    found.order.insert(found.order.end(), rest.begin(), rest.end());
    return found;
}

}  // namespace zelvan
