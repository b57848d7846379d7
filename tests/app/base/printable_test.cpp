#include "app/base/printable.h"

#include <gtest/gtest.h>

namespace app {
namespace {

TEST(Printable, KeepsLettersOfAllScriptsAndEmoji) {
    const std::string text =
        "Grüße, 你好, שלום, नमस्ते 👩‍👩‍👧‍👦 \"quoted\" \\ back";
    EXPECT_EQ(text, printable(text));
}

TEST(Printable, SpellsOutControlCharacters) {
    EXPECT_EQ("a\\x1b[31mb\\x07\\x0a\\x0d\\x09\\x7f", printable("a\x1b[31mb\x07\n\r\t\x7f"));
    EXPECT_EQ("\\x00", printable(std::string_view("\0", 1)));
}

TEST(Printable, SpellsOutTheSecondSetOfControlCharacters) {
    EXPECT_EQ("\\u0080\\u009b\\u009f\u00a0", printable("\u0080\u009b\u009f\u00a0"));
}

TEST(Printable, SpellsOutMarksThatReverseTheDirection) {
    // NOLINTNEXTLINE(misc-misleading-bidirectional): the very text that must not come through
    EXPECT_EQ("\\u202egpj.exe\\u2066\\u2069\\u2028", printable("\u202egpj.exe\u2066\u2069\u2028"));
}

TEST(Printable, ReplacesIllFormedBytes) {
    EXPECT_EQ("a\uFFFDb\uFFFD", printable("a\xff\x62\xc3"));
}

TEST(Printable, KeepsLineFeedsOnlyWhereLinesAreWanted) {
    EXPECT_EQ("a\nb\\x09", printableLines("a\nb\t"));
}

TEST(Printable, ShortensByCharacters) {
    EXPECT_EQ("äöü", shortened("äöü", 3));
    EXPECT_EQ("äöü...", shortened("äöüß", 3));
    EXPECT_EQ("", shortened("", 3));
}

}  // namespace
}  // namespace app
