#include "solve/watcher.h"

#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace zelvan {

namespace {

constexpr std::chrono::milliseconds kPause(50);

}  // namespace

// Starts with the first watcher, and ends with the library. To start a thread for each solve would cost more than
// solving a small LP again.
class WatchThread {
public:
    // Never freed: at the end of the process solves may still run on other threads. A forked process has the thread
    // no more, and the mutex as it happened to be, so it gets a fresh one.
    static WatchThread& here() {
        static const int once = (here_ = new WatchThread, pthread_atfork(nullptr, nullptr, renew));
        static const struct AtExit {
            ~AtExit() { here_->end(); }
        } at_exit;
        static_cast<void>(once);
        return *here_;
    }

    void add(Watcher* watcher) {
        const std::lock_guard lock(mutex_);
        watchers_.push_back(watcher);
        if (!thread_.joinable()) thread_ = std::thread([this] { run(); });
        if (idle_) woken_.notify_one();
    }

    void remove(Watcher* watcher) {
        const std::lock_guard lock(mutex_);
        watchers_.erase(std::remove(watchers_.begin(), watchers_.end(), watcher), watchers_.end());
    }

private:
    static void renew() { here_ = new WatchThread; }

    void end() {
        {
            const std::lock_guard lock(mutex_);
            ending_ = true;
        }
        woken_.notify_one();
        if (thread_.joinable()) thread_.join();
    }

    // Between two solves that follow each other within a pause it needn't be woken.
    void run() {
        std::unique_lock lock(mutex_);
        while (!ending_) {
            idle_ = watchers_.empty();
            if (idle_) woken_.wait(lock, [this] { return ending_ || !watchers_.empty(); });
            idle_ = false;
            woken_.wait_for(lock, kPause, [this] { return ending_; });
            for (const Watcher* watcher : watchers_) watcher->look_();
        }
    }

    static WatchThread* here_;

    std::mutex mutex_;  // guards all of these
    std::condition_variable woken_;
    std::vector<Watcher*> watchers_;
    bool idle_ = false, ending_ = false;
    std::thread thread_;
};
WatchThread* WatchThread::here_ = nullptr;

Watcher::Watcher(std::function<void()> look) : look_(std::move(look)) { WatchThread::here().add(this); }

Watcher::~Watcher() { WatchThread::here().remove(this); }

}  // namespace zelvan
