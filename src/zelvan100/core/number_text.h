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

// Why a value isn't finite, for the end of a message.
inline const char* why_not_finite(double value) {
    return std::isnan(value) ? " is not a number" : " is infinite: magnitudes from 1e20 on count as infinity";
}

}  // namespace zelvan
