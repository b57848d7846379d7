// Merging recent contacts into the main database.
#include <limits>

#include "tests/transfer/package_import/import_fixture.h"
#include "transfer/tables/recent_contact_table.h"

namespace test {
namespace {

std::string createStatement(const std::string& table = "im_reContact") {
    return "create table " + table + "(targetID BIGINT PRIMARY KEY,lastMsgid BIGINT,time BIGINT,type TINYINT," +
           std::string(20, ' ') +
           "top TINYINT,wherefrom VARCHAR(256),msgType TINYINT,activeType INTEGER,lastMsg VARCHAR(8000),msgProp "
           "VARCHAR(1024),name VARCHAR(128),sendUserID BIGINT,securityLevel INTEGER)";
}

class RecentContactRestore : public ImportFixture {
protected:
    RecentContactRestore() { EXPECT_NE(0, transfer_.dbOpen()); }

    // A stored contact 5.
    void store(long long time, int top) {
        runSql(mainPath(), {createStatement(), "insert into im_reContact values(5,50," + std::to_string(time) + ",1," +
                                                   std::to_string(top) + ",'w',2,3,'old','p','stored',77,9)"});
        transfer_.getTables();
    }
    std::string stored() const { return mainRows("select * from im_reContact", 13); }
    static std::string storedRow(long long time, int top) {
        return "5|50|" + std::to_string(time) + "|1|" + std::to_string(top) + "|w|2|3|old|p|stored|77|9";
    }
    void restore(const std::vector<imsdk::st_dbReContactBean>& contacts) {
        transfer_.reContacts = contacts;
        EXPECT_EQ(0U, transfer_.wtRecontactToDb());
    }
    int merge(const imsdk::st_dbReContactBean& contact) {
        record_ = contact;
        return transfer_.isRecontactExsit(record_);
    }

