// The transfer object itself: opening, reset, progress and the transaction guard.
#include <climits>
#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "tests/transfer/export/account_fixture.h"

namespace {

using test::AccountTest;

class Opening : public AccountTest {};
class CountRows : public AccountTest {};
class DataClear : public AccountTest {};
class Progress : public AccountTest {};
class TransactionGuard : public AccountTest {};

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

// --- Progress

TEST_F(Progress, SendsStagePercentAndText) {
    transfer.progress(2, 4, 1);
    EXPECT_EQ(std::vector<std::string>{"2 25 1/4"}, listener.heard);
}

TEST_F(Progress, TruncatesThePercentage) {
    transfer.progress(2, 3, 2);
    transfer.progress(2, 1000, 999);
    EXPECT_EQ((std::vector<std::string>{"2 66 2/3", "2 99 999/1000"}), listener.heard);
}

TEST_F(Progress, TruncatesTowardZeroBelowZeroToo) {
    transfer.progress(1, 3, -2);
    EXPECT_EQ(std::vector<std::string>{"1 -66 -2/3"}, listener.heard);
}

TEST_F(Progress, OfATotalOfZeroIsTheNearestNumberThatThereIs) {
    transfer.progress(2, 0, 0);
    transfer.progress(2, 0, 5);
    transfer.progress(2, 0, -5);
    EXPECT_EQ((std::vector<std::string>{"2 0 0/0", "2 2147483647 5/0", "2 -2147483648 -5/0"}), listener.heard);
}

TEST_F(Progress, OfAPercentageBeyondIntIsTheLargestInt) {
    transfer.progress(2, 1, INT_MAX);
    transfer.progress(2, 1, INT_MIN);
    EXPECT_EQ((std::vector<std::string>{"2 2147483647 2147483647/1", "2 -2147483648 -2147483648/1"}), listener.heard);
}

TEST_F(Progress, PassesTheContextBackUnchanged) {
    transfer.progressContext = LLONG_MIN;
    transfer.progress(1, 1, 1);
    EXPECT_EQ(std::vector<long long>{LLONG_MIN}, listener.contexts);
}

TEST_F(Progress, WithoutAListenerIsHeardByNobody) {
    transfer.progressListener = nullptr;
    transfer.progress(1, 2, 1);
    EXPECT_EQ(1, transfer.exportFile());
    EXPECT_TRUE(listener.heard.empty());
}

int receiverCalls = 0;
void countCall(int /*a*/, int /*b*/, int /*c*/) {
    ++receiverCalls;
}

TEST_F(Progress, RegisteredReceiversAreKeptAndNotCalled) {
    transfer.regExProgress(countCall);
    EXPECT_EQ(&countCall, transfer.exProgress);
    EXPECT_EQ(nullptr, transfer.imProgress);
    transfer.regImProgress(countCall);
    EXPECT_EQ(&countCall, transfer.imProgress);
    receiverCalls = 0;
    transfer.progress(1, 1, 1);
    fillDay("2019:3:7", 1);
    EXPECT_EQ(0U, transfer.wtMsgToFile());
    EXPECT_EQ(0, receiverCalls);
}

// --- The transaction guard

TEST_F(TransactionGuard, OfNullMakesNoCall) {
    const DbTranHelper guard(nullptr);
    EXPECT_EQ(0, transfer.dbOpen());
}

TEST_F(TransactionGuard, OfAClosedConnectionIsHarmless) {
    { const DbTranHelper guard(&transfer.mainDb); }
    EXPECT_FALSE(transfer.mainDb.isOpen());
}

TEST_F(TransactionGuard, HidesWritesUntilItsScopeEnds) {
    runMain({"create table t(a)"});
    ASSERT_NE(0, transfer.dbOpen());
    {
        const DbTranHelper guard(&transfer.mainDb);
        EXPECT_NE(0, transfer.mainDb.excuteNonQuery("insert into t values(1)"));
        EXPECT_EQ("0", test::queryText(mainPath(), "select count(*) from t", 1));
    }
    EXPECT_EQ("1", test::queryText(mainPath(), "select count(*) from t", 1));
}

TEST_F(TransactionGuard, EndsWhenAnExceptionPasses) {
    runMain({"create table t(a)"});
    ASSERT_NE(0, transfer.dbOpen());
    const auto failHalfWay = [this] {
        const DbTranHelper guard(&transfer.mainDb);
        transfer.mainDb.excuteNonQuery("insert into t values(1)");
        throw std::runtime_error("half way");
    };
    EXPECT_THROW(failHalfWay(), std::runtime_error);
    EXPECT_EQ("1", test::queryText(mainPath(), "select count(*) from t", 1));
    runMain({"insert into t values(2)"});  // the lock is gone
}

class ThrowingConnection : public imsdk::dbUtils {
public:
    void endTransaction() override { throw std::runtime_error("the commit failed"); }
};

TEST(TransactionGuardDeathTest, LetsNoExceptionOutOfItsEnd) {
    ThrowingConnection connection;
    EXPECT_DEATH(
        {
            try {
                const DbTranHelper guard(&connection);
            } catch (const std::runtime_error&) {
                // An exception that got out would end here, and the process would live.
            }
        },
        "");
}

}  // namespace
