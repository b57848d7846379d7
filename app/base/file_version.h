// The version that a file of a package or tree says it has.
#pragma once

#include <string>

#include "host/json.h"
#include "transfer/format/package_format.h"

namespace app {

/// What is shown for a file that says none.
inline constexpr const char* kNoVersion = "(none)";

[[nodiscard]] inline std::string versionOf(const JSON_Object* file) {
    const char* version = json_object_get_string(file, chattransfer::kVersionKey);
    return version != nullptr ? std::string(version, json_object_get_string_len(file, chattransfer::kVersionKey))
                              : kNoVersion;
}

}  // namespace app
