#include "app/view/clock.h"

#include <gtest/gtest.h>

#include <limits>

namespace app::view {
namespace {

TEST(LongDayText, KnowsTheDaysOfTheWeek) {
    EXPECT_EQ("Sunday, 30 June 2024", longDayText({2024, 6, 30}));
    EXPECT_EQ("Thursday, 29 February 2024", longDayText({2024, 2, 29}));
    EXPECT_EQ("Thursday, 1 January 1970", longDayText({1970, 1, 1}));
    EXPECT_EQ("Monday, 1 January 1", longDayText({1, 1, 1}));
}

TEST(LongDayText, ShowsTheNumbersOfADayThatNoCalendarHas) {
    EXPECT_EQ("No day of the calendar (2023-02-29)", longDayText({2023, 2, 29}));
    EXPECT_EQ("No day of the calendar (0000-00-00)", longDayText({0, 0, 0}));
    const int most = std::numeric_limits<int>::max();
    EXPECT_EQ("No day of the calendar (2147483647-2147483647-2147483647)", longDayText({most, most, most}));
}

TEST(ClockOf, KnowsNoTimeOfDayForTimesThatAreNone) {
    EXPECT_FALSE(clockOf(0));
    EXPECT_FALSE(clockOf(-5));
    EXPECT_FALSE(clockOf(std::numeric_limits<long long>::min()));
}

TEST(ClockOf, KnowsTimesBehind2038) {
    EXPECT_TRUE(clockOf(4102444800000));
}

TEST(ClockOf, TakesAnyTimeThatTheFormatCanHold) {
    const auto clock = clockOf(std::numeric_limits<long long>::max());
    EXPECT_TRUE(!clock || (clock->hour >= 0 && clock->hour < 24));
}

}  // namespace
}  // namespace app::view
