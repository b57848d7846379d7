// Faults that once did harm, each met for certain. The sweeps meet some in their long form only, and others not any
// more: the pages of the list of tables, for example, are in the cache since databases are looked at when they open.
#include <gtest/gtest.h>

#include <functional>
#include <new>

#include "host/json/json_tree.h"
#include "tests/faults/fault_calls.h"
#include "tests/faults/fault_memory.h"
#include "tests/faults/fault_world.h"
#include "tests/support/database.h"
#include "tests/support/temp_dir.h"
#include "transfer/dbTrans.h"

namespace test {
namespace {

class SingleFault : public testing::Test {
protected:
    void SetUp() override { makeWorld(Operation::exportAll, home_.path()); }

    std::string account() const { return home_.path() + "/account"; }
    std::string database() const { return account() + "/db/imsg.db"; }

    TempDir home_;
};

TEST_F(SingleFault, InTheListOfTablesIsReported) {
    dbTrans transfer;
    transfer.rootPath = account();
    ASSERT_NE(0, transfer.dbOpen());
    // Somebody else changes the schema: what the connection holds of it counts no more.
    runSql(database(), {"create table other(x)"});
    {
        const InjectedFault fault({Call::read, Failure::inputOutput, Duration::fromThenOn}, 1);
        transfer.getTables();
    }
    EXPECT_TRUE(transfer.tableNames.empty());
    ASSERT_EQ(1U, transfer.report.skipped.size());
    EXPECT_EQ("the list of tables", transfer.report.skipped[0].what);
}

// Lets the 1st, 2nd, ... look at a file fail in an import into an account with a picture of the package's name.
void failEachLook(Duration duration, const std::function<void(const std::string& path, const Ending&)>& check) {
    bool struck = true;
    for (long long nth = 1; struck; ++nth) {
        const TempDir home;
        makeWorld(Operation::importFresh, home.path());
        home.write("account/image/a.jpg", "mine");
        const Ending ending = run(Operation::importFresh, home.path(), [&](const std::function<void()>& operation) {
            const InjectedFault fault({Call::look, Failure::inputOutput, duration}, nth);
            operation();
            struck = fault.struck();
        });
        check(home.path(), ending);
    }
}

TEST(FailingLook, LetsAnImportOverwriteNoFileOfTheUsers) {
    failEachLook(Duration::once, [](const std::string& path, const Ending& ending) {
        EXPECT_EQ("mine", readFile(path + "/account/image/a.jpg")) << ending.words;
    });
}

TEST(FailingLook, AtAMessageFileIsReportedAndEndsTheReading) {
    bool reported = false;
    failEachLook(Duration::fromThenOn, [&](const std::string& /*path*/, const Ending& ending) {
        reported = reported || ending.words.find("msg_0.mg: whether this message file is there") != std::string::npos;
    });
    EXPECT_TRUE(reported);
}

TEST(FailingListing, OfAFolderOfTheTreeIsReported) {
    const TempDir home;
    makeWorld(Operation::importTree, home.path());
    dbTrans transfer;
    std::vector<std::string> files;
    {
        const InjectedFault fault({Call::list, Failure::inputOutput, Duration::once}, 2);
        transfer.getfiles(home.at("backup/qelbackup/1001"), files, ".xx");
    }
    ASSERT_EQ(1U, transfer.report.skipped.size());
    EXPECT_NE(std::string::npos, transfer.report.skipped[0].reason.find("cannot be searched for .xx files"));
}

TEST_F(SingleFault, AtTheEndOfATransactionNeedsNoMemoryForItsReason) {
    imsdk::dbUtils db;
    ASSERT_NE(0, db.open(database().c_str(), nullptr));
    db.beginTransaction();
    ASSERT_NE(0, db.excuteNonQuery("delete from im_msg_11"));
    {
        const InjectedFault fault({Call::write, Failure::diskFull, Duration::fromThenOn}, 1);
        const RefusedMemory refused(Memory::objects, 1, true);
        EXPECT_NO_THROW(db.endTransaction());
    }
    EXPECT_TRUE(db.transactionFailed());
    EXPECT_EQ("20", queryText(database(), "select count(*) from im_msg_11", 1));
}

TEST_F(SingleFault, OfTheDatabasesMemoryLetsNoOpeningCrash) {
    bool struck = true;
    for (long long nth = 1; struck; ++nth) {
        const RefusedMemory refused(Memory::database, nth, false);
        imsdk::dbUtils db;
        if (db.open(database().c_str(), nullptr) == 0) {
            EXPECT_NE("", db.lastError()) << nth;
        }
        struck = refused.struck();
    }
}

TEST_F(SingleFault, OfMemoryDoesNotMakeATextPassForBrokenJson) {
    long long nth = 1;
    for (bool struck = true; struck; ++nth) {
        std::string text = R"({"mediaUrl": ["x", 1, true, null, {}]})";
        bool thrown = false;
        const RefusedMemory refused(Memory::json, nth, false);
        try {
            static_cast<void>(tools::readJsonTree(text));
        } catch (const std::bad_alloc&) {
            thrown = true;
        }
        struck = refused.struck();
        EXPECT_EQ(struck, thrown) << "request " << nth;
    }
    EXPECT_LT(10, nth);
}

TEST_F(SingleFault, OfMemoryGivesHostsNoJsonTreeAndNoException) {
    const char* const text = R"({"a name of some length": ["a text of some length", 1, {}]} // the end of the text)";
    for (const auto parse : {json_parse_string, json_parse_string_with_comments}) {
        bool struck = true;
        for (long long nth = 1; struck; ++nth) {
            const RefusedMemory refused(Memory::objects, nth, false);
            const tools::JsonDocument tree(parse(text));
            struck = refused.struck();
            EXPECT_EQ(struck, tree == nullptr) << "request " << nth;
        }
    }
}

}  // namespace
}  // namespace test
