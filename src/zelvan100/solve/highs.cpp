#include "solve/highs.h"

#include <interfaces/highs_c_api.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>
#include <utility>

#include "core/error.h"
#include "solve/watcher.h"

namespace zelvan {

namespace {

// Numbers of HighsModelStatus that the C interface doesn't name.
constexpr int kModelStatusMemoryLimit = 18;
constexpr int kModelStatusHighsInterrupt = 19;
// Violation up to which an old solution is given to a changed MIP.
constexpr double kStartTolerance = 1e-6;
constexpr const char* kTimeLimit = "time_limit";
// HighsLogType of error lines.
constexpr int kLogError = 5;

// HiGHS keeps one scheduler for each thread that calls it, whose size is fixed while it lives. While one
// of these lives the calling thread has the scheduler that was asked for.
class Scheduler {
public:
    explicit Scheduler(int wanted) : wanted_(wanted) {
        const bool forked = here_.process != getpid();
        if (here_.running == 0 || forked) {
            // After a fork the scheduler's threads are gone: joining them would wait for ever.
            if (here_.threads >= 0 && (forked || here_.threads != wanted)) Highs_resetGlobalScheduler(forked ? 0 : 1);
            here_.threads = wanted;
            here_.running = 0;
            here_.process = getpid();
        }
        ++here_.running;
    }
    ~Scheduler() {
        if (--here_.running == 0) destroy_retired();
    }
    Scheduler(const Scheduler&) = delete;
    Scheduler& operator=(const Scheduler&) = delete;
    // Value for the option `threads`. A solve in a callback of another one has to take what is there.
    int threads() const { return here_.threads == wanted_ ? wanted_ : 0; }

    // Destroys an instance of HiGHS, which ends the scheduler of the calling thread: only after a solve that
    // runs on it, in whose callbacks this may be called.
    static void retire(std::list<void*>& instance) {
        here_.retired.splice(here_.retired.end(), instance);
        if (here_.running == 0) destroy_retired();
    }

private:
    struct Here {
        int threads = -1;  // as asked for; -1 before the first solve on this thread
        int running = 0;
        pid_t process = 0;
        std::list<void*> retired;
    };
    static void destroy_retired() {
        for (void* highs : here_.retired) Highs_destroy(highs);
        here_.retired.clear();
    }
    static thread_local Here here_;
    const int wanted_;
};
thread_local Scheduler::Here Scheduler::here_;

// Without the elements of these numbers, which rise.
template <class T>
void erase(std::vector<T>& values, const std::vector<int>& gone) {
    auto next = gone.begin();
    std::size_t kept = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (next != gone.end() && *next == static_cast<int>(i))
            ++next;
        else
            values[kept++] = values[i];
    }
    values.resize(kept);
}

// Appends what `values` has behind the size of `kept`.
template <class T>
void append_rest(std::vector<T>& kept, const std::vector<T>& values) {
    kept.insert(kept.end(), values.begin() + static_cast<std::ptrdiff_t>(kept.size()), values.end());
}

// Appends first, first + 1, ..., end - 1.
void append_numbers(std::vector<int>& numbers, int first, int end) {
    for (int number = first; number < end; ++number) numbers.push_back(number);
}

// First and last position where two arrays of one length differ; first > last when they are equal.
std::pair<int, int> differing(const std::vector<double>& a, const std::vector<double>& b) {
    if (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0) return {0, -1};
    int first = 0, last = static_cast<int>(a.size()) - 1;
    while (first <= last && a[first] == b[first]) ++first;
    while (last >= first && a[last] == b[last]) --last;
    return {first, last};
}

std::pair<int, int> joined(std::pair<int, int> a, std::pair<int, int> b) {
    if (a.first > a.second) return b;
    if (b.first > b.second) return a;
    return {std::min(a.first, b.first), std::max(a.second, b.second)};
}

std::vector<HighsInt> integrality(const std::vector<char>& integer) { return {integer.begin(), integer.end()}; }

// Stable.
std::vector<int> ordered_by(const std::vector<int>& keys, int num_keys, const std::vector<int>& order) {
    std::vector<int> next(num_keys + 1, 0), found(order.size());
    for (int k : order) ++next[keys[k] + 1];
    std::partial_sum(next.begin(), next.end(), next.begin());
    for (int k : order) found[next[keys[k]]++] = k;
    return found;
}

// The second derivatives of the objective, lower triangle by columns, each from its diagonal down: HiGHS takes the
// first entry of a column for the diagonal, without a look.
class Hessian {
public:
    explicit Hessian(const Problem& problem) : start_(problem.num_cols() + 1, 0) {
        const QuadTerms& terms = problem.quad;
        if (terms.empty()) return;
        std::vector<int> order(terms.size());
        std::iota(order.begin(), order.end(), 0);
        order = ordered_by(terms.row, problem.num_cols(), ordered_by(terms.col, problem.num_cols(), order));
        index_.reserve(terms.size());
        value_.reserve(terms.size());
        for (int k : order) {
            ++start_[terms.row[k] + 1];
            index_.push_back(terms.col[k]);
            value_.push_back(terms.row[k] == terms.col[k] ? 2.0 * terms.val[k] : terms.val[k]);
        }
        std::partial_sum(start_.begin(), start_.end(), start_.begin());
    }

