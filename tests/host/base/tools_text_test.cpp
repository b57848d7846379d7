#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <string>
#include <vector>

#include "host/tools.h"

namespace {

using Numbers = std::vector<long long>;

Numbers numbersIn(const std::string& text, const char* separator = ";") {
    return tools::string_To_Vec_Int64(text, separator);
}

std::string nameInBuffer(std::string path) {
    std::array<char, 64> name{};
    name.fill('#');  // the NUL has to be written
    tools::getNameFromPath(path.data(), name.data());
    return name.data();
}

std::string nameInString(const std::string& path) {
    std::string name = "before";
    tools::getNameFromPath(path, name);
    return name;
}

TEST(NameFromPathTest, IsTheTextAfterTheLastSlash) {
    const std::array<std::array<const char*, 2>, 8> cases{{{"/a/b/c.amr", "c.amr"},
                                                           {"c.amr", "c.amr"},
                                                           {"/c.amr", "c.amr"},
                                                           {"a//c", "c"},
                                                           {"a/b/", ""},
                                                           {"/", ""},
                                                           {"", ""},
                                                           {"http://host/x?y=1", "x?y=1"}}};
    for (const auto& [path, name] : cases) {
        EXPECT_EQ(name, nameInBuffer(path)) << path;
        EXPECT_EQ(name, nameInString(path)) << path;
    }
}

TEST(NameFromPathTest, TheBufferMayBeThePathItself) {
    std::string path = "/aa/bbbbbb";
    tools::getNameFromPath(path.data(), path.data());
    EXPECT_STREQ("bbbbbb", path.c_str());
}

TEST(NameFromPathTest, TheStringMayBeThePathItself) {
    std::string path = "/aa/bbbbbb";
    tools::getNameFromPath(path, path);
    EXPECT_EQ("bbbbbb", path);
}

TEST(NameFromPathTest, TheStringFormTakesNamesOfAnyLength) {
    EXPECT_EQ(std::string(100000, 'x'), nameInString("a/" + std::string(100000, 'x')));
}

TEST(JoinNumbersTest, NoNumbersAreAnEmptyText) {
    EXPECT_EQ("", tools::int64_To_String({}, ";"));
}

TEST(JoinNumbersTest, TheSeparatorStandsBetween) {
    EXPECT_EQ("1;2", tools::int64_To_String({1, 2}, ";"));
    EXPECT_EQ("7", tools::int64_To_String({7}, ";"));
    EXPECT_EQ("1, -2, 0", tools::int64_To_String({1, -2, 0}, ", "));
}

TEST(JoinNumbersTest, TheLimitsAreExact) {
    EXPECT_EQ("9223372036854775807;-9223372036854775808", tools::int64_To_String({LLONG_MAX, LLONG_MIN}, ";"));
}

TEST(JoinNumbersTest, ANullSeparatorIsEmpty) {
    EXPECT_EQ("12", tools::int64_To_String({1, 2}, nullptr));
}

TEST(SplitNumbersTest, GivesTheNumbersInOrder) {
    EXPECT_EQ((Numbers{1, 2}), numbersIn("1;2"));
    EXPECT_EQ((Numbers{3, -1, 0}), numbersIn("3;-1;0"));
    EXPECT_EQ((Numbers{7}), numbersIn("7"));
}

TEST(SplitNumbersTest, EmptyPiecesAreLeftOut) {
    EXPECT_EQ(Numbers{}, numbersIn(""));
    EXPECT_EQ(Numbers{}, numbersIn(";;"));
    EXPECT_EQ((Numbers{1, 2}), numbersIn(";1;;2;"));
}

TEST(SplitNumbersTest, PiecesThatBeginWithNoNumberAreLeftOut) {
    EXPECT_EQ((Numbers{1, 2}), numbersIn("1;word;2;-;+;_7"));
}

TEST(SplitNumbersTest, TheLeadingNumberOfAPieceCounts) {
    EXPECT_EQ((Numbers{7, 8, 9}), numbersIn("7_1;8abc; 9 "));
    EXPECT_EQ((Numbers{5}), numbersIn("+5"));
    EXPECT_EQ(Numbers{}, numbersIn("+-5;-+5"));
}

TEST(SplitNumbersTest, NumbersOutsideBecomeTheNearestLimit) {
    EXPECT_EQ((Numbers{LLONG_MAX, LLONG_MIN}), numbersIn("9223372036854775807;-9223372036854775808"));
    EXPECT_EQ((Numbers{LLONG_MAX, LLONG_MIN}), numbersIn("9223372036854775808;-9223372036854775809"));
    EXPECT_EQ((Numbers{LLONG_MAX, 1}), numbersIn(std::string(1000, '9') + ";1"));
    EXPECT_EQ((Numbers{LLONG_MAX}), numbersIn("+9223372036854775808"));
}

TEST(SplitNumbersTest, ASeparatorMayBeLonger) {
    EXPECT_EQ((Numbers{1, 2, 3}), numbersIn("1<>2<>3", "<>"));
    EXPECT_EQ((Numbers{1, 3}), numbersIn("1<2<>3", "<>"));
    EXPECT_EQ((Numbers{1}), numbersIn("1<>", "<>"));
}

TEST(SplitNumbersTest, WithoutASeparatorTheTextIsOnePiece) {
    EXPECT_EQ((Numbers{1}), numbersIn("1;2", nullptr));
    EXPECT_EQ((Numbers{1}), numbersIn("1;2", ""));
}

TEST(SplitNumbersTest, UndoesTheJoining) {
    const Numbers numbers{LLONG_MIN, -1, 0, 1, 9007199254740993, LLONG_MAX};
    EXPECT_EQ(numbers, numbersIn(tools::int64_To_String(numbers, ";")));
}

TEST(Atoint64Test, GivesTheLeadingNumber) {
    EXPECT_EQ(42, tools::atoint64("42"));
    EXPECT_EQ(-42, tools::atoint64(" \t-42abc"));
    EXPECT_EQ(42, tools::atoint64("+42"));
    EXPECT_EQ(7, tools::atoint64("0007"));
    EXPECT_EQ(9007199254740993, tools::atoint64("9007199254740993"));
}

TEST(Atoint64Test, TextsWithoutANumberAreZero) {
    for (const char* text : {"", "abc", "-", "+", " ", "--1", "+-1"})
        EXPECT_EQ(0, tools::atoint64(text)) << text;
    EXPECT_EQ(0, tools::atoint64(nullptr));
}

TEST(Atoint64Test, NumbersOutsideBecomeTheNearestLimit) {
    EXPECT_EQ(LLONG_MAX, tools::atoint64("9223372036854775807"));
    EXPECT_EQ(LLONG_MAX, tools::atoint64("9223372036854775808"));
    EXPECT_EQ(LLONG_MIN, tools::atoint64("-9223372036854775808"));
    EXPECT_EQ(LLONG_MIN, tools::atoint64("-99999999999999999999"));
}

}  // namespace
