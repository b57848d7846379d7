// The database layer: one connection, prepared commands and result cursors over SQLite.
//
// Nothing of SQLite shows in this header. Texts are UTF-8. Nothing here throws on a database failure: results say
// whether a call succeeded, and dbUtils::lastError() keeps the evidence in words.
//
// Threads: a dbUtils and the commands and cursors that were made from it belong to one thread at a time. Objects of
// other connections may be used on other threads at the same time, also on the same file; the engine that they share is
// made ready once, by whoever opens first.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace imsdk {

class dbCommand;

namespace detail {
class BoundValues;
class Connection;
class Statement;
}  // namespace detail

/// A forward-only cursor over the rows of one query. Movable, not copyable; it keeps its connection alive, so it may
/// outlive the dbUtils that made it. A cursor of a failed query behaves like one of an empty result.
class dbDataReader {
public:
    dbDataReader();
    ~dbDataReader();
    dbDataReader(dbDataReader&& other) noexcept;
    dbDataReader& operator=(dbDataReader&& other) noexcept;
    dbDataReader(const dbDataReader&) = delete;
    dbDataReader& operator=(const dbDataReader&) = delete;

    /// Fetches the next row. Non-zero while there is one, 0 at the end. A read that fails half way (a damaged page, a
    /// lock) also gives 0; failed() tells the two apart.
    int read();

    /// True when the query did not run or a read failed, false at the ordinary end of the rows.
    [[nodiscard]] bool failed() const;

    /// The value of column `column` (counted from 0) of the current row as text, all its bytes, NULs included. NULL, a
    /// column that does not exist and a cursor without a current row give an empty text.
    std::string getColumnValue(int column);

    /// Stores the value as a number: 0 for NULL, for a column that does not exist and without a current row. Wider
    /// values keep their low bits (8, 32 or 64); texts are read as their leading number, as SQLite does.
    void getColumnValue(int column, signed char& value);
    void getColumnValue(int column, int& value);
    void getColumnValue(int column, long long& value);

    /// Refills `text` with the value instead of making a new string: the form for loops over many rows.
    void getColumnValue(int column, std::string& text);

private:
    friend class dbUtils;
    explicit dbDataReader(std::unique_ptr<detail::Statement> statement);

    std::unique_ptr<detail::Statement> statement_;
};

/// Why a database did not open, as far as the database engine can tell.
enum class OpenFailure {
    none,          ///< it is open, or has not been tried
    missing,       ///< there is no such file, or it is no regular file
    notPermitted,  ///< the file may not be read
    locked,        ///< another process holds it
    notDecoded,    ///< it is no database, or not with this key: without the key the two look the same
    damaged,       ///< a database with broken pages
    other          ///< lastError() has the engine's words
};

/// One connection to one database file. It is closed by its own destruction, or when another file is opened with it.
class dbUtils {
public:
    dbUtils();
    virtual ~dbUtils();
    dbUtils(const dbUtils&) = delete;
    dbUtils& operator=(const dbUtils&) = delete;
    dbUtils(dbUtils&&) = delete;
    dbUtils& operator=(dbUtils&&) = delete;

    /// Opens the database file at `path`, for reading and writing where the file permits it, else for reading.
    ///
    /// `key` is the text that the key of an encrypted database is derived from (SQLCipher 4 scheme: PBKDF2-HMAC-SHA512,
    /// 256,000 rounds, AES-256-CBC with HMAC-SHA512 per page); null or an empty text opens an unencrypted file. A file
    /// is never created: a missing database does not open. An empty file is an empty database, with or without a key.
    ///
    /// Returns non-zero when the database is open and its schema could be read; 0 for a missing or unreadable file, a
    /// wrong or missing key, a file that is no database, and one that stays locked for longer than the busy timeout.
    /// After 0 the connection is closed.
    ///
    /// Opening the same path with the same key again keeps the open connection (no second key derivation, no second
    /// parse of the schema) unless the file was removed or replaced meanwhile.
    int open(const char* path, const char* key);

    /// Runs one complete query. A text that fails, or holds more than one statement, gives a cursor whose first read()
    /// returns 0; no part of such a text is run.
    dbDataReader excuteQuery(const char* sql);

    /// Runs one complete statement without a result. Non-zero on success, 0 on failure; a text that holds more than one
    /// statement fails, and no part of it is run.
    int excuteNonQuery(const char* sql);

    /// Executes a prepared command with its bound values, which stay for the next execution. Non-zero on success, 0 on
    /// failure and for a null pointer. Fails without running anything while a value of the command could not be bound.
    int excuteNonQuery(dbCommand* command);

    /// Non-zero when the query `sql` (a whole statement, not a table name) yields at least one row.
    int isExistTable(const char* sql);

