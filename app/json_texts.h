// JSON documents as texts.
#pragma once

#include <string>

#include "host/json_owner.h"

namespace app {

inline std::string textOf(const tools::JsonDocument& document) {
    char* text = json_serialize_to_string(document.get());
    std::string result = text != nullptr ? text : "";
    json_free_serialized_string(text);
    return result;
}

/// For people: in lines.
inline std::string prettyTextOf(const tools::JsonDocument& document) {
    char* text = json_serialize_to_string_pretty(document.get());
    std::string result = text != nullptr ? text : "";
    json_free_serialized_string(text);
    return result;
}

}  // namespace app
