#include "host/dbUtils.h"

#include <sys/stat.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/host/db/database_test.h"
#include "tests/support/posix_helpers.h"

namespace {

namespace fs = std::filesystem;

class OpenTest : public testing::Test {
protected:
    std::string plainDatabase(const std::string& name = "plain.db", const std::string& content = "plain") const {
        return madeDatabase(name, content, nullptr);
    }
    std::string keyedDatabase(const std::string& name = "keyed.db", const char* key = "secret") const {
        return madeDatabase(name, "keyed", key);
    }
    bool open(const std::string& path, const char* key = nullptr) { return db.open(path.c_str(), key) != 0; }
    bool run(const char* sql) { return db.excuteNonQuery(sql) != 0; }

    // What a database of plainDatabase() or keyedDatabase() was given.
    std::string content() {
        imsdk::dbDataReader reader = db.excuteQuery("select x from content");
        return reader.read() != 0 ? reader.getColumnValue(0) : "";
    }

    test::TempDir dir;
    imsdk::dbUtils db;

private:
    std::string madeDatabase(const std::string& name, const std::string& content, const char* key) const {
        std::string path = dir.at(name);
        test::runSql(path, {"create table content(x)", "insert into content values('" + content + "')"}, key);
        return path;
    }
};

TEST_F(OpenTest, NeverCreatesAFile) {
    EXPECT_FALSE(open(dir.at("missing.db")));
    EXPECT_FALSE(open(dir.at("missing.db"), "secret"));
    EXPECT_EQ("", test::listing(dir.path()));
    EXPECT_NE("", db.lastError());
}

TEST_F(OpenTest, ANullPathDoesNotOpen) {
    EXPECT_EQ(0, db.open(nullptr, nullptr));
}

TEST_F(OpenTest, OpensAPlainDatabaseWithoutAKey) {
    EXPECT_TRUE(open(plainDatabase()));
    EXPECT_EQ("plain", content());
    EXPECT_TRUE(db.isOpen());
    EXPECT_EQ("", db.lastError());
}

TEST_F(OpenTest, OpensAKeyedDatabaseWithItsKey) {
    EXPECT_TRUE(open(keyedDatabase(), "secret"));
    EXPECT_EQ("keyed", content());
}

TEST_F(OpenTest, RefusesAWrongKey) {
    EXPECT_FALSE(open(keyedDatabase(), "Secret"));
    EXPECT_FALSE(db.isOpen());
    EXPECT_NE("", db.lastError());
}

TEST_F(OpenTest, RefusesAKeyedDatabaseWithoutAKey) {
    EXPECT_FALSE(open(keyedDatabase()));
}

TEST_F(OpenTest, RefusesAPlainDatabaseWithAKey) {
    EXPECT_FALSE(open(plainDatabase(), "secret"));
}

TEST_F(OpenTest, ARefusedKeyLeavesTheFileAlone) {
    const std::string path = keyedDatabase();
    const std::string before = test::readFile(path);
    EXPECT_FALSE(open(path, "wrong"));
    EXPECT_TRUE(before == test::readFile(path));
    EXPECT_TRUE(open(path, "secret"));
}

TEST_F(OpenTest, AnEmptyFileIsAnEmptyDatabase) {
    EXPECT_TRUE(open(dir.write("empty.db", "")));
    EXPECT_EQ(0, db.isExistTable("select * from sqlite_master"));
    EXPECT_TRUE(run("create table t(x)"));
    EXPECT_EQ("SQLite format 3", test::readFile(dir.at("empty.db")).substr(0, 15));
}

TEST_F(OpenTest, AnEmptyFileWithAKeyBecomesAKeyedDatabase) {
    EXPECT_TRUE(open(dir.write("empty.db", ""), "secret"));
    EXPECT_TRUE(run("create table visible_name(x)"));
    const std::string bytes = test::readFile(dir.at("empty.db"));
    EXPECT_GT(bytes.size(), 0U);
    EXPECT_NE("SQLite format 3", bytes.substr(0, 15));
    EXPECT_EQ(std::string::npos, bytes.find("visible_name"));
}

TEST_F(OpenTest, AKeyOfOneCharacterIsAKey) {
    const std::string path = keyedDatabase("short.db", "k");
    EXPECT_TRUE(open(path, "k"));
    EXPECT_FALSE(open(path, "l"));
    EXPECT_FALSE(open(path));
}

TEST_F(OpenTest, AKeyMayHoldAnyTextOfAnyLength) {
    const std::string key = "\xD0\xBA\xD0\xBB\xD1\x8E\xD1\x87 ' \" ; " + std::string(5000, 'k');
    const std::string path = keyedDatabase("long.db", key.c_str());
    EXPECT_TRUE(open(path, key.c_str()));
    EXPECT_EQ("keyed", content());
    EXPECT_FALSE(open(path, (key + "k").c_str()));
}

TEST_F(OpenTest, AFileThatIsNoDatabaseDoesNotOpen) {
    EXPECT_FALSE(open(dir.write("garbage.db", std::string(8192, 'g'))));
    EXPECT_FALSE(open(dir.write("garbage.db", std::string(8192, 'g')), "secret"));
    EXPECT_FALSE(open(dir.write("short.db", "no database")));
    EXPECT_FALSE(open(dir.write("short.db", "no database"), "secret"));
}

TEST_F(OpenTest, ADatabaseCutToItsHeaderDoesNotOpen) {
    const std::string path = plainDatabase();
    fs::resize_file(path, 100);
    EXPECT_FALSE(open(path));
}

TEST_F(OpenTest, ADirectoryDoesNotOpen) {
    EXPECT_FALSE(open(dir.makeDir("folder.db")));
    EXPECT_FALSE(open(dir.makeDir("folder.db"), "secret"));
}

TEST_F(OpenTest, AFifoIsRefusedWithoutWaiting) {
    EXPECT_FALSE(open(test::makeFifo(dir.at("fifo.db"))));
}

TEST_F(OpenTest, ADanglingLinkDoesNotCreateItsTarget) {
    EXPECT_FALSE(open(test::makeLink(dir.at("target.db"), dir.at("link.db"))));
    EXPECT_EQ("link.db", test::listing(dir.path()));
}

TEST_F(OpenTest, AFailedOpenClosesTheConnection) {
    EXPECT_TRUE(open(plainDatabase()));
    EXPECT_FALSE(open(dir.at("missing.db")));
    EXPECT_FALSE(db.isOpen());
    EXPECT_FALSE(run("create table t(x)"));
    EXPECT_EQ(0, db.excuteQuery("select 1").read());
}

TEST_F(OpenTest, ARecoveredOpenForgetsTheError) {
    EXPECT_FALSE(open(dir.at("missing.db")));
    EXPECT_TRUE(open(plainDatabase()));
    EXPECT_EQ("", db.lastError());
}

TEST_F(OpenTest, OpeningAgainKeepsThePlainConnection) {
    const std::string path = plainDatabase();
    EXPECT_TRUE(open(path) && run("create temp table mark(x)"));
    EXPECT_TRUE(open(path));
    EXPECT_NE(0, db.isExistTable("select * from temp.sqlite_master where name = 'mark'"));
}

TEST_F(OpenTest, OpeningAgainWithTheSameKeyKeepsTheKeyedConnection) {
    const std::string path = keyedDatabase();
    EXPECT_TRUE(open(path, "secret") && run("create temp table mark(x)"));
    for (int i = 0; i < 50; ++i)
        ASSERT_TRUE(open(path, "secret"));
    EXPECT_NE(0, db.isExistTable("select * from temp.sqlite_master where name = 'mark'"));
}

TEST_F(OpenTest, OpeningAnotherFileLeavesTheFirst) {
    EXPECT_TRUE(open(plainDatabase("one.db", "one")));
    EXPECT_TRUE(open(plainDatabase("two.db", "two")));
    EXPECT_EQ("two", content());
}

TEST_F(OpenTest, ARemovedFileIsNoticed) {
    const std::string path = plainDatabase();
    EXPECT_TRUE(open(path));
    fs::remove(path);
    EXPECT_FALSE(open(path));
    EXPECT_FALSE(test::exists(path));
}

TEST_F(OpenTest, AReplacedFileIsNoticed) {
    const std::string path = plainDatabase("one.db", "old");
    EXPECT_TRUE(open(path));
    fs::rename(plainDatabase("two.db", "new"), path);
    EXPECT_TRUE(open(path));
    EXPECT_EQ("new", content());
}

TEST_F(OpenTest, ALinkThatLeadsElsewhereNowIsNoticed) {
    const std::string link = test::makeLink(plainDatabase("one.db", "one"), dir.at("link.db"));
    EXPECT_TRUE(open(link));
    fs::remove(link);
    test::makeLink(plainDatabase("two.db", "two"), link);
    EXPECT_TRUE(open(link));
    EXPECT_EQ("two", content());
}

TEST_F(OpenTest, AnotherKeyIsNotServedByTheOpenConnection) {
    const std::string path = keyedDatabase();
    EXPECT_TRUE(open(path, "secret"));
    EXPECT_FALSE(open(path, "wrong"));
    EXPECT_TRUE(open(path, "secret"));
    EXPECT_FALSE(open(path));
    EXPECT_TRUE(open(path, "secret"));
}

TEST_F(OpenTest, AKeyDoesNotMatchAnOpenPlainConnection) {
    const std::string path = plainDatabase();
    EXPECT_TRUE(open(path));
    EXPECT_FALSE(open(path, "secret"));
    EXPECT_TRUE(open(path));
}

TEST_F(OpenTest, AnEmptyKeyIsNoKey) {
    EXPECT_TRUE(open(plainDatabase(), ""));
    EXPECT_EQ("plain", content());
    EXPECT_FALSE(open(keyedDatabase(), ""));
}

TEST_F(OpenTest, AReadOnlyFileOpensForReading) {
    const std::string path = plainDatabase();
    ASSERT_EQ(0, chmod(dir.path().c_str(), 0755));
    ASSERT_EQ(0, chmod(path.c_str(), 0444));
    const test::OrdinaryUser user;
    EXPECT_TRUE(open(path));
    EXPECT_EQ("plain", content());
    EXPECT_FALSE(run("insert into content values('more')"));
}

TEST_F(OpenTest, AnUnreadableFileDoesNotOpen) {
    const std::string path = plainDatabase();
    ASSERT_EQ(0, chmod(dir.path().c_str(), 0755));
    ASSERT_EQ(0, chmod(path.c_str(), 0000));
    const test::OrdinaryUser user;
    EXPECT_FALSE(open(path));
}

TEST_F(OpenTest, ADatabaseThatStaysLockedDoesNotOpen) {
    const std::string path = plainDatabase();
    imsdk::dbUtils client;
    ASSERT_NE(0, client.open(path.c_str(), nullptr));
    ASSERT_NE(0, client.excuteNonQuery("begin exclusive"));
    EXPECT_FALSE(open(path));
    ASSERT_NE(0, client.excuteNonQuery("commit"));
    EXPECT_TRUE(open(path));
}

TEST_F(OpenTest, AnOpenDatabaseHasNoFailure) {
    EXPECT_EQ(imsdk::OpenFailure::none, db.openFailure());
    EXPECT_FALSE(open(dir.at("missing.db")));
    EXPECT_TRUE(open(plainDatabase()));
    EXPECT_EQ(imsdk::OpenFailure::none, db.openFailure());
}

TEST_F(OpenTest, AMissingFileAndAFolderAreMissing) {
    EXPECT_FALSE(open(dir.at("missing.db")));
    EXPECT_EQ(imsdk::OpenFailure::missing, db.openFailure());
    EXPECT_FALSE(open(dir.makeDir("folder.db")));
    EXPECT_EQ(imsdk::OpenFailure::missing, db.openFailure());
}

TEST_F(OpenTest, AFileThatMayNotBeReadIsNotPermitted) {
    const std::string path = plainDatabase();
    ASSERT_EQ(0, chmod(dir.path().c_str(), 0755));
    ASSERT_EQ(0, chmod(path.c_str(), 0000));
    const test::OrdinaryUser user;
    EXPECT_FALSE(open(path));
    EXPECT_EQ(imsdk::OpenFailure::notPermitted, db.openFailure());
}

TEST_F(OpenTest, AWrongKeyAndAFileThatIsNoDatabaseAreNotDecoded) {
    EXPECT_FALSE(open(keyedDatabase(), "wrong"));
    EXPECT_EQ(imsdk::OpenFailure::notDecoded, db.openFailure());
    EXPECT_FALSE(open(dir.write("garbage.db", std::string(8192, 'g'))));
    EXPECT_EQ(imsdk::OpenFailure::notDecoded, db.openFailure());
}

TEST_F(OpenTest, ABrokenSchemaIsDamage) {
    const std::string path = plainDatabase();
    std::string bytes = test::readFile(path);
    bytes.replace(100, 8, 8, '\xff');  // the header of the schema's first page
    dir.write("plain.db", bytes);
    EXPECT_FALSE(open(path));
    EXPECT_EQ(imsdk::OpenFailure::damaged, db.openFailure());
}

TEST_F(OpenTest, ADatabaseThatAnotherHoldsIsLocked) {
    const std::string path = plainDatabase();
    imsdk::dbUtils client;
    ASSERT_NE(0, client.open(path.c_str(), nullptr));
    ASSERT_NE(0, client.excuteNonQuery("begin exclusive"));
    EXPECT_FALSE(open(path));
    EXPECT_EQ(imsdk::OpenFailure::locked, db.openFailure());
}

class StatementTest : public test::DatabaseTest {
protected:
    void SetUp() override {
        DatabaseTest::SetUp();
        ASSERT_TRUE(run("create table t(x primary key)"));
    }
    std::string rows() { return value("select count(*) from t"); }
};

TEST_F(StatementTest, ASecondStatementFailsAndNothingRuns) {
    EXPECT_FALSE(run("insert into t values(1); insert into t values(2)"));
    EXPECT_FALSE(run("insert into t values(1); drop table t"));
    EXPECT_FALSE(run("create table a(x); select 1"));
    EXPECT_EQ("0", rows());
    EXPECT_EQ("", value("select name from sqlite_master where name = 'a'"));
}

TEST_F(StatementTest, AMalformedSecondStatementFailsAndNothingRuns) {
    EXPECT_FALSE(run("insert into t values(1); nonsense"));
    EXPECT_FALSE(run("insert into t values(1);'"));
    EXPECT_EQ("0", rows());
}

TEST_F(StatementTest, AQueryWithASecondStatementReadsAndRunsNothing) {
    EXPECT_EQ(0, db.excuteQuery("select 1; drop table t").read());
    EXPECT_EQ(0, db.excuteQuery("insert into t values(1) returning x; select 1").read());
    EXPECT_TRUE(db.excuteQuery("select 1; select 2").failed());
    EXPECT_EQ("0", rows());
}

TEST_F(StatementTest, ATableNameThatCarriesAStatementRunsNothing) {
    EXPECT_EQ(0, db.isExistTable("select * from sqlite_master where name = ''; drop table t; --'"));
    EXPECT_EQ("0", rows());
}

TEST_F(StatementTest, EndsAndCommentsMayFollow) {
    int expected = 0;
    for (const char* end : {";", " ; ", ";\n", ";;", " -- end", "; -- end\n", "; /* end */ ", "\t\r\n"})
        EXPECT_TRUE(run("insert into t values(" + std::to_string(expected++) + ")" + end)) << end;
    EXPECT_EQ(std::to_string(expected), rows());
    EXPECT_EQ("1", value("-- begin\n/* too */ select 1;"));
}

TEST_F(StatementTest, ATextWithoutAStatementFails) {
    EXPECT_EQ(0, db.excuteNonQuery(static_cast<const char*>(nullptr)));
    EXPECT_EQ(0, db.excuteQuery(nullptr).read());
    for (const char* text : {"", "  ", ";", "-- only a comment"}) {
        EXPECT_FALSE(run(text)) << text;
        EXPECT_EQ(0, db.excuteQuery(text).read()) << text;
    }
}

TEST_F(StatementTest, AMissingTableYieldsNoRow) {
    imsdk::dbDataReader reader = db.excuteQuery("select * from im_msg_1");
    EXPECT_EQ(0, reader.read());
    EXPECT_TRUE(reader.failed());
    EXPECT_NE(std::string::npos, db.lastError().find("im_msg_1"));
}

TEST_F(StatementTest, TheExistenceQueryCountsRows) {
    EXPECT_NE(0, db.isExistTable("select * from sqlite_master where type = 'table' and name = 't'"));
    EXPECT_EQ(0, db.isExistTable("select * from sqlite_master where type = 'table' and name = 'u'"));
    EXPECT_EQ(0, db.isExistTable("t"));
    EXPECT_EQ(0, db.isExistTable(nullptr));
}

TEST_F(StatementTest, AMalformedStatementFails) {
    EXPECT_FALSE(run("insert into"));
    EXPECT_NE("", db.lastError());
    EXPECT_FALSE(db.lastFailureWasDuplicate());
}

TEST_F(StatementTest, ARowThatATriggerRefusesIsNoDuplicate) {
    ASSERT_TRUE(run("create trigger picky before insert on t begin select raise(abort, 'no'); end"));
    EXPECT_FALSE(run("insert into t values(1)"));
    EXPECT_FALSE(db.lastFailureWasDuplicate());
    EXPECT_EQ("0", rows());
}

TEST_F(StatementTest, ADuplicateKeyIsToldFromOtherFailures) {
    EXPECT_TRUE(run("insert into t values(1)"));
    EXPECT_FALSE(run("insert into t values(1)"));
    EXPECT_TRUE(db.lastFailureWasDuplicate());
    EXPECT_NE("", db.lastError());
    EXPECT_EQ("1", rows());
}

TEST_F(StatementTest, ABatchThatCannotHaveTheLockFailsForTheLock) {
    imsdk::dbUtils client;
    ASSERT_NE(0, client.open(path().c_str(), nullptr));
    client.beginTransaction();
    db.beginTransaction();
    EXPECT_TRUE(db.transactionFailed());
    EXPECT_TRUE(db.lastFailureWasLock());
    db.endTransaction();
    client.endTransaction();
    EXPECT_FALSE(run("no statement"));
    EXPECT_FALSE(db.lastFailureWasLock());
}

TEST_F(StatementTest, TheChangedRowsAreThoseOfTheLastStatement) {
    EXPECT_TRUE(run("insert into t values(1), (2), (3)"));
    EXPECT_EQ(3, db.changedRows());
    EXPECT_TRUE(run("delete from t where x > 2"));
    EXPECT_EQ(1, db.changedRows());
}

TEST_F(StatementTest, AStatementWithRowsRunsToItsEnd) {
    EXPECT_TRUE(run("insert into t values(1), (2), (3) returning x"));
    EXPECT_EQ("3", rows());
}

// A negative size is in KiB.
TEST_F(StatementTest, ThePageCacheHasTheDefaultSizeUntilTablesAreCreated) {
    EXPECT_EQ("-2000", value("pragma cache_size"));
    db.cacheSchemaOf(20000);
    EXPECT_EQ("-42000", value("pragma cache_size"));
}

TEST_F(StatementTest, ThePageCacheGrowsWellAheadOfTheTablesAndIsNeverMadeSmaller) {
    db.cacheSchemaOf(100);
    EXPECT_EQ("-2200", value("pragma cache_size"));
    db.cacheSchemaOf(200);
    EXPECT_EQ("-2200", value("pragma cache_size"));
    db.cacheSchemaOf(201);
    EXPECT_EQ("-2402", value("pragma cache_size"));
    db.cacheSchemaOf(1);
    EXPECT_EQ("-2402", value("pragma cache_size"));
}

TEST_F(StatementTest, ThePageCacheGrowsTo64MiBAtMost) {
    db.cacheSchemaOf(10'000'000);
    EXPECT_EQ("-65536", value("pragma cache_size"));
}

// With SQLite's own limit they stay small, and opening a database of thousands of conversations takes half as long
// again.
TEST_F(StatementTest, TheHashTablesOfTheSchemaGrowWithIt) {
    EXPECT_EQ("1", value("select sqlite_compileoption_used('MALLOC_SOFT_LIMIT=0')"));
}

TEST(ClosedConnection, CachesNoSchema) {
    imsdk::dbUtils closed;
    closed.cacheSchemaOf(20000);
    EXPECT_FALSE(closed.isOpen());
}

TEST_F(StatementTest, TheSchemaTableCannotBeWrittenDirectly) {
    run("pragma writable_schema = on");
    EXPECT_FALSE(run("delete from sqlite_master"));
    EXPECT_EQ("0", rows());
}

TEST(ClosedConnectionTest, GivesNothingAndFailsEverything) {
    imsdk::dbUtils db;
    EXPECT_FALSE(db.isOpen());
    EXPECT_EQ(0, db.excuteNonQuery("create table t(x)"));
    EXPECT_EQ(0, db.excuteQuery("select 1").read());
    EXPECT_EQ(0, db.isExistTable("select 1"));
    EXPECT_EQ(0, db.changedRows());
}

TEST(ClosedConnectionTest, ABatchOnItIsLost) {
    imsdk::dbUtils db;
    db.beginTransaction();
    EXPECT_TRUE(db.transactionFailed());
    db.endTransaction();
    EXPECT_TRUE(db.transactionFailed());
}

// A client that searches its messages keeps an index that a trigger on the message table fills.
struct IndexKind {
    const char* table;
    const char* row;
};
class IndexedTable : public test::DatabaseTest, public testing::WithParamInterface<IndexKind> {};

TEST_P(IndexedTable, TakesRows) {
    ASSERT_TRUE(run("create table t(id integer primary key, body)"));
    ASSERT_TRUE(run(std::string("create virtual table words using ") + GetParam().table));
    ASSERT_TRUE(run(std::string("create trigger index_row after insert on t begin insert into words values(") +
                    GetParam().row + "); end"));
    imsdk::dbCommand insert(&db, "insert into t values(?, ?)");
    insert.bindParam(1, 7);
    insert.bindParam(2, "good morning");
    EXPECT_NE(0, db.excuteNonQuery(&insert)) << db.lastError();
    EXPECT_EQ("1", committed("select count(*) from t"));
    EXPECT_EQ("1", value("select count(*) from words"));
}

INSTANTIATE_TEST_SUITE_P(Extensions, IndexedTable,
                         testing::Values(IndexKind{"fts3(body)", "new.body"}, IndexKind{"fts4(body)", "new.body"},
                                         IndexKind{"fts5(body)", "new.body"},
                                         IndexKind{"rtree(id, low, high)", "new.id, 1, 2"}),
                         [](const auto& kind) {
                             return std::string(kind.param.table, std::strcspn(kind.param.table, "("));
                         });

}  // namespace
