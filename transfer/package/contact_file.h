// The file of recent contacts: a package has one, a tree may have many.
#pragma once

#include <string>
#include <vector>

#include "transfer/error_codes.h"
#include "transfer/records.h"
#include "transfer/transfer_report.h"

namespace chattransfer {

/// Writes the contacts as the file `path`. What fails stands in the report.
void writeContactFile(const std::string& path, const std::string& version,
                      const std::vector<imsdk::st_dbReContactBean>& contacts, TransferReport& report);

/// Replaces `contacts` by those of the file `path`. kSuccess, kMissing (the contacts stay then), kNotJson or
/// kWrongVersion.
[[nodiscard]] ErrorCode readContactFile(const std::string& path, const std::string& version,
                                        std::vector<imsdk::st_dbReContactBean>& contacts, TransferReport& report);

}  // namespace chattransfer