    /// Opens a transaction and takes the write lock at once, waiting for a few seconds when another connection holds
    /// it, so that a batch either has the lock for all its writes or writes nothing. When the lock cannot be had, every
    /// statement up to endTransaction() fails and changes nothing.
    ///
    /// Inside a transaction that the host has begun on this connection with a statement of its own, the batch joins it
    /// as a savepoint: the host's transaction begins and ends with the host's statements alone, and only what the batch
    /// wrote is lost when the batch is.
    virtual void beginTransaction();

    /// Commits the transaction of beginTransaction(); its writes are durable then (inside a transaction of the host's,
    /// once the host commits it). When a statement of the batch failed for a reason of the machine (disk full,
    /// input/output error, lost lock), the whole batch is rolled back instead, so that a table holds all of a batch or
    /// none of it. A statement that the database refuses for its content (a constraint, an oversized text, a malformed
    /// statement) does not spoil the batch. transactionFailed() tells.
    virtual void endTransaction();

    /// Loses the current batch: nothing of it stays when its transaction ends. For a caller that cannot complete it.
    void abandonTransaction();

    /// True from the moment at which the current batch is lost until the next beginTransaction().
    [[nodiscard]] bool transactionFailed() const;

    /// Tells that tables are being created and how many there are. SQLite reads its whole schema again after each, and
    /// with the schema of 20,000 tables that costs half as much when it stays in the page cache. The cache grows to 64
    /// MiB at most; without this call it has SQLite's default of 2 MB, and more would be memory for nothing. No result:
    /// a cache that cannot grow only costs time.
    void cacheSchemaOf(std::size_t tables);

    /// Replaces all that `target` holds by all that this database holds now, as SQLite's online backup does: another
    /// process may go on writing to this one. Both must be open, with the same key or both without. Non-zero on
    /// success; after 0, `target` holds what it had, and lastError() of `target` says why.
    int copyTo(dbUtils& target) const;

    /// True between a successful open() and the destruction or a failed open().
    [[nodiscard]] bool isOpen() const;

    /// Why the last open() failed; none when it did not.
    [[nodiscard]] OpenFailure openFailure() const { return openFailure_; }

    /// Number of rows that the last successful insert, update or delete changed.
    [[nodiscard]] int changedRows() const;

    /// What the last failed call of this object said, in English words; empty when none has failed since open().
    [[nodiscard]] std::string lastError() const;

    /// True when the last failure was that the row's key is in the table already. Other refusals, by a trigger or a
    /// check for example, are none: their row is nowhere.
    [[nodiscard]] bool lastFailureWasDuplicate() const;

    /// True when the last failure was that another connection held the database for longer than the busy wait.
    [[nodiscard]] bool lastFailureWasLock() const;

private:
    friend class dbCommand;

    std::shared_ptr<detail::Connection> connection_;
    std::string lastOpenError_;
    OpenFailure openFailure_ = OpenFailure::none;
};

/// A prepared statement on one connection, with "?" placeholders counted from 1. The connection object must outlive the
/// command; when it opens another file in between, the command is prepared anew there, with the values bound so far.
///
/// A value stays until its placeholder is bound anew or the text is replaced; a placeholder that was never bound is
/// NULL. A binding that fails (no database is open, the text cannot be prepared, there is no such placeholder, the
/// value is too large) makes every execution fail until that placeholder is bound anew or the text is replaced: a row
/// with a hole in it is worse than none.
class dbCommand {
public:
    /// `db` is not owned. The text form is setCommandText() in one step.
    explicit dbCommand(dbUtils* db);
    dbCommand(dbUtils* db, const char* sql);
    virtual ~dbCommand();
    dbCommand(const dbCommand&) = delete;
    dbCommand& operator=(const dbCommand&) = delete;
    dbCommand(dbCommand&&) = delete;
    dbCommand& operator=(dbCommand&&) = delete;

    /// Replaces the statement text; all values have to be bound again. A text that cannot be prepared, or that holds
    /// more than one statement, makes every execution fail until the next setCommandText(). Null stands for an empty
    /// text.
    void setCommandText(const char* sql);

    /// Binds a NUL-terminated UTF-8 text, which is copied. Null binds NULL.
    virtual void bindParam(int index, const char* value);
    /// Binds a 32-bit integer.
    virtual void bindParam(int index, int value);
    /// Binds a 64-bit integer.
    virtual void bindParam(int index, long long value);

    /// Binds a text by pointer, as the first form does: up to its first NUL.
    void bindParam(int index, const std::string& value) { bindParam(index, value.c_str()); }
    /// A temporary text is gone before the command is executed.
    void bindParam(int index, const std::string&& value) = delete;

private:
    friend class dbUtils;
    bool prepare();
    bool prepareAnew();
    [[nodiscard]] bool isBound() const;
    template <class Bind>
    void bindWith(int index, Bind bind);
    void bindNumber(int index, long long value);

    dbUtils* db_;
    std::string sql_;
    bool prepareFailed_ = false;
    std::unique_ptr<detail::BoundValues> values_;
    std::unique_ptr<detail::Statement> statement_;
};

}  // namespace imsdk
