// Owning handles over the SQLite C interface, for the programs that use it without the project's database layer. Every
// failure is an exception: a benchmark that goes on after one would measure something else.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>
#include <string_view>

namespace bench {

struct CloseDatabase {
    void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
};
struct FinalizeStatement {
    void operator()(sqlite3_stmt* handle) const { sqlite3_finalize(handle); }
};
using Database = std::unique_ptr<sqlite3, CloseDatabase>;
using Statement = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

/// Opens an existing database, or makes one when `create` is set. A key opens or makes an encrypted one.
Database openDatabase(const std::string& path, bool create = false, const char* key = nullptr);

Statement prepare(sqlite3* db, const std::string& sql);

/// Runs statements without results.
void run(sqlite3* db, const std::string& sql);

/// True while there is a row.
bool step(sqlite3_stmt* statement);

/// The column as the database holds it, valid until the next step.
inline std::string_view textOf(sqlite3_stmt* statement, int column) {
    const unsigned char* bytes = sqlite3_column_text(statement, column);
    return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
}

/// Binds by pointer: the text must live until the statement has run.
inline void bindText(sqlite3_stmt* statement, int index, std::string_view text) {
    // A null pointer would bind NULL; an empty text is not NULL.
    const char* bytes = text.data() != nullptr ? text.data() : "";
    sqlite3_bind_text(statement, index, bytes, static_cast<int>(text.size()), SQLITE_STATIC);
}

/// One transaction that takes the write lock at once. Without commit() it is rolled back.
class Transaction {
public:
    explicit Transaction(sqlite3* db) : db_(db) { run(db_, "BEGIN IMMEDIATE"); }
    ~Transaction() {
        if (!committed_) sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    Transaction(Transaction&&) = delete;
    Transaction& operator=(Transaction&&) = delete;

    void commit() {
        run(db_, "COMMIT");
        committed_ = true;
    }

private:
    sqlite3* db_;
    bool committed_ = false;
};

}  // namespace bench
