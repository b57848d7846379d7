// Opening the databases of an account, the count that a host can override, and the reset.
#include <cstddef>
#include <cstring>
#include <utility>

#include "tests/transfer/export/account_fixture.h"

namespace {

using test::AccountTest;

class Opening : public AccountTest {};
class CountRows : public AccountTest {};
class DataClear : public AccountTest {};

// --- Opening

TEST_F(Opening, OpensEachDatabaseUnderItsOwnName) {
    test::runSql(mainPath(), {"create table inMain(a)"});
    test::runSql(backPath(), {"create table inBack(a)"});
    test::runSql(pluginPath(), {"create table inPlugin(a)"});
    EXPECT_NE(0, transfer.dbOpen());
    EXPECT_NE(0, transfer.backdbOpen());
    EXPECT_NE(0, transfer.kabDbOpen());
    std::vector<std::string> names;
    transfer.getTables3(transfer.mainDb, names);
    EXPECT_EQ(std::vector<std::string>{"inMain"}, names);
    transfer.getTables3(transfer.backDb, names);
    EXPECT_EQ(std::vector<std::string>{"inBack"}, names);
    transfer.getTables3(transfer.pluginDb, names);
    EXPECT_EQ(std::vector<std::string>{"inPlugin"}, names);
}

TEST_F(Opening, AMissingDatabaseDoesNotOpenAndIsNotCreated) {
    dir.makeDir("account/db/plugin");
    EXPECT_EQ(0, transfer.dbOpen());
    EXPECT_EQ(0, transfer.backdbOpen());
    EXPECT_EQ(0, transfer.kabDbOpen());
    EXPECT_EQ("plugin/", test::treeOf(dir.at("account/db")));
}

TEST_F(Opening, MakesNoFolders) {
    EXPECT_EQ(0, transfer.dbOpen());
    EXPECT_EQ(0, transfer.kabDbOpen());
    EXPECT_EQ("", test::listing(dir.path()));
}

TEST_F(Opening, ATrailingSeparatorOfTheRootPathOnlyDoubles) {
    addContactTable();
    transfer.rootPath += "/";
    EXPECT_NE(0, transfer.dbOpen());
}

TEST_F(Opening, TheRootPathIsTakenAsItIs) {
    addContactTable();
    transfer.rootPath = dir.at("elsewhere/../account");  // "elsewhere" does not exist: tidied up, the path would
    EXPECT_EQ(0, transfer.dbOpen());
}

TEST_F(Opening, AgainIsAllowed) {
    addContactTable();
    EXPECT_NE(0, transfer.dbOpen());
    EXPECT_NE(0, transfer.dbOpen());
    transfer.getTables();
    EXPECT_EQ(std::vector<std::string>{"im_reContact"}, transfer.tableNames);
}

TEST_F(Opening, AnEmptyKeyOpensAnUnencryptedDatabase) {
    addContactTable();
    transfer.dbKey = "";
    EXPECT_NE(0, transfer.dbOpen());
}

TEST_F(Opening, AKeyOfOneCharacterIsThatText) {
    transfer.dbKey = "k";
    addContactTable();
    EXPECT_NE(0, transfer.dbOpen());
    transfer.getTables();
    EXPECT_EQ(std::vector<std::string>{"im_reContact"}, transfer.tableNames);
    transfer.dbKey = "j";
    EXPECT_EQ(0, transfer.dbOpen());
    transfer.dbKey = "";
    EXPECT_EQ(0, transfer.dbOpen());
}

TEST_F(Opening, AFileThatIsNoDatabaseDoesNotOpen) {
    dir.write("account/db/imsg.db", std::string(8192, 'x'));
    EXPECT_EQ(0, transfer.dbOpen());
}

TEST_F(Opening, AFolderUnderTheNameDoesNotOpen) {
    dir.makeDir("account/db/imsg.db");
    EXPECT_EQ(0, transfer.dbOpen());
}

// --- The host's count

TEST_F(CountRows, IsTheSixthVirtualOperation) {
    const auto member = &dbTrans::countRows;
    std::ptrdiff_t word = 0;
    std::memcpy(&word, &member, sizeof word);
    // A pointer to a virtual member holds its byte offset in the table of virtual operations; on some machines with the
    // lowest bit set as a mark.
    constexpr auto pointerSize = static_cast<std::ptrdiff_t>(sizeof(void*));
    EXPECT_EQ(5 * pointerSize, word / pointerSize * pointerSize);
}

TEST_F(CountRows, CountsTheRowsOfTheTrimTable) {
    addTable("im_msg_12");
    addMessages("im_msg_12", test::messageOn(2019, 3, 7), 3);
    ASSERT_NE(0, transfer.dbOpen());
    transfer.trimTable = "im_msg_12";
    EXPECT_EQ(3, transfer.countRows(16, nullptr, 0));
}

TEST_F(CountRows, IsZeroWithoutSuchATable) {
    addContactTable();
    ASSERT_NE(0, transfer.dbOpen());
    EXPECT_EQ(0, transfer.countRows(16, nullptr, 0));
    transfer.trimTable = "im_msg_12";
    EXPECT_EQ(0, transfer.countRows(16, nullptr, 0));
}

TEST_F(CountRows, IsZeroOnAClosedDatabase) {
    transfer.trimTable = "im_msg_12";
    EXPECT_EQ(0, transfer.countRows(16, nullptr, 0));
}

TEST_F(CountRows, TakesOnlyPlainTableNames) {
    addTable("im_msg_1");
    addTable("$1");
    addMessages("im_msg_1", test::messageOn(2019, 3, 7), 3);
    ASSERT_NE(0, transfer.dbOpen());
    for (const char* name : {"im_msg_1 where msgID > 1", "im_msg_1,im_msg_1 b", "im_msg_1 --", "$1", "1"}) {
        transfer.trimTable = name;
        EXPECT_EQ(0, transfer.countRows(16, nullptr, 0)) << name;
    }
}

class CountingHost : public dbTrans {
public:
    int countRows(int what, const char* condition, int flags) override {
        EXPECT_EQ(nullptr, condition);
        asked.emplace_back(what, flags);
        return 42;
    }
    std::vector<std::pair<int, int>> asked;
};

TEST(HostCount, IsAskedForWithSixteenNullAndZero) {
    CountingHost host;
    host.trimTable = "im_msg_1";
    EXPECT_EQ(42, host.checkMsgCount());
    EXPECT_EQ((std::vector<std::pair<int, int>>{{16, 0}}), host.asked);
}

// --- Reset

TEST_F(DataClear, OfAFreshObjectDoesNothing) {
    transfer.dataClear();
    EXPECT_TRUE(transfer.dayMsgMap.empty());
    EXPECT_TRUE(transfer.tableNames.empty());
}

TEST_F(DataClear, EmptiesTheSelectedMessagesAndTheTableList) {
    fillDay("2019:3:7", 2);
    transfer.tableNames = {"im_msg_1"};
    transfer.dataClear();
    EXPECT_TRUE(transfer.dayMsgMap.empty());
    EXPECT_TRUE(transfer.tableNames.empty());
}

TEST_F(DataClear, LeavesEverythingElse) {
    transfer.reContacts.resize(1);
    transfer.msgMap[5].resize(2);
    transfer.notes.resize(3);
    transfer.rooms.resize(4);
    transfer.audioPaths = transfer.filePaths = transfer.imagePaths = {"a/b"};
    transfer.dataClear();
    EXPECT_EQ(1U, transfer.reContacts.size());
    EXPECT_EQ(2U, transfer.msgMap.at(5).size());
    EXPECT_EQ(3U, transfer.notes.size());
    EXPECT_EQ(4U, transfer.rooms.size());
    EXPECT_EQ(1U, transfer.audioPaths.size());
    EXPECT_EQ(1U, transfer.filePaths.size());
    EXPECT_EQ(1U, transfer.imagePaths.size());
}

}  // namespace
