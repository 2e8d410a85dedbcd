#pragma once
// Watches searches: stops them at limits that HiGHS doesn't have, and passes on what they tell.

#include <atomic>
#include <chrono>
#include <mutex>
#include <string>

#include "param/param.h"
#include "solve/highs.h"
#include "solve/signal.h"

namespace zelvan {

// Resident memory of this process in bytes; 0 where the system doesn't tell.
double resident_memory();

// Where goes what a search tells, on the thread that calls it, with no lock held.
class Listener {
public:
    virtual ~Listener() = default;
    virtual void log(std::string_view text) = 0;
    // A MIP solution, better than those before if `improves`; x has the columns of the problem.
    virtual void solution(double objective, const double* x, bool improves) = 0;
};

class Monitor : public SolveEvents {
public:
    // `stop` is polled, and Ctrl-C if `watch_signal`. Time counts from now on.
    Monitor(ParamValues params, Listener& listener, const std::atomic<bool>& stop, bool watch_signal);

    const ParamValues params;  // as they stood at the begin

    void begin_run(const Problem& problem);
    // Work and simplex iterations of earlier runs, on top of which those of the next one count.
    void begin_count(double work_before, double iterations_before);
    double elapsed() const;  // seconds since this was made
    // Seconds left of TimeLimit, at least 0; infinite without one.
    double time_left() const;
    // The status that a stop asked for ends with, 0 when there was none.
    int stop_status() const { return stop_status_; }
    double work_of(const Progress& progress) const;
    bool reaches_limit(double work) const { return work_limit_ < kInfinityThreshold && work >= work_limit_; }
    // Simplex iterations of an LP, or barrier iterations, after which WorkLimit is reached; infinite without one.
    double iterations_left() const;
    double barrier_iterations_left() const;
    // Improving solutions of all runs.
    int num_solutions() const { return num_solutions_; }
    // Shows a progress line that was held back as too early.
    void flush_log();

    void log(std::string_view text) override;
    Answer progress(const Progress& progress) override;
    Answer poll() override;
    Answer solution(double objective, const double* x, bool improves) override;

private:
    int limit_reached(const Progress& progress) const;
    int bound_reached(const Progress& progress) const;
    int memory_status();
    // Ends with the first status that is not 0.
    Answer stop_with(int status);
    // Adds to `shown` what is due of the line.
    void take_line(std::string_view line, std::string& shown);

    Listener& listener_;
    const std::atomic<bool>& stop_;
    InterruptWatch watch_;
    const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
    std::atomic<int> stop_status_{0};
    std::atomic<int> num_solutions_{0};
    std::atomic<double> memory_checked_{0.0};  // elapsed() of the latest look at the memory

    int sense_ = 1;
    double work_unit_ = 0.0, work_before_ = 0.0, iterations_before_ = 0.0;
    const double work_limit_, iteration_limit_, memory_limit_, soft_memory_limit_;

    std::mutex mutex_;            // guards what follows
    double line_shown_ = -1e100;  // elapsed() of the latest progress line
    std::string held_line_;
};

}  // namespace zelvan
