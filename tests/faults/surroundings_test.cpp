// The same operations where the machine is poor: each completes, or says that it did not, and completes once it can.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <ctime>
#include <filesystem>

#include "tests/faults/fault_world.h"
#include "tests/support/comma_locale.h"
#include "tests/support/database.h"
#include "tests/support/posix_helpers.h"
#include "tests/support/small_stack.h"
#include "tests/support/temp_dir.h"

namespace fs = std::filesystem;

namespace test {
namespace {

class PoorMachine : public testing::TestWithParam<Operation> {
protected:
    void SetUp() override {
        makeWorld(GetParam(), home_.makeDir("world"));
        before_ = stateOf(GetParam(), home_.at("world"));
        fs::copy(home_.at("world"), home_.at("rich"), fs::copy_options::recursive);
        ASSERT_TRUE(run(GetParam(), home_.at("rich")).complete);
        after_ = stateOf(GetParam(), home_.at("rich"));
    }

    std::string world() const { return home_.at("world"); }

    template <class Limit>
    Ending runUnder(rlim_t most) const {
        const Limit limit(most);
        return run(GetParam(), world());
    }

    void expectComplete(const Ending& ending) const {
        EXPECT_TRUE(ending.complete) << ending.words;
        EXPECT_EQ(after_, stateOf(GetParam(), world()));
    }

    /// It failed, said so, left nothing half done, and succeeds now.
    void expectFailureAndRepair(const Ending& ending) const {
        EXPECT_FALSE(ending.complete);
        EXPECT_EQ("", firstHalfDone(before_, after_, stateOf(GetParam(), world()))) << ending.words;
        prepareAgain(GetParam(), world());
        expectComplete(run(GetParam(), world()));
    }

    TempDir home_;
    State before_;
    State after_;
};

TEST_P(PoorMachine, WithAStackOf256KiBSuffices) {
    if (!smallStackIsMeaningful()) GTEST_SKIP() << "frames of instrumented or unoptimised code are larger";
    Ending ending;
    onSmallStack([&] { ending = run(GetParam(), world()); });
    expectComplete(ending);
}

TEST_P(PoorMachine, WithTwentyOpenFilesSuffices) {
    const Ending ending = runUnder<OpenFileLimit>(20);
    expectComplete(ending);
}

TEST_P(PoorMachine, WithoutAnyFileToOpenFailsInWords) {
    const Ending ending = runUnder<OpenFileLimit>(3);
    expectFailureAndRepair(ending);
}

TEST_P(PoorMachine, WithAFullDiskFailsInWords) {
    // The files of a tree are smaller than a page of a database, those of a package are not.
    const Ending ending = runUnder<FileSizeLimit>(2000);
    expectFailureAndRepair(ending);
}

TEST_P(PoorMachine, WithADecimalCommaIsTheSame) {
    Ending ending;
    {
        const CommaLocale locale;
        if (!CommaLocale::isSet()) GTEST_SKIP() << "no locale with a decimal comma";
        ending = run(GetParam(), world());
    }
    expectComplete(ending);
}

TEST_P(PoorMachine, InAnotherTimeZoneIsTheSame) {
    const char* zone = std::getenv("TZ");
    const std::string before = zone != nullptr ? zone : "";
    setenv("TZ", "Pacific/Kiritimati", 1);
    tzset();
    const Ending ending = run(GetParam(), world());
    zone != nullptr ? setenv("TZ", before.c_str(), 1) : unsetenv("TZ");
    tzset();
    expectComplete(ending);
}

// Another process that holds the main database for writing.
class Holder {
public:
    Holder(const std::string& database, unsigned milliseconds) {
        std::array<int, 2> ready{};
        if (pipe(ready.data()) != 0) throw std::runtime_error("no pipe");
        child_ = fork();
        if (child_ == 0) {
            imsdk::dbUtils db;
            db.open(database.c_str(), nullptr);
            db.beginTransaction();
            static_cast<void>(write(ready[1], "x", 1));
            usleep(milliseconds * 1000);
            _exit(0);  // without the end of the transaction, as a process that was killed
        }
        char byte = 0;
        static_cast<void>(read(ready[0], &byte, 1));
        close(ready[0]);
        close(ready[1]);
    }
    ~Holder() { waitpid(child_, nullptr, 0); }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;

private:
    pid_t child_ = 0;
};

TEST_P(PoorMachine, WaitsForAProcessThatHoldsTheDatabaseForAMoment) {
    const Holder holder(world() + "/account/db/imsg.db", 500);
    expectComplete(run(GetParam(), world()));
}

class DatabaseHeldForLong : public PoorMachine {};

TEST_P(DatabaseHeldForLong, MakesAnImportFailInWords) {
    Ending ending;
    {
        const Holder holder(world() + "/account/db/imsg.db", 9500);
        ending = run(GetParam(), world());
    }
    expectFailureAndRepair(ending);
}

INSTANTIATE_TEST_SUITE_P(Operations, PoorMachine,
                         testing::Values(Operation::exportAll, Operation::importFresh, Operation::importExisting,
                                         Operation::importTree),
                         [](const auto& parameter) { return nameOf(parameter.param); });
INSTANTIATE_TEST_SUITE_P(Imports, DatabaseHeldForLong,
                         testing::Values(Operation::importFresh, Operation::importExisting, Operation::importTree),
                         [](const auto& parameter) { return nameOf(parameter.param); });

TEST(DatabaseThatAnotherProcessHolds, DoesNotKeepAnExportFromReading) {
    const TempDir home;
    makeWorld(Operation::exportAll, home.path());
    const Holder holder(home.at("account/db/imsg.db"), 3000);
    const Ending ending = run(Operation::exportAll, home.path());
    EXPECT_TRUE(ending.complete) << ending.words;
}

}  // namespace
}  // namespace test
