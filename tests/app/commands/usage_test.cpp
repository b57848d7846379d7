// The command line itself: help, wrong usage, exit codes.
#include <algorithm>
#include <filesystem>
#include <iterator>
#include <sstream>

#include "tests/app/fixture.h"

namespace test {
namespace {

class Usage : public CommandTest {
protected:
    static Arguments wordsOf(const std::string& line) {
        std::istringstream stream(line);
        return {std::istream_iterator<std::string>(stream), {}};
    }

    // The commands that the program itself lists.
    static std::vector<std::string> listedCommands() {
        const std::string help = chatTransfer({"--help"}).out;
        std::istringstream lines(help.substr(std::min(help.size(), help.find("Subcommands:"))));
        std::vector<std::string> commands;
        std::string line;
        std::getline(lines, line);
        while (std::getline(lines, line) && !line.empty()) {
            // Further lines of a description stand far to the right.
            if (line.compare(0, 3, "   ") != 0) commands.push_back(wordsOf(line).front());
        }
        return commands;
    }

    std::string keyFile() const {
        std::string path = dir_.write("key", "secret");
        std::filesystem::permissions(path, std::filesystem::perms::owner_read);
        return path;
    }
};

TEST_F(Usage, WithoutACommandShowsTheHelpAndIsWrongUsage) {
    const Outcome run = expectUsageError(chatTransfer({}), {"Subcommands:"});
    EXPECT_EQ("", run.out);
}

TEST_F(Usage, HelpOfEveryCommandShowsExamplesAndSucceeds) {
    const std::vector<std::string> commands = listedCommands();
    ASSERT_GE(commands.size(), 10U);
    for (const std::string& command : commands) {
        const Outcome run = expectSuccess(chatTransfer({command, "--help"}));
        EXPECT_SAYS_NOT("\n\n\n", run.out);
        const std::size_t examples = run.out.find("\nExample");
        ASSERT_NE(std::string::npos, examples) << run.out;
        EXPECT_SAYS("\n  chat-transfer " + command + " ", run.out.substr(examples));
    }
}

TEST_F(Usage, HelpOfTheProgramListsTheCommandsInTheOrderOfTheirUse) {
    EXPECT_EQ((std::vector<std::string>{"sample", "export", "import", "inspect", "verify", "view", "sample-tree",
                                        "encrypt-tree", "import-tree", "decrypt-tree"}),
              listedCommands());
}

TEST_F(Usage, WhatTheHelpOfTheProgramSaysToTryWorks) {
    const std::string key = keyFile();
    std::istringstream lines(chatTransfer({"--help"}).out);
    int tried = 0;
    for (std::string line; std::getline(lines, line);) {
        if (line.compare(0, 16, "  chat-transfer ") != 0) continue;
        Arguments arguments = wordsOf(line);
        arguments.erase(arguments.begin());
        std::replace(arguments.begin(), arguments.end(), std::string("--ask-key"), "--key-file=" + key);
        EXPECT_EXIT_CODE(0, chatTransfer(arguments, {{}, 0, dir_.path()}));
        ++tried;
    }
    EXPECT_EQ(10, tried);
}

TEST_F(Usage, HelpOfTheProgramNamesTheExitCodes) {
    expectSuccess(chatTransfer({"--help"}), {"0 done, 1 the operation failed, 2 wrong usage"});
}

TEST_F(Usage, VersionIsThatOfTheProject) {
    const Outcome run = expectSuccess(chatTransfer({"--version"}));
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
    const Outcome run = expectUsageError(chatTransfer(GetParam().arguments), {GetParam().words});
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
    const Outcome run = expectUsageError(chatTransfer({"\x1b[31mred"}), {"\\x1b[31mred"});
    EXPECT_FALSE(hasControlCharacter(run.err));
}

Outcome printOntoAFullDisk(const std::string& arguments) {
    const std::string command = std::string("exec ") + CHAT_TRANSFER_PROGRAM + " " + arguments;
    return runProgram("/bin/sh", {"-c", command + " > /dev/full"});
}

TEST_F(Usage, HelpThatCannotBePrintedIsAFailure) {
    expectFailure(printOntoAFullDisk("--help"), {"could not be printed"});
}

TEST_F(Usage, ResultsThatCannotBePrintedAreAFailure) {
    makePackage("account", "package");
    expectFailure(printOntoAFullDisk("inspect " + at("package") + " --user " + kUser), {"could not be printed"});
}

}  // namespace
}  // namespace test
