// How long something takes.
#pragma once

#include <chrono>

namespace test {

/// How many times as long as the machine itself an emulator may take.
#ifdef CHAT_TRANSFER_EMULATED
inline constexpr int kSlowness = 5;
#else
inline constexpr int kSlowness = 1;
#endif

template <class Work>
double secondsOf(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace test
