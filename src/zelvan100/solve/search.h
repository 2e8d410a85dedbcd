#pragma once
// Solving a problem, whatever it is made from: a model, one of its objectives, a part of a larger search.

#include <memory>
#include <vector>

#include "param/param.h"
#include "solve/highs.h"
#include "solve/monitor.h"
#include "solve/options.h"

namespace zelvan {

// Counts over all searches so far.
struct Counts {
    double work = 0.0, iterations = 0.0, nodes = 0.0;
    int barrier_iterations = 0;
    int concurrent_winner = -1;
};

struct Claim;
struct ConePool;

// What the searches of one call share.
struct Context : Counts {
    Context(HighsSession& highs, Monitor& events);

    HighsSession& session;
    Monitor& monitor;
    const ParamValues& params;  // those of the monitor
    Care care;
    const Claim* claim = nullptr;     // what an answer is held to
    std::shared_ptr<ConePool> cones;  // what is known of the cones, in all searches

private:
    Attached attached_;
};

// What a search may begin with; each part may be empty.
struct Start {
    std::vector<double> x;  // for a MIP, NaN where a column has no value
    Basis basis;            // for an LP
};

// Limits hold for all searches of the context together.
SolverResult search(const Problem& problem, const Start& start, Context& context);
// The same on another HiGHS instance, so that the kept one goes on from its own solve.
SolverResult search_with(HighsSession& session, const Problem& problem, const Start& start, const Care& care,
                         Context& context);
// And on one that is new.
SolverResult search_aside(const Problem& problem, const Start& start, const Care& care, Context& context);
// Runs what the session holds, within what is left of the limits.
SolverResult run_session(Context& context);
// The value of the attribute Status that the outcome means.
int status_of(const SolverResult& result, const Context& context);

// Sets the options of limits to what the searches before have left of them.
void set_limits(HighsSession& session, const Context& context);

// A model without columns, or with a range that holds no value: solved without HiGHS.
bool is_trivial(const Problem& problem);

}  // namespace zelvan
