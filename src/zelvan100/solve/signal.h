#pragma once

#include <cstdint>

namespace zelvan {

// While one of these lives, Ctrl-C (SIGINT) only counts up a number that solves poll. The first one
// installs the handler, the last one restores what was there. A process that ignores SIGINT goes on
// ignoring it.
class InterruptWatch {
public:
    explicit InterruptWatch(bool active);
    ~InterruptWatch();
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;
    // Whether SIGINT arrived since this was made.
    bool interrupted() const;

private:
    bool active_;
    unsigned seen_ = 0;
};

}  // namespace zelvan
