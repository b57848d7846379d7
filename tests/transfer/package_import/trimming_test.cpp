// Cutting the table that the host names back to its newest rows.
#include <limits>

#include "tests/transfer/package_import/import_fixture.h"

namespace test {
namespace {

// A host that counts rows its own way.
class CountingHost : public dbTrans {
public:
    int countRows(int what, const char* condition, int flags) override {
        ++calls;
        arguments = std::to_string(what) + (condition == nullptr ? " null " : " text ") + std::to_string(flags);
        return count;
    }

    int count = 0;
    int calls = 0;
    std::string arguments;
};

class Trimming : public ImportFixture {
protected:
    Trimming() {
        transfer_.trimTable = "im_msg_5";
        host_.trimTable = "im_msg_5";
        host_.rootPath = transfer_.rootPath;
    }

    // Rows 1 to `count`, each with its id as time.
    void fill(const std::string& table, int count) {
        runSql(mainPath(), {"create table " + table + "(msgID BIGINT PRIMARY KEY, time_ BIGINT)"});
        runSql(mainPath(),
               {"insert into " + table + " with recursive c(x) as (select 1 union all select x + 1 from c where x < " +
                std::to_string(count) + ") select x, x from c"});
        ASSERT_NE(0, transfer_.dbOpen());
        ASSERT_NE(0, host_.dbOpen());
    }
    std::string countAndFirst(const std::string& table = "im_msg_5") const {
        return mainRows("select count(*), min(msgID) from " + table, 2);
    }

