// Cutting an overfull message table back to its newest messages.
#pragma once

#include <string>
#include <vector>

#include "host/dbUtils.h"
#include "transfer/transfer_report.h"

namespace chattransfer {

/// A table with more rows than the first is cut back to its newest rows, as many as the second says.
inline constexpr int kTrimAbove = 5000;
inline constexpr int kKeptRows = 3000;

/// True for a table that is cut.
[[nodiscard]] bool isOverfull(int messageCount);

/// Removes the oldest rows of `table` so that kKeptRows of its `messageCount` stay. Rows that share the time of a
/// removed one go with it, which can leave fewer. The result of the delete statement; 0 for a table whose name is no
/// plain one.
[[nodiscard]] int trimMessages(imsdk::dbUtils& db, const std::string& table, int messageCount, TransferReport& report);

/// Trims each overfull message table of `db` among `tables`. Other tables are left alone, whatever their number of
/// rows: what they hold are no messages.
void trimMessageTables(imsdk::dbUtils& db, const std::vector<std::string>& tables, TransferReport& report);

}  // namespace chattransfer
