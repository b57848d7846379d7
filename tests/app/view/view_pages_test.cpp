// The pages of a conversation: how they are split, ordered and linked.
#include <algorithm>

#include "tests/app/view/view_fixture.h"
#include "tests/support/snapshot.h"

namespace test {
namespace {

class ViewPages : public ViewTest {
protected:
    static std::string dayOf(int month, int day) {
        return R"({"year": 2024, "month": )" + std::to_string(month) + R"(, "day": )" + std::to_string(day) + "}";
    }

    // Messages "text 1" to "text N" in this order, `perDay` on each day from 2024-01-01 on.
    static std::vector<Said> manyMessages(int count, int perDay) {
        std::vector<Said> messages;
        for (int i = 0; i < count; ++i) {
            Said said;
            said.body = "text " + std::to_string(i + 1) + ".";
            said.day = dayOf(1 + i / perDay / 28, 1 + i / perDay % 28);
            said.id = i + 1;
            said.time += i;
            messages.push_back(said);
        }
        return messages;
    }

    std::string pageOf(int number) const { return page("conversations/2002/" + std::to_string(number) + ".html"); }
};

TEST_F(ViewPages, HoldEachMessageOnceInItsOrder) {
    makePagesOf(manyMessages(1001, 200));
    int next = 1;
    for (int number = 1; number <= 3; ++number) {
        const std::string text = pageOf(number);
        for (std::size_t at = text.find(">text "); at != std::string::npos; at = text.find(">text ", at + 1), ++next)
            EXPECT_EQ(">text " + std::to_string(next) + ".", text.substr(at, text.find('.', at) - at + 1));
    }
    EXPECT_EQ(1002, next);
    EXPECT_FALSE(exists(at("pages/conversations/2002/4.html")));
}

TEST_F(ViewPages, NameEachMessageByItsNumberInTheConversation) {
    makePagesOf(manyMessages(501, 200));
    EXPECT_SAYS(R"(<li id="m500")", pageOf(1));
    EXPECT_SAYS(R"(<li id="m501")", pageOf(2));
    EXPECT_EQ(1U, countOf(R"(<li id="m)", pageOf(2)));
}

TEST_F(ViewPages, LeadToOneAnother) {
    makePagesOf(manyMessages(1001, 200));
    const std::vector<std::string> links = valuesOf("href", pageOf(2));
    for (const char* target : {"1.html", "3.html", "days.html", "../../index.html", "../../search.html"})
        EXPECT_LE(1, std::count(links.begin(), links.end(), target)) << target;
    EXPECT_SAYS("Page 2 of 3", pageOf(2));
}

TEST_F(ViewPages, SeparateTheDays) {
    makePagesOf({{"a", 2002, 2002, 1, dayOf(3, 7)}, {"b", 2002, 2002, 1, dayOf(3, 8)}});
    EXPECT_SAYS(R"(<h2 id="d2024-03-07">Thursday, 7 March 2024</h2>)", firstPage());
    EXPECT_SAYS(R"(<h2 id="d2024-03-08">Friday, 8 March 2024</h2>)", firstPage());
}

TEST_F(ViewPages, SortByTheDayOfTheDataThenByTimeThenById) {
    makePagesOf({{"last", 2002, 2002, 1, dayOf(10, 1), 1, 1},
                 {"third", 2002, 2002, 1, dayOf(9, 30), 9, 8},
                 {"second", 2002, 2002, 1, dayOf(9, 30), 9, 7},
                 {"first", 2002, 2002, 1, dayOf(9, 30), 8, 9}});
    const std::string text = firstPage();
    EXPECT_LT(text.find("first</div>"), text.find("second</div>"));
    EXPECT_LT(text.find("second</div>"), text.find("third</div>"));
    EXPECT_LT(text.find("third</div>"), text.find("last</div>"));
}

TEST_F(ViewPages, ListEveryDayWithThePageWhereItBegins) {
    makePagesOf(manyMessages(1001, 200));
    const std::string days = page("conversations/2002/days.html");
    EXPECT_SAYS(R"(href="1.html#d2024-01-01">Monday, 1 January 2024</a> <span class="count">200 messages)", days);
    EXPECT_SAYS(R"(href="1.html#d2024-01-03")", days);
    EXPECT_SAYS(R"(href="2.html#d2024-01-04")", days);
    EXPECT_SAYS(R"(href="3.html#d2024-01-06">Saturday, 6 January 2024</a> <span class="count">1 message<)", days);
}

TEST_F(ViewPages, HaveTheHeadingThatTheListOfDaysLeadsTo) {
    makePagesOf(manyMessages(1001, 200));
    int days = 0;
    for (const std::string& target : valuesOf("href", page("conversations/2002/days.html"))) {
        const std::size_t hash = target.find("#d");
        if (hash == std::string::npos) continue;
        EXPECT_SAYS(R"( id=")" + target.substr(hash + 1) + "\"", page("conversations/2002/" + target.substr(0, hash)));
        ++days;
    }
    EXPECT_EQ(6, days);
}

TEST_F(ViewPages, RepeatTheHeadingOfADayThatGoesOn) {
    makePagesOf(manyMessages(501, 501));
    EXPECT_SAYS(R"(<h2 id="d2024-01-01">)", pageOf(1));
    EXPECT_SAYS(R"(<h2 id="d2024-01-01">)", pageOf(2));
}

TEST_F(ViewPages, ShowADayThatNoCalendarHas) {
    makePagesOf({{"lost", 2002, 2002, 1, R"({"year": 2024, "month": 13, "day": 77})"}});
    EXPECT_SAYS("No day of the calendar (2024-13-77)", firstPage());
}

TEST_F(ViewPages, MarkTheMessagesOfTheUser) {
    makePagesOf({{"mine", 2002, std::stoll(kUser)}, {"theirs"}}, {contact(2002, "Ada")});
    EXPECT_EQ(1U, countOf(R"(class="message own")", firstPage()));
    EXPECT_SAYS(R"(class="sender">You</bdi>)", firstPage());
    EXPECT_SAYS(R"(class="sender">Ada</bdi>)", firstPage());
}

TEST_F(ViewPages, ShowTheTimeOfTheZone) {
    writePackage({{}});
    ASSERT_EXIT_CODE(0, view("package", "pages", {}, "UTC"));
    EXPECT_SAYS(R"(<time datetime="14:05">14:05</time>)", firstPage());
    ASSERT_EXIT_CODE(0, view("package", "east", {}, "Asia/Kolkata"));
    EXPECT_SAYS(R"(<time datetime="19:35">19:35</time>)", readFile(at("east/conversations/2002/1.html")));
}

TEST_F(ViewPages, SayWhereATimeIsMissing) {
    Said said;
    said.time = 0;
    makePagesOf({said});
    EXPECT_SAYS(">no time</a>", firstPage());
}

TEST_F(ViewPages, AreTheSameEveryTime) {
    makePackage("account", "package");
    ASSERT_EXIT_CODE(0, view("package", "once"));
    ASSERT_EXIT_CODE(0, view("package", "again"));
    EXPECT_EQ(snapshotOf(at("once")), snapshotOf(at("again")));
}

TEST_F(ViewPages, HoldAWholeSample) {
    makePackage("account", "package");
    const Outcome run = view("package", "pages");
    expectWholeSample(run);
    EXPECT_EQ("3", rowOf(run.out, "Attachments copied"));
}

}  // namespace
}  // namespace test
