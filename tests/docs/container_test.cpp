// The example and the script of docs/formats/cipher-container.md.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "tests/app/program.h"
#include "tests/docs/markdown.h"
#include "tests/support/temp_dir.h"

namespace {

const std::string kPage = "docs/formats/cipher-container.md";

std::string documented(const std::string& name) {
    return docs::codeBlock(docs::readSource(kPage), name);
}

// The container of the test vector "short text" as hexadecimal digits.
std::string shortText() {
    const std::string page = docs::readSource(kPage);
    const std::string key = "\ncontainer: ";
    const std::size_t begin = page.find(key, page.find("name: short text")) + key.size();
    return page.substr(begin, page.find('\n', begin) - begin);
}

bool isByte(const std::string& word) {
    return word.size() == 2 && word.find_first_not_of("0123456789abcdef") == std::string::npos;
}

}  // namespace

TEST(ContainerPage, ShowsTheBytesOfItsExample) {
    const std::string container = shortText();
    std::size_t compared = 0;
    for (const std::string& line : docs::linesOf(documented("short text, byte by byte"))) {
        std::istringstream words(line.substr(4, line.find("   ", 4) - 4));  // before the comment
        std::size_t at = 2 * std::stoul(line.substr(0, 2), nullptr, 16);
        for (std::string word; words >> word; at += 2, ++compared) {
            if (word == "...") break;
            ASSERT_TRUE(isByte(word)) << line;
            EXPECT_EQ(container.substr(at, 2), word) << line;
        }
    }
    EXPECT_LT(60U, compared);
}

TEST(ContainerPage, HasAScriptThatFindsItsVectorsRight) {
    const std::string node = CHAT_TRANSFER_NODE;
    if (node.empty()) GTEST_SKIP() << "node is not installed";
    std::string script;
    std::string printed;
    for (const docs::Block& block : docs::blocksOf(docs::readSource(kPage))) {
        if (block.language == "js") script = block.text;
        if (block.language == "text" && block.name.empty()) printed = block.text;
    }
    const test::TempDir home;
    const std::string file = home.write("check.js", script);
    const test::Outcome run = test::runProgram(node, {file, std::string(CHAT_TRANSFER_SOURCE_DIR) + "/" + kPage});
    EXPECT_EQ(0, run.code) << run.all();
    EXPECT_EQ(printed, run.out);
}
