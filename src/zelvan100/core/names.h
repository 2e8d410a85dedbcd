#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zelvan {

// Names of n columns or rows, most of which may have none. All text lies in one buffer, NUL-terminated,
// so that a name can be handed out as a C string; while nothing is named, nothing is stored.
class Names {
public:
    int size() const { return size_; }
    // Grows by unnamed entries, or drops the last ones.
    void resize(int n);
    bool any() const { return !at_.empty(); }
    bool has(int i) const { return !at_.empty() && at_[i] != 0; }
    // The name, or nullptr when entry i has none. Valid until the next change.
    const char* get(int i) const { return has(i) ? text_.data() + at_[i] : nullptr; }
    // An empty name removes the entry's name.
    void set(int i, std::string_view name);
    void push_back(std::string_view name);
    void append(const Names& other);
    // Keeps the entries with keep[i] != 0, in order.
    void compact(const std::vector<char>& keep);
    void clear();

private:
    int size_ = 0;
    std::vector<char> text_;       // byte 0 is unused, so that position 0 means "no name"
    std::vector<std::size_t> at_;  // empty while nothing is named, otherwise size_ entries
};

}  // namespace zelvan
