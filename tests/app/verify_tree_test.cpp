#include "tests/app/sample_tree_fixture.h"

namespace test {
namespace {

namespace fs = std::filesystem;

// A plain tree "tree", and an unencrypted account "account" that its encrypted form was imported into. The encrypted
// form has a key of its own only as long as it takes: its decrypted copies are what an unencrypted account reads.
class VerifyTree : public SampleTreeTest {
protected:
    void SetUp() override {
        makeEncryptedTree("backup");
        Arguments decrypt = {"import-tree", "--from", at("backup"), "--account", at("keyed"), "--user", kUser};
        decrypt.insert(decrypt.end(), {"--key-file", at("key")});
        ASSERT_EXIT_CODE(0, chatTransfer(decrypt));
        ASSERT_EXIT_CODE(
            0, chatTransfer({"import-tree", "--from", at("backup"), "--account", at("account"), "--user", kUser}));
    }

    // The plain tree still has its attachments, as a tree has before they are moved.
    Outcome verifyPlain() const { return verify("plain-backup", "account"); }

    void change(const std::string& sql) const { runSql(mainDatabase("account"), {sql}); }
    void changePlugin(const std::string& sql) const { runSql(at("account/db/plugin/kab.db"), {sql}); }
};

TEST_F(VerifyTree, FindsNothingAfterAnImport) {
    const Outcome run = verifyPlain();
    EXPECT_EXIT_CODE(0, run);
    EXPECT_EQ("300", rowOf(run.out, "Messages that agree"));
    EXPECT_EQ("12", rowOf(run.out, "Notes in the tree"));
    EXPECT_EQ("36", rowOf(run.out, "Attachments still in the tree"));
    EXPECT_SAYS("Nothing is missing and nothing differs.", run.out);
}

TEST_F(VerifyTree, FindsMovedAttachmentsInTheAccount) {
    const Outcome run = verify("backup", "keyed", keyFile());
    EXPECT_EXIT_CODE(0, run);
    EXPECT_EQ("300", rowOf(run.out, "Messages that agree"));
    EXPECT_EQ("36", rowOf(run.out, "Attachments in the account"));
}

TEST_F(VerifyTree, FindsADeletedMessage) {
    const std::string table = biggestTable("account");
    const std::string id = queryText(mainDatabase("account"), "select min(msgID) from " + table, 1);
    change("delete from " + table + " where msgID = " + id);
    const Outcome run = verifyPlain();
    EXPECT_EXIT_CODE(1, run);
    EXPECT_EQ("299", rowOf(run.out, "Messages that agree"));
    EXPECT_SAYS("Messages missing in the account: 1\n  message " + id + " of conversation " + table.substr(7), run.out);
}

TEST_F(VerifyTree, FindsEachChangedFieldOfAMessage) {
    const std::string table = biggestTable("account");
    change("update " + table + " set body = 'other', time_ = time_ + 1, limitRange = '5' where msgID = (select min(" +
           "msgID) from " + table + ")");
    const Outcome run = verifyPlain();
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS(": sendTime, message, limitRange\n", run.out);
}

TEST_F(VerifyTree, FindsAMissingConversation) {
    change("drop table " + biggestTable("account"));
    const Outcome run = verifyPlain();
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("Messages missing in the account: ", run.out);
}

TEST_F(VerifyTree, FindsAMissingContact) {
    change("delete from im_reContact where targetID = (select min(targetID) from im_reContact)");
    const Outcome run = verifyPlain();
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("Recent contacts missing in the account: 1\n", run.out);
}

TEST_F(VerifyTree, FindsMissingAndChangedNotes) {
    changePlugin("delete from im_note where _id = 1");
    changePlugin("update im_note set content = 'other' where _id = 2");
    const Outcome run = verifyPlain();
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("Notes missing in the account: 1\n", run.out);
    EXPECT_SAYS("Notes that differ: 1\n", run.out);
}

TEST_F(VerifyTree, FindsAMissingRoom) {
    changePlugin("delete from im_room where roomID = 1");
    const Outcome run = verifyPlain();
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("Rooms missing in the account: 1\n", run.out);
}

TEST_F(VerifyTree, FindsAttachmentsThatAreNowhere) {
    fs::remove_all(at("plain-backup/imfiles/voice"));
    const Outcome run = verifyPlain();
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("Attachments missing in the account: 3\n", run.out);
}

TEST_F(VerifyTree, FindsFilesThatItCannotRead) {
    dir_.write("plain-backup/notes.nt", "no JSON");
    const Outcome run = verifyPlain();
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("Files that cannot be read: 1\n  notes.nt: is not JSON", run.out);
}

TEST_F(VerifyTree, RefusesWhatOnlyPackagesHave) {
    const Outcome run = verify("plain-backup", "account", {"--since", "2024-06-30"});
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("leave out --since and --check", run.err);
}

}  // namespace
}  // namespace test
