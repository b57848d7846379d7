// No snippet of the documentation escapes: each has a tag by which some test runs, compiles or checks it.
//
//   sh, sh fails     run in a shell, with success or exit code 1; a `text` block behind it is what it prints
//   sh installed     the same, with an installed copy of the library
//   sh setup         builds or installs things: its targets and presets are looked up
//   cpp, c, cmake    compiled or configured; with a file's name it is that file for the blocks behind it
//   js               run by node; a `text` block behind it is what it prints
//   vectors          checked by the tests of the cipher
//   text layout, text formula    drawings, which nobody can run
//   everything else  has a name by which a test takes it out of its page
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/docs/markdown.h"

namespace {

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

bool isOneOf(const std::string& text, const std::set<std::string>& all) {
    return all.count(text) == 1;
}

bool aTestTakesItByName(const std::string& name) {
    const std::set<std::string> tests = {"tests/docs/container_test.cpp", "tests/docs/databases_test.cpp",
                                         "tests/docs/package_test.cpp", "tests/docs/schemas_test.cpp",
                                         "tests/transfer/tree/tree_documentation_test.cpp"};
    return std::any_of(tests.begin(), tests.end(),
                       [&name](const std::string& test) { return contains(docs::readSource(test), '"' + name + '"'); });
}

// Whether what the block shows is the output of the one in front.
bool isOutput(const docs::Block& block, const docs::Block* before) {
    return block.language == "text" && block.name.empty() && before != nullptr && before->name != "setup" &&
           isOneOf(before->language, {"sh", "js"});
}

bool isTested(const docs::Block& block, const docs::Block* before) {
    const std::string& language = block.language;
    if (language == "sh") return isOneOf(block.name, {"", "fails", "installed", "setup"});
    if (language == "js" || language == "vectors") return block.name.empty();
    if (language == "cmake") return isOneOf(block.name, {"", "CMakeLists.txt"});
    if (language == "cpp" || language == "c") return block.name.empty() || contains(block.name, ".");
    if (isOutput(block, before) || (language == "text" && isOneOf(block.name, {"layout", "formula"}))) return true;
    return !block.name.empty() && isOneOf(language, {"json", "sql", "text"}) && aTestTakesItByName(block.name);
}

std::vector<std::string> wordsOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

// What the blocks called "setup" ask for, command by command, without the comments.
std::vector<std::string> setupCommands() {
    std::vector<std::string> commands;
    for (const std::string& page : docs::allPages()) {
        for (const docs::Block& block : docs::blocksOf(docs::readSource(page))) {
            if (block.language != "sh" || block.name != "setup") continue;
            for (const std::string& line : docs::linesOf(block.text)) {
                std::string rest = line.substr(0, line.find('#'));
                for (std::size_t end = rest.find(" && "); end != std::string::npos; end = rest.find(" && ")) {
                    commands.push_back(rest.substr(0, end));
                    rest.erase(0, end + 4);
                }
                if (!wordsOf(rest).empty()) commands.push_back(rest);
            }
        }
    }
    return commands;
}

// "NAME=value", also with blanks inside quotes, is no target.
std::vector<std::string> targetsOf(const std::string& command) {
    std::vector<std::string> targets;
    bool quoted = false;
    for (const std::string& word : wordsOf(command)) {
        if (!quoted && !contains(word, "=")) targets.push_back(word);
        if (std::count(word.begin(), word.end(), '"') == 1) quoted = !quoted;
    }
    targets.erase(targets.begin());  // "make"
    return targets;
}

std::string fault(const std::string& command) {
    const std::vector<std::string> words = wordsOf(command);
    if (words.front() == "make") {
        const std::string makefile = docs::readSource("Makefile");
        for (const std::string& target : targetsOf(command)) {
            const bool known = contains(makefile, "\n" + target + ":") && contains(makefile, " " + target);
            if (!known) return "there is no target " + target;
        }
        return "";
    }
    if (words.front() == "cmake" && contains(command, " --preset ")) {
        const std::string preset = R"("name": ")" + words.back() + '"';
        return contains(docs::readSource("CMakePresets.json"), preset) ? "" : "there is no preset " + words.back();
    }
    return "nobody looks this command up";
}

