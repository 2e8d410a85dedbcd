#include "core/names.h"

#include <cstring>
#include <utility>

#include "core/room.h"

namespace zelvan {

namespace {

// Less unused text than this isn't worth a pass.
constexpr std::size_t kFewBytes = 1 << 16;

}  // namespace

void Names::resize(int n) {
    size_ = n;
    if (any()) at_.resize(n, 0);
}

void Names::forget(int i) {
    if (at_[i] == 0) return;
    unused_ += std::strlen(text_.data() + at_[i]) + 1;
    at_[i] = 0;
}

void Names::set(int i, std::string_view name) {
    if (any()) forget(i);
    if (name.empty()) return;
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

void Names::append(Names& other) {
    if (size_ == 0) {
        std::swap(*this, other);
        return;
    }
    const int first = size_;
    resize(size_ + other.size_);
    if (!other.any() || other.text_.empty()) return;
    if (!any()) at_.resize(size_, 0);
    if (text_.empty()) text_.push_back('\0');
    // The other buffer lands behind ours without its byte 0.
    const std::size_t shift = text_.size() - 1;
    text_.insert(text_.end(), other.text_.begin() + 1, other.text_.end());
    for (int i = 0; i < other.size_; ++i)
        if (other.at_[i]) at_[first + i] = other.at_[i] + shift;
    unused_ += other.unused_;
}

void Names::compact(const std::vector<char>& keep) noexcept {
    int next = 0;
    for (int i = 0; i < size_; ++i) {
        if (keep[i]) {
            if (any()) at_[next] = at_[i];
            ++next;
        } else if (any()) {
            forget(i);
        }
    }
    size_ = next;
    if (any()) at_.resize(next);
}

void Names::clear() { *this = Names(); }

void Names::make_room(int entries, std::size_t bytes) {
    if (unused_ > kFewBytes && unused_ > text_.size() / 2) collect();
    if (bytes > 0) {
        zelvan::make_room(text_, bytes + 1);
        if (text_.empty()) text_.push_back('\0');
    }
    if (!any() && bytes == 0) return;
    zelvan::make_room(at_, (any() ? 0 : static_cast<std::size_t>(size_)) + entries);
    if (!any()) at_.resize(size_, 0);
}

void Names::collect() {
    std::vector<char> text;
    text.reserve(text_.size() - unused_);
    text.push_back('\0');
    for (std::size_t& at : at_) {
        if (at == 0) continue;
        const char* name = text_.data() + at;
        at = text.size();
        text.insert(text.end(), name, name + std::strlen(name) + 1);
    }
    text_ = std::move(text);
    unused_ = 0;
}

}  // namespace zelvan
