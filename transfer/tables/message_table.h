// The message table of a conversation: its name, its schema and its columns. What selects, binds and inserts messages
// uses this one list. docs/databases.md describes it for readers.
#pragma once

#include <string>

#include "host/base/fixed_text.h"
#include "host/dbUtils.h"
#include "transfer/records.h"

namespace chattransfer {

/// How the name of every message table begins; the conversation's id in decimal follows.
inline constexpr const char* kMessageTablePrefix = "im_msg_";

/// Room for the prefix and any id.
using MessageTableName = tools::FixedText<60>;

/// "im_msg_<targetID>".
[[nodiscard]] inline MessageTableName messageTableName(long long targetID) {
    return MessageTableName("%s%lld", kMessageTablePrefix, targetID);
}

/// The blanks inside are part of the schema text that clients compare.
inline constexpr const char* kCreateMessageTable =
    "create table %s(toUserID BIGINT, fromeUserID BIGINT,body VARCHAR(8000), msgType INTEGER, msgID BIGINT PRIMARY "
    "KEY, "
    "lastMsgID BIGINT,                     time_ BIGINT, burnAfterReading INTEGER, status INTEGER,targetID BIGINT, "
    "msgProperties VARCHAR(1024), year_ INTEGER, mon INTEGER, day_ INTEGER,                     limitRange "
    "VARCHAR(256), "
    "formate VARCHAR(256), activeType INTEGER, relatedMsgID BIGINT, localID BIGINT, relatedUsers VARCHAR(4096), "
    "sourceID VARCHAR(32), unReadState VARCHAR(128),securityLevel INTEGER);";

/// What a column of the message table takes part in.
enum class ColumnUse {
    always,    ///< read by an export and written by an import
    readOnly,  ///< read by an export, left NULL by an import
};

/// Calls visit(index, name, use, field) for each column that the transfer touches, in column order; `index` counts from
/// 0 as in "select *". Column 21, unReadState, is neither read nor written: whether a message was read on the old
/// device says nothing about the new one.
template <class Record, class Visit>
void forEachMessageColumn(Record& record, Visit&& visit) {
    visit(0, "toUserID", ColumnUse::always, record.toUserID);
    visit(1, "fromeUserID", ColumnUse::always, record.fromeUserID);
    visit(2, "body", ColumnUse::always, record.body);
    visit(3, "msgType", ColumnUse::always, record.msgType);
    visit(4, "msgID", ColumnUse::always, record.msgID);
    visit(5, "lastMsgID", ColumnUse::always, record.lastMsgID);
    visit(6, "time_", ColumnUse::always, record.time_);
    visit(7, "burnAfterReading", ColumnUse::always, record.burnAfterReading);
    visit(8, "status", ColumnUse::always, record.status);
    visit(9, "targetID", ColumnUse::always, record.targetID);
    visit(10, "msgProperties", ColumnUse::always, record.msgProperties);
    visit(11, "year_", ColumnUse::always, record.year_);
    visit(12, "mon", ColumnUse::always, record.mon);
    visit(13, "day_", ColumnUse::always, record.day_);
    visit(14, "limitRange", ColumnUse::always, record.limitRange);
    visit(15, "formate", ColumnUse::always, record.formate);
    visit(16, "activeType", ColumnUse::always, record.activeType);
    visit(17, "relatedMsgID", ColumnUse::always, record.relatedMsgID);
    visit(18, "localID", ColumnUse::always, record.localID);
    visit(19, "relatedUsers", ColumnUse::always, record.relatedUsers);
    visit(20, "sourceID", ColumnUse::always, record.sourceID);
    visit(22, "securityLevel", ColumnUse::readOnly, record.securityLevel);
}

/// Refills `record` from the current row of a "select *"; what no column fills stays as it was.
void readMessageRow(imsdk::dbDataReader& reader, imsdk::st_dbMessageBean& record);

/// The insert with its "?" placeholders, "%s" standing for the table.
[[nodiscard]] const std::string& insertMessageFormat();

/// Binds the placeholders of insertMessageFormat() to the fields of `record`, which must outlive the execution.
void bindMessage(imsdk::dbCommand& command, const imsdk::st_dbMessageBean& record);

/// True when `name` begins like that of a message table.
[[nodiscard]] bool isMessageTable(const std::string& name);

/// True when `name` is a plain SQL identifier (letters, digits, "_", "$", bytes of UTF-8). Table names are put into
/// statements unquoted: any other name would not name the table there, but change what the statement does.
[[nodiscard]] bool isPlainTableName(const std::string& name);

/// The one number that a count query yields; 0 for a failed query and for a text that did not fit its buffer.
template <std::size_t Size>
[[nodiscard]] int countOf(imsdk::dbUtils& db, const tools::FixedText<Size>& query) {
    imsdk::dbDataReader reader = db.excuteQuery(query.text());
    int count = 0;
    if (reader.read() != 0) reader.getColumnValue(0, count);
    return count;
}

/// How many rows the table has; 0 for a table that is not there and for a name that is no plain one or too long for the
/// statement.
[[nodiscard]] int countTableRows(imsdk::dbUtils& db, const std::string& table);

}  // namespace chattransfer
