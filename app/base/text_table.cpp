#include "app/base/text_table.h"

#include <algorithm>
#include <ostream>

namespace app {

std::size_t TextTable::widthOf(std::size_t column) const {
    std::size_t width = 0;
    for (const std::vector<std::string>& row : rows_)
        width = std::max(width, row.at(column).size());
    return width;
}

void TextTable::print(std::ostream& out) const {
    std::vector<std::size_t> widths(columns_.size());
    for (std::size_t column = 0; column < widths.size(); ++column)
        widths[column] = widthOf(column);
    for (const std::vector<std::string>& row : rows_) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column) {
            const std::string padding(widths[column] - row[column].size(), ' ');
            line += "  ";
            line += columns_[column] == Align::right ? padding + row[column] : row[column] + padding;
        }
        line.erase(line.find_last_not_of(' ') + 1);
        out << line << '\n';
    }
}

}  // namespace app
