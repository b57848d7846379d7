// Writing messages into their conversation's table: finds or creates the table and inserts record by record.
#pragma once

#include <string>

#include "host/dbUtils.h"
#include "transfer/dbTrans.h"
#include "transfer/tables/table_index.h"

namespace chattransfer {

/// The conversation's table in `db`, created when it is missing and then added to `index` and to the transfer object's
/// tableNames. Empty when it cannot be created.
std::string openMessageTable(dbTrans& transfer, imsdk::dbUtils& db, TableIndex& index, long long targetID);

/// The insert statement for a table; empty when it would pass 511 bytes.
std::string insertMessageStatement(const std::string& table);

/// Inserts one record with a command of insertMessageStatement(), and counts the outcome. Non-zero when it was stored.
/// A message whose id the table has already is left out: the stored copy wins.
int insertMessage(TransferReport& report, imsdk::dbUtils& db, imsdk::dbCommand& command,
                  const imsdk::st_dbMessageBean& record);

}  // namespace chattransfer