    imsdk::st_dbReContactBean record_;
};

// --- The table ---

TEST_F(RecentContactRestore, CreatesTheTableWithItsExactText) {
    EXPECT_EQ(0U, transfer_.wtRecontactToDb());
    std::string expected = createStatement();
    expected.replace(0, 12, "CREATE TABLE");  // the database writes the first two words its own way
    EXPECT_EQ(expected, mainRows("select sql from sqlite_master where name = 'im_reContact'"));
    EXPECT_EQ(std::vector<std::string>{"im_reContact"}, transfer_.tableNames);
}

TEST_F(RecentContactRestore, HasItsStatementsToTheLetter) {
    EXPECT_EQ(createStatement() + ";", chattransfer::kCreateRecentContactTable);
    EXPECT_STREQ("select * from  %s  where targetID = %lld", chattransfer::kFindRecentContact);
    EXPECT_STREQ(
        "insert into %s(targetID,lastMsgid,time,type,top,whereFrom,msgType,activeType,lastMsg,msgProp,name,"
        "securityLevel) values(?,?,?,?,?,?,?,?,?,?,?,?)",
        chattransfer::kInsertRecentContact);
    EXPECT_STREQ(
        "update %s set lastMsgid = ?,time = ?,type = ?,top = ?,whereFrom = ?,msgType = ?,activeType = ?,lastMsg = "
        "?,msgProp = ?,name = ? securityLevel =?,where targetID = ? ",
        chattransfer::kUpdateRecentContact);
    EXPECT_STREQ("update %s set top = ? where targetID = ? ", chattransfer::kPinRecentContact);
}

TEST_F(RecentContactRestore, CreatesNoTableThatTheTableNamesHold) {
    transfer_.tableNames = {"im_msg_5", "im_reContact"};
    EXPECT_EQ(0U, transfer_.wtRecontactToDb());
    EXPECT_EQ("0", mainRows("select count(*) from sqlite_master"));
}

TEST_F(RecentContactRestore, FailsWhenTheTableCannotBeCreated) {
    runSql(mainPath(), {"create view im_reContact as select 1"});
    transfer_.getTables();
    EXPECT_EQ(kDatabaseFailed, transfer_.wtRecontactToDb());
    EXPECT_TRUE(transfer_.tableNames.empty());
}

TEST_F(RecentContactRestore, FailsBesideATableThatDiffersInLetterCase) {
    runSql(mainPath(), {createStatement("IM_RECONTACT")});
    transfer_.getTables();
    transfer_.reContacts = {contactOf(5, 1, 0)};
    EXPECT_EQ(kDatabaseFailed, transfer_.wtRecontactToDb());
    EXPECT_EQ("0", mainRows("select count(*) from im_reContact"));
}

TEST_F(RecentContactRestore, FailsOnAConnectionThatIsNotOpen) {
    dbTrans closed;
    closed.reContacts = {contactOf(5, 1, 0)};
    EXPECT_EQ(kDatabaseFailed, closed.wtRecontactToDb());
}

// --- New contacts ---

TEST_F(RecentContactRestore, InsertsEveryFieldButTheSender) {
    restore({fullContact()});
    EXPECT_EQ("5|2|3|-4|4|where|300|6|last/|prop|name||8", stored());
    EXPECT_EQ("null", mainRows("select typeof(sendUserID) from im_reContact"));
    EXPECT_EQ(1, transfer_.report.contactsInserted);
}

TEST_F(RecentContactRestore, GivesTheInsertsResult) {
    EXPECT_EQ(0, merge(contactOf(5, 1, 0)));
    transfer_.wtRecontactToDb();
    EXPECT_EQ(1, merge(contactOf(5, 1, 0)));
    EXPECT_EQ("1", mainRows("select count(*) from im_reContact"));
}

TEST_F(RecentContactRestore, InsertsTheContactsInOrderAndTheirDuplicatesOnce) {
    restore({contactOf(7, 1, 0), contactOf(5, 2, 0), contactOf(7, 9, 0)});
    EXPECT_EQ("7|1\n5|2", mainRows("select targetID, time from im_reContact order by rowid", 2));
}

TEST_F(RecentContactRestore, InsertsTheLimitsOfItsNumbersAndEmptyTexts) {
    imsdk::st_dbReContactBean contact = contactOf(std::numeric_limits<long long>::min(), -1, -128);
    contact.lastMsgid = std::numeric_limits<long long>::max();
    restore({contact});
    EXPECT_EQ("-9223372036854775808|9223372036854775807|-1|-128|text",
              mainRows("select targetID, lastMsgid, time, top, typeof(name) from im_reContact", 5));
    EXPECT_EQ(0U, transfer_.wtRecontactToDb());
    EXPECT_EQ("1", mainRows("select count(*) from im_reContact"));
}

TEST_F(RecentContactRestore, InsertsTextsThatLookLikeSqlAsTheyAre) {
    imsdk::st_dbReContactBean contact = contactOf(5, 1, 0);
    contact.name = "'); drop table im_reContact; -- ?";
    restore({contact});
    EXPECT_EQ(contact.name, mainRows("select name from im_reContact"));
}

TEST_F(RecentContactRestore, GoesOnAfterAContactThatTheTableRefuses) {
    EXPECT_EQ(0U, transfer_.wtRecontactToDb());
    runSql(mainPath(), {"create trigger picky before insert on im_reContact when new.targetID = 6 begin select "
                        "raise(abort, 'no'); end"});
    restore({contactOf(5, 1, 0), contactOf(6, 1, 0), contactOf(7, 1, 0)});
    EXPECT_EQ("5\n7", mainRows("select targetID from im_reContact order by targetID"));
}

// --- Stored contacts ---

TEST_F(RecentContactRestore, PinsAStoredContactForAnOlderPinnedOne) {
    store(200, 0);
    EXPECT_EQ(1, merge(contactOf(5, 100, 4)));
    EXPECT_EQ(storedRow(200, 4), stored());
    EXPECT_EQ(1, transfer_.report.contactsPinned);
}

TEST_F(RecentContactRestore, KeepsTheOtherBitsOfTheStoredTop) {
    store(200, 3);
    EXPECT_EQ(1, merge(contactOf(5, 100, 12)));
    EXPECT_EQ(storedRow(200, 7), stored());
}

TEST_F(RecentContactRestore, RewritesThePinOfAStoredContact) {
    store(200, 4);
    runSql(mainPath(), {"create trigger seen after update on im_reContact begin delete from im_reContact; end"});
    EXPECT_EQ(1, merge(contactOf(5, 100, 0)));
    EXPECT_EQ("", stored());
}

TEST_F(RecentContactRestore, GivesThePinUpdatesResult) {
    store(200, 4);
    runSql(mainPath(), {"create trigger no before update on im_reContact begin select raise(abort, 'no'); end"});
    EXPECT_EQ(0, merge(contactOf(5, 100, 0)));
    EXPECT_EQ(storedRow(200, 4), stored());
}

TEST_F(RecentContactRestore, SetsThePinInTheRecordToo) {
    store(200, 4);
    merge(contactOf(5, 100, 1));
    EXPECT_EQ(5, record_.top);
    merge(contactOf(5, 300, 0));
    EXPECT_EQ(4, record_.top);
}

TEST_F(RecentContactRestore, SetsThePinInTheCollectedContacts) {
    store(200, 4);
    restore({contactOf(5, 100, 0)});
    EXPECT_EQ(4, transfer_.reContacts[0].top);
}

TEST_F(RecentContactRestore, ChangesNothingForANewerContact) {
    store(100, 0);
    EXPECT_EQ(0, merge(contactOf(5, 200, 0)));
    EXPECT_EQ(storedRow(100, 0), stored());
    EXPECT_EQ(1, transfer_.report.contactsKept);
}

TEST_F(RecentContactRestore, PinsNothingForANewerPinnedContact) {
    store(100, 0);
    EXPECT_EQ(0, merge(contactOf(5, 200, 4)));
    EXPECT_EQ(storedRow(100, 0), stored());
}

TEST_F(RecentContactRestore, RunsNoStatementWhenNeitherIsPinnedNorTheContactNewer) {
    store(200, 3);
    runSql(mainPath(), {"create trigger no before update on im_reContact begin select raise(abort, 'no'); end"});
    EXPECT_EQ(1, merge(contactOf(5, 199, 3)));
    EXPECT_EQ(1, merge(contactOf(5, 200, 3)));
    EXPECT_EQ(storedRow(200, 3), stored());
}

TEST_F(RecentContactRestore, TakesEqualTimesForNotNewer) {
    store(200, 0);
    EXPECT_EQ(1, merge(contactOf(5, 200, 4)));
    EXPECT_EQ(storedRow(200, 4), stored());
}

TEST_F(RecentContactRestore, TakesANullTimeAndTopForZero) {
    store(0, 0);
    runSql(mainPath(), {"update im_reContact set time = null, top = null"});
    EXPECT_EQ(1, merge(contactOf(5, 0, 4)));
    EXPECT_EQ("|4", mainRows("select time, top from im_reContact", 2));
    EXPECT_EQ(0, merge(contactOf(5, 1, 4)));
}

TEST_F(RecentContactRestore, GoesOnAfterTheUpdateThatFails) {
    store(100, 0);
    restore({contactOf(5, 200, 0), contactOf(6, 1, 0)});
    EXPECT_EQ(storedRow(100, 0), mainRows("select * from im_reContact where targetID = 5", 13));
    EXPECT_EQ("1", mainRows("select count(*) from im_reContact where targetID = 6"));
}

TEST_F(RecentContactRestore, WritesAllContactsInOneTransaction) {
    EXPECT_EQ(0U, transfer_.wtRecontactToDb());
    runSql(mainPath(), {"create trigger fatal before insert on im_reContact when new.targetID = 6 begin select "
                        "raise(rollback, 'no'); end"});
    transfer_.reContacts = {contactOf(5, 1, 0), contactOf(6, 1, 0), contactOf(7, 1, 0)};
    EXPECT_EQ(kDatabaseFailed, transfer_.wtRecontactToDb());
    EXPECT_EQ("0", mainRows("select count(*) from im_reContact"));
    EXPECT_EQ(0, transfer_.report.contactsInserted);
}

TEST_F(RecentContactRestore, ChangesNothingTheSecondTime) {
    restore({contactOf(5, 1, 4), contactOf(6, 2, 0)});
    const std::string once = stored();
    EXPECT_EQ(0U, transfer_.wtRecontactToDb());
    EXPECT_EQ(once, stored());
}

TEST_F(RecentContactRestore, StoresThePinThatAPackageWritesAs1) {
    writeContacts(contactsJson(R"({"targetID":5,"top":1})"));
    EXPECT_EQ(0U, transfer_.rdMsgFromFile());
    EXPECT_EQ(0U, transfer_.wtMsgToDB());
    EXPECT_EQ("5|4", mainRows("select targetID, top from im_reContact", 2));
}

}  // namespace
}  // namespace test
