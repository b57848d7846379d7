// rdAllFromFileNJ and wtAllToDBNJ: a whole tree from one call, and what it left in memory into the plugin database.
#include <filesystem>

#include "tests/transfer/tree/tree_fixture.h"

namespace fs = std::filesystem;
using test::code;
using test::message;
using test::messageFile;
using test::messageWithBody;
using test::recordFile;

namespace {

const std::vector<std::string> kFiveReports = {"0 0 0/100", "1 10 10/100", "2 90 90/100", "3 95 95/100",
                                               "3 100 100/100"};

class WholeTreeImport : public test::TreeTest {
protected:
    void makeDatabases() const {
        makeMainDatabase();
        makePluginDatabase();
    }
    unsigned import() { return code(transfer.rdAllFromFileNJ()); }

    // One file of each kind, with the attachments that a message and a note name.
    void addTree() {
        addAttachment("a.amr", "sound");
        addAttachment("b.pdf", "file");
        addEncrypted("all.ct", recordFile("recontact", {R"({"targetID": 2002, "name": "Ada", "time": 5})"}));
        addEncrypted("2002/x.mg", messageFile({messageWithBody(1, 3, R"({"mediaUrl": "a.amr"})"), message(2)}));
        addEncrypted("all.nt", recordFile("note", {R"({"type": 6, "content": "{\"url\": \"b.pdf\"}"})"}));
        addEncrypted("all.rm", recordFile("room", {R"({"name": "Book club", "targetID": [1, 2, 3]})"}));
    }
    // Everything that an import writes.
    std::string everything() const {
        return main("select * from im_msg_2002 order by msgID", 23) + "\n" + main("select * from im_reContact", 13) +
               "\n" + plugin("select * from im_note", 11) + "\n" + plugin("select * from im_room", 8) + "\n" +
               test::listing(user("audio")) + test::listing(user("file")) + test::listing(tree("imfiles"));
    }
};

TEST_F(WholeTreeImport, ReportsFiveTimesForATreeWithoutFiles) {
    makeDatabases();
    transfer.progressContext = 42;
    EXPECT_EQ(0U, import());
    EXPECT_EQ(kFiveReports, listener.heard);
    EXPECT_EQ(std::vector<long long>(5, 42), listener.contexts);
    EXPECT_EQ(0U, code(transfer.wtAllToDBNJ()));
    EXPECT_EQ("0|0", plugin("select (select count(*) from im_note), (select count(*) from im_room)", 2));
}

TEST_F(WholeTreeImport, ReportsEachMessageFileInBetween) {
    makeDatabases();
    for (const char* name : {"1.mg", "2.mg", "3.mg"})
        addDecrypted(std::string("2002/") + name, messageFile({}));
    EXPECT_EQ(0U, import());
    EXPECT_EQ((std::vector<std::string>{"0 0 0/100", "1 10 10/100", "1 36 36/100", "1 63 63/100", "1 90 90/100",
                                        "2 90 90/100", "3 95 95/100", "3 100 100/100"}),
              listener.heard);
}

TEST_F(WholeTreeImport, BringsEveryKindOfFile) {
    useKey("one key for everything");
    makeDatabases();
    addTree();
    EXPECT_EQ(0U, import());
    EXPECT_EQ(0U, code(transfer.wtAllToDBNJ()));
    EXPECT_EQ("1\n2", main("select msgID from im_msg_2002 order by msgID"));
    EXPECT_EQ("Ada", main("select name from im_reContact"));
    EXPECT_EQ("6", plugin("select type from im_note"));
    EXPECT_EQ("Book club|3;2;1", plugin("select roomName, roomMember from im_room", 2));
    EXPECT_EQ("a.amr b.pdf", test::listing(user("audio")) + " " + test::listing(user("file")));
    EXPECT_EQ(0, transfer.report.skippedCount);
}

TEST_F(WholeTreeImport, ChangesNothingTheSecondTime) {
    useKey("one key for everything");
    makeDatabases();
    addTree();
    import();
    transfer.wtAllToDBNJ();
    const std::string before = everything();
    transfer.report = TransferReport();
    EXPECT_EQ(0U, import());
    EXPECT_EQ(0U, code(transfer.wtAllToDBNJ()));
    EXPECT_EQ(before, everything());
    EXPECT_EQ(0, transfer.report.messagesInserted + transfer.report.notesInserted + transfer.report.roomsInserted +
                     transfer.report.contactsInserted + transfer.report.attachmentsDone);
}

TEST_F(WholeTreeImport, NeedsATree) {
    makeDatabases();
    fs::remove_all(tree(""));
    EXPECT_EQ(test::kMissing, import());
    EXPECT_TRUE(listener.heard.empty());
    EXPECT_EQ("", main("select name from sqlite_master"));
}

TEST_F(WholeTreeImport, GoesOnWithoutContacts) {
    makeDatabases();
    addDecrypted("all.ct", "not JSON");
    addDecrypted("2002/x.mg", messageFile({message(1)}));
    EXPECT_EQ(0U, import());
    EXPECT_EQ("1", main("select msgID from im_msg_2002"));
    EXPECT_EQ("0", main("select count(*) from im_reContact"));
}

TEST_F(WholeTreeImport, EndsWithTheMessages) {
    addDecrypted("all.nt", recordFile("note", {"{}"}));
    EXPECT_EQ(test::kDatabaseFailed, import());
    EXPECT_EQ((std::vector<std::string>{"0 0 0/100", "1 10 10/100"}), listener.heard);
    EXPECT_TRUE(transfer.notes.empty());
}

TEST_F(WholeTreeImport, EndsWithMessagesOfAnotherVersion) {
    makeDatabases();
    addDecrypted("2002/x.mg", messageFile({message(1)}, "8.0"));
    addDecrypted("all.nt", recordFile("note", {"{}"}));
    EXPECT_EQ(test::kWrongVersion, import());
    EXPECT_TRUE(transfer.notes.empty());
    expectWritable(mainDatabase());
}

TEST_F(WholeTreeImport, EndsWithNotesOfAnotherVersion) {
    makeDatabases();
    addDecrypted("2002/x.mg", messageFile({message(1)}));
    addDecrypted("all.nt", recordFile("note", {"{}"}, "8.0"));
    addDecrypted("all.rm", recordFile("room", {"{}"}));
    EXPECT_EQ(test::kWrongVersion, import());
    EXPECT_TRUE(transfer.rooms.empty());
    EXPECT_EQ("1", main("select msgID from im_msg_2002"));
    EXPECT_EQ("2 90 90/100", listener.heard.back());
}

TEST_F(WholeTreeImport, EndsWithRoomsOfAnotherVersion) {
    makeDatabases();
    addDecrypted("all.nt", recordFile("note", {"{}"}));
    addDecrypted("all.rm", recordFile("room", {"{}"}, "8.0"));
    EXPECT_EQ(test::kWrongVersion, import());
    EXPECT_EQ(1U, transfer.notes.size());
    EXPECT_EQ("3 95 95/100", listener.heard.back());
}

TEST_F(WholeTreeImport, LeavesOutWhatCannotBeDecrypted) {
    useKey("right");
    makeDatabases();
    addEncrypted("2002/x.mg", messageFile({message(1)}));
    useKey("wrong");
    addEncrypted("2002/y.mg", messageFile({message(2)}));
    useKey("right");
    EXPECT_EQ(0U, import());
    EXPECT_EQ("1", main("select msgID from im_msg_2002"));
    EXPECT_EQ("x.mg.decrypt y.mg", test::listing(tree("2002")));
    EXPECT_EQ(1, transfer.report.skippedCount);
}

}  // namespace