    HighsInt size() const { return static_cast<HighsInt>(value_.size()); }
    const HighsInt* start() const { return start_.data(); }
    const HighsInt* index() const { return index_.data(); }
    const double* value() const { return value_.data(); }

private:
    std::vector<HighsInt> start_, index_;
    std::vector<double> value_;
};

Outcome outcome_of(int status) {
    switch (status) {
        case kHighsModelStatusOptimal:
            return Outcome::kOptimal;
        case kHighsModelStatusInfeasible:
            return Outcome::kInfeasible;
        case kHighsModelStatusUnboundedOrInfeasible:
            return Outcome::kInfeasibleOrUnbounded;
        case kHighsModelStatusUnbounded:
            return Outcome::kUnbounded;
        case kHighsModelStatusTimeLimit:
            return Outcome::kTimeLimit;
        case kHighsModelStatusIterationLimit:
            return Outcome::kIterationLimit;
        case kHighsModelStatusSolutionLimit:
            return Outcome::kSolutionLimit;
        case kHighsModelStatusInterrupt:
        case kModelStatusHighsInterrupt:
            return Outcome::kStopped;
        case kModelStatusMemoryLimit:
            return Outcome::kMemory;
        default:
            return Outcome::kUnknown;
    }
}

// Where a nonbasic column or row is that HiGHS doesn't place.
int bound_status(double lower, double upper) {
    return std::isfinite(lower) ? ZVN_NONBASIC_LOWER : std::isfinite(upper) ? ZVN_NONBASIC_UPPER : ZVN_SUPERBASIC;
}

std::vector<int> basis_statuses(const std::vector<int>& highs, const std::vector<double>& lower,
                                const std::vector<double>& upper) {
    static_assert(kHighsBasisStatusLower == 0 && kHighsBasisStatusBasic == 1 && kHighsBasisStatusUpper == 2 &&
                  kHighsBasisStatusZero == 3);
    constexpr int kStatuses[] = {ZVN_NONBASIC_LOWER, ZVN_BASIC, ZVN_NONBASIC_UPPER, ZVN_SUPERBASIC};
    std::vector<int> statuses(highs.size());
    // Of the others, which are nonbasic, HiGHS doesn't say where.
    for (std::size_t i = 0; i < highs.size(); ++i)
        statuses[i] = highs[i] <= kHighsBasisStatusZero ? kStatuses[highs[i]] : bound_status(lower[i], upper[i]);
    return statuses;
}

double double_info(const void* highs, const char* name) {
    double value = 0.0;
    Highs_getDoubleInfoValue(highs, name, &value);
    return value;
}

int int_info(const void* highs, const char* name) {
    HighsInt value = 0;
    Highs_getIntInfoValue(highs, name, &value);
    return value;
}

}  // namespace

