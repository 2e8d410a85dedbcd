#pragma once

#include <string_view>

namespace zelvan {

// The lines of a text, one after the other, without what ends them.
class Lines {
public:
    explicit Lines(std::string_view text) : rest_(text) {}
    // False at the end of the text.
    bool next(std::string_view& line) {
        if (rest_.empty()) return false;
        const std::size_t stop = rest_.find('\n');
        line = rest_.substr(0, stop);
        rest_.remove_prefix(stop == rest_.npos ? rest_.size() : stop + 1);
        ++number_;
        return true;
    }
    // Of the latest line, counted from 1.
    int number() const { return number_; }

private:
    std::string_view rest_;
    int number_ = 0;
};

}  // namespace zelvan
