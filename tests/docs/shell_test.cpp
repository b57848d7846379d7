// The commands of the documentation, page by page: each page's blocks run one after another in a folder of their own,
// as a reader would type them, and print what the page shows.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/app/program.h"
#include "tests/docs/markdown.h"
#include "tests/support/temp_dir.h"

namespace {

namespace fs = std::filesystem;

// Where the reader of the pages works.
const std::string kReaderHome = "/home/ann";

bool isShell(const docs::Block& block) {
    return block.language == "sh" && block.name != "setup";
}

// Builds with sanitizers or for another processor install nothing: these commands run in the usual build only.
bool canRun(const docs::Block& block) {
    return isShell(block) && (block.name != "installed" || *CHAT_TRANSFER_PREFIX != '\0');
}

bool isFile(const docs::Block& block) {
    return block.language != "text" && block.name.find('.') != std::string::npos;
}

std::vector<std::string> pagesWithCommands() {
    std::vector<std::string> pages;
    for (const std::string& page : docs::allPages()) {
        const std::vector<docs::Block> blocks = docs::blocksOf(docs::readSource(page));
        if (std::any_of(blocks.begin(), blocks.end(), canRun)) pages.push_back(page);
    }
    return pages;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

using Lines = std::vector<std::string>;

bool isProgress(const std::string& line) {
    return line.find(" % (") != std::string::npos;
}

// A table is as wide as its widest value, which can be the time: runs of blanks count as one.
std::string withoutWidths(std::string line) {
    const auto both = [](char left, char right) { return left == ' ' && right == ' '; };
    line.erase(std::unique(line.begin(), line.end(), both), line.end());
    return line;
}

// What stays on a reader's screen: without the progress, which a terminal overwrites, and without the times.
Lines comparable(const std::string& output) {
    const std::string time = " Time ";
    Lines lines;
    for (std::string line : docs::linesOf(output)) {
        line.erase(0, line.rfind('\r') + 1);
        line = withoutWidths(line);
        if (!isProgress(line)) lines.push_back(line.compare(0, time.size(), time) == 0 ? time : line);
    }
    return lines;
}

bool fits(const std::string& shown, const std::string& printed) {
    const std::string dots = "...";
    if (shown.size() < dots.size() || shown.compare(shown.size() - 3, 3, dots) != 0) return shown == printed;
    return printed.compare(0, shown.size() - 3, shown, 0, shown.size() - 3) == 0;
}

// A line of "..." stands for any number of lines, "..." at the end of a line for its rest.
bool fits(Lines::const_iterator shown, Lines::const_iterator shownEnd, Lines::const_iterator printed,
          Lines::const_iterator printedEnd) {
    if (shown == shownEnd) return printed == printedEnd;
    if (*shown == "...") {
        for (auto rest = printed;; ++rest) {
            if (fits(shown + 1, shownEnd, rest, printedEnd)) return true;
            if (rest == printedEnd) return false;
        }
    }
    return printed != printedEnd && fits(*shown, *printed) && fits(shown + 1, shownEnd, printed + 1, printedEnd);
}

bool isShownAs(const std::string& shown, const std::string& printed) {
    const Lines expected = comparable(shown);
    const Lines actual = comparable(printed);
    return fits(expected.begin(), expected.end(), actual.begin(), actual.end());
}

class Commands : public testing::TestWithParam<std::string> {
protected:
    Commands() {
        fs::create_directories(home());
        fs::create_directories(home_.at("bin"));
        fs::create_symlink(CHAT_TRANSFER_PROGRAM, home_.at("bin/chat-transfer"));
    }

    std::string home() const { return home_.at("ann"); }

    test::Outcome run(const docs::Block& block) const {
        test::Setting setting;
        setting.workingDirectory = home();
        setting.environment = {"PATH=" + home_.at("bin") + ":" + getenv("PATH")};
        for (const char* variable : {"CMAKE_PREFIX_PATH=" CHAT_TRANSFER_PREFIX,
                                     "PKG_CONFIG_PATH=" CHAT_TRANSFER_PREFIX "/" CHAT_TRANSFER_LIBDIR "/pkgconfig",
                                     "CC=" CHAT_TRANSFER_CC, "CXX=" CHAT_TRANSFER_CXX})
            setting.environment.emplace_back(variable);
        return test::runProgram("/bin/sh", {"-euc", "exec 2>&1\n" + block.text}, setting);
    }

    test::TempDir home_;
};

TEST_P(Commands, RunAndPrintWhatThePageShows) {
    const docs::Block* last = nullptr;
    std::string printed;
    const std::vector<docs::Block> blocks = docs::blocksOf(docs::readSource(GetParam()));
    for (const docs::Block& block : blocks) {
        SCOPED_TRACE(GetParam() + ":" + std::to_string(block.line));
        if (isFile(block)) home_.write("ann/" + block.name, block.text);
        if (canRun(block)) {
            const test::Outcome outcome = run(block);
            printed = replaced(outcome.out, home(), kReaderHome);
            ASSERT_EQ(block.name == "fails" ? 1 : 0, outcome.code) << block.text << printed;
            last = &block;
        } else if (block.language == "text" && block.name.empty() && last == &block - 1) {
            EXPECT_TRUE(isShownAs(block.text, printed)) << "The page shows\n" << block.text << "but it is\n" << printed;
        }
    }
    EXPECT_NE(nullptr, last);
}

std::string nameOf(const testing::TestParamInfo<std::string>& page) {
    std::string name = page.param;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(OfPage, Commands, testing::ValuesIn(pagesWithCommands()), nameOf);

TEST(ShownOutput, IsComparedLineByLine) {
    EXPECT_TRUE(isShownAs("one\ntwo\n", "one\ntwo\n"));
    EXPECT_FALSE(isShownAs("one\ntwo\n", "one\nthree\n"));
    EXPECT_FALSE(isShownAs("one\n", "one\ntwo\n"));
    EXPECT_FALSE(isShownAs("one\ntwo\n", "one\n"));
}

TEST(ShownOutput, LeavesOutWhatDotsStandFor) {
    EXPECT_TRUE(isShownAs("one\n...\nfour\n", "one\ntwo\nthree\nfour\n"));
    EXPECT_TRUE(isShownAs("one\n...\nfour\n", "one\nfour\n"));
    EXPECT_FALSE(isShownAs("one\n...\nfour\n", "one\ntwo\nthree\n"));
    EXPECT_TRUE(isShownAs("Reason: ...\n", "Reason: this one\n"));
    EXPECT_FALSE(isShownAs("Reason: ...\n", "Cause: this one\n"));
}

TEST(ShownOutput, SaysNothingOfProgressAndTimes) {
    EXPECT_TRUE(isShownAs("  Time   0.01 s\n", "Copying attachments: 100 % (19/19)\n  Time   12.7 s\n"));
    EXPECT_TRUE(isShownAs("  Notes      1\n  Time  0.01 s\n", "  Notes     1\n  Time  1.2 s\n"));
    EXPECT_TRUE(isShownAs("done\n", "50 %\r100 %\rdone\n"));
    EXPECT_FALSE(isShownAs("  Time   0.01 s\n", "  Size   0.01 s\n"));
}

}  // namespace