struct HighsSession::Callback {
    static Progress progress_of(int type, const HighsCallbackDataOut& data) {
        Progress progress;
        progress.is_mip = type == kHighsCallbackMipInterrupt;
        progress.iterations =
            progress.is_mip ? static_cast<double>(data.mip_total_lp_iterations) : data.simplex_iteration_count;
        progress.barrier_iterations = data.ipm_iteration_count;
        progress.nodes = static_cast<double>(data.mip_node_count);
        progress.primal_bound = data.mip_primal_bound;
        progress.dual_bound = data.mip_dual_bound;
        return progress;
    }

    static Answer dispatch(HighsSession& session, int type, const char* message, const HighsCallbackDataOut& data) {
        SolveEvents& events = *session.events_;
        switch (type) {
            case kHighsCallbackLogging:
                if (data.log_type == kLogError) session.fault_ = message;
                events.log(message);
                return Answer::kGoOn;
            case kHighsCallbackMipSolution:
            case kHighsCallbackMipImprovingSolution:
                return events.solution(data.objective_function_value, data.mip_solution,
                                       type == kHighsCallbackMipImprovingSolution);
            default:
                return events.progress(progress_of(type, data));
        }
    }

    static void call(int type, const char* message, const HighsCallbackDataOut* data, HighsCallbackDataIn* answer,
                     void* user) {
        HighsSession& session = *static_cast<HighsSession*>(user);
        const bool stop = session.must_stop([&] { return dispatch(session, type, message, *data); });
        const bool asks = type == kHighsCallbackSimplexInterrupt || type == kHighsCallbackIpmInterrupt ||
                          type == kHighsCallbackMipInterrupt;
        // HiGHS keeps the answer of the last call, so it is given each time.
        answer->user_interrupt = asks && stop;
    }
};

HighsSession::HighsSession() : highs_(Highs_create()), instance_{highs_} {
    if (!highs_) throw std::bad_alloc();
    set_option("log_to_console", false);
    check(Highs_setCallback(highs_, &Callback::call, this), "set the callback");
    for (int type : {kHighsCallbackLogging, kHighsCallbackSimplexInterrupt, kHighsCallbackIpmInterrupt,
                     kHighsCallbackMipInterrupt, kHighsCallbackMipSolution, kHighsCallbackMipImprovingSolution})
        check(Highs_startCallback(highs_, type), "start the callback");
}

HighsSession::~HighsSession() { Scheduler::retire(instance_); }

template <class Question>
bool HighsSession::must_stop(Question question) noexcept {
    try {
        if (events_ && question() == Answer::kStop) stopped_ = true;
    } catch (...) {
        const std::lock_guard lock(mutex_);
        if (!thrown_) thrown_ = std::current_exception();
        stopped_ = true;
    }
    return stopped_;
}

// A long call of HiGHS, which the events may stop. Its presolve asks nobody, but looks at the option time_limit.
template <class Call>
int HighsSession::watched(Call call) {
    thrown_ = nullptr;
    stopped_ = false;
    fault_.clear();
    int status = 0;
    {
        const Scheduler scheduler(threads_);
        set_option("threads", scheduler.threads());
        // The one word that HiGHS reads while it is written: an aligned double, of which no processor shows a
        // half, written by a function that else only reads. Again each time, as HiGHS may restore its options.
        const Watcher watcher([this] {
            if (must_stop([this] { return events_->poll(); })) Highs_setDoubleOptionValue(highs_, kTimeLimit, 0.0);
        });
        status = call();
    }
    if (stopped_) {
        options_.erase(kTimeLimit);
        set_option(kTimeLimit, time_limit_);
    }
    if (thrown_) std::rethrow_exception(thrown_);
    return status;
}

