#pragma once
// The last digits of a solution of a convex quadratic problem.

#include <vector>

#include "solve/problem.h"

namespace zelvan {

// A point and multipliers of the rows, and how far they are off the optimality conditions.
struct Candidate {
    std::vector<double> x, pi;
    std::vector<double> rc;        // at them
    std::vector<double> activity;  // of the rows
    double breach = 0.0;           // largest violation of bounds and rows
    double wrong = 0.0;            // largest dual value that speaks for a side that isn't there
    // Relative to the objective: products of dual values and distances to sides, and what rounding may make of it where
    // large terms cancel out.
    double gap = 0.0, noise = 0.0;

    double error() const;
};

Candidate candidate_of(const Problem& problem, std::vector<double> x, std::vector<double> pi);

// The solution on the bounds and sides that the candidate is at, of which it then takes up others and leaves some
// (Hintermueller, Ito, Kunisch 2003) as long as that improves it. The candidate itself where that is too large.
Candidate polished(const Problem& problem, Candidate candidate);

}  // namespace zelvan
