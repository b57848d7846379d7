#include "app/view/shown_text.h"

#include <gtest/gtest.h>

#include "host/base/utf8.h"

namespace app::view {
namespace {

TEST(ShownText, KeepsScriptsEmojiLineFeedsAndTabs) {
    const std::string text = "שלום مرحبا 漢字\n\t👩‍👩‍👧‍👦 é";
    EXPECT_EQ(text, shownText(text));
}

TEST(ShownText, PutsTheReplacementCharacterForEachIllFormedPart) {
    EXPECT_EQ("caf\uFFFD!", shownText("caf\xE9!"));
    EXPECT_EQ("\uFFFD", shownText("\xF0\x9F\x91"));
    EXPECT_EQ("\uFFFD\uFFFD\uFFFD", shownText("\xED\xA0\x80"));
}

TEST(ShownText, PicturesControlCharacters) {
    EXPECT_EQ("␀␛[2J␡", shownText(std::string("\0\x1b[2J\x7f", 6)));
    EXPECT_EQ("a\uFFFDz", shownText("a\xC2\x9Bz"));
}

TEST(ShownText, TakesACarriageReturnBeforeALineFeedForPartOfTheLineEnd) {
    EXPECT_EQ("one\ntwo␍three", shownText("one\r\ntwo\rthree"));
}

TEST(ShownText, KeepsDirectionMarksInABlockOfItsOwn) {
    EXPECT_EQ("\u202Eabc", shownText("\u202Eabc"));  // NOLINT(misc-misleading-bidirectional)
}

TEST(ShownLine, HasNoLineEndAndNoDirectionMark) {
    // NOLINTNEXTLINE(misc-misleading-bidirectional): the very marks that must not come through
    EXPECT_EQ("a b c d \uFFFDgpj.exe\uFFFD\uFFFD", shownLine("a\nb\tc\u2028d\u2029\u202Egpj.exe\u2066\u2069"));
}

TEST(ShownLine, KeepsTheJoinersThatEmojiAndScriptsNeed) {
    EXPECT_EQ("👩‍💻 می‌خواهم", shownLine("👩‍💻 می‌خواهم"));
}

TEST(ShortLine, CutsBetweenCharacters) {
    EXPECT_EQ("äö…", shortLine("äöü", 2));
    EXPECT_EQ("äöü", shortLine("äöü", 3));
    EXPECT_EQ("", shortLine("", 3));
}

TEST(ScriptLiteral, EscapesWhatWouldEndTheElementOrTheLiteral) {
    EXPECT_EQ(R"("\u003c/script\u003e \u0026 \u0022 \u005c \u0027")", scriptLiteral("</script> & \" \\ '"));
    EXPECT_EQ(R"("\u2028\u2029")", scriptLiteral("\u2028\u2029"));
    EXPECT_EQ(R"("\u000a\u007f")", scriptLiteral("\n\x7f"));
}

TEST(ScriptLiteral, IsPureTextWhateverTheBytes) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    const std::string literal = scriptLiteral(shownText(bytes));
    EXPECT_EQ(literal, tools::toWellFormedUtf8(literal));
    EXPECT_EQ(std::string::npos, literal.find_first_of("<>&'\n\r", 0));
    EXPECT_EQ(literal.size() - 1, literal.find('"', 1));
}

}  // namespace
}  // namespace app::view