SolveEvents* HighsSession::attach(SolveEvents* events) { return std::exchange(events_, events); }

void HighsSession::check(int status, const char* what) {
    if (status != kHighsStatusError) return;
    while (!fault_.empty() && std::isspace(static_cast<unsigned char>(fault_.back()))) fault_.pop_back();
    throw Error(ZVN_ERROR_INTERNAL, std::string("HiGHS failed to ") + what + (fault_.empty() ? "" : ": ") + fault_);
}

// HiGHS looks for an option by comparing names one after the other, so only what changes is handed on.
template <class Value, class Call>
void HighsSession::hand_on(const char* name, const Value& value, Call call) {
    OptionValue& known = options_[name];
    if (known == OptionValue(value)) return;
    check(call(highs_, name, value), name);
    known = value;
}

void HighsSession::set_option(const char* name, bool value) { hand_on(name, value, Highs_setBoolOptionValue); }

void HighsSession::set_option(const char* name, int value) { hand_on(name, value, Highs_setIntOptionValue); }

void HighsSession::set_option(const char* name, double value) { hand_on(name, value, Highs_setDoubleOptionValue); }

void HighsSession::set_option(const char* name, const char* value) { hand_on(name, value, Highs_setStringOptionValue); }

void HighsSession::load(const Problem& problem) {
    const Ancestor held = std::exchange(held_, {});  // nothing, unless all below succeeds
    const bool same = held.stamp != 0 && held.stamp == problem.stamp();
    const bool follows = held.stamp != 0 && problem.changes() && problem.changes()->since == held.stamp;
    if (same || follows) {
        const bool rows_stay = edit(problem, same);
        pass_values(problem);
        pass_coefficients(problem, rows_stay);
    } else {
        pass(problem);
        pass_coefficients(problem, false);
        cost_ = problem.cost;
        lb_ = problem.lb;
        ub_ = problem.ub;
        row_lower_ = problem.row_lower;
        row_upper_ = problem.row_upper;
        incumbent_.clear();
        has_basis_ = false;
    }
    sense_ = problem.sense;
    offset_ = problem.offset;
    integer_ = problem.integer;
    version_ = problem.version();
    model_cols_ = problem.model_cols();
    model_rows_ = problem.model_rows();
    held_ = problem.as_ancestor();
    if (problem.is_mip() && !incumbent_.empty() && problem.is_feasible(incumbent_, kStartTolerance))
        set_start(incumbent_);
}

void HighsSession::pass(const Problem& problem) {
    const std::vector<HighsInt> types = problem.is_mip() ? integrality(problem.integer) : std::vector<HighsInt>();
    const Hessian hessian(problem);
    check(Highs_passModel(highs_, problem.num_cols(), problem.num_rows(), problem.num_entries(), hessian.size(),
                          kHighsMatrixFormatRowwise, kHighsHessianFormatTriangular, problem.sense, problem.offset,
                          problem.cost.data(), problem.lb.data(), problem.ub.data(), problem.row_lower.data(),
                          problem.row_upper.data(), problem.start.data(), problem.col(), problem.val(), hessian.start(),
                          hessian.index(), hessian.value(), types.empty() ? nullptr : types.data()),
          "take the model");
}

// Columns and rows, by the calls that keep the basis. The answer is whether the additions to the model's own stay.
bool HighsSession::edit(const Problem& problem, bool same_model) {
    std::vector<int> cols, rows;
    if (!same_model) {
        cols = problem.changes()->cols.deleted;
        rows = problem.changes()->rows.deleted;
    }
    const bool additions_stay = same_model && (problem.version() == version_ || problem.base_version() == version_);
    if (!additions_stay) {
        append_numbers(cols, model_cols_, static_cast<int>(cost_.size()));
        append_numbers(rows, model_rows_, static_cast<int>(row_lower_.size()));
    }
    if (!cols.empty()) delete_cols(std::move(cols));
    if (!rows.empty()) delete_rows(std::move(rows));
    if (static_cast<int>(cost_.size()) < problem.num_cols()) add_cols(problem);
    if (static_cast<int>(row_lower_.size()) < problem.num_rows()) add_rows(problem);
    return additions_stay;
}

