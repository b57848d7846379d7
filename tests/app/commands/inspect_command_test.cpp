#include <filesystem>

#include "host/json/json_owner.h"
#include "tests/app/fixture.h"

namespace test {
namespace {

namespace fs = std::filesystem;

class InspectCommand : public CommandTest {
protected:
    // The object that --json prints; null when it is no JSON.
    const JSON_Object* inspectJson(const std::string& package) {
        const Outcome run = inspect(package, {"--json"});
        EXPECT_EXIT_CODE(0, run);
        EXPECT_EQ("", run.err);
        document_.reset(json_parse_string(run.out.c_str()));
        return json_value_get_object(document_.get());
    }

private:
    tools::JsonDocument document_;
};

TEST_F(InspectCommand, ShowsWhatThePackageHolds) {
    makePackage("account", "package");
    expectRows(expectSuccess(inspect("package")), {{"Version", "1.0"},
                                                   {"Message files", "5"},
                                                   {"Days", "2024-06-26 to 2024-06-30"},
                                                   {"Messages", "300"},
                                                   {"Recent contacts", "4"},
                                                   {"Attachments present", "4"},
                                                   {"Attachments missing", "0"}});
}

TEST_F(InspectCommand, CountsPerConversation) {
    makePackage("account", "package");
    const std::string table = biggestTable("account");
    const std::string rows = queryText(mainDatabase("account"), "select count(*) from " + table, 1);
    EXPECT_SAYS("  " + table.substr(7) + "       " + rows + "  2024-06-26  2024-06-30  ", inspect("package").out);
}

TEST_F(InspectCommand, PrintsTheSameAsJson) {
    makePackage("account", "package");
    const JSON_Object* object = inspectJson("package");
    ASSERT_NE(nullptr, object);
    EXPECT_STREQ("1.0", json_array_get_string(json_object_get_array(object, "versions"), 0));
    EXPECT_EQ(300, json_object_get_int64(object, "messages"));
    EXPECT_STREQ("2024-06-26", json_object_get_string(object, "firstDay"));
    EXPECT_EQ(297, json_object_dotget_number(object, "byType.1"));
    EXPECT_EQ(1, json_object_dotget_number(object, "byType.3"));
    EXPECT_EQ(4, json_object_dotget_number(object, "attachments.present"));
    EXPECT_EQ(4U, json_array_get_count(json_object_get_array(object, "conversations")));
}

TEST_F(InspectCommand, CountsAddUpOverTheConversationsInJson) {
    makePackage("account", "package");
    const JSON_Object* object = inspectJson("package");
    const JSON_Array* conversations = json_object_get_array(object, "conversations");
    long long messages = 0;
    for (size_t i = 0; i < json_array_get_count(conversations); ++i) {
        const JSON_Object* conversation = json_array_get_object(conversations, i);
        messages += json_object_get_int64(conversation, "messages");
        EXPECT_NE(nullptr, json_object_get_string(conversation, "id"));
    }
    EXPECT_EQ(300, messages);
}

TEST_F(InspectCommand, FindsMissingAttachments) {
    makePackage("account", "package");
    fs::remove_all(attachmentFolder("package") + "image");
    expectRows(expectSuccess(inspect("package")), {{"Attachments present", "2"}, {"Attachments missing", "2"}});
}

TEST_F(InspectCommand, ListsDamagedFilesAndGaps) {
    makePackage("account", "package");
    putIntoPackage("msg_0.mg", "[]");
    putIntoPackage("recontact.mg", "");
    fs::remove(messageFolder("package") + "msg_3.mg");
    const Outcome run = expectSuccess(
        inspect("package"), {messageFolder("package") + "msg_0.mg\n", messageFolder("package") + "recontact.mg\n",
                             "gap after 3 files: no import reads the 1 behind it"});
    EXPECT_EQ("no file", rowOf(run.out, "Recent contacts"));
}

TEST_F(InspectCommand, ListsEveryVersionThatThereIs) {
    makePackage("account", "package");
    putIntoPackage("msg_5.mg", R"({"version":"2","msgs":[]})");
    putIntoPackage("msg_6.mg", R"({"msgs":[]})");
    EXPECT_EQ("(none) (1 file), 1.0 (6 files), 2 (1 file)", rowOf(inspect("package").out, "Version"));
}

TEST_F(InspectCommand, ShowsNoControlCharacterOfAContactOrVersion) {
    makeAccount("account",
                {createTable("im_msg_5"), insertMessage("im_msg_5", 1, "'x'"),
                 "insert into im_reContact(targetID, name) values(5, char(27) || '[2J' || char(155) || 'x')"});
    ASSERT_EXIT_CODE(0, exportFrom("account", "package", {"--package-version", "1\x1b[31m"}));
    const Outcome table = inspect("package");
    EXPECT_SAYS("\\x1b[2J\\u009bx", table.out);
    EXPECT_FALSE(hasControlCharacter(table.all()));
    EXPECT_FALSE(hasControlCharacter(inspect("package", {"--json"}).out));
}

TEST_F(InspectCommand, ChangesNothing) {
    makePackage("account", "package");
    expectSuccess(chatTransfer({"inspect", "package", "--user", kUser}, {{}, 0, dir_.path()}));
    EXPECT_EQ("account package", listing(dir_.path()));
    EXPECT_EQ("qelmsg_0", listing(at("package")));
}

TEST_F(InspectCommand, NamesTheUsersOfThePackage) {
    makePackage("account", "package");
    expectFailure(chatTransfer({"inspect", at("package"), "--user", "7"}),
                  {std::string("this package holds: ") + kUser});
}

TEST_F(InspectCommand, KnowsAPackageWithoutMessages) {
    makeAccount("account", {});
    ASSERT_EXIT_CODE(0, exportFrom("account", "package"));
    expectRows(expectSuccess(inspect("package")), {{"Messages", "0"}, {"Days", ""}});
}

}  // namespace
}  // namespace test
