// Trees that somebody made to hurt the user, imported as a whole: nothing outside the account and the tree changes, and
// the harmless rest arrives.
#include <filesystem>
#include <functional>
#include <utility>

#include "tests/hostile/hostile_names.h"
#include "tests/hostile/hostile_values.h"
#include "tests/hostile/swapper.h"
#include "tests/support/json_text.h"
#include "tests/support/small_stack.h"
#include "tests/support/snapshot.h"
#include "tests/support/soak.h"
#include "tests/transfer/tree/tree_fixture.h"

namespace fs = std::filesystem;

namespace test {
namespace {

class HostileTree : public TreeTest {
protected:
    HostileTree() {
        home.write("private/secret.txt", "private bytes");
        makeMainDatabase();
        makePluginDatabase();
    }

    // The last folder in the order of ids, so that what comes before it has had its chance to spoil something.
    void addHarmless() const {
        addDecrypted("9009/harmless.mg", messageFile({message(1, R"("message": "harmless")")}));
        addDecrypted("harmless.nt", recordFile("note", {R"({"targetID": 9009, "type": 1, "content": "harmless"})"}));
        addDecrypted("harmless.rm", recordFile("room", {R"({"name": "harmless", "targetID": [1]})"}));
    }

    void importWholeTree() {
        addHarmless();
        const std::string before = surroundings();
        EXPECT_EQ(0, transfer.rdAllFromFileNJ());
        EXPECT_EQ(0, transfer.wtAllToDBNJ());
        EXPECT_EQ(before, surroundings());
        EXPECT_EQ("harmless", main("select body from im_msg_9009"));
        EXPECT_EQ("1", plugin("select count(*) from im_note where content = 'harmless'"));
        EXPECT_EQ("1", plugin("select count(*) from im_room where roomName = 'harmless'"));
        EXPECT_EQ("ok", main("PRAGMA integrity_check"));
        EXPECT_EQ("ok", plugin("PRAGMA integrity_check"));
    }

    std::string surroundings() const { return snapshotOf(home.path(), {"account", "backup"}); }

