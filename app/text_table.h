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
    std::size_t widthOf(std::size_t column) const;

    std::vector<Align> columns_;
    std::vector<std::vector<std::string>> rows_;
};

/// A table of two columns: what, and how much.
class Summary {
public:
    void add(const std::string& label, const std::string& value) { table_.add({label, value}); }
    void add(const std::string& label, long long number);
    /// Leaves the row out when there is nothing to tell.
    void addIfAny(const std::string& label, long long number);
    void print(std::ostream& out) const { table_.print(out); }

private:
    TextTable table_{{Align::left, Align::right}};
};

}  // namespace app
