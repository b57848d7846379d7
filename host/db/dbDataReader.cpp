#include "host/db/sqlite_connection.h"
#include "host/dbUtils.h"

namespace imsdk {

dbDataReader::dbDataReader() = default;
dbDataReader::dbDataReader(std::unique_ptr<detail::Statement> statement) : statement_(std::move(statement)) {}
dbDataReader::~dbDataReader() = default;
dbDataReader::dbDataReader(dbDataReader&& other) noexcept = default;
dbDataReader& dbDataReader::operator=(dbDataReader&& other) noexcept = default;

int dbDataReader::read() {
    // A step after the end would start the query again.
    if (!statement_ || statement_->failed || statement_->atEnd) return 0;
    const int code = statement_->connection().step(statement_->get());
    statement_->hasRow = code == SQLITE_ROW;
    if (statement_->hasRow) return 1;
    statement_->atEnd = true;
    statement_->failed = code != SQLITE_DONE;
    if (statement_->failed) statement_->connection().noteFailure(code);
    // Ends the read transaction now instead of at the destruction: a writer may be waiting.
    sqlite3_reset(statement_->get());
    return 0;
}

bool dbDataReader::failed() const {
    return !statement_ || statement_->failed;
}

void dbDataReader::getColumnValue(int column, std::string& text) {
    text.clear();
    if (!statement_ || !statement_->hasRow) return;
    const unsigned char* bytes = sqlite3_column_text(statement_->get(), column);
    if (bytes == nullptr) return;
    const int size = sqlite3_column_bytes(statement_->get(), column);
    text.assign(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size));
}

std::string dbDataReader::getColumnValue(int column) {
    std::string text;
    getColumnValue(column, text);
    return text;
}

void dbDataReader::getColumnValue(int column, long long& value) {
    value = statement_ && statement_->hasRow ? sqlite3_column_int64(statement_->get(), column) : 0;
}

void dbDataReader::getColumnValue(int column, int& value) {
    long long wide = 0;
    getColumnValue(column, wide);
    value = static_cast<int>(wide);
}

void dbDataReader::getColumnValue(int column, signed char& value) {
    long long wide = 0;
    getColumnValue(column, wide);
    value = static_cast<signed char>(wide);
}

}  // namespace imsdk
