// The import keeps the newest 3000 messages of every table that has grown above 5000.
#include "tests/transfer/tree/tree_fixture.h"

using test::code;
using test::message;
using test::messageFile;

namespace {

class TreeTrimming : public test::TreeTest {
protected:
    TreeTrimming() { makeMainDatabase(); }

    // Files with the messages 1 to `count`, each sent at the time of its number.
    void addMessages(int count) const {
        std::vector<std::string> messages;
        for (int id = count; id > 0; --id)
            messages.push_back(message(id));
        addDecrypted("2002/x.mg", messageFile(messages));
    }

    // A table `name` with `count` rows, time_ 1 to `count`.
    void addTable(const std::string& name, int count) const {
        runInMain({R"(create table ")" + name + "\"(msgID integer primary key, time_ bigint)",
                   R"(insert into ")" + name +
                       R"(" with recursive n(i) as (select 1 union all select i + 1 from n where i < )" +
                       std::to_string(count) + ") select i, i from n"});
    }

    std::string countAndOldest(const std::string& table) const {
        return main(R"(select count(*), min(time_) from ")" + table + R"(")", 2);
    }

    void import() { ASSERT_EQ(0U, code(transfer.readMsgFromFileNJ())); }
};

TEST_F(TreeTrimming, KeepsTheNewestThreeThousandOfFiveThousandTwoHundred) {
    addMessages(5200);
    import();
    EXPECT_EQ("3000|2201", countAndOldest("im_msg_2002"));
    EXPECT_EQ(5200, transfer.report.messagesInserted);
    EXPECT_EQ(2200, transfer.report.messagesTrimmed);
}

TEST_F(TreeTrimming, LeavesATableOfExactlyFiveThousand) {
    addMessages(5000);
    import();
    EXPECT_EQ("5000|1", countAndOldest("im_msg_2002"));
}

TEST_F(TreeTrimming, CutsATableOfOneMore) {
    addMessages(5001);
    import();
    EXPECT_EQ("3000|2002", countAndOldest("im_msg_2002"));
}

TEST_F(TreeTrimming, EndsTheSameWhenTheTreeIsImportedAgain) {
    addMessages(5200);
    import();
    import();
    EXPECT_EQ("3000|2201", countAndOldest("im_msg_2002"));
}

TEST_F(TreeTrimming, CutsTablesThatTheTreeDoesNotName) {
    addTable("im_msg_900", 6000);
    import();
    EXPECT_EQ("3000|3001", countAndOldest("im_msg_900"));
}

TEST_F(TreeTrimming, LeavesTablesThatHoldNoMessages) {
    addTable("im_messages", 6000);
    addTable("archive_im_msg_5", 6000);
    import();
    EXPECT_EQ("6000|1", countAndOldest("im_messages"));
    EXPECT_EQ("6000|1", countAndOldest("archive_im_msg_5"));
}

TEST_F(TreeTrimming, RunsNoStatementThatATableNameCarries) {
    addTable("im_msg_900", 6000);
    addTable("im_msg_1 where 1=1 or time_", 6000);
    addTable("im_msg_1;drop table im_msg_900", 6000);
    addTable("im_msg_" + std::string(300, '9'), 6000);
    import();
    EXPECT_EQ("6000|1", countAndOldest("im_msg_1 where 1=1 or time_"));
    EXPECT_EQ("6000|1", countAndOldest("im_msg_1;drop table im_msg_900"));
    EXPECT_EQ("6000|1", countAndOldest("im_msg_" + std::string(300, '9')));
    EXPECT_EQ("3000|3001", countAndOldest("im_msg_900"));
}

TEST_F(TreeTrimming, DoesNotTrimTheBackDatabase) {
    makeBackDatabase();
    addMessages(5200);
    ASSERT_EQ(0U, code(transfer.readMsgFromFileNJBack(false)));
    EXPECT_EQ("5200", back("select count(*) from im_msg_2002"));
}

}  // namespace
