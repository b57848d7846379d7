// An export and an import of a package that are killed at random moments, and run again.
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <iostream>
#include <random>

#include "tests/app/fixture.h"
#include "tests/support/snapshot.h"

namespace test {
namespace {

constexpr int kUsualKills = 10;

class Killed : public CommandTest {
protected:
    void SetUp() override {
        ASSERT_EXIT_CODE(0, sample("account", {"--conversations", "20", "--messages", "20000", "--days", "5"}));
        ASSERT_EXIT_CODE(0, exportFrom("account", "package"));
    }

    static long long millisecondsOf(const std::function<void()>& work) {
        const auto start = std::chrono::steady_clock::now();
        work();
        return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start).count();
    }

    // Kills `arguments(i)` at a random moment within `most` milliseconds, for each i; then checks(i).
    static void killEach(long long most, const std::function<Arguments(int)>& arguments,
                         const std::function<void(int)>& check) {
        std::mt19937 random(21);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same moments each time
        std::uniform_int_distribution<long long> moment(0, most * 1000);
        int killed = 0;
        for (int i = 0; i < killCount(kUsualKills); ++i) {
            const pid_t child = startChatTransfer(arguments(i));
            usleep(static_cast<useconds_t>(moment(random)));
            kill(child, SIGKILL);
            if (waitFor(child).killed) ++killed;
            ASSERT_NO_FATAL_FAILURE(check(i));
        }
        std::cout << killed << " of " << killCount(kUsualKills) << " runs were killed before their end\n";
        EXPECT_GE(killed, killCount(kUsualKills) / 4) << "most runs were over before they could be killed";
    }
};

TEST_F(Killed, ExportLeavesNoPackageOrAWholeOneAndCanBeRepeated) {
    const std::string whole = snapshotOf(at("package"));
    const long long most = millisecondsOf([this] { exportFrom("account", "timed"); });
    killEach(
        most,
        [this](int i) {
            return Arguments{
                "export", "--account", at("account"), "--user", kUser, "--to", at("to" + std::to_string(i))};
        },
        [&](int i) {
            const std::string to = "to" + std::to_string(i);
            if (!hasPackage(to)) {
                ASSERT_EXIT_CODE(0, exportFrom("account", to));
            }
            ASSERT_TRUE(whole == snapshotOf(at(to))) << i;
            std::filesystem::remove_all(at(to));
        });
}

TEST_F(Killed, ImportCanBeRepeatedAndEndsAsIfUndisturbed) {
    const long long most = millisecondsOf([this] { importInto("timed", "package"); });
    killEach(
        most,
        [this](int i) {
            return Arguments{"import", "--from", at("package"), "--account", at("into" + std::to_string(i)),
                             "--user", kUser};
        },
        [&](int i) {
            const std::string into = "into" + std::to_string(i);
            ASSERT_EXIT_CODE(0, importInto(into, "package"));
            ASSERT_EXIT_CODE(0, verify("package", into)) << i;
            ASSERT_EQ("ok", queryText(mainDatabase(into), "PRAGMA integrity_check", 1)) << i;
            std::filesystem::remove_all(at(into));
        });
}

}  // namespace
}  // namespace test
