#include <string>

#include "tests/host/db/database_test.h"

namespace {

using imsdk::dbCommand;

class CommandTest : public test::DatabaseTest {
protected:
    void SetUp() override {
        DatabaseTest::SetUp();
        ASSERT_TRUE(run("create table t(a, b, c)"));
    }
    bool execute(dbCommand& command) { return db.excuteNonQuery(&command) != 0; }
    std::string rows() { return value("select group_concat(quote(a) || quote(b) || quote(c), ' ') from t"); }
    std::string rowsAfter(dbCommand& command) {
        EXPECT_TRUE(execute(command));
        return rows();
    }
};

TEST_F(CommandTest, PlaceholdersAreCountedFromOne) {
    dbCommand command(&db, "insert into t values(?, ?, ?)");
    command.bindParam(1, "text");
    command.bindParam(2, -2147483647);
    command.bindParam(3, -9223372036854775807LL);
    EXPECT_EQ("'text'-2147483647-9223372036854775807", rowsAfter(command));
}

TEST_F(CommandTest, TheTextMayBeSetLater) {
    dbCommand command(&db);
    command.setCommandText("insert into t values(?, 2, 3)");
    command.bindParam(1, 1);
    EXPECT_EQ("123", rowsAfter(command));
}

TEST_F(CommandTest, ANullTextBindsNull) {
    dbCommand command(&db, "insert into t values(?, ?, 3)");
    command.bindParam(1, static_cast<const char*>(nullptr));
    command.bindParam(2, "");
    EXPECT_EQ("NULL''3", rowsAfter(command));
}

TEST_F(CommandTest, ValuesNeverBecomeStatementText) {
    dbCommand command(&db, "insert into t values(?, 2, 3)");
    command.bindParam(1, "'); drop table t; --");
    EXPECT_EQ("'''); drop table t; --'23", rowsAfter(command));
}

TEST_F(CommandTest, AnIndexOutsideThePlaceholdersMakesTheExecutionFail) {
    for (const int index : {-1, 0, 2}) {
        dbCommand command(&db, "insert into t values(?, 2, 3)");
        command.bindParam(1, 1);
        command.bindParam(index, "text");
        EXPECT_FALSE(execute(command)) << index;
        EXPECT_NE("", db.lastError()) << index;
    }
    EXPECT_EQ("", rows());
}

TEST_F(CommandTest, ANewTextForgivesAWrongIndex) {
    dbCommand command(&db, "insert into t values(?, 2, 3)");
    command.bindParam(2, 1LL);
    EXPECT_FALSE(execute(command));
    command.setCommandText("insert into t values(?, 2, 3)");
    command.bindParam(1, 1LL);
    EXPECT_EQ("123", rowsAfter(command));
}

TEST_F(CommandTest, ANewTextReplacesTheOldOneAndItsValues) {
    dbCommand command(&db, "insert into t values(?, 2, 3)");
    command.bindParam(1, 1);
    command.setCommandText("insert into t values(?, 'new', 3)");
    EXPECT_EQ("NULL'new'3", rowsAfter(command));
}

TEST_F(CommandTest, AValueStaysUntilItIsBoundAnew) {
    dbCommand command(&db, "insert into t values(?, ?, ?)");
    command.bindParam(1, std::string(100, 'x').c_str());
    command.bindParam(2, 2);
    command.bindParam(3, 1LL);
    EXPECT_TRUE(execute(command));
    command.bindParam(3, "one");
    EXPECT_TRUE(execute(command));
    EXPECT_EQ("2", value("select count(*) from t where length(a) = 100 and b = 2"));
    EXPECT_EQ("1 one", value("select group_concat(c, ' ') from t"));
}

TEST_F(CommandTest, APlaceholderThatWasNeverBoundIsNull) {
    dbCommand command(&db, "insert into t values(?, 2, 3)");
    EXPECT_EQ("NULL23", rowsAfter(command));
}

TEST_F(CommandTest, ABoundTextMayBeGoneBeforeTheExecution) {
    dbCommand command(&db, "insert into t values(?, 2, 3)");
    {
        const std::string text(1000, 'x');
        command.bindParam(1, text.c_str());
    }
    EXPECT_TRUE(execute(command));
    EXPECT_EQ(std::string(1000, 'x'), value("select a from t"));
}

TEST_F(CommandTest, ATextMayFollowANumberAndNull) {
    dbCommand command(&db, "insert into t values(?, 2, 3)");
    command.bindParam(1, 7);
    command.bindParam(1, static_cast<const char*>(nullptr));
    command.bindParam(1, "seven");
    EXPECT_EQ("'seven'23", rowsAfter(command));
}

TEST_F(CommandTest, AFailedBindingMakesExecutionsFailUntilItIsBoundAnew) {
    const std::string tooLarge((std::size_t{64} << 20) + 1, 'x');
    dbCommand command(&db, "insert into t values(?, 2, 3)");
    command.bindParam(1, 1);
    EXPECT_TRUE(execute(command));
    command.bindParam(1, tooLarge.c_str());
    EXPECT_FALSE(execute(command));
    EXPECT_FALSE(execute(command));
    command.bindParam(1, 4);
    EXPECT_EQ("123 423", rowsAfter(command));
}

TEST_F(CommandTest, ABindingBeforeTheDatabaseIsOpenMakesTheExecutionFail) {
    imsdk::dbUtils later;
    dbCommand command(&later, "insert into t values(?, 2, 3)");
    command.bindParam(1, 1);
    ASSERT_NE(0, later.open(path().c_str(), nullptr));
    EXPECT_EQ(0, later.excuteNonQuery(&command));
    command.bindParam(1, 1);
    EXPECT_NE(0, later.excuteNonQuery(&command));
    EXPECT_EQ("123", rows());
}

TEST_F(CommandTest, AThousandRowsGoThroughOneCommand) {
    dbCommand command(&db, "insert into t values(?, ?, ?)");
    for (int i = 0; i < 1000; ++i) {
        const std::string text = "row " + std::to_string(i);  // gone before the next execution
        command.bindParam(1, text.c_str());
        command.bindParam(2, i);
        command.bindParam(3, 9007199254740993LL + i);
        ASSERT_TRUE(execute(command));
    }
    EXPECT_EQ("1000", value("select count(*) from t where a = 'row ' || b and c = 9007199254740993 + b"));
}

TEST_F(CommandTest, AMalformedTextFailsEachTimeAndANewOneRecovers) {
    dbCommand command(&db, "insert into nowhere values(?)");
    for (int i = 0; i < 3; ++i) {
        command.bindParam(1, i);
        EXPECT_FALSE(execute(command));
    }
    command.setCommandText("insert into t values(?, 2, 3)");
    command.bindParam(1, 1);
    EXPECT_EQ("123", rowsAfter(command));
}

TEST_F(CommandTest, ATextWithTwoStatementsFailsAndNothingRuns) {
    dbCommand command(&db, "insert into t values(?, 2, 3); drop table t");
    command.bindParam(1, 1);
    EXPECT_FALSE(execute(command));
    EXPECT_EQ("0", value("select count(*) from t"));
}

TEST_F(CommandTest, AMissingOrEmptyTextFails) {
    dbCommand none(&db);
    EXPECT_FALSE(execute(none));
    dbCommand null(&db, nullptr);
    null.bindParam(1, 1);
    EXPECT_FALSE(execute(null));
    dbCommand empty(&db, "");
    EXPECT_FALSE(execute(empty));
}

TEST_F(CommandTest, ARefusedRowLeavesTheCommandUsable) {
    ASSERT_TRUE(run("create unique index u on t(a)"));
    dbCommand command(&db, "insert into t values(?, 2, 3)");
    command.bindParam(1, 1);
    EXPECT_TRUE(execute(command));
    command.bindParam(1, 1);
    EXPECT_FALSE(execute(command));
    EXPECT_TRUE(db.lastFailureWasDuplicate());
    command.bindParam(1, 4);
    EXPECT_EQ("123 423", rowsAfter(command));
}

TEST_F(CommandTest, ATableCreatedAfterwardsIsNotSeenBeforeANewText) {
    dbCommand command(&db, "insert into later values(1)");
    EXPECT_FALSE(execute(command));
    EXPECT_TRUE(run("create table later(x)"));
    EXPECT_FALSE(execute(command));
    command.setCommandText("insert into later values(1)");
    EXPECT_TRUE(execute(command));
}

TEST_F(CommandTest, IsPreparedAnewAfterAnotherFileWasOpened) {
    dbCommand command(&db, "insert into t values(?, 2, 3)");
    command.bindParam(1, 1);
    EXPECT_TRUE(execute(command));
    test::makeDatabase(db, dir.at("other.db"));
    ASSERT_TRUE(run("create table t(a, b, c)"));
    command.bindParam(1, 7);
    EXPECT_EQ("723", rowsAfter(command));
    EXPECT_EQ("1", committed("select a from t"));
}

TEST_F(CommandTest, ValuesStayWhenAnotherFileIsOpened) {
    dbCommand command(&db, "insert into t values(?, ?, 3)");
    command.bindParam(1, "text");
    command.bindParam(2, 2);
    test::makeDatabase(db, dir.at("other.db"));
    ASSERT_TRUE(run("create table t(a, b, c)"));
    EXPECT_EQ("'text'23", rowsAfter(command));
}

TEST_F(CommandTest, FailsWhenItsConnectionIsClosed) {
    dbCommand command(&db, "insert into t values(?, 2, 3)");
    command.bindParam(1, 1);
    EXPECT_EQ(0, db.open(dir.at("missing.db").c_str(), nullptr));
    EXPECT_FALSE(execute(command));
    command.bindParam(1, 1);
    EXPECT_FALSE(execute(command));
}

TEST(CommandWithoutConnectionTest, Fails) {
    imsdk::dbUtils closed;
    dbCommand unopened(&closed, "select 1");
    unopened.bindParam(1, "a");
    EXPECT_EQ(0, closed.excuteNonQuery(&unopened));
    dbCommand none(nullptr, "select 1");
    none.bindParam(1, 1LL);
    EXPECT_EQ(0, closed.excuteNonQuery(&none));
    EXPECT_EQ(0, closed.excuteNonQuery(static_cast<dbCommand*>(nullptr)));
}

}  // namespace
