// Comparing records with what writing and reading made of them.
#pragma once

#include <string>

#include "host/base/utf8.h"

namespace fuzz {

/// Numbers are written as doubles and ill-formed texts are repaired: that much, and nothing else, may differ after the
/// first trip.
[[nodiscard]] inline bool survives(const std::string& before, const std::string& after) {
    return tools::toWellFormedUtf8(before) == after;
}
template <class Number>
[[nodiscard]] bool survives(Number before, Number after) {
    return static_cast<double>(before) == static_cast<double>(after);
}

}  // namespace fuzz
