#include <array>
#include <limits>
#include <string>
#include <utility>

#include "tests/host/db/database_test.h"

namespace {

template <class Number>
Number numberOf(imsdk::dbDataReader& reader, int column = 0) {
    Number value = 77;  // what was there before must not show through
    reader.getColumnValue(column, value);
    return value;
}

class ReaderTest : public test::DatabaseTest {
protected:
    imsdk::dbDataReader query(const std::string& sql) { return db.excuteQuery(sql.c_str()); }

    // A cursor on the only row of "select <expression>".
    imsdk::dbDataReader rowOf(const std::string& expression) {
        imsdk::dbDataReader reader = query("select " + expression);
        EXPECT_NE(0, reader.read()) << expression;
        return reader;
    }
    template <class Number>
    Number as(const std::string& expression) {
        imsdk::dbDataReader reader = rowOf(expression);
        return numberOf<Number>(reader);
    }
    std::string text(const std::string& expression) { return rowOf(expression).getColumnValue(0); }
};

TEST_F(ReaderTest, GivesTheRowsInOrderAndThenEnds) {
    imsdk::dbDataReader reader = query("values (1, 'a'), (2, 'b')");
    EXPECT_NE(0, reader.read());
    EXPECT_EQ("1a", reader.getColumnValue(0) + reader.getColumnValue(1));
    EXPECT_NE(0, reader.read());
    EXPECT_EQ("2b", reader.getColumnValue(0) + reader.getColumnValue(1));
    EXPECT_EQ(0, reader.read());
    EXPECT_FALSE(reader.failed());
}

TEST_F(ReaderTest, AnEmptyResultEndsAtOnce) {
    imsdk::dbDataReader reader = query("select 1 where 0");
    EXPECT_EQ(0, reader.read());
    EXPECT_FALSE(reader.failed());
}

TEST_F(ReaderTest, StaysAtTheEnd) {
    EXPECT_TRUE(run("create table t(x)"));
    imsdk::dbDataReader reader = query("select x from t");
    EXPECT_EQ(0, reader.read());
    EXPECT_TRUE(run("insert into t values(1)"));
    EXPECT_EQ(0, reader.read());
    EXPECT_EQ(0, reader.read());
    EXPECT_EQ("", reader.getColumnValue(0));
}

TEST_F(ReaderTest, GivesNothingBeforeTheFirstRowAndAfterTheLast) {
    imsdk::dbDataReader reader = query("select 5");
    EXPECT_EQ("", reader.getColumnValue(0));
    EXPECT_EQ(0, numberOf<long long>(reader));
    EXPECT_NE(0, reader.read());
    EXPECT_EQ(5, numberOf<int>(reader));
    EXPECT_EQ(0, reader.read());
    EXPECT_EQ("", reader.getColumnValue(0));
    EXPECT_EQ(0, numberOf<int>(reader));
}

TEST_F(ReaderTest, AFailureHalfWayIsToldApartFromTheEnd) {
    EXPECT_TRUE(run("create table t(x)") && run("insert into t values(-1), (-9223372036854775808)"));
    imsdk::dbDataReader reader = query("select abs(x) from t order by rowid");
    EXPECT_NE(0, reader.read());
    EXPECT_FALSE(reader.failed());
    EXPECT_EQ(0, reader.read());
    EXPECT_TRUE(reader.failed());
    EXPECT_EQ(0, reader.read());
    EXPECT_NE("", db.lastError());
}

TEST_F(ReaderTest, OutlivesItsConnectionObject) {
    imsdk::dbDataReader reader;
    {
        imsdk::dbUtils other;
        ASSERT_NE(0, other.open(path().c_str(), nullptr));
        reader = other.excuteQuery("values ('a'), ('b')");
        EXPECT_NE(0, reader.read());
    }
    EXPECT_EQ("a", reader.getColumnValue(0));
    EXPECT_NE(0, reader.read());
    EXPECT_EQ("b", reader.getColumnValue(0));
    EXPECT_EQ(0, reader.read());
}

TEST_F(ReaderTest, OutlivesTheReopeningOfItsConnection) {
    imsdk::dbDataReader reader = query("values ('a'), ('b')");
    EXPECT_NE(0, reader.read());
    EXPECT_NE(0, db.open(dir.write("other.db", "").c_str(), nullptr));
    EXPECT_NE(0, reader.read());
    EXPECT_EQ("b", reader.getColumnValue(0));
}

TEST_F(ReaderTest, AMovedFromReaderIsEmpty) {
    imsdk::dbDataReader first = rowOf("'a'");
    imsdk::dbDataReader second = std::move(first);
    EXPECT_EQ("a", second.getColumnValue(0));
    // NOLINTBEGIN(bugprone-use-after-move): what remains is what is tested
    EXPECT_EQ(0, first.read());
    EXPECT_EQ("", first.getColumnValue(0));
    EXPECT_EQ(0, numberOf<signed char>(first));
    // NOLINTEND(bugprone-use-after-move)
}

TEST_F(ReaderTest, AssignmentReplacesTheCursor) {
    imsdk::dbDataReader reader = rowOf("'a'");
    reader = rowOf("'b'");
    EXPECT_EQ("b", reader.getColumnValue(0));
}

TEST(DefaultReaderTest, HasNoRows) {
    imsdk::dbDataReader reader;
    EXPECT_EQ(0, reader.read());
    EXPECT_TRUE(reader.failed());
    EXPECT_EQ("", reader.getColumnValue(0));
    EXPECT_EQ(0, numberOf<long long>(reader));
}

TEST_F(ReaderTest, NullIsAnEmptyTextAndZero) {
    EXPECT_EQ("", text("null"));
    EXPECT_EQ(0, as<signed char>("null"));
    EXPECT_EQ(0, as<int>("null"));
    EXPECT_EQ(0, as<long long>("null"));
}

TEST_F(ReaderTest, SignedCharsKeepTheLowEightBits) {
    EXPECT_EQ(-1, as<signed char>("255"));
    EXPECT_EQ(-1, as<signed char>("-1"));
    EXPECT_EQ(127, as<signed char>("127"));
    EXPECT_EQ(-128, as<signed char>("128"));
    EXPECT_EQ(0, as<signed char>("256"));
}

TEST_F(ReaderTest, IntsKeepTheLowThirtyTwoBits) {
    EXPECT_EQ(-1, as<int>("4294967295"));
    EXPECT_EQ(std::numeric_limits<int>::max(), as<int>("2147483647"));
    EXPECT_EQ(std::numeric_limits<int>::min(), as<int>("2147483648"));
    EXPECT_EQ(1, as<int>("4294967297"));
}

TEST_F(ReaderTest, LongLongsAreExact) {
    EXPECT_EQ(std::numeric_limits<long long>::max(), as<long long>("9223372036854775807"));
    EXPECT_EQ(std::numeric_limits<long long>::min(), as<long long>("-9223372036854775808"));
    EXPECT_EQ(9007199254740993, as<long long>("9007199254740993"));
}

TEST_F(ReaderTest, TextsAndFractionsAreReadAsTheirLeadingInteger) {
    EXPECT_EQ(12, as<int>("'12abc'"));
    EXPECT_EQ(0, as<int>("'abc'"));
    EXPECT_EQ(1, as<int>("1.9"));
    EXPECT_EQ(-1, as<long long>("-1.9"));
    EXPECT_EQ(std::numeric_limits<long long>::max(), as<long long>("1e300"));
}

TEST_F(ReaderTest, NumbersAreReadAsTheirText) {
    EXPECT_EQ("-9223372036854775808", text("-9223372036854775808"));
    EXPECT_EQ("1.5", text("1.5"));
}

TEST_F(ReaderTest, TextsKeepAllTheirBytes) {
    EXPECT_EQ(std::string("a\0b", 3), text("cast(x'610062' as text)"));
    EXPECT_EQ(std::string("\0\xFF", 2), text("x'00FF'"));
    EXPECT_EQ("\xF0\x9F\x98\x80", text("'\xF0\x9F\x98\x80'"));
    EXPECT_EQ(1000000U, text("hex(zeroblob(500000))").size());
}

TEST_F(ReaderTest, AColumnThatDoesNotExistIsLikeNull) {
    imsdk::dbDataReader reader = rowOf("5");
    for (const int column : {-1, 1, 1000, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        EXPECT_EQ("", reader.getColumnValue(column)) << column;
        EXPECT_EQ(0, numberOf<signed char>(reader, column)) << column;
        EXPECT_EQ(0, numberOf<int>(reader, column)) << column;
        EXPECT_EQ(0, numberOf<long long>(reader, column)) << column;
    }
}

TEST_F(ReaderTest, RefillingATextReplacesWhatItHeld) {
    imsdk::dbDataReader reader = rowOf("'new', null");
    std::string value = "much longer than before";
    reader.getColumnValue(0, value);
    EXPECT_EQ("new", value);
    reader.getColumnValue(1, value);
    EXPECT_EQ("", value);
}

TEST_F(ReaderTest, TheEndOfTheRowsReleasesTheFile) {
    EXPECT_TRUE(run("create table t(x)") && run("insert into t values(1)"));
    imsdk::dbDataReader reader = query("select x from t");
    EXPECT_NE(0, reader.read());
    EXPECT_EQ(0, reader.read());
    imsdk::dbUtils other;
    ASSERT_NE(0, other.open(path().c_str(), nullptr));
    EXPECT_NE(0, other.excuteNonQuery("insert into t values(2)")) << other.lastError();
}

}  // namespace
