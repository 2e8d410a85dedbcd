#include "solve/watcher.h"

#include <chrono>
#include <utility>

namespace zelvan {

namespace {

constexpr std::chrono::milliseconds kPause(50);

}  // namespace

Watcher::Watcher(std::function<void()> look) : look_(std::move(look)), thread_([this] { watch(); }) {}

Watcher::~Watcher() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    ended_.notify_one();
    thread_.join();
}

void Watcher::watch() {
    std::unique_lock lock(mutex_);
    while (!ended_.wait_for(lock, kPause, [this] { return ending_; })) {
        lock.unlock();
        look_();
        lock.lock();
    }
}

}  // namespace zelvan
