#include "solve/concurrent.h"

#include <exception>
#include <thread>

#include "solve/options.h"

namespace zelvan {

namespace {

constexpr int kDual = 1, kBarrier = 2;

// What the runners share, and what each of them tells the monitor.
class Racer : public SolveEvents {
public:
    Racer(Monitor& monitor, std::atomic<int>& winner, int method)
        : monitor_(monitor), winner_(winner), method_(method) {}

    void log(std::string_view text) override {
        if (method_ == kDual) monitor_.log(text);
    }
    Answer progress(const Progress& progress) override {
        return winner_ != 0 ? Answer::kStop : monitor_.progress(progress);
    }
    Answer poll() override { return winner_ != 0 ? Answer::kStop : monitor_.poll(); }
    Answer solution(double, const double*, bool) override { return Answer::kGoOn; }

    SolverResult run(HighsSession& session, int threads) {
        const Attached attached(session, this);
        SolverResult result = session.run(threads);
        const bool decided = result.outcome <= Outcome::kUnbounded;
        int none = 0;
        if (decided) winner_.compare_exchange_strong(none, method_);
        return result;
    }

private:
    Monitor& monitor_;
    std::atomic<int>& winner_;
    const int method_;
};

}  // namespace

SolverResult run_concurrently(const Problem& problem, Context& context) {
    const ParamValues& params = context.params;
    HighsSession& session = context.session;
    Monitor& monitor = context.monitor;
    std::atomic<int> first{0};
    SolverResult by_barrier;
    std::exception_ptr barrier_fault;
    std::thread barrier([&] {
        try {
            HighsSession other;
            set_options(other, params, problem);
            set_limits(other, context);
            other.set_option("output_flag", false);
            other.set_option("solver", "ipx");
            other.load(problem);
            by_barrier = Racer(monitor, first, kBarrier).run(other, 1);
        } catch (...) {
            barrier_fault = std::current_exception();
        }
    });
    SolverResult by_dual;
    std::exception_ptr dual_fault;
    Racer dual(monitor, first, kDual);
    try {
        session.set_option("solver", "simplex");
        set_limits(session, context);
        by_dual = dual.run(session, params.get_int(Param::Threads));
    } catch (...) {
        dual_fault = std::current_exception();
    }
    barrier.join();
    context.concurrent_winner = first;
    if (context.concurrent_winner == kBarrier) {
        if (!by_barrier.basis.rows.empty()) session.set_basis(by_barrier.basis);
        monitor.log("Solved by barrier\n");
        return by_barrier;
    }
    if (dual_fault) std::rethrow_exception(dual_fault);
    if (barrier_fault && context.concurrent_winner == 0) std::rethrow_exception(barrier_fault);
    return by_dual;
}

}  // namespace zelvan
