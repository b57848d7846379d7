#include "host/dbUtils.h"

#include <utility>

#include "host/db/sqlite_connection.h"

namespace imsdk {

dbUtils::dbUtils() = default;
dbUtils::~dbUtils() = default;

int dbUtils::open(const char* path, const char* key) {
    if (connection_ && connection_->stillServes(path, key)) return 1;
    connection_.reset();
    detail::OpenError error;
    connection_ = detail::Connection::open(path, key, error);
    lastOpenError_ = std::move(error.words);
    openFailure_ = error.failure;
    return connection_ ? 1 : 0;
}

dbDataReader dbUtils::excuteQuery(const char* sql) {
    if (!connection_ || sql == nullptr) return {};
    detail::StatementHandle handle = connection_->prepare(sql);
    if (!handle || (connection_->refusesWrites() && sqlite3_stmt_readonly(handle.get()) == 0)) return {};
    return dbDataReader(std::make_unique<detail::Statement>(connection_, std::move(handle)));
}

int dbUtils::excuteNonQuery(const char* sql) {
    if (!connection_ || sql == nullptr || connection_->refusesWrites()) return 0;
    const detail::StatementHandle statement = connection_->prepare(sql);
    return statement && connection_->runToEnd(statement.get()) ? 1 : 0;
}

int dbUtils::excuteNonQuery(dbCommand* command) {
    if (command == nullptr || !command->prepare() || !command->isBound()) return 0;
    detail::Statement& statement = *command->statement_;
    return statement.connection().runToEnd(statement.get()) ? 1 : 0;
}

int dbUtils::isExistTable(const char* sql) {
    return excuteQuery(sql).read();
}

void dbUtils::beginTransaction() {
    if (connection_) connection_->beginBatch();
}

void dbUtils::endTransaction() {
    if (connection_) connection_->endBatch();
}

void dbUtils::abandonTransaction() {
    if (connection_) connection_->abandonBatch();
}

bool dbUtils::transactionFailed() const {
    return !connection_ || connection_->batchLost();
}

void dbUtils::cacheSchemaOf(std::size_t tables) {
    if (connection_) connection_->cacheSchemaOf(tables);
}

int dbUtils::copyTo(dbUtils& target) const {
    return connection_ && target.connection_ && target.connection_->takeAllOf(*connection_) ? 1 : 0;
}

bool dbUtils::isOpen() const {
    return connection_ != nullptr;
}

int dbUtils::changedRows() const {
    return connection_ ? connection_->changedRows() : 0;
}

std::string dbUtils::lastError() const {
    return connection_ ? connection_->lastError() : lastOpenError_;
}

bool dbUtils::lastFailureWasDuplicate() const {
    return connection_ && connection_->lastFailureWasDuplicate();
}

bool dbUtils::lastFailureWasLock() const {
    return connection_ && connection_->lastFailureWasLock();
}

}  // namespace imsdk
