// An import of a tree that is killed, and run again.
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <random>
#include <sstream>

#include "tests/app/tree_command_fixture.h"
#include "tests/support/seconds_of.h"

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
    }

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

    template <class Work>
    static microseconds timeOf(Work work) {
        return std::chrono::duration_cast<microseconds>(std::chrono::duration<double>(secondsOf(work)));
    }

    // Kills what start() starts at random moments within `most`, and lets the import be run again after each.
    void killEach(microseconds most, const std::function<pid_t(const std::string&)>& start,
                  const std::string& undisturbed) const {
        std::mt19937 random(20);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same moments each time
        std::uniform_int_distribution<microseconds::rep> moment(0, most.count());
        for (int i = 0; i < killCount(kUsualKills); ++i) {
            const std::string account = "killed" + std::to_string(i);
            killAfter(microseconds(moment(random)), [&] { return start(account); });
            expectThatARepeatedImportEndsAs(undisturbed, account);
        }
    }

    // Kills an import that has decrypted at least so many files, but not all of them.
    void killWhileItDecrypts(long long files, long long all, const std::string& account) const {
        constexpr int kTries = 100;
        for (int i = 0; i < kTries; ++i) {
            killAfter(microseconds(0), [&] { return startAndWaitFor(files, account); });
            if (decryptedFiles(account) < all) return;
        }
        ADD_FAILURE() << "no kill hit the decryption of the tree";
    }

    void expectThatARepeatedImportEndsAs(const std::string& undisturbed, const std::string& account) const {
        ASSERT_EXIT_CODE(0, importTree(account, treeOf(account)));
        EXPECT_EQ("", firstDifference(undisturbed, everythingOf(account))) << account;
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
};

TEST_F(KilledImportTree, BeforeTheDecryptionAndRunAgainLeavesWhatAnUndisturbedRunLeaves) {
    ASSERT_EQ(0, waitFor(startImport("whole")).code);
    const std::string undisturbed = everythingOf("whole");
    pid_t child = 0;
    const microseconds most = timeOf([&] { child = startAndWaitFor(1, "timed"); });
    EXPECT_EQ(0, waitFor(child).code);
    killEach(
        most, [&](const std::string& account) { return startImport(account); }, undisturbed);
}

TEST_F(KilledImportTree, WhileItDecryptsAndRunAgainLeavesWhatAnUndisturbedRunLeaves) {
    ASSERT_EQ(0, waitFor(startImport("whole")).code);
    const std::string undisturbed = everythingOf("whole");
    const long long all = decryptedFiles("whole");
    const int moments = killCount(kUsualKills);
    for (int i = 0; i < moments; ++i) {
        const std::string account = "killed" + std::to_string(i);
        killWhileItDecrypts(1 + (all - 2) * i / moments, all, account);
        expectThatARepeatedImportEndsAs(undisturbed, account);
    }
}

TEST_F(KilledImportTree, BehindTheDecryptionAndRunAgainLeavesWhatAnUndisturbedRunLeaves) {
    ASSERT_EQ(0, waitFor(startImport("whole")).code);
    const std::string undisturbed = everythingOf("whole");
    const long long all = decryptedFiles("whole");
    const pid_t child = startAndWaitFor(all, "timed");
    const microseconds most = timeOf([child] { EXPECT_EQ(0, waitFor(child).code); });
    killEach(
        most, [&](const std::string& account) { return startAndWaitFor(all, account); }, undisturbed);
}

}  // namespace
}  // namespace test
