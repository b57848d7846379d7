#include "bench/sqlite_handles.h"

#include <cstring>
#include <stdexcept>

namespace bench {
namespace {

[[noreturn]] void fail(sqlite3* db, const std::string& what) {
    throw std::runtime_error(what + ": " + sqlite3_errmsg(db));
}

}  // namespace

Database openDatabase(const std::string& path, bool create, const char* key) {
    sqlite3* handle = nullptr;
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | (create ? SQLITE_OPEN_CREATE : 0);
    const int code = sqlite3_open_v2(path.c_str(), &handle, flags, nullptr);
    Database db(handle);
    if (code != SQLITE_OK) fail(db.get(), path);
    if (key == nullptr) return db;
    run(db.get(), "PRAGMA cipher = 'sqlcipher'; PRAGMA legacy = 4");
    if (sqlite3_key(db.get(), key, static_cast<int>(std::strlen(key))) != SQLITE_OK) fail(db.get(), path);
    return db;
}

Statement prepare(sqlite3* db, const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    const int size = static_cast<int>(sql.size());
    if (sqlite3_prepare_v2(db, sql.c_str(), size, &statement, nullptr) != SQLITE_OK) fail(db, sql);
    return Statement(statement);
}

void run(sqlite3* db, const std::string& sql) {
    if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) fail(db, sql);
}

bool step(sqlite3_stmt* statement) {
    const int code = sqlite3_step(statement);
    if (code != SQLITE_ROW && code != SQLITE_DONE) fail(sqlite3_db_handle(statement), sqlite3_sql(statement));
    return code == SQLITE_ROW;
}

}  // namespace bench
