#include <chrono>

#include "host/tools.h"

namespace tools {

unsigned long long get_Startmsec() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<unsigned long long>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

}  // namespace tools
