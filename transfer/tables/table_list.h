// The list of a database's tables.
#pragma once

#include <string>
#include <vector>

#include "host/dbUtils.h"
#include "transfer/transfer_report.h"

namespace chattransfer {

/// Replaces `names` by the names of all tables of the open database, in its order. When they cannot all be read the
/// list is empty, and the report says so: a list of some tables would pass for the list of all, and the conversations
/// behind it for none.
void listTables(imsdk::dbUtils& db, std::vector<std::string>& names, TransferReport& report);

/// True when the list has the name.
[[nodiscard]] bool hasTable(const std::vector<std::string>& names, const std::string& name);

/// The conversation's message table when the list has it, or an empty text.
[[nodiscard]] std::string findMessageTable(const std::vector<std::string>& names, long long targetID);

}  // namespace chattransfer
