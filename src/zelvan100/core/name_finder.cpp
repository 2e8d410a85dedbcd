#include "core/name_finder.h"

#include <algorithm>
#include <functional>

#include "core/room.h"

namespace zelvan {

namespace {

// `recent_` may grow to this and to a fraction of the sorted keys before it is merged into them.
constexpr std::size_t kAlwaysRecent = 256;
constexpr std::size_t kRecentFraction = 8;

std::uint64_t hash_of(std::string_view name) { return std::hash<std::string_view>()(name); }

}  // namespace

void NameFinder::insert(const Names& names, int i) {
    if (names.has(i)) recent_.emplace(hash_of(names.get(i)), i);
}

void NameFinder::take_in(const Names& names) {
    const std::size_t waiting = (names.size() - known_) + renamed_.size();
    if (waiting == 0) return;
    if (waiting > kAlwaysRecent + keys_.size() / kRecentFraction) {
        // Anew: most is new.
        std::vector<Key> keys;
        for (int i = 0; i < names.size(); ++i)
            if (names.has(i)) keys.emplace_back(hash_of(names.get(i)), i);
        std::sort(keys.begin(), keys.end());
        keys_ = std::move(keys);
        recent_.clear();
    } else {
        for (int i = known_; i < names.size(); ++i) insert(names, i);
        for (int i : renamed_) insert(names, i);
    }
    known_ = names.size();
    renamed_.clear();
    if (recent_.size() <= kAlwaysRecent + keys_.size() / kRecentFraction) return;
    std::vector<Key> keys;
    keys.reserve(keys_.size() + recent_.size());
    std::merge(keys_.begin(), keys_.end(), recent_.begin(), recent_.end(), std::back_inserter(keys));
    // Keys of former names go, or they would pile up.
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    std::erase_if(
        keys, [&](const Key& key) { return !names.has(key.second) || hash_of(names.get(key.second)) != key.first; });
    keys_ = std::move(keys);
    recent_.clear();
}

int NameFinder::find(const Names& names, std::string_view name) {
    take_in(names);
    return first_of(names, name, hash_of(name));
}

int NameFinder::first_of(const Names& names, std::string_view name, std::uint64_t hash) const {
    const auto first_in = [&](auto at, auto end) {
        for (; at != end && at->first == hash; ++at)
            if (names.has(at->second) && names.get(at->second) == name) return at->second;
        return -1;
    };
    const Key from(hash, 0);
    const int old = first_in(std::lower_bound(keys_.begin(), keys_.end(), from), keys_.end());
    const int added = first_in(recent_.lower_bound(from), recent_.end());
    return old < 0 || (added >= 0 && added < old) ? added : old;
}

void NameFinder::expect_renames(std::size_t num) {
    if (renamed_.size() + num > static_cast<std::size_t>(known_)) {
        keys_.clear();
        recent_.clear();
        renamed_.clear();
        known_ = 0;
    }
    make_room(renamed_, num);
}

void NameFinder::renamed(int i) noexcept {
    if (i < known_) renamed_.push_back(i);
}

// The order of keys stays, because kept objects keep theirs.
void NameFinder::renumber(const std::vector<int>& number) noexcept {
    std::size_t next = 0;
    for (const auto& [hash, i] : keys_)
        if (number[i] >= 0) keys_[next++] = {hash, number[i]};
    keys_.resize(next);
    for (auto at = recent_.begin(); at != recent_.end();) {
        auto node = recent_.extract(at++);
        node.value().second = number[node.value().second];
        if (node.value().second >= 0) recent_.insert(at, std::move(node));
    }
    next = 0;
    for (int i : renamed_)
        if (number[i] >= 0) renamed_[next++] = number[i];
    renamed_.resize(next);
    known_ = static_cast<int>(std::count_if(number.begin(), number.begin() + known_, [](int i) { return i >= 0; }));
}

}  // namespace zelvan
