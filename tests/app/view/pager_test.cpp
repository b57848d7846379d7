#include "app/view/pager.h"

#include <gtest/gtest.h>

namespace app::view {
namespace {

std::vector<Message> messagesOf(std::size_t count, std::size_t bytes) {
    Message message;
    message.body.assign(bytes, 'x');
    std::vector<Message> messages;
    messages.resize(count, message);
    return messages;
}

std::string nameOf(std::size_t page) {
    return std::to_string(page) + ".html";
}

TEST(PagesOf, HoldAtMostFiveHundredMessages) {
    const std::vector<PageRange> pages = pagesOf(messagesOf(1001, 10));
    ASSERT_EQ(3U, pages.size());
    EXPECT_EQ(500U, pages[0].end);
    EXPECT_EQ(500U, pages[1].first);
    EXPECT_EQ(1000U, pages[2].first);
    EXPECT_EQ(1001U, pages[2].end);
}

TEST(PagesOf, AreASinglePageUpToTheLimit) {
    EXPECT_EQ(1U, pagesOf(messagesOf(500, 0)).size());
    EXPECT_EQ(0U, pagesOf({}).size());
}

TEST(PagesOf, HoldAtMostAMillionBytesOfText) {
    const std::vector<PageRange> pages = pagesOf(messagesOf(5, 400000));
    ASSERT_EQ(3U, pages.size());
    EXPECT_EQ(2U, pages[0].end);
    EXPECT_EQ(4U, pages[2].first);
}

TEST(PagesOf, GiveALongerMessageAPageOfItsOwn) {
    std::vector<Message> messages = messagesOf(3, 10);
    messages[1].body.assign(3000000, 'x');
    const std::vector<PageRange> pages = pagesOf(messages);
    ASSERT_EQ(3U, pages.size());
    EXPECT_EQ(1U, pages[1].first);
    EXPECT_EQ(2U, pages[1].end);
}

TEST(PagerOf, IsNothingForASinglePage) {
    EXPECT_EQ("", pagerOf(1, 1, nameOf).html());
}

TEST(PagerOf, LeadsToTheFirstPreviousNextAndLastPage) {
    const std::string pager = pagerOf(3, 9, nameOf).html();
    EXPECT_NE(std::string::npos, pager.find(R"(<a href="1.html">First</a> <a href="2.html" rel="prev">Previous</a>)"));
    EXPECT_NE(std::string::npos, pager.find("Page 3 of 9"));
    EXPECT_NE(std::string::npos, pager.find(R"(<a href="4.html" rel="next">Next</a> <a href="9.html">Last</a>)"));
}

TEST(PagerOf, LeadsNowhereBeyondTheEnds) {
    EXPECT_NE(std::string::npos, pagerOf(1, 2, nameOf).html().find(R"(<span class="off">Previous</span>)"));
    EXPECT_NE(std::string::npos, pagerOf(2, 2, nameOf).html().find(R"(<span class="off">Next</span>)"));
}

}  // namespace
}  // namespace app::view
