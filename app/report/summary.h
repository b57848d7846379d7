// The rows of what a command did: a table for people, an object of the report for programs. Both come from the same
// rows, so that they cannot say different things.
#pragma once

#include <iosfwd>
#include <string>
#include <variant>
#include <vector>

namespace app {

class Summary {
public:
    /// How the table shows a row.
    enum class Shown {
        always,
        ifAny,   ///< unless it is 0
        asSize,  ///< a number of bytes
    };

    struct Row {
        std::string key;    ///< its name in the report; "messages.read" is the member "read" of the object "messages"
        std::string label;  ///< its name in the table
        std::variant<long long, std::string> value;
        Shown shown = Shown::always;
    };

    void add(const std::string& key, const std::string& label, long long number);
    /// Foreign text has to be made printable before.
    void add(const std::string& key, const std::string& label, const std::string& text);
    /// The table leaves the row out when there is nothing to tell; the report has it.
    void addIfAny(const std::string& key, const std::string& label, long long number);
    void addSize(const std::string& key, const std::string& label, unsigned long long bytes);

    [[nodiscard]] const std::vector<Row>& rows() const { return rows_; }

    /// The rows with their values, and behind them how long the command took.
    void print(std::ostream& out, double seconds) const;

private:
    std::vector<Row> rows_;
};

}  // namespace app
