#include "app/report/summary.h"

#include <gtest/gtest.h>

#include <sstream>

namespace app {
namespace {

std::string printed(const Summary& summary) {
    std::ostringstream out;
    summary.print(out, 0);
    return out.str();
}

TEST(Summary, LeavesOutWhatNeverHappened) {
    Summary summary;
    summary.add("messages", "Messages", 0);
    summary.addIfAny("failed", "Failed", 0);
    summary.addIfAny("refused", "Refused", 1200);
    EXPECT_EQ("  Messages       0\n  Refused    1,200\n  Time      0.00 s\n", printed(summary));
}

TEST(Summary, ShowsSizesAsPeopleReadThem) {
    Summary summary;
    summary.addSize("bytes", "Size", 12'345);
    EXPECT_EQ("  Size  12.3 kB\n  Time   0.00 s\n", printed(summary));
}

TEST(Summary, KeepsTheRowsThatTheTableLeavesOut) {
    Summary summary;
    summary.addIfAny("failed", "Failed", 0);
    ASSERT_EQ(1U, summary.rows().size());
    EXPECT_EQ("failed", summary.rows()[0].key);
    EXPECT_EQ(0, std::get<long long>(summary.rows()[0].value));
}

}  // namespace
}  // namespace app
