#include "tests/app/sample_tree_fixture.h"
#include "tests/app/tree_command_fixture.h"

namespace test {
namespace {

namespace fs = std::filesystem;

// A plain tree "plain-backup", and two accounts that it was imported into: "keyed" from its encrypted form "backup",
// and the unencrypted "account" from the decrypted copies that this left, with the attachments put back.
class VerifyTree : public SampleTreeTest {
protected:
    void SetUp() override {
        makeEncryptedTree("backup");
        Arguments decrypt = {"import-tree", "--from", at("backup"), "--account", at("keyed"), "--user", kUser};
        decrypt.insert(decrypt.end(), {"--key-file", at("key")});
        ASSERT_EXIT_CODE(0, chatTransfer(decrypt));
        fs::copy(at("plain-backup/imfiles"), at("backup/qelbackup/") + kUser + "/imfiles",
                 fs::copy_options::recursive | fs::copy_options::overwrite_existing);
        ASSERT_EXIT_CODE(
            0, chatTransfer({"import-tree", "--from", at("backup"), "--account", at("account"), "--user", kUser}));
    }

    // The plain tree still has its attachments: they are held against those of the account.
    Outcome verifyPlain() const { return verify("plain-backup", "account"); }

    void change(const std::string& sql) const { runSql(mainDatabase("account"), {sql}); }
    std::string firstFileIn(const std::string& folder) const {
        return fs::directory_iterator(at(folder))->path().string();
    }
    void changePlugin(const std::string& sql) const { runSql(at("account/db/plugin/kab.db"), {sql}); }
};

TEST_F(VerifyTree, FindsNothingAfterAnImport) {
    expectRows(expectSuccess(verifyPlain(), {"Nothing is missing and nothing differs."}),
               {{"Messages that agree", "300"}, {"Notes in the tree", "12"}, {"Attachments compared", "36"}});
}

TEST_F(VerifyTree, FindsMovedAttachmentsInTheAccount) {
    expectRows(expectSuccess(verify("backup", "keyed", keyFile()), {"Nothing is missing and nothing differs."}),
               {{"Messages that agree", "300"}, {"Attachments in the account", "36"}, {"Attachments compared", "0"}});
}

TEST_F(VerifyTree, FindsADeletedMessage) {
    const std::string table = biggestTable("account");
    const std::string id = queryText(mainDatabase("account"), "select min(msgID) from " + table, 1);
    change("delete from " + table + " where msgID = " + id);
    const Outcome run = expectFindings(
        verifyPlain(), {"Messages missing in the account: 1\n  message " + id + " of conversation " + table.substr(7)});
    EXPECT_EQ("299", rowOf(run.out, "Messages that agree"));
}

TEST_F(VerifyTree, FindsEachChangedFieldOfAMessage) {
    const std::string table = biggestTable("account");
    change("update " + table + " set body = 'other', time_ = time_ + 1, limitRange = '5' where msgID = (select min(" +
           "msgID) from " + table + ")");
    expectFindings(verifyPlain(), {": sendTime, message, limitRange\n"});
}

TEST_F(VerifyTree, FindsAMissingConversation) {
    change("drop table " + biggestTable("account"));
    expectFindings(verifyPlain(), {"Messages missing in the account: "});
}

TEST_F(VerifyTree, FindsAMissingContact) {
    change("delete from im_reContact where targetID = (select min(targetID) from im_reContact)");
    expectFindings(verifyPlain(), {"Recent contacts missing in the account: 1\n"});
}

TEST_F(VerifyTree, FindsMissingAndChangedNotes) {
    changePlugin("delete from im_note where _id = 1");
    changePlugin("update im_note set content = 'other' where _id = 2");
    expectFindings(verifyPlain(), {"Notes missing in the account: 1\n", "Notes that differ: 1\n"});
}

TEST_F(VerifyTree, FindsAMissingRoom) {
    changePlugin("delete from im_room where roomID = 1");
    expectFindings(verifyPlain(), {"Rooms missing in the account: 1\n"});
}

TEST_F(VerifyTree, FindsOneChangedByteOfAnAttachment) {
    const std::string path = firstFileIn("account/image");
    std::string bytes = readFile(path);
    bytes.back() = static_cast<char>(bytes.back() ^ 1);
    dir_.write(fs::path(path).lexically_relative(at("")).string(), bytes);
    expectFindings(verifyPlain(), {"Attachments that differ: 1\n"});
}

TEST_F(VerifyTree, FindsAShorterAttachment) {
    const std::string path = firstFileIn("account/audio");
    fs::resize_file(path, fs::file_size(path) - 1);
    expectFindings(verifyPlain(), {"Attachments that differ: 1\n  voice/"});
}

TEST_F(VerifyTree, FindsAttachmentsThatOnlyTheTreeHas) {
    fs::remove(firstFileIn("account/audio"));
    const Outcome run = expectFindings(
        verifyPlain(), {"Attachments missing in the account: 1\n  voice/", ", which the tree still has\n"});
    EXPECT_EQ("35", rowOf(run.out, "Attachments in the account"));
}

TEST_F(VerifyTree, FindsAttachmentsThatAreNowhere) {
    fs::remove_all(at("plain-backup/imfiles/voice"));
    fs::remove_all(at("account/audio"));
    const Outcome run = expectFindings(verifyPlain(), {"Attachments missing in the account: 3\n"});
    EXPECT_SAYS_NOT("which the tree still has", run.out);
}

TEST_F(VerifyTree, IsContentWithAttachmentsThatOnlyTheAccountHas) {
    fs::remove_all(at("plain-backup/imfiles/voice"));
    expectRows(expectSuccess(verifyPlain()), {{"Attachments in the account", "36"}, {"Attachments compared", "33"}});
}

TEST_F(VerifyTree, FindsFilesThatItCannotRead) {
    dir_.write("plain-backup/notes.nt", "no JSON");
    expectFindings(verifyPlain(), {"Files that cannot be read: 1\n  notes.nt: is not JSON"});
}

TEST_F(VerifyTree, RefusesWhatOnlyPackagesHave) {
    expectFailure(verify("plain-backup", "account", {"--since", "2024-06-30"}), {"leave out --since and --check"});
}

// Trees of a few files, of which the plain form "backup-plain" is held against the account.
class VerifySmallTree : public TreeCommandTest {
protected:
    void import() const {
        ASSERT_EXIT_CODE(0, encryptTree("backup-plain", "backup"));
        ASSERT_EXIT_CODE(0, importTree("account", "backup"));
    }
    Outcome verifyPlain(const Arguments& more = {}) const {
        return verify("backup-plain", "account", joined({"--key-file", at("key")}, more));
    }
};

TEST_F(VerifySmallTree, LetsTwoAttachmentsOfOneNameShareAPlace) {
    makePlainTree("backup-plain");
    dir_.write("backup-plain/2002/d.mg",
               plainMessage(4, R"("messageType": 3, "message": "{\"mediaUrl\": \"other/hello.amr\"}")"));
    dir_.write("backup-plain/imfiles/other/hello.amr", "another voice");
    import();
    expectSuccess(verifyPlain(), {"1  attachments share their name with another one"});
}

TEST_F(VerifySmallTree, FindsAFileThatTookTheNameOfAnAttachment) {
    makePlainTree("backup-plain");
    dir_.write("account/audio/hello.amr", "the account's own voice");
    import();
    expectFindings(verifyPlain(), {"Attachments that differ: 1\n  voice/hello.amr\n"});
}

TEST_F(VerifySmallTree, HoldsOnlyTheContactsOfOneFileAgainstTheAccount) {
    makePlainTree("backup-plain");
    makeContactFiles("backup-plain", 3);
    import();
    const Outcome run = expectSuccess(
        verifyPlain(), {"There are 4 files of recent contacts", "3  recent contacts stand in other files"});
    EXPECT_EQ("1", rowOf(run.out, "Recent contacts in the tree"));
    EXPECT_EXIT_CODE(1, verifyPlain({"--strict"}));
}

TEST_F(VerifySmallTree, FindsWhenTheContactsOfNoFileAreThere) {
    makePlainTree("backup-plain");
    makeContactFiles("backup-plain", 3);
    import();
    runSql(mainDatabase("account"), {"delete from im_reContact"}, kKey);
    expectFindings(verifyPlain(), {"Recent contacts missing in the account: 1\n"});
}

}  // namespace
}  // namespace test
