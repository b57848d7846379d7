#include "host/db/sqlite_connection.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <mutex>
#include <new>
#include <utility>

#include "host/base/fixed_text.h"
#include "host/base/wipe.h"

namespace imsdk::detail {
namespace {

// How long a lock of the running client is waited for. A client's own transactions take milliseconds; a few seconds
// cover a slow disk without making a person believe that nothing happens.
constexpr int kBusyTimeoutMs = 4000;

// SQLite's default page cache, and what the schema of one more table of ours takes of it at most, with its index.
constexpr std::size_t kPageCacheKiB = 2000;
constexpr std::size_t kSchemaKiBPerTable = 1;
constexpr std::size_t kMostPageCacheKiB = 65536;

// What a single row or statement of ours may cost. A database of a stranger can ask for much more with few bytes:
// columns that compute texts of a gigabyte, triggers that never end, expressions so deep that they exhaust the stack.
struct Limit {
    int id;
    int value;
};
constexpr std::array<Limit, 4> kLimits = {{{SQLITE_LIMIT_LENGTH, 64 << 20},
                                           {SQLITE_LIMIT_SQL_LENGTH, 1 << 20},
                                           {SQLITE_LIMIT_EXPR_DEPTH, 200},
                                           {SQLITE_LIMIT_ATTACHED, 0}}};

// Trimming a table of a million rows takes some ten million steps of SQLite's machine.
constexpr int kStepsAtOnce = 1'000'000;
constexpr int kMostTimes = 300;

// Called each time that a statement has taken kStepsAtOnce further steps; anything but 0 ends it.
int countSteps(void* times) {
    return ++*static_cast<int*>(times) > kMostTimes ? 1 : 0;
}

// Opening makes the engine ready as well, but looks without a lock whether another thread has done so. A failure shows
// again when the database is opened.
void makeEngineReady() {
    static std::once_flag once;
    std::call_once(once, [] { static_cast<void>(sqlite3_initialize()); });
}

bool identify(const char* path, FileIdentity& identity) {
    struct stat status {};
    if (stat(path, &status) != 0 || !S_ISREG(status.st_mode)) return false;
    identity = {status.st_dev, status.st_ino};
    return true;
}

// A refusal for what a statement or row says leaves the other rows of a batch in order; everything else (disk full,
// input/output, locks, memory, damage) means that the batch cannot be written whole.
bool isRefusalOfContent(int code) {
    switch (code & 0xff) {
        case SQLITE_CONSTRAINT:
        case SQLITE_TOOBIG:
        case SQLITE_MISMATCH:
        case SQLITE_RANGE:
        case SQLITE_ERROR:
        case SQLITE_AUTH:
            return true;
        default:
            return false;
    }
}

OpenFailure openFailureOf(int code) {
    switch (code & 0xff) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return OpenFailure::locked;
        case SQLITE_CANTOPEN:
        case SQLITE_PERM:
            return OpenFailure::notPermitted;
        case SQLITE_NOTADB:
            return OpenFailure::notDecoded;
        case SQLITE_CORRUPT:
            return OpenFailure::damaged;
        default:
            return OpenFailure::other;
    }
}

}  // namespace

