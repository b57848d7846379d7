// The examples of docs/formats/tree.md are files that an import takes, and docs/plugin-database.md shows the true
// schemas.
#include "tests/transfer/tree/tree_fixture.h"
#include "transfer/tables/plugin_tables.h"

using test::code;

namespace {

const std::string kFormatPage = CHAT_TRANSFER_SOURCE_DIR "/docs/formats/tree.md";
const std::string kDatabasePage = CHAT_TRANSFER_SOURCE_DIR "/docs/plugin-database.md";

// The block of this language and name.
std::string block(const std::string& page, const std::string& language, const std::string& name) {
    const std::string text = test::readFile(page);
    const std::string opening = "```" + language + " " + name + "\n";
    const std::size_t begin = text.find(opening);
    if (begin == std::string::npos) return "there is no such block";
    const std::size_t first = begin + opening.size();
    return text.substr(first, text.find("\n```", first) - first);
}

class TreeDocumentation : public test::TreeTest {
protected:
    TreeDocumentation() {
        useKey("the key of the example");
        makeMainDatabase();
        makePluginDatabase();
        addAttachment("voice/hello.amr", "hello");
        addAttachment("files/plan.pdf", "plan");
        addEncrypted("2002/a.mg", block(kFormatPage, "json", "message file"));
        addEncrypted("contacts.ct", block(kFormatPage, "json", "recent-contact file"));
        addEncrypted("notes.nt", block(kFormatPage, "json", "note file"));
        addEncrypted("rooms.rm", block(kFormatPage, "json", "room file"));
        EXPECT_EQ(0U, code(transfer.rdAllFromFileNJ()));
        EXPECT_EQ(0U, code(transfer.wtAllToDBNJ()));
        EXPECT_EQ(0, transfer.report.skippedCount);
    }
};

TEST_F(TreeDocumentation, ShowsMessagesThatAreImported) {
    EXPECT_EQ(
        "7001|2002|2002|1001|Coffee?|1001;2002|2021\n7002|2002|1001|2002|{\"mediaUrl\": \"voice/hello.amr\"}||2021",
        main("select msgID, targetID, fromeUserID, toUserID, body, limitRange, year_ from im_msg_2002", 7));
    EXPECT_EQ("hello", test::readFile(user("audio/hello.amr")));
}

TEST_F(TreeDocumentation, ShowsContactsThatAreImported) {
    EXPECT_EQ("2002|7002|1620550007000|4|Ada",
              main("select targetID, lastMsgid, time, top, name from im_reContact", 5));
}

TEST_F(TreeDocumentation, ShowsNotesThatAreImported) {
    EXPECT_EQ("6|1|0|0\n1|0|1|1620637200000", plugin("select type, isArchive, isReminder, rmdTime from im_note", 4));
    EXPECT_EQ("plan", test::readFile(user("file/plan.pdf")));
}

TEST_F(TreeDocumentation, ShowsRoomsThatAreImported) {
    EXPECT_EQ("Book club|3003;2002;1001|1", plugin("select roomName, roomMember, top from im_room", 3));
}

TEST(PluginDatabaseDocumentation, ShowsTheTrueSchemas) {
    EXPECT_EQ(chattransfer::kCreateNoteTable, block(kDatabasePage, "sql", "create note table"));
    EXPECT_EQ(chattransfer::kCreateRoomTable, block(kDatabasePage, "sql", "create room table"));
}

}  // namespace
