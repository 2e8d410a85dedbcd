#include "core/changes.h"

namespace zelvan {

std::vector<int> ListChange::deleted_after(const std::vector<char>& keep) const {
    std::vector<int> all;
    std::size_t next = 0;
    for (int old = 0, now = 0; old < before; ++old) {
        const bool was_deleted = next < deleted.size() && deleted[next] == old;
        if (was_deleted) ++next;
        if (was_deleted || !keep[now]) all.push_back(old);
        if (!was_deleted) ++now;
    }
    return all;
}

}  // namespace zelvan
