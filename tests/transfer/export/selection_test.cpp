// Which messages an export takes, and under which day they are filed.
#include <climits>
#include <fstream>

#include "tests/transfer/export/account_fixture.h"

namespace {

using test::AccountTest;
using test::kDatabaseFailed;
using test::kNoTables;
using test::messageOn;

class Selection : public AccountTest {
protected:
    Selection() { makeAccount(); }

    /// A conversation with `count` messages of one day.
    void addConversation(const std::string& table, const imsdk::st_dbMessageBean& message, int count = 1) {
        addTable(table);
        addMessages(table, message, count);
    }
};

class UncappedSelection : public Selection {};
class OverflowPlacement : public AccountTest {};
class BrokenDatabase : public Selection {};
class AccountWithoutDatabases : public AccountTest {};
class HostileTableName : public Selection {};
class AttachmentExtraction : public AccountTest {};

// --- The date filter

TEST_F(Selection, TakesTheGivenDayAndWhatIsLater) {
    addTable("im_msg_1");
    long long id = 0;
    const int days[][3] = {{2019, 3, 7}, {2019, 4, 1}, {2020, 1, 1}, {2019, 3, 6}, {2019, 2, 28}, {2018, 12, 31}};
    for (const auto& day : days)
        addMessages("im_msg_1", messageOn(day[0], day[1], day[2], ++id));
    EXPECT_EQ("2019:3:7=1 2019:4:1=1 2020:1:1=1", selected(2019, 3, 7));
    EXPECT_EQ("2019_3_7=1 2019_4_1=1 2020_1_1=1", selectedUncapped(2019, 3, 7));
}

TEST_F(Selection, FromADayAfterAllMessagesIsEmptyAndSucceeds) {
    addConversation("im_msg_1", messageOn(2019, 3, 7));
    EXPECT_EQ("", selected(2019, 3, 8));
    EXPECT_EQ("", selectedUncapped(2019, 3, 8));
}

TEST_F(Selection, TakesEverythingFromTheSmallestDayOn) {
    addConversation("im_msg_1", messageOn(0, 0, 0));
    EXPECT_EQ("0:0:0=1", selected(INT_MIN, INT_MIN, INT_MIN));
    EXPECT_EQ("", selected(INT_MAX, INT_MAX, INT_MAX));
}

TEST_F(Selection, LeavesOutMessagesWithoutADate) {
    addTable("im_msg_1");
    runMain({"insert into im_msg_1(msgID, body) values(1, 'when?')"});
    EXPECT_EQ("", selected(0, 0, 0));
}

// --- The tables

TEST_F(Selection, SkipsTablesThatDoNotBeginWithThePrefix) {
    addConversation("im_msgx_1", messageOn(2019, 3, 7));
    addConversation("xim_msg_1", messageOn(2019, 3, 7));
    addConversation("IM_MSG_1", messageOn(2019, 3, 7));
    EXPECT_EQ("", selected());
    EXPECT_EQ("", skipped());
}

TEST_F(Selection, TakesThePrefixFollowedByAnything) {
    for (const char* table : {"im_msg_", "im_msg_abc", "im_msg_1_2", "im_msg_\xC3\xA9", "im_msg_1$2"})
        addConversation(table, messageOn(2019, 3, 7));
    EXPECT_EQ("2019:3:7=5", selected());
    EXPECT_EQ("", skipped());
}

TEST_F(Selection, CollectsADayOfSeveralConversationsInTheOrderOfTheTables) {
    addConversation("im_msg_2", messageOn(2019, 3, 7, 20), 2);
    addConversation("im_msg_1", messageOn(2019, 3, 7, 10), 2);
    EXPECT_EQ(0U, transfer.rdMsgFromDB(2019, 1, 1));
    EXPECT_EQ("20 21 10 11", idsOf("2019:3:7"));
}

TEST_F(Selection, LeavesAllTableNamesAndTheBackDatabaseOpen) {
    addConversation("im_msg_1", messageOn(2019, 3, 7));
    EXPECT_EQ(0U, transfer.rdMsgFromDB(2019, 1, 1));
    EXPECT_EQ((std::vector<std::string>{"im_reContact", "im_msg_1"}), transfer.tableNames);
    EXPECT_TRUE(transfer.backDb.isOpen());
}

TEST_F(Selection, ReplacesTheMessagesOfAnEarlierOne) {
    addConversation("im_msg_1", messageOn(2019, 3, 7));
    transfer.dayMsgMap["2001:1:1"].resize(3);
    EXPECT_EQ(0U, transfer.rdMsgFromDB(2019, 1, 1));
    EXPECT_EQ("2019:3:7=1", selected());
}

TEST_F(Selection, CountsWhatItSelected) {
    addConversation("im_msg_1", messageOn(2019, 3, 7), 3);
    EXPECT_EQ(0U, transfer.rdMsgFromDB(2019, 1, 1));
    EXPECT_EQ(3, transfer.report.messagesSelected);
}

// --- The columns

TEST_F(Selection, FillsEachFieldFromItsColumn) {
    addTable("im_msg_1");
    runMain(
        {"insert into im_msg_1 values(1, 2, 'body', 4, 5, 6, 7, 8, 9, 10, 'prop', 2019, 3, 7, 'limit', 'form', 16, "
         "17, 18, 'users', 'source', 'unread', 22)"});
    ASSERT_EQ(0U, transfer.rdMsgFromDB(2019, 1, 1));
    const imsdk::st_dbMessageBean& m = transfer.dayMsgMap.at("2019:3:7").at(0);
    EXPECT_EQ((std::vector<long long>{1, 2, 4, 5, 6, 7, 8, 9, 10, 2019, 3, 7, 16, 17, 18, 22}),
              (std::vector<long long>{m.toUserID, m.fromeUserID, m.msgType, m.msgID, m.lastMsgID, m.time_,
                                      m.burnAfterReading, m.status, m.targetID, m.year_, m.mon, m.day_, m.activeType,
                                      m.relatedMsgID, m.localID, m.securityLevel}));
    EXPECT_EQ((std::vector<std::string>{"body", "prop", "limit", "form", "users", "source"}),
              (std::vector<std::string>{m.body, m.msgProperties, m.limitRange, m.formate, m.relatedUsers, m.sourceID}));
}

TEST_F(Selection, DoesNotReadWhetherAMessageWasRead) {
    imsdk::st_dbMessageBean message = messageOn(2019, 3, 7);
    message.unReadState = "1";
    addConversation("im_msg_1", message);
    ASSERT_EQ(0U, transfer.rdMsgFromDB(2019, 1, 1));
    EXPECT_EQ("", transfer.dayMsgMap.at("2019:3:7").at(0).unReadState);
}

TEST_F(Selection, ReadsIdsInAllTheirBits) {
    imsdk::st_dbMessageBean message = messageOn(2019, 3, 7, LLONG_MAX);
    message.targetID = LLONG_MIN + 1;
    addConversation("im_msg_1", message);
    ASSERT_EQ(0U, transfer.rdMsgFromDB(2019, 1, 1));
    EXPECT_EQ(LLONG_MAX, transfer.dayMsgMap.at("2019:3:7").at(0).msgID);
    EXPECT_EQ(LLONG_MIN + 1, transfer.dayMsgMap.at("2019:3:7").at(0).targetID);
}

TEST_F(Selection, ReadsNullAsZeroOrEmptyAlsoAfterAFullRow) {
    imsdk::st_dbMessageBean full = messageOn(2019, 3, 7, 1, 9, "body");
    full.relatedUsers = "5;7";
    full.localID = 8;
    addConversation("im_msg_1", full);
    runMain({"insert into im_msg_1(msgID, year_, mon, day_) values(2, 2019, 3, 8)"});
    ASSERT_EQ(0U, transfer.rdMsgFromDB(2019, 1, 1));
    const imsdk::st_dbMessageBean& m = transfer.dayMsgMap.at("2019:3:8").at(0);
    EXPECT_EQ("", m.body + m.relatedUsers);
    EXPECT_EQ(0, m.msgType);
    EXPECT_EQ(0, m.localID);
}

// --- Day entries of at most 250 messages

TEST_F(Selection, Puts250MessagesOfADayIntoOneEntry) {
    addConversation("im_msg_1", messageOn(2019, 3, 7), 250);
    EXPECT_EQ("2019:3:7=250", selected());
}

TEST_F(Selection, BeginsAnOverflowEntryWithMessage251) {
    addConversation("im_msg_1", messageOn(2019, 3, 7), 251);
    EXPECT_EQ("2019:3:7=250 2019:3:7_1=1", selected(2019, 3, 7));
    EXPECT_EQ("251", idsOf("2019:3:7_1"));
}

TEST_F(Selection, FillsOneOverflowEntryAfterTheOther) {
    addConversation("im_msg_1", messageOn(2019, 3, 7), 600);
    EXPECT_EQ("2019:3:7=250 2019:3:7_1=250 2019:3:7_2=100", selected());
    EXPECT_EQ(251, transfer.dayMsgMap.at("2019:3:7_1").front().msgID);
    EXPECT_EQ(501, transfer.dayMsgMap.at("2019:3:7_2").front().msgID);
}

TEST_F(Selection, FillsOverflowEntriesAcrossConversations) {
    addConversation("im_msg_1", messageOn(2019, 3, 7, 1), 300);
    addConversation("im_msg_2", messageOn(2019, 3, 7, 1001), 300);
    EXPECT_EQ("2019:3:7=250 2019:3:7_1=250 2019:3:7_2=100", selected());
    EXPECT_EQ(300, transfer.dayMsgMap.at("2019:3:7_1").at(49).msgID);
    EXPECT_EQ(1001, transfer.dayMsgMap.at("2019:3:7_1").at(50).msgID);
}

TEST_F(Selection, KeepsTheOverflowOfDaysApart) {
    addTable("im_msg_1");
    for (int turn = 0; turn < 2; ++turn) {
        addMessages("im_msg_1", messageOn(2019, 3, 7, 1 + turn * 10000), 260);
        addMessages("im_msg_1", messageOn(2019, 3, 8, 5001 + turn * 10000), 260);
    }
    EXPECT_EQ("2019:3:7=250 2019:3:7_1=250 2019:3:7_2=20 2019:3:8=250 2019:3:8_1=250 2019:3:8_2=20", selected());
}

TEST_F(Selection, OrdersItsKeysAsTextAndNotAsDates) {
    addConversation("im_msg_1", messageOn(2019, 3, 1, 1), 251);
    addMessages("im_msg_1", messageOn(2019, 3, 7, 1000));
    addMessages("im_msg_1", messageOn(2019, 3, 10, 2000));
    EXPECT_EQ("2019:3:1=250 2019:3:10=1 2019:3:1_1=1 2019:3:7=1", selected());
}

TEST_F(Selection, PlacesADayOfSixtyThousandMessagesInOrder) {
    addConversation("im_msg_1", messageOn(2019, 3, 7), 60000);
    EXPECT_EQ(0U, transfer.rdMsgFromDB(2019, 1, 1));
    ASSERT_EQ(240U, transfer.dayMsgMap.size());
    for (int number = 0; number < 240; ++number) {
        const std::string key = number == 0 ? "2019:3:7" : "2019:3:7_" + std::to_string(number);
        ASSERT_EQ(250U, transfer.dayMsgMap.at(key).size()) << key;
        EXPECT_EQ(number * 250 + 1, transfer.dayMsgMap.at(key).front().msgID) << key;
        EXPECT_EQ(number * 250 + 250, transfer.dayMsgMap.at(key).back().msgID) << key;
    }
}

TEST_F(OverflowPlacement, BeginsWithNumberOne) {
    imsdk::st_dbMessageBean message = messageOn(2019, 3, 7, 5);
    transfer.searchItem("2019:3:7", message);
    EXPECT_EQ("2019:3:7_1=1", entries());
    message.msgID = 6;
    EXPECT_EQ("5", idsOf("2019:3:7_1"));
}

TEST_F(OverflowPlacement, TakesTheFirstEntryWithRoom) {
    fillDay("2019:3:7_1", 250);
    fillDay("2019:3:7_2", 249);
    fillDay("2019:3:7_3", 1);
    imsdk::st_dbMessageBean message = messageOn(2019, 3, 7, 777);
    transfer.searchItem("2019:3:7", message);
    EXPECT_EQ("2019:3:7_1=250 2019:3:7_2=250 2019:3:7_3=1", entries());
    EXPECT_EQ(777, transfer.dayMsgMap.at("2019:3:7_2").back().msgID);
    transfer.searchItem("2019:3:7", message);
    EXPECT_EQ("2019:3:7_1=250 2019:3:7_2=250 2019:3:7_3=2", entries());
}

TEST_F(OverflowPlacement, TakesKeysOfUpTo99Bytes) {
    imsdk::st_dbMessageBean message = messageOn(2019, 3, 7);
    const std::string longest(97, 'k');
    transfer.searchItem(longest, message);
    EXPECT_EQ(longest + "_1=1", entries());
    EXPECT_EQ("", skipped());
    transfer.searchItem(longest + "k", message);
    EXPECT_EQ(longest + "_1=1", entries());
    EXPECT_EQ(longest + "k: the day key is too long: a message was left out", skipped());
}

// --- The form without a cap

TEST_F(UncappedSelection, PutsADayOfAnySizeIntoOneEntry) {
    addConversation("im_msg_1", messageOn(2019, 3, 7), 251);
    EXPECT_EQ("2019_3_7=251", selectedUncapped(2019, 3, 7));
}

TEST_F(UncappedSelection, NeedsNeitherContactsNorABackDatabase) {
    std::filesystem::remove(backPath());
    runMain({"drop table im_reContact"});
    addConversation("im_msg_1", messageOn(2019, 3, 7));
    EXPECT_EQ("2019_3_7=1", selectedUncapped());
    EXPECT_FALSE(transfer.backDb.isOpen());
}

TEST_F(UncappedSelection, ReadsNoContacts) {
    runMain({"insert into im_reContact(targetID) values(1)"});
    EXPECT_EQ(0U, transfer.rdMsgFromDB2(2019, 1, 1));
    EXPECT_TRUE(transfer.reContacts.empty());
}

TEST_F(UncappedSelection, CollectsAttachmentsToo) {
    addConversation("im_msg_1", messageOn(2019, 3, 7, 1, 5, R"({"mediaUrl":"a/b.jpg","thumbUrl":"a/t.jpg"})"));
    EXPECT_EQ(0U, transfer.rdMsgFromDB2(2019, 1, 1));
    EXPECT_EQ((std::vector<std::string>{"a/b.jpg", "a/t.jpg"}), transfer.imagePaths);
}

TEST_F(UncappedSelection, ReplacesTheMessagesOfAnEarlierOne) {
    addConversation("im_msg_1", messageOn(2019, 3, 7));
    EXPECT_EQ(0U, transfer.rdMsgFromDB2(2019, 1, 1));
    EXPECT_EQ("2019_3_7=1", selectedUncapped());
}

// --- Failures

TEST_F(AccountWithoutDatabases, CannotBeSelectedFrom) {
    EXPECT_EQ(kDatabaseFailed, transfer.rdMsgFromDB(2019, 1, 1));
    EXPECT_EQ(kDatabaseFailed, transfer.rdMsgFromDB2(2019, 1, 1));
}

TEST_F(AccountWithoutDatabases, StillFailsWhenTheMainOneHasNoTable) {
    test::runSql(mainPath(), {});
    addBackDatabase();
    EXPECT_EQ(kNoTables, transfer.rdMsgFromDB(2019, 1, 1));
    EXPECT_EQ(kNoTables, transfer.rdMsgFromDB2(2019, 1, 1));
}

TEST_F(AccountWithoutDatabases, FailsWithoutTheTableOfContacts) {
    addTable("im_msg_1");
    addMessages("im_msg_1", messageOn(2019, 3, 7));
    addBackDatabase();
    fillDay("2001:1:1", 1);
    EXPECT_EQ(kNoTables, transfer.rdMsgFromDB(2019, 1, 1));
    EXPECT_EQ("2001:1:1=1", entries());  // nothing was touched yet
}

TEST_F(AccountWithoutDatabases, FailsWithoutABackDatabaseAfterTheContacts) {
    addContactTable();
    runMain({"insert into im_reContact(targetID) values(1)"});
    fillDay("2001:1:1", 1);
    EXPECT_EQ(kDatabaseFailed, transfer.rdMsgFromDB(2019, 1, 1));
    EXPECT_EQ(1U, transfer.reContacts.size());
    EXPECT_EQ("", entries());
    EXPECT_TRUE(transfer.tableNames.empty());
    EXPECT_FALSE(test::exists(backPath()));
}

TEST_F(BrokenDatabase, ATableWithoutTheDateColumnsContributesNothingAndIsReported) {
    runMain({"create table im_msg_1(msgID)", "insert into im_msg_1 values(1)"});
    addConversation("im_msg_2", messageOn(2019, 3, 7));
    EXPECT_EQ("2019:3:7=1", selected());
    EXPECT_EQ("im_msg_1: the table could not be read whole: no such column: year_", skipped());
}

TEST_F(BrokenDatabase, ATableWithFewerColumnsGivesTheOthersAsZeroOrEmpty) {
    runMain({"create table im_msg_1(toUserID, fromeUserID, body, year_, mon, day_)",
             "insert into im_msg_1 values(1, 2, 'text', 2019, 3, 7)"});
    EXPECT_EQ(0U, transfer.rdMsgFromDB(2019, 1, 1));
    // The columns are read by their place, and the day's place is empty here.
    EXPECT_EQ("0:0:0=1", entries());
    EXPECT_EQ("text", transfer.dayMsgMap.at("0:0:0").at(0).body);
}

TEST_F(BrokenDatabase, DamagedPagesCostTheRestOfTheirTableOnlyAndAreReported) {
    addConversation("im_msg_1", messageOn(2019, 3, 7, 1, 0, std::string(500, 'x')), 2000);
    addConversation("im_msg_2", messageOn(2019, 4, 1, 9));
    {
        constexpr std::size_t kPage = 4096;
        std::fstream file(mainPath(), std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(static_cast<std::streamoff>(40 * kPage));
        file << std::string(20 * kPage, '\xFF');
    }
    EXPECT_EQ(0U, transfer.rdMsgFromDB(2019, 1, 1));
    EXPECT_EQ("9", idsOf("2019:4:1"));
    EXPECT_LT(transfer.report.messagesSelected, 2001);
    EXPECT_EQ("im_msg_1: the table could not be read whole: database disk image is malformed", skipped());
}

TEST_F(BrokenDatabase, AFileThatIsNoDatabaseFails) {
    dir.write("account/db/imsg.db", std::string(8192, 'x'));
    EXPECT_EQ(kDatabaseFailed, transfer.rdMsgFromDB(2019, 1, 1));
    EXPECT_EQ(kDatabaseFailed, transfer.rdMsgFromDB2(2019, 1, 1));
}

TEST_F(BrokenDatabase, AFolderUnderTheNameFails) {
    std::filesystem::remove(mainPath());
    dir.makeDir("account/db/imsg.db");
    EXPECT_EQ(kDatabaseFailed, transfer.rdMsgFromDB(2019, 1, 1));
}

TEST_F(BrokenDatabase, LockedByAnotherConnectionFailsUntilTheLockIsGone) {
    addConversation("im_msg_1", messageOn(2019, 3, 7));
    imsdk::dbUtils client;
    ASSERT_NE(0, client.open(mainPath().c_str(), nullptr));
    ASSERT_NE(0, client.excuteNonQuery("begin exclusive"));
    EXPECT_EQ(kDatabaseFailed, transfer.rdMsgFromDB(2019, 1, 1));
    EXPECT_EQ("", entries());
    ASSERT_NE(0, client.excuteNonQuery("rollback"));
    EXPECT_EQ("2019:3:7=1", selected());
}

TEST_F(BrokenDatabase, WithAWriterAtWorkIsReadAsItWasBefore) {
    addConversation("im_msg_1", messageOn(2019, 3, 7));
    imsdk::dbUtils client;
    ASSERT_NE(0, client.open(mainPath().c_str(), nullptr));
    client.beginTransaction();
    ASSERT_NE(0, client.excuteNonQuery("update im_msg_1 set year_ = 2020"));
    EXPECT_EQ("2019:3:7=1", selected());
    client.endTransaction();
}

TEST_F(AccountWithoutDatabases, WithAKeyGivesItsMessagesToThatKeyOnly) {
    transfer.dbKey = "secret";
    makeAccount();
    addTable("im_msg_1");
    addMessages("im_msg_1", messageOn(2019, 3, 7));
    EXPECT_EQ("2019:3:7=1", selected());
    transfer.dbKey = "guess";
    EXPECT_EQ(kDatabaseFailed, transfer.rdMsgFromDB(2019, 1, 1));
    transfer.dbKey = "";
    EXPECT_EQ(kDatabaseFailed, transfer.rdMsgFromDB2(2019, 1, 1));
}

// --- Table names that would change their statement

TEST_F(HostileTableName, WithASecondStatementRunsNothing) {
    addConversation("im_msg_1", messageOn(2019, 3, 7));
    addTable("victim");
    for (const char* name : {"im_msg_1; drop table victim", "im_msg_1; drop table victim; --", "im_msg_1;"})
        addTable(name);
    EXPECT_EQ("2019:3:7=1", selected());
    EXPECT_EQ(3, transfer.report.skippedCount);
    EXPECT_EQ("victim", test::queryText(mainPath(), "select name from sqlite_master where name = 'victim'", 1));
}

TEST_F(HostileTableName, NeverReadsAnotherTableInstead) {
    addConversation("im_msg_1", messageOn(2001, 1, 1));
    for (const char* name : {"im_msg_1 --", "im_msg_1 /*", "im_msg_1 m", "im_msg_1,im_msg_1 m", "im_msg_1 or"})
        addConversation(name, messageOn(2019, 3, 7));
    EXPECT_EQ("", selected());
    EXPECT_EQ(5, transfer.report.skippedCount);
}

TEST_F(HostileTableName, WithBlanksOrQuotesIsReportedByItsName) {
    addConversation("im_msg_my talk", messageOn(2019, 3, 7));
    EXPECT_EQ("", selected());
    EXPECT_EQ("im_msg_my talk: the table's name cannot stand in a statement", skipped());
    addConversation("im_msg_\"'`", messageOn(2019, 3, 7));
    EXPECT_EQ("", selectedUncapped());
    EXPECT_EQ(3, transfer.report.skippedCount);
}

TEST_F(HostileTableName, TooLongForItsStatementContributesNothingAndIsReported) {
    const std::string name = "im_msg_" + std::string(300, '9');
    addConversation(name, messageOn(2019, 3, 7));
    addConversation("im_msg_1", messageOn(2019, 3, 8));
    EXPECT_EQ("2019:3:8=1", selected());
    EXPECT_EQ(name + ": the table's name cannot stand in a statement", skipped());
}

TEST_F(HostileTableName, AsLongAsItsStatementAllowsIsRead) {
    const std::string statement =
        "select * from  where (year_ > 2019) or (year_ = 2019 and mon > 1) or (year_ = 2019 and mon = 1 and day_ >= 1)";
    const std::string fitting = "im_msg_" + std::string(255 - statement.size() - 7, '9');
    addConversation(fitting, messageOn(2019, 3, 7));
    addConversation(fitting + "9", messageOn(2019, 3, 8));
    EXPECT_EQ("2019:3:7=1", selected());
    EXPECT_EQ(1, transfer.report.skippedCount);
}

// --- Attachments in bodies

TEST_F(AttachmentExtraction, OfAnImageTakesMediaThenThumbnailUnchanged) {
    EXPECT_EQ(1, transfer.parseUrl(R"({"mediaUrl":"a/b.jpg","thumbUrl":"a/t.jpg"})", 5));
    EXPECT_EQ((std::vector<std::string>{"a/b.jpg", "a/t.jpg"}), transfer.imagePaths);
}

TEST_F(AttachmentExtraction, OfAFileTakesTheFolderOfTheMediaAndTheFileName) {
    EXPECT_EQ(1, transfer.parseUrl(R"({"fileName":"x.pdf","mediaUrl":"srv/p/q"})", 6));
    EXPECT_EQ(std::vector<std::string>{"srv/p/x.pdf"}, transfer.filePaths);
    EXPECT_TRUE(transfer.audioPaths.empty());
}

TEST_F(AttachmentExtraction, OfAVoiceMessageDoesTheSameForAudio) {
    EXPECT_EQ(1, transfer.parseUrl(R"({"fileName":"x.amr","mediaUrl":"srv/p/q"})", 3));
    EXPECT_EQ(std::vector<std::string>{"srv/p/x.amr"}, transfer.audioPaths);
    EXPECT_TRUE(transfer.filePaths.empty());
}

TEST_F(AttachmentExtraction, OfAMediaAddressWithoutASlashKeepsAllOfIt) {
    EXPECT_EQ(1, transfer.parseUrl(R"({"fileName":"x.pdf","mediaUrl":"srv"})", 6));
    EXPECT_EQ(1, transfer.parseUrl(R"({"fileName":"y.pdf","mediaUrl":""})", 6));
    EXPECT_EQ((std::vector<std::string>{"srv/x.pdf", "/y.pdf"}), transfer.filePaths);
}

TEST_F(AttachmentExtraction, OfAnAddressOnTheWebKeepsItAsText) {
    EXPECT_EQ(1, transfer.parseUrl(R"({"fileName":"x.pdf","mediaUrl":"https:\/\/host\/a\/b?c=d"})", 6));
    EXPECT_EQ(std::vector<std::string>{"https://host/a/x.pdf"}, transfer.filePaths);
}

TEST_F(AttachmentExtraction, WithAMissingOrWrongKeyCollectsNothingButKnowsTheBody) {
    EXPECT_EQ(1, transfer.parseUrl(R"({"mediaUrl":"a/b"})", 3));
    EXPECT_EQ(1, transfer.parseUrl(R"({"fileName":"b"})", 6));
    EXPECT_EQ(1, transfer.parseUrl(R"({"mediaUrl":"a/b"})", 5));
    EXPECT_EQ(1, transfer.parseUrl(R"({"thumbUrl":"a/b"})", 5));
    EXPECT_EQ(1, transfer.parseUrl(R"({"fileName":7,"mediaUrl":"a/b"})", 6));
    EXPECT_EQ(1, transfer.parseUrl(R"({"fileName":"b","mediaUrl":null})", 6));
    EXPECT_EQ(1, transfer.parseUrl("{}", 5));
    EXPECT_TRUE(transfer.audioPaths.empty() && transfer.filePaths.empty() && transfer.imagePaths.empty());
}

TEST_F(AttachmentExtraction, OfABodyThatIsNoJsonObjectIsZero) {
    for (const char* body : {"", "hello", "[]", R"([{"mediaUrl":"a"}])", R"("text")", "7", "null", R"({"mediaUrl":)"}) {
        for (const int type : {3, 5, 6})
            EXPECT_EQ(0, transfer.parseUrl(body, type)) << body;
    }
}

TEST_F(AttachmentExtraction, OfOtherTypesIsZeroAndCollectsNothing) {
    for (const int type : {0, 1, 2, 4, 7, 28, 89, -3})
        EXPECT_EQ(0, transfer.parseUrl(R"({"fileName":"x","mediaUrl":"a/b","thumbUrl":"a/t"})", type)) << type;
    EXPECT_TRUE(transfer.audioPaths.empty() && transfer.filePaths.empty() && transfer.imagePaths.empty());
}

TEST_F(AttachmentExtraction, OfABodyNestedBeyondReasonIsZero) {
    const std::string depth(100000, '[');
    EXPECT_EQ(0, transfer.parseUrl("{\"mediaUrl\":" + depth, 5));
    EXPECT_TRUE(transfer.imagePaths.empty());
}

TEST_F(Selection, ExportsAMessageWhoseAttachmentCannotBeTold) {
    addConversation("im_msg_1", messageOn(2019, 3, 7, 1, 3, R"({"mediaUrl":"a/b"})"));
    addMessages("im_msg_1", messageOn(2019, 3, 7, 2, 6, "no JSON"));
    EXPECT_EQ(0U, transfer.rdMsgFromDB(2019, 1, 1));
    EXPECT_EQ("1 2", idsOf("2019:3:7"));
    EXPECT_TRUE(transfer.audioPaths.empty() && transfer.filePaths.empty());
}

TEST_F(Selection, CollectsTheAttachmentsOfEachTypeInTheirOwnList) {
    const std::string body = R"({"fileName":"n","mediaUrl":"f/m","thumbUrl":"f/t"})";
    addTable("im_msg_1");
    for (int type = 1; type <= 7; ++type)
        addMessages("im_msg_1", messageOn(2019, 3, 7, type, type, body));
    EXPECT_EQ(0U, transfer.rdMsgFromDB(2019, 1, 1));
    EXPECT_EQ(std::vector<std::string>{"f/n"}, transfer.audioPaths);
    EXPECT_EQ(std::vector<std::string>{"f/n"}, transfer.filePaths);
    EXPECT_EQ((std::vector<std::string>{"f/m", "f/t"}), transfer.imagePaths);
}

TEST_F(Selection, CollectsNoAttachmentsOfMessagesThatAreTooOld) {
    addConversation("im_msg_1", messageOn(2019, 3, 6, 1, 5, R"({"mediaUrl":"a","thumbUrl":"b"})"));
    EXPECT_EQ(0U, transfer.rdMsgFromDB(2019, 3, 7));
    EXPECT_TRUE(transfer.imagePaths.empty());
}

TEST_F(Selection, AddsAttachmentsToThoseOfAnEarlierOneAndKeepsDuplicates) {
    addConversation("im_msg_1", messageOn(2019, 3, 7, 1, 5, R"({"mediaUrl":"a","thumbUrl":"a"})"));
    EXPECT_EQ(0U, transfer.rdMsgFromDB(2019, 1, 1));
    EXPECT_EQ(0U, transfer.rdMsgFromDB(2019, 1, 1));
    EXPECT_EQ((std::vector<std::string>{"a", "a", "a", "a"}), transfer.imagePaths);
}

}  // namespace
