#include <filesystem>

#include "tests/app/fixture.h"

namespace test {
namespace {

namespace fs = std::filesystem;

class VerifyCommand : public CommandTest {
protected:
    // A sample account "account", its package "package", and the account "copy" into which it was imported.
    void SetUp() override {
        makePackage("account", "package");
        ASSERT_EXIT_CODE(0, importInto("copy", "package"));
    }

    void change(const std::string& account, const std::string& sql) { runSql(mainDatabase(account), {sql}); }

    std::string firstMessageOf(const std::string& table) const {
        return queryText(mainDatabase("copy"), "select min(msgID) from " + table, 1);
    }

    std::string onlyFileIn(const std::string& folder) const { return at(folder + "/" + listing(at(folder))); }
};

TEST_F(VerifyCommand, FindsNothingInTheExportedAccount) {
    expectRows(expectSuccess(verify("package", "account"), {"Nothing is missing and nothing differs."}),
               {{"Messages that agree", "300"}, {"Attachments compared", "4"}});
}

TEST_F(VerifyCommand, FindsNothingInTheImportedAccount) {
    expectRows(expectSuccess(verify("package", "copy")),
               {{"Messages that agree", "300"}, {"Recent contacts in the account", "4"}});
}

TEST_F(VerifyCommand, FindsADeletedMessage) {
    const std::string table = biggestTable("copy");
    const std::string id = firstMessageOf(table);
    change("copy", "delete from " + table + " where msgID = " + id);
    expectFindings(verify("package", "copy"), {"Messages missing in the account: 1\n  message " + id +
                                               " of conversation " + table.substr(7) + "\n"});
}

TEST_F(VerifyCommand, FindsAMissingConversation) {
    change("copy", "drop table " + biggestTable("copy"));
    expectFindings(verify("package", "copy"), {"Messages missing in the account: "});
}

TEST_F(VerifyCommand, FindsEachChangedFieldOfAMessage) {
    const std::string table = biggestTable("copy");
    const std::string id = firstMessageOf(table);
    for (const auto& [column, key] :
         std::vector<std::pair<std::string, std::string>>{{"body", "message"},
                                                          {"fromeUserID", "sendUserID"},
                                                          {"toUserID", "receTargetID"},
                                                          {"time_", "sendTime"},
                                                          {"msgType", "messageType"},
                                                          {"lastMsgID", "lastMessageID"},
                                                          {"formate", "format"},
                                                          {"msgProperties", "msgProperties"},
                                                          {"activeType", "activeType"},
                                                          {"relatedMsgID", "relatedMsgID"},
                                                          {"sourceID", "sourceID"},
                                                          {"day_", "day_"},
                                                          {"securityLevel", "securityLevel"},
                                                          {"limitRange", "limitRange"},
                                                          {"relatedUsers", "relatedUsers"}}) {
        change("copy", "create table kept as select * from " + table);
        change("copy", "update " + table + " set " + column + " = 77 where msgID = " + id);
        expectFindings(verify("package", "copy"),
                       {"message " + id + " of conversation " + table.substr(7) + ": " + key});
        change("copy", "delete from " + table);
        change("copy", "insert into " + table + " select * from kept");
        change("copy", "drop table kept");
    }
}

TEST_F(VerifyCommand, FindsAMessageThatThePackageLacks) {
    const std::string table = biggestTable("copy");
    change("copy", insertMessage(table, 12345, "'only here'"));
    expectFindings(verify("package", "copy"), {"Messages missing in the package: 1\n  message 12345 of"});
    EXPECT_EXIT_CODE(1, verify("package", "copy", {"--check", "exported"}));
    EXPECT_EXIT_CODE(0, verify("package", "copy", {"--check", "imported"}));
}

TEST_F(VerifyCommand, ChecksOneDirectionOnly) {
    change("copy", "delete from " + biggestTable("copy") + " where msgID % 2 = 0");
    EXPECT_EXIT_CODE(1, verify("package", "copy", {"--check", "imported"}));
    EXPECT_EXIT_CODE(0, verify("package", "account", {"--check", "exported"}));
}

TEST_F(VerifyCommand, FindsMissingAndForeignContacts) {
    change("copy", "update im_reContact set targetID = 99 where targetID = (select min(targetID) from im_reContact)");
    expectFindings(verify("package", "copy"), {"Recent contacts missing in the package: 1\n  contact 99\n",
                                               "Recent contacts missing in the account: 1\n"});
}

TEST_F(VerifyCommand, FindsAChangedContact) {
    change("copy",
           "update im_reContact set name = 'Mallory' where targetID = (select min(targetID) from im_reContact)");
    expectFindings(verify("package", "copy"), {": name\n", "Recent contacts that differ: 1\n"});
}

TEST_F(VerifyCommand, LetsAnAccountKeepItsOwnContactsAfterAnImport) {
    change("copy", "update im_reContact set lastMsg = 'newer', time = time + 1");
    expectSuccess(verify("package", "copy", {"--check", "imported"}), {"4  recent contacts are the account's own"});
}

TEST_F(VerifyCommand, FindsAMissingAttachmentOnEitherSide) {
    fs::remove(onlyFileIn("copy/audio"));
    expectFindings(verify("package", "copy"), {"Attachments missing in the account: 1\n  voice/2024-06-"});
    fs::remove_all(attachmentFolder("package") + "file");
    expectFindings(verify("package", "account"), {"Attachments missing in the package: 1\n  file/2024-06-"});
}

TEST_F(VerifyCommand, FindsOneChangedByteOfAnAttachment) {
    const std::string path = onlyFileIn("copy/audio");
    std::string bytes = readFile(path);
    bytes.back() = static_cast<char>(bytes.back() ^ 1);
    dir_.write(path.substr(dir_.path().size() + 1), bytes);
    expectFindings(verify("package", "copy"), {"Attachments that differ: 1\n"});
}

TEST_F(VerifyCommand, FindsALongerAttachment) {
    const std::string path = onlyFileIn("copy/audio");
    dir_.write(path.substr(dir_.path().size() + 1), readFile(path) + "x");
    EXPECT_EXIT_CODE(1, verify("package", "copy"));
}

TEST_F(VerifyCommand, CountsWhatTheRulesChangedApart) {
    const Outcome run = verify("package", "copy");
    EXPECT_SAYS("messages lost limitRange or relatedUsers", run.out);
    EXPECT_SAYS("messages lost their securityLevel", run.out);
    EXPECT_EXIT_CODE(1, verify("package", "copy", {"--strict"}));
}

TEST_F(VerifyCommand, ExplainsLossesOfAnImportOnlyWhereThereWasOne) {
    expectFindings(verify("package", "copy", {"--check", "exported"}), {"securityLevel\n"});
}

TEST_F(VerifyCommand, CountsValuesThatNoPackageCarries) {
    EXPECT_SAYS("300  messages have a status, burnAfterReading or localID that no package carries",
                verify("package", "account").out);
    EXPECT_SAYS_NOT("no package carries", verify("package", "copy").out);
}

TEST_F(VerifyCommand, ListsAtMostAsManyLinesAsAsked) {
    change("copy", "drop table " + biggestTable("copy"));
    const Outcome run = expectFailure(verify("package", "copy", {"--most", "2", "--check", "imported"}));
    const std::size_t first = run.out.find("  message ");
    const std::size_t more = run.out.find("  ... and ");
    ASSERT_NE(std::string::npos, more);
    EXPECT_EQ(2, std::count(run.out.begin() + static_cast<std::ptrdiff_t>(first),
                            run.out.begin() + static_cast<std::ptrdiff_t>(more), '\n'));
}

TEST_F(VerifyCommand, ListsADamagedFileOfThePackage) {
    putIntoPackage("msg_1.mg", "{");
    expectFindings(verify("package", "copy"), {"Files that cannot be read: 1\n", "Messages missing in the package: "});
}

TEST_F(VerifyCommand, ListsFilesBehindAGap) {
    fs::remove(messageFolder("package") + "msg_3.mg");
    EXPECT_SAYS("1 message file stands behind a gap", verify("package", "copy").out);
}

TEST_F(VerifyCommand, SaysWhenThePackageHasNoContacts) {
    fs::remove(messageFolder("package") + "recontact.mg");
    expectFindings(verify("package", "account"), {"all 4: the package has no recontact.mg"});
    EXPECT_EXIT_CODE(0, verify("package", "copy", {"--check", "imported"}));
}

TEST_F(VerifyCommand, LooksAtMessagesSinceADay) {
    ASSERT_EXIT_CODE(0, exportFrom("account", "late", {"--since", "2024-06-29"}));
    EXPECT_EXIT_CODE(1, verify("late", "account"));
    const Outcome run = expectSuccess(verify("late", "account", {"--since", "2024-06-29"}));
    EXPECT_NE("0", rowOf(run.out, "Messages that agree"));
}

TEST_F(VerifyCommand, ChangesNothingOnEitherSide) {
    const std::string database = readFile(mainDatabase("copy"));
    fs::remove(onlyFileIn("copy/audio"));
    EXPECT_EXIT_CODE(1, verify("package", "copy"));
    EXPECT_EQ(database, readFile(mainDatabase("copy")));
    EXPECT_EQ("", listing(at("copy/audio")));
    EXPECT_EQ("imsg.db", listing(at("copy/db")).substr(listing(at("copy/db")).find("imsg.db "), 7));
}

TEST_F(VerifyCommand, NeedsAnAccountThatIsThere) {
    expectFailure(verify("package", "nobody"), {"0xff00001f"});
    EXPECT_FALSE(exists(at("nobody")));
}

// Accounts with the odd values that rules change.
class VerifyRules : public CommandTest {
protected:
    // Exports the account, imports it elsewhere and verifies both.
    void travel(const std::string& words) {
        ASSERT_EXIT_CODE(0, exportFrom("account", "package"));
        ASSERT_EXIT_CODE(0, importInto("copy", "package"));
        source_ = verify("package", "account");
        target_ = verify("package", "copy");
        EXPECT_EXIT_CODE(0, source_);
        EXPECT_EXIT_CODE(0, target_);
        EXPECT_SAYS(words, source_.out);
    }

