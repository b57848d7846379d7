// Writing notes and rooms into the plugin database.
#pragma once

#include <vector>

#include "host/dbUtils.h"
#include "transfer/error_codes.h"
#include "transfer/records.h"
#include "transfer/transfer_report.h"

namespace chattransfer {

/// Creates the two tables where they are missing. kSuccess or kDatabaseFailed.
[[nodiscard]] ErrorCode makePluginTables(imsdk::dbUtils& plugin, TransferReport& report);

/// Insert the records, without those that the database has. One that the database refuses is left out, with an entry in
/// the report.
void writeNotes(imsdk::dbUtils& plugin, const std::vector<st_noteTrans>& notes, TransferReport& report);
void writeRooms(imsdk::dbUtils& plugin, const std::vector<st_roomTrans>& rooms, TransferReport& report);

}  // namespace chattransfer
