// Export, package import and tree import, with every call of the operating system and every request for memory failing
// in turn: nothing crashes, nothing is half done, no loss goes unsaid, and the same operation run again ends as if
// nothing had happened.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>

#include "tests/faults/fault_calls.h"
#include "tests/faults/fault_memory.h"
#include "tests/faults/fault_world.h"
#include "tests/support/soak.h"
#include "tests/support/temp_dir.h"

namespace fs = std::filesystem;

namespace test {
namespace {

// A key and not a text to derive one from, which takes a second each time that a database opens.
constexpr const char* kKey = "x'2DD29CA851E7B56E4697B0E1F08507293D761A05CE4D1B628663F411A8086D99'";

class FaultSweep : public testing::TestWithParam<Scenario> {
protected:
    void SetUp() override {
        makeWorld(GetParam(), home_.makeDir("world"));
        const bool isPlain = readFile(home_.at("world/account/db/imsg.db")).compare(0, 15, "SQLite format 3") == 0;
        ASSERT_EQ(GetParam().key.empty(), isPlain);
        before_ = stateOf(GetParam(), home_.at("world"));
        copyWorld("undisturbed");
        const Ending ending = run(GetParam(), home_.at("undisturbed"));
        ASSERT_TRUE(ending.complete) << ending.words;
        after_ = stateOf(GetParam(), home_.at("undisturbed"));
        ASSERT_NE(before_, after_);
    }

    // Disturbs the nth occasion for n = first, first + step, ... until an operation goes through undisturbed. `disturb`
    // runs its argument with the nth occasion disturbed and says whether that came.
    using Disturb = std::function<bool(long long nth, const std::function<void()>& operation)>;
    void sweep(const std::string& what, long long step, const Disturb& disturb) {
        long long faults = 0;
        for (long long nth = 1;; nth += step) {
            const testing::ScopedTrace trace(__FILE__, __LINE__, what + ", number " + std::to_string(nth));
            copyWorld("disturbed");
            bool struck = false;
            const Ending ending = run(GetParam(), home_.at("disturbed"), [&](const std::function<void()>& operation) {
                struck = disturb(nth, operation);
            });
            expectNothingHalfDone(ending);
            if (!struck) break;
            ++faults;
            expectWholeOnceRunAgain();
            if (HasFailure()) return;
        }
        std::cout << nameOf(GetParam()) << ": " << faults << " times " << what << '\n';
    }

private:
    void copyWorld(const std::string& name) const {
        fs::remove_all(home_.at(name));
        fs::copy(home_.at("world"), home_.at(name), fs::copy_options::recursive);
    }

    void expectNothingHalfDone(const Ending& ending) const {
        const State now = stateOf(GetParam(), home_.at("disturbed"));
        EXPECT_EQ("", firstHalfDone(before_, after_, now)) << ending.words;
        if (ending.complete) expectSame(now, "the loss went unsaid");
    }

    void expectWholeOnceRunAgain() const {
        prepareAgain(GetParam().operation, home_.at("disturbed"));
        const Ending ending = run(GetParam(), home_.at("disturbed"));
        EXPECT_TRUE(ending.complete) << ending.words;
        expectSame(stateOf(GetParam(), home_.at("disturbed")), "run again");
    }

    void expectSame(const State& now, const std::string& when) const {
        for (const auto& [name, content] : after_) {
            const auto found = now.find(name);
            EXPECT_TRUE(found != now.end() && found->second == content) << when << ": " << name;
        }
        EXPECT_EQ(after_.size(), now.size()) << when;
    }

    TempDir home_;
    State before_;
    State after_;
};

TEST_P(FaultSweep, OfCallsLeavesNothingHalfDoneOrUnsaid) {
    for (const Call call : kAllCalls) {
        std::vector<Fault> faults = {{call, Failure::inputOutput, Duration::once}};
        if (call == Call::write) faults.push_back({call, Failure::shortWrite, Duration::fromThenOn});
        if (soaks()) {
            faults = {{call, Failure::inputOutput, Duration::once},
                      {call, Failure::inputOutput, Duration::fromThenOn},
                      {call, Failure::diskFull, Duration::once},
                      {call, Failure::diskFull, Duration::fromThenOn}};
            if (call == Call::write) {
                faults.push_back({call, Failure::shortWrite, Duration::once});
                faults.push_back({call, Failure::shortWrite, Duration::fromThenOn});
            }
        }
        for (const Fault& fault : faults) {
            // In the short form every fifth on keyed databases: they add few calls of their own.
            const long long step = soaks() || GetParam().key.empty() ? 1 : 5;
            sweep(describe(fault), step, [&](long long nth, const std::function<void()>& operation) {
                const InjectedFault injected(fault, nth);
                operation();
                return injected.struck();
            });
            if (HasFailure()) return;
        }
    }
}

TEST_P(FaultSweep, OfMemoryLeavesNothingHalfDoneOrUnsaid) {
    for (const Memory memory : {Memory::objects, Memory::json, Memory::database}) {
        for (const bool fromThenOn : {false, true}) {
            // The short form looks at every seventh request only.
            const long long step = soaks() ? 1 : 7;
            const std::string what = describe(memory) + (fromThenOn ? " from then on" : " once");
            sweep(what, step, [&](long long nth, const std::function<void()>& operation) {
                const RefusedMemory refused(memory, nth, fromThenOn);
                operation();
                return refused.struck();
            });
            if (HasFailure()) return;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Operations, FaultSweep,
                         testing::Values(Operation::exportAll, Operation::importFresh, Operation::importExisting,
                                         Operation::importTree, Scenario(Operation::exportAll, kKey),
                                         Scenario(Operation::importFresh, kKey),
                                         Scenario(Operation::importExisting, kKey),
                                         Scenario(Operation::importTree, kKey)),
                         [](const auto& parameter) { return nameOf(parameter.param); });

TEST(Export, ThatTheDiskDoesNotTakeForGoodSaysSo) {
    const TempDir home;
    makeWorld(Operation::exportAll, home.path());
    const Ending ending = run(Operation::exportAll, home.path(), [](const std::function<void()>& operation) {
        const InjectedFault fault({Call::sync, Failure::inputOutput, Duration::fromThenOn}, 1);
        operation();
    });
    EXPECT_NE(std::string::npos, ending.words.find("could not be flushed")) << ending.words;
}

TEST(Database, ThatCannotBeReadDoesNotOpenAndIsLeftAlone) {
    const TempDir home;
    makeWorld(Operation::importExisting, home.path());
    const std::string database = home.path() + "/account/db/imsg.db";
    const std::string bytes = readFile(database);
    const Ending ending = run(Operation::importExisting, home.path(), [](const std::function<void()>& operation) {
        const InjectedFault fault({Call::read, Failure::inputOutput, Duration::fromThenOn}, 1);
        operation();
    });
    EXPECT_NE(std::string::npos, ending.words.find("codes 0 4278190111")) << ending.words;
    EXPECT_TRUE(bytes == readFile(database));
}

}  // namespace
}  // namespace test
