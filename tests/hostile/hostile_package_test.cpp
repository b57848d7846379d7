// Packages that somebody made to hurt the user, imported as a whole: nothing outside the account changes, nothing
// private gets into it, and the harmless rest of the package arrives.
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "tests/hostile/hostile_names.h"
#include "tests/hostile/hostile_package.h"
#include "tests/hostile/swapper.h"
#include "tests/support/json_text.h"
#include "tests/support/seconds_of.h"
#include "tests/support/small_stack.h"
#include "tests/support/soak.h"

namespace fs = std::filesystem;

namespace test {
namespace {

std::string attachmentMessage(long long id, int type, const std::string& mediaUrl, const std::string& name) {
    const char* nameKey = type == 5 ? "thumbUrl" : "fileName";
    const std::string body = R"({"mediaUrl":")" + mediaUrl + R"(",")" + nameKey + R"(":")" + name + R"("})";
    return messageJson(6, id, R"(,"messageType":)" + std::to_string(type) + R"(,"message":)" + quoted(body));
}

// --- Names ---

class NameInAPackage : public HostilePackage, public testing::WithParamInterface<HostileName> {};

TEST_P(NameInAPackage, LeadsNowhereFromAnyField) {
    const std::string& name = GetParam().json;
    writeAttachment("a/harmless.txt", "harmless");
    std::string messages;
    long long id = 0;
    for (const int type : {3, 5, 6}) {
        messages += attachmentMessage(++id, type, name, name) + ",";
        messages += attachmentMessage(++id, type, "a/x", name) + ",";
        messages += attachmentMessage(++id, type, name, "harmless.txt") + ",";
    }
    messages += attachmentMessage(++id, 6, "a/x", "harmless.txt");
    writeFile(0, fileJson(dayJson(messages)));
    importWholePackage();
    EXPECT_EQ("10", mainRows("select count(*) from im_msg_6")) << "a message may be hostile, but it is a message";
    EXPECT_EQ("harmless", readFile(dir_.at("account/file/harmless.txt")));
    expectNothingPrivateInTheAccount();
}

INSTANTIATE_TEST_SUITE_P(Hostile, NameInAPackage, testing::ValuesIn(hostileNames()),
                         [](const auto& parameter) { return std::string(parameter.param.label); });

TEST_F(HostilePackage, WithNamesThatDifferInCaseOnlyKeepsBothFiles) {
    writeAttachment("a/Photo.jpg", "upper");
    writeAttachment("a/photo.jpg", "lower");
    writeFile(0, fileJson(dayJson(attachmentMessage(1, 6, "a/x", "Photo.jpg") + "," +
                                  attachmentMessage(2, 6, "a/x", "photo.jpg"))));
    importWholePackage();
    EXPECT_EQ("upper", readFile(dir_.at("account/file/Photo.jpg")));
    EXPECT_EQ("lower", readFile(dir_.at("account/file/photo.jpg")));
}

// --- Links ---

TEST_F(HostilePackage, WithLinksToPrivateFilesBringsNoneOfThem) {
    fs::create_symlink(dir_.at("private/secret.txt"), dir_.at(attachmentsFolder_ + "file.txt"));
    fs::create_directory_symlink(dir_.at("private"), dir_.at(attachmentsFolder_ + "folder"));
    fs::create_symlink(dir_.at("private/secret.txt"), dir_.at(messageFile(0)));
    writeFile(1, fileJson(dayJson(attachmentMessage(1, 6, "x", "file.txt") + "," +
                                  attachmentMessage(2, 6, "folder/x", "secret.txt") + "," +
                                  attachmentMessage(3, 5, "folder/secret.txt", "file.txt") + "," +
                                  attachmentMessage(4, 3, "./x", "file.txt"))));
    fs::create_symlink(dir_.at("private/secret.txt"), dir_.at(messagesFolder_ + "recontact.mg"));
    harmlessFile_ = 2;
    importWholePackage();
    expectNothingPrivateInTheAccount();
}

TEST_F(HostilePackage, WithAHardLinkToAPrivateFileLeavesThatFileAsItIs) {
    fs::create_hard_link(dir_.at("private/secret.txt"), dir_.at(attachmentsFolder_ + "voice.amr"));
    writeFile(0, fileJson(dayJson(attachmentMessage(1, 3, "./x", "voice.amr"))));
    importWholePackage();
    // A hard link is the file itself: its bytes are copied, but the copy is another file.
    EXPECT_EQ(2U, fs::hard_link_count(dir_.at("private/secret.txt")));
}

TEST_F(HostilePackage, NeverWritesThroughALinkThatWaitsInTheAccount) {
    writeAttachment("voice.amr", "hostile");
    writeAttachment("linked.amr", "hostile");
    fs::create_symlink(dir_.at("private/secret.txt"), dir_.at("account/audio/voice.amr"));
    fs::create_hard_link(dir_.at("private/secret.txt"), dir_.at("account/audio/linked.amr"));
    fs::create_symlink(dir_.at("private/new.txt"), dir_.at("account/file/voice.amr"));
    writeFile(0, fileJson(dayJson(attachmentMessage(1, 3, "./x", "voice.amr") + "," +
                                  attachmentMessage(2, 3, "./x", "linked.amr") + "," +
                                  attachmentMessage(3, 6, "./x", "voice.amr"))));
    importWholePackage();
    EXPECT_EQ("private bytes", readFile(dir_.at("private/secret.txt")));
}

class SwappedFolder : public HostilePackage {
protected:
    // Puts a link to the private folder in the place of a folder of the package, once it has been looked at.
    void importWithSwapOf(const std::string& folder) {
        dir_.write("private/msg_1.mg", smallFile(66, 66));
        dir_.write("private/100/secret.txt", "private bytes");
        dir_.write("private/100/msg_1.mg", smallFile(66, 66));
        Swapper swapper([&] {
            dir_.write(messageFile(1), fileJson(dayJson(attachmentMessage(1, 6, "./x", "secret.txt"))));
            fs::rename(dir_.at(folder), dir_.at("moved"));
            fs::create_directory_symlink(dir_.at("private"), dir_.at(folder));
        });
        transfer_.progressListener = &swapper;
        writeFile(0, smallFile(5, 1));
        transfer_.rdMsgFromFile();
        transfer_.wtMsgToDB();
        EXPECT_EQ("1", idsIn("im_msg_5"));
        EXPECT_EQ("", mainRows("select name from sqlite_master where name = 'im_msg_66'"));
        expectNothingPrivateInTheAccount();
    }
};

TEST_F(SwappedFolder, OfAttachmentsGivesNoPrivateFileAway) {
    importWithSwapOf("backup/qelmsg_0/qelimfiles_0/100");
}

TEST_F(SwappedFolder, AboveTheAttachmentsGivesNoPrivateFileAway) {
    importWithSwapOf("backup/qelmsg_0/qelimfiles_0");
}

TEST_F(SwappedFolder, OfMessagesBringsNoForeignMessages) {
    importWithSwapOf("backup/qelmsg_0/messages_0/100");
}

// --- Ids ---

TEST_F(HostilePackage, WithForgedIdsFilesEachMessageUnderTheConversationThatItNamesAndNoOther) {
    runSql(mainPath(), {"create table im_msg_7(keep)", "insert into im_msg_7 values('mine')"});
    writeFile(0, fileJson(dayJson(messageJson(8, 1, R"(,"sendUserID":1,"receTargetID":7)") + "," +
                                  messageJson(9223372036854775807LL, 2) + "," + messageJson(0, 3))));
    importWholePackage();
    EXPECT_EQ("mine", mainRows("select keep from im_msg_7"));
    EXPECT_EQ("1", idsIn("im_msg_8"));
    EXPECT_EQ("2", idsIn("im_msg_9223372036854775807"));
    EXPECT_EQ("3", idsIn("im_msg_0"));
}

TEST_F(HostilePackage, CannotReplaceAMessageThatTheUserHas) {
    writeFile(0, fileJson(dayJson(messageJson(8, 1, R"(,"message":"mine")"))));
    importWholePackage();
    writeFile(0, fileJson(dayJson(messageJson(8, 1, R"(,"message":"forged")"))));
    importWholePackage();
    EXPECT_EQ("mine", mainRows("select body from im_msg_8"));
}

// --- Size and depth ---

// "k0":0,"k1":0, ...
std::string manyKeys(int count) {
    std::string keys;
    for (int i = 0; i < count; ++i)
        keys += (i == 0 ? R"("k)" : R"(,"k)") + std::to_string(i) + R"(":0)";
    return keys;
}

TEST_F(HostilePackage, WithObjectsOfAHundredThousandKeysIsReadInSeconds) {
    const std::string keys = manyKeys(100000);
    writeFile(0, R"({"version":"1.0",)" + keys + R"(,"msgs":[)" + dayJson(messageJson(6, 1)) + "]}");
    writeFile(1, fileJson(dayJson(messageJson(6, 2, "," + keys) + "," +
                                      messageJson(6, 3, R"(,"messageType":6,"message":)" + quoted("{" + keys + "}")),
                                  "," + keys)));
    writeContacts(contactsJson(R"({"targetID":5,)" + keys + "}"));
    harmlessFile_ = 2;
    EXPECT_LT(secondsOf([this] { importWholePackage(); }), 20);
    EXPECT_EQ("1 2 3", idsIn("im_msg_6"));
    EXPECT_EQ("5", mainRows("select targetID from im_reContact"));
}

// A hundred thousand, or in the long form a million.
TEST_F(HostilePackage, OfVeryManyConversationsIsReadInSeconds) {
    const int conversations = soaks() ? 1000000 : 100000;
    std::string messages;
    for (int i = 1; i <= conversations; ++i)
        messages += (i == 1 ? "" : ",") + messageJson(i, 1);
    writeFile(0, fileJson(dayJson(messages)));
    EXPECT_LT(secondsOf([this] { EXPECT_EQ(0U, transfer_.rdMsgFromFile()); }), conversations / 5000);
    EXPECT_EQ(static_cast<std::size_t>(conversations), transfer_.msgMap.size());
}

// A text of `levels` arrays or objects, one in the other.
std::string nested(int levels, const std::string& open, const std::string& close) {
    std::string text;
    for (int i = 0; i < levels; ++i)
        text += open;
    text += "1";
    for (int i = 0; i < levels; ++i)
        text += close;
    return text;
}

class DepthBomb : public HostilePackage, public testing::WithParamInterface<int> {};

TEST_P(DepthBomb, DoesNotExhaustASmallStack) {
    if (!smallStackIsMeaningful()) GTEST_SKIP() << "frames of instrumented or unoptimised code are larger";
    const std::string arrays = nested(GetParam(), "[", "]");
    const std::string objects = nested(GetParam(), R"({"a":)", "}");
    const std::string body = quoted(R"({"mediaUrl":)" + objects + "}");
    writeFile(0, fileJson(dayJson(messageJson(6, 1, R"(,"x":)" + arrays))));
    writeFile(1, fileJson(dayJson(messageJson(6, 2, R"(,"x":)" + objects))));
    writeFile(2, fileJson(dayJson(messageJson(6, 3, R"(,"messageType":6,"message":)" + body))));
    writeFile(3, arrays);
    writeFile(4, R"({"version":"1.0","msgs":)" + objects + "}");
    writeContacts(contactsJson(R"({"targetID":5,"x":)" + objects + "}"));
    harmlessFile_ = 5;
    onSmallStack([this] { importWholePackage(); }, kStackForJson);
}

INSTANTIATE_TEST_SUITE_P(Levels, DepthBomb, testing::Values(100, 2000, 2040, 2048, 2060, 100000),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace test
