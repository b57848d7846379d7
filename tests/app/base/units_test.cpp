#include "app/base/units.h"

#include <gtest/gtest.h>

#include <limits>

namespace app {
namespace {

TEST(Units, GroupDigitsByThrees) {
    EXPECT_EQ("0", grouped(0));
    EXPECT_EQ("999", grouped(999));
    EXPECT_EQ("1,000", grouped(1000));
    EXPECT_EQ("-1,234,567", grouped(-1234567));
    EXPECT_EQ("-123", grouped(-123));
    EXPECT_EQ("-9,223,372,036,854,775,808", grouped(std::numeric_limits<long long>::min()));
}

TEST(Units, ShowSizesWithOneDecimal) {
    EXPECT_EQ("0 bytes", humanSize(0));
    EXPECT_EQ("1 byte", humanSize(1));
    EXPECT_EQ("999 bytes", humanSize(999));
    EXPECT_EQ("1.0 kB", humanSize(1000));
    EXPECT_EQ("1.0 MB", humanSize(999960));
    EXPECT_EQ("18446744.1 TB", humanSize(std::numeric_limits<unsigned long long>::max()));
}

TEST(Units, ShowDurationsInTheUnitThatFits) {
    EXPECT_EQ("0.04 s", humanDuration(0.04));
    EXPECT_EQ("12.3 s", humanDuration(12.34));
    EXPECT_EQ("1 min 00 s", humanDuration(59.96));
    EXPECT_EQ("2 min 05 s", humanDuration(125));
    EXPECT_EQ("1 h 02 min", humanDuration(3725));
}

TEST(Units, CountInWords) {
    EXPECT_EQ("1 file", counted(1, "file", "files"));
    EXPECT_EQ("0 files", counted(0, "file", "files"));
    EXPECT_EQ("2,000 files", counted(2000, "file", "files"));
}

}  // namespace
}  // namespace app