// Whether another block of the page names the file.
bool isUsed(const docs::Block& file, const std::vector<docs::Block>& page) {
    const std::string use = file.name == "CMakeLists.txt" ? "cmake -S" : file.name;
    return std::any_of(page.begin(), page.end(), [&](const docs::Block& block) { return contains(block.text, use); });
}

bool isIndentedCode(const std::string& line, const std::string& before) {
    return before.empty() && line.compare(0, 4, "    ") == 0;
}

}  // namespace

TEST(Snippets, AllHaveATagByWhichATestTakesThem) {
    int blocks = 0;
    for (const std::string& page : docs::allPages()) {
        const std::vector<docs::Block> all = docs::blocksOf(docs::readSource(page));
        for (std::size_t i = 0; i < all.size(); ++i) {
            const docs::Block* before = i == 0 ? nullptr : &all[i - 1];
            EXPECT_TRUE(isTested(all[i], before))
                << page << ":" << all[i].line << ": ```" << all[i].language << " " << all[i].name;
            ++blocks;
        }
    }
    EXPECT_LT(30, blocks);
}

TEST(Snippets, ThatAreFilesAreBuiltByACommandOfTheirPage) {
    for (const std::string& page : docs::allPages()) {
        const std::vector<docs::Block> all = docs::blocksOf(docs::readSource(page));
        for (const docs::Block& block : all) {
            const bool isFile = isOneOf(block.language, {"c", "cpp", "cmake"}) && !block.name.empty();
            EXPECT_TRUE(!isFile || isUsed(block, all)) << page << ":" << block.line << ": " << block.name;
        }
    }
}

TEST(Snippets, AreFencedAtTheBeginningOfTheirLines) {
    for (const std::string& page : docs::allPages()) {
        std::string before;
        for (const std::string& line : docs::proseOf(docs::readSource(page))) {
            EXPECT_FALSE(contains(line, "```") || contains(line, "~~~")) << page << ": " << line;
            EXPECT_FALSE(isIndentedCode(line, before)) << page << ": " << line;
            before = line;
        }
    }
}

TEST(Snippets, ForSettingUpNameTargetsAndPresetsThatExist) {
    const std::vector<std::string> commands = setupCommands();
    EXPECT_LT(10U, commands.size());
    for (const std::string& command : commands)
        EXPECT_EQ("", fault(command)) << command;
}

TEST(Snippets, WithATargetThatDoesNotExistAreNoticed) {
    EXPECT_EQ("there is no target tset", fault("make tset"));
    EXPECT_EQ("there is no target nothing", fault("make fuzz TARGETS=\"message_file body_tree\" nothing"));
    EXPECT_EQ("there is no preset relaese", fault("cmake --preset relaese"));
    EXPECT_EQ("nobody looks this command up", fault("rm -rf build"));
}

TEST(Snippets, WithoutATagOrANameThatATestTakesAreNoticed) {
    const docs::Block shell = {"sh", "", "", 1};
    const docs::Block setup = {"sh", "setup", "", 1};
    EXPECT_FALSE(isTested({"", "", "", 1}, nullptr));
    EXPECT_FALSE(isTested({"python", "", "", 1}, nullptr));
    EXPECT_FALSE(isTested({"sh", "later", "", 1}, nullptr));
    EXPECT_FALSE(isTested({"json", "no such block", "", 1}, nullptr));
    EXPECT_FALSE(isTested({"text", "", "", 1}, nullptr));
    EXPECT_FALSE(isTested({"text", "", "", 1}, &setup));
    EXPECT_TRUE(isTested({"text", "", "", 1}, &shell));
}
