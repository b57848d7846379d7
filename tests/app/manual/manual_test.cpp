// The manual page and the completions of the shells.
#include <CLI/CLI.hpp>
#include <set>
#include <sstream>

#include "app/base/program_name.h"
#include "app/commands/program.h"
#include "app/manual/completions.h"
#include "app/manual/manual_page.h"
#include "tests/app/fixture.h"

namespace test {
namespace {

class Manual : public CommandTest {
protected:
    Manual() {
        CLI::App program(app::kProgramDescription, app::kProgramName);
        app::Job job;
        app::addCommands(program, job);
        commands_ = app::describe(program);
    }

    // The options that the help of a command lists.
    static std::set<std::string> optionsInHelp(const std::string& command) {
        std::istringstream help(chatTransfer({command, "--help"}).out);
        std::set<std::string> names;
        for (std::string line; std::getline(help, line);) {
            // "  -h,--help      Print ...", not the examples further down.
            if (line.compare(0, 3, "  -") == 0)
                names.insert(line.substr(line.find("--"), line.find(' ', 3) - line.find("--")));
        }
        return names;
    }

    static std::string document(const std::string& kind) {
        const Outcome run = runProgram(CHAT_TRANSFER_MANUAL, {kind});
        EXPECT_EXIT_CODE(0, run);
        return run.out;
    }

    // What bash offers for the last of the words, one offer per line.
    std::string offers(const std::string& words) const {
        const std::string script = document("bash") + "COMP_WORDS=(chat-transfer " + words +
                                   ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n"
                                   "_chat_transfer\nprintf '%s\\n' \"${COMPREPLY[@]}\"\n";
        Setting setting;
        setting.workingDirectory = dir_.path();
        const Outcome run = runProgram("/bin/bash", {"--norc", "-uc", script}, setting);
        EXPECT_EXIT_CODE(0, run);
        return run.out;
    }

    std::vector<app::DescribedCommand> commands_;
};

TEST_F(Manual, DescribesEveryOptionThatTheHelpOfACommandLists) {
    for (const app::DescribedCommand& command : commands_) {
        std::set<std::string> described;
        for (const app::DescribedOption& option : command.options) {
            if (!option.names.empty()) described.insert(option.names.back());
        }
        EXPECT_EQ(optionsInHelp(command.name), described) << command.name;
        EXPECT_LT(3U, described.size()) << command.name;
    }
    EXPECT_LT(8U, commands_.size());
}

TEST_F(Manual, PageHasASectionForEachCommandWithItsOptionsAndExamples) {
    const std::string page = document("man");
    for (const char* text : {".SS export\n", R"(\fB\-\-since\fR \fIYYYY\-MM\-DD\fR)", "(default: days)",
                             R"(.SS import\-tree)", R"(  chat\-transfer import\-tree \-\-from)"})
        EXPECT_SAYS(text, page);
}

TEST_F(Manual, PageIsTakenByTheFormatterWithoutAWarning) {
    const std::string page = dir_.write("page.1", document("man"));
    const Outcome run = runProgram("/usr/bin/groff", {"-man", "-Tutf8", "-ww", "-z", page});
    if (run.code == 127) GTEST_SKIP() << "groff is not installed";
    EXPECT_EXIT_CODE(0, run);
    EXPECT_EQ("", run.err);
}

TEST_F(Manual, TextsThatTheFormatterWouldObeyAreShownInstead) {
    const app::DescribedCommand hostile{"x", "text", {}, ".so /etc/passwd\n'br\n\\fB"};
    const std::string page = app::manualPage({"p", "1", "text", ""}, {hostile});
    EXPECT_SAYS("\n\\&.so /etc/passwd\n\\&'br\n\\efB\n", page);
}

TEST_F(Manual, BashOffersTheCommands) {
    EXPECT_EQ("export\nencrypt-tree\n", offers("e"));
}

TEST_F(Manual, BashOffersTheOptionsOfTheCommand) {
    EXPECT_EQ("--layout\n", offers("export --la"));
    EXPECT_EQ("\n", offers("import --la"));
}

TEST_F(Manual, BashOffersTheValuesOfAnOption) {
    EXPECT_EQ("days\npacked\n", offers("export --layout ''"));
}

TEST_F(Manual, BashOffersFoldersWhereAnOptionTakesOne) {
    dir_.makeDir("backup");
    dir_.write("backup.txt", "");
    EXPECT_EQ("backup\n", offers("export --to ba"));
}

TEST_F(Manual, BashOffersFoldersToACommandThatTakesOne) {
    dir_.makeDir("backup");
    EXPECT_EQ("backup\n", offers("inspect ba"));
}

TEST_F(Manual, BashRunsNothingThatIsTyped) {
    offers("export --to '$(touch made)'");
    EXPECT_FALSE(exists(at("made")));
}

TEST_F(Manual, OtherShellsKnowEveryOption) {
    const std::string zsh = document("zsh");
    const std::string fish = document("fish");
    for (const app::DescribedCommand& command : commands_) {
        for (const app::DescribedOption& option : command.options) {
            if (option.names.empty()) continue;
            const std::string& name = option.names.back();
            EXPECT_SAYS("'" + name + "[", zsh);
            EXPECT_SAYS("__fish_seen_subcommand_from " + command.name + "'", fish);
            EXPECT_SAYS(" -l " + name.substr(2) + " ", fish);
        }
    }
}

TEST_F(Manual, OtherShellsCanReadTheirCompletion) {
    const Outcome zsh = runProgram("/usr/bin/zsh", {"-n", dir_.write("_chat-transfer", document("zsh"))});
    const Outcome fish = runProgram("/usr/bin/fish", {"-n", dir_.write("chat-transfer.fish", document("fish"))});
    if (zsh.code == 127 && fish.code == 127) GTEST_SKIP() << "neither zsh nor fish is installed";
    for (const Outcome& run : {zsh, fish}) {
        if (run.code == 127) continue;
        EXPECT_EXIT_CODE(0, run);
    }
}

TEST_F(Manual, OfNothingKnownIsWrongUsage) {
    EXPECT_EXIT_CODE(2, runProgram(CHAT_TRANSFER_MANUAL, {"tcsh"}));
}

}  // namespace
}  // namespace test