std::shared_ptr<Connection> Connection::open(const char* path, const char* key, OpenError& error) {
    std::shared_ptr<Connection> connection(new Connection);
    if (path == nullptr || !identify(path, connection->identity_)) {
        error = {OpenFailure::missing, "there is no such file"};
        return nullptr;
    }
    makeEngineReady();
    sqlite3* handle = nullptr;
    const int code = sqlite3_open_v2(path, &handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    connection->handle_.reset(handle);
    if (code != SQLITE_OK) {
        error = {openFailureOf(code), handle != nullptr ? sqlite3_errmsg(handle) : "out of memory"};
        return nullptr;
    }
    connection->path_ = path;
    connection->hasKey_ = key != nullptr;
    if (key != nullptr) connection->key_ = key;
    sqlite3_extended_result_codes(handle, 0);
    connection->defend();
    sqlite3_busy_timeout(handle, kBusyTimeoutMs);
    if ((key != nullptr && !connection->unlock(key)) || !connection->readsSchema()) {
        error = {openFailureOf(connection->lastFailure_), connection->lastError_};
        return nullptr;
    }
    connection->configure();
    return connection;
}

Connection::~Connection() {
    tools::wipe(key_);
}

#ifdef CHAT_TRANSFER_WITHOUT_ENCRYPTION
bool Connection::unlock(const char* /*key*/) {
    lastError_ = "this SQLite cannot open encrypted databases";
    return false;
}
#else
bool Connection::unlock(const char* key) {
    // The scheme has to be chosen before the key is given. Version 4 with its own defaults is what existing tools open.
    const bool chosen = execute("PRAGMA cipher = 'sqlcipher'") && execute("PRAGMA legacy = 4");
    if (chosen && sqlite3_key(handle_.get(), key, static_cast<int>(std::strlen(key))) == SQLITE_OK) return true;
    if (lastError_.empty()) lastError_ = sqlite3_errmsg(handle_.get());
    return false;
}
#endif

void Connection::defend() {
    // A database file may come from a stranger: its schema must not be able to call functions with side effects.
    sqlite3_db_config(handle_.get(), SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(handle_.get(), SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    for (const Limit& limit : kLimits)
        sqlite3_limit(handle_.get(), limit.id, limit.value);
    sqlite3_progress_handler(handle_.get(), kStepsAtOnce, countSteps, &timesStepped_);
}

void Connection::configure() {
    // Neither is needed for a right answer: without them damage is noticed later, and reading is slower.
    static_cast<void>(execute("PRAGMA cell_size_check = on"));
    limitPageCache(kPageCacheKiB);
}

void Connection::limitPageCache(std::size_t kib) {
    static_cast<void>(execute(tools::FixedText<64>("PRAGMA cache_size = -%zu", kib).text()));
}

void Connection::cacheSchemaOf(std::size_t tables) {
    if (tables <= cachedTables_) return;
    cachedTables_ = 2 * tables;  // seldom enough that a table more costs nothing
    limitPageCache(std::min(kPageCacheKiB + kSchemaKiBPerTable * cachedTables_, kMostPageCacheKiB));
}

bool Connection::takeAllOf(Connection& source) {
    constexpr int kAllPages = -1;
    sqlite3_backup* copy = sqlite3_backup_init(handle_.get(), "main", source.handle_.get(), "main");
    if (copy != nullptr) {
        static_cast<void>(sqlite3_backup_step(copy, kAllPages));
        if (sqlite3_backup_finish(copy) == SQLITE_OK) return true;
    }
    keepReason(sqlite3_errcode(handle_.get()));
    return false;
}

int Connection::step(sqlite3_stmt* statement) {
    timesStepped_ = 0;
    return sqlite3_step(statement);
}

bool Connection::stillServes(const char* path, const char* key) {
    const bool sameKey = hasKey_ == (key != nullptr) && (key == nullptr || key_ == key);
    FileIdentity now;
    return path != nullptr && path_ == path && sameKey && identify(path, now) && now == identity_ && readsSchema();
}

StatementHandle Connection::prepare(std::string_view sql) {
    sqlite3_stmt* first = nullptr;
    const char* rest = nullptr;
    const int code = sqlite3_prepare_v2(handle_.get(), sql.data(), static_cast<int>(sql.size()), &first, &rest);
    StatementHandle statement(first);
    if (code != SQLITE_OK) {
        noteFailure(code);
        return nullptr;
    }
    if (first == nullptr) return refuse("the text holds no statement");
    // What follows must be blank or comment. Anything else, valid or not, makes the text as a whole invalid: a table
    // name that carries a statement of its own must not run its first half.
    const std::string_view tail = sql.substr(static_cast<std::size_t>(rest - sql.data()));
    if (tail.empty()) return statement;
    sqlite3_stmt* second = nullptr;
    const int tailCode =
        sqlite3_prepare_v2(handle_.get(), tail.data(), static_cast<int>(tail.size()), &second, nullptr);
    const StatementHandle another(second);
    if (tailCode == SQLITE_OK && second == nullptr) return statement;
    return refuse("the text holds more than one statement");
}

StatementHandle Connection::refuse(const char* reason) {
    lastFailure_ = SQLITE_ERROR;
    lastError_ = reason;
    return nullptr;
}

bool Connection::runToEnd(sqlite3_stmt* statement) {
    if (refusesWrites()) return false;
    int code = SQLITE_ROW;
    while (code == SQLITE_ROW)
        code = step(statement);
    // The reset gives the same code again; the failure has been noted from the step.
    if (code != SQLITE_DONE) noteFailure(code);
    sqlite3_reset(statement);
    return code == SQLITE_DONE;
}

bool Connection::lastFailureWasDuplicate() const {
    return lastFailure_ == SQLITE_CONSTRAINT_PRIMARYKEY || lastFailure_ == SQLITE_CONSTRAINT_UNIQUE ||
           lastFailure_ == SQLITE_CONSTRAINT_ROWID;
}

bool Connection::lastFailureWasLock() const {
    const int kind = lastFailure_ & 0xff;
    return kind == SQLITE_BUSY || kind == SQLITE_LOCKED;
}

// Throws nothing: a transaction ends also when there is no memory for the reason of its failure.
void Connection::keepReason(int code) noexcept try {
    const bool last = sqlite3_errcode(handle_.get()) == (code & 0xff);
    lastFailure_ = last ? sqlite3_extended_errcode(handle_.get()) : code;
    lastError_ = last ? sqlite3_errmsg(handle_.get()) : sqlite3_errstr(code);
} catch (const std::bad_alloc&) {
    lastError_.clear();
}

void Connection::noteFailure(int code) {
    keepReason(code);
    // SQLite ends a transaction itself after some failures; statements that followed would then be committed one by
    // one.
    const bool endedByDatabase = sqlite3_get_autocommit(handle_.get()) != 0;
    if (batchDepth_ > 0 && (!isRefusalOfContent(code) || endedByDatabase)) batchLost_ = true;
}

void Connection::beginBatch() {
    if (batchDepth_++ > 0) return;
    isJoined_ = sqlite3_get_autocommit(handle_.get()) == 0;
    // Without the write lock from the start, each single insert would wait for it in vain.
    batchLost_ = !execute(isJoined_ ? "SAVEPOINT chat_transfer" : "BEGIN IMMEDIATE");
}

void Connection::endBatch() {
    if (batchDepth_ == 0 || --batchDepth_ > 0) return;
    if (!batchLost_ && !execute(isJoined_ ? "RELEASE chat_transfer" : "COMMIT")) batchLost_ = true;
    const bool stillOpen = sqlite3_get_autocommit(handle_.get()) == 0;
    if (batchLost_ && stillOpen) undoBatch();
}

void Connection::undoBatch() {
    // The reason of the loss is worth more than that of a failing rollback.
    std::string reason = std::move(lastError_);
    // When these fail, the rollback comes with the end of the host's transaction or with closing.
    if (!isJoined_) {
        static_cast<void>(execute("ROLLBACK"));
    } else if (execute("ROLLBACK TO chat_transfer")) {
        static_cast<void>(execute("RELEASE chat_transfer"));
    }
    lastError_ = std::move(reason);
}

bool Connection::execute(const char* sql) {
    const StatementHandle statement = prepare(sql);
    if (!statement) return false;
    int code = SQLITE_ROW;
    while (code == SQLITE_ROW)
        code = step(statement.get());
    if (code == SQLITE_DONE) return true;
    keepReason(code);
    return false;
}

bool Connection::readsSchema() {
    return execute("select count(*) from sqlite_master");
}

}  // namespace imsdk::detail
