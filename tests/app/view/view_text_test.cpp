// Foreign text on the pages: what is shown of it, and that it stays text.
#include "tests/app/view/view_fixture.h"

namespace test {
namespace {

using ViewText = ViewTest;

constexpr const char* kScript = R"(<script>hacked()</script>"'&</p>)";
constexpr const char* kEscaped = "&lt;script&gt;hacked()&lt;/script&gt;&quot;&#39;&amp;&lt;/p&gt;";

TEST_F(ViewText, OfABodyIsEscaped) {
    makePagesOf({{kScript}});
    EXPECT_SAYS(std::string(R"(dir="auto">)") + kEscaped + "</div>", firstPage());
    EXPECT_SAYS(kEscaped, page("index.html"));
}

TEST_F(ViewText, OfANameIsEscapedWhereverItStands) {
    makePagesOf({{}}, {contact(2002, kScript), contact(7, kScript, 0, kScript)});
    EXPECT_SAYS(std::string("<title>") + kEscaped, firstPage());
    EXPECT_SAYS(std::string("<h1><bdi>") + kEscaped, firstPage());
    EXPECT_SAYS(std::string(R"(class="sender">)") + kEscaped, firstPage());
    EXPECT_SAYS(kEscaped, page("conversations/2002/days.html"));
    EXPECT_SAYS(kEscaped, page("statistics.html"));
    EXPECT_EQ(3U, countOf(kEscaped, page("index.html")) - countOf(kEscaped + std::string(":"), page("index.html")));
}

TEST_F(ViewText, OfAFileNameIsEscapedInItsAttribute) {
    writeAttachment("srv/x\" onclick=\"hacked()\" <b>.pdf", "%PDF");
    makePagesOf({{fileBody("srv/a", "x\" onclick=\"hacked()\" <b>.pdf"), 2002, 2002, 6}});
    EXPECT_SAYS(R"(download="x&quot; onclick=&quot;hacked()&quot; &lt;b&gt;.pdf"><bdi>x&quot; onclick)", firstPage());
}

TEST_F(ViewText, NeverBringsAnElementOfItsOwn) {
    std::vector<Said> messages;
    for (const char* body :
         {"<script>x</script>", "<img src=x onerror=x>", "<svg/onload=x>", "</style><b>", "<!--", "]]>", "<iframe>",
          "</div></li></main>", "<meta http-equiv=refresh>", "<a href=javascript:x>"})
        messages.push_back({body});
    makePagesOf(messages, {contact(2002, "<script>x</script>")});
    for (const std::string& name : filesEnding(".html")) {
        for (const char* element :
             {"<img", "<svg/", "<b>", "<!--", "<iframe", R"(javascript:x")", "<meta http-equiv=r"})
            EXPECT_EQ(0U, countOf(element, page(name))) << element << " in " << name;
        EXPECT_EQ(name == "search.html" ? 1U : 0U, countOf("<script", page(name))) << name;
        EXPECT_EQ(1U, countOf("</main>", page(name))) << name;
    }
}

TEST_F(ViewText, OfTheSearchIndexEndsNoScript) {
    makePagesOf({{"</script><!-- \u2028 \" \\ & '"}}, {contact(2002, "</script>")});
    const std::string part = page("search/1.js");
    EXPECT_EQ(std::string::npos, part.find_first_of("<>&'"));
    EXPECT_SAYS(R"(\u003c/script\u003e\u003c!-- \u2028 \u0022 \u005c \u0026 \u0027)", part);
}

TEST_F(ViewText, ThatIsNoUtf8IsReplaced) {
    makePagesOf({{"caf\xE9!"}}, {contact(2002, "\xFF name")});
    EXPECT_SAYS("caf\uFFFD!", firstPage());
    EXPECT_SAYS("\uFFFD name", firstPage());
}

TEST_F(ViewText, ShowsControlCharactersAsPictures) {
    makePagesOf({{"\x1b[2J\x07 bell"}});
    EXPECT_SAYS("␛[2J␇ bell", firstPage());
}

TEST_F(ViewText, KeepsLinesAndEveryScript) {
    const std::string text = "one\n\ttwo שלום مرحبا 漢字 👩‍👩‍👧‍👦";
    makePagesOf({{text}});
    EXPECT_SAYS(text, firstPage());
}

TEST_F(ViewText, OfANameReversesNothingBesideIt) {
    writePackage({{}}, {contact(2002, "\u202Eadam\u2066")});  // NOLINT(misc-misleading-bidirectional)
    makePages();
    EXPECT_SAYS("<bdi>\uFFFDadam\uFFFD</bdi>", firstPage());
}

TEST_F(ViewText, OfALongNameIsShortenedSinceItStandsBesideEachMessage) {
    makePagesOf({{}, {"again"}}, {contact(2002, std::string(100000, 'n'))});
    EXPECT_SAYS(R"(<bdi class="sender">)" + std::string(100, 'n') + "…</bdi>", firstPage());
    EXPECT_GT(50000U, firstPage().size());
    EXPECT_GT(1000U, page("search/1.js").size());
}

TEST_F(ViewText, WithALinkIsNotMadeClickable) {
    makePagesOf({{"see https://example.org/ or //example.org or javascript:x"}});
    EXPECT_SAYS("see https://example.org/ or", firstPage());
    for (const std::string& target : valuesOf("href", firstPage()))
        EXPECT_EQ(std::string::npos, target.find("example")) << target;
}

TEST_F(ViewText, OfAnAttachmentMessageThatNamesNoFileIsShownAsItIs) {
    makePagesOf({{R"({"note": "no names"})", 2002, 2002, 3}, {"not even JSON", 2002, 2002, 5}});
    EXPECT_SAYS("{&quot;note&quot;: &quot;no names&quot;}", firstPage());
    EXPECT_SAYS("not even JSON", firstPage());
}

}  // namespace
}  // namespace test
