#include "host/db/sqlite_connection.h"
#include "host/dbUtils.h"

namespace imsdk {

dbCommand::dbCommand(dbUtils* db) : db_(db) {}

dbCommand::dbCommand(dbUtils* db, const char* sql) : db_(db) {
    setCommandText(sql);
}

dbCommand::~dbCommand() = default;

void dbCommand::setCommandText(const char* sql) {
    statement_.reset();
    prepareFailed_ = false;
    bindFailed_ = false;
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
    statement_ = std::make_unique<detail::Statement>(db_->connection_, std::move(handle));
    return true;
}

template <class Bind>
void dbCommand::bindWith(Bind bind) {
    if (!prepare()) return;
    const int code = bind(statement_->get());
    if (code == SQLITE_OK) return;
    bindFailed_ = true;
    statement_->connection().noteFailure(code);
}

void dbCommand::bindParam(int index, const char* value) {
    bindWith([=](sqlite3_stmt* statement) { return sqlite3_bind_text(statement, index, value, -1, SQLITE_STATIC); });
}

void dbCommand::bindParam(int index, int value) {
    bindWith([=](sqlite3_stmt* statement) { return sqlite3_bind_int(statement, index, value); });
}

void dbCommand::bindParam(int index, long long value) {
    bindWith([=](sqlite3_stmt* statement) { return sqlite3_bind_int64(statement, index, value); });
}

}  // namespace imsdk
