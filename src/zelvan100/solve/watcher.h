#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace zelvan {

// While one of these lives, a thread of its own calls `look` twenty times a second. `look` may not throw.
class Watcher {
public:
    explicit Watcher(std::function<void()> look);
    ~Watcher();
    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;

private:
    void watch();

    const std::function<void()> look_;
    std::mutex mutex_;
    std::condition_variable ended_;
    bool ending_ = false;
    std::thread thread_;
};

}  // namespace zelvan
