// Numbers as people read them.
#pragma once

#include <string>

namespace app {

/// 20000 as "20,000".
[[nodiscard]] std::string grouped(long long number);

/// "512 bytes", "12.3 kB", "1.5 GB" (powers of 1000).
[[nodiscard]] std::string humanSize(unsigned long long bytes);

/// "0.04 s", "12.3 s", "2 min 05 s", "1 h 02 min".
[[nodiscard]] std::string humanDuration(double seconds);

/// "1 file", "2,000 files".
[[nodiscard]] std::string counted(long long number, const std::string& singular, const std::string& plural);

}  // namespace app
