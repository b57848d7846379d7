// Overwriting secrets.
#pragma once

#include <string>

namespace tools {

/// Overwrites all that the string's memory holds, in a way that the compiler may not leave out, and empties it.
void wipe(std::string& text) noexcept;

}  // namespace tools
