// readMsgFromFileNJBack: messages of a tree into the back database.
#include <filesystem>

#include "tests/transfer/tree/tree_fixture.h"

namespace fs = std::filesystem;
using test::code;
using test::exists;
using test::message;
using test::messageFile;
using test::messageWithBody;

namespace {

class TreeBackImport : public test::TreeTest {
protected:
    TreeBackImport() { makeBackDatabase(); }

    unsigned import(bool removeDecrypted = false) { return code(transfer.readMsgFromFileNJBack(removeDecrypted)); }
};

TEST_F(TreeBackImport, WritesIntoTheBackDatabaseOnly) {
    makeMainDatabase();
    addDecrypted("2002/x.mg", messageFile({message(1, R"("sendUserID": 2002, "receTargetID": 1001)")}));
    EXPECT_EQ(0U, import());
    EXPECT_EQ("1|2002|4|2021", back("select msgID, targetID, status, year_ from im_msg_2002", 4));
    EXPECT_EQ("", main("select name from sqlite_master"));
}

TEST_F(TreeBackImport, MovesNoAttachmentsReportsNoProgressWritesNoContacts) {
    addAttachment("a.amr", "sound");
    transfer.reContacts.resize(1);
    addDecrypted("2002/x.mg", messageFile({messageWithBody(1, 3, R"({"mediaUrl": "a.amr"})")}));
    EXPECT_EQ(0U, import());
    EXPECT_TRUE(exists(tree("imfiles/a.amr")));
    EXPECT_TRUE(listener.heard.empty());
    EXPECT_EQ("im_msg_2002", back("select name from sqlite_master where type = 'table'"));
}

TEST_F(TreeBackImport, SetsTheFoldersOfTheTree) {
    import();
    EXPECT_EQ(tree(""), transfer.msgFileDir);
    EXPECT_EQ(tree("imfiles/"), transfer.imFileDir);
}

TEST_F(TreeBackImport, ListsTheTablesOfTheBackDatabase) {
    test::runSql(backDatabase(), {"create table im_msg_5(x)"});
    transfer.tableNames = {"im_msg_2002"};
    addDecrypted("2002/x.mg", messageFile({message(1)}));
    EXPECT_EQ(0U, import());
    EXPECT_EQ((std::vector<std::string>{"im_msg_5", "im_msg_2002"}), transfer.tableNames);
}

TEST_F(TreeBackImport, KeepsDecryptedFilesForALaterRun) {
    useKey("key");
    fs::remove(backDatabase());
    makeBackDatabase();
    addEncrypted("2002/x.mg", messageFile({message(1)}));
    EXPECT_EQ(0U, import(false));
    EXPECT_EQ("x.mg.decrypt", test::listing(tree("2002")));
    EXPECT_EQ(0U, import(false));
    EXPECT_EQ("1", back("select count(*) from im_msg_2002"));
}

TEST_F(TreeBackImport, LeavesNoDecryptedFileBehindWhenAsked) {
    useKey("key");
    fs::remove(backDatabase());
    makeBackDatabase();
    addEncrypted("2002/x.mg", messageFile({message(1)}));
    addEncrypted("2002/y.mg", messageFile({message(2)}));
    addDecrypted("3003/z.mg", messageFile({message(3)}));
    EXPECT_EQ(0U, import(true));
    EXPECT_EQ("", test::listing(tree("2002")) + test::listing(tree("3003")));
    EXPECT_EQ("2|1", back("select (select count(*) from im_msg_2002), (select count(*) from im_msg_3003)", 2));
}

TEST_F(TreeBackImport, RemovesAFileThatIsListedTwice) {
    useKey("key");
    fs::remove(backDatabase());
    makeBackDatabase();
    addDecrypted("2002/x.mg", messageFile({message(1)}));
    addEncrypted("2002/x.mg", messageFile({message(1)}));
    EXPECT_EQ(0U, import(true));
    EXPECT_EQ("", test::listing(tree("2002")));
    EXPECT_EQ("1", back("select count(*) from im_msg_2002"));
}

TEST_F(TreeBackImport, RemovesAFileOfWhichEveryMessageWasThereAlready) {
    addDecrypted("2002/x.mg", messageFile({message(1)}));
    import(false);
    EXPECT_EQ(0U, import(true));
    EXPECT_EQ("", test::listing(tree("2002")));
}

TEST_F(TreeBackImport, KeepsFilesThatItCouldNotRead) {
    addDecrypted("2002/x.mg", "not JSON");
    addDecrypted("2002/y.mg", R"({"version": "7.1", "msgs": 5})");
    EXPECT_EQ(0U, import(true));
    EXPECT_EQ("x.mg.decrypt y.mg.decrypt", test::listing(tree("2002")));
}

TEST_F(TreeBackImport, KeepsFilesOfWhichAMessageWasNotStored) {
    test::runSql(backDatabase(), {"create table im_msg_2002(msgID)", "create view im_msg_3003 as select 1"});
    addDecrypted("2002/x.mg", messageFile({message(1)}));
    addDecrypted("3003/x.mg", messageFile({message(1)}));
    EXPECT_EQ(0U, import(true));
    EXPECT_TRUE(exists(tree("2002/x.mg.decrypt")));
    EXPECT_TRUE(exists(tree("3003/x.mg.decrypt")));
    EXPECT_EQ(2, transfer.report.messagesRefused);
}

TEST_F(TreeBackImport, StopsAtAFileOfAnotherVersion) {
    for (const char* name : {"201", "202", "203"})
        addDecrypted(std::string(name) + "/x.mg", messageFile({message(1)}));
    const std::vector<std::string> order = foldersInWalkOrder();
    addDecrypted(order[1] + "/x.mg", messageFile({message(1)}, "8.0"));
    EXPECT_EQ(test::kWrongVersion, import(true));
    EXPECT_EQ("1", back("select count(*) from im_msg_" + order[0]));
    EXPECT_FALSE(exists(tree(order[0] + "/x.mg.decrypt")));
    EXPECT_TRUE(exists(tree(order[1] + "/x.mg.decrypt")));
    EXPECT_TRUE(exists(tree(order[2] + "/x.mg.decrypt")));
    expectWritable(backDatabase());
}

TEST_F(TreeBackImport, KeepsFilesWhenTheirMessagesAreNotDurable) {
    test::runSql(backDatabase(), {"create table other(x)", "insert into other values(1),(2)"});
    addDecrypted("2002/x.mg", messageFile({message(1)}));
    imsdk::dbUtils reading;
    ASSERT_NE(0, reading.open(backDatabase().c_str(), nullptr));
    imsdk::dbDataReader reader = reading.excuteQuery("select x from other");
    ASSERT_NE(0, reader.read());  // holds a lock that no commit gets past
    EXPECT_EQ(test::kDatabaseFailed, import(true));
    EXPECT_TRUE(exists(tree("2002/x.mg.decrypt")));
    EXPECT_EQ(0, transfer.report.messagesInserted);
}

TEST_F(TreeBackImport, TouchesNothingWithoutABackDatabase) {
    fs::remove(backDatabase());
    makeMainDatabase();
    addDecrypted("2002/x.mg", messageFile({message(1)}));
    EXPECT_EQ(test::kDatabaseFailed, import(true));
    EXPECT_TRUE(exists(tree("2002/x.mg.decrypt")));
    EXPECT_FALSE(exists(backDatabase()));
}

TEST_F(TreeBackImport, LeavesNoTransactionOpen) {
    addDecrypted("2002/x.mg", messageFile({message(1)}));
    import(true);
    expectWritable(backDatabase());
}

}  // namespace
