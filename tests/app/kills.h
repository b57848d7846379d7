// The program killed at moments that no test can choose, and what has to hold after each.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>

#include "tests/support/seconds_of.h"

namespace test {

/// At how many moments a test kills the program: `usual`, or what CHAT_TRANSFER_KILLS says.
int killCount(int usual);

/// Starts a child and kills it `pause` later. A machine that is faster now has it done before: then it is started anew
/// and killed earlier, so that a test never depends on how long something took.
void killAfter(std::chrono::microseconds pause, const std::function<pid_t()>& start);

/// Kills what start(i) starts at a random moment within `most`, then runs check(i), for i from 0 to killCount(usual)
/// - 1. Ends at the first fatal failure.
void killEach(int usual, std::chrono::microseconds most, const std::function<pid_t(int)>& start,
              const std::function<void(int)>& check);

template <class Work>
std::chrono::microseconds timeOf(Work work) {
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::duration<double>(secondsOf(work)));
}

}  // namespace test
