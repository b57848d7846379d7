// Tables of plain text: columns padded with blanks.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace app {

enum class Align { left, right };

/// Cells are shown as they are: foreign text has to be made printable before. Texts other than ASCII belong in the last
/// column, since the width of a character is the terminal's secret.
class TextTable {
public:
    explicit TextTable(std::vector<Align> columns) : columns_(std::move(columns)) {}

    void add(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }

    void print(std::ostream& out) const;

private:
    [[nodiscard]] std::size_t widthOf(std::size_t column) const;

    std::vector<Align> columns_;
    std::vector<std::vector<std::string>> rows_;
};

}  // namespace app
