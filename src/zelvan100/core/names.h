#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zelvan {

// Names of n objects, most of which may have none. All text lies in one buffer, NUL-terminated, so that a name can
// be handed out as a C string; while nothing is named, nothing is stored.
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
    void append(Names& other);
    // Keeps the entries with keep[i] != 0, in order.
    void compact(const std::vector<char>& keep) noexcept;
    void clear();

    // Room for so many further entries, and for names of so many bytes in all, their NULs included: what adds them
    // then takes no memory. Text of names that were replaced is given back here.
    void make_room(int entries, std::size_t bytes);
    // Bytes that all names take in another's buffer.
    std::size_t num_bytes() const { return text_.empty() ? 0 : text_.size() - 1; }

private:
    void forget(int i);
    void collect();

    int size_ = 0;
    std::vector<char> text_;       // byte 0 is unused, so that position 0 means "no name"
    std::vector<std::size_t> at_;  // empty while nothing is named, otherwise size_ entries
    std::size_t unused_ = 0;       // bytes of text_ that no entry names any more
};

}  // namespace zelvan
