// The scope of one transaction.
#include <stdexcept>

#include "tests/transfer/export/account_fixture.h"

namespace {

using test::AccountTest;

class TransactionGuard : public AccountTest {};

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
