#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace zelvan {

// Letters of keywords are ASCII; other bytes stay.
inline std::string lower_case(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c; });
    return out;
}

inline std::string upper_case(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? c - ('a' - 'A') : c; });
    return out;
}

}  // namespace zelvan
