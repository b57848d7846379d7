// The JSON of message files as trees of the JSON library, for hosts. An export writes the same texts without trees
// (package_text.h).
#pragma once

#include <string>

#include "host/json/json_owner.h"
#include "transfer/records.h"

namespace chattransfer {

/// A file without days.
[[nodiscard]] tools::JsonDocument makeFileHead(const std::string& version);

/// {"msgs": []}
[[nodiscard]] tools::JsonDocument makeMessageList();

[[nodiscard]] tools::JsonDocument makeMessage(const imsdk::st_dbMessageBean& record);

}  // namespace chattransfer
