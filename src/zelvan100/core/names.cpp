#include "core/names.h"

namespace zelvan {

void Names::resize(int n) {
    size_ = n;
    if (any()) at_.resize(n, 0);
}

void Names::set(int i, std::string_view name) {
    if (name.empty()) {
        if (any()) at_[i] = 0;
        return;
    }
    if (!any()) at_.resize(size_, 0);
    if (text_.empty()) text_.push_back('\0');
    const std::size_t at = text_.size();
    text_.insert(text_.end(), name.begin(), name.end());
    text_.push_back('\0');
    at_[i] = at;
}

void Names::push_back(std::string_view name) {
    resize(size_ + 1);
    set(size_ - 1, name);
}

void Names::append(const Names& other) {
    const int first = size_;
    resize(size_ + other.size_);
    if (!other.any()) return;
    if (!any()) at_.resize(size_, 0);
    if (text_.empty()) text_.push_back('\0');
    // The other buffer lands behind ours without its byte 0.
    const std::size_t shift = text_.size() - 1;
    text_.insert(text_.end(), other.text_.begin() + 1, other.text_.end());
    for (int i = 0; i < other.size_; ++i)
        if (other.at_[i]) at_[first + i] = other.at_[i] + shift;
}

void Names::compact(const std::vector<char>& keep) {
    Names kept;
    int num = 0;
    for (int i = 0; i < size_; ++i) num += keep[i] != 0;
    kept.resize(num);
    if (any()) {
        int next = 0;
        for (int i = 0; i < size_; ++i) {
            if (!keep[i]) continue;
            if (has(i)) kept.set(next, get(i));
            ++next;
        }
    }
    *this = std::move(kept);
}

void Names::clear() { *this = Names(); }

}  // namespace zelvan
