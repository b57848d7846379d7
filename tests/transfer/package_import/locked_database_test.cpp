// A database that the running client holds: the import waits for a few seconds, then fails without half a conversation.
#include <chrono>
#include <future>
#include <thread>

#include "tests/transfer/package_import/import_fixture.h"

namespace test {
namespace {

class LockedDatabase : public ImportFixture {
protected:
    // The client writes on a connection of its own.
    void lock(const std::string& path) {
        ASSERT_NE(0, client_.open(path.c_str(), nullptr));
        client_.beginTransaction();
        ASSERT_FALSE(client_.transactionFailed());
    }
    void unlock() { client_.endTransaction(); }

    imsdk::dbUtils client_;
};

TEST_F(LockedDatabase, GetsNoNewConversation) {
    collect(5, {1, 2});
    transfer_.reContacts = {contactOf(5, 1, 0)};
    lock(mainPath());
    EXPECT_EQ(kDatabaseFailed, transfer_.wtMsgToDB());
    unlock();
    EXPECT_EQ("0", mainRows("select count(*) from sqlite_master"));
    EXPECT_EQ(0U, transfer_.wtMsgToDB());
    EXPECT_EQ("1 2", idsIn("im_msg_5"));
}

TEST_F(LockedDatabase, GetsNoPartOfAConversationThatItHas) {
    collect(5, {1});
    EXPECT_EQ(0U, transfer_.wtMsgToDB());
    collect(5, {2, 3});
    lock(mainPath());
    EXPECT_EQ(kDatabaseFailed, transfer_.wtMsgToDB());
    unlock();
    EXPECT_EQ("1", idsIn("im_msg_5"));
    EXPECT_TRUE(reported("conversation 5"));
    EXPECT_EQ(0U, transfer_.wtMsgToDB());
    EXPECT_EQ("1 2 3", idsIn("im_msg_5"));
}

TEST_F(LockedDatabase, GetsNothingWhenItIsTheBackDatabase) {
    collect(5, {1});
    lock(backPath());
    EXPECT_EQ(kDatabaseFailed, transfer_.wtMsgToBackDB());
    unlock();
    EXPECT_EQ("0", backRows("select count(*) from sqlite_master"));
}

TEST_F(LockedDatabase, DoesNotOpenWhileItIsHeldExclusively) {
    collect(5, {1});
    ASSERT_NE(0, client_.open(mainPath().c_str(), nullptr));
    ASSERT_NE(0, client_.excuteNonQuery("BEGIN EXCLUSIVE"));
    EXPECT_EQ(kDatabaseFailed, transfer_.wtMsgToDB());
    ASSERT_NE(0, client_.excuteNonQuery("COMMIT"));
    EXPECT_EQ("0", mainRows("select count(*) from sqlite_master"));
}

TEST_F(LockedDatabase, GetsNoTableOfRecentContacts) {
    ASSERT_NE(0, transfer_.dbOpen());
    transfer_.reContacts = {contactOf(5, 1, 0)};
    lock(mainPath());
    EXPECT_EQ(kDatabaseFailed, transfer_.wtRecontactToDb());
    unlock();
    EXPECT_TRUE(transfer_.tableNames.empty());
    EXPECT_EQ("0", mainRows("select count(*) from sqlite_master"));
}

TEST_F(LockedDatabase, TellsThatItGotNoRecentContacts) {
    ASSERT_NE(0, transfer_.dbOpen());
    EXPECT_EQ(0U, transfer_.wtRecontactToDb());
    transfer_.reContacts = {contactOf(5, 1, 0)};
    lock(mainPath());
    EXPECT_EQ(kDatabaseFailed, transfer_.wtRecontactToDb());
    unlock();
    EXPECT_EQ("0", mainRows("select count(*) from im_reContact"));
    EXPECT_TRUE(reported("im_reContact"));
    EXPECT_EQ(0U, transfer_.wtRecontactToDb());
    EXPECT_EQ("1", mainRows("select count(*) from im_reContact"));
}

TEST_F(LockedDatabase, IsWaitedForAndTheConversationReportedAfterHalfASecond) {
    for (const long long conversation : {5, 6, 7})
        collect(conversation, {1});
    std::promise<void> locked;
    std::thread client([this, &locked] {
        lock(mainPath());
        locked.set_value();
        std::this_thread::sleep_for(std::chrono::milliseconds(1500));
        unlock();
    });
    locked.get_future().wait();
    EXPECT_EQ(0U, transfer_.wtMsgToDB());
    client.join();
    EXPECT_EQ("1", idsIn("im_msg_7"));
    ASSERT_GE(listener_.heard.size(), 2U);
    EXPECT_EQ("1 33 1/3", listener_.heard.front());
    EXPECT_EQ("1 100 3/3", listener_.heard.back());
}

// Locks the database when the import has written the messages and asks for the count of rows.
class LockingTransfer : public dbTrans {
public:
    int countRows(int /*what*/, const char* /*condition*/, int /*flags*/) override {
        client.beginTransaction();
        return 0;
    }
    imsdk::dbUtils client;
};

TEST_F(LockedDatabase, KeepsTheMessagesWhenTheContactsComeTooLate) {
    LockingTransfer transfer;
    transfer.rootPath = transfer_.rootPath;
    transfer.msgMap[5] = {messageOf(5, 1)};
    transfer.reContacts = {contactOf(5, 1, 0)};
    ASSERT_NE(0, transfer.client.open(mainPath().c_str(), nullptr));
    EXPECT_EQ(0U, transfer.wtMsgToDB());
    transfer.client.endTransaction();
    EXPECT_EQ("im_msg_5", mainRows("select name from sqlite_master where type = 'table'"));
    EXPECT_EQ("1", idsIn("im_msg_5"));
    EXPECT_EQ(1, transfer.report.skippedCount);
}

}  // namespace
}  // namespace test
