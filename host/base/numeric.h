// Conversions from double to integer that are defined for every value.
//
// A plain cast of NaN, of an infinity or of a value outside the target's range is undefined behaviour, and such numbers
// do arrive: 1e300 is valid JSON, and 0 of 0 files is a valid progress.
#pragma once

#include <limits>

namespace tools {

/// `value` truncated toward zero; NaN gives 0, values outside the range of `Integer` give its nearest limit.
template <class Integer>
[[nodiscard]] Integer truncateTo(double value) {
    // 2^(bits-1) is exact as a double where the largest integer itself may not be.
    constexpr auto lowest = static_cast<double>(std::numeric_limits<Integer>::min());
    constexpr double beyond = -lowest;
    static_assert(std::numeric_limits<Integer>::is_signed, "the limits above hold for signed integers");
    if (value != value) return 0;
    if (value < lowest) return std::numeric_limits<Integer>::min();
    if (value >= beyond) return std::numeric_limits<Integer>::max();
    return static_cast<Integer>(value);
}

/// The share of `done` in `total` in percent, truncated toward zero: NaN (0 of 0) gives 0, infinity the largest int.
[[nodiscard]] inline int percentOf(double done, double total) {
    return truncateTo<int>(done * 100.0 / total);
}

}  // namespace tools