    void expectNothingPrivateInTheAccount() const { expectNowhereIn(home.at("account"), "private bytes"); }
};

// Bodies and note contents that carry `json` in every field that names a file.
std::vector<std::pair<int, std::string>> bodiesWith(const std::string& json) {
    const std::string value = R"(": ")" + json + R"(")";
    const auto member = [&value](const char* key) { return std::string(R"(")") + key + value; };
    const std::string all = member("mediaUrl") + "," + member("fileUrl") + "," + member("serverUrl") + "," +
                            member("mainUrl") + "," + member("thumbUrl") + "," + member("preImgPath") + "," +
                            member("preImgUrl") + "," + member("videoFileName") + "," + member("fileName") + "," +
                            member("url");
    std::vector<std::pair<int, std::string>> bodies;
    for (const int type : {1, 3, 5, 6, 28, 89})
        bodies.emplace_back(type, "{" + all + R"(, "nine": [{)" + all + "}]}");
    return bodies;
}

class NameInATree : public HostileTree, public testing::WithParamInterface<HostileName> {};

TEST_P(NameInATree, LeadsNowhereFromAnyField) {
    std::vector<std::string> messages;
    std::vector<std::string> notes;
    for (const auto& [type, body] : bodiesWith(GetParam().json)) {
        messages.push_back(messageWithBody(100 + type, type, body));
        notes.push_back(R"({"targetID": )" + std::to_string(type) + R"(, "type": )" + std::to_string(type) +
                        R"(, "content": )" + quoted(body) + "}");
    }
    addDecrypted("2002/hostile.mg", messageFile(messages));
    addDecrypted("hostile.nt", recordFile("note", notes));
    importWholeTree();
    EXPECT_EQ("6", main("select count(*) from im_msg_2002"));
    EXPECT_EQ("7", plugin("select count(*) from im_note"));
    expectNothingPrivateInTheAccount();
}

INSTANTIATE_TEST_SUITE_P(Hostile, NameInATree, testing::ValuesIn(hostileNames()),
                         [](const auto& parameter) { return std::string(parameter.param.label); });

// --- Links ---

TEST_F(HostileTree, WithLinksTakesNothingAwayFromThePrivateFolder) {
    useKey("correct horse");
    fs::remove_all(home.at("account/db"));
    makeMainDatabase();
    makePluginDatabase();
    fs::rename(addEncrypted("2002/stolen.mg", messageFile({message(1)})), home.at("private/stolen.mg"));
    home.write("private/plain.mg.decrypt", messageFile({message(2)}));
    makeLink(home.at("private"), tree("3003"));
    makeLink(home.at("private/stolen.mg"), tree("2002/link.mg"));
    makeLink(home.at("private/plain.mg.decrypt"), tree("2002/link.mg.decrypt"));
    makeLink(home.at("private"), tree("imfiles/folder"));
    makeLink(home.at("private/secret.txt"), tree("imfiles/file.txt"));
    addDecrypted("2002/names.mg", messageFile({messageWithBody(3, 3, R"({"mediaUrl": "folder/secret.txt"})"),
                                               messageWithBody(4, 6, R"({"mediaUrl": "file.txt"})")}));
    importWholeTree();
    EXPECT_EQ("3,4", main("select group_concat(msgID) from im_msg_2002"));
    expectNothingPrivateInTheAccount();
}

TEST_F(HostileTree, WithAHardLinkLeavesTheOtherNameOfTheFile) {
    fs::create_hard_link(home.at("private/secret.txt"), tree("imfiles/voice.amr"));
    addDecrypted("2002/names.mg", messageFile({messageWithBody(3, 3, R"({"mediaUrl": "voice.amr"})")}));
    importWholeTree();
    EXPECT_EQ("private bytes", readFile(home.at("private/secret.txt")));
}

TEST_F(HostileTree, WhoseAttachmentFolderBecomesALinkTakesNoPrivateFile) {
    addDecrypted("2002/names.mg", messageFile({messageWithBody(3, 3, R"({"mediaUrl": "secret.txt"})")}));
    Swapper swapper([this] {
        fs::remove_all(tree("imfiles"));
        makeLink(home.at("private"), tree("imfiles"));
    });
    transfer.progressListener = &swapper;
    importWholeTree();
    expectNothingPrivateInTheAccount();
}

// --- Damage ---

class DamagedTree : public HostileTree {
protected:
    const std::string whole_ = messageFile({message(7, R"("message": "seven")")});

    // The stored body of the only message that is not the harmless one, or an empty text.
    std::string imported() const {
        const std::string table = main("select name from sqlite_master where name = 'im_msg_2002'");
        return table.empty() ? "" : main("select coalesce(group_concat(body), '') from im_msg_2002");
    }
};

TEST_F(DamagedTree, WithAMessageFileThatIsCutAnywhereBringsTheRest) {
    for (std::size_t length = 0; length < whole_.size(); ++length) {
        addDecrypted("2002/a.mg", whole_.substr(0, length));
        ASSERT_NO_FATAL_FAILURE(importWholeTree()) << length;
        ASSERT_EQ("", imported()) << length;
    }
}

TEST_F(DamagedTree, WithAnEncryptedFileOfAnyFlippedBitBringsTheRestAndKeepsTheFile) {
    useKey("correct horse");
    fs::remove_all(home.at("account/db"));
    makeMainDatabase();
    makePluginDatabase();
    const std::string path = addEncrypted("2002/a.mg", whole_);
    const std::string encrypted = readFile(path);
    addHarmless();
    for (std::size_t bit = 0; bit < 8 * encrypted.size(); ++bit) {
        const bool oneOfItsByte = bit % 8 == bit / 8 % 8;
        if (!oneOfItsByte && !soaks()) continue;
        std::string flipped = encrypted;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << bit % 8));
        home.write("backup/qelbackup/1001/2002/a.mg", flipped);
        transfer.report = {};
        ASSERT_EQ(0, transfer.rdAllFromFileNJ()) << bit;
        ASSERT_EQ(1, transfer.report.messagesRead) << bit;
        ASSERT_EQ(1, transfer.report.skippedCount) << bit;
        ASSERT_EQ(flipped, readFile(path)) << bit;
        ASSERT_EQ("a.mg", listing(tree("2002"))) << bit;
    }
    home.write("backup/qelbackup/1001/2002/a.mg", encrypted);
    importWholeTree();
    EXPECT_EQ("seven", imported());
}

