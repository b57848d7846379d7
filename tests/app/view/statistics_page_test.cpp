#include "app/view/statistics_page.h"

#include <gtest/gtest.h>

#include <limits>

namespace app::view {
namespace {

TEST(MessagesOverTime, HaveABarForEachDayAlsoForThoseWithoutMessages) {
    const TimePlot plot = messagesOverTime({{{2024, 2, 28}, 3}, {{2024, 3, 1}, 4}});
    EXPECT_STREQ("Messages per day", plot.title);
    ASSERT_EQ(3U, plot.bars.size());
    EXPECT_EQ("2024-02-29", plot.bars[1].label);
    EXPECT_EQ(3, plot.bars[0].value);
    EXPECT_EQ(0, plot.bars[1].value);
    EXPECT_EQ(4, plot.bars[2].value);
}

TEST(MessagesOverTime, AreAddedUpByMonthBeyondTwoYears) {
    const TimePlot plot =
        messagesOverTime({{{2021, 12, 31}, 1}, {{2022, 1, 1}, 2}, {{2024, 1, 5}, 3}, {{2024, 1, 31}, 4}});
    EXPECT_STREQ("Messages per month", plot.title);
    ASSERT_EQ(26U, plot.bars.size());
    EXPECT_EQ("2021-12", plot.bars[0].label);
    EXPECT_EQ(1, plot.bars[0].value);
    EXPECT_EQ(2, plot.bars[1].value);
    EXPECT_EQ("2024-01", plot.bars[25].label);
    EXPECT_EQ(7, plot.bars[25].value);
}

TEST(MessagesOverTime, StandByDayUpToTwoYears) {
    const TimePlot plot = messagesOverTime({{{2023, 1, 1}, 1}, {{2024, 12, 31}, 2}});
    EXPECT_STREQ("Messages per day", plot.title);
    EXPECT_EQ(731U, plot.bars.size());
}

TEST(MessagesOverTime, AreAddedUpByYearOverALifetime) {
    const TimePlot plot = messagesOverTime({{{1970, 1, 1}, 1}, {{2024, 6, 30}, 2}});
    EXPECT_STREQ("Messages per year", plot.title);
    ASSERT_EQ(55U, plot.bars.size());
    EXPECT_EQ("1970", plot.bars[0].label);
    EXPECT_EQ(2, plot.bars[54].value);
}

TEST(MessagesOverTime, LeaveDaysOutThatNoCalendarHas) {
    const int most = std::numeric_limits<int>::max();
    const TimePlot plot = messagesOverTime({{{most, most, most}, 1}, {{0, 0, 0}, 1}, {{2024, 6, 30}, 2}});
    ASSERT_EQ(1U, plot.bars.size());
    EXPECT_EQ(2, plot.bars[0].value);
    EXPECT_TRUE(messagesOverTime({{{0, 0, 0}, 1}}).bars.empty());
}

TEST(MessagesOverTime, StayFewOverAllTheYearsThatThereAre) {
    EXPECT_GE(10000U, messagesOverTime({{{1, 1, 1}, 1}, {{9999, 12, 31}, 1}}).bars.size());
}

TEST(StepFor, IsARoundNumberThatGivesFewMarks) {
    EXPECT_EQ(1, stepFor(0));
    EXPECT_EQ(1, stepFor(5));
    EXPECT_EQ(2, stepFor(6));
    EXPECT_EQ(50, stepFor(249));
    EXPECT_EQ(100000, stepFor(500000));
}

}  // namespace
}  // namespace app::view
