#pragma once
// Outer approximation: a problem with cones is solved as a linear one, of which half-planes that hold the cones cut off
// what the cones don't allow.

#include <cstdint>
#include <optional>
#include <vector>

#include "solve/cones.h"
#include "solve/search.h"

namespace zelvan {

// The half-planes found so far, and the latest problem that took them.
struct ConePool {
    struct Relaxed {
        std::uint64_t version;  // of the problem without them
        Problem problem;
        std::size_t num_cuts;
    };
    std::vector<ConeCut> cuts;
    std::optional<Relaxed> relaxed;
};

// As search(), for a problem with cones and without disjunctions; the context has a claim. An LP is solved again until
// its point holds. With integers the relaxation comes first, then MIPs whose solutions are cut off, or made to hold
// with their integers fixed, until the best point that holds is within the gap of a MIP's bound. Half-planes are kept
// in the context for later searches of the same cones.
SolverResult search_cones(const Problem& problem, const Start& start, Context& context);

}  // namespace zelvan