    Outcome source_;
    Outcome target_;
};

TEST_F(VerifyRules, RoundIdsAboveTheRangeOfDoubles) {
    makeAccount("account", {createTable("im_msg_5"), insertMessage("im_msg_5", 9007199254740993, "'x'")});
    travel("ids above 2^53 were rounded");
    EXPECT_SAYS_NOT("rounded", target_.out);
}

TEST_F(VerifyRules, KeepTheFirstOfTwoMessagesWhoseIdsRoundToOne) {
    makeAccount("account", {createTable("im_msg_5"), insertMessage("im_msg_5", 9007199254740992, "'first'"),
                            insertMessage("im_msg_5", 9007199254740993, "'second'")});
    travel("ids above 2^53 were rounded");
    EXPECT_EQ("2", rowOf(source_.out, "Messages that agree"));
    EXPECT_SAYS("1  messages share their id", target_.out);
}

TEST_F(VerifyRules, CutTextsAtTheirFirstNul) {
    makeAccount("account", {createTable("im_msg_5"), insertMessage("im_msg_5", 1, "'before' || char(0) || 'after'")});
    travel("1  texts end at their first NUL byte");
}

TEST_F(VerifyRules, ReplaceIllFormedBytes) {
    makeAccount("account", {createTable("im_msg_5"), insertMessage("im_msg_5", 1, "cast(x'41ff42' as text)")});
    travel("1  texts had ill-formed UTF-8");
}

TEST_F(VerifyRules, ReduceListsToNumbers) {
    makeAccount("account", {createTable("im_msg_5"), insertMessage("im_msg_5", 1, "'x'"),
                            "update im_msg_5 set limitRange = '5;;x;7'"});
    travel("1  lists of users hold more than numbers");
    EXPECT_SAYS("1  messages lost limitRange", target_.out);
}

TEST_F(VerifyRules, ConvertThePinOfOlderClients) {
    makeAccount("account", {"insert into im_reContact(targetID, top) values(5, 1)"});
    ASSERT_EXIT_CODE(0, exportFrom("account", "package"));
    ASSERT_EXIT_CODE(0, importInto("copy", "package"));
    EXPECT_EQ("4", queryText(mainDatabase("copy"), "select top from im_reContact", 1));
    EXPECT_SAYS("1  pins were converted from 1 to 4", verify("package", "copy").out);
}

TEST_F(VerifyRules, HaveNoPlaceForImagesWithoutAFolder) {
    makeAccount("account",
                {createTable("im_msg_5"), insertMessage("im_msg_5", 1, R"('{"mediaUrl":"p.png","thumbUrl":"t.png"}')"),
                 "update im_msg_5 set msgType = 5"});
    dir_.write("account/image/p.png", "picture");
    travel("1  images have no folder in their name");
    EXPECT_EQ("1", rowOf(source_.out, "Attachments on neither side"));
}

TEST_F(VerifyRules, RefuseNamesThatLeadOutside) {
    makeAccount("account",
                {createTable("im_msg_5"), insertMessage("im_msg_5", 1, R"('{"mediaUrl":"../../a/b","fileName":"x"}')"),
                 "update im_msg_5 set msgType = 6"});
    dir_.write("account/file/x", "secret");
    travel("1  attachment names lead outside their folder");
}

TEST_F(VerifyRules, LetAttachmentsOfOneNameReplaceEachOther) {
    makeAccount("account",
                {createTable("im_msg_5"), insertMessage("im_msg_5", 1, R"('{"mediaUrl":"a/b","fileName":"x"}')"),
                 insertMessage("im_msg_5", 2, R"('{"mediaUrl":"a/b","fileName":"x"}')"),
                 "update im_msg_5 set msgType = 3 * msgID"});
    dir_.write("account/audio/x", "sound");
    dir_.write("account/file/x", "text");
    travel("1  attachments share their name");
}

TEST_F(VerifyRules, NeverTransferTablesOfOtherNames) {
    makeAccount("account", {"create table \"im_msg_-5\"(x)", "create table im_msgx_1(x)"});
    ASSERT_EXIT_CODE(0, exportFrom("account", "package"));
    expectFindings(verify("package", "account"), {"Tables of the account that cannot be read: 1\n  im_msg_-5\n"});
}

TEST_F(VerifyRules, LeaveOutWhatPackedLeavesOut) {
    std::vector<std::string> statements = {createTable("im_msg_5")};
    for (int id = 1; id <= 1003; ++id)
        statements.push_back(insertMessage("im_msg_5", id, "'x'"));
    makeAccount("account", statements);
    ASSERT_EXIT_CODE(0, exportFrom("account", "package", {"--layout", "packed"}));
    expectFindings(verify("package", "account"),
                   {"Messages missing in the package: 3\n  message 1001 of conversation 5\n"});
}

}  // namespace
}  // namespace test
