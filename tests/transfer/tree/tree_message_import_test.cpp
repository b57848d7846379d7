// readMsgFromFileNJ and readContactFromFileNJ: messages and recent contacts of a tree into the main database.
#include <filesystem>

#include "tests/transfer/tree/tree_fixture.h"

namespace fs = std::filesystem;
using test::code;
using test::exists;
using test::message;
using test::messageFile;
using test::messageWithBody;

namespace {

class TreeMessageImport : public test::TreeTest {
protected:
    TreeMessageImport() { makeMainDatabase(); }

    unsigned import() { return code(transfer.readMsgFromFileNJ()); }
    std::string ids(const std::string& table) { return main("select msgID from " + table + " order by msgID"); }
    std::string one(const std::string& column) { return main("select " + column + " from im_msg_2002"); }
    std::string tables() {
        return main("select name from sqlite_master where type='table' and name like 'im_msg%' order by name");
    }
    std::string idsAfterImport() {
        EXPECT_EQ(0U, import());
        return ids("im_msg_2002");
    }
    // Imports a file of one message of conversation 2002.
    void importMessage(const std::string& object) {
        addDecrypted("2002/x.mg", messageFile({object}));
        ASSERT_EQ(0U, import());
    }
};

// --- What becomes of one message

TEST_F(TreeMessageImport, StoresEveryFieldOfAMessage) {
    importMessage(R"({"sendUserID": 1001, "receTargetID": 2002, "sendTime": 1620550000123, "message": "hello",
        "messageType": 1, "messageID": 77, "format": "font", "lastMessageID": 76, "msgProperties": "props",
        "activeType": 4, "relatedMsgID": 70, "sourceID": "source", "senderSessionID": 5, "securityLevel": 9,
        "#limitRange": [1, 2, 3], "#relatedUsers": [9, 8]})");
    EXPECT_EQ("2002|1001|hello|1|77|76|1620550000123|0|4|2002|props|2021|5|9|1;2;3|font|4|70|0|9;8|source||",
              main("select * from im_msg_2002", 23));
}

TEST_F(TreeMessageImport, LeavesReadStateAndSecurityLevelNull) {
    importMessage(message(1, R"("securityLevel": 9, "unReadState": "x")"));
    EXPECT_EQ("1|1", main("select unReadState is null, securityLevel is null from im_msg_2002", 2));
}

TEST_F(TreeMessageImport, TakesMissingKeysAsZeroAndEmpty) {
    importMessage("{}");
    EXPECT_EQ("0|0||0|0|0|0|0|4|0||2021|5|9|||0|0|0|||", main("select * from im_msg_2002", 22));
    EXPECT_EQ("0|0", main("select body is null, limitRange is null from im_msg_2002", 2));
}

