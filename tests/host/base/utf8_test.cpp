#include "host/base/utf8.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "tests/host/base/repeatable_random.h"

namespace {

using tools::toWellFormedUtf8;

std::string encoded(unsigned codePoint) {
    const auto lead = [codePoint](unsigned mark, unsigned shift) {
        return static_cast<char>(mark | codePoint >> shift);
    };
    const auto tail = [codePoint](unsigned shift) { return static_cast<char>(0x80 | (codePoint >> shift & 0x3F)); };
    if (codePoint < 0x80) return {lead(0, 0)};
    if (codePoint < 0x800) return {lead(0xC0, 6), tail(0)};
    if (codePoint < 0x10000) return {lead(0xE0, 12), tail(6), tail(0)};
    return {lead(0xF0, 18), tail(12), tail(6), tail(0)};
}

// The text with each U+FFFD shown as "?".
std::string repaired(const std::string& text) {
    std::string result = toWellFormedUtf8(text);
    for (std::size_t at = result.find("\xEF\xBF\xBD"); at != std::string::npos; at = result.find("\xEF\xBF\xBD"))
        result.replace(at, 3, "?");
    return result;
}

TEST(Utf8Test, EveryCodePointIsWellFormedAndUntouched) {
    std::string text;
    for (unsigned codePoint = 0; codePoint <= 0x10FFFF; ++codePoint)
        if (codePoint < 0xD800 || codePoint > 0xDFFF) text += encoded(codePoint);
    EXPECT_TRUE(text == toWellFormedUtf8(text));
}

TEST(Utf8Test, TheEmptyTextIsWellFormed) {
    EXPECT_EQ("", toWellFormedUtf8(""));
}

TEST(Utf8Test, EachMaximalIllFormedPartBecomesOneReplacement) {
    const struct {
        const char* what;
        std::string text;
        const char* expected;
    } cases[] = {
        {"lone continuation", "a\x80z", "a?z"},
        {"two continuations", "\x80\xBF", "??"},
        {"bytes that never occur", "\xFE\xFF", "??"},
        {"overlong slash", "\xC0\xAF", "??"},
        {"overlong of two bytes", "\xC1\xBF", "??"},
        {"two-byte sequence cut by the end", "a\xC2", "a?"},
        {"two-byte sequence cut by a letter", "\xC2z", "?z"},
        {"overlong of three bytes", "\xE0\x80\xAF", "???"},
        {"three-byte sequence cut after two", "\xE2\x82z", "?z"},
        {"three-byte sequence cut after one", "\xE2z", "?z"},
        {"surrogate", "\xED\xA0\x80", "???"},
        {"last surrogate", "\xED\xBF\xBF", "???"},
        {"overlong of four bytes", "\xF0\x80\x80\xAF", "????"},
        {"four-byte sequence cut after three", "\xF0\x9F\x98z", "?z"},
        {"four-byte sequence cut after two", "\xF0\x9Fz", "?z"},
        {"four-byte sequence cut by the end", "\xF0\x9F\x98", "?"},
        {"above U+10FFFF", "\xF4\x90\x80\x80", "????"},
        {"lead byte above F4", "\xF5\x80\x80\x80", "????"},
        {"five-byte form", "\xF8\x88\x80\x80\x80", "?????"},
        {"one sequence cut by another", "\xE2\x82\xC3\xA9", "?\xC3\xA9"},
        {"mixed",
         "a\xF1\x80\x80\xE1\x80\xC2"
         "b\x80"
         "c\x80\xBF"
         "d",
         "a???b?c??d"},
        {"truncated ones in a row",
         "\xE1\x80\xE2\xF0\x91\x92\xF1\xBF"
         "A",
         "????A"},
    };
    for (const auto& one : cases)
        EXPECT_EQ(one.expected, repaired(one.text)) << one.what;
}

TEST(Utf8Test, TheNeighboursOfIllFormedSequencesAreWellFormed) {
    for (const char* text : {"\xC2\x80", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80", "\xF0\x90\x80\x80",
                             "\xF4\x8F\xBF\xBF", "\xEF\xBF\xBD", "\xEF\xBF\xBF"})
        EXPECT_EQ(text, toWellFormedUtf8(text));
}

TEST(Utf8Test, OneBrokenByteCostsOneCharacter) {
    EXPECT_EQ("\xD0\xBF\xD1\x80?\xD0\xB2\xF0\x9F\x98\x80", repaired("\xD0\xBF\xD1\x80\xD0\xD0\xB2\xF0\x9F\x98\x80"));
}

TEST(Utf8Test, NulsAreKept) {
    const std::string text("a\0\xFF\0b", 5);
    EXPECT_EQ(std::string("a\0?\0b", 5), repaired(text));
}

TEST(Utf8Test, TheResultStaysAsItIs) {
    std::mt19937_64 random = test::repeatableRandom();
    for (int i = 0; i < 20000; ++i) {
        std::string text(8, '\0');
        for (char& c : text)
            c = static_cast<char>(random());
        const std::string once = toWellFormedUtf8(text);
        ASSERT_EQ(once, toWellFormedUtf8(once));
    }
}

}  // namespace
