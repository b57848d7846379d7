#include "host/base/numeric.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

namespace {

using tools::percentOf;
using tools::truncateTo;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(TruncateTest, DropsTheFractionTowardZero) {
    EXPECT_EQ(1, truncateTo<int>(1.999999));
    EXPECT_EQ(-1, truncateTo<int>(-1.999999));
    EXPECT_EQ(0, truncateTo<int>(-0.5));
    EXPECT_EQ(0, truncateTo<int>(-0.0));
}

TEST(TruncateTest, NotANumberIsZero) {
    EXPECT_EQ(0, truncateTo<int>(kNaN));
    EXPECT_EQ(0, truncateTo<long long>(-kNaN));
}

TEST(TruncateTest, InfinitiesBecomeTheLimits) {
    EXPECT_EQ(INT_MAX, truncateTo<int>(kInfinity));
    EXPECT_EQ(INT_MIN, truncateTo<int>(-kInfinity));
    EXPECT_EQ(LLONG_MAX, truncateTo<long long>(kInfinity));
    EXPECT_EQ(LLONG_MIN, truncateTo<long long>(-kInfinity));
}

TEST(TruncateTest, ValuesOutsideBecomeTheNearestLimit) {
    EXPECT_EQ(INT_MAX, truncateTo<int>(2147483648.0));
    EXPECT_EQ(INT_MIN, truncateTo<int>(-2147483649.0));
    EXPECT_EQ(LLONG_MAX, truncateTo<long long>(9223372036854775808.0));
    EXPECT_EQ(LLONG_MIN, truncateTo<long long>(-1e300));
    EXPECT_EQ(SCHAR_MAX, truncateTo<signed char>(1e300));
    EXPECT_EQ(SCHAR_MIN, truncateTo<signed char>(-129.0));
}

TEST(TruncateTest, TheLastValuesInsideAreExact) {
    EXPECT_EQ(INT_MAX, truncateTo<int>(2147483647.9));
    EXPECT_EQ(INT_MIN, truncateTo<int>(-2147483648.0));
    EXPECT_EQ(9223372036854774784LL, truncateTo<long long>(std::nextafter(9223372036854775808.0, 0.0)));
    EXPECT_EQ(LLONG_MIN, truncateTo<long long>(-9223372036854775808.0));
    EXPECT_EQ(127, truncateTo<signed char>(127.9));
    EXPECT_EQ(-128, truncateTo<signed char>(-128.0));
}

TEST(PercentTest, IsTruncated) {
    EXPECT_EQ(33, percentOf(1, 3));
    EXPECT_EQ(66, percentOf(2, 3));
    EXPECT_EQ(99, percentOf(999, 1000));
    EXPECT_EQ(100, percentOf(5, 5));
    EXPECT_EQ(250, percentOf(5, 2));
}

TEST(PercentTest, OfNothingIsDefined) {
    EXPECT_EQ(0, percentOf(0, 0));
    EXPECT_EQ(INT_MAX, percentOf(1, 0));
    EXPECT_EQ(INT_MIN, percentOf(-1, 0));
}

}  // namespace
