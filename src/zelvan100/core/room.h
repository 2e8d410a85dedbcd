#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace zelvan {

// Capacity for `more` further elements. Grows geometrically, so that adding one by one stays linear; afterwards so
// many additions take no memory.
template <class T>
void make_room(std::vector<T>& values, std::size_t more) {
    const std::size_t needed = values.size() + more;
    if (needed > values.capacity()) values.reserve(std::max(needed, 2 * values.capacity()));
}

}  // namespace zelvan
