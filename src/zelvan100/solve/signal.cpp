#include "solve/signal.h"

#include <atomic>
#include <csignal>
#include <mutex>

namespace zelvan {

namespace {

std::mutex mutex;
int watches = 0;  // guarded by mutex, as is previous
struct sigaction previous;
std::atomic<unsigned> arrivals{0};
static_assert(std::atomic<unsigned>::is_always_lock_free, "the handler may only touch lock-free atomics");

extern "C" void count_interrupt(int) { arrivals.fetch_add(1, std::memory_order_relaxed); }

void install() {
    struct sigaction current;
    sigaction(SIGINT, nullptr, &current);
    previous = current;
    if (!(current.sa_flags & SA_SIGINFO) && current.sa_handler == SIG_IGN) return;
    struct sigaction action = {};
    action.sa_handler = count_interrupt;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
}

// A handler that someone else installed meanwhile stays.
void restore() {
    struct sigaction current;
    sigaction(SIGINT, nullptr, &current);
    if (!(current.sa_flags & SA_SIGINFO) && current.sa_handler == count_interrupt)
        sigaction(SIGINT, &previous, nullptr);
}

}  // namespace

InterruptWatch::InterruptWatch(bool active) : active_(active) {
    if (!active_) return;
    std::lock_guard lock(mutex);
    if (watches++ == 0) install();
    seen_ = arrivals.load();
}

InterruptWatch::~InterruptWatch() {
    if (!active_) return;
    std::lock_guard lock(mutex);
    if (--watches == 0) restore();
}

bool InterruptWatch::interrupted() const { return active_ && arrivals.load(std::memory_order_relaxed) != seen_; }

}  // namespace zelvan
