// Exit codes of the program.
#pragma once

namespace app {

inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;
inline constexpr int kWrongUsage = 2;
inline constexpr int kInterrupted = 130;  // as shells count a program that SIGINT ended

}  // namespace app
