// Whether the tests take their long form.
#pragma once

#include <cstdlib>

namespace test {

/// The long form, for `make soak`: every failure of every call, and amounts of data that take minutes.
inline bool soaks() {
    return std::getenv("CHAT_TRANSFER_SOAK") != nullptr;
}

}  // namespace test