void HighsSession::delete_cols(std::vector<int> cols) {
    check(Highs_deleteColsBySet(highs_, static_cast<HighsInt>(cols.size()), cols.data()), "delete columns");
    for (auto* values : {&cost_, &lb_, &ub_, &incumbent_}) erase(*values, cols);
    erase(integer_, cols);
}

void HighsSession::delete_rows(std::vector<int> rows) {
    check(Highs_deleteRowsBySet(highs_, static_cast<HighsInt>(rows.size()), rows.data()), "delete rows");
    for (auto* values : {&row_lower_, &row_upper_}) erase(*values, rows);
}

void HighsSession::add_cols(const Problem& problem) {
    const int first = static_cast<int>(cost_.size()), num = problem.num_cols() - first;
    const int entries_end = problem.start[row_lower_.size()];  // of the rows that HiGHS has
    std::vector<HighsInt> start(num + 1, 0), row;
    for (int k = 0; k < entries_end; ++k)
        if (problem.col()[k] >= first) ++start[problem.col()[k] - first + 1];
    for (int j = 0; j < num; ++j) start[j + 1] += start[j];
    row.resize(start[num]);
    std::vector<double> value(start[num]);
    std::vector<HighsInt> next(start.begin(), start.end() - 1);
    for (std::size_t i = 0; i < row_lower_.size(); ++i) {
        for (int k = problem.start[i]; k < problem.start[i + 1]; ++k) {
            if (problem.col()[k] < first) continue;
            const HighsInt place = next[problem.col()[k] - first]++;
            row[place] = static_cast<HighsInt>(i);
            value[place] = problem.val()[k];
        }
    }
    check(Highs_addCols(highs_, num, &problem.cost[first], &problem.lb[first], &problem.ub[first], start[num],
                        start.data(), row.data(), value.data()),
          "add columns");
    append_rest(cost_, problem.cost);
    append_rest(lb_, problem.lb);
    append_rest(ub_, problem.ub);
    integer_.resize(cost_.size(), 0);
    for (std::size_t j = incumbent_.size(); !incumbent_.empty() && j < lb_.size(); ++j)
        incumbent_.push_back(std::max(lb_[j], std::min(ub_[j], 0.0)));
}

void HighsSession::add_rows(const Problem& problem) {
    const int first = static_cast<int>(row_lower_.size()), num = problem.num_rows() - first;
    const int begin = problem.start[first];
    std::vector<HighsInt> start;
    start.reserve(num);
    for (int i = first; i < problem.num_rows(); ++i) start.push_back(problem.start[i] - begin);
    check(Highs_addRows(highs_, num, &problem.row_lower[first], &problem.row_upper[first],
                        problem.num_entries() - begin, start.data(), problem.col() + begin, problem.val() + begin),
          "add rows");
    append_rest(row_lower_, problem.row_lower);
    append_rest(row_upper_, problem.row_upper);
}

