// Writing collected messages into the conversations' tables of the main or the back database.
#include <filesystem>
#include <limits>

#include "tests/transfer/package_import/import_fixture.h"
#include "transfer/tables/conversation_writer.h"
#include "transfer/tables/message_table.h"

namespace fs = std::filesystem;

namespace test {
namespace {

const char* const kTables = "select group_concat(name, ' ') from sqlite_master where type = 'table'";

std::string createStatement(const std::string& table) {
    const std::string blanks(21, ' ');
    return "create table " + table +
           "(toUserID BIGINT, fromeUserID BIGINT,body VARCHAR(8000), msgType INTEGER, msgID BIGINT PRIMARY KEY, "
           "lastMsgID BIGINT," +
           blanks +
           "time_ BIGINT, burnAfterReading INTEGER, status INTEGER,targetID BIGINT, msgProperties VARCHAR(1024), year_ "
           "INTEGER, mon INTEGER, day_ INTEGER," +
           blanks +
           "limitRange VARCHAR(256), formate VARCHAR(256), activeType INTEGER, relatedMsgID BIGINT, localID BIGINT, "
           "relatedUsers VARCHAR(4096), sourceID VARCHAR(32), unReadState VARCHAR(128),securityLevel INTEGER)";
}

// The database writes the first two words its own way.
std::string createdAs(const std::string& table) {
    return createStatement(table).replace(0, 12, "CREATE TABLE");
}

class MessageStore : public ImportFixture {
protected:
    /// Collects the messages and writes all that was collected.
    void store(long long conversation, const std::vector<long long>& ids) {
        collect(conversation, ids);
        EXPECT_EQ(0U, transfer_.wtMsgToDB());
    }
    void storeMessages(long long conversation, const std::vector<imsdk::st_dbMessageBean>& messages) {
        transfer_.msgMap[conversation] = messages;
        EXPECT_EQ(0U, transfer_.wtMsgToDB());
    }
    /// Message 1 in each of the conversations.
    void collectInEach(const std::vector<long long>& conversations) {
        for (const long long conversation : conversations)
            collect(conversation, {1});
    }
    void run(const std::string& statement) const { runSql(mainPath(), {statement}); }
    void giveTable(long long conversation) const { run(createStatement("im_msg_" + std::to_string(conversation))); }
    // A view takes the name, and no database lists it among its tables.
    void blockTable(long long conversation) const {
        run("create view im_msg_" + std::to_string(conversation) + " as select 1");
    }
    std::string table(const std::string& name) const {
        return mainRows("select name from sqlite_master where type = 'table' and name = '" + name + "'");
    }
};

// --- Tables ---

TEST_F(MessageStore, CreatesATableWithItsExactText) {
    store(100234, {1});
    EXPECT_EQ(createdAs("im_msg_100234"), mainRows("select sql from sqlite_master where name = 'im_msg_100234'"));
}

TEST_F(MessageStore, HasTheCreateStatementToTheLetter) {
    EXPECT_EQ(createStatement("%s") + ";", chattransfer::kCreateMessageTable);
}

TEST_F(MessageStore, HasTheInsertStatementToTheLetter) {
    EXPECT_EQ(
        "insert into %s(toUserID,fromeUserID,body,msgType,msgID,lastMsgID,time_,burnAfterReading,status,targetID,"
        "msgProperties,year_,mon,day_,limitRange,formate,activeType,relatedMsgID,localID,relatedUsers,sourceID) "
        "values(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)",
        chattransfer::insertMessageFormat());
}

TEST_F(MessageStore, AddsACreatedTableToTheTableNames) {
    giveTable(4);
    store(5, {1});
    EXPECT_EQ((std::vector<std::string>{"im_msg_4", "im_msg_5", "im_reContact"}), transfer_.tableNames);
    EXPECT_EQ(1, transfer_.report.tablesCreated);
}

TEST_F(MessageStore, RefreshesAStaleTableList) {
    transfer_.tableNames = {"im_msg_5"};
    store(5, {1});
    EXPECT_EQ("1", idsIn("im_msg_5"));
}

TEST_F(MessageStore, UsesATableThatIsThere) {
    giveTable(5);
    run("insert into im_msg_5(msgID) values(1)");
    store(5, {2});
    EXPECT_EQ("1 2", idsIn("im_msg_5"));
    EXPECT_EQ(0, transfer_.report.tablesCreated);
}

TEST_F(MessageStore, TakesNoTableOfASimilarName) {
    for (const long long conversation : {1, 120})
        giveTable(conversation);
    store(12, {7});
    EXPECT_EQ("7", idsIn("im_msg_12"));
    EXPECT_EQ("", idsIn("im_msg_1"));
    EXPECT_EQ("", idsIn("im_msg_120"));
}

TEST_F(MessageStore, WritesEachConversationIntoItsOwnTable) {
    collect(5, {3, 1});
    collect(9223372036854775807, {2});
    store(0, {4});
    EXPECT_EQ("1 3", idsIn("im_msg_5"));
    EXPECT_EQ("2", idsIn("im_msg_9223372036854775807"));
    EXPECT_EQ("4", idsIn("im_msg_0"));
}

// --- Rows ---

TEST_F(MessageStore, BindsEveryFieldToItsColumn) {
    storeMessages(9, {fullMessage()});
    EXPECT_EQ("1|2|body|3|4|5|6|7|8|9|properties|10|11|12|13;14|format|15|16|17|18;19|source||",
              mainRows("select * from im_msg_9", 23));
}

TEST_F(MessageStore, LeavesUnreadStateAndSecurityLevelNull) {
    storeMessages(9, {fullMessage()});
    EXPECT_EQ("null|null", mainRows("select typeof(unReadState), typeof(securityLevel) from im_msg_9", 2));
}

TEST_F(MessageStore, StoresEmptyTextsAsTextsAndNotAsNull) {
    store(9, {1});
    EXPECT_EQ("text|text|text|text|text|text",
              mainRows("select typeof(body), typeof(msgProperties), typeof(limitRange), typeof(formate), "
                       "typeof(relatedUsers), typeof(sourceID) from im_msg_9",
                       6));
}

TEST_F(MessageStore, StoresTheLimitsOfItsNumbers) {
    imsdk::st_dbMessageBean record = messageOf(9, std::numeric_limits<long long>::min());
    record.time_ = std::numeric_limits<long long>::max();
    record.msgType = std::numeric_limits<int>::min();
    storeMessages(9, {record});
    EXPECT_EQ("-9223372036854775808|9223372036854775807|-2147483648",
              mainRows("select msgID, time_, msgType from im_msg_9", 3));
}

TEST_F(MessageStore, StoresTextsThatLookLikeSqlAsTheyAre) {
    const std::string body = "'); drop table im_msg_9; -- ? %s";
    storeMessages(9, {messageOf(9, 1, body)});
    EXPECT_EQ(body, mainRows("select body from im_msg_9"));
}

TEST_F(MessageStore, StoresBodiesLongerThanTheColumnSays) {
    storeMessages(9, {messageOf(9, 1, std::string(100'000, 'x'))});
    EXPECT_EQ("100000", mainRows("select length(body) from im_msg_9"));
}

TEST_F(MessageStore, StoresImportedMessagesAsReadByTheReader) {
    dir_.write(messageFile(0), smallFile(5, 1));
    EXPECT_EQ(0U, transfer_.rdMsgFromFile());
    EXPECT_EQ(0U, transfer_.wtMsgToDB());
    EXPECT_EQ("4|0|2019|3|7", mainRows("select status, burnAfterReading, year_, mon, day_ from im_msg_5", 5));
}

// --- Duplicates ---

TEST_F(MessageStore, AddsNothingTheSecondTime) {
    store(5, {1, 2, 3});
    EXPECT_EQ(0U, transfer_.wtMsgToDB());
    EXPECT_EQ("1 2 3", idsIn("im_msg_5"));
    EXPECT_EQ(3, transfer_.report.messagesInserted);
    EXPECT_EQ(3, transfer_.report.messagesDuplicate);
}

TEST_F(MessageStore, StoresAPackageThatWasReadTwiceOnce) {
    dir_.write(messageFile(0), smallFile(5, 1));
    EXPECT_EQ(0U, transfer_.rdMsgFromFile());
    EXPECT_EQ(0U, transfer_.rdMsgFromFile());
    EXPECT_EQ(0U, transfer_.wtMsgToDB());
    EXPECT_EQ("1", idsIn("im_msg_5"));
}

TEST_F(MessageStore, StoresTheFirstOfTwoMessagesWithOneId) {
    storeMessages(5, {messageOf(5, 1, "first"), messageOf(5, 1, "second"), messageOf(5, 2, "third")});
    EXPECT_EQ("1|first\n2|third", mainRows("select msgID, body from im_msg_5 order by msgID", 2));
}

TEST_F(MessageStore, KeepsTheStoredCopyOfAMessage) {
    giveTable(5);
    run("insert into im_msg_5(msgID, body, status) values(1, 'stored', 2)");
    storeMessages(5, {messageOf(5, 1, "from the package")});
    EXPECT_EQ("stored|2", mainRows("select body, status from im_msg_5", 2));
}

TEST_F(MessageStore, StoresOneIdInTwoConversationsTwice) {
    collect(5, {1});
    store(6, {1});
    EXPECT_EQ("1", idsIn("im_msg_5"));
    EXPECT_EQ("1", idsIn("im_msg_6"));
}

TEST_F(MessageStore, LeavesTheCollectedMessagesAsTheyAre) {
    store(5, {1, 2});
    EXPECT_EQ("1 2", collectedIds(5));
}

// --- Failures ---

TEST_F(MessageStore, NeedsTheMainDatabase) {
    fs::remove(mainPath());
    collect(5, {1});
    EXPECT_EQ(kDatabaseFailed, transfer_.wtMsgToDB());
    EXPECT_FALSE(exists(mainPath()));
}

TEST_F(MessageStore, NeedsADatabaseThatIsOne) {
    dir_.write("account/db/imsg.db", std::string(5000, 'x'));
    collect(5, {1});
    EXPECT_EQ(kDatabaseFailed, transfer_.wtMsgToDB());
}

TEST_F(MessageStore, EndsAtATableThatCannotBeCreated) {
    blockTable(6);
    collect(5, {1});
    collect(6, {2});
    collect(7, {3});
    transfer_.reContacts = {contactOf(5, 1, 0)};
    EXPECT_EQ(kDatabaseFailed, transfer_.wtMsgToDB());
    EXPECT_EQ("im_msg_5", mainRows(kTables));
    EXPECT_EQ("1", idsIn("im_msg_5"));
    EXPECT_TRUE(reported("im_msg_6"));
}

TEST_F(MessageStore, CannotCreateATableForANegativeConversation) {
    store(5, {1});
    collect(-5, {2});
    EXPECT_EQ(kDatabaseFailed, transfer_.wtMsgToDB());
    EXPECT_EQ("1", idsIn("im_msg_5"));
    EXPECT_EQ("", table("im_msg_-5"));
    EXPECT_TRUE(reported("im_msg_-5"));
}

TEST_F(MessageStore, PassesOverTheMessagesOfANegativeConversationThatHasATable) {
    run(createStatement("\"im_msg_-5\""));
    collect(-5, {1});
    store(5, {2});
    EXPECT_EQ("", idsIn("\"im_msg_-5\""));
    EXPECT_EQ("2", idsIn("im_msg_5"));
    EXPECT_EQ(1, transfer_.report.messagesRefused);
}

TEST_F(MessageStore, CannotUseATableThatDiffersInLetterCase) {
    run(createStatement("IM_MSG_5"));
    collect(5, {1});
    EXPECT_EQ(kDatabaseFailed, transfer_.wtMsgToDB());
    EXPECT_EQ("", idsIn("im_msg_5"));
}

TEST_F(MessageStore, PassesOverMessagesThatTheTableRefuses) {
    giveTable(5);
    run("create trigger picky before insert on im_msg_5 when new.msgID = 2 begin select raise(abort, 'no'); end");
    store(5, {1, 2, 3});
    EXPECT_EQ("1 3", idsIn("im_msg_5"));
    EXPECT_EQ(1, transfer_.report.messagesRefused);
    EXPECT_EQ(0, transfer_.report.messagesDuplicate);
    EXPECT_TRUE(reported("message 2"));
}

TEST_F(MessageStore, PassesOverATableOfAnotherShape) {
    run("create table im_msg_5(msgID BIGINT PRIMARY KEY, body TEXT)");
    collect(5, {1, 2});
    store(6, {3});
    EXPECT_EQ("", idsIn("im_msg_5"));
    EXPECT_EQ("3", idsIn("im_msg_6"));
    EXPECT_EQ(2, transfer_.report.messagesRefused);
    EXPECT_TRUE(reported("message 1"));
}

TEST_F(MessageStore, GoesOnAfterAMessageThatCannotBeBound) {
    giveTable(5);
    ASSERT_NE(0, transfer_.dbOpen());
    // A text beyond a gigabyte fails when it is bound. A placeholder that does not exist fails like it, in less memory.
    imsdk::dbCommand insert(&transfer_.mainDb, "insert into im_msg_5(toUserID) values(?)");
    EXPECT_EQ(0, chattransfer::insertMessage(transfer_.report, transfer_.mainDb, insert, messageOf(5, 1)));
    insert.setCommandText(chattransfer::insertMessageStatement("im_msg_5").c_str());
    EXPECT_NE(0, chattransfer::insertMessage(transfer_.report, transfer_.mainDb, insert, messageOf(5, 2)));
    EXPECT_EQ("2", idsIn("im_msg_5"));
    EXPECT_EQ(1, transfer_.report.messagesRefused);
}

TEST_F(MessageStore, WritesNothingOfAConversationWhoseTransactionTheDatabaseEnds) {
    giveTable(6);
    run("create trigger fatal before insert on im_msg_6 when new.msgID = 2 begin select raise(rollback, 'no'); end");
    collect(5, {1});
    collect(6, {1, 2, 3});
    collect(7, {1});
    EXPECT_EQ(kDatabaseFailed, transfer_.wtMsgToDB());
    EXPECT_EQ("1", idsIn("im_msg_5"));
    EXPECT_EQ("", idsIn("im_msg_6"));
    EXPECT_EQ("", table("im_msg_7"));
    EXPECT_EQ(1, transfer_.report.messagesInserted);
}

TEST_F(MessageStore, WritesNothingOfAConversationThatDoesNotFitTheDisk) {
    store(5, {1});
    // The same failure as a full disk, on a connection that stays open.
    EXPECT_NE(0, transfer_.mainDb.excuteNonQuery("PRAGMA max_page_count = 40"));
    for (long long id = 1; id <= 100; ++id)
        transfer_.msgMap[6].push_back(messageOf(6, id, std::string(8000, 'x')));
    EXPECT_EQ(kDatabaseFailed, transfer_.wtMsgToDB());
    EXPECT_EQ("1", idsIn("im_msg_5"));
    EXPECT_EQ("", table("im_msg_6"));
    EXPECT_TRUE(reported("conversation 6"));
    EXPECT_EQ(1, transfer_.report.messagesInserted);
    EXPECT_EQ(1, transfer_.report.tablesCreated);
    EXPECT_NE(0, transfer_.mainDb.excuteNonQuery("PRAGMA max_page_count = 100000"));
    EXPECT_EQ(0U, transfer_.wtMsgToDB());
    EXPECT_EQ("100", mainRows("select count(*) from im_msg_6"));
}

// --- Order of work, progress ---

TEST_F(MessageStore, ReportsTheLastConversationWithTheHostsContext) {
    collectInEach({5, 6, 7});
    EXPECT_EQ(0U, transfer_.wtMsgToDB());
    EXPECT_EQ(std::vector<std::string>{"1 100 3/3"}, listener_.heard);
    EXPECT_EQ(std::vector<long long>{7}, listener_.contexts);
}

TEST_F(MessageStore, ReportsNothingWithoutMessages) {
    EXPECT_EQ(0U, transfer_.wtMsgToDB());
    EXPECT_EQ(std::vector<std::string>{}, listener_.heard);
}

TEST_F(MessageStore, NeedsNoListener) {
    transfer_.progressListener = nullptr;
    store(5, {1});
    EXPECT_EQ("1", idsIn("im_msg_5"));
}

// Half of a second goes by between reports, so that only the last conversation is one.
TEST_F(MessageStore, StoppedByItsListenerLosesTheOpenConversationAndKeepsThoseBefore) {
    test::StoppingListener cancel;
    transfer_.progressListener = &cancel;
    collectInEach({5, 6, 7});
    EXPECT_THROW(transfer_.wtMsgToDB(), test::StoppedByHost);
    EXPECT_EQ("1", idsIn("im_msg_6"));
    EXPECT_EQ(2, transfer_.report.messagesInserted);
    EXPECT_EQ("", mainRows("select name from sqlite_master where name = 'im_msg_7'"));
}

TEST_F(MessageStore, StoppedByItsListenerAndRunAgainWritesTheRest) {
    test::StoppingListener cancel;
    transfer_.progressListener = &cancel;
    collectInEach({5, 6});
    EXPECT_THROW(transfer_.wtMsgToDB(), test::StoppedByHost);
    transfer_.progressListener = nullptr;
    EXPECT_EQ(0U, transfer_.wtMsgToDB());
    EXPECT_EQ("1", idsIn("im_msg_5"));
    EXPECT_EQ("1", idsIn("im_msg_6"));
}

TEST_F(MessageStore, WritesTheRecentContactsAlsoWithoutMessages) {
    transfer_.reContacts = {contactOf(5, 1, 0)};
    EXPECT_EQ(0U, transfer_.wtMsgToDB());
    EXPECT_EQ("5", mainRows("select targetID from im_reContact"));
}

TEST_F(MessageStore, SucceedsWhenTheContactsCannotBeWritten) {
    run("create view im_reContact as select 1");
    collect(5, {1});
    transfer_.reContacts = {contactOf(5, 1, 0)};
    EXPECT_EQ(0U, transfer_.wtMsgToDB());
    EXPECT_EQ("1", idsIn("im_msg_5"));
    EXPECT_TRUE(reported("im_reContact"));
}

TEST_F(MessageStore, StoresThousandsOfConversations) {
    constexpr long long kConversations = 3000;
    for (long long conversation = 1; conversation <= kConversations; ++conversation)
        transfer_.msgMap[conversation].push_back(messageOf(conversation, conversation * 10));
    // What is tested are the tables, not the disk: without waiting for it the test takes seconds instead of a minute.
    ASSERT_NE(0, transfer_.dbOpen());
    ASSERT_NE(0, transfer_.mainDb.excuteNonQuery("PRAGMA synchronous = off"));
    EXPECT_EQ(0U, transfer_.wtMsgToDB());
    EXPECT_EQ("3001", mainRows("select count(*) from sqlite_master where type = 'table'"));
    for (const long long conversation : {1LL, 1500LL, kConversations})
        EXPECT_EQ(std::to_string(conversation * 10), idsIn("im_msg_" + std::to_string(conversation)));
    EXPECT_EQ(kConversations, transfer_.report.messagesInserted);
    EXPECT_EQ(0U, transfer_.wtMsgToDB());
    EXPECT_EQ(kConversations, transfer_.report.messagesDuplicate);
}

// --- The back database ---

TEST_F(MessageStore, WritesTheSameTablesAndRowsIntoTheBackDatabase) {
    transfer_.msgMap[9] = {fullMessage()};
    EXPECT_EQ(0U, transfer_.wtMsgToBackDB());
    EXPECT_EQ("1|2|body|3|4|5|6|7|8|9|properties|10|11|12|13;14|format|15|16|17|18;19|source||",
              backRows("select * from im_msg_9", 23));
    EXPECT_EQ(createdAs("im_msg_9"), backRows("select sql from sqlite_master where name = 'im_msg_9'"));
}

TEST_F(MessageStore, LeavesTheMainDatabaseAloneOnTheWayToTheBackDatabase) {
    collect(5, {1});
    fs::remove(mainPath());
    EXPECT_EQ(0U, transfer_.wtMsgToBackDB());
    EXPECT_FALSE(exists(mainPath()));
    EXPECT_EQ("1", backRows("select msgID from im_msg_5"));
}

TEST_F(MessageStore, LooksForTablesOfTheBackDatabaseAndNotOfTheMainOne) {
    giveTable(5);
    collect(5, {1});
    EXPECT_EQ(0U, transfer_.wtMsgToBackDB());
    EXPECT_EQ("1", backRows("select msgID from im_msg_5"));
    EXPECT_EQ(std::vector<std::string>{"im_msg_5"}, transfer_.tableNames);
}

TEST_F(MessageStore, WritesNeitherProgressNorContactsForTheBackDatabase) {
    collect(5, {1});
    transfer_.reContacts = {contactOf(5, 1, 0)};
    EXPECT_EQ(0U, transfer_.wtMsgToBackDB());
    EXPECT_TRUE(listener_.heard.empty());
    EXPECT_EQ("im_msg_5", backRows(kTables));
}

TEST_F(MessageStore, AddsNothingToTheBackDatabaseTheSecondTime) {
    collect(5, {1, 2});
    EXPECT_EQ(0U, transfer_.wtMsgToBackDB());
    EXPECT_EQ(0U, transfer_.wtMsgToBackDB());
    EXPECT_EQ("2", backRows("select count(*) from im_msg_5"));
}

TEST_F(MessageStore, NeedsTheBackDatabase) {
    fs::remove(backPath());
    collect(5, {1});
    EXPECT_EQ(kDatabaseFailed, transfer_.wtMsgToBackDB());
    EXPECT_FALSE(exists(backPath()));
    EXPECT_EQ("", mainRows(kTables));
}

TEST_F(MessageStore, EndsAtATableThatTheBackDatabaseCannotCreate) {
    runSql(backPath(), {"create view im_msg_6 as select 1"});
    collectInEach({5, 6, 7});
    EXPECT_EQ(kDatabaseFailed, transfer_.wtMsgToBackDB());
    EXPECT_EQ("im_msg_5", backRows(kTables));
}

TEST_F(MessageStore, HasNothingToDoForTheBackDatabaseWithoutMessages) {
    EXPECT_EQ(0U, transfer_.wtMsgToBackDB());
    EXPECT_EQ("", backRows(kTables));
}

// --- Keyed databases ---

class KeyedMessageStore : public MessageStore {
protected:
    KeyedMessageStore() {
        for (const std::string& path : {mainPath(), backPath()}) {
            fs::remove(path);
            runSql(path, {"create table other(x)"}, kKey);
        }
        collect(5, {1});
    }

    static constexpr const char* kKey = "secret key";
};

TEST_F(KeyedMessageStore, WritesWithItsKey) {
    transfer_.dbKey = kKey;
    EXPECT_EQ(0U, transfer_.wtMsgToDB());
    EXPECT_EQ(0U, transfer_.wtMsgToBackDB());
    EXPECT_EQ("1", queryText(mainPath(), "select msgID from im_msg_5", 1, kKey));
    EXPECT_EQ("1", queryText(backPath(), "select msgID from im_msg_5", 1, kKey));
    EXPECT_EQ(std::string::npos, readFile(mainPath()).find("im_msg_5"));
}

TEST_F(KeyedMessageStore, FailsWithAnotherKeyOrNone) {
    for (const char* key : {"", "secret", "secret key "}) {
        transfer_.dbKey = key;
        EXPECT_EQ(kDatabaseFailed, transfer_.wtMsgToDB()) << key;
        EXPECT_EQ(kDatabaseFailed, transfer_.wtMsgToBackDB()) << key;
    }
    EXPECT_EQ("other", queryText(mainPath(), kTables, 1, kKey));
}

}  // namespace
}  // namespace test
