// The command line itself: help, wrong usage, exit codes.
#include "tests/app/fixture.h"

namespace test {
namespace {

class Usage : public CommandTest {};

TEST_F(Usage, WithoutACommandShowsTheHelpAndIsWrongUsage) {
    const Outcome run = chatTransfer({});
    EXPECT_EXIT_CODE(2, run);
    EXPECT_SAYS("Subcommands:", run.err);
    EXPECT_EQ("", run.out);
}

TEST_F(Usage, HelpOfEveryCommandShowsExamplesAndSucceeds) {
    for (const char* command : {"sample", "export", "import", "inspect", "verify"}) {
        const Outcome run = chatTransfer({command, "--help"});
        EXPECT_EXIT_CODE(0, run);
        EXPECT_SAYS(std::string("  chat-transfer ") + command + " ", run.out);
        EXPECT_SAYS("Example", run.out);
    }
}

TEST_F(Usage, HelpOfTheProgramNamesTheExitCodes) {
    const Outcome run = chatTransfer({"--help"});
    EXPECT_EXIT_CODE(0, run);
    EXPECT_SAYS("0 done, 1 the operation failed, 2 wrong usage", run.out);
}

TEST_F(Usage, VersionIsThatOfTheProject) {
    const Outcome run = chatTransfer({"--version"});
    EXPECT_EXIT_CODE(0, run);
    EXPECT_EQ("chat-transfer " CHAT_TRANSFER_VERSION "\n", run.out);
}

TEST_F(Usage, HelpOfExportSaysWhatThePackedLayoutLeavesOut) {
    const Outcome run = chatTransfer({"export", "--help"});
    EXPECT_SAYS("NO recent contacts", run.out);
    EXPECT_SAYS("the rest of that day is not written", run.out);
}

struct Mistake {
    const char* name;
    Arguments arguments;
    const char* words;
};

class UsageMistake : public ::testing::TestWithParam<Mistake> {};

TEST_P(UsageMistake, IsWrongUsageAndNamed) {
    const Outcome run = chatTransfer(GetParam().arguments);
    EXPECT_EXIT_CODE(2, run);
    EXPECT_SAYS(GetParam().words, run.err);
    EXPECT_EQ("", run.out);
}

INSTANTIATE_TEST_SUITE_P(
    CommandLine, UsageMistake,
    ::testing::Values(
        Mistake{"UnknownCommand", {"exprot"}, "exprot"},
        Mistake{"UnknownOption", {"sample", "--account", "a", "--user", "1", "--speed", "3"}, "--speed"},
        Mistake{"MissingOption", {"export", "--account", "a", "--to", "b"}, "--user is required"},
        Mistake{"UserWithSlash", {"inspect", "a", "--user", "../x"}, "one folder name"},
        Mistake{"UserOfDots", {"inspect", "a", "--user", ".."}, "--user"},
        Mistake{"LongUser", {"inspect", "a", "--user", std::string(201, 'u')}, "longer than 200 bytes"},
        Mistake{"EmptyFolder", {"export", "--account", "", "--user", "1", "--to", "b"}, "needs the name of a folder"},
        Mistake{"DayThatDoesNotExist",
                {"export", "--account", "a", "--user", "1", "--to", "b", "--since", "2023-02-29"},
                "no day of the calendar"},
        Mistake{"DayInWords",
                {"export", "--account", "a", "--user", "1", "--to", "b", "--since", "yesterday"},
                "no day of the calendar"},
        Mistake{
            "UnknownLayout", {"export", "--account", "a", "--user", "1", "--to", "b", "--layout", "zip"}, "--layout"},
        Mistake{
            "UnknownDatabase", {"import", "--account", "a", "--user", "1", "--from", "b", "--into", "side"}, "--into"},
        Mistake{"NoMessages", {"sample", "--account", "a", "--user", "1", "--messages", "0"}, "--messages"},
        Mistake{"WordForANumber", {"sample", "--account", "a", "--user", "1", "--days", "many"}, "--days"},
        Mistake{"TwoCommands", {"inspect", "a", "--user", "1", "sample"}, "sample"}),
    [](const auto& mistake) { return mistake.param.name; });

TEST_F(Usage, TwentyNinthOfFebruaryIsADayInLeapYearsOnly) {
    makeSample("account");
    EXPECT_EXIT_CODE(0, exportFrom("account", "leap", {"--since", "2024-02-29"}));
    EXPECT_EXIT_CODE(2, exportFrom("account", "common", {"--since", "2023-02-29"}));
}

TEST_F(Usage, ControlCharactersOfAnArgumentAreSpelledOut) {
    const Outcome run = chatTransfer({"\x1b[31mred"});
    EXPECT_EXIT_CODE(2, run);
    EXPECT_SAYS("\\x1b[31mred", run.err);
    EXPECT_FALSE(hasControlCharacter(run.err));
}

TEST_F(Usage, ResultsThatCannotBePrintedAreAFailure) {
    makePackage("account", "package");
    const std::string command =
        std::string("exec ") + CHAT_TRANSFER_PROGRAM + " inspect " + at("package") + " --user " + kUser;
    const Outcome run = runProgram("/bin/sh", {"-c", command + " > /dev/full"});
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("could not be printed", run.err);
}

}  // namespace
}  // namespace test
