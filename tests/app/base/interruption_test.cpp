// Ctrl-C on the terminal, as a person presses it.
#include "tests/app/tree_command_fixture.h"

namespace test {
namespace {

constexpr const char* kCtrlC = "\x03";

class Interrupted : public TreeCommandTest {
protected:
    // Large enough that a key press falls into each phase.
    void makeLargeSample() const {
        ASSERT_EXIT_CODE(0, sample("account", {"--messages", "60000", "--conversations", "30"}));
    }
    static void expectInterrupted(const std::string& words, const Outcome& run) {
        EXPECT_EQ(130, run.code) << run.out;
        EXPECT_SAYS("Ending at the next safe moment", run.out);
        EXPECT_SAYS("chat-transfer: Interrupted; " + words, run.out);
        EXPECT_SAYS("run the same command again", run.out);
    }
    static void expectNothingMade(const Outcome& run) {
        EXPECT_EQ(130, run.code) << run.out;
        EXPECT_SAYS("chat-transfer: Interrupted; nothing was made or changed", run.out);
    }
    Outcome pressInExport(const std::string& phase) const { return exportOnTerminal({{phase, kCtrlC, 0}}); }
    Outcome pressInImport(const std::string& phase, const Arguments& more = {}) const {
        const Arguments import = {"import", "--from", at("package"), "--account", at("copy"), "--user", kUser};
        return chatTransferOnTerminal(joined(import, more), {{phase, kCtrlC, 0}});
    }
};

TEST_F(Interrupted, ExportLeavesNothingInItsFolder) {
    makeLargeSample();
    expectInterrupted("no package was made", pressInExport("Reading the messages"));
    EXPECT_EQ("", listing(at("package")));
}

TEST_F(Interrupted, ExportCanBeRunAgain) {
    makeLargeSample();
    pressInExport("Reading the messages");
    EXPECT_EXIT_CODE(0, exportFrom("account", "package"));
    EXPECT_EXIT_CODE(0, verify("package", "account"));
}

TEST_F(Interrupted, ImportSaysWhatIsDoneAndRunAgainCompletesIt) {
    makeLargeSample();
    ASSERT_EXIT_CODE(0, exportFrom("account", "package"));
    expectInterrupted("0 messages have been written, in whole conversations", pressInImport("Reading the package"));
    EXPECT_EXIT_CODE(0, importInto("copy", "package"));
    EXPECT_EXIT_CODE(0, verify("package", "copy"));
}

TEST_F(Interrupted, DryRunOfAnImportSaysThatNothingWasWritten) {
    makeLargeSample();
    ASSERT_EXIT_CODE(0, exportFrom("account", "package"));
    const std::string before = listing(dir_.path());
    expectNothingMade(pressInImport("Reading the package", {"--dry-run"}));
    EXPECT_EQ(before, listing(dir_.path()));
}

TEST_F(Interrupted, ImportOfATreeKeepsNoMessageAndRunAgainCompletesIt) {
    ASSERT_EXIT_CODE(0, chatTransfer({"sample-tree", "--to", at("plain"), "--user", kUser, "--conversations", "6",
                                      "--messages", "30000", "--days", "10"}));
    ASSERT_EXIT_CODE(0, encryptTree("plain", "backup"));
    const Outcome run = chatTransferOnTerminal(importArguments("account", "backup"), {{"Importing ...", kCtrlC, 0}});
    expectInterrupted("nothing has been written to the databases", run);
    EXPECT_EXIT_CODE(0, importTree("account", "backup"));
}

TEST_F(Interrupted, ViewOfAPackageLeavesNoPages) {
    makeLargeSample();
    ASSERT_EXIT_CODE(0, exportFrom("account", "package"));
    const std::string before = listing(dir_.path());
    for (const char* phase : {"Reading the messages", "Writing pages"}) {
        expectNothingMade(chatTransferOnTerminal(
            {"view", "--from", at("package"), "--user", kUser, "--to", at("pages")}, {{phase, kCtrlC, 0}}));
        EXPECT_EQ(before, listing(dir_.path()));
    }
}

TEST_F(Interrupted, ConversionOfATreeLeavesNothing) {
    makeBigPlainTree("plain", 400);
    expectNothingMade(chatTransferOnTerminal(
        {"encrypt-tree", "--from", at("plain"), "--to", at("interrupted"), "--user", kUser, "--key-file", at("key")},
        {{"Encrypting ...", kCtrlC, 0}}));
    EXPECT_EQ("", listing(at("interrupted/qelbackup")));

    ASSERT_EXIT_CODE(0, encryptTree("plain", "backup"));
    expectNothingMade(chatTransferOnTerminal({"decrypt-tree", "--from", at("backup"), "--to", at("interrupted/again"),
                                              "--user", kUser, "--key-file", at("key")},
                                             {{"Decrypting ...", kCtrlC, 0}}));
    EXPECT_EQ("qelbackup", listing(at("interrupted")));
}

// A dry run and a look into an encrypted tree keep private texts in a folder of their own for a while.
class InterruptedInPrivate : public Interrupted {
protected:
    void SetUp() override {
        ASSERT_EQ(0, setenv("TMPDIR", dir_.makeDir("tmp").c_str(), 1));
        makeBigPlainTree("plain", 400);
        ASSERT_EXIT_CODE(0, encryptTree("plain", "backup"));
    }
    void TearDown() override { unsetenv("TMPDIR"); }

    void expectNothingLeft(const Outcome& run) const {
        expectNothingMade(run);
        EXPECT_EQ("", listing(at("tmp")));
    }
};

TEST_F(InterruptedInPrivate, ViewOfATreeLeavesNoDecryptedText) {
    const std::string before = listing(dir_.path());
    for (const char* phase : {"Reading the messages", "Writing pages"}) {
        expectNothingLeft(chatTransferOnTerminal(
            {"view", "--from", at("backup"), "--user", kUser, "--to", at("pages"), "--key-file", at("key")},
            {{phase, kCtrlC, 0}}));
        EXPECT_EQ(before, listing(dir_.path()));
    }
}

TEST_F(InterruptedInPrivate, DryRunOfATreeLeavesNoDecryptedText) {
    const Arguments arguments = joined(importArguments("account", "backup"), {"--dry-run"});
    expectNothingLeft(chatTransferOnTerminal(arguments, {{"Decrypting the tree ...", kCtrlC, 0}}));
    EXPECT_FALSE(exists(at("account")));
}

}  // namespace
}  // namespace test
