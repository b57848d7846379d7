// Inside of the database layer: owning types over SQLite's handles.
#pragma once

#include <sqlite3.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "host/dbUtils.h"

namespace imsdk::detail {

struct CloseDatabase {
    // The _v2 form defers the closing until the last statement is gone: a cursor may outlive its connection object.
    void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
};
struct FinalizeStatement {
    void operator()(sqlite3_stmt* handle) const { sqlite3_finalize(handle); }
};
using DatabaseHandle = std::unique_ptr<sqlite3, CloseDatabase>;
using StatementHandle = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

/// Which file a path named at one moment.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;

    bool operator==(const FileIdentity& other) const { return device == other.device && inode == other.inode; }
};

/// Why a file did not open.
struct OpenError {
    OpenFailure failure = OpenFailure::none;
    std::string words;
};

/// One open database file with its batch state.
class Connection {
public:
    /// Null when the file does not open; `error` then says why.
    [[nodiscard]] static std::shared_ptr<Connection> open(const char* path, const char* key, OpenError& error);

    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    Connection(Connection&&) = delete;
    Connection& operator=(Connection&&) = delete;

    /// True when `path` with `key` still names the file that is open here and its schema can be read.
    [[nodiscard]] bool stillServes(const char* path, const char* key);

    /// Prepares the only statement of `sql`; null for a failing text and for one that holds more than one statement.
    [[nodiscard]] StatementHandle prepare(std::string_view sql);

    /// Runs a prepared statement to its end. False when it failed or the current batch is lost.
    [[nodiscard]] bool runToEnd(sqlite3_stmt* statement);

    /// sqlite3_step(), ended with SQLITE_INTERRUPT when it goes on beyond all reason.
    [[nodiscard]] int step(sqlite3_stmt* statement);

    /// Remembers why `code` was returned, and gives the batch up when the reason lies in the machine.
    void noteFailure(int code);

    /// Batches nest: only the outermost pair begins and ends a transaction, or, inside one that the host has begun with
    /// a statement of its own, a savepoint of it.
    void beginBatch();
    void endBatch();
    void abandonBatch() { batchLost_ = batchLost_ || batchDepth_ > 0; }
    [[nodiscard]] bool batchLost() const { return batchLost_; }
    [[nodiscard]] bool refusesWrites() const { return batchDepth_ > 0 && batchLost_; }

    /// Makes the page cache large enough for the schema of so many tables. Never makes it smaller.
    void cacheSchemaOf(std::size_t tables);

    /// Replaces the content by that of another database.
    [[nodiscard]] bool takeAllOf(Connection& source);

    [[nodiscard]] int changedRows() const { return sqlite3_changes(handle_.get()); }
    [[nodiscard]] const std::string& lastError() const { return lastError_; }
    [[nodiscard]] bool lastFailureWasDuplicate() const;
    [[nodiscard]] bool lastFailureWasLock() const;

private:
    Connection() = default;
    [[nodiscard]] bool unlock(const char* key);
    [[nodiscard]] StatementHandle refuse(const char* reason);
    void keepReason(int code) noexcept;
    void defend();
    void configure();
    void limitPageCache(std::size_t kib);
    [[nodiscard]] bool execute(const char* sql);
    void undoBatch();
    [[nodiscard]] bool readsSchema();

    int timesStepped_ = 0;  // before the handle, which has its address
    DatabaseHandle handle_;
    std::string path_;
    std::string key_;
    bool hasKey_ = false;
    FileIdentity identity_;
    std::size_t cachedTables_ = 0;
    int batchDepth_ = 0;
    bool batchLost_ = false;
    bool isJoined_ = false;        // the batch is a savepoint of the host's transaction
    int lastFailure_ = SQLITE_OK;  // an extended code
    std::string lastError_;
};

/// A prepared statement together with the connection that it needs.
class Statement {
public:
    Statement(std::shared_ptr<Connection> connection, StatementHandle handle)
        : connection_(std::move(connection)), handle_(std::move(handle)) {}

    [[nodiscard]] Connection& connection() { return *connection_; }
    [[nodiscard]] bool belongsTo(const std::shared_ptr<Connection>& connection) const {
        return connection_ == connection;
    }
    [[nodiscard]] sqlite3_stmt* get() const { return handle_.get(); }

    bool hasRow = false;
    bool atEnd = false;
    bool failed = false;

private:
    std::shared_ptr<Connection> connection_;  // declared before the handle: it must outlive it
    StatementHandle handle_;
};

}  // namespace imsdk::detail
