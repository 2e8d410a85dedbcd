#pragma once
// Watches a solve: stops it at limits that HiGHS doesn't have, collects its solutions and passes its log on.

#include <atomic>
#include <chrono>
#include <mutex>
#include <string>
#include <vector>

#include "core/model.h"
#include "solve/highs.h"
#include "solve/signal.h"

namespace zelvan {

// Resident memory of this process in bytes; 0 where the system doesn't tell.
double resident_memory();

class Monitor : public SolveEvents {
public:
    // The parameters must outlive this.
    Monitor(Model& model, const ParamValues& params);

    // Begins a run on a model of this size.
    void begin_run(const Problem& model);
    // Work and simplex iterations of earlier runs, on top of which those of the next one count.
    void begin_count(double work_before, double iterations_before);
    double elapsed() const;  // seconds since this was made
    // Seconds left of TimeLimit, at least 0; infinite without one.
    double time_left() const;
    // The status that a stop asked for ends with, 0 when there was none.
    int stop_status() const { return stop_status_; }
    double work_of(const Progress& progress) const;
    // Solutions of the run, best last, cut off behind the model's own columns.
    struct Found {
        double objective;
        std::vector<double> x;
    };
    std::vector<Found> take_solutions();
    int num_solutions() const { return num_solutions_; }
    // Shows a progress line that was held back as too early.
    void flush_log();

    void log(std::string_view text) override;
    bool stop(const Progress& progress) override;
    void incumbent(double objective, const double* x) override;

private:
    int limit_reached(const Progress& progress) const;
    int bound_reached(const Progress& progress) const;
    int memory_status();
    void log_line(std::string_view line);

    Model& model_;
    const ParamValues& params_;
    InterruptWatch watch_;
    const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
    std::atomic<int> stop_status_{0};
    std::atomic<int> num_solutions_{0};
    std::atomic<double> memory_checked_{0.0};  // elapsed() of the latest look at the memory

    double work_unit_ = 0.0, work_before_ = 0.0, iterations_before_ = 0.0;
    const double work_limit_, iteration_limit_, memory_limit_, soft_memory_limit_;

    std::mutex mutex_;  // guards what follows
    std::vector<Found> found_;
    int num_files_ = 0;           // written for SolFiles
    double line_shown_ = -1e100;  // elapsed() of the latest progress line
    std::string held_line_;
};

}  // namespace zelvan
