#pragma once

#include <functional>

namespace zelvan {

// While one of these lives, `look` is called twenty times a second on a thread that serves all of them. `look` may
// neither throw nor make or end a watcher.
class Watcher {
public:
    explicit Watcher(std::function<void()> look);
    ~Watcher();
    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;

private:
    friend class WatchThread;

    const std::function<void()> look_;
};

}  // namespace zelvan
