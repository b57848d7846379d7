// Merging recent contacts into the table of an account.
#pragma once

#include <string>
#include <vector>

#include "host/dbUtils.h"
#include "transfer/error_codes.h"
#include "transfer/records.h"
#include "transfer/transfer_report.h"

namespace chattransfer {

/// Appends the rows of the table to `contacts`. Rows that cannot be read are left out, which the report says.
void readRecentContacts(imsdk::dbUtils& db, std::vector<imsdk::st_dbReContactBean>& contacts, TransferReport& report);

/// Creates the table when `tableNames` lacks it, and adds it there. kSuccess or kDatabaseFailed.
[[nodiscard]] ErrorCode makeRecentContactTable(imsdk::dbUtils& db, std::vector<std::string>& tableNames,
                                               TransferReport& report);

/// Inserts the contact when it is new; else keeps the stored row but for the pin, which `contact` gets, too. The result
/// of the statement that it ran, or 1 when none was needed.
[[nodiscard]] int mergeRecentContact(imsdk::dbUtils& db, imsdk::st_dbReContactBean& contact, TransferReport& report);

}  // namespace chattransfer
