#pragma once
// Endings of file names, in any letter case.

#include <string_view>

#include "io/letters.h"

namespace zelvan {

// Whether the name ends like that and has something in front.
inline bool has_ending(std::string_view path, std::string_view ending) {
    return path.size() > ending.size() && lower_case(path.substr(path.size() - ending.size())) == ending;
}

inline bool is_gz_name(std::string_view path) { return has_ending(path, ".gz"); }

inline std::string_view without_gz(std::string_view path) {
    return is_gz_name(path) ? path.substr(0, path.size() - 3) : path;
}

}  // namespace zelvan
