// Whether a record stands in a database already.
#pragma once

#include <string>

#include "host/dbUtils.h"
#include "transfer/records.h"

namespace chattransfer {

/// How many rows of `table` have the id; 0 for a failed query.
[[nodiscard]] int countMessages(imsdk::dbUtils& db, const std::string& table, long long msgID);

/// How many rows of the plugin database equal the note in everything but its content; 0 for a failed query.
[[nodiscard]] int countNotes(imsdk::dbUtils& plugin, const st_noteTrans& note);

/// How many rows of the plugin database equal the room in name and members; 0 for a failed query, and when one of the
/// texts has an apostrophe.
[[nodiscard]] int countRooms(imsdk::dbUtils& plugin, const std::string& roomName, const std::string& roomMember);

/// True when the database has a table `name`; false for a name that has an apostrophe or does not fit the statement.
[[nodiscard]] bool tableExists(imsdk::dbUtils& db, const std::string& name);

}  // namespace chattransfer
