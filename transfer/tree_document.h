// Opening the decrypted files of a tree.
#pragma once

#include <string>

#include "host/json_owner.h"
#include "transfer/transfer_report.h"

namespace transfer {

/// The parsed file. Null when it is gone, no regular file or not JSON; the report then says which.
tools::JsonDocument readTreeFile(const std::string& path, TransferReport& report);

/// hasVersion(), with an entry in the report when it is false.
bool hasTreeVersion(const JSON_Value* document, const std::string& version, const std::string& path,
                    TransferReport& report);

}  // namespace transfer
