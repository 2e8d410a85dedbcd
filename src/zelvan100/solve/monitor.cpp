#include "solve/monitor.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <fstream>
#include <limits>
#include <utility>

#include "core/error.h"

namespace zelvan {

namespace {

// A unit of work is about a second of a machine of 2020: time of a simplex iteration grows with the size
// of the model, a barrier iteration takes as long as many of them, a node as some.
constexpr double kWorkOfIteration = 4e-9;  // for each row, column and nonzero
constexpr double kIterationsOfBarrier = 100.0;
constexpr double kIterationsOfNode = 100.0;
constexpr double kSecondsBetweenMemoryChecks = 0.05;
constexpr double kGigabyte = 1e9;

// Progress lines of HiGHS begin with a number and end with the time in seconds.
bool is_progress(std::string_view line) {
    const std::size_t first = line.find_first_not_of(' ');
    const std::size_t last = line.find_last_not_of(" \r\n");
    return first != line.npos && std::isdigit(static_cast<unsigned char>(line[first])) && line[last] == 's' &&
           last > first + 1 && std::isdigit(static_cast<unsigned char>(line[last - 1]));
}

}  // namespace

double resident_memory() {
    std::ifstream file("/proc/self/statm");
    double total = 0.0, resident = 0.0;
    if (!(file >> total >> resident)) return 0.0;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
}

Monitor::Monitor(ParamValues values, Listener& listener, const std::atomic<bool>& stop, bool watch_signal)
    : params(std::move(values)),
      listener_(listener),
      stop_(stop),
      watch_(watch_signal),
      work_limit_(params.get_dbl(Param::WorkLimit)),
      iteration_limit_(params.get_dbl(Param::IterationLimit)),
      memory_limit_(params.get_dbl(Param::MemLimit)),
      soft_memory_limit_(params.get_dbl(Param::SoftMemLimit)) {}

void Monitor::begin_run(const Problem& problem) {
    sense_ = problem.sense;
    work_unit_ =
        kWorkOfIteration * (static_cast<double>(problem.num_rows()) + problem.num_cols() + problem.num_entries());
}

void Monitor::begin_count(double work_before, double iterations_before) {
    work_before_ = work_before;
    iterations_before_ = iterations_before;
}

double Monitor::elapsed() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin_).count();
}

double Monitor::time_left() const {
    const double limit = params.get_dbl(Param::TimeLimit);
    return limit >= kInfinityThreshold ? std::numeric_limits<double>::infinity() : std::max(0.0, limit - elapsed());
}

double Monitor::work_of(const Progress& progress) const {
    return work_before_ + work_unit_ * (progress.iterations + kIterationsOfBarrier * progress.barrier_iterations +
                                        kIterationsOfNode * progress.nodes);
}

double Monitor::iterations_left() const {
    if (work_limit_ >= kInfinityThreshold) return std::numeric_limits<double>::infinity();
    return std::floor(std::max(0.0, work_limit_ - work_before_) / work_unit_) + 1.0;  // reached in spite of rounding
}

double Monitor::barrier_iterations_left() const { return std::ceil(iterations_left() / kIterationsOfBarrier); }

Answer Monitor::stop_with(int status) {
    int none = 0;
    if (status) stop_status_.compare_exchange_strong(none, status);
    return stop_status_ ? Answer::kStop : Answer::kGoOn;
}

Answer Monitor::poll() {
    if (stop_status_) return Answer::kStop;
    return stop_with(stop_ || watch_.interrupted() ? ZVN_INTERRUPTED : memory_status());
}

Answer Monitor::progress(const Progress& progress) {
    int status = limit_reached(progress);
    if (!status && progress.is_mip) status = bound_reached(progress);
    return poll() == Answer::kStop ? Answer::kStop : stop_with(status);
}

int Monitor::limit_reached(const Progress& progress) const {
    if (reaches_limit(work_of(progress))) return ZVN_WORK_LIMIT;
    // HiGHS limits the iterations of an LP itself.
    if (progress.is_mip && iterations_before_ + progress.iterations >= iteration_limit_) return ZVN_ITERATION_LIMIT;
    return 0;
}

int Monitor::bound_reached(const Progress& progress) const {
    const double good_objective = params.get_dbl(Param::BestObjStop);
    const double good_bound = params.get_dbl(Param::BestBdStop);
    const auto given = [](double value) { return std::abs(value) < kInfinityThreshold; };
    if (num_solutions_ && given(good_objective) && sense_ * progress.primal_bound <= sense_ * good_objective)
        return ZVN_USER_OBJ_LIMIT;
    if (num_solutions_ >= params.get_int(Param::SolutionLimit)) return ZVN_SOLUTION_LIMIT;
    return given(good_bound) && sense_ * progress.dual_bound >= sense_ * good_bound ? ZVN_USER_OBJ_LIMIT : 0;
}

int Monitor::memory_status() {
    const bool hard = memory_limit_ < kInfinityThreshold, soft = soft_memory_limit_ < kInfinityThreshold;
    if (!hard && !soft) return 0;
    const double now = elapsed();
    if (now - memory_checked_ < kSecondsBetweenMemoryChecks && memory_checked_ > 0.0) return 0;
    memory_checked_ = now;
    const double gigabytes = resident_memory() / kGigabyte;
    if (hard && gigabytes > memory_limit_)
        throw Error(ZVN_ERROR_OUT_OF_MEMORY, "The solve needs more memory than MemLimit allows");
    return soft && gigabytes > soft_memory_limit_ ? ZVN_MEM_LIMIT : 0;
}

Answer Monitor::solution(double objective, const double* x, bool improves) {
    listener_.solution(objective, x, improves);
    if (improves) ++num_solutions_;
    return stop_with(num_solutions_ >= params.get_int(Param::SolutionLimit) ? ZVN_SOLUTION_LIMIT : 0);
}

void Monitor::log(std::string_view text) {
    std::string shown;
    {
        const std::lock_guard lock(mutex_);
        while (!text.empty()) {
            const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
            take_line(text.substr(0, length), shown);
            text.remove_prefix(length);
        }
    }
    if (!shown.empty()) listener_.log(shown);
}

// Of progress lines that follow each other within DisplayInterval only the last one is shown.
void Monitor::take_line(std::string_view line, std::string& shown) {
    const bool timed = is_progress(line);
    const double now = elapsed();
    if (timed && now - line_shown_ < params.get_int(Param::DisplayInterval)) {
        held_line_ = line;
        return;
    }
    if (!timed) shown += held_line_;
    held_line_.clear();
    shown += line;
    line_shown_ = timed ? now : -1e100;
}

void Monitor::flush_log() {
    std::string shown;
    {
        const std::lock_guard lock(mutex_);
        shown.swap(held_line_);
    }
    if (!shown.empty()) listener_.log(shown);
}

}  // namespace zelvan
