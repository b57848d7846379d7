// An import of a tree that is killed, and run again.
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <random>
#include <sstream>

#include "tests/app/tree_command_fixture.h"

namespace test {
namespace {

namespace fs = std::filesystem;
using std::chrono::microseconds;
using std::chrono::steady_clock;

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

    // The shorter of two undisturbed imports.
    microseconds timeOfImport(const std::string& account) const {
        microseconds shortest = microseconds::max();
        for (int i = 0; i < 2; ++i) {
            const pid_t child = startImport(account);
            const auto start = steady_clock::now();
            EXPECT_EQ(0, waitFor(child).code);
            shortest = std::min(shortest, std::chrono::duration_cast<microseconds>(steady_clock::now() - start));
        }
        return shortest;
    }

    // A machine that is faster now has the import done before the moment: then an earlier one is taken.
    void killImportAfter(microseconds moment, const std::string& account) const {
        for (bool killed = false; !killed; moment = moment * 9 / 10) {
            const pid_t child = startImport(account);
            usleep(static_cast<useconds_t>(moment.count()));
            kill(child, SIGKILL);
            killed = waitFor(child).killed;
        }
    }

    long long decryptedFiles(const std::string& account) const { return countEnding(at(treeOf(account)), ".decrypt"); }

    // The databases row by row, and their files by name (their bytes are random); attachments and what is left of the
    // tree with all bytes.
    std::string everythingOf(const std::string& account) const {
        return contentOf(account) + wholeText(at(account + "/db/backimsg.db"), kKey) + namesBelow(account) +
               filesBelow(treeOf(account));
    }
};

TEST_F(KilledImportTree, AtManyMomentsAndRunAgainLeavesWhatAnUndisturbedRunLeaves) {
    const int moments = killCount(20);
    const microseconds time = timeOfImport("whole");
    const std::string undisturbed = everythingOf("whole");
    const long long all = decryptedFiles("whole");
    std::mt19937 random(20);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same moments each time
    std::uniform_int_distribution<int> part(0, static_cast<int>(time.count() / moments));
    int whileDecrypting = 0;
    int behindDecrypting = 0;
    for (int i = 0; i < moments; ++i) {
        const microseconds moment = time * i / moments + microseconds(part(random));
        const std::string account = "killed" + std::to_string(i);
        killImportAfter(moment, account);
        const long long decrypted = decryptedFiles(account);
        if (decrypted > 0 && decrypted < all) ++whileDecrypting;
        if (decrypted == all) ++behindDecrypting;
        ASSERT_EXIT_CODE(0, importTree(account, treeOf(account)));
        EXPECT_EQ("", firstDifference(undisturbed, everythingOf(account)))
            << "killed after " << moment.count() << " of " << time.count() << " microseconds";
        fs::remove_all(at(account));
        fs::remove_all(at(treeOf(account)));
    }
    EXPECT_GT(whileDecrypting, 0) << "no kill hit the decryption of the tree";
    EXPECT_GT(behindDecrypting, 0) << "no kill hit the import behind it";
}

}  // namespace
}  // namespace test
