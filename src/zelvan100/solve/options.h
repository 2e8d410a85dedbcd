#pragma once

#include <limits>

#include "param/param.h"
#include "solve/highs.h"

namespace zelvan {

// What a search is held to beyond the parameters.
struct Care {
    bool tight = false;  // the smallest tolerances that HiGHS computes with
    bool presolve = true;
    bool node = false;     // a part of a larger search, which tells the log itself
    bool simplex = false;  // of an LP: simplex, whatever the parameters ask for
    int iteration_limit = std::numeric_limits<int>::max();
    int barrier_limit = std::numeric_limits<int>::max();
    double part_of_gap = 1.0;  // that a MIP may leave
    bool relaxed = false;      // a point needn't hold in the model, only in the cones, and there not to the last digit
};

// The parameters that HiGHS has options for, without the limits.
void set_options(HighsSession& session, const ParamValues& params, const Problem& model, const Care& care = {});

}  // namespace zelvan
