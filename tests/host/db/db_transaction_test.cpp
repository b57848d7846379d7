#include <chrono>
#include <string>
#include <thread>

#include "tests/host/db/database_test.h"

namespace {

using namespace std::chrono_literals;

class TransactionTest : public test::DatabaseTest {
protected:
    void SetUp() override {
        DatabaseTest::SetUp();
        ASSERT_TRUE(run("create table t(x unique)"));
    }
    bool insert(const std::string& value) { return run("insert into t values(" + value + ")"); }
    std::string rows() const { return committed("select group_concat(x, ' ') from t"); }

    std::string rowsAfterTheEnd() {
        db.endTransaction();
        return rows();
    }

    // Inserts until the file cannot grow any more.
    void fillTheDisk() {
        ASSERT_TRUE(run("pragma max_page_count = 16"));
        int i = 0;
        while (i < 100 && insert("'" + std::to_string(i) + "' || hex(zeroblob(4000))"))
            ++i;
        ASSERT_GT(i, 0);
        ASSERT_LT(i, 100);
    }
};

TEST_F(TransactionTest, TheEndMakesTheWritesDurable) {
    db.beginTransaction();
    EXPECT_TRUE(insert("1") && insert("2"));
    EXPECT_EQ("", rows());
    EXPECT_EQ("1 2", rowsAfterTheEnd());
    EXPECT_FALSE(db.transactionFailed());
}

TEST_F(TransactionTest, WithoutABatchEachStatementIsDurable) {
    EXPECT_TRUE(insert("1"));
    EXPECT_EQ("1", rows());
}

TEST_F(TransactionTest, OnlyTheOutermostPairCounts) {
    db.beginTransaction();
    EXPECT_TRUE(insert("1"));
    db.beginTransaction();
    EXPECT_TRUE(insert("2"));
    EXPECT_EQ("", rowsAfterTheEnd());
    EXPECT_TRUE(insert("3"));
    EXPECT_EQ("1 2 3", rowsAfterTheEnd());
}

TEST_F(TransactionTest, AnEndWithoutABeginningDoesNothing) {
    db.endTransaction();
    EXPECT_FALSE(db.transactionFailed());
    db.beginTransaction();
    EXPECT_TRUE(insert("1"));
    EXPECT_EQ("", rows());
    EXPECT_EQ("1", rowsAfterTheEnd());
}

TEST_F(TransactionTest, InsideAHostsTransactionTheBatchIsCommittedByTheHost) {
    ASSERT_TRUE(run("begin") && insert("1"));
    db.beginTransaction();
    EXPECT_TRUE(insert("2"));
    db.endTransaction();
    EXPECT_FALSE(db.transactionFailed());
    EXPECT_EQ("", rows());
    EXPECT_TRUE(insert("3") && run("commit"));
    EXPECT_EQ("1 2 3", rows());
}

TEST_F(TransactionTest, InsideAHostsTransactionTheBatchIsLostWithTheHostsRollback) {
    ASSERT_TRUE(run("begin") && insert("1"));
    db.beginTransaction();
    EXPECT_TRUE(insert("2"));
    db.endTransaction();
    EXPECT_TRUE(run("rollback"));
    EXPECT_EQ("", rows());
    EXPECT_TRUE(insert("3"));
    EXPECT_EQ("3", rows());
}

TEST_F(TransactionTest, ALostBatchInsideAHostsTransactionLeavesTheHostsOwnWrites) {
    ASSERT_TRUE(run("begin") && insert("1"));
    db.beginTransaction();
    EXPECT_TRUE(insert("2"));
    db.abandonTransaction();
    EXPECT_FALSE(insert("3"));
    db.endTransaction();
    EXPECT_TRUE(db.transactionFailed());
    EXPECT_TRUE(insert("4") && run("commit"));
    EXPECT_EQ("1 4", rows());
}

TEST_F(TransactionTest, BatchesFollowOneAnotherInsideAHostsTransaction) {
    ASSERT_TRUE(run("begin"));
    for (const char* value : {"1", "2"}) {
        db.beginTransaction();
        EXPECT_TRUE(insert(value));
        db.endTransaction();
    }
    EXPECT_TRUE(run("commit"));
    EXPECT_EQ("1 2", rows());
    db.beginTransaction();
    EXPECT_TRUE(insert("3"));
    EXPECT_EQ("1 2 3", rowsAfterTheEnd());
}

TEST_F(TransactionTest, AnUnfinishedBatchIsLostWithItsConnection) {
    {
        imsdk::dbUtils other;
        ASSERT_NE(0, other.open(path().c_str(), nullptr));
        other.beginTransaction();
        EXPECT_NE(0, other.excuteNonQuery("insert into t values(1)"));
    }
    EXPECT_EQ("", rows());
    EXPECT_TRUE(insert("2"));
}

TEST_F(TransactionTest, OpeningTheSameFileAgainKeepsTheBatch) {
    db.beginTransaction();
    EXPECT_TRUE(insert("1"));
    EXPECT_NE(0, db.open(path().c_str(), nullptr));
    EXPECT_TRUE(insert("2"));
    EXPECT_EQ("", rows());
    EXPECT_EQ("1 2", rowsAfterTheEnd());
}

TEST_F(TransactionTest, ARefusedRowKeepsTheBatch) {
    db.beginTransaction();
    EXPECT_TRUE(insert("1"));
    EXPECT_FALSE(insert("1"));
    EXPECT_FALSE(db.transactionFailed());
    EXPECT_TRUE(insert("2"));
    db.endTransaction();
    EXPECT_FALSE(db.transactionFailed());
    EXPECT_EQ("1 2", rows());
}

TEST_F(TransactionTest, AMalformedStatementKeepsTheBatch) {
    db.beginTransaction();
    EXPECT_TRUE(insert("1"));
    EXPECT_FALSE(run("insert into nowhere values(1)"));
    EXPECT_FALSE(run("insert into t values(2); insert into t values(3)"));
    EXPECT_EQ(0, db.excuteQuery("select * from nowhere").read());
    EXPECT_TRUE(insert("4"));
    EXPECT_EQ("1 4", rowsAfterTheEnd());
}

TEST_F(TransactionTest, ARefusalThatEndsTheTransactionLosesTheBatch) {
    EXPECT_TRUE(insert("1"));
    db.beginTransaction();
    EXPECT_TRUE(insert("2"));
    EXPECT_FALSE(run("insert or rollback into t values(1)"));
    EXPECT_TRUE(db.transactionFailed());
    EXPECT_FALSE(insert("3"));
    EXPECT_EQ("1", rowsAfterTheEnd());
}

TEST_F(TransactionTest, ACommitThatIsRefusedRollsTheBatchBack) {
    ASSERT_TRUE(run("pragma foreign_keys = on"));
    ASSERT_TRUE(run("create table child(x references t(x) deferrable initially deferred)"));
    db.beginTransaction();
    EXPECT_TRUE(insert("1") && run("insert into child values(2)"));
    EXPECT_FALSE(db.transactionFailed());
    db.endTransaction();
    EXPECT_TRUE(db.transactionFailed());
    EXPECT_EQ("", rows());
}

TEST_F(TransactionTest, AFullDiskLosesTheWholeBatch) {
    EXPECT_TRUE(insert("'before'"));
    db.beginTransaction();
    EXPECT_TRUE(insert("'first'"));
    fillTheDisk();
    EXPECT_TRUE(db.transactionFailed());
    EXPECT_FALSE(insert("'small'"));
    db.endTransaction();
    EXPECT_TRUE(db.transactionFailed());
    EXPECT_NE(std::string::npos, db.lastError().find("full")) << db.lastError();
    EXPECT_EQ("before", rows());
}

TEST_F(TransactionTest, ALostBatchTakesNoWritesByCommand) {
    db.beginTransaction();
    fillTheDisk();
    imsdk::dbCommand command(&db, "insert into t values(?)");
    command.bindParam(1, "small");
    EXPECT_EQ(0, db.excuteNonQuery(&command));
    EXPECT_EQ("", rowsAfterTheEnd());
}

TEST_F(TransactionTest, ALostBatchTakesNoWritesByQuery) {
    db.beginTransaction();
    fillTheDisk();
    EXPECT_EQ(0, db.excuteQuery("insert into t values('small') returning x").read());
    EXPECT_EQ("", rowsAfterTheEnd());
}

TEST_F(TransactionTest, AnInnerEndDoesNotReviveALostBatch) {
    db.beginTransaction();
    db.beginTransaction();
    fillTheDisk();
    db.endTransaction();
    db.beginTransaction();
    EXPECT_TRUE(db.transactionFailed());
    EXPECT_FALSE(insert("'small'"));
    db.endTransaction();
    EXPECT_EQ("", rowsAfterTheEnd());
}

TEST_F(TransactionTest, TheConnectionWorksAgainAfterALostBatch) {
    db.beginTransaction();
    fillTheDisk();
    db.endTransaction();
    ASSERT_TRUE(run("pragma max_page_count = 100000"));
    EXPECT_TRUE(insert("1"));
    db.beginTransaction();
    EXPECT_FALSE(db.transactionFailed());
    EXPECT_TRUE(insert("2"));
    EXPECT_EQ("1 2", rowsAfterTheEnd());
}

// Another connection, such as the running client's, that holds the write lock.
class LockedTransactionTest : public TransactionTest {
protected:
    void SetUp() override {
        TransactionTest::SetUp();
        ASSERT_NE(0, client.open(path().c_str(), nullptr));
        client.beginTransaction();
        ASSERT_FALSE(client.transactionFailed());
    }
    imsdk::dbUtils client;
};

TEST_F(LockedTransactionTest, TheLockIsWaitedForAndThenTheBatchIsLost) {
    const auto before = std::chrono::steady_clock::now();
    db.beginTransaction();
    EXPECT_GE(std::chrono::steady_clock::now() - before, 2s);
    EXPECT_TRUE(db.transactionFailed());
    EXPECT_NE(std::string::npos, db.lastError().find("locked")) << db.lastError();
    db.endTransaction();
    EXPECT_TRUE(db.transactionFailed());
}

TEST_F(LockedTransactionTest, ABatchWithoutTheLockWritesNothingEvenWhenTheLockIsFreeAgain) {
    db.beginTransaction();
    client.endTransaction();
    EXPECT_FALSE(insert("1"));
    imsdk::dbCommand command(&db, "insert into t values(2)");
    EXPECT_EQ(0, db.excuteNonQuery(&command));
    EXPECT_EQ(0, db.excuteQuery("insert into t values(3) returning x").read());
    EXPECT_EQ("", rowsAfterTheEnd());
    EXPECT_TRUE(insert("4"));
    EXPECT_EQ("4", rows());
}

TEST_F(LockedTransactionTest, AReaderWorksWhileAnotherConnectionHoldsTheLock) {
    EXPECT_NE(0, client.excuteNonQuery("insert into t values(1)"));
    EXPECT_EQ("0", value("select count(*) from t"));
    client.endTransaction();
    EXPECT_EQ("1", value("select count(*) from t"));
}

TEST_F(LockedTransactionTest, ALockReleasedInTimeLetsTheBatchSucceed) {
    EXPECT_NE(0, client.excuteNonQuery("insert into t values(1)"));
    std::thread release([this] {
        std::this_thread::sleep_for(300ms);
        client.endTransaction();
    });
    db.beginTransaction();
    release.join();
    EXPECT_FALSE(db.transactionFailed());
    EXPECT_TRUE(insert("2"));
    EXPECT_EQ("1 2", rowsAfterTheEnd());
}

}  // namespace
