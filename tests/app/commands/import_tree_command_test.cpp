#include <sys/stat.h>

#include <filesystem>

#include "tests/app/tree_command_fixture.h"

namespace test {
namespace {

namespace fs = std::filesystem;

using ImportTreeCommand = TreeCommandTest;

TEST_F(ImportTreeCommand, BringsTheWholeTreeIntoAFreshAccount) {
    makeTree("backup");
    expectRows(expectSuccess(importTree("account", "backup")), {{"Messages inserted", "3"},
                                                                {"Conversations", "2"},
                                                                {"Recent contacts inserted", "1"},
                                                                {"Notes inserted", "2"},
                                                                {"Rooms inserted", "1"},
                                                                {"Attachments moved", "1"},
                                                                {"Files not decryptable", "0"},
                                                                {"Files not parsable", "0"}});
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
    expectRows(expectSuccess(importTree("account", "backup")), {{"Messages inserted", "0"},
                                                                {"Messages there already", "3"},
                                                                {"Notes there already", "2"},
                                                                {"Rooms there already", "1"},
                                                                {"Attachments there already", "1"}});
    EXPECT_EQ(before, contentOf("account"));
}

TEST_F(ImportTreeCommand, AcceptsTheFolderOfTheTreesItself) {
    makeTree("backup");
    EXPECT_EXIT_CODE(0, importTree("account", "backup/qelbackup"));
}

TEST_F(ImportTreeCommand, WithoutATreeSaysWhatItLookedFor) {
    dir_.makeDir("backup");
    expectFailure(importTree("account", "backup"), {at("backup/qelbackup/"), "0xff000022"});
    EXPECT_FALSE(exists(at("account")));
}

TEST_F(ImportTreeCommand, OfAPlainTreeNamesTheCommandThatEncryptsIt) {
    makePlainTree("plain");
    expectFailure(importTree("account", "plain"), {"encrypt-tree makes one out of a plain tree"});
}

TEST_F(ImportTreeCommand, IsWhatAPackageImportOfATreeNames) {
    makeTree("backup");
    expectFailure(importInto("account", "backup"), {"a tree, in qelbackup, is for import-tree"});
}

TEST_F(ImportTreeCommand, OfAnotherUserNamesTheUsersWhoseTreesAreThere) {
    dir_.makeDir("backup/qelbackup/4711");
    expectFailure(importTree("account", "backup"),
                  {"There is no tree of user 1000000000000001", "there are trees of: 4711"});
}

TEST_F(ImportTreeCommand, WithAWrongKeyChangesNothingAndGivesTheRemedy) {
    makeTree("backup");
    const std::string before = filesBelow("backup");
    expectFailure(
        importTree("account", "backup", {"--key-file", otherKey()}),
        {"None of the tree's files can be read (6 files)", "wrong key, or the file is damaged", "check the key"});
    EXPECT_FALSE(exists(at("account")));
    EXPECT_EQ(before, filesBelow("backup"));
}

TEST_F(ImportTreeCommand, NamesOnlyTheFirstFilesOfAWrongKey) {
    makeBigPlainTree("plain", 30);
    ASSERT_EXIT_CODE(0, encryptTree("plain", "backup"));
    expectFailure(importTree("account", "backup", {"--key-file", otherKey()}), {"(30 files)", "... and 10 more"});
}

TEST_F(ImportTreeCommand, WithoutAKeySaysThatOneIsNeeded) {
    makeTree("backup");
    expectFailure(chatTransfer({"import-tree", "--user", kUser, "--from", at("backup"), "--account", at("account")}),
                  {"no key", "--key-file FILE"});
    EXPECT_FALSE(exists(at("account")));
}

TEST_F(ImportTreeCommand, IntoAnAccountOfAnotherKeyLeavesTheTreeEncrypted) {
    makeTree("backup");
    ASSERT_EXIT_CODE(0, sample("account", {"--messages", "10", "--conversations", "1", "--key-file", otherKey()}));
    expectFailure(importTree("account", "backup"), {"the key does not fit"});
    EXPECT_TRUE(exists(treeFolder("backup") + "/2002/a.mg"));
}

TEST_F(ImportTreeCommand, GoesOnBehindADamagedFileAndFails) {
    makeTree("backup");
    putIntoTree("2002/a.mg", "not encrypted");
    const Outcome run =
        expectFailure(importTree("account", "backup"), {"2002/a.mg: cannot be decrypted: not an encrypted file"});
    EXPECT_EQ("1", rowOf(run.out, "Files not decryptable"));
    EXPECT_EQ("2", messageIds("account", "im_msg_2002"));
}

TEST_F(ImportTreeCommand, GoesOnBehindAFileThatIsNotJsonAndFails) {
    makePlainTree("plain");
    dir_.write("plain/2002/d.mg", "{\"version\": ");
    ASSERT_EXIT_CODE(0, encryptTree("plain", "backup"));
    expectRows(expectFailure(importTree("account", "backup"), {"is not JSON"}),
               {{"Files not parsable", "1"}, {"Files not decryptable", "0"}, {"Messages inserted", "3"}});
}

TEST_F(ImportTreeCommand, OfAnotherVersionMakesNothing) {
    makeTree("backup");
    expectFailure(importTree("account", "backup", {"--package-version", "9"}),
                  {"this import expects \"9\", the file says \"1.0\"", "0xff000024"});
    EXPECT_FALSE(exists(at("account")));
}

TEST_F(ImportTreeCommand, NamesTheFileOfAnotherVersionAtWhichItStops) {
    makePlainTree("plain");
    dir_.write("plain/notes.nt", R"({"version": "9", "note": []})");
    ASSERT_EXIT_CODE(0, encryptTree("plain", "backup"));
    expectFailure(importTree("account", "backup"), {"notes.nt.decrypt", "has another version than 1.0"});
    EXPECT_EQ("3", messageIds("account", "im_msg_3003"));
}

TEST_F(ImportTreeCommand, IntoTheBackDatabaseBringsMessagesOnly) {
    makeTree("backup");
    expectRows(expectSuccess(importTree("account", "backup", {"--into", "back"})),
               {{"Messages inserted", "3"}, {"Notes inserted", ""}});
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
    EXPECT_EQ("6", rowOf(expectSuccess(importTree("account", "backup", {"--remove-decrypted"})).out,
                         "Decrypted copies removed"));
    EXPECT_EQ("", filesBelow("backup"));
}

TEST_F(ImportTreeCommand, IntoTheBackDatabaseRemovesTheDecryptedMessageFiles) {
    makeTree("backup");
    EXPECT_EQ("3", rowOf(expectSuccess(importTree("account", "backup", {"--into", "back", "--remove-decrypted"})).out,
                         "Decrypted copies removed"));
    EXPECT_EQ(0, countEnding(treeFolder("backup"), ".decrypt"));
    EXPECT_TRUE(exists(treeFolder("backup") + "/rooms.rm"));
}

TEST_F(ImportTreeCommand, KeepsTheDecryptedCopyOfAFileThatItCouldNotParse) {
    makePlainTree("plain");
    dir_.write("plain/2002/d.mg", "no JSON");
    ASSERT_EXIT_CODE(0, encryptTree("plain", "backup"));
    expectFailure(importTree("account", "backup", {"--remove-decrypted"}), {"1 decrypted copy was kept"});
    EXPECT_EQ("no JSON", readFile(treeFolder("backup") + "/2002/d.mg.decrypt"));
    EXPECT_EQ(1, countEnding(treeFolder("backup"), ".decrypt"));
}

TEST_F(ImportTreeCommand, KeepsMessageFilesOfWhichAnAttachmentCouldNotBeMoved) {
    makeTree("backup");
    ASSERT_EXIT_CODE(0, importTree("account", "backup", {"--into", "back"}));
    fs::remove_all(at("account/audio"));
    dir_.write("account/audio", "a file in the way");
    expectFailure(importTree("account", "backup", {"--remove-decrypted"}));
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
    putIntoTree("2002/\x1b[2J\nevil\xff.mg", "not encrypted");
    const Outcome run = expectFailure(importTree("account", "backup"), {"\\x1b[2J"});
    EXPECT_FALSE(hasControlCharacter(run.out + run.err)) << run.all();
}

TEST_F(ImportTreeCommand, NeverWaitsForAFifoNorFollowsALink) {
    makeTree("backup");
    ASSERT_EQ(0, mkfifo((treeFolder("backup") + "/2002/fifo.mg").c_str(), 0600));
    fs::create_directory_symlink(treeFolder("backup") + "/2002", treeFolder("backup") + "/9009");
    expectRows(expectFailure(importTree("account", "backup")),
               {{"Files not decryptable", "1"}, {"Conversations", "2"}});
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
    expectFailure(importTree("account", "backup", {}, {{}, 20000}), {"0xff00001f", "none of them was kept"});
    EXPECT_EQ("300", rowOf(expectSuccess(importTree("account", "backup")).out, "Messages inserted"));
}

TEST_F(ImportTreeCommand, HelpSaysWhatGoesOnlyWithTheMainDatabase) {
    expectSuccess(chatTransfer({"import-tree", "--help"}), {"Into \"back\" go the messages only"});
}

}  // namespace
}  // namespace test