void HighsSession::pass_values(const Problem& problem) {
    if (problem.sense != sense_) check(Highs_changeObjectiveSense(highs_, problem.sense), "change the sense");
    if (problem.offset != offset_) check(Highs_changeObjectiveOffset(highs_, problem.offset), "change the offset");
    if (const auto [first, last] = differing(cost_, problem.cost); first <= last) {
        check(Highs_changeColsCostByRange(highs_, first, last, &problem.cost[first]), "change costs");
        cost_ = problem.cost;
    }
    if (const auto [first, last] = joined(differing(lb_, problem.lb), differing(ub_, problem.ub)); first <= last) {
        check(Highs_changeColsBoundsByRange(highs_, first, last, &problem.lb[first], &problem.ub[first]),
              "change bounds");
        lb_ = problem.lb;
        ub_ = problem.ub;
    }
    if (const auto [first, last] =
            joined(differing(row_lower_, problem.row_lower), differing(row_upper_, problem.row_upper));
        first <= last) {
        check(Highs_changeRowsBoundsByRange(highs_, first, last, &problem.row_lower[first], &problem.row_upper[first]),
              "change row sides");
        row_lower_ = problem.row_lower;
        row_upper_ = problem.row_upper;
    }
    if (problem.integer == integer_) return;
    if (!problem.is_mip()) {
        check(Highs_clearIntegrality(highs_), "clear the integrality");
    } else {
        const std::vector<HighsInt> types = integrality(problem.integer);
        check(Highs_changeColsIntegralityByRange(highs_, 0, problem.num_cols() - 1, types.data()), "change types");
    }
}

// What differs, where HiGHS has the rows already.
void HighsSession::pass_coefficients(const Problem& problem, bool rows_stay) {
    const auto [first, last] = problem.variable_rows();
    const int begin = problem.start[first], end = problem.start[last];
    const double* values = problem.val() + begin;
    if (rows_stay && coefficients_.size() == static_cast<std::size_t>(end - begin)) {
        for (int i = first; i < last; ++i)
            for (int k = problem.start[i]; k < problem.start[i + 1]; ++k)
                if (problem.val()[k] != coefficients_[k - begin])
                    check(Highs_changeCoeff(highs_, i, problem.col()[k], problem.val()[k]), "change a coefficient");
    }
    coefficients_.assign(values, values + (end - begin));
}

void HighsSession::change_costs(const std::vector<double>& cost, double offset) {
    check(Highs_changeObjectiveOffset(highs_, offset), "change the offset");
    check(Highs_changeColsCostByRange(highs_, 0, static_cast<int>(cost.size()) - 1, cost.data()), "change costs");
    cost_ = cost;
    offset_ = offset;
}

void HighsSession::forget_basis() {
    check(Highs_clearSolver(highs_), "clear the basis");
    incumbent_.clear();
    has_basis_ = false;
}

bool HighsSession::set_basis(Basis basis) {
    const std::size_t num_cols = cost_.size(), num_rows = row_lower_.size();
    if (basis.rows.empty() || basis.cols.size() > num_cols || basis.rows.size() > num_rows) return false;
    for (std::size_t j = basis.cols.size(); j < num_cols; ++j) basis.cols.push_back(bound_status(lb_[j], ub_[j]));
    basis.rows.resize(num_rows, ZVN_BASIC);
    const auto translated = [](const std::vector<int>& statuses) {
        std::vector<HighsInt> highs;
        highs.reserve(statuses.size());
        for (int status : statuses)
            highs.push_back(status == ZVN_BASIC            ? kHighsBasisStatusBasic
                            : status == ZVN_NONBASIC_LOWER ? kHighsBasisStatusLower
                            : status == ZVN_NONBASIC_UPPER ? kHighsBasisStatusUpper
                                                           : kHighsBasisStatusZero);
        return highs;
    };
    return Highs_setBasis(highs_, translated(basis.cols).data(), translated(basis.rows).data()) != kHighsStatusError;
}

bool HighsSession::set_start(const std::vector<double>& x) {
    std::vector<HighsInt> index;
    std::vector<double> value;
    for (int j = 0; j < static_cast<int>(x.size()); ++j) {
        if (std::isnan(x[j])) continue;
        index.push_back(j);
        value.push_back(x[j]);
    }
    return Highs_setSparseSolution(highs_, static_cast<HighsInt>(index.size()), index.data(), value.data()) !=
           kHighsStatusError;
}

void HighsSession::set_time_limit(double seconds) {
    time_limit_ = seconds;
    set_option(kTimeLimit, seconds);
}

