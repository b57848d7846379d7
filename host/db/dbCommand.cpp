#include "host/db/bound_values.h"
#include "host/db/sqlite_connection.h"
#include "host/dbUtils.h"

namespace imsdk {

dbCommand::dbCommand(dbUtils* db) : db_(db), values_(std::make_unique<detail::BoundValues>()) {}

dbCommand::dbCommand(dbUtils* db, const char* sql) : dbCommand(db) {
    setCommandText(sql);
}

dbCommand::~dbCommand() = default;

void dbCommand::setCommandText(const char* sql) {
    statement_.reset();
    prepareFailed_ = false;
    values_->clear();
    sql_ = sql != nullptr ? sql : "";
}

bool dbCommand::prepare() {
    const bool prepared = statement_ && statement_->belongsTo(db_->connection_);
    return prepared || prepareAnew();
}

bool dbCommand::prepareAnew() {
    if (db_ == nullptr || !db_->connection_ || prepareFailed_) return false;
    detail::StatementHandle handle = db_->connection_->prepare(sql_);
    prepareFailed_ = !handle;
    if (prepareFailed_) return false;
    values_->bindAll(handle.get());
    statement_ = std::make_unique<detail::Statement>(db_->connection_, std::move(handle));
    return true;
}

bool dbCommand::isBound() const {
    return values_->areWhole();
}

template <class Bind>
void dbCommand::bindWith(int index, Bind bind) {
    if (!prepare()) {
        values_->lose(index);
        return;
    }
    const int code = bind(statement_->get());
    if (code != SQLITE_OK) statement_->connection().noteFailure(code);
}

void dbCommand::bindParam(int index, const char* value) {
    bindWith(index, [&](sqlite3_stmt* statement) { return values_->bindText(statement, index, value); });
}

void dbCommand::bindParam(int index, int value) {
    bindNumber(index, value);
}

void dbCommand::bindParam(int index, long long value) {
    bindNumber(index, value);
}

void dbCommand::bindNumber(int index, long long value) {
    bindWith(index, [&](sqlite3_stmt* statement) { return values_->bindNumber(statement, index, value); });
}

}  // namespace imsdk
