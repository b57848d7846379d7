#include "tests/app/kills.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <random>

#include "host/tools.h"
#include "tests/app/program.h"

namespace test {

int killCount(int usual) {
    const char* asked = std::getenv("CHAT_TRANSFER_KILLS");
    return asked != nullptr ? static_cast<int>(tools::atoint64(asked)) : usual;
}

void killAfter(std::chrono::microseconds pause, const std::function<pid_t()>& start) {
    constexpr int kTries = 100;
    for (int i = 0; i < kTries; ++i) {
        const pid_t child = start();
        usleep(static_cast<useconds_t>(pause.count()));
        kill(child, SIGKILL);
        if (waitFor(child).killed) return;
        pause = pause * 3 / 4;
    }
    ADD_FAILURE() << "the program was always over before it could be killed";
}

void killEach(int usual, std::chrono::microseconds most, const std::function<pid_t(int)>& start,
              const std::function<void(int)>& check) {
    std::mt19937 random(21);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same moments each time
    std::uniform_int_distribution<std::chrono::microseconds::rep> moment(0, most.count());
    for (int i = 0; i < killCount(usual); ++i) {
        killAfter(std::chrono::microseconds(moment(random)), [&] { return start(i); });
        ASSERT_NO_FATAL_FAILURE(check(i));
    }
}

}  // namespace test
