#pragma once

#include <cmath>

namespace zelvan {

// Magnitude from which a bound or side means infinity, and the value that stands for it in the store.
inline constexpr double kInfinity = 1e100;
inline constexpr double kInfinityThreshold = 1e20;

// Infinite values of a bound or side as the store holds them.
inline double clipped(double value) {
    return std::abs(value) >= kInfinityThreshold ? std::copysign(kInfinity, value) : value;
}

}  // namespace zelvan
