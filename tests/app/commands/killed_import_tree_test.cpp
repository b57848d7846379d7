// An import of a tree that is killed, and run again.
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <sstream>

#include "tests/app/kills.h"
#include "tests/app/tree_command_fixture.h"

namespace test {
namespace {

namespace fs = std::filesystem;
using std::chrono::microseconds;

constexpr int kUsualKills = 7;

// Empty for equal texts, else the beginning of the first lines that are not the same: the texts are long and hold
// binary files.
std::string firstDifference(const std::string& expected, const std::string& found) {
    constexpr std::size_t kShown = 100;
    if (expected == found) return "";
    std::istringstream expectedLines(expected);
    std::istringstream foundLines(found);
    std::string wanted;
    std::string line;
    while (wanted == line && expectedLines && foundLines) {
        wanted = line = "(nothing)";
        std::getline(expectedLines, wanted);
        std::getline(foundLines, line);
    }
    return "\"" + line.substr(0, kShown) + "\" instead of \"" + wanted.substr(0, kShown) + "\"";
}

class KilledImportTree : public TreeCommandTest {
protected:
    // 4,000 messages in some 40 files, attachments of every kind, contacts, notes and rooms.
    void SetUp() override {
        ASSERT_EXIT_CODE(0, chatTransfer({"sample-tree", "--to", at("plain"), "--user", kUser, "--conversations", "6",
                                          "--messages", "4000", "--per-file", "100", "--days", "10"}));
        ASSERT_EXIT_CODE(0, encryptTree("plain", "backup"));
        ASSERT_EQ(0, waitFor(startImport("whole")).code);
        undisturbed_ = everythingOf("whole");
        all_ = decryptedFiles("whole");
    }

    static std::string accountOf(int kill) { return "killed" + std::to_string(kill); }
    static std::string treeOf(const std::string& account) { return account + "-tree"; }

    // Starts the import of a fresh copy of the tree into a fresh account.
    pid_t startImport(const std::string& account) const {
        fs::remove_all(at(account));
        fs::remove_all(at(treeOf(account)));
        fs::copy(at("backup"), at(treeOf(account)), fs::copy_options::recursive);
        return startChatTransfer(importArguments(account, treeOf(account)));
    }

    // Starts an import and waits until it has decrypted that many files.
    pid_t startAndWaitFor(long long files, const std::string& account) const {
        const pid_t child = startImport(account);
        while (decryptedFiles(account) < files && !isOver(child))
            usleep(100);
        return child;
    }

    // Kills what start() starts at random moments within `most`, and lets the import be run again after each.
    void killEachAndRepeat(microseconds most, const std::function<pid_t(const std::string&)>& start) const {
        killEach(
            kUsualKills, most, [&](int i) { return start(accountOf(i)); },
            [&](int i) { expectThatARepeatedImportEndsAsTheUndisturbed(accountOf(i)); });
    }

    // Kills an import that has decrypted at least so many files, but not all of them.
    void killWhileItDecrypts(long long files, const std::string& account) const {
        constexpr int kTries = 100;
        for (int i = 0; i < kTries; ++i) {
            killAfter(microseconds(0), [&] { return startAndWaitFor(files, account); });
            if (decryptedFiles(account) < all_) return;
        }
        ADD_FAILURE() << "no kill hit the decryption of the tree";
    }

    void expectThatARepeatedImportEndsAsTheUndisturbed(const std::string& account) const {
        ASSERT_EXIT_CODE(0, importTree(account, treeOf(account)));
        EXPECT_EQ("", firstDifference(undisturbed_, everythingOf(account))) << account;
        fs::remove_all(at(account));
        fs::remove_all(at(treeOf(account)));
    }

    long long decryptedFiles(const std::string& account) const { return countEnding(at(treeOf(account)), ".decrypt"); }

    // The databases row by row, and their files by name (their bytes are random); attachments and what is left of the
    // tree with all bytes.
    std::string everythingOf(const std::string& account) const {
        return contentOf(account) + wholeText(at(account + "/db/backimsg.db"), kKey) + namesBelow(account) +
               filesBelow(treeOf(account));
    }

    std::string undisturbed_;  // everything, after an import that nobody disturbed
    long long all_ = 0;        // how many files that one decrypted
};

TEST_F(KilledImportTree, BeforeTheDecryptionAndRunAgainLeavesWhatAnUndisturbedRunLeaves) {
    pid_t child = 0;
    const microseconds most = timeOf([&] { child = startAndWaitFor(1, "timed"); });
    EXPECT_EQ(0, waitFor(child).code);
    killEachAndRepeat(most, [&](const std::string& account) { return startImport(account); });
}

TEST_F(KilledImportTree, WhileItDecryptsAndRunAgainLeavesWhatAnUndisturbedRunLeaves) {
    const int moments = killCount(kUsualKills);
    for (int i = 0; i < moments; ++i) {
        killWhileItDecrypts(1 + (all_ - 2) * i / moments, accountOf(i));
        ASSERT_NO_FATAL_FAILURE(expectThatARepeatedImportEndsAsTheUndisturbed(accountOf(i)));
    }
}

TEST_F(KilledImportTree, BehindTheDecryptionAndRunAgainLeavesWhatAnUndisturbedRunLeaves) {
    const pid_t child = startAndWaitFor(all_, "timed");
    const microseconds most = timeOf([child] { EXPECT_EQ(0, waitFor(child).code); });
    killEachAndRepeat(most, [&](const std::string& account) { return startAndWaitFor(all_, account); });
}

}  // namespace
}  // namespace test
