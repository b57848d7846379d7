// The figures of the statistics page.
#include "tests/app/view/view_fixture.h"

namespace test {
namespace {

class ViewStatistics : public ViewTest {
protected:
    // Five messages: three of Ada, one of them the user's and one of them a file, two of conversation 3; hours 14
    // and 3.
    void SetUp() override {
        const std::string next = R"({"year": 2024, "month": 3, "day": 9})";
        writePackage({{"a"},
                      {"b", 2002, std::stoll(kUser)},
                      {fileBody("srv/a", "gone.pdf"), 2002, 2002, 6},
                      {"c", 3, 3, 1, next, 1709953200000},
                      {"d", 3, 3, 77, next, 0}},
                     {contact(2002, "Ada")});
        makePages();
    }

    std::string figures() const { return page("statistics.html"); }
    static std::string total(const std::string& label, const std::string& value) {
        return "<dt>" + label + "</dt><dd>" + value + "</dd>";
    }
    static std::string bar(const std::string& label, const std::string& value) {
        return "<title>" + label + ": " + value + "</title>";
    }
    static std::string row(const std::string& label, const std::string& value) {
        return "<bdi>" + label + R"(</bdi></th><td class="value">)" + value + "</td>";
    }
};

TEST_F(ViewStatistics, AddUp) {
    EXPECT_SAYS(total("Messages", "5"), figures());
    EXPECT_SAYS(total("Sent by you", "1"), figures());
    EXPECT_SAYS(total("Received", "4"), figures());
    EXPECT_SAYS(total("Conversations", "2"), figures());
    EXPECT_SAYS(total("Days with messages", "2"), figures());
    EXPECT_SAYS(total("First day", "2024-03-07"), figures());
    EXPECT_SAYS(total("Last day", "2024-03-09"), figures());
    EXPECT_SAYS(total("Attachments missing", "1"), figures());
}

TEST_F(ViewStatistics, CountPerDayWithTheDaysBetween) {
    EXPECT_SAYS("Messages per day", figures());
    EXPECT_SAYS(bar("2024-03-07", "3"), figures());
    EXPECT_SAYS(bar("2024-03-08", "0"), figures());
    EXPECT_SAYS(bar("2024-03-09", "2"), figures());
}

TEST_F(ViewStatistics, CountPerHourOfTheDay) {
    EXPECT_SAYS(bar("14:00", "3"), figures());
    EXPECT_SAYS(bar("03:00", "1"), figures());
    EXPECT_SAYS(bar("04:00", "0"), figures());
    EXPECT_SAYS("1 message has no time", figures());
}

TEST_F(ViewStatistics, CountPerConversationMostFirst) {
    EXPECT_SAYS(row("Ada", "3"), figures());
    EXPECT_SAYS(row("3", "2"), figures());
    EXPECT_LT(figures().find(row("Ada", "3")), figures().find(row("3", "2")));
}

TEST_F(ViewStatistics, CountPerType) {
    EXPECT_SAYS(row("Text", "3"), figures());
    EXPECT_SAYS(row("File", "1"), figures());
    EXPECT_SAYS(row("Type 77", "1"), figures());
}

TEST_F(ViewStatistics, AreToldInFiguresToo) {
    EXPECT_SAYS(R"(<th scope="row">2024-03-07</th><td>3</td>)", figures());
}

TEST_F(ViewStatistics, DrawTheTallestBarHighest) {
    // The plot is 188 units high from 0 to the mark above 3, which is 3 itself.
    EXPECT_SAYS(R"(height="188.0"><title>2024-03-07: 3<)", figures());
    EXPECT_SAYS(R"(height="0.0"><title>2024-03-08: 0<)", figures());
    EXPECT_SAYS(R"(height="125.3"><title>2024-03-09: 2<)", figures());
}

TEST_F(ViewStatistics, AddUpTheConversationsBeyondTheTwentieth) {
    std::vector<Said> messages;
    for (int conversation = 1; conversation <= 30; ++conversation)
        messages.push_back({"x", conversation, conversation});
    writePackage(messages);
    ASSERT_EXIT_CODE(0, view("package", "many"));
    const std::string many = readFile(at("many/statistics.html"));
    EXPECT_SAYS(row("All others", "11"), many);
    EXPECT_SAYS(row("19", "1"), many);
    EXPECT_SAYS_NOT(row("20", "1"), many);
}

}  // namespace
}  // namespace test
