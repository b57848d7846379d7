// The values of a command's placeholders, kept from one execution to the next.
#pragma once

#include <sqlite3.h>

#include <set>
#include <string>
#include <vector>

namespace imsdk::detail {

/// Values by placeholder, counted from 1. Texts are copied into buffers that stay in place, and whose room is used
/// again: binding one row after another allocates nothing.
class BoundValues {
public:
    /// Keep the value and hand it to `statement`. The result is SQLite's; anything but SQLITE_OK leaves the placeholder
    /// without a usable value until it is bound anew.
    int bindText(sqlite3_stmt* statement, int index, const char* text);
    int bindNumber(sqlite3_stmt* statement, int index, long long number);

    /// Takes a statement that was prepared, for the first time or anew, from the text that the values belong to.
    void bindAll(sqlite3_stmt* statement);

    /// The placeholder was to get a value that nothing could take.
    void lose(int index) noexcept;

    /// Whether every value that was to be bound is.
    bool areWhole() const { return lost_.empty() && !spoiled_; }

    void clear();

private:
    struct Value {
        enum class Kind { null, number, text };

        Kind kind = Kind::null;
        long long number = 0;
        std::string text;
    };

    Value* at(int index);
    int noted(int index, int code);
    static int bind(sqlite3_stmt* statement, int index, const Value& value);

    std::vector<Value> values_;  // one for each placeholder, once there is a statement: SQLite holds addresses of texts
    std::set<int> lost_;
    bool spoiled_ = false;  // there was no memory even to remember which one is lost
};

}  // namespace imsdk::detail
