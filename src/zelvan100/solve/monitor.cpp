#include "solve/monitor.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <fstream>
#include <limits>
#include <utility>

#include "io/values.h"

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

Monitor::Monitor(Model& model, const ParamValues& params)
    : model_(model),
      params_(params),
      watch_(model.watch_signal),
      work_limit_(params_.get_dbl(Param::WorkLimit)),
      iteration_limit_(params_.get_dbl(Param::IterationLimit)),
      memory_limit_(params_.get_dbl(Param::MemLimit)),
      soft_memory_limit_(params_.get_dbl(Param::SoftMemLimit)) {
    model.watch_signal = false;
}

void Monitor::begin_run(const Problem& model) {
    work_unit_ = kWorkOfIteration * (static_cast<double>(model.num_rows()) + model.num_cols() + model.num_entries());
    found_.clear();
    num_solutions_ = 0;
}

void Monitor::begin_count(double work_before, double iterations_before) {
    work_before_ = work_before;
    iterations_before_ = iterations_before;
}

double Monitor::elapsed() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin_).count();
}

double Monitor::time_left() const {
    const double limit = params_.get_dbl(Param::TimeLimit);
    return limit >= kInfinityThreshold ? std::numeric_limits<double>::infinity() : std::max(0.0, limit - elapsed());
}

double Monitor::work_of(const Progress& progress) const {
    return work_before_ + work_unit_ * (progress.iterations + kIterationsOfBarrier * progress.barrier_iterations +
                                        kIterationsOfNode * progress.nodes);
}

std::vector<Monitor::Found> Monitor::take_solutions() {
    std::lock_guard lock(mutex_);
    return std::move(found_);
}

bool Monitor::stop(const Progress& progress) {
    if (stop_status_) return true;
    int status = 0;
    if (model_.stop || watch_.interrupted())
        status = ZVN_INTERRUPTED;
    else
        status = limit_reached(progress);
    if (!status && progress.is_mip) status = bound_reached(progress);
    if (!status) status = memory_status();
    if (status) stop_status_ = status;
    return status != 0;
}

int Monitor::limit_reached(const Progress& progress) const {
    if (work_limit_ < kInfinityThreshold && work_of(progress) >= work_limit_) return ZVN_WORK_LIMIT;
    // HiGHS limits the iterations of an LP itself.
    if (progress.is_mip && iterations_before_ + progress.iterations >= iteration_limit_) return ZVN_ITERATION_LIMIT;
    return 0;
}

int Monitor::bound_reached(const Progress& progress) const {
    const int sense = model_.data.sense;
    const double good_objective = params_.get_dbl(Param::BestObjStop);
    const double good_bound = params_.get_dbl(Param::BestBdStop);
    const auto given = [](double value) { return std::abs(value) < kInfinityThreshold; };
    if (num_solutions_ && given(good_objective) && sense * progress.primal_bound <= sense * good_objective)
        return ZVN_USER_OBJ_LIMIT;
    if (num_solutions_ >= params_.get_int(Param::SolutionLimit)) return ZVN_SOLUTION_LIMIT;
    return given(good_bound) && sense * progress.dual_bound >= sense * good_bound ? ZVN_USER_OBJ_LIMIT : 0;
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

void Monitor::incumbent(double objective, const double* x) {
    std::lock_guard lock(mutex_);
    Found found{objective, std::vector<double>(x, x + model_.num_cols())};
    if (const std::string& prefix = params_.get_str(Param::SolFiles); !prefix.empty())
        write_solution(model_.data, found.x, objective, prefix + "_" + std::to_string(num_files_++) + ".sol");
    ++num_solutions_;
    if (static_cast<int>(found_.size()) == params_.get_int(Param::PoolSolutions)) found_.erase(found_.begin());
    found_.push_back(std::move(found));
}

void Monitor::log(std::string_view text) {
    std::lock_guard lock(mutex_);
    while (!text.empty()) {
        const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
        log_line(text.substr(0, length));
        text.remove_prefix(length);
    }
}

// Of progress lines that follow each other within DisplayInterval only the last one is shown.
void Monitor::log_line(std::string_view line) {
    if (!is_progress(line)) {
        if (!held_line_.empty()) model_.env.log(std::exchange(held_line_, {}));
        line_shown_ = -1e100;
        model_.env.log(line);
        return;
    }
    const double now = elapsed();
    if (now - line_shown_ < params_.get_int(Param::DisplayInterval)) {
        held_line_ = line;
        return;
    }
    held_line_.clear();
    line_shown_ = now;
    model_.env.log(line);
}

void Monitor::flush_log() {
    std::lock_guard lock(mutex_);
    if (!held_line_.empty()) model_.env.log(std::exchange(held_line_, {}));
}

}  // namespace zelvan
