#include "app/base/characters.h"

#include <gtest/gtest.h>

#include <vector>

namespace app {
namespace {

std::vector<char32_t> codesOf(std::string_view text) {
    std::vector<char32_t> codes;
    while (!text.empty())
        codes.push_back(nextCharacter(text).code);
    return codes;
}

TEST(Characters, HaveTheirCodeInEveryLengthOfSequence) {
    EXPECT_EQ((std::vector<char32_t>{0, 'a', 0x7F}), codesOf(std::string_view("\0a\x7f", 3)));
    EXPECT_EQ((std::vector<char32_t>{0x80, 0x7FF}), codesOf("\xC2\x80\xDF\xBF"));
    EXPECT_EQ((std::vector<char32_t>{0x800, 0x2028, 0xFFFD, 0xFFFF}), codesOf("\u0800\u2028\uFFFD\uFFFF"));
    EXPECT_EQ((std::vector<char32_t>{0x10000, 0x1F600, 0x10FFFF}), codesOf("\U00010000\U0001F600\U0010FFFF"));
}

TEST(Characters, KeepTheirBytes) {
    std::string_view text = "\u20ACx";
    EXPECT_EQ("\u20AC", nextCharacter(text).bytes);
    EXPECT_EQ("x", text);
}

TEST(Characters, AreOfOneClassAtMost) {
    for (char32_t code = 0; code < 0x3000; ++code) {
        const int classes = static_cast<int>(isControl(code)) + static_cast<int>(isSecondControl(code)) +
                            static_cast<int>(isLineSeparator(code)) + static_cast<int>(changesDirection(code));
        const bool special = code < 0x20 || (code >= 0x7F && code < 0xA0) || (code >= 0x2028 && code <= 0x202E) ||
                             (code >= 0x2066 && code <= 0x2069);
        EXPECT_EQ(special ? 1 : 0, classes) << static_cast<unsigned>(code);
    }
}

TEST(Characters, AreCountedWhereATextIsCutShort) {
    EXPECT_EQ("\u00E4\u00F6\u2026", cutShort("\u00E4\u00F6\u00FC", 2, "\u2026"));
    EXPECT_EQ("\u00E4\u00F6\u00FC", cutShort("\u00E4\u00F6\u00FC", 3, "\u2026"));
    EXPECT_EQ("...", cutShort("a", 0, "..."));
    EXPECT_EQ("", cutShort("", 0, "..."));
}

}  // namespace
}  // namespace app
