// Reading the project's documents: code blocks, tables by heading, links.
#pragma once

#include <string>
#include <vector>

namespace docs {

/// The text of a file of the project, for example "docs/databases.md".
std::string readSource(const std::string& path);

std::vector<std::string> linesOf(const std::string& text);

/// README.md, CONTRIBUTING.md, CHANGELOG.md and every page below docs/, as readSource() takes them, sorted.
std::vector<std::string> allPages();

/// A fenced block: "```sh setup" has the language "sh" and the name "setup".
struct Block {
    std::string language;
    std::string name;
    std::string text;  ///< each line with its newline
    int line = 0;      ///< of the opening fence, counted from 1
};

/// The blocks whose fences stand at the beginning of their lines.
std::vector<Block> blocksOf(const std::string& document);

/// The lines outside these blocks.
std::vector<std::string> proseOf(const std::string& document);

/// The text of the block that begins with "```<language> <name>", without its last newline. Fails the test unless the
/// document has exactly one such block.
std::string codeBlock(const std::string& document, const std::string& name);

using Row = std::vector<std::string>;

/// The body rows of the first table below the heading, cells without the blanks around them. Fails the test when there
/// is none.
std::vector<Row> tableUnder(const std::string& document, const std::string& heading);

/// The text of a cell without its backticks.
std::string plain(const std::string& cell);

/// What stands in the parentheses of "[text](target)".
std::vector<std::string> linkTargets(const std::string& document);

/// The anchors by which other pages link to the headings of this one.
std::vector<std::string> anchors(const std::string& document);

}  // namespace docs
