#include <sys/stat.h>

#include <filesystem>

#include "tests/app/tree_command_fixture.h"

namespace test {
namespace {

namespace fs = std::filesystem;

using ImportTreeCommand = TreeCommandTest;

TEST_F(ImportTreeCommand, BringsTheWholeTreeIntoAFreshAccount) {
    makeTree("backup");
    const Outcome run = importTree("account", "backup");
    EXPECT_EXIT_CODE(0, run);
    EXPECT_EQ("3", rowOf(run.out, "Messages inserted"));
    EXPECT_EQ("2", rowOf(run.out, "Conversations"));
    EXPECT_EQ("1", rowOf(run.out, "Recent contacts inserted"));
    EXPECT_EQ("2", rowOf(run.out, "Notes inserted"));
    EXPECT_EQ("1", rowOf(run.out, "Rooms inserted"));
    EXPECT_EQ("1", rowOf(run.out, "Attachments moved"));
    EXPECT_EQ("0", rowOf(run.out, "Files not decryptable"));
    EXPECT_EQ("0", rowOf(run.out, "Files not parsable"));
}

TEST_F(ImportTreeCommand, PutsTheRowsIntoTheDatabasesAndTheFilesIntoTheFolders) {
    makeTree("backup");
    ASSERT_EXIT_CODE(0, importTree("account", "backup"));
    EXPECT_EQ("1\n2", messageIds("account", "im_msg_2002"));
    EXPECT_EQ("3", messageIds("account", "im_msg_3003"));
    EXPECT_EQ("2002|Ada", mainRows("account", "select targetID, name from im_reContact", 2));
    EXPECT_EQ("tea\nmilk", pluginRows("account", "select content from im_note order by _id"));
    EXPECT_EQ("Club|2;1", pluginRows("account", "select roomName, roomMember from im_room", 2));
    EXPECT_EQ(std::string("\0\1\xff voice", 9), readFile(at("account/audio/hello.amr")));
}

TEST_F(ImportTreeCommand, MakesTheUsersFoldersForTheirOwnerOnly) {
    makeTree("backup");
    ASSERT_EXIT_CODE(0, importTree("account", "backup"));
    for (const char* folder : {"account/audio", "account/file", "account/image", "account/video"})
        EXPECT_EQ(0700U, permissionsOf(at(folder))) << folder;
}

TEST_F(ImportTreeCommand, AgainAddsNothing) {
    makeTree("backup");
    ASSERT_EXIT_CODE(0, importTree("account", "backup"));
    const std::string before = contentOf("account");
    const Outcome run = importTree("account", "backup");
    EXPECT_EXIT_CODE(0, run);
    EXPECT_EQ("0", rowOf(run.out, "Messages inserted"));
    EXPECT_EQ("3", rowOf(run.out, "Messages there already"));
    EXPECT_EQ("2", rowOf(run.out, "Notes there already"));
    EXPECT_EQ("1", rowOf(run.out, "Rooms there already"));
    EXPECT_EQ("1", rowOf(run.out, "Attachments there already"));
    EXPECT_EQ(before, contentOf("account"));
}

TEST_F(ImportTreeCommand, AcceptsTheFolderOfTheTreesItself) {
    makeTree("backup");
    EXPECT_EXIT_CODE(0, importTree("account", "backup/qelbackup"));
}

TEST_F(ImportTreeCommand, WithoutATreeSaysWhatItLookedFor) {
    dir_.makeDir("backup");
    const Outcome run = importTree("account", "backup");
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS(at("backup/qelbackup/"), run.err);
    EXPECT_SAYS("0xff000022", run.err);
    EXPECT_FALSE(exists(at("account")));
}

TEST_F(ImportTreeCommand, OfAPlainTreeNamesTheCommandThatEncryptsIt) {
    makePlainTree("plain");
    const Outcome run = importTree("account", "plain");
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("encrypt-tree makes one out of a plain tree", run.err);
}

TEST_F(ImportTreeCommand, IsWhatAPackageImportOfATreeNames) {
    makeTree("backup");
    const Outcome run = importInto("account", "backup");
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("a tree, in qelbackup, is for import-tree", run.err);
}

TEST_F(ImportTreeCommand, OfAnotherUserNamesTheUsersWhoseTreesAreThere) {
    dir_.makeDir("backup/qelbackup/4711");
    const Outcome run = importTree("account", "backup");
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("There is no tree of user 1000000000000001", run.err);
    EXPECT_SAYS("there are trees of: 4711", run.err);
}

TEST_F(ImportTreeCommand, WithAWrongKeyChangesNothingAndGivesTheRemedy) {
    makeTree("backup");
    const std::string before = filesBelow("backup");
    const Outcome run = importTree("account", "backup", {"--key-file", otherKey()});
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("None of the tree's files can be read (6 files)", run.err);
    EXPECT_SAYS("wrong key, or the file is damaged", run.err);
    EXPECT_SAYS("check the key", run.err);
    EXPECT_FALSE(exists(at("account")));
    EXPECT_EQ(before, filesBelow("backup"));
}

TEST_F(ImportTreeCommand, NamesOnlyTheFirstFilesOfAWrongKey) {
    makeBigPlainTree("plain", 30);
    ASSERT_EXIT_CODE(0, encryptTree("plain", "backup"));
    const Outcome run = importTree("account", "backup", {"--key-file", otherKey()});
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("(30 files)", run.err);
    EXPECT_SAYS("... and 10 more", run.err);
}

TEST_F(ImportTreeCommand, WithoutAKeySaysThatOneIsNeeded) {
    makeTree("backup");
    const Outcome run =
        chatTransfer({"import-tree", "--user", kUser, "--from", at("backup"), "--account", at("account")});
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("no key", run.err);
    EXPECT_SAYS("--key-file FILE", run.err);
    EXPECT_FALSE(exists(at("account")));
}

TEST_F(ImportTreeCommand, IntoAnAccountOfAnotherKeyLeavesTheTreeEncrypted) {
    makeTree("backup");
    ASSERT_EXIT_CODE(0, sample("account", {"--messages", "10", "--conversations", "1", "--key-file", otherKey()}));
    const Outcome run = importTree("account", "backup");
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("the key does not fit", run.err);
    EXPECT_TRUE(exists(treeFolder("backup") + "/2002/a.mg"));
}

TEST_F(ImportTreeCommand, GoesOnBehindADamagedFileAndFails) {
    makeTree("backup");
    dir_.write("backup/qelbackup/" + std::string(kUser) + "/2002/a.mg", "not encrypted");
    const Outcome run = importTree("account", "backup");
    EXPECT_EXIT_CODE(1, run);
    EXPECT_EQ("1", rowOf(run.out, "Files not decryptable"));
    EXPECT_SAYS("2002/a.mg: cannot be decrypted: not an encrypted file", run.err);
    EXPECT_EQ("2", messageIds("account", "im_msg_2002"));
}

TEST_F(ImportTreeCommand, GoesOnBehindAFileThatIsNotJsonAndFails) {
    makePlainTree("plain");
    dir_.write("plain/2002/d.mg", "{\"version\": ");
    ASSERT_EXIT_CODE(0, encryptTree("plain", "backup"));
    const Outcome run = importTree("account", "backup");
    EXPECT_EXIT_CODE(1, run);
    EXPECT_EQ("1", rowOf(run.out, "Files not parsable"));
    EXPECT_EQ("0", rowOf(run.out, "Files not decryptable"));
    EXPECT_SAYS("is not JSON", run.err);
    EXPECT_EQ("3", rowOf(run.out, "Messages inserted"));
}

TEST_F(ImportTreeCommand, OfAnotherVersionMakesNothing) {
    makeTree("backup");
    const Outcome run = importTree("account", "backup", {"--package-version", "9"});
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("this import expects \"9\", the file says \"1.0\"", run.err);
    EXPECT_SAYS("0xff000024", run.err);
    EXPECT_FALSE(exists(at("account")));
}

TEST_F(ImportTreeCommand, NamesTheFileOfAnotherVersionAtWhichItStops) {
    makePlainTree("plain");
    dir_.write("plain/notes.nt", R"({"version": "9", "note": []})");
    ASSERT_EXIT_CODE(0, encryptTree("plain", "backup"));
    const Outcome run = importTree("account", "backup");
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("notes.nt.decrypt", run.err);
    EXPECT_SAYS("has another version than 1.0", run.err);
    EXPECT_EQ("3", messageIds("account", "im_msg_3003"));
}

TEST_F(ImportTreeCommand, IntoTheBackDatabaseBringsMessagesOnly) {
    makeTree("backup");
    const Outcome run = importTree("account", "backup", {"--into", "back"});
    EXPECT_EXIT_CODE(0, run);
    EXPECT_EQ("3", rowOf(run.out, "Messages inserted"));
    EXPECT_EQ("", rowOf(run.out, "Notes inserted"));
    const std::string back = at("account/db/backimsg.db");
    EXPECT_EQ("1\n2", queryText(back, "select msgID from im_msg_2002 order by msgID", 1, kKey));
    EXPECT_EQ("", mainRows("account", "select name from sqlite_master"));
    EXPECT_EQ("", listing(at("account/audio")));
    EXPECT_TRUE(exists(treeFolder("backup") + "/notes.nt"));
}

TEST_F(ImportTreeCommand, KeepsTheDecryptedCopiesUnlessToldOtherwise) {
    makeTree("backup");
    ASSERT_EXIT_CODE(0, importTree("account", "backup"));
    EXPECT_EQ(6, countEnding(treeFolder("backup"), ".decrypt"));
}

TEST_F(ImportTreeCommand, RemovesTheDecryptedCopiesOfAllKindsWhenToldTo) {
    makeTree("backup");
    const Outcome run = importTree("account", "backup", {"--remove-decrypted"});
    EXPECT_EXIT_CODE(0, run);
    EXPECT_EQ("6", rowOf(run.out, "Decrypted copies removed"));
    EXPECT_EQ("", filesBelow("backup"));
}

TEST_F(ImportTreeCommand, IntoTheBackDatabaseRemovesTheDecryptedMessageFiles) {
    makeTree("backup");
    const Outcome run = importTree("account", "backup", {"--into", "back", "--remove-decrypted"});
    EXPECT_EXIT_CODE(0, run);
    EXPECT_EQ("3", rowOf(run.out, "Decrypted copies removed"));
    EXPECT_EQ(0, countEnding(treeFolder("backup"), ".decrypt"));
    EXPECT_TRUE(exists(treeFolder("backup") + "/rooms.rm"));
}

TEST_F(ImportTreeCommand, KeepsTheDecryptedCopyOfAFileThatItCouldNotParse) {
    makePlainTree("plain");
    dir_.write("plain/2002/d.mg", "no JSON");
    ASSERT_EXIT_CODE(0, encryptTree("plain", "backup"));
    const Outcome run = importTree("account", "backup", {"--remove-decrypted"});
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("1 decrypted copy was kept", run.err);
    EXPECT_EQ("no JSON", readFile(treeFolder("backup") + "/2002/d.mg.decrypt"));
    EXPECT_EQ(1, countEnding(treeFolder("backup"), ".decrypt"));
}

TEST_F(ImportTreeCommand, KeepsMessageFilesOfWhichAnAttachmentCouldNotBeMoved) {
    makeTree("backup");
    ASSERT_EXIT_CODE(0, importTree("account", "backup", {"--into", "back"}));
    fs::remove_all(at("account/audio"));
    dir_.write("account/audio", "a file in the way");
    const Outcome run = importTree("account", "backup", {"--remove-decrypted"});
    EXPECT_EXIT_CODE(1, run);
    EXPECT_TRUE(exists(treeFolder("backup") + "/2002/old/b.mg.decrypt"));
    EXPECT_TRUE(exists(treeFolder("backup") + "/imfiles/voice/hello.amr"));
}

TEST_F(ImportTreeCommand, KeepsContactFilesWhenThereAreSeveral) {
    makePlainTree("plain");
    dir_.write("plain/more.ct", R"({"version": "1.0", "recontact": []})");
    ASSERT_EXIT_CODE(0, encryptTree("plain", "backup"));
    const Outcome run = importTree("account", "backup", {"--remove-decrypted"});
    EXPECT_SAYS("only the last one counts", run.err);
    EXPECT_EQ(2, countEnding(treeFolder("backup"), ".decrypt"));
}

TEST_F(ImportTreeCommand, PrintsHostileNamesSafely) {
    makeTree("backup");
    dir_.write("backup/qelbackup/" + std::string(kUser) + "/2002/\x1b[2J\nevil\xff.mg", "not encrypted");
    const Outcome run = importTree("account", "backup");
    EXPECT_EXIT_CODE(1, run);
    EXPECT_FALSE(hasControlCharacter(run.out + run.err)) << run.all();
    EXPECT_SAYS("\\x1b[2J", run.err);
}

TEST_F(ImportTreeCommand, NeverWaitsForAFifoNorFollowsALink) {
    makeTree("backup");
    ASSERT_EQ(0, mkfifo((treeFolder("backup") + "/2002/fifo.mg").c_str(), 0600));
    fs::create_directory_symlink(treeFolder("backup") + "/2002", treeFolder("backup") + "/9009");
    const Outcome run = importTree("account", "backup");
    EXPECT_EXIT_CODE(1, run);
    EXPECT_EQ("1", rowOf(run.out, "Files not decryptable"));
    EXPECT_EQ("2", rowOf(run.out, "Conversations"));
}

TEST_F(ImportTreeCommand, RemovesWhatAnInterruptedDecryptionLeft) {
    makeTree("backup");
    const std::string folder = "backup/qelbackup/" + std::string(kUser) + "/2002/";
    const std::string leftover = dir_.write(folder + ".chat-transfer-4711-0.part", "private");
    const std::string ofAnEarlierVersion = dir_.write(folder + ".caes-0123456789abcdef.part", "private");
    ASSERT_EXIT_CODE(0, importTree("account", "backup"));
    EXPECT_FALSE(exists(leftover));
    EXPECT_FALSE(exists(ofAnEarlierVersion));
}

TEST_F(ImportTreeCommand, RemovesTheDatabasesThatAnInterruptedRunDidNotFinish) {
    makeTree("backup");
    for (const char* name :
         {"account/db/.chat-transfer-imsg.db.part", "account/db/.chat-transfer-imsg.db.part-journal",
          "account/db/.chat-transfer-backimsg.db.part-journal", "account/db/plugin/.chat-transfer-kab.db.part"})
        dir_.write(name, "unfinished");
    // As they were called before.
    for (const char* name : {"account/db/imsg.db.part", "account/db/imsg.db.part-journal",
                             "account/db/backimsg.db.part-journal", "account/db/plugin/kab.db.part"})
        dir_.write(name, "unfinished");
    ASSERT_EXIT_CODE(0, importTree("account", "backup"));
    EXPECT_EQ("backimsg.db imsg.db plugin", listing(at("account/db")));
    EXPECT_EQ("kab.db", listing(at("account/db/plugin")));
    EXPECT_EQ(0600U, permissionsOf(at("account/db/imsg.db")));
}

TEST_F(ImportTreeCommand, WithoutRoomForADatabaseLeavesNoneUnderItsName) {
    makeTree("backup");
    EXPECT_EXIT_CODE(1, importTree("account", "backup", {}, {{}, 1000}));
    EXPECT_EQ(std::string::npos, (" " + listing(at("account/db")) + " ").find(" imsg.db "));
    ASSERT_EXIT_CODE(0, importTree("account", "backup"));
    EXPECT_EQ("backimsg.db imsg.db plugin", listing(at("account/db")));
}

TEST_F(ImportTreeCommand, OnAFullDiskFailsAndCanBeRepeated) {
    makeBigPlainTree("plain", 300);
    ASSERT_EXIT_CODE(0, encryptTree("plain", "backup"));
    const Outcome full = importTree("account", "backup", {}, {{}, 20000});
    EXPECT_EXIT_CODE(1, full);
    EXPECT_SAYS("0xff00001f", full.err);
    EXPECT_SAYS("none of them was kept", full.err);
    const Outcome again = importTree("account", "backup");
    EXPECT_EXIT_CODE(0, again);
    EXPECT_EQ("300", rowOf(again.out, "Messages inserted"));
}

TEST_F(ImportTreeCommand, HelpSaysWhatGoesOnlyWithTheMainDatabase) {
    const Outcome run = chatTransfer({"import-tree", "--help"});
    EXPECT_EXIT_CODE(0, run);
    EXPECT_SAYS("Into \"back\" go the messages only", run.out);
}

}  // namespace
}  // namespace test
