// The values of a command's placeholders, kept from one execution to the next.
#pragma once

#include <sqlite3.h>

#include <deque>
#include <set>
#include <string>
#include <variant>

namespace imsdk::detail {

/// Values by placeholder, counted from 1. Texts are copied into buffers that stay in place, and whose room is used
/// again: binding one row after another allocates nothing.
class BoundValues {
public:
    /// Keep the value and hand it to `statement`. The result is SQLite's; anything but SQLITE_OK leaves the placeholder
    /// without a usable value until it is bound anew.
    [[nodiscard]] int bindText(sqlite3_stmt* statement, int index, const char* text);
    [[nodiscard]] int bindNumber(sqlite3_stmt* statement, int index, long long number);

    /// Hands all values to a statement that was prepared anew.
    void bindAll(sqlite3_stmt* statement);

    /// The placeholder was to get a value that nothing could take.
    void lose(int index) noexcept;

    /// Whether every value that was to be bound is.
    [[nodiscard]] bool areWhole() const { return lost_.empty() && !spoiled_; }

    void clear();

private:
    using Value = std::variant<std::monostate, long long, std::string>;  // NULL, a number or a text

    template <class Keep>
    [[nodiscard]] int keepAndBind(sqlite3_stmt* statement, int index, Keep keep);
    [[nodiscard]] int bind(sqlite3_stmt* statement, int index);

    std::deque<Value> values_;
    std::set<int> lost_;
    bool spoiled_ = false;  // there was no memory even to remember which one is lost
};

}  // namespace imsdk::detail
