// The search index: every message, in parts that a page can load.
#include "host/json/json_owner.h"
#include "tests/app/view/view_fixture.h"

namespace test {
namespace {

class ViewSearch : public ViewTest {
protected:
    // The object that a part hands over, which is JSON too.
    const JSON_Object* part(int number) {
        const std::string text = page("search/" + std::to_string(number) + ".js");
        const std::string begin = "takePart(" + std::to_string(number) + ",";
        EXPECT_EQ(0U, text.find(begin));
        EXPECT_EQ(");\n", text.substr(text.size() - 3));
        document_.reset(json_parse_string(text.substr(begin.size(), text.size() - begin.size() - 3).c_str()));
        return json_value_get_object(document_.get());
    }
    const JSON_Array* messagesOf(int number) { return json_object_get_array(part(number), "messages"); }

private:
    tools::JsonDocument document_;
};

TEST_F(ViewSearch, HasThePlaceTimeSenderAndTextOfAMessage) {
    makePagesOf({{R"(say "hi" </b>)"}}, {contact(2002, "Ada")});
    const JSON_Array* message = json_array_get_array(messagesOf(1), 0);
    EXPECT_EQ(0, json_array_get_number(message, 0));
    EXPECT_EQ(1, json_array_get_number(message, 1));
    EXPECT_EQ(1, json_array_get_number(message, 2));
    EXPECT_STREQ("2024-03-07 14:05", json_array_get_string(message, 3));
    EXPECT_STREQ("Ada", json_array_get_string(message, 4));
    EXPECT_STREQ(R"(say "hi" </b>)", json_array_get_string(message, 5));
}

TEST_F(ViewSearch, NamesTheConversationsOfAPart) {
    makePagesOf({{}}, {contact(2002, "Ada")});
    const JSON_Array* conversation = json_array_get_array(json_object_get_array(part(1), "conversations"), 0);
    EXPECT_STREQ("2002", json_array_get_string(conversation, 0));
    EXPECT_STREQ("Ada", json_array_get_string(conversation, 1));
}

TEST_F(ViewSearch, HoldsAllMessagesInPartsThatAreNotTooLarge) {
    std::vector<Said> messages(5001);
    messages.resize(5501, {"x", 3003});
    makePagesOf(messages);
    EXPECT_SAYS(R"(data-parts="2")", page("search.html"));
    EXPECT_EQ(5000U, json_array_get_count(messagesOf(1)));
    EXPECT_EQ(501U, json_array_get_count(messagesOf(2)));
    EXPECT_FALSE(exists(at("pages/search/3.js")));
}

TEST_F(ViewSearch, BeginsANewPartWhenTextsAreLong) {
    std::vector<Said> messages(3);
    for (Said& said : messages)
        said.body.assign(600000, 'x');
    makePagesOf(messages);
    EXPECT_SAYS(R"(data-parts="2")", page("search.html"));
}

TEST_F(ViewSearch, LeadsToThePageThatHoldsTheMessage) {
    std::vector<Said> messages(501);
    messages[500].time += 1;
    messages[500].body = "the last one";
    makePagesOf(messages);
    const JSON_Array* newest = json_array_get_array(messagesOf(1), 0);
    EXPECT_STREQ("the last one", json_array_get_string(newest, 5));
    EXPECT_EQ(2, json_array_get_number(newest, 1));
    EXPECT_EQ(501, json_array_get_number(newest, 2));
    EXPECT_SAYS("the last one", page("conversations/2002/2.html"));
}

TEST_F(ViewSearch, FindsFilesByTheirName) {
    makePagesOf({{fileBody("srv/a", "plan.pdf"), 2002, 2002, 6}});
    EXPECT_STREQ("File: plan.pdf", json_array_get_string(json_array_get_array(messagesOf(1), 0), 5));
}

}  // namespace
}  // namespace test
