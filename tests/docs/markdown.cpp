#include "tests/docs/markdown.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <sstream>

#include "tests/support/temp_dir.h"

namespace docs {

namespace fs = std::filesystem;

std::vector<std::string> linesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

namespace {

const std::string kFence = "```";

bool beginsWith(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}

bool isHeading(const std::string& line) {
    return !line.empty() && line.front() == '#';
}

std::string headingText(const std::string& line) {
    const std::size_t text = line.find_first_not_of("# ");
    return text == std::string::npos ? "" : line.substr(text);
}

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

Row cellsOf(const std::string& line) {
    std::istringstream stream(line.substr(1));
    Row cells;
    for (std::string cell; std::getline(stream, cell, '|');)
        cells.push_back(trimmed(cell));
    return cells;
}

std::string anchorOf(const std::string& heading) {
    std::string anchor;
    for (const char c : heading) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == ' ') anchor += '-';
        if (byte >= 0x80 || std::isalnum(byte) != 0 || c == '-' || c == '_') {
            anchor += static_cast<char>(std::tolower(byte));
        }
    }
    return anchor;
}

}  // namespace

std::string readSource(const std::string& path) {
    return test::readFile(std::string(CHAT_TRANSFER_SOURCE_DIR) + "/" + path);
}

std::vector<std::string> allPages() {
    const fs::path root(CHAT_TRANSFER_SOURCE_DIR);
    std::vector<std::string> pages = {"CHANGELOG.md", "CONTRIBUTING.md", "README.md"};
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root / "docs")) {
        if (entry.path().extension() == ".md") pages.push_back(entry.path().lexically_relative(root).string());
    }
    std::sort(pages.begin(), pages.end());
    return pages;
}

std::vector<Block> blocksOf(const std::string& document) {
    std::vector<Block> blocks;
    bool inBlock = false;
    int number = 0;
    for (const std::string& line : linesOf(document)) {
        ++number;
        if (beginsWith(line, kFence)) {
            inBlock = !inBlock;
            if (!inBlock) continue;
            const std::string info = line.substr(kFence.size());
            const std::size_t blank = std::min(info.find(' '), info.size());
            blocks.push_back({info.substr(0, blank), trimmed(info.substr(blank)), "", number});
        } else if (inBlock) {
            blocks.back().text += line + "\n";
        }
    }
    EXPECT_FALSE(inBlock) << "the last code block has no end";
    return blocks;
}

// A "#" in a block is no heading, a "](" no link.
std::vector<std::string> proseOf(const std::string& document) {
    std::vector<std::string> prose;
    bool inBlock = false;
    for (const std::string& line : linesOf(document)) {
        const bool fence = beginsWith(line, kFence);
        if (!fence && !inBlock) prose.push_back(line);
        if (fence) inBlock = !inBlock;
    }
    return prose;
}

std::string codeBlock(const std::string& document, const std::string& name) {
    int found = 0;
    std::string text;
    for (const Block& block : blocksOf(document)) {
        if (block.name != name) continue;
        ++found;
        text = block.text.substr(0, block.text.empty() ? 0 : block.text.size() - 1);
    }
    EXPECT_EQ(1, found) << "code blocks named " << name;
    return text;
}

std::vector<Row> tableUnder(const std::string& document, const std::string& heading) {
    const std::vector<std::string> lines = proseOf(document);
    const auto isRow = [](const std::string& line) { return beginsWith(line, "|"); };
    auto line = std::find_if(lines.begin(), lines.end(), [&heading](const std::string& text) {
        return isHeading(text) && headingText(text) == heading;
    });
    line = std::find_if(line, lines.end(), isRow);
    std::vector<Row> rows;
    for (; line != lines.end() && isRow(*line); ++line)
        rows.push_back(cellsOf(*line));
    EXPECT_GT(rows.size(), 2U) << "no table under the heading " << heading;
    rows.erase(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(2, rows.size())));
    return rows;
}

std::string plain(const std::string& cell) {
    std::string text = cell;
    text.erase(std::remove(text.begin(), text.end(), '`'), text.end());
    return text;
}

std::vector<std::string> linkTargets(const std::string& document) {
    std::vector<std::string> targets;
    for (const std::string& line : proseOf(document)) {
        std::size_t open = line.find("](");
        while (open != std::string::npos) {
            const std::size_t begin = open + 2;
            targets.push_back(line.substr(begin, line.find(')', begin) - begin));
            open = line.find("](", begin);
        }
    }
    return targets;
}

std::vector<std::string> anchors(const std::string& document) {
    std::vector<std::string> all;
    for (const std::string& line : proseOf(document)) {
        if (isHeading(line)) all.push_back(anchorOf(headingText(line)));
    }
    return all;
}

}  // namespace docs
