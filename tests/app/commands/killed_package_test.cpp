// An export and an import of a package that are killed at random moments, and run again.
#include <chrono>
#include <filesystem>

#include "tests/app/fixture.h"
#include "tests/app/kills.h"
#include "tests/support/snapshot.h"

namespace test {
namespace {

using std::chrono::microseconds;

constexpr int kUsualKills = 10;

class Killed : public CommandTest {
protected:
    void SetUp() override {
        ASSERT_EXIT_CODE(0, sample("account", {"--conversations", "20", "--messages", "20000", "--days", "5"}));
        ASSERT_EXIT_CODE(0, exportFrom("account", "package"));
    }

    pid_t startAnew(const std::string& folder, const Arguments& arguments) const {
        std::filesystem::remove_all(at(folder));
        return startChatTransfer(arguments);
    }
};

TEST_F(Killed, ExportLeavesNoPackageOrAWholeOneAndCanBeRepeated) {
    const std::string whole = snapshotOf(at("package/qelmsg_0"));
    const microseconds most = timeOf([this] { exportFrom("account", "timed"); });
    killEach(
        kUsualKills, most,
        [this](int i) {
            const std::string to = "to" + std::to_string(i);
            return startAnew(to, {"export", "--account", at("account"), "--user", kUser, "--to", at(to)});
        },
        [&](int i) {
            const std::string to = "to" + std::to_string(i);
            if (!hasPackage(to)) {
                ASSERT_EXIT_CODE(0, exportFrom("account", to));
            }
            // Beside it the hidden folder may be left in which it was made.
            ASSERT_TRUE(whole == snapshotOf(at(to + "/qelmsg_0"))) << i;
            std::filesystem::remove_all(at(to));
        });
}

TEST_F(Killed, ImportCanBeRepeatedAndEndsAsIfUndisturbed) {
    const microseconds most = timeOf([this] { importInto("timed", "package"); });
    killEach(
        kUsualKills, most,
        [this](int i) {
            const std::string into = "into" + std::to_string(i);
            return startAnew(into, {"import", "--from", at("package"), "--account", at(into), "--user", kUser});
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