TEST_F(TreeMessageImport, StartsEachMessageFromAnEmptyRecord) {
    addDecrypted("2002/x.mg", messageFile({message(1, R"("format": "f", "#limitRange": [5])"), message(2)}));
    import();
    EXPECT_EQ("1|f|5\n2||", main("select msgID, formate, limitRange from im_msg_2002 order by msgID", 3));
}

TEST_F(TreeMessageImport, KeepsIdsOfNineteenDigits) {
    importMessage(message(9223372036854775807LL, R"("relatedMsgID": -9223372036854775808, "lastMessageID": )"
                                                 R"(9007199254740993, "#relatedUsers": [9223372036854775807])"));
    EXPECT_EQ("9223372036854775807|-9223372036854775808|9007199254740993|9223372036854775807",
              main("select msgID, relatedMsgID, lastMsgID, relatedUsers from im_msg_2002", 4));
}

TEST_F(TreeMessageImport, BindsNumbersOutOfRangeToTheNearestLimit) {
    importMessage(message(1, R"("messageType": 1e300, "activeType": -1e300, "sendTime": 1e300)"));
    EXPECT_EQ("2147483647|-2147483648|9223372036854775807",
              main("select msgType, activeType, time_ from im_msg_2002", 3));
}

TEST_F(TreeMessageImport, TruncatesTypesTowardZero) {
    importMessage(message(1, R"("messageType": 1.9, "activeType": -1.9)"));
    EXPECT_EQ("1|-1", main("select msgType, activeType from im_msg_2002", 2));
}

TEST_F(TreeMessageImport, ReadsValuesOfAnotherTypeAsMissing) {
    importMessage(R"({"messageID": "12", "message": 5, "messageType": "3", "format": {}, "sendTime": [],
        "#limitRange": "1;2", "#relatedUsers": {"a": 1}, "receTargetID": true})");
    EXPECT_EQ("0||0||0|||0", main("select msgID, body, msgType, formate, time_, limitRange, relatedUsers, toUserID "
                                  "from im_msg_2002",
                                  8));
}

TEST_F(TreeMessageImport, ReadsListElementsThatAreNoNumbersAsZero) {
    importMessage(message(1, R"("#limitRange": [1, "two", null, 4])"));
    EXPECT_EQ("1;0;0;4", one("limitRange"));
}

TEST_F(TreeMessageImport, FilesASentMessageUnderItsReceiver) {
    importMessage(message(1, R"("sendUserID": 1001, "receTargetID": 3003)"));
    EXPECT_EQ("3003", one("targetID"));
}

TEST_F(TreeMessageImport, FilesAReceivedMessageUnderItsSender) {
    importMessage(message(1, R"("sendUserID": 3003, "receTargetID": 1001)"));
    EXPECT_EQ("3003", one("targetID"));
}

TEST_F(TreeMessageImport, FilesAGroupMessageUnderTheGroup) {
    importMessage(message(1, R"("sendUserID": 3003, "receTargetID": 4004)"));
    EXPECT_EQ("4004", one("targetID"));
}

TEST_F(TreeMessageImport, TakesTheConversationFromNoKeyOfTheMessage) {
    importMessage(message(1, R"("senderSessionID": 5005)"));
    EXPECT_EQ("2002", one("targetID"));
}

// --- Which table

TEST_F(TreeMessageImport, ChoosesTheTableByThePathNotByTheMessage) {
    addDecrypted("555/x.mg", messageFile({message(1, R"("receTargetID": 2002)")}));
    import();
    EXPECT_EQ("im_msg_555", tables());
    EXPECT_EQ("2002", main("select targetID from im_msg_555"));
}

TEST_F(TreeMessageImport, CreatesAMissingTableWithTheSchemaOfAllClients) {
    importMessage(message(1));
    EXPECT_EQ(
        "CREATE TABLE im_msg_2002(toUserID BIGINT, fromeUserID BIGINT,body VARCHAR(8000), msgType INTEGER, msgID "
        "BIGINT PRIMARY KEY, lastMsgID BIGINT,                     time_ BIGINT, burnAfterReading INTEGER, status "
        "INTEGER,targetID BIGINT, msgProperties VARCHAR(1024), year_ INTEGER, mon INTEGER, day_ INTEGER,          "
        "           limitRange VARCHAR(256), formate VARCHAR(256), activeType INTEGER, relatedMsgID BIGINT, "
        "localID BIGINT, relatedUsers VARCHAR(4096), sourceID VARCHAR(32), unReadState VARCHAR(128),securityLevel "
        "INTEGER)",
        main("select sql from sqlite_master where name='im_msg_2002'"));
    EXPECT_EQ(1, transfer.report.tablesCreated);
    EXPECT_EQ("im_msg_2002", transfer.isTableExsit(2002));
}

TEST_F(TreeMessageImport, FilesOfOneConversationShareATable) {
    addDecrypted("2002/a.mg", messageFile({message(1)}));
    addDecrypted("2002/b.mg", messageFile({message(2)}));
    addDecrypted("3003/c.mg", messageFile({message(3)}));
    import();
    EXPECT_EQ("1\n2", ids("im_msg_2002"));
    EXPECT_EQ("3", ids("im_msg_3003"));
    EXPECT_EQ(2, transfer.report.tablesCreated);
    EXPECT_EQ(3, transfer.report.messagesInserted);
}

TEST_F(TreeMessageImport, ReturnsToATableThatItHasLeft) {
    for (int i = 0; i < 30; ++i)
        addDecrypted(std::to_string(i) + "/chat_" + std::to_string(2000 + i % 3) + "/x.mg", messageFile({message(i)}));
    import();
    EXPECT_EQ("im_msg_2000\nim_msg_2001\nim_msg_2002", tables());
    EXPECT_EQ("10|10|10",
              main("select (select count(*) from im_msg_2000 where msgID % 3 = 0), (select count(*) from "
                   "im_msg_2001 where msgID % 3 = 1), (select count(*) from im_msg_2002 where msgID % 3 = 2)",
                   3));
}

TEST_F(TreeMessageImport, GivesConversationZeroItsOwnTable) {
    addDecrypted("0/x.mg", messageFile({message(1)}));
    EXPECT_EQ(0U, import());
    EXPECT_EQ("1", ids("im_msg_0"));
}

TEST_F(TreeMessageImport, TakesAFileInTheTreesOwnFolderForTheUsersOwnConversation) {
    addDecrypted("x.mg", messageFile({message(1)}));
    import();
    EXPECT_EQ("im_msg_1001", tables());
}

TEST_F(TreeMessageImport, SkipsAFileWhosePathNamesNoConversation) {
    const test::WorkingFolder inside(home.path());
    transfer.backupPath = "backup";
    transfer.packageSubDir = "me";
    home.write("backup/qelbackup/me/chat/x.mg.decrypt", messageFile({message(1)}));
    home.write("backup/qelbackup/me/chat_5/y.mg.decrypt", messageFile({message(2)}));
    EXPECT_EQ(0U, import());
    EXPECT_EQ("im_msg_5", tables());
    EXPECT_EQ("its path names no conversation", skipReason("chat/x.mg.decrypt"));
    EXPECT_EQ(1U, listener.heard.size());
}

TEST_F(TreeMessageImport, BindsAnIdOfMoreThanNineteenDigitsToTheLargestOne) {
    addDecrypted("123456789012345678901234567890/x.mg", messageFile({message(1)}));
    import();
    EXPECT_EQ("im_msg_9223372036854775807", tables());
}

TEST_F(TreeMessageImport, LeavesOutMessagesOfAConversationWithoutTable) {
    for (const char* name : {"201", "202", "203", "204"})
        addDecrypted(std::string(name) + "/x.mg", messageFile({message(1)}));
    // The last one read, so that the table of another conversation is at hand.
    const std::string broken = foldersInWalkOrder().back();
    runInMain({"create view im_msg_" + broken + " as select 1"});
    EXPECT_EQ(0U, import());
    for (const char* name : {"201", "202", "203", "204"}) {
        if (name == broken) continue;
        EXPECT_EQ("1", main("select count(*) from im_msg_" + std::string(name))) << name;
    }
    EXPECT_EQ("its conversation has no table", skipReason(broken + "/x.mg.decrypt"));
    EXPECT_EQ(3, transfer.report.messagesInserted);
    EXPECT_EQ(1, transfer.report.messagesRefused);
    EXPECT_EQ(0, transfer.report.messagesDuplicate);
    EXPECT_EQ("1 90 90/100", listener.heard.back());
}

TEST_F(TreeMessageImport, MovesNoAttachmentsOfMessagesThatAreLeftOut) {
    runInMain({"create view im_msg_2002 as select 1"});
    addAttachment("a.amr", "sound");
    addDecrypted("2002/x.mg", messageFile({messageWithBody(1, 3, R"({"mediaUrl": "a.amr"})")}));
    EXPECT_EQ(0U, import());
    EXPECT_TRUE(exists(tree("imfiles/a.amr")));
}

// --- Duplicates

TEST_F(TreeMessageImport, KeepsTheStoredCopyOfAMessage) {
    addDecrypted("2002/x.mg", messageFile({message(1, R"("message": "first")"), message(1, R"("message": "second")")}));
    import();
    EXPECT_EQ("first", one("body"));
    EXPECT_EQ(1, transfer.report.messagesInserted);
    EXPECT_EQ(1, transfer.report.messagesDuplicate);
}

TEST_F(TreeMessageImport, AddsNothingTheSecondTime) {
    addDecrypted("2002/x.mg", messageFile({message(1), message(2)}));
    addDecrypted("3003/x.mg", messageFile({message(1)}));
    import();
    const std::string before = main("select * from im_msg_2002", 23) + main("select * from im_msg_3003", 23);
    EXPECT_EQ(0U, import());
    EXPECT_EQ(before, main("select * from im_msg_2002", 23) + main("select * from im_msg_3003", 23));
    EXPECT_EQ(3, transfer.report.messagesDuplicate);
    EXPECT_EQ(2, transfer.report.tablesCreated);
}

TEST_F(TreeMessageImport, ToleratesAPathThatIsListedTwice) {
    useKey("key");
    fs::remove(mainDatabase());
    makeMainDatabase();
    addDecrypted("2002/x.mg", messageFile({message(1)}));
    addEncrypted("2002/x.mg", messageFile({message(1), message(2)}));
    EXPECT_EQ("1\n2", idsAfterImport());
    EXPECT_EQ((std::vector<std::string>{"1 50 50/100", "1 90 90/100"}), listener.heard);
}

// --- Files that are not as they should be

TEST_F(TreeMessageImport, SkipsAFileThatIsNotJson) {
    addDecrypted("2002/x.mg", R"({"version": )");
    addDecrypted("2002/y.mg", "");
    addDecrypted("2002/z.mg", messageFile({message(1)}));
    EXPECT_EQ("1", idsAfterImport());
    EXPECT_EQ("is not JSON", skipReason("2002/x.mg.decrypt"));
    EXPECT_EQ("is not JSON", skipReason("2002/y.mg.decrypt"));
}

TEST_F(TreeMessageImport, SkipsWhatIsNoRegularFile) {
    const std::string outside = home.write("outside", messageFile({message(1)}));
    test::makeLink(outside, tree("2002/link.mg.decrypt"));
    test::makeFifo(tree("2002/fifo.mg.decrypt"));
    EXPECT_EQ("", idsAfterImport());
    EXPECT_EQ("is not a regular file", skipReason("link.mg.decrypt"));
    EXPECT_EQ("is not a regular file", skipReason("fifo.mg.decrypt"));
}

// Removes files while the import runs, at the first report that it hears.
class RemovingListener : public ProgressListener {
public:
    explicit RemovingListener(std::vector<std::string> paths) : paths_(std::move(paths)) {}
    void onProgress(long long /*context*/, int /*stage*/, int /*percent*/, const char* /*text*/) override {
        for (const std::string& path : paths_)
            fs::remove(path);
    }

private:
    std::vector<std::string> paths_;
};

TEST_F(TreeMessageImport, SkipsAFileThatVanishesAfterTheWalk) {
    const std::string first = addDecrypted("2002/x.mg", messageFile({message(1)}));
    const std::string second = addDecrypted("2002/y.mg", messageFile({message(2)}));
    RemovingListener remover({first, second});
    transfer.progressListener = &remover;
    EXPECT_EQ(0U, import());
    EXPECT_EQ("1", main("select count(*) from im_msg_2002"));
    EXPECT_EQ("is gone", transfer.report.skipped.at(0).reason);
}

TEST_F(TreeMessageImport, StoppedByItsListenerKeepsNothingAndRunAgainBringsAll) {
    addDecrypted("2002/x.mg", messageFile({message(1)}));
    addDecrypted("2003/y.mg", messageFile({message(2)}));
    test::StoppingListener cancel;
    transfer.progressListener = &cancel;
    EXPECT_THROW(import(), test::StoppedByHost);
    EXPECT_EQ("", main("select name from sqlite_master where name like 'im_msg%'"));
    EXPECT_EQ(0, transfer.report.messagesInserted);
    transfer.progressListener = nullptr;
    EXPECT_EQ(0U, import());
    EXPECT_EQ("1", main("select count(*) from im_msg_2002"));
    EXPECT_EQ("1", main("select count(*) from im_msg_2003"));
}

TEST_F(TreeMessageImport, PassesOverWhatHasAnotherShape) {
    const char* const shapes[] = {
        R"({"version": "7.1"})",
        R"({"version": "7.1", "msgs": {}})",
        R"({"version": "7.1", "msgs": "text"})",
        R"({"version": "7.1", "msgs": [1, "a", null, [], [{"msgs": []}]]})",
        R"({"version": "7.1", "msgs": [{"msgs": {}}, {"msgs": 5}, {}]})",
        R"({"version": "7.1", "msgs": [{"msgs": [1, "a", null, [{"messageID": 1}]]}]})",
    };
    for (const char* shape : shapes) {
        addDecrypted("2002/x.mg", shape);
        EXPECT_EQ(0U, import()) << shape;
        EXPECT_EQ("", ids("im_msg_2002")) << shape;
    }
}

TEST_F(TreeMessageImport, TakesMessagesBesideElementsOfAnotherType) {
    addDecrypted("2002/x.mg", R"({"version": "7.1", "msgs": [7, {"date": 5, "msgs": ["a", )" + message(1) + "]}]}");
    EXPECT_EQ(0U, import());
    EXPECT_EQ("1|0|0|0", main("select msgID, year_, mon, day_ from im_msg_2002", 4));
}

TEST_F(TreeMessageImport, KeepsTheLowBitsOfDatesOutOfRange) {
    addDecrypted("2002/x.mg", R"({"version": "7.1", "msgs": [{"date": {"year": 1e300, "month": 4294967301, "day": "9"},
        "msgs": [{"messageID": 1}]}]})");
    EXPECT_EQ(0U, import());
    EXPECT_EQ("-1|5|0", main("select year_, mon, day_ from im_msg_2002", 3));
}

TEST_F(TreeMessageImport, SaysWhenAFileHasNoDays) {
    addDecrypted("2002/x.mg", R"({"version": "7.1", "msgs": 5})");
    import();
    EXPECT_EQ("has no list of days", skipReason("x.mg.decrypt"));
}

TEST_F(TreeMessageImport, SurvivesDocumentsOfManyLevels) {
    const auto nested = [](std::size_t levels) {
        return R"({"version": "7.1", "msgs": )" + std::string(levels, '[') + std::string(levels, ']') + "}";
    };
    addDecrypted("2002/x.mg", nested(2000));
    addDecrypted("2002/y.mg", nested(200000));
    EXPECT_EQ(0U, import());
    EXPECT_EQ("", skipReason("x.mg.decrypt"));
    EXPECT_EQ("is not JSON", skipReason("y.mg.decrypt"));
}

// --- Versions

TEST_F(TreeMessageImport, RefusesAFileWithoutTheExpectedVersion) {
    const char* const files[] = {
        R"({"version": "7.10", "msgs": []})",
        R"({"version": "7.", "msgs": []})",
        R"({"version": "", "msgs": []})",
        R"({"version": 7.1, "msgs": []})",
        R"({"msgs": []})",
        R"([{"version": "7.1"}])",
        R"("7.1")",
        R"({"version": "7.1\u0000"})",
    };
    for (const char* file : files) {
        addDecrypted("2002/x.mg", file);
        EXPECT_EQ(test::kWrongVersion, import()) << file;
    }
    EXPECT_EQ("has another version than 7.1", skipReason("x.mg.decrypt"));
}

TEST_F(TreeMessageImport, AcceptsAnEmptyVersionWhenThatIsTheExpectedOne) {
    transfer.packageVersion = "";
    addDecrypted("2002/x.mg", messageFile({message(1)}, ""));
    EXPECT_EQ("1", idsAfterImport());
}

TEST_F(TreeMessageImport, KeepsWhatStoodBeforeAFileOfAnotherVersion) {
    for (const char* name : {"201", "202", "203"})
        addDecrypted(std::string(name) + "/x.mg", messageFile({message(1)}));
    const std::vector<std::string> order = foldersInWalkOrder();
    addDecrypted(order[1] + "/x.mg", messageFile({message(1)}, "8.0"));
    EXPECT_EQ(test::kWrongVersion, import());
    EXPECT_EQ("1", ids("im_msg_" + order[0]));
    EXPECT_EQ("", main("select name from sqlite_master where name = 'im_msg_" + order[2] + "'"));
    EXPECT_EQ(1U, listener.heard.size());
    expectWritable(mainDatabase());
}

TEST_F(TreeMessageImport, WritesNoContactsAfterAFileOfAnotherVersion) {
    transfer.reContacts.resize(1);
    addDecrypted("2002/x.mg", messageFile({message(1)}, "8.0"));
    import();
    EXPECT_EQ("", main("select name from sqlite_master where name = 'im_reContact'"));
}

// --- Progress

TEST_F(TreeMessageImport, ReportsProgressAfterEachFile) {
    transfer.progressContext = -5;
    for (const char* name : {"1.mg", "2.mg", "3.mg"})
        addDecrypted(std::string("2002/") + name, messageFile({}));
    import();
    EXPECT_EQ((std::vector<std::string>{"1 36 36/100", "1 63 63/100", "1 90 90/100"}), listener.heard);
    EXPECT_EQ((std::vector<long long>{-5, -5, -5}), listener.contexts);
}

TEST_F(TreeMessageImport, CountsNoUnreadableFileAsDone) {
    addDecrypted("2002/1.mg", messageFile({}));
    addDecrypted("2002/2.mg", "not JSON");
    addDecrypted("2002/3.mg", messageFile({}));
    import();
    EXPECT_EQ((std::vector<std::string>{"1 36 36/100", "1 63 63/100"}), listener.heard);
}

TEST_F(TreeMessageImport, ReportsNothingForATreeWithoutMessages) {
    EXPECT_EQ(0U, import());
    EXPECT_TRUE(listener.heard.empty());
}

TEST_F(TreeMessageImport, NeedsNoListener) {
    transfer.progressListener = nullptr;
    importMessage(message(1));
    EXPECT_EQ("1", ids("im_msg_2002"));
}

// --- Databases

TEST_F(TreeMessageImport, ReadsAnEncryptedTreeIntoAKeyedDatabase) {
    fs::remove(mainDatabase());
    useKey("one key for both");
    makeMainDatabase();
    addEncrypted("2002/x.mg", messageFile({message(1)}));
    addEncrypted("3003/x.mg", messageFile({message(2)}));
    EXPECT_EQ("1", idsAfterImport());
    EXPECT_EQ("2", ids("im_msg_3003"));
    EXPECT_EQ("x.mg.decrypt", test::listing(tree("2002")));
}

TEST_F(TreeMessageImport, TouchesNoFileWithoutADatabase) {
    fs::remove(mainDatabase());
    useKey("key");
    const std::string path = addEncrypted("2002/x.mg", messageFile({message(1)}));
    EXPECT_EQ(test::kDatabaseFailed, import());
    EXPECT_TRUE(exists(path));
}

TEST_F(TreeMessageImport, SetsTheFoldersOfTheTree) {
    import();
    EXPECT_EQ(home.at("backup/qelbackup/1001/"), transfer.msgFileDir);
    EXPECT_EQ(home.at("backup/qelbackup/1001/imfiles/"), transfer.imFileDir);
}

TEST_F(TreeMessageImport, LeavesNoTransactionOpen) {
    importMessage(message(1));
    expectWritable(mainDatabase());
}

TEST_F(TreeMessageImport, MovesNothingWhileAnotherConnectionHoldsTheLock) {
    addAttachment("a.amr", "sound");
    addDecrypted("2002/x.mg", messageFile({messageWithBody(1, 3, R"({"mediaUrl": "a.amr"})")}));
    imsdk::dbUtils other;
    ASSERT_NE(0, other.open(mainDatabase().c_str(), nullptr));
    other.beginTransaction();
    EXPECT_EQ(test::kDatabaseFailed, import());
    other.endTransaction();
    EXPECT_TRUE(exists(tree("imfiles/a.amr")));
    EXPECT_EQ("", tables());
    EXPECT_EQ(0, transfer.report.messagesInserted);
    EXPECT_EQ("1", idsAfterImport());
}

TEST_F(TreeMessageImport, CountsNoRowsOfATransactionThatWasLost) {
    runInMain({"create table other(x)", "insert into other values(1),(2)"});
    addDecrypted("2002/x.mg", messageFile({message(1)}));
    imsdk::dbUtils reading;
    ASSERT_NE(0, reading.open(mainDatabase().c_str(), nullptr));
    {
        imsdk::dbDataReader reader = reading.excuteQuery("select x from other");
        ASSERT_NE(0, reader.read());  // holds a lock that no commit gets past
        EXPECT_EQ(test::kDatabaseFailed, import());
    }
    EXPECT_EQ("", tables());
    EXPECT_EQ(0, transfer.report.messagesInserted);
    EXPECT_EQ(0, transfer.report.tablesCreated);
    EXPECT_EQ("the transaction failed: database is locked", skipReason("messages of the tree"));
}

TEST_F(TreeMessageImport, StoresOneRecordThroughAPreparedInsert) {
    importMessage(message(1));
    imsdk::dbCommand insert(&transfer.mainDb,
                            "insert into im_msg_2002 values(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,0,0)");
    imsdk::st_dbMessageBean record;
    record.msgID = 2;
    record.body = "by hand";
    EXPECT_EQ(0U, code(transfer.wtSingleMsgToDbNJ(record, transfer.mainDb, insert)));
    EXPECT_EQ(test::kDatabaseFailed, code(transfer.wtSingleMsgToDbNJ(record, transfer.mainDb, insert)));
    EXPECT_EQ("by hand", main("select body from im_msg_2002 where msgID = 2"));
}

// --- Attachments on the way

TEST_F(TreeMessageImport, MovesTheAttachmentsOfEveryTypeThatCarriesThem) {
    for (const char* name : {"a3", "a5", "t5", "a6", "a28", "t28", "p89", "v89", "a1"})
        addAttachment(name, name);
    addDecrypted("2002/x.mg", messageFile({
                                  messageWithBody(1, 3, R"({"mediaUrl": "a3"})"),
                                  messageWithBody(2, 5, R"({"mediaUrl": "a5", "thumbUrl": "t5"})"),
                                  messageWithBody(3, 6, R"({"mediaUrl": "a6"})"),
                                  messageWithBody(4, 28, R"({"serverUrl": [{"mediaUrl": "a28", "thumbUrl": "t28"}]})"),
                                  messageWithBody(5, 89, R"({"preImgPath": "p89", "videoFileName": "v89"})"),
                                  messageWithBody(6, 1, R"({"mediaUrl": "a1"})"),
                              }));
    EXPECT_EQ(0U, import());
    EXPECT_EQ("a1", test::listing(tree("imfiles")));
    EXPECT_EQ(8, transfer.report.attachmentsDone);
}

TEST_F(TreeMessageImport, MovesNothingTheSecondTime) {
    addAttachment("a.amr", "sound");
    addDecrypted("2002/x.mg", messageFile({messageWithBody(1, 3, R"({"mediaUrl": "a.amr"})")}));
    import();
    addAttachment("a.amr", "another sound");
    EXPECT_EQ(0U, import());
    EXPECT_EQ("sound", test::readFile(user("audio/a.amr")));
    EXPECT_EQ("another sound", test::readFile(tree("imfiles/a.amr")));
    EXPECT_EQ(1, transfer.report.attachmentsPresent);
}

// --- Recent contacts

std::string contact(long long id, const std::string& name) {
    return R"({"targetID": )" + std::to_string(id) + R"(, "name": ")" + name + R"(", "time": 5})";
}

TEST_F(TreeMessageImport, ReadsContactsAndWritesThemAfterTheMessages) {
    addDecrypted("all.ct", test::recordFile("recontact", {contact(2002, "Ada"), contact(3003, "Bo")}));
    EXPECT_EQ(0, transfer.readContactFromFileNJ());
    ASSERT_EQ(2U, transfer.reContacts.size());
    EXPECT_EQ(0U, import());
    EXPECT_EQ("2002|Ada\n3003|Bo", main("select targetID, name from im_reContact order by targetID", 2));
}

TEST_F(TreeMessageImport, CreatesTheContactTableWithoutContacts) {
    EXPECT_EQ(0U, import());
    EXPECT_EQ("0", main("select count(*) from im_reContact"));
}

TEST_F(TreeMessageImport, KeepsTheContactsOfTheLastFileOnly) {
    addDecrypted("1/all.ct", test::recordFile("recontact", {contact(1, "in 1")}));
    addDecrypted("2/all.ct", test::recordFile("recontact", {contact(2, "in 2")}));
    transfer.readContactFromFileNJ();
    ASSERT_EQ(1U, transfer.reContacts.size());
    EXPECT_EQ("in " + foldersInWalkOrder().back(), transfer.reContacts[0].name);
}

TEST_F(TreeMessageImport, ReadsContactsWithoutComplaint) {
    addDecrypted("1/bad.ct", "not JSON");
    addDecrypted("2/old.ct", test::recordFile("recontact", {contact(1, "x")}, "6.0"));
    EXPECT_EQ(0, transfer.readContactFromFileNJ());
    EXPECT_EQ("the recent-contact file is not JSON", skipReason("bad.ct.decrypt"));
    EXPECT_EQ("the recent-contact file has another version", skipReason("old.ct.decrypt"));
    transfer.backupPath = home.at("nowhere");
    EXPECT_EQ(0, transfer.readContactFromFileNJ());
}

TEST_F(TreeMessageImport, NamesAContactFileThatLeadsNowhere) {
    test::makeLink(home.at("nowhere"), tree("all.ct.decrypt"));
    EXPECT_EQ(0, transfer.readContactFromFileNJ());
    EXPECT_EQ("is gone", skipReason("all.ct.decrypt"));
}

}  // namespace
