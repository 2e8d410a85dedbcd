#pragma once
// How far a column can go in the linear relaxation of a problem: one LP over its rows and bounds.

#include <memory>

#include "solve/search.h"

namespace zelvan {

class RelaxationBound {
public:
    explicit RelaxationBound(Context& context);
    ~RelaxationBound();

    // The largest (`upper`) or smallest value of a column, loosened by what the tolerances of the LP and rounding may
    // have taken; infinite when there is none, or when that takes long. The first call takes the problem as it is then,
    // later ones go on with that.
    double operator()(const Problem& problem, int col, bool upper);

private:
    struct Relaxation;

    Context& context_;
    std::unique_ptr<Relaxation> relaxation_;
    int num_left_;  // LPs
};

}  // namespace zelvan
