#include "host/json/json_owner.h"
#include "tests/app/sample_tree_fixture.h"
#include "tests/app/tree_command_fixture.h"

namespace test {
namespace {

namespace fs = std::filesystem;

class InspectTree : public SampleTreeTest {
protected:
    static void expectWholeSample(const Outcome& run) {
        EXPECT_EXIT_CODE(0, run);
        EXPECT_EQ("300", rowOf(run.out, "Messages"));
        EXPECT_EQ("4", rowOf(run.out, "Conversations"));
        EXPECT_EQ("4", rowOf(run.out, "Recent contacts"));
        EXPECT_EQ("12", rowOf(run.out, "Notes"));
        EXPECT_EQ("2", rowOf(run.out, "Rooms"));
        EXPECT_EQ("36", rowOf(run.out, "Attachments present"));
        EXPECT_EQ("0", rowOf(run.out, "Attachments missing"));
    }
};

TEST_F(InspectTree, ShowsWhatAPlainTreeHolds) {
    makePlainTree("tree");
    const Outcome run = inspect("tree");
    expectWholeSample(run);
    expectRows(run, {{"Message files", "4 plain"}, {"Version", "1.0"}, {"Days", "2024-06-26 to 2024-06-30"}});
}

TEST_F(InspectTree, CountsEncryptedFilesWithoutAKey) {
    makeEncryptedTree("backup");
    expectRows(expectSuccess(inspect("backup"), {"7 files are encrypted: give the key"}),
               {{"Message files", "4 encrypted"}, {"Messages", "0"}});
}

TEST_F(InspectTree, ReadsEncryptedFilesWithTheKeyAndLeavesNothingBehind) {
    makeEncryptedTree("backup");
    dir_.makeDir("temporary");
    const Outcome run = chatTransfer({"inspect", at("backup"), "--user", kUser, "--key-file", at("key")},
                                     {{"TMPDIR=" + at("temporary")}});
    expectWholeSample(run);
    EXPECT_EQ("", listing(at("temporary")));
    EXPECT_EQ("4 encrypted", rowOf(inspect("backup").out, "Message files"));
}

TEST_F(InspectTree, AsksForTheKeyOnlyOnce) {
    makeEncryptedTree("backup");
    const Outcome run = expectSuccess(chatTransferOnTerminal({"inspect", at("backup"), "--user", kUser, "--ask-key"},
                                                             {{"Key of the account: ", "secret\r"}}),
                                      {"4 encrypted"});
    EXPECT_SAYS_NOT("again", run.out);
    EXPECT_SAYS_NOT("cannot be decrypted", run.out);
}

TEST_F(InspectTree, NamesFilesThatTheKeyDoesNotOpen) {
    makeEncryptedTree("backup");
    dir_.write("key", "wrong");
    const Outcome run = expectSuccess(inspect("backup", keyFile()), {"contacts.ct: cannot be decrypted: wrong key"});
    EXPECT_EQ("0", rowOf(run.out, "Messages"));
}

TEST_F(InspectTree, ReadsTheDecryptedCopiesOfAnImport) {
    makeEncryptedTree("backup");
    Arguments import = {"import-tree", "--from", at("backup"), "--account", at("account"), "--user", kUser};
    import.insert(import.end(), {"--key-file", at("key")});
    ASSERT_EXIT_CODE(0, chatTransfer(import));
    const Outcome run = inspect("backup");
    expectRows(run, {{"Message files", "4 decrypted"}, {"Messages", "300"}, {"Attachments missing", "36"}});
}

TEST_F(InspectTree, ShowsThePackageWhereThereIsOneUnlessAskedForTheTree) {
    makePackage("account", "backup");
    makeEncryptedTree("backup");
    EXPECT_SAYS("Package ", inspect("backup").out);
    EXPECT_SAYS("Tree ", inspect("backup", {"--tree"}).out);
}

TEST_F(InspectTree, FindsMissingAttachments) {
    makePlainTree("tree");
    fs::remove_all(at("tree/imfiles/video"));
    const Outcome run = inspect("tree");
    expectRows(run, {{"Attachments present", "30"}, {"Attachments missing", "6"}});
}

TEST_F(InspectTree, NamesDamagedFilesAndThoseOfNoConversation) {
    makePlainTree("tree");
    dir_.write("tree/notes.nt", "no JSON");
    dir_.write("tree/12/list.mg", R"({"version":"1.0"})");
    const Outcome run = inspect("tree");
    EXPECT_SAYS("  notes.nt: is not JSON", run.out);
    EXPECT_SAYS("  12/list.mg: has no list of records", run.out);
    EXPECT_EQ("0", rowOf(run.out, "Notes"));
}

TEST_F(InspectTree, PrintsTheSameAsJson) {
    makePlainTree("tree");
    const Outcome run = inspect("tree", {"--json"});
    const tools::JsonDocument document(json_parse_string(run.out.c_str()));
    const JSON_Object* object = json_value_get_object(document.get());
    EXPECT_EQ(300, json_object_get_number(object, "messages"));
    EXPECT_EQ(295, json_object_dotget_number(object, "byType.1"));
    EXPECT_EQ(1, json_object_dotget_number(object, "byType.89"));
    EXPECT_EQ(4, json_object_dotget_number(object, "files.messages.plain"));
    EXPECT_EQ(36, json_object_dotget_number(object, "attachments.present"));
}

class InspectContactFiles : public TreeCommandTest {
protected:
    // A tree of five files, decrypted by an import, so that the next one finds them in the same order.
    void SetUp() override {
        makeContactFiles("plain", 5);
        ASSERT_EXIT_CODE(0, encryptTree("plain", "backup"));
        ASSERT_EXIT_CODE(0, importTree("first", "backup"));
    }
};

TEST_F(InspectContactFiles, SayWhichOneAnImportTakes) {
    const Outcome run = expectSuccess(inspect("backup"), {"There are 5 files of recent contacts"});
    EXPECT_EQ("1", rowOf(run.out, "Recent contacts"));
    ASSERT_EXIT_CODE(0, importTree("second", "backup"));
    const std::string contact = mainRows("second", "select name from im_reContact");
    EXPECT_SAYS("\n  1  taken  contacts-" + contact.substr(contact.find(' ') + 1) + ".ct.decrypt\n", run.out);
}

TEST_F(InspectContactFiles, SayTheSameInJson) {
    const Outcome run = inspect("backup", {"--json"});
    const tools::JsonDocument document(json_parse_string(run.out.c_str()));
    const JSON_Array* files = json_object_get_array(json_value_get_object(document.get()), "recentContactFiles");
    ASSERT_EQ(5U, json_array_get_count(files));
    int taken = 0;
    for (std::size_t i = 0; i < 5; ++i)
        taken += json_object_get_boolean(json_array_get_object(files, i), "taken");
    EXPECT_EQ(1, taken);
}

TEST_F(InspectContactFiles, AreNotListedWhenThereIsOnlyOne) {
    makeTree("single");
    EXPECT_SAYS_NOT("files of recent contacts", inspect("single", {"--key-file", at("key")}).out);
}

TEST_F(InspectTree, NamesTheUsersOfTheTrees) {
    makeEncryptedTree("backup");
    expectFailure(chatTransfer({"inspect", at("backup"), "--user", "7"}),
                  {std::string("there are trees of: ") + kUser});
}

}  // namespace
}  // namespace test
