// Recent contacts on their way from the database into the package.
#include <climits>

#include "tests/transfer/export/account_fixture.h"

namespace {

using test::kDatabaseFailed;
using test::kNoTables;

class RecentContacts : public test::AccountTest {
protected:
    /// Reads the contacts of a table that the statements fill.
    void read(const std::vector<std::string>& statements) {
        addContactTable();
        runMain(statements);
        ASSERT_EQ(0, transfer.readRecontactFromDB());
    }
    /// The recent-contact file of the contacts as they are now.
    std::string written() {
        transfer.msgFileDir = dir.makeDir("package") + "/";
        EXPECT_EQ(1, transfer.wtRecontactToFile());
        return test::readFile(dir.at("package/recontact.mg"));
    }
};

TEST_F(RecentContacts, OfAnEmptyTableGiveAnEmptySetAndFile) {
    addContactTable();
    EXPECT_EQ(0, transfer.readRecontactFromDB());
    EXPECT_TRUE(transfer.reContacts.empty());
    EXPECT_EQ(R"({"version":"1.0","recontact":[]})", written());
}

TEST_F(RecentContacts, AreReadColumnByColumn) {
    read({"insert into im_reContact values(1, 2, 3, 4, 5, 'from', 7, 8, 'last', 'prop', 'name', 12, 13)"});
    ASSERT_EQ(1U, transfer.reContacts.size());
    const imsdk::st_dbReContactBean& contact = transfer.reContacts[0];
    EXPECT_EQ((std::vector<long long>{1, 2, 3, 4, 5, 7, 8, 13}),
              (std::vector<long long>{contact.targetID, contact.lastMsgid, contact.time, contact.type, contact.top,
                                      contact.msgType, contact.activeType, contact.securityLevel}));
    EXPECT_EQ((std::vector<std::string>{"from", "last", "prop", "name"}),
              (std::vector<std::string>{contact.wherefrom, contact.lastMsg, contact.msgProp, contact.name}));
}

TEST_F(RecentContacts, LeaveTheSenderBehind) {
    read({"insert into im_reContact(targetID, sendUserID) values(1, 12)"});
    EXPECT_EQ(0, transfer.reContacts.at(0).sendUserID);
    transfer.reContacts[0].sendUserID = 12;
    EXPECT_EQ(std::string::npos, written().find("sendUserID"));
}

TEST_F(RecentContacts, AreReadIntoFreshRecords) {
    read({"insert into im_reContact values(1, 2, 3, 4, 5, 'from', 7, 8, 'last', 'prop', 'name', 12, 13)",
          "insert into im_reContact(targetID) values(2)"});
    const imsdk::st_dbReContactBean& second = transfer.reContacts.at(1);
    EXPECT_EQ("", second.name + second.wherefrom + second.lastMsg + second.msgProp);
    EXPECT_EQ(0, second.time + second.top + second.securityLevel);
}

TEST_F(RecentContacts, KeepTheOrderOfTheDatabase) {
    read({"insert into im_reContact(targetID) values(9), (-3), (5)"});
    std::vector<long long> ids;
    for (const imsdk::st_dbReContactBean& contact : transfer.reContacts)
        ids.push_back(contact.targetID);
    EXPECT_EQ((std::vector<long long>{9, -3, 5}), ids);
}

TEST_F(RecentContacts, ReadTwiceAreThereTwiceAndSoInTheFile) {
    read({"insert into im_reContact(targetID) values(9)"});
    ASSERT_EQ(0, transfer.readRecontactFromDB());
    EXPECT_EQ(2U, transfer.reContacts.size());
    const std::string file = written();
    EXPECT_NE(file.find("\"targetID\":9"), file.rfind("\"targetID\":9"));
}

TEST_F(RecentContacts, HaveSignedBytes) {
    read({"insert into im_reContact(targetID, type, top) values(1, 255, 128)",
          "insert into im_reContact(targetID, type, top) values(2, -1, 260)"});
    EXPECT_EQ(-1, transfer.reContacts.at(0).type);
    EXPECT_EQ(-128, transfer.reContacts.at(0).top);
    EXPECT_EQ(-1, transfer.reContacts.at(1).type);
    EXPECT_EQ(4, transfer.reContacts.at(1).top);
    const std::string file = written();
    EXPECT_NE(std::string::npos, file.find(R"("type":-1,"top":-128,)"));
}

TEST_F(RecentContacts, StandInTheFileWithTheirKeysInOrder) {
    transfer.reContacts = {test::fullContact()};
    EXPECT_EQ(R"({"version":"1.0","recontact":[{"targetID":5,"lastMsgid":2,"time":3,"type":-4,"top":4,)"
              R"("wherefrom":"where","msgType":300,"activeType":6,"lastMsg":"last\/","msgProp":"prop","name":"name",)"
              R"("securityLevel":8}]})",
              written());
}

TEST_F(RecentContacts, KeepTheirTextsDespiteIllFormedBytes) {
    transfer.reContacts.resize(1);
    transfer.reContacts[0].name = "Ann\xFF";
    EXPECT_NE(std::string::npos, written().find("\"name\":\"Ann\xEF\xBF\xBD\""));
}

TEST_F(RecentContacts, HaveIdsAsTheNearestDouble) {
    transfer.reContacts.resize(1);
    transfer.reContacts[0].targetID = 9007199254740993;
    EXPECT_NE(std::string::npos, written().find("\"targetID\":9007199254740992,"));
}

TEST_F(RecentContacts, CannotBeReadWithoutADatabase) {
    transfer.tableNames = {"old"};
    EXPECT_EQ(kDatabaseFailed, transfer.readRecontactFromDB());
    EXPECT_TRUE(transfer.tableNames.empty());
}

TEST_F(RecentContacts, CannotBeReadFromADatabaseWithoutTables) {
    test::runSql(mainPath(), {});
    EXPECT_EQ(kNoTables, transfer.readRecontactFromDB());
}

TEST_F(RecentContacts, CannotBeReadWithoutTheirTable) {
    addTable("im_msg_1");
    EXPECT_EQ(kNoTables, transfer.readRecontactFromDB());
}

TEST_F(RecentContacts, CannotBeReadFromATableInOtherLetterCase) {
    runMain({std::string("create table im_recontact") + test::kRecentContactColumns});
    EXPECT_EQ(kNoTables, transfer.readRecontactFromDB());
}

TEST_F(RecentContacts, CannotBeReadFromATableWithALongerName) {
    addTable("im_reContact2");
    addTable("xim_reContact");
    EXPECT_EQ(kNoTables, transfer.readRecontactFromDB());
}

TEST_F(RecentContacts, LeaveTheTableNamesBehind) {
    addContactTable();
    addTable("im_msg_1");
    ASSERT_EQ(0, transfer.readRecontactFromDB());
    EXPECT_EQ((std::vector<std::string>{"im_reContact", "im_msg_1"}), transfer.tableNames);
}

TEST_F(RecentContacts, WithoutAFolderGiveNoFileAndAreReported) {
    transfer.msgFileDir = dir.at("nowhere") + "/";
    EXPECT_EQ(1, transfer.wtRecontactToFile());
    EXPECT_EQ("", test::listing(dir.path()));
    EXPECT_EQ(transfer.msgFileDir + "recontact.mg: the recent-contact file could not be written", skipped());
    EXPECT_EQ(0, transfer.report.contactsWritten);
}

}  // namespace
