// Owning handles over the SQLite C interface: the floor does without the project's database layer. Every failure is an
// exception, since a benchmark that goes on after one would measure something else.
#pragma once

#include <sqlite3.h>

#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

struct CloseDatabase {
    void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
};
struct FinalizeStatement {
    void operator()(sqlite3_stmt* handle) const { sqlite3_finalize(handle); }
};
using Database = std::unique_ptr<sqlite3, CloseDatabase>;
using Statement = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

inline void require(bool success, sqlite3* db, const std::string& what) {
    if (!success) throw std::runtime_error(what + ": " + sqlite3_errmsg(db));
}

/// Runs statements without results.
inline void run(sqlite3* db, const std::string& sql) {
    require(sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK, db, sql);
}

/// Opens an existing database; a key is for an encrypted one, or makes an empty one encrypted.
inline Database openDatabase(const std::string& path, const char* key = nullptr) {
    sqlite3* handle = nullptr;
    const int code = sqlite3_open_v2(path.c_str(), &handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    Database db(handle);
    require(code == SQLITE_OK, handle, path);
    if (key == nullptr) return db;
    run(handle, "PRAGMA cipher = 'sqlcipher'; PRAGMA legacy = 4");
    require(sqlite3_key(handle, key, static_cast<int>(std::strlen(key))) == SQLITE_OK, handle, path);
    return db;
}

inline Statement prepare(sqlite3* db, const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v2(db, sql.c_str(), static_cast<int>(sql.size()), &statement, nullptr);
    require(code == SQLITE_OK, db, sql);
    return Statement(statement);
}

/// True while there is a row.
inline bool step(sqlite3_stmt* statement) {
    const int code = sqlite3_step(statement);
    if (code == SQLITE_ROW || code == SQLITE_DONE) return code == SQLITE_ROW;
    throw std::runtime_error(sqlite3_errmsg(sqlite3_db_handle(statement)));
}

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

/// The names of the tables that hold messages.
inline std::vector<std::string> messageTables(sqlite3* db) {
    std::vector<std::string> names;
    const Statement list = prepare(db, "select name from sqlite_master where type='table' and name glob 'im_msg_*'");
    while (step(list.get()))
        names.emplace_back(textOf(list.get(), 0));
    return names;
}

}  // namespace bench
