// The demo as people run it, with the program of this build.
#include <filesystem>

#include "tests/app/fixture.h"

namespace test {
namespace {

class Demo : public CommandTest {
protected:
    Outcome demo(const std::string& folder, const Arguments& more = {}) const {
        return runProgram(CHAT_TRANSFER_SOURCE_DIR "/scripts/demo", {CHAT_TRANSFER_PROGRAM},
                          {joined({"CHAT_TRANSFER_DEMO_DIR=" + at(folder)}, more)});
    }
};

TEST_F(Demo, MovesAnAccountAndShowsThatNothingDoublesOrGetsLost) {
    const Outcome run = demo("demo");
    ASSERT_EXIT_CODE(0, run);
    EXPECT_SAYS("0 messages inserted, 20,000 messages there already", run.out);
    EXPECT_SAYS("20,000 messages that agree, 199 attachments compared", run.out);
    EXPECT_SAYS("20,000 messages inserted, 12 notes inserted, 7 rooms inserted, 382 attachments moved", run.out);
    EXPECT_SAYS("20,000 messages that agree, 382 attachments in the account", run.out);
    EXPECT_SAYS_NOT("missing in the", run.out);
    EXPECT_EQ(".made-by-demo backup first key second", listing(at("demo")));
    EXPECT_EQ(0600U, permissionsOf(at("demo/key")));
}

TEST_F(Demo, RunsAgainInTheFolderThatItMade) {
    dir_.write("demo/.made-by-demo", "");
    dir_.write("demo/left/over", "");
    expectSuccess(demo("demo", {"CHAT_TRANSFER_DEMO_MESSAGES=100"}));
    EXPECT_FALSE(exists(at("demo/left")));
}

TEST_F(Demo, NeverRemovesAFolderThatItDidNotMake) {
    dir_.write("mine/diary.txt", "dear diary");
    expectFailure(demo("mine"), {"not of this script's making"});
    EXPECT_EQ("diary.txt", listing(at("mine")));
}

TEST_F(Demo, SaysWhenTheProgramIsNotBuilt) {
    expectFailure(runProgram(CHAT_TRANSFER_SOURCE_DIR "/scripts/demo", {at("nothing")}), {"build it first"});
}

}  // namespace
}  // namespace test