    CountingHost host_;
};

TEST_F(Trimming, Leaves5000RowsAlone) {
    fill("im_msg_5", 5000);
    EXPECT_EQ(5000, transfer_.checkMsgCount());
    EXPECT_EQ("5000|1", countAndFirst());
}

TEST_F(Trimming, Cuts5001RowsBackToTheNewest3000) {
    fill("im_msg_5", 5001);
    EXPECT_EQ(1, transfer_.checkMsgCount());
    EXPECT_EQ("3000|2002", countAndFirst());
    EXPECT_EQ(2001, transfer_.report.messagesTrimmed);
}

TEST_F(Trimming, GoesByTimeAndNotById) {
    fill("im_msg_5", 5001);
    runSql(mainPath(), {"update im_msg_5 set time_ = -time_"});
    EXPECT_EQ(1, transfer_.checkMsgCount());
    EXPECT_EQ("3000|1", countAndFirst());
}

TEST_F(Trimming, CutsAllRowsThatShareATimeWithACutOne) {
    fill("im_msg_5", 5001);
    runSql(mainPath(), {"update im_msg_5 set time_ = 2001 where msgID between 2001 and 2100"});
    EXPECT_EQ(1, transfer_.checkMsgCount());
    EXPECT_EQ("2901|2101", countAndFirst());
}

TEST_F(Trimming, CutsEveryRowWhenAllTimesAreEqual) {
    fill("im_msg_5", 5001);
    runSql(mainPath(), {"update im_msg_5 set time_ = 1"});
    EXPECT_EQ(1, transfer_.checkMsgCount());
    EXPECT_EQ("0|", countAndFirst());
}

TEST_F(Trimming, TouchesNoOtherTable) {
    fill("im_msg_5", 5001);
    fill("im_msg_6", 5001);
    EXPECT_EQ(1, transfer_.checkMsgCount());
    EXPECT_EQ("5001|1", countAndFirst("im_msg_6"));
}

TEST_F(Trimming, CountsZeroWithoutATable) {
    fill("im_msg_6", 5001);
    EXPECT_EQ(0, transfer_.checkMsgCount());
    transfer_.trimTable.clear();
    EXPECT_EQ(0, transfer_.checkMsgCount());
    EXPECT_EQ("5001|1", countAndFirst("im_msg_6"));
}

TEST_F(Trimming, CountsZeroOnADatabaseThatIsNotOpen) {
    EXPECT_EQ(0, transfer_.checkMsgCount());
}

TEST_F(Trimming, CountsAndCutsOnlyTablesOfAPlainName) {
    fill("im_msg_5", 5001);
    for (const char* name : {"im_msg_5 where 1", "im_msg_5;drop table im_msg_5", "im_msg_5--", "(select 1)",
                             "'im_msg_5'", "im_msg_5,im_msg_5", "main.im_msg_5"}) {
        transfer_.trimTable = name;
        host_.trimTable = name;
        host_.count = 6000;
        EXPECT_EQ(0, transfer_.checkMsgCount()) << name;
        EXPECT_EQ(0, host_.checkMsgCount()) << name;
    }
    EXPECT_EQ("5001|1", countAndFirst());
}

TEST_F(Trimming, CutsNoTableWhoseNameDoesNotFitTheStatement) {
    const std::string name = "im_msg_" + std::string(300, '5');
    fill(name, 5001);
    transfer_.trimTable = name;
    host_.trimTable = name;
    host_.count = 6000;
    EXPECT_EQ(0, transfer_.checkMsgCount());
    EXPECT_EQ(0, host_.checkMsgCount());
    EXPECT_EQ("5001|1", countAndFirst(name));
}

TEST_F(Trimming, AsksTheHostOnceWithItsFixedArguments) {
    host_.count = 17;
    EXPECT_EQ(17, host_.checkMsgCount());
    EXPECT_EQ(1, host_.calls);
    EXPECT_EQ("16 null 0", host_.arguments);
}

TEST_F(Trimming, BelievesAHostThatCountsTooFew) {
    fill("im_msg_5", 6000);
    for (const int count : {5000, 0, -1, std::numeric_limits<int>::min()}) {
        host_.count = count;
        EXPECT_EQ(count, host_.checkMsgCount());
    }
    EXPECT_EQ("6000|1", countAndFirst());
}

TEST_F(Trimming, BelievesAHostThatCountsTooMany) {
    fill("im_msg_5", 2500);
    host_.count = 5001;
    EXPECT_EQ(1, host_.checkMsgCount());
    EXPECT_EQ("499|2002", countAndFirst());
}

TEST_F(Trimming, CutsAllRowsForTheLargestCount) {
    fill("im_msg_5", 10);
    host_.count = std::numeric_limits<int>::max();
    EXPECT_EQ(1, host_.checkMsgCount());
    EXPECT_EQ("0|", countAndFirst());
}

TEST_F(Trimming, GivesZeroWhenTheDeleteFails) {
    fill("im_msg_6", 1);
    host_.count = 5001;
    EXPECT_EQ(0, host_.checkMsgCount());
    EXPECT_EQ(0, host_.report.messagesTrimmed);
}

TEST_F(Trimming, EndsAnImportIntoTheMainDatabase) {
    for (long long id = 1; id <= 5001; ++id) {
        transfer_.msgMap[5].push_back(messageOf(5, id));
        transfer_.msgMap[5].back().time_ = id;
    }
    EXPECT_EQ(0U, transfer_.wtMsgToDB());
    EXPECT_EQ("3000|2002", countAndFirst());
}

TEST_F(Trimming, EndsNoImportIntoTheBackDatabase) {
    host_.count = 6000;
    host_.msgMap[5] = {messageOf(5, 1)};
    EXPECT_EQ(0U, host_.wtMsgToBackDB());
    EXPECT_EQ(0, host_.calls);
    EXPECT_EQ("1", backRows("select count(*) from im_msg_5"));
}

TEST_F(Trimming, HappensAlsoWithoutMessages) {
    fill("im_msg_5", 5001);
    EXPECT_EQ(0U, transfer_.wtMsgToDB());
    EXPECT_EQ("3000|2002", countAndFirst());
}

TEST_F(Trimming, DoesNotHappenAfterAConversationThatFailed) {
    fill("im_msg_5", 5001);
    host_.count = 5001;
    host_.msgMap[-5] = {messageOf(-5, 1)};
    EXPECT_EQ(0xff00001fU, host_.wtMsgToDB());
    EXPECT_EQ(0, host_.calls);
}

}  // namespace
}  // namespace test
