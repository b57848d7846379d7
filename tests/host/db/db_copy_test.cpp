// Copies of whole databases.
#include <gtest/gtest.h>

#include "host/dbUtils.h"
#include "tests/support/database.h"
#include "tests/support/temp_dir.h"

namespace {

constexpr const char* kKey = "x'c0ffee0102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d'";

class CopyOfADatabase : public testing::Test {
protected:
    void make(const char* name, const std::vector<std::string>& statements, const char* key) const {
        test::runSql(home_.at(name), statements, key);
    }

    int copy(const char* fromKey, const char* toKey) {
        EXPECT_NE(0, source_.open(home_.at("source.db").c_str(), fromKey));
        EXPECT_NE(0, target_.open(home_.at("target.db").c_str(), toKey));
        return source_.copyTo(target_);
    }

    test::TempDir home_;
    imsdk::dbUtils source_;
    imsdk::dbUtils target_;
};

const std::vector<std::string> kFilled = {"create table t(a)", "insert into t values('one'), ('two')"};

TEST_F(CopyOfADatabase, HasAllThatTheDatabaseHas) {
    make("source.db", kFilled, nullptr);
    make("target.db", {}, nullptr);
    EXPECT_NE(0, copy(nullptr, nullptr));
    EXPECT_EQ("one\ntwo", test::queryText(home_.at("target.db"), "select a from t", 1));
}

TEST_F(CopyOfADatabase, LosesWhatItHad) {
    make("source.db", kFilled, nullptr);
    make("target.db", {"create table mine(b)"}, nullptr);
    EXPECT_NE(0, copy(nullptr, nullptr));
    EXPECT_EQ("t", test::queryText(home_.at("target.db"), "select name from sqlite_master", 1));
}

TEST_F(CopyOfADatabase, StaysEncrypted) {
    make("source.db", kFilled, kKey);
    make("target.db", {"create table mine(b)"}, kKey);
    EXPECT_NE(0, copy(kKey, kKey));
    EXPECT_EQ("one\ntwo", test::queryText(home_.at("target.db"), "select a from t", 1, kKey));
    EXPECT_EQ(std::string::npos, test::readFile(home_.at("target.db")).find("one"));
}

TEST_F(CopyOfADatabase, HasWhatAnotherProcessHasCommittedToTheWriteAheadLog) {
    make("source.db", {"pragma journal_mode = wal", "create table t(a)"}, nullptr);
    make("target.db", {}, nullptr);
    imsdk::dbUtils writer;
    ASSERT_NE(0, writer.open(home_.at("source.db").c_str(), nullptr));
    ASSERT_NE(0, writer.excuteNonQuery("insert into t values('late')"));
    EXPECT_NE(0, copy(nullptr, nullptr));
    EXPECT_EQ("late", test::queryText(home_.at("target.db"), "select a from t", 1));
}

TEST_F(CopyOfADatabase, IntoOneThatAnotherProcessHoldsFailsAndSaysWhy) {
    make("source.db", kFilled, nullptr);
    make("target.db", {"create table mine(b)"}, nullptr);
    imsdk::dbUtils holder;
    ASSERT_NE(0, holder.open(home_.at("target.db").c_str(), nullptr));
    holder.beginTransaction();
    EXPECT_EQ(0, copy(nullptr, nullptr));
    EXPECT_NE("", target_.lastError());
    holder.endTransaction();
    EXPECT_EQ("mine", test::queryText(home_.at("target.db"), "select name from sqlite_master", 1));
}

TEST_F(CopyOfADatabase, OfOneThatIsNotOpenFails) {
    make("target.db", {}, nullptr);
    ASSERT_NE(0, target_.open(home_.at("target.db").c_str(), nullptr));
    EXPECT_EQ(0, source_.copyTo(target_));
    EXPECT_EQ(0, target_.copyTo(source_));
}

}  // namespace