SolverResult HighsSession::run(int threads) {
    threads_ = threads;
    Highs_zeroAllClocks(highs_);  // they run on over several solves, and the time limit with them
    const int status = watched([this] { return Highs_run(highs_); });
    const int model_status = Highs_getModelStatus(highs_);
    // An error of the simplex method, which another way of solving may avoid, is an outcome.
    if (model_status != kModelStatusMemoryLimit && model_status != kHighsModelStatusSolveError &&
        model_status != kHighsModelStatusNotset)
        check(status, "solve the model");
    SolverResult result = fetch();
    if (stopped_ && result.outcome == Outcome::kTimeLimit) result.outcome = Outcome::kStopped;
    return result;
}

SolverResult HighsSession::fetch() {
    const std::size_t num_cols = cost_.size(), num_rows = row_lower_.size();
    SolverResult result;
    result.outcome = outcome_of(Highs_getModelStatus(highs_));
    result.objective = double_info(highs_, "objective_function_value");
    result.bound = double_info(highs_, "mip_dual_bound");
    result.iterations = int_info(highs_, "simplex_iteration_count");
    for (const char* name : {"crossover_iteration_count", "qp_iteration_count"})
        result.iterations += std::max(0, int_info(highs_, name));
    result.barrier_iterations = std::max(0, int_info(highs_, "ipm_iteration_count"));
    std::int64_t nodes = 0;
    Highs_getInt64InfoValue(highs_, "mip_node_count", &nodes);
    result.nodes = static_cast<double>(std::max<std::int64_t>(0, nodes));

    if (int_info(highs_, "primal_solution_status") == kHighsSolutionStatusFeasible) {
        result.x.resize(num_cols);
        if (int_info(highs_, "dual_solution_status") == kHighsSolutionStatusFeasible) {
            result.rc.resize(num_cols);
            result.pi.resize(num_rows);
        }
        check(Highs_getSolution(highs_, result.x.data(), result.rc.empty() ? nullptr : result.rc.data(), nullptr,
                                result.rc.empty() ? nullptr : result.pi.data()),
              "give the solution");
    }
    if (int_info(highs_, "basis_validity") == kHighsBasisValidityValid) {
        std::vector<HighsInt> cols(num_cols), rows(num_rows);
        check(Highs_getBasis(highs_, cols.data(), rows.data()), "give the basis");
        result.basis.cols = basis_statuses(cols, lb_, ub_);
        result.basis.rows = basis_statuses(rows, row_lower_, row_upper_);
    }
    has_basis_ = !result.basis.rows.empty();
    incumbent_ = result.basis.cols.empty() ? result.x : std::vector<double>();
    return result;
}

std::vector<double> HighsSession::dual_ray() { return certificate(row_lower_.size(), Highs_getDualRay); }

std::vector<double> HighsSession::primal_ray() { return certificate(cost_.size(), Highs_getPrimalRay); }

// Solves an LP where HiGHS has no certificate yet, so it may be stopped as run() may.
std::vector<double> HighsSession::certificate(std::size_t size, int (*get)(const void*, int*, double*)) {
    HighsInt found = 0;
    std::vector<double> ray(size);
    const int status = watched([&] { return get(highs_, &found, ray.data()); });
    return status != kHighsStatusError && found ? ray : std::vector<double>();
}

bool HighsSession::solve_basis(bool transposed, std::vector<double>& v) {
    std::vector<HighsInt> basic(row_lower_.size());
    if (Highs_getBasicVariables(highs_, basic.data()) == kHighsStatusError) return false;  // factors the basis
    const std::vector<double> rhs = v;
    const auto solve = transposed ? Highs_getBasisTransposeSolve : Highs_getBasisSolve;
    return solve(highs_, rhs.data(), v.data(), nullptr, nullptr) != kHighsStatusError;
}

}  // namespace zelvan
