#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "host/tools.h"

namespace {

TEST(ClockTest, NeverGoesBack) {
    unsigned long long last = tools::get_Startmsec();
    for (int i = 0; i < 1000; ++i) {
        const unsigned long long now = tools::get_Startmsec();
        ASSERT_GE(now, last);
        last = now;
    }
}

TEST(ClockTest, CountsMilliseconds) {
    const auto before = std::chrono::steady_clock::now();
    const unsigned long long first = tools::get_Startmsec();
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    const unsigned long long passed = tools::get_Startmsec() - first;
    const std::chrono::duration<double, std::milli> most = std::chrono::steady_clock::now() - before;
    EXPECT_GE(passed, 29U);
    EXPECT_LE(static_cast<double>(passed), most.count() + 1);
}

}  // namespace
