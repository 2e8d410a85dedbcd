#pragma once
// Orders in which the elimination of a sparse symmetric matrix fills in little.

#include <vector>

namespace zelvan {

// A symmetric pattern without its diagonal, both triangles.
struct Pattern {
    std::vector<int> start;  // of the rows, one more than there are rows
    std::vector<int> col;

    int size() const { return static_cast<int>(start.size()) - 1; }
};

struct EliminationOrder {
    std::vector<int> order;
    int dense_from = 0;  // place from which on what is left is nearly full
};

// Minimum degree on the quotient graph, with the approximate degrees of Amestoy, Davis, Duff 1996.
EliminationOrder elimination_order(const Pattern& pattern);

}  // namespace zelvan
