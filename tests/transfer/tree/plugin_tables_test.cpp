// wtNoteAndRoomToDbNJ: notes and rooms into the plugin database.
#include <filesystem>

#include "tests/transfer/tree/tree_fixture.h"

namespace fs = std::filesystem;
using test::code;

namespace {

class PluginTables : public test::TreeTest {
protected:
    PluginTables() { makePluginDatabase(); }

    void addNote(const std::string& content, long long changed) {
        st_noteTrans note;
        note.content = content;
        note.lastChgTime = changed;
        transfer.notes.push_back(note);
    }
    void addRoom(const std::string& name, const std::string& members) {
        st_roomTrans room;
        room.roomName = name;
        room.roomMember = members;
        transfer.rooms.push_back(room);
    }
    unsigned write() { return code(transfer.wtNoteAndRoomToDbNJ()); }
    std::string sqlOf(const std::string& table) {
        return plugin("select sql from sqlite_master where type='table' and name='" + table + "'");
    }
    void runInPlugin(const std::vector<std::string>& statements) { test::runSql(pluginDatabase(), statements); }
};

// The database stores a create statement from "CREATE TABLE " on, with the statement's own text after it.
TEST_F(PluginTables, AreCreatedWithTheSchemaOfAllClients) {
    EXPECT_EQ(0U, write());
    EXPECT_EQ(
        "CREATE TABLE im_note (_id INTEGER PRIMARY KEY AUTOINCREMENT, lastChgTime BIGINT ,sendUserId BIGINT, targetID "
        "BIGINT,type TINYINT,content VARCHAR(9216), title VARCHAR(256),_key VARCHAR(256),isArchive TINYINT,isReminder "
        "TINYINT,rmdTime BIGINT)",
        sqlOf("im_note"));
    EXPECT_EQ(
        "CREATE TABLE im_room(roomID INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT, roomName VARCHAR(128), roomMember "
        "VARCHAR(8000), top TINYINT,                     portraitUrl VARCHAR(256), backupOne BIGINT, backupTwo "
        "VARCHAR(256), backupThree VARCHAR(512))",
        sqlOf("im_room"));
}

TEST_F(PluginTables, StayEmptyWhenThereIsNothingToWrite) {
    EXPECT_EQ(0U, write());
    EXPECT_EQ("0|0", plugin("select (select count(*) from im_note), (select count(*) from im_room)", 2));
}

TEST_F(PluginTables, KeepEveryFieldOfANote) {
    transfer.notes.push_back({1, 2, 3, "content", 1, 5, -1, 7});
    EXPECT_EQ(0U, write());
    EXPECT_EQ("1|7|1|2|3|content||", plugin("select * from im_note", 8));
    EXPECT_EQ("0|0|-1|1|5",
              plugin("select title is null, _key is null, isArchive, isReminder, rmdTime from im_note", 5));
}

TEST_F(PluginTables, KeepEveryFieldOfARoom) {
    transfer.rooms.push_back({"Book club", "3;2;1", -1});
    EXPECT_EQ(0U, write());
    EXPECT_EQ("1|Book club|3;2;1|-1|", plugin("select * from im_room", 5));
    EXPECT_EQ("0|1|1|1", plugin("select portraitUrl is null, backupOne is null, backupTwo is null, backupThree is null "
                                "from im_room",
                                4));
}

TEST_F(PluginTables, TakeRowsInTheOrderOfTheLists) {
    addNote("C", 3);
    addNote("B", 2);
    addNote("A", 1);
    addRoom("second", "1");
    addRoom("first", "1");
    write();
    EXPECT_EQ("C\nB\nA", plugin("select content from im_note order by _id"));
    EXPECT_EQ("second\nfirst", plugin("select roomName from im_room order by roomID"));
}

TEST_F(PluginTables, DoubleNothingTheSecondTime) {
    addNote("A", 1);
    addRoom("R", "2;1");
    EXPECT_EQ(0U, write());
    EXPECT_EQ(0U, write());
    EXPECT_EQ("1|1", plugin("select (select count(*) from im_note), (select count(*) from im_room)", 2));
    EXPECT_EQ(1, transfer.report.notesInserted);
    EXPECT_EQ(1, transfer.report.notesDuplicate);
    EXPECT_EQ(1, transfer.report.roomsInserted);
    EXPECT_EQ(1, transfer.report.roomsDuplicate);
}

TEST_F(PluginTables, TakeNotesThatDifferOnlyInContentForOne) {
    addNote("A", 1);
    addNote("B", 1);
    write();
    EXPECT_EQ("A", plugin("select content from im_note"));
}

TEST_F(PluginTables, TakeNotesThatDifferInAnyOtherFieldForTwo) {
    const st_noteTrans base{1, 2, 3, "c", 4, 5, 6, 7};
    transfer.notes.assign(8, base);
    transfer.notes[1].sendUserId = 9;
    transfer.notes[2].targetID = 9;
    transfer.notes[3].type = 9;
    transfer.notes[4].isReminder = 9;
    transfer.notes[5].rmdTime = 9;
    transfer.notes[6].isArchive = 9;
    transfer.notes[7].lastChgTime = 9;
    write();
    EXPECT_EQ("8", plugin("select count(*) from im_note"));
}

TEST_F(PluginTables, TakeRoomsThatDifferInNameOrMembersForTwo) {
    addRoom("R", "2;1");
    addRoom("R", "1;2");
    addRoom("S", "2;1");
    write();
    EXPECT_EQ("3", plugin("select count(*) from im_room"));
}

// A known limit: the look-up has a statement of its own size and quotes nothing.
TEST_F(PluginTables, DoubleARoomThatCannotBeLookedUp) {
    addRoom("Ada's room", "1");
    addRoom("many", std::string(600, '1'));
    write();
    write();
    EXPECT_EQ("Ada's room|2\nmany|2",
              plugin("select roomName, count(*) from im_room group by roomName order by roomName", 2));
}

TEST_F(PluginTables, StoreARoomWhoseNameIsMeantToChangeTheLookUp) {
    addRoom("first", "1");
    addRoom("x' or 'a'='a", "1");
    EXPECT_EQ(0U, write());
    EXPECT_EQ("first\nx' or 'a'='a", plugin("select roomName from im_room order by roomID"));
}

TEST_F(PluginTables, GoOnAfterARowThatTheDatabaseRefuses) {
    runInPlugin(
        {"create table im_note(_id integer primary key, lastChgTime, sendUserId, targetID, type, content check "
         "(content <> 'bad'), title, _key, isArchive, isReminder, rmdTime)"});
    addNote("bad", 1);
    addNote("good", 2);
    EXPECT_EQ(0U, write());
    EXPECT_EQ("good", plugin("select content from im_note"));
    EXPECT_EQ(1, transfer.report.notesInserted);
    EXPECT_NE("", skipReason("a note"));
}

TEST_F(PluginTables, KeepWhatOtherColumnsHold) {
    write();
    runInPlugin({"insert into im_room(roomName, roomMember, top, backupTwo) values('R', '1', 1, 'kept')"});
    addRoom("R", "1");
    write();
    EXPECT_EQ("1|kept", plugin("select top, backupTwo from im_room", 2));
}

TEST_F(PluginTables, NeedTheirDatabase) {
    fs::remove(pluginDatabase());
    EXPECT_EQ(test::kDatabaseFailed, write());
    EXPECT_FALSE(test::exists(pluginDatabase()));
}

TEST_F(PluginTables, FailWhenOneCannotBeCreated) {
    runInPlugin({"create view im_room as select 1"});
    addNote("A", 1);
    EXPECT_EQ(test::kDatabaseFailed, write());
    EXPECT_EQ("0", plugin("select count(*) from im_note"));
    EXPECT_NE("", skipReason("im_room"));
}

TEST_F(PluginTables, AreWrittenInOneTransactionThatEnds) {
    addNote("A", 1);
    write();
    expectWritable(pluginDatabase());
}

TEST_F(PluginTables, TakeNothingWhileAnotherConnectionHoldsTheLock) {
    write();
    addNote("A", 1);
    imsdk::dbUtils other;
    ASSERT_NE(0, other.open(pluginDatabase().c_str(), nullptr));
    other.beginTransaction();
    EXPECT_EQ(test::kDatabaseFailed, write());
    other.endTransaction();
    EXPECT_EQ("0", plugin("select count(*) from im_note"));
    EXPECT_EQ(0, transfer.report.notesInserted);
}

TEST_F(PluginTables, AreWrittenByTheOperationForTheWholeTree) {
    addNote("A", 1);
    EXPECT_EQ(0U, code(transfer.wtAllToDBNJ()));
    EXPECT_EQ("A", plugin("select content from im_note"));
    fs::remove(pluginDatabase());
    EXPECT_EQ(test::kDatabaseFailed, code(transfer.wtAllToDBNJ()));
}

}  // namespace