// --- Shapes ---

// Every key of a record, once missing and once with the value.
class ValueInATree : public HostileTree, public testing::WithParamInterface<HostileValue> {
protected:
    // Adds one file for each key: a record that has the value there and zeros elsewhere, and one that lacks it.
    void addRecords(const std::string& name, const std::string& ending, const std::vector<const char*>& keys,
                    const std::function<std::string(const std::vector<std::string>&)>& file) const {
        for (const char* hostile : keys) {
            std::string with;
            std::string without;
            for (const char* key : keys) {
                const std::string quotedKey = std::string(with.empty() ? "" : ",") + "\"" + key + "\": ";
                with += quotedKey + (key == hostile ? GetParam().json : "0");
                if (key != hostile) without += (without.empty() ? "\"" : ",\"") + std::string(key) + "\": 0";
            }
            addDecrypted(name + "-" + hostile + ending, file({"{" + with + "}", "{" + without + "}"}));
        }
    }
};

TEST_P(ValueInATree, UnderAnyKeySpoilsNothingElse) {
    const std::vector<const char*> messageKeys = {
        "sendUserID",      "receTargetID",  "sendTime",      "message",    "messageType",  "messageID",
        "format",          "lastMessageID", "msgProperties", "activeType", "relatedMsgID", "sourceID",
        "senderSessionID", "#limitRange",   "#relatedUsers", "date",       "msgs"};
    addRecords("2002/message", ".mg", messageKeys,
               [](const std::vector<std::string>& records) { return messageFile(records); });
    addRecords("2002/day", ".mg", {"date", "msgs"},
               [](const std::vector<std::string>& records) { return recordFile("msgs", records); });
    addRecords("contact", ".ct",
               {"targetID", "lastMsgid", "time", "type", "top", "wherefrom", "msgType", "lastMsg", "name"},
               [](const std::vector<std::string>& records) { return recordFile("recontact", records); });
    addRecords("note", ".nt",
               {"sendUserID", "targetID", "type", "content", "isReminder", "isActive", "rmdTime", "lastChgTime"},
               [](const std::vector<std::string>& records) { return recordFile("note", records); });
    addRecords("room", ".rm", {"name", "top", "targetID"},
               [](const std::vector<std::string>& records) { return recordFile("room", records); });
    for (const char* list : {"msgs", "recontact", "note", "room"})
        addDecrypted("2002/list-" + std::string(list) + ".mg",
                     R"({"version": "7.1", ")" + std::string(list) + R"(": )" + GetParam().json + "}");
    importWholeTree();
}

INSTANTIATE_TEST_SUITE_P(Hostile, ValueInATree, testing::ValuesIn(hostileValues()),
                         [](const auto& parameter) { return std::string(parameter.param.label); });

TEST_F(HostileTree, WithDepthBombsDoesNotExhaustASmallStack) {
    if (!smallStackIsMeaningful()) GTEST_SKIP() << "frames of instrumented or unoptimised code are larger";
    for (const int levels : {2000, 2048, 100000}) {
        std::string deep;
        for (int i = 0; i < levels; ++i)
            deep += R"({"a":)";
        deep += "1" + std::string(static_cast<std::size_t>(levels), '}');
        const std::string name = std::to_string(levels);
        addDecrypted("2002/" + name + ".mg", messageFile({message(1, R"("x": )" + deep)}));
        addDecrypted("2003/" + name + ".mg", messageFile({messageWithBody(2, 3, deep)}));
        addDecrypted(name + ".ct", recordFile("recontact", {deep}));
        addDecrypted(name + ".nt", recordFile("note", {deep}));
        addDecrypted(name + ".rm", recordFile("room", {deep}));
    }
    onSmallStack([this] { importWholeTree(); }, kStackForJson);
}

}  // namespace
}  // namespace test
