// Reading the decrypted files of a tree.
#pragma once

#include <string>

#include "host/json/json_owner.h"
#include "transfer/transfer_report.h"

namespace chattransfer {

/// Reads the text of a file. False when it is gone, no regular file or cannot be read; the report then says which.
[[nodiscard]] bool readTreeText(const std::string& path, std::string& text, TransferReport& report);

/// The parsed file. Null, with an entry in the report, when it cannot be read or is not JSON.
[[nodiscard]] tools::JsonDocument readTreeFile(const std::string& path, TransferReport& report);

}  // namespace chattransfer
