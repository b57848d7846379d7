// The recent contacts: the table "im_reContact", and the objects of "recontact.mg". Columns and keys have the same
// names and the same order; what selects, binds, writes and reads uses this one list. docs/databases.md and
// docs/formats/package.md describe them for readers.
#pragma once

#include "host/dbUtils.h"
#include "host/json.h"
#include "transfer/records.h"

namespace chattransfer {

inline constexpr const char* kRecentContactTable = "im_reContact";

/// The blanks inside are part of the schema text that clients compare.
inline constexpr const char* kCreateRecentContactTable =
    "create table im_reContact(targetID BIGINT PRIMARY KEY,lastMsgid BIGINT,time BIGINT,type TINYINT,"
    "                    top TINYINT,wherefrom VARCHAR(256),msgType TINYINT,activeType INTEGER,lastMsg VARCHAR(8000),"
    "msgProp VARCHAR(1024),name VARCHAR(128),sendUserID BIGINT,securityLevel INTEGER);";

inline constexpr const char* kFindRecentContact = "select * from  %s  where targetID = %lld";

/// "whereFrom" and "wherefrom" are one column: SQL column names ignore case.
inline constexpr const char* kInsertRecentContact =
    "insert into %s(targetID,lastMsgid,time,type,top,whereFrom,msgType,activeType,lastMsg,msgProp,name,securityLevel) "
    "values(?,?,?,?,?,?,?,?,?,?,?,?)";

/// The database rejects this text, and that is relied on: a stored contact is never overwritten, whatever a package
/// says.
inline constexpr const char* kUpdateRecentContact =
    "update %s set lastMsgid = ?,time = ?,type = ?,top = ?,whereFrom = ?,msgType = ?,activeType = ?,lastMsg = ?,"
    "msgProp = ?,name = ? securityLevel =?,where targetID = ? ";

inline constexpr const char* kPinRecentContact = "update %s set top = ? where targetID = ? ";

/// Columns of a stored row that the merge looks at.
inline constexpr int kRecentContactTimeColumn = 2;
inline constexpr int kRecentContactTopColumn = 4;

/// The bit of `top` that pins a conversation.
inline constexpr int kPinnedBit = 4;

/// Calls visit(column, name, field) for each field that the transfer carries, in the order of the keys, of the insert's
/// placeholders and, with their gap, of the columns. Column 11, sendUserID, is neither read nor written.
template <class Record, class Visit>
void forEachRecentContactField(Record& record, Visit&& visit) {
    visit(0, "targetID", record.targetID);
    visit(1, "lastMsgid", record.lastMsgid);
    visit(2, "time", record.time);
    visit(3, "type", record.type);
    visit(4, "top", record.top);
    visit(5, "wherefrom", record.wherefrom);
    visit(6, "msgType", record.msgType);
    visit(7, "activeType", record.activeType);
    visit(8, "lastMsg", record.lastMsg);
    visit(9, "msgProp", record.msgProp);
    visit(10, "name", record.name);
    visit(12, "securityLevel", record.securityLevel);
}

/// Refills `contact` from the current row of a "select *".
void readRecentContactRow(imsdk::dbDataReader& reader, imsdk::st_dbReContactBean& contact);

/// What an object of a recent-contact file says, as it stands there.
[[nodiscard]] imsdk::st_dbReContactBean readRecentContact(const JSON_Object* object);

}  // namespace chattransfer
