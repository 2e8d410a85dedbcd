#pragma once
// The kept HiGHS instance of a model. Only highs.cpp calls HiGHS.

#include <atomic>
#include <cstdint>
#include <exception>
#include <limits>
#include <list>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

#include "solve/problem.h"

namespace zelvan {

// How far a running solve is. Counts of the kind of solve that isn't running are 0.
struct Progress {
    double iterations = 0.0;  // simplex
    double barrier_iterations = 0.0;
    double nodes = 0.0;
    bool is_mip = false;
    double primal_bound = 0.0, dual_bound = 0.0;  // of a MIP, infinite while there is none
};

enum class Answer { kGoOn, kStop };

// What a solve tells while it runs, and how it goes on. HiGHS tells it on the thread that called, with no lock
// held. An exception ends the solve and leaves run().
class SolveEvents {
public:
    virtual ~SolveEvents() = default;
    virtual void log(std::string_view text) = 0;
    // Called often, but not during presolve.
    virtual Answer progress(const Progress& progress) = 0;
    // Called now and then all the time, on another thread.
    virtual Answer poll() = 0;
    // A MIP solution, better than those before if `improves`; x has all columns of the problem.
    virtual Answer solution(double objective, const double* x, bool improves) = 0;
};

enum class Outcome {
    kOptimal,
    kInfeasible,
    kInfeasibleOrUnbounded,
    kUnbounded,
    kTimeLimit,
    kIterationLimit,
    kSolutionLimit,  // of solutions or nodes
    kStopped,        // by an answer of SolveEvents
    kMemory,
    kUnknown,
};

// Statuses as in zelvan100.h; those of a row tell at which of its sides it is.
struct Basis {
    std::vector<int> cols, rows;
};

struct SolverResult {
    Outcome outcome = Outcome::kUnknown;
    double objective = 0.0, bound = 0.0;
    double iterations = 0.0, nodes = 0.0;  // iterations of simplex, crossover and active set
    int barrier_iterations = 0;
    std::vector<double> x;         // empty without a feasible point
    std::vector<double> activity;  // at x, of the rows of the model; empty where it wasn't looked at
    std::vector<double> rc, pi;    // empty unless dual feasible
    std::vector<double> qcpi;      // the same of quadratic constraints
    Basis basis;                   // empty when there is none
    std::vector<double> farkas;    // of the rows, once an infeasibility is proven
    std::vector<double> ray;       // of the columns, once an unboundedness is proven
};

class HighsSession {
public:
    HighsSession();
    ~HighsSession();
    HighsSession(const HighsSession&) = delete;
    HighsSession& operator=(const HighsSession&) = delete;

    // Where the calls below report to, until the next call. nullptr silences them. The answer is where they did.
    SolveEvents* attach(SolveEvents* events);

    // Names are literals.
    void set_option(const char* name, bool value);
    void set_option(const char* name, int value);
    void set_option(const char* name, double value);
    void set_option(const char* name, const char* value);
    // Of each run by itself; infinite for none.
    void set_time_limit(double seconds);

    // Hands the problem over; where it descends from the one before only what differs. The basis stays, and the
    // latest solution of a MIP where it is still feasible.
    void load(const Problem& problem);
    // What it holds, for the next problem.
    const Ancestor& held() const { return held_; }
    // Costs of all columns for a further solve of the loaded model.
    void change_costs(const std::vector<double>& cost, double offset);
    void forget_basis();
    // Whether the next run goes on from the basis of the latest one.
    bool has_basis() const { return has_basis_; }
    // Columns and rows behind those of the basis are at a bound, and basic. Refused, with the answer
    // false, when it doesn't fit the model.
    bool set_basis(Basis basis);
    // A point for a MIP to begin with, NaN where a column has no value. Refused as set_basis.
    bool set_start(const std::vector<double>& x);

    // `threads` 0 leaves their number to HiGHS.
    SolverResult run(int threads);

    // Certificates after an infeasible or unbounded LP, empty when there is none.
    std::vector<double> dual_ray();
    std::vector<double> primal_ray();

    // Replaces v by the solution of B x = v, or of its transpose, with the basis matrix B; false when HiGHS
    // has no basis that it can factor.
    bool solve_basis(bool transposed, std::vector<double>& v);

private:
    struct Callback;  // what HiGHS calls
    using OptionValue = std::variant<std::monostate, bool, int, double, std::string>;

    template <class Question>
    bool must_stop(Question question) noexcept;
    template <class Call>
    int watched(Call call);
    template <class Value, class Call>
    void hand_on(const char* name, const Value& value, Call call);
    void check(int status, const char* what);
    void pass(const Problem& problem);
    bool edit(const Problem& problem, bool same_model);
    void delete_cols(std::vector<int> cols);
    void delete_rows(std::vector<int> rows);
    void add_cols(const Problem& problem);
    void add_rows(const Problem& problem);
    void pass_values(const Problem& problem);
    void pass_coefficients(const Problem& problem, bool rows_stay);
    SolverResult fetch();
    std::vector<double> certificate(std::size_t size, int (*get)(const void*, int*, double*));

    void* highs_;
    std::list<void*> instance_;  // highs_, in a node that needs no memory to be queued for destruction
    int threads_ = 0;            // as asked for
    double time_limit_ = std::numeric_limits<double>::infinity();  // the option, which a stop sets to 0
    SolveEvents* events_ = nullptr;
    std::atomic<bool> stopped_{false};  // by an answer or an exception
    std::mutex mutex_;                  // guards thrown_
    std::exception_ptr thrown_;         // by events_
    std::string fault_;                 // the latest error line of the log

    std::unordered_map<std::string_view, OptionValue> options_;  // as handed on

    // What HiGHS holds, to find what differs in the next problem.
    Ancestor held_;
    std::uint64_t version_ = 0;  // of its problem
    int model_cols_ = 0, model_rows_ = 0;
    int sense_ = 1;
    double offset_ = 0.0;
    std::vector<double> cost_, lb_, ub_, row_lower_, row_upper_;
    std::vector<char> integer_;
    std::vector<double> coefficients_;  // of the rows whose coefficients may change
    bool has_basis_ = false;            // of the latest solve
    std::vector<double> incumbent_;     // of the latest MIP solve
};

// While one of these lives, the session tells the events; then it goes on with those before.
class Attached {
public:
    Attached(HighsSession& session, SolveEvents* events) : session_(session), before_(session.attach(events)) {}
    ~Attached() { session_.attach(before_); }
    SolveEvents& before() const { return *before_; }
    Attached(const Attached&) = delete;
    Attached& operator=(const Attached&) = delete;

private:
    HighsSession& session_;
    SolveEvents* const before_;
};

}  // namespace zelvan
