// --dry-run: says exactly what an import would do, and does nothing.
#include <filesystem>

#include "tests/app/tree_command_fixture.h"

namespace test {
namespace {

namespace fs = std::filesystem;

class DryRun : public TreeCommandTest {
protected:
    void SetUp() override { dir_.makeDir("tmp"); }

    // Dry runs put their copies into a folder of the test's own.
    Setting setting() const { return {{"TMPDIR=" + at("tmp")}}; }
    static Arguments dry(Arguments more = {}) {
        more.emplace_back("--dry-run");
        return more;
    }

    // What a run says it did, without the lines that name another file or another time.
    static std::string table(const Outcome& run) {
        std::istringstream lines(run.out);
        std::string rows;
        for (std::string line; std::getline(lines, line);) {
            if (line.compare(0, 2, "  ") == 0 && line.find("  Time") != 0) rows += line + "\n";
        }
        return rows;
    }

    // A dry run says what the import behind it does, and leaves everything as it was.
    void expectImportAsTold(const std::string& account, const std::string& package, const Arguments& more = {}) const {
        const std::string before = filesBelow(".");
        const Outcome dryRun = importInto(account, package, dry(more), setting());
        EXPECT_EXIT_CODE(0, dryRun);
        EXPECT_EQ(before, filesBelow("."));
        const Outcome real = importInto(account, package, more);
        EXPECT_EXIT_CODE(0, real);
        EXPECT_EQ(table(real), table(dryRun));
    }
    void expectTreeImportAsTold(const std::string& account, const std::string& backup,
                                const Arguments& more = {}) const {
        const std::string before = filesBelow(".");
        const Outcome dryRun = importTree(account, backup, dry(more), setting());
        const std::string after = filesBelow(".");
        const Outcome real = importTree(account, backup, more);
        EXPECT_EQ(real.code, dryRun.code) << dryRun.all();
        EXPECT_EQ(before, after);
        EXPECT_EQ(table(real), table(dryRun));
        EXPECT_NE("", table(dryRun));
    }
};

TEST_F(DryRun, OfAnImportIntoAFreshAccountMakesNothing) {
    makePackage("account", "package");
    expectImportAsTold("copy", "package");
}

TEST_F(DryRun, OfAnImportSaysThatNothingWasWritten) {
    makePackage("account", "package");
    const Outcome run = importInto("copy", "package", dry(), setting());
    EXPECT_SAYS("Dry run, nothing was written. An import into " + mainDatabase("copy") + " would do this:", run.out);
    EXPECT_SAYS("Would make a new database (not encrypted: no key was given): " + mainDatabase("copy"), run.out);
    EXPECT_FALSE(exists(at("copy")));
}

TEST_F(DryRun, OfAnImportCountsWhatIsThereAlready) {
    makePackage("account", "package");
    ASSERT_EXIT_CODE(0, importInto("copy", "package"));
    runSql(mainDatabase("copy"), {"delete from " + biggestTable("copy")});
    fs::remove_all(at("copy/image"));
    expectImportAsTold("copy", "package");
}

TEST_F(DryRun, OfAnImportIntoTheBackDatabase) {
    makePackage("account", "package");
    expectImportAsTold("copy", "package", {"--into", "back"});
}

TEST_F(DryRun, OfAnImportIntoAnEncryptedAccountNeedsTheKeyAndKeepsTheCopyEncrypted) {
    makePackage("account", "package");
    const Arguments withKey = {"--key-file", at("key")};
    ASSERT_EXIT_CODE(0, importInto("copy", "package", withKey));
    expectImportAsTold("copy", "package", withKey);
    expectFailure(importInto("copy", "package", dry(), setting()), {"it is encrypted, and no key was given"});
}

TEST_F(DryRun, OfAnImportCountsMissingAndRefusedAttachments) {
    makePackage("account", "package");
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(attachmentFolder("package"))) {
        if (!entry.is_regular_file()) continue;
        fs::remove(entry.path());
        fs::create_symlink("/etc/hostname", entry.path());
        break;
    }
    expectImportAsTold("copy", "package");
}

TEST_F(DryRun, WritesAReportThatSaysSo) {
    makePackage("account", "package");
    ASSERT_EXIT_CODE(0, importInto("copy", "package", dry({"--report", at("report.json")}), setting()));
    EXPECT_SAYS("\"dryRun\": true", readFile(at("report.json")));
    EXPECT_SAYS("\"written\": 300", readFile(at("report.json")));
}

TEST_F(DryRun, LeavesNoCopyBehindWhenItFails) {
    makePackage("account", "package");
    ASSERT_EXIT_CODE(0, importInto("copy", "package"));
    dir_.write("copy/db/backimsg.db", std::string(4096, 'x'));
    EXPECT_EXIT_CODE(1, importInto("copy", "package", dry(), setting()));
    EXPECT_EQ("", namesBelow("tmp"));
}

TEST_F(DryRun, WithoutRoomForTheCopySaysWhatToDo) {
    makePackage("account", "package");
    ASSERT_EXIT_CODE(0, importInto("copy", "package"));
    Setting small = setting();
    small.largestFile = 20'000;
    expectFailure(importInto("copy", "package", dry(), small), {"set TMPDIR to a folder with more"});
    EXPECT_EQ("", namesBelow("tmp"));
}

// --- Trees ---

TEST_F(DryRun, OfATreeIntoAFreshAccountMakesAndDecryptsNothing) {
    makeTree("backup");
    expectTreeImportAsTold("account", "backup");
}

TEST_F(DryRun, OfATreeCountsWhatIsThereAlready) {
    makeTree("backup");
    makeTree("again");
    ASSERT_EXIT_CODE(0, importTree("account", "again"));
    runSql(mainDatabase("account"), {"delete from im_msg_2002 where msgID = 1"}, kKey);
    expectTreeImportAsTold("account", "backup");
}

TEST_F(DryRun, OfATreeThatWasImportedBefore) {
    makeTree("backup");
    ASSERT_EXIT_CODE(0, importTree("account", "backup"));
    expectTreeImportAsTold("account", "backup");
}

TEST_F(DryRun, OfATreeIntoTheBackDatabase) {
    makeTree("backup");
    expectTreeImportAsTold("account", "backup", {"--into", "back"});
}

TEST_F(DryRun, OfATreeCountsTheCopiesThatWouldBeRemoved) {
    makeTree("backup");
    expectTreeImportAsTold("account", "backup", {"--remove-decrypted"});
}

TEST_F(DryRun, OfATreeCountsTheMessagesThatWouldBeTrimmed) {
    ASSERT_EXIT_CODE(0, chatTransfer({"sample-tree", "--to", at("plain"), "--user", kUser, "--conversations", "1",
                                      "--messages", "5200", "--days", "10"}));
    ASSERT_EXIT_CODE(0, encryptTree("plain", "backup"));
    const Outcome run = importTree("account", "backup", dry(), setting());
    EXPECT_EQ("2,200", rowOf(run.out, "Messages trimmed"));
    expectTreeImportAsTold("account", "backup");
}

TEST_F(DryRun, OfATreeWithSeveralContactFilesTakesTheOneThatCounts) {
    makePlainTree("plain");
    makeContactFiles("plain", 12);
    ASSERT_EXIT_CODE(0, encryptTree("plain", "backup"));
    dir_.makeDir("account");
    ASSERT_EXIT_CODE(0, importTree("account", "backup"));
    // The account has the contact that counts, and no other one: the dry run has to find it there, also from a copy of
    // the tree whose file system lists its names in another order.
    std::string elsewhere = "/dev/shm/chat-transfer-dry-run-XXXXXX";
    if (mkdtemp(elsewhere.data()) == nullptr) GTEST_SKIP() << "there is no second file system";
    const Outcome dryRun = importTree("account", "backup", dry(), {{"TMPDIR=" + elsewhere}});
    fs::remove_all(elsewhere);
    EXPECT_EXIT_CODE(0, dryRun);
    EXPECT_EQ("0", rowOf(dryRun.out, "Recent contacts inserted"));
}

TEST_F(DryRun, OfATreeNamesTheFilesThatCannotBeDecrypted) {
    makeTree("backup");
    putIntoTree("2002/broken.mg", "no container");
    fs::create_symlink("/etc/hostname", treeFolder("backup") + "/2002/link.mg");
    expectTreeImportAsTold("account", "backup");
}

TEST_F(DryRun, OfATreeSeesTheAttachmentsOfTheTreeItself) {
    makeTree("backup");
    const Outcome run = importTree("account", "backup", dry(), setting());
    expectRows(run, {{"Attachments moved", "1"}, {"Attachments missing", "0"}});
}

TEST_F(DryRun, OfATreeLeavesNoDecryptedTextBehind) {
    makeTree("backup");
    ASSERT_EXIT_CODE(0, importTree("account", "backup", dry(), setting()));
    EXPECT_EQ("", namesBelow("tmp"));
    EXPECT_EQ(0, countEnding(at("backup"), ".decrypt"));
}

}  // namespace
}  // namespace test
