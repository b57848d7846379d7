// Cutting an overfull message table back to its newest messages.
#pragma once

#include <string>
#include <vector>

#include "host/dbUtils.h"
#include "transfer/transfer_report.h"

namespace chattransfer {

/// True for a table that is cut: above 5000 messages.
[[nodiscard]] bool isOverfull(int messageCount);

/// Removes the oldest rows of `table` so that 3000 of its `messageCount` stay. Rows that share the time of a removed
/// one go with it, which can leave fewer. The result of the delete statement; 0 for a table whose name is no plain one.
[[nodiscard]] int trimMessages(imsdk::dbUtils& db, const std::string& table, int messageCount, TransferReport& report);

/// Trims each overfull message table of `db` among `tables`. Other tables are left alone, whatever their number of
/// rows: what they hold are no messages.
void trimMessageTables(imsdk::dbUtils& db, const std::vector<std::string>& tables, TransferReport& report);

}  // namespace chattransfer
