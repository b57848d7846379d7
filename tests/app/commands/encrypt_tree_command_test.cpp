#include <sys/stat.h>

#include <csignal>
#include <filesystem>

#include "tests/app/tree_command_fixture.h"

namespace test {
namespace {

namespace fs = std::filesystem;

using EncryptTreeCommand = TreeCommandTest;
using DecryptTreeCommand = TreeCommandTest;

TEST_F(EncryptTreeCommand, EncryptsRecordFilesAndCopiesTheRest) {
    makePlainTree("plain");
    expectRows(expectSuccess(encryptTree("plain", "backup")), {{"Files encrypted", "6"}, {"Other files copied", "1"}});
    EXPECT_EQ("CTAES", readFile(treeFolder("backup") + "/2002/a.mg").substr(0, 5));
    EXPECT_EQ(std::string("\0\1\xff voice", 9), readFile(treeFolder("backup") + "/imfiles/voice/hello.amr"));
}

TEST_F(EncryptTreeCommand, LeavesThePlainTreeAsItIs) {
    makePlainTree("plain");
    const std::string before = filesBelow("plain");
    ASSERT_EXIT_CODE(0, encryptTree("plain", "backup"));
    EXPECT_EQ(before, filesBelow("plain"));
}

TEST_F(EncryptTreeCommand, MakesEverythingForItsOwnerOnly) {
    makeTree("backup");
    for (const char* name : {"", "/2002", "/imfiles/voice"})
        EXPECT_EQ(0700U, permissionsOf(treeFolder("backup") + name)) << name;
    for (const char* name : {"/2002/a.mg", "/imfiles/voice/hello.amr"})
        EXPECT_EQ(0600U, permissionsOf(treeFolder("backup") + name)) << name;
}

TEST_F(EncryptTreeCommand, LeavesNothingBesideTheTree) {
    makeTree("backup");
    EXPECT_EQ(kUser, listing(at("backup/qelbackup")));
}

TEST_F(EncryptTreeCommand, CopiesAttachmentsThatLookLikeRecordFilesAsTheyAre) {
    makePlainTree("plain");
    dir_.write("plain/imfiles/song.mg", "music");
    ASSERT_EXIT_CODE(0, encryptTree("plain", "backup"));
    EXPECT_EQ("music", readFile(treeFolder("backup") + "/imfiles/song.mg"));
}

TEST_F(EncryptTreeCommand, EncryptsADecryptedCopyUnderTheNameOfItsFile) {
    dir_.write("plain/2002/a.mg.decrypt", plainMessage(1));
    ASSERT_EXIT_CODE(0, encryptTree("plain", "backup"));
    EXPECT_EQ("a.mg", listing(treeFolder("backup") + "/2002"));
    EXPECT_EXIT_CODE(0, importTree("account", "backup"));
    EXPECT_EQ("1", messageIds("account", "im_msg_2002"));
}

TEST_F(EncryptTreeCommand, RefusesAnExistingTree) {
    makeTree("backup");
    const std::string before = filesBelow("backup");
    expectFailure(encryptTree("backup-plain", "backup"), {"it is never overwritten"});
    EXPECT_EQ(before, filesBelow("backup"));
}

TEST_F(EncryptTreeCommand, RefusesToEncryptTwice) {
    makeTree("backup");
    expectFailure(encryptTree(std::string("backup/qelbackup/") + kUser, "twice"), {"A file is encrypted already"});
    EXPECT_FALSE(exists(treeFolder("twice")));
}

TEST_F(EncryptTreeCommand, RefusesTheFolderThatHoldsWholeTrees) {
    makeTree("backup");
    expectFailure(encryptTree("backup", "nested"), {"it holds qelbackup"});
    EXPECT_FALSE(exists(at("nested")));
}

TEST_F(EncryptTreeCommand, RefusesATargetInsideItsSource) {
    makePlainTree("plain");
    expectFailure(encryptTree("plain", "plain/backup"), {"The target lies inside the source"});
    EXPECT_FALSE(exists(at("plain/backup")));
}

TEST_F(EncryptTreeCommand, WithoutAPlainTreeSaysWhatItLookedFor) {
    expectFailure(encryptTree("nowhere", "backup"), {at("nowhere")});
    EXPECT_FALSE(exists(at("backup")));
}

TEST_F(EncryptTreeCommand, NeedsAKey) {
    makePlainTree("plain");
    expectFailure(chatTransfer({"encrypt-tree", "--user", kUser, "--from", at("plain"), "--to", at("backup")}),
                  {"A key is needed"});
    EXPECT_FALSE(exists(at("backup")));
}

TEST_F(EncryptTreeCommand, NeverTakesTheKeyAsAnArgument) {
    const Outcome run =
        expectUsageError(encryptTree("plain", "backup", {"--key", "hunter2"}), {"a key is never an argument"});
    EXPECT_SAYS_NOT("hunter2", run.err);
}

TEST_F(EncryptTreeCommand, LeavesOutLinksAndFifosWithAMessage) {
    makePlainTree("plain");
    ASSERT_EQ(0, mkfifo(at("plain/2002/fifo.mg").c_str(), 0600));
    fs::create_symlink(at("key"), at("plain/2002/link.mg"));
    fs::create_directory_symlink(at("plain/2002"), at("plain/9009"));
    const Outcome run = expectSuccess(encryptTree("plain", "backup"));
    EXPECT_EQ("3", rowOf(run.out, "Left out"));
    EXPECT_SAYS("2002/fifo.mg: is a link or no regular file", run.err);
    EXPECT_EQ(6, countEnding(treeFolder("backup"), ".mg") + countEnding(treeFolder("backup"), ".ct") +
                     countEnding(treeFolder("backup"), ".nt") + countEnding(treeFolder("backup"), ".rm"));
    EXPECT_FALSE(exists(treeFolder("backup") + "/9009"));
}

TEST_F(EncryptTreeCommand, PrintsHostileNamesSafely) {
    makePlainTree("plain");
    fs::create_symlink("nowhere", at("plain/\x1b]0;evil\a\n"));
    const Outcome run = expectSuccess(encryptTree("plain", "backup"));
    EXPECT_FALSE(hasControlCharacter(run.out + run.err)) << run.all();
    EXPECT_SAYS("\\x1b]0;evil", run.err);
}

TEST_F(EncryptTreeCommand, LeavesNoTreeOfFoldersNestedWithoutEnd) {
    std::string deep = "plain";
    for (int i = 0; i < 250; ++i)
        deep += "/1";
    dir_.makeDir(deep);
    expectFailure(encryptTree("plain", "backup"), {"nested too deeply"});
    EXPECT_FALSE(exists(treeFolder("backup")));
}

TEST_F(EncryptTreeCommand, KilledLeavesNoTreeAndCanBeRepeated) {
    makeBigPlainTree("plain", 600);
    const pid_t child = startChatTransfer(
        {"encrypt-tree", "--user", kUser, "--key-file", at("key"), "--from", at("plain"), "--to", at("backup")});
    const bool begun = waitUntilThere(at("backup/qelbackup/.chat-transfer-tree.part/7001/50.mg"));
    kill(child, SIGKILL);
    ASSERT_TRUE(waitFor(child).killed) << "it was over before it could be killed";
    ASSERT_TRUE(begun);
    EXPECT_FALSE(exists(treeFolder("backup")));
    EXPECT_EXIT_CODE(0, encryptTree("plain", "backup"));
    EXPECT_EQ(kUser, listing(at("backup/qelbackup")));
}

TEST_F(DecryptTreeCommand, GivesThePlainTreeBackByteForByte) {
    makeTree("backup");
    dir_.makeDir("backup/qelbackup/" + std::string(kUser) + "/empty");
    EXPECT_EQ("6", rowOf(expectSuccess(decryptTree("backup", "again")).out, "Files decrypted"));
    EXPECT_EQ(filesBelow("backup-plain"), filesBelow("again"));
    EXPECT_TRUE(fs::is_directory(at("again/empty")));
}

TEST_F(DecryptTreeCommand, LeavesTheTreeAsItIs) {
    makeTree("backup");
    const std::string before = filesBelow("backup");
    ASSERT_EXIT_CODE(0, decryptTree("backup", "again"));
    EXPECT_EQ(before, filesBelow("backup"));
}

TEST_F(DecryptTreeCommand, TakesOverWhatAnImportDecrypted) {
    makeTree("backup");
    ASSERT_EXIT_CODE(0, importTree("account", "backup", {"--into", "back"}));
    EXPECT_EQ("3", rowOf(expectSuccess(decryptTree("backup", "again")).out, "Decrypted copies taken over"));
    EXPECT_EQ(filesBelow("backup-plain"), filesBelow("again"));
}

TEST_F(DecryptTreeCommand, PrefersTheEncryptedFileToItsDecryptedCopy) {
    makeTree("backup");
    putIntoTree("2002/a.mg.decrypt", "older");
    const Outcome run = expectSuccess(decryptTree("backup", "again"));
    EXPECT_SAYS("is a second copy", run.err);
    EXPECT_EQ(filesBelow("backup-plain"), filesBelow("again"));
}

TEST_F(DecryptTreeCommand, ListsWhatDoesNotDecryptAndFails) {
    makeTree("backup");
    putIntoTree("3003/c.mg", "damaged");
    const Outcome run =
        expectFailure(decryptTree("backup", "again"), {"3003/c.mg: cannot be decrypted: not an encrypted file"});
    EXPECT_EQ("1", rowOf(run.out, "Files not decrypted"));
    EXPECT_FALSE(exists(at("again/3003/c.mg")));
    EXPECT_TRUE(exists(at("again/2002/a.mg")));
}

TEST_F(DecryptTreeCommand, WithAWrongKeyWritesNothing) {
    makeTree("backup");
    expectFailure(decryptTree("backup", "again", {"--key-file", otherKey()}),
                  {"None of the tree's files can be decrypted", "wrong key"});
    EXPECT_FALSE(exists(at("again")));
    EXPECT_FALSE(exists(at(".chat-transfer-tree.part")));
}

TEST_F(DecryptTreeCommand, RefusesAnExistingTarget) {
    makeTree("backup");
    dir_.makeDir("again");
    expectFailure(decryptTree("backup", "again"), {"it is never overwritten"});
    EXPECT_EQ("", listing(at("again")));
}

TEST_F(DecryptTreeCommand, WithoutATreeSaysWhatItLookedFor) {
    expectFailure(decryptTree("nowhere", "again"), {at("nowhere/qelbackup/")});
}

}  // namespace
}  // namespace test
