#include "app/base/calendar.h"

#include <gtest/gtest.h>

#include <string>

namespace app {
namespace {

std::string textOf(long long days) {
    const CivilDay day = civilDay(days);
    return std::to_string(day.year) + "-" + std::to_string(day.month) + "-" + std::to_string(day.day);
}

TEST(Calendar, CountsDaysFrom1970) {
    EXPECT_EQ("1970-1-1", textOf(0));
    EXPECT_EQ("1970-12-31", textOf(364));
    EXPECT_EQ("2024-2-29", textOf(19782));
    EXPECT_EQ("2024-3-1", textOf(19783));
    EXPECT_EQ("2024-6-30", textOf(19904));
    EXPECT_EQ("2000-2-29", textOf(11016));
}

TEST(Calendar, CountsBackwards) {
    EXPECT_EQ("1969-12-31", textOf(-1));
    EXPECT_EQ("1968-2-29", textOf(-672));
    EXPECT_EQ("1900-3-1", textOf(-25508));
}

TEST(Calendar, KnowsLeapYears) {
    EXPECT_EQ(29, daysOfMonth(2024, 2));
    EXPECT_EQ(28, daysOfMonth(2023, 2));
    EXPECT_EQ(28, daysOfMonth(1900, 2));
    EXPECT_EQ(29, daysOfMonth(2000, 2));
    EXPECT_EQ(31, daysOfMonth(2024, 12));
}

}  // namespace
}  // namespace app
