// The list of conversations.
#include "tests/app/view/view_fixture.h"

namespace test {
namespace {

class ViewList : public ViewTest {
protected:
    static Said saidAt(long long conversation, int day, const std::string& body) {
        Said said;
        said.conversation = conversation;
        said.body = body;
        said.day = R"({"year": 2024, "month": 3, "day": )" + std::to_string(day) + "}";
        return said;
    }

    std::string list() const { return page("index.html"); }
};

TEST_F(ViewList, HasTheLatestConversationFirst) {
    makePagesOf({saidAt(1, 5, "old"), saidAt(2, 7, "new"), saidAt(3, 6, "middle")});
    EXPECT_LT(list().find("conversations/2/"), list().find("conversations/3/"));
    EXPECT_LT(list().find("conversations/3/"), list().find("conversations/1/"));
}

TEST_F(ViewList, HasPinnedConversationsBeforeAllOthers) {
    makePagesOf({saidAt(1, 5, "old"), saidAt(2, 7, "new")}, {contact(1, "Ada", 4), contact(2, "Ben", 3)});
    EXPECT_LT(list().find("conversations/1/"), list().find("conversations/2/"));
    EXPECT_EQ(1U, countOf(">Pinned<", list()));
}

TEST_F(ViewList, NamesTheContactOrElseTheId) {
    makePagesOf({saidAt(1, 5, "x"), saidAt(2, 5, "x"), saidAt(3, 5, "x")}, {contact(1, "Ada"), contact(2, " \n ")});
    EXPECT_SAYS(R"(<a href="conversations/1/1.html"><bdi>Ada</bdi>)", list());
    EXPECT_SAYS(R"(<a href="conversations/2/1.html"><bdi>2</bdi>)", list());
    EXPECT_SAYS(R"(<a href="conversations/3/1.html"><bdi>3</bdi>)", list());
}

TEST_F(ViewList, ShowsTheLastMessageAndLeadsToIt) {
    makePagesOf({saidAt(1, 5, "earlier words"), saidAt(1, 6, "last\nline")});
    EXPECT_SAYS(R"(<a href="conversations/1/1.html#m2">)", list());
    EXPECT_SAYS("<bdi>last line</bdi>", list());
    EXPECT_SAYS("2024-03-06 14:05", list());
    EXPECT_SAYS("2 messages", list());
    EXPECT_SAYS_NOT("earlier words", list());
}

TEST_F(ViewList, ShortensALongLastMessage) {
    makePagesOf({saidAt(1, 5, std::string(1000, 'x'))});
    EXPECT_SAYS(">" + std::string(160, 'x') + "…<", list());
}

TEST_F(ViewList, SaysInWordsWhatAnAttachmentIs) {
    Said said = saidAt(1, 5, fileBody("srv/a", "plan.pdf"));
    said.type = 6;
    makePagesOf({said});
    EXPECT_SAYS("<bdi>File: plan.pdf</bdi>", list());
}

TEST_F(ViewList, ListsContactsWithoutMessagesApart) {
    makePagesOf({saidAt(1, 5, "x")}, {contact(1, "Ada"), contact(9, "Silent", 0, "long ago")});
    const std::size_t apart = list().find("Contacts without messages");
    ASSERT_NE(std::string::npos, apart);
    EXPECT_LT(apart, list().find("<bdi>Silent</bdi>"));
    EXPECT_LT(apart, list().find("long ago"));
    EXPECT_GT(apart, list().find("<bdi>Ada</bdi>"));
}

TEST_F(ViewList, GoesOnOnFurtherPages) {
    std::vector<Said> messages;
    for (int conversation = 1; conversation <= 501; ++conversation)
        messages.push_back(saidAt(conversation, 5, "x"));
    makePagesOf(messages);
    EXPECT_EQ(500U, countOf(R"(class="name")", list()));
    EXPECT_EQ(1U, countOf(R"(class="name")", page("index-2.html")));
    EXPECT_SAYS(R"(href="index-2.html" rel="next")", list());
}

TEST_F(ViewList, SaysWhenThereIsNothing) {
    makePagesOf({});
    EXPECT_SAYS("This backup holds no messages.", list());
    EXPECT_SAYS("Statistics", page("statistics.html"));
    EXPECT_SAYS(R"(data-parts="0")", page("search.html"));
}

}  // namespace
}  // namespace test
