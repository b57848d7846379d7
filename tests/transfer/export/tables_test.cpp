// Discovery of tables, and whether messages, notes and rooms are stored already.
#include <climits>

#include "tests/transfer/export/account_fixture.h"

namespace {

using Names = std::vector<std::string>;
using test::AccountTest;

class TableList : public AccountTest {};
class TableLookup : public AccountTest {};
class PluginTable : public AccountTest {};
class StoredMessage : public AccountTest {};
class StoredNote : public AccountTest {
protected:
    void addNote(const std::string& values) {
        test::runSql(pluginPath(), {"create table im_note(sendUserId, targetID, type, content, isReminder, rmdTime, "
                                    "isArchive, lastChgTime)",
                                    "insert into im_note values(" + values + ")"});
        ASSERT_NE(0, transfer.kabDbOpen());
    }
};
class StoredRoom : public AccountTest {};

// --- Listing

TEST_F(TableList, HoldsEveryTableInTheDatabasesOrder) {
    addTable("im_msg_12");
    addContactTable();
    addTable("im_msg_5");
    ASSERT_NE(0, transfer.dbOpen());
    transfer.getTables();
    EXPECT_EQ((Names{"im_msg_12", "im_reContact", "im_msg_5"}), transfer.tableNames);
}

TEST_F(TableList, ReplacesWhatItHeld) {
    addTable("im_msg_12");
    ASSERT_NE(0, transfer.dbOpen());
    transfer.tableNames = {"old", "older"};
    transfer.getTables();
    EXPECT_EQ(Names{"im_msg_12"}, transfer.tableNames);
}

TEST_F(TableList, HoldsNoViewsAndNoIndexes) {
    addTable("im_msg_12");
    runMain({"create view im_msg_13 as select * from im_msg_12", "create index im_msg_14 on im_msg_12(time_)"});
    ASSERT_NE(0, transfer.dbOpen());
    transfer.getTables();
    EXPECT_EQ(Names{"im_msg_12"}, transfer.tableNames);
}

TEST_F(TableList, OfAClosedDatabaseIsEmpty) {
    transfer.tableNames = {"old"};
    transfer.getTables();
    EXPECT_TRUE(transfer.tableNames.empty());
}

TEST_F(TableList, CanBeTakenFromAnotherConnection) {
    addTable("im_msg_12");
    imsdk::dbUtils other;
    test::makeDatabase(other, dir.at("other.db"));
    ASSERT_NE(0, other.excuteNonQuery("create table im_msg_9(a)"));
    ASSERT_NE(0, transfer.dbOpen());
    transfer.getTables2(other);
    EXPECT_EQ(Names{"im_msg_9"}, transfer.tableNames);
}

TEST_F(TableList, CanFillAListOfTheCaller) {
    addTable("im_msg_12");
    ASSERT_NE(0, transfer.dbOpen());
    transfer.tableNames = {"untouched"};
    Names names{"old"};
    transfer.getTables3(transfer.mainDb, names);
    EXPECT_EQ(Names{"im_msg_12"}, names);
    EXPECT_EQ(Names{"untouched"}, transfer.tableNames);
}

// --- Looking up a conversation's table

TEST_F(TableLookup, FindsExactlyTheConversationsTable) {
    transfer.tableNames = {"im_reContact", "im_msg_12"};
    EXPECT_EQ("im_msg_12", transfer.isTableExsit(12));
    EXPECT_EQ("", transfer.isTableExsit(1));
    EXPECT_EQ("", transfer.isTableExsit(120));
}

TEST_F(TableLookup, KeepsToTheLetterCase) {
    transfer.tableNames = {"IM_MSG_12", "im_Msg_12"};
    EXPECT_EQ("", transfer.isTableExsit(12));
}

TEST_F(TableLookup, TakesNegativeAndExtremeIds) {
    transfer.tableNames = {"im_msg_-5", "im_msg_-9223372036854775808", "im_msg_9223372036854775807", "im_msg_0"};
    EXPECT_EQ("im_msg_-5", transfer.isTableExsit(-5));
    EXPECT_EQ("im_msg_-9223372036854775808", transfer.isTableExsit(LLONG_MIN));
    EXPECT_EQ("im_msg_9223372036854775807", transfer.isTableExsit(LLONG_MAX));
    EXPECT_EQ("im_msg_0", transfer.isTableExsit(0LL));
    EXPECT_EQ("", transfer.isTableExsit(5));
}

TEST_F(TableLookup, InAnEmptyListFindsNothing) {
    EXPECT_EQ("", transfer.isTableExsit(12));
}

TEST_F(TableLookup, InAListOfTheCallerFindsAMatch) {
    transfer.tableNames = {"im_reContact"};
    Names names{"im_msg_1", "im_msg_12"};
    EXPECT_EQ("im_msg_12", transfer.isTableExsit(12, names));
    EXPECT_EQ("", transfer.isTableExsit(13, names));
    EXPECT_EQ("", transfer.isTableExsit(12, transfer.tableNames));
}

TEST_F(TableLookup, InAListOfTheCallerFindsNothingWhileTheObjectsOwnListIsEmpty) {
    Names names{"im_msg_12"};
    EXPECT_EQ("", transfer.isTableExsit(12, names));
}

// --- Tables of the plugin database

TEST_F(PluginTable, IsKnownByItsName) {
    test::runSql(pluginPath(), {"create table im_note(a)", "create index someIndex on im_note(a)"});
    ASSERT_NE(0, transfer.kabDbOpen());
    EXPECT_TRUE(transfer.isTableExsit(std::string("im_note").data()));
    EXPECT_FALSE(transfer.isTableExsit(std::string("im_room").data()));
    EXPECT_FALSE(transfer.isTableExsit(std::string("someIndex").data()));
}

TEST_F(PluginTable, IsNotLookedForInTheMainDatabase) {
    addTable("im_note");
    ASSERT_NE(0, transfer.dbOpen());
    test::runSql(pluginPath(), {});
    ASSERT_NE(0, transfer.kabDbOpen());
    EXPECT_FALSE(transfer.isTableExsit(std::string("im_note").data()));
}

TEST_F(PluginTable, IsNotThereOnAClosedDatabaseOrForNull) {
    EXPECT_FALSE(transfer.isTableExsit(std::string("im_note").data()));
    EXPECT_FALSE(transfer.isTableExsit(static_cast<char*>(nullptr)));
}

TEST_F(PluginTable, WithAQuoteInItsNameIsNotThere) {
    test::runSql(pluginPath(), {"create table im_note(a)", "create table \"it's\"(a)"});
    ASSERT_NE(0, transfer.kabDbOpen());
    EXPECT_FALSE(transfer.isTableExsit(std::string("it's").data()));
    EXPECT_FALSE(transfer.isTableExsit(std::string("x' or 'a' = 'a").data()));
}

TEST_F(PluginTable, WithANameTooLongForItsStatementIsNotThere) {
    const std::string statement = "select * from sqlite_master where type = 'table' and name = ''";
    std::string fitting(255 - statement.size(), 'n');
    std::string tooLong = fitting + "n";
    test::runSql(pluginPath(), {"create table " + fitting + "(a)", "create table " + tooLong + "(a)"});
    ASSERT_NE(0, transfer.kabDbOpen());
    EXPECT_TRUE(transfer.isTableExsit(fitting.data()));
    EXPECT_FALSE(transfer.isTableExsit(tooLong.data()));
}

// --- Stored messages

TEST_F(StoredMessage, IsCountedByItsId) {
    addTable("im_msg_12");
    addMessages("im_msg_12", test::messageOn(2019, 3, 7, LLONG_MAX));
    addMessages("im_msg_12", test::messageOn(2019, 3, 7, LLONG_MIN + 1));
    ASSERT_NE(0, transfer.dbOpen());
    EXPECT_EQ(1, transfer.isMsgExsit("im_msg_12", LLONG_MAX));
    EXPECT_EQ(1, transfer.isMsgExsit("im_msg_12", LLONG_MIN + 1));
    EXPECT_EQ(0, transfer.isMsgExsit("im_msg_12", LLONG_MAX - 1));
}

TEST_F(StoredMessage, InATableThatDoesNotExistCountsZero) {
    addTable("im_msg_12");
    ASSERT_NE(0, transfer.dbOpen());
    EXPECT_EQ(0, transfer.isMsgExsit("im_msg_13", 1));
}

TEST_F(StoredMessage, OfAClosedDatabaseCountsZero) {
    EXPECT_EQ(0, transfer.isMsgExsit("im_msg_12", 1));
}

TEST_F(StoredMessage, CanBeLookedForInAnotherConnection) {
    addTable("im_msg_12");
    imsdk::dbUtils other;
    test::makeDatabase(other, dir.at("other.db"));
    ASSERT_NE(0, other.excuteNonQuery("create table im_msg_12(msgID)"));
    ASSERT_NE(0, other.excuteNonQuery("insert into im_msg_12 values(7)"));
    ASSERT_NE(0, transfer.dbOpen());
    EXPECT_EQ(1, transfer.isMsgExsit(other, "im_msg_12", 7));
    EXPECT_EQ(0, transfer.isMsgExsit("im_msg_12", 7));
}

TEST_F(StoredMessage, InATableWithANameTooLongForItsStatementCountsZero) {
    const std::string statement = "select count(*) as cnt from    where msgID = 1";
    const std::string fitting(99 - statement.size(), 't');
    runMain({"create table " + fitting + "(msgID)", "insert into " + fitting + " values(1)",
             "create table " + fitting + "t(msgID)", "insert into " + fitting + "t values(1)"});
    ASSERT_NE(0, transfer.dbOpen());
    EXPECT_EQ(1, transfer.isMsgExsit(fitting, 1));
    EXPECT_EQ(0, transfer.isMsgExsit(fitting + "t", 1));
}

TEST_F(StoredMessage, LookedForUnderAHostileTableNameHarmsNothing) {
    addTable("im_msg_1");
    addTable("victim");
    ASSERT_NE(0, transfer.dbOpen());
    EXPECT_EQ(0, transfer.isMsgExsit("im_msg_1; drop table victim --", 1));
    transfer.getTables();
    EXPECT_EQ((Names{"im_msg_1", "victim"}), transfer.tableNames);
}

// --- Stored notes

TEST_F(StoredNote, IsTheSameWhenAllButItsContentMatches) {
    addNote("1, 2, 3, 'text', 4, 5, 6, 7");
    st_noteTrans note{1, 2, 3, "another text", 4, 5, 6, 7};
    EXPECT_EQ(1, transfer.isNoteExsit(note));
}

TEST_F(StoredNote, IsAnotherOneWhenAnyOfTheSevenFieldsDiffers) {
    addNote("1, 2, 3, 'text', 4, 5, 6, 7");
    const st_noteTrans others[] = {{0, 2, 3, "text", 4, 5, 6, 7}, {1, 0, 3, "text", 4, 5, 6, 7},
                                   {1, 2, 0, "text", 4, 5, 6, 7}, {1, 2, 3, "text", 0, 5, 6, 7},
                                   {1, 2, 3, "text", 4, 0, 6, 7}, {1, 2, 3, "text", 4, 5, 0, 7},
                                   {1, 2, 3, "text", 4, 5, 6, 0}};
    for (st_noteTrans other : others)
        EXPECT_EQ(0, transfer.isNoteExsit(other));
}

TEST_F(StoredNote, ComparesIdsAndTimesInAllTheirBits) {
    addNote("9223372036854775807, -9223372036854775807, 0, '', 0, 9007199254740993, 0, -1");
    st_noteTrans note{LLONG_MAX, -LLONG_MAX, 0, "", 0, 9007199254740993, 0, -1};
    EXPECT_EQ(1, transfer.isNoteExsit(note));
    note.rmdTime = 9007199254740992;
    EXPECT_EQ(0, transfer.isNoteExsit(note));
}

TEST_F(StoredNote, WithoutATableCountsZero) {
    st_noteTrans note;
    EXPECT_EQ(0, transfer.isNoteExsit(note));
    test::runSql(pluginPath(), {});
    ASSERT_NE(0, transfer.kabDbOpen());
    EXPECT_EQ(0, transfer.isNoteExsit(note));
}

// --- Stored rooms

class RoomNames : public StoredRoom {
protected:
    void addRoom(const std::string& name, const std::string& members) {
        test::runSql(pluginPath(), {"create table if not exists im_room(roomName, roomMember, top)",
                                    "insert into im_room values(" + test::quoted(name, '\'') + "," +
                                        test::quoted(members, '\'') + ", 0)"});
        ASSERT_NE(0, transfer.kabDbOpen());
    }
    int stored(std::string name, std::string members) { return transfer.isRoomExsit(name, members); }
};

TEST_F(RoomNames, CountTogetherWithTheMembers) {
    addRoom("team", "5;7");
    EXPECT_EQ(1, stored("team", "5;7"));
    EXPECT_EQ(0, stored("team", "5"));
    EXPECT_EQ(0, stored("Team", "5;7"));
}

TEST_F(RoomNames, StoredTwiceCountTwice) {
    addRoom("team", "5;7");
    addRoom("team", "5;7");
    EXPECT_EQ(2, stored("team", "5;7"));
}

TEST_F(RoomNames, WithAnApostropheCountAsNotStored) {
    addRoom("Ann's", "5;7");
    addRoom("plain", "5'7");
    EXPECT_EQ(0, stored("Ann's", "5;7"));
    EXPECT_EQ(0, stored("plain", "5'7"));
}

TEST_F(RoomNames, CannotAskAnotherQuestionThroughTheirApostrophes) {
    addRoom("team", "5;7");
    EXPECT_EQ(0, stored("x' or 'a' = 'a", "5;7"));
    EXPECT_EQ(0, stored("x", "y' or 'a' = 'a"));
    EXPECT_EQ(0, stored("x'; drop table im_room; --", "5;7"));
    EXPECT_EQ(1, stored("team", "5;7"));
}

TEST_F(RoomNames, TooLongForTheStatementCountAsNotStored) {
    const std::string statement = "select count(*) as cnt from im_room where roomName = '' and roomMember = '5'";
    const std::string fitting(511 - statement.size(), 'r');
    addRoom(fitting, "5");
    addRoom(fitting + "r", "5");
    EXPECT_EQ(1, stored(fitting, "5"));
    EXPECT_EQ(0, stored(fitting + "r", "5"));
}

TEST_F(RoomNames, WithoutATableCountZero) {
    EXPECT_EQ(0, stored("team", "5;7"));
}

}  // namespace
