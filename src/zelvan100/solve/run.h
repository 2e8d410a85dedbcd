#pragma once
// The solves of one call of optimize() on the model's HiGHS session.

#include "core/model.h"
#include "solve/highs.h"
#include "solve/monitor.h"

namespace zelvan {

class Run {
public:
    explicit Run(Model& model);
    ~Run();
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    const ParamValues params;  // as they stood at the begin
    Monitor monitor;
    // Counts over all solves so far.
    double work = 0.0, iterations = 0.0, nodes = 0.0;
    int barrier_iterations = 0;
    int concurrent_winner = -1;

    // What a solve may begin with; each part may be empty.
    struct Start {
        std::vector<double> x;  // for a MIP, NaN where a column has no value
        Basis basis;            // for an LP
    };
    // Solves with `params`.
    SolverResult solve(const Problem& problem, const Start& start = {});
    // The value of the attribute Status that the outcome means.
    int status_of(const SolverResult& result) const;
    HighsSession& session() { return *model_.session; }

private:
    SolverResult run_loaded(const Problem& problem);
    void pass_start(const Problem& problem, const Start& start);
    SolverResult tell_apart(const Problem& problem);
    SolverResult run_method(const Problem& problem);
    SolverResult run_session();
    void end_run(const SolverResult& result);

    Model& model_;
};

// A model without columns, or with a range that holds no value: solved without HiGHS.
bool is_trivial(const Problem& problem);
SolverResult solve_trivial(const Problem& problem, double tolerance);

}  // namespace zelvan
