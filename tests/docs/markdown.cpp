#include "tests/docs/markdown.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <sstream>

#include "tests/support/temp_dir.h"

namespace docs {

std::vector<std::string> linesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

namespace {

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

// Drops the code blocks: a "#" in them is no heading, a "](" no link.
std::vector<std::string> proseOf(const std::string& document) {
    std::vector<std::string> prose;
    bool inBlock = false;
    for (const std::string& line : linesOf(document)) {
        const bool fence = beginsWith(line, "```");
        if (!fence && !inBlock) prose.push_back(line);
        if (fence) inBlock = !inBlock;
    }
    return prose;
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

std::string codeBlock(const std::string& document, const std::string& name) {
    int found = 0;
    bool wanted = false;
    bool inBlock = false;
    std::string text;
    for (const std::string& line : linesOf(document)) {
        if (beginsWith(line, "```")) {
            inBlock = !inBlock;
            const std::size_t blank = line.find(' ');
            wanted = inBlock && blank != std::string::npos && line.substr(blank + 1) == name;
            if (wanted) ++found;
        } else if (wanted) {
            text += line + "\n";
        }
    }
    EXPECT_EQ(1, found) << "code blocks named " << name;
    return text.substr(0, text.empty() ? 0 : text.size() - 1);
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
