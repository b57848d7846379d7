#include "app/view/markup.h"

#include <gtest/gtest.h>

#include <utility>

#include "app/view/shown_text.h"
#include "host/base/utf8.h"
#include "tests/host/base/repeatable_random.h"

namespace app::view {
namespace {

// What a browser reads, as far as our own entities go.
std::string unescaped(std::string text) {
    for (const auto& [entity, character] :
         {std::pair{"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&#39;", "'"}, {"&amp;", "&"}}) {
        const std::string_view name = entity;
        for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name, at + 1))
            text.replace(at, name.size(), character);
    }
    return text;
}

TEST(Markup, KeepsOurOwnTagsAndEscapesTexts) {
    EXPECT_EQ("<p>&lt;b&gt; &amp; &quot;quoted&quot; &#39;too&#39;</p>",
              Markup().tag("<p>").text(R"(<b> & "quoted" 'too')").tag("</p>").html());
}

TEST(Markup, EscapesATextOfNothingButSpecialCharacters) {
    EXPECT_EQ("&lt;&lt;&gt;&gt;", Markup().text("<<>>").html());
}

TEST(Markup, LeavesEveryOtherCharacterAsItIs) {
    EXPECT_EQ(R"(`=/\{} äöü 漢字 👍)", Markup().text(R"(`=/\{} äöü 漢字 👍)").html());
}

// Random texts of bytes that mean something to HTML, and of halves of characters.
TEST(Markup, MakesNoElementAttributeOrEntityOfAnyText) {
    using std::string_view_literals::operator""sv;
    // NOLINTNEXTLINE(misc-misleading-bidirectional): a mark of the direction is one of the bytes to mix
    constexpr std::string_view kBytes = "<>&\"'/=!- ;#x3lgtaqu\0\x1b\xE2\x80\xAE\xC2\xF0\xFF"sv;
    std::mt19937_64 random = test::repeatableRandom();
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (auto length = random() % 24; length > 0; --length)
            text += kBytes[static_cast<std::size_t>(random() % kBytes.size())];
        const std::string html = Markup().text(shownText(text)).html();
        ASSERT_EQ(std::string::npos, html.find_first_of(R"(<>"')")) << html;
        ASSERT_EQ(html, tools::toWellFormedUtf8(html));
        ASSERT_EQ(shownText(text), unescaped(html));
    }
}

TEST(Markup, AddsMarkupAndNumbersAsTheyAre) {
    EXPECT_EQ("<i>-12</i>", Markup().markup(Markup().tag("<i>").number(-12)).tag("</i>").html());
}

}  // namespace
}  // namespace app::view
