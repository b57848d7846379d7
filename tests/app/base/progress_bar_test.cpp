#include "app/base/progress_bar.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace app {
namespace {

void work(ProgressBar& bar, std::chrono::milliseconds time) {
    bar.begin("Working", {{1, "Copying"}});
    std::this_thread::sleep_for(time);
    bar.onProgress(0, 1, 50, "5/10");
    bar.complete();
}

// What is captured is a file and no terminal.
TEST(ProgressBar, OfLongWorkPrintsPlainLinesWithoutATerminal) {
    testing::internal::CaptureStderr();
    {
        PhaseTimes times;
        ProgressBar bar(times, {{"Copying", 80}});
        work(bar, std::chrono::milliseconds(1050));
    }
    const std::string text = testing::internal::GetCapturedStderr();
    EXPECT_EQ(0U, text.find("Copying: 40 % (5/10), "));
    EXPECT_NE(std::string::npos, text.find(" s left\nDone: 100 %\n"));
}

TEST(ProgressBar, OfShortWorkPrintsNothingWithoutATerminal) {
    testing::internal::CaptureStderr();
    {
        PhaseTimes times;
        ProgressBar bar(times, {{"Copying", 80}});
        work(bar, std::chrono::milliseconds(0));
    }
    EXPECT_EQ("", testing::internal::GetCapturedStderr());
}

}  // namespace
}  // namespace app
