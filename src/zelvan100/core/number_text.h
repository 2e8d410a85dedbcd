#pragma once

#include <charconv>
#include <cmath>
#include <string>

#include "core/infinity.h"

namespace zelvan {

// A number for a message, with the fewest digits that read back to it.
inline std::string number_text(double value) {
    if (std::isnan(value)) return "nan";
    if (std::fabs(value) >= kInfinity) return value > 0 ? "infinity" : "-infinity";
    char buffer[32];
    return {buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr};
}

}  // namespace zelvan
