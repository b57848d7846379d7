#pragma once

#include <string>

namespace app {

enum class Bytes { equal, different, unreadable };

/// Holds the bytes of two regular files against each other.
[[nodiscard]] Bytes compareBytes(const std::string& one, const std::string& other);

}  // namespace app
