// Short forms for the tests of the JSON library.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "host/json/json_owner.h"

namespace test {

/// Null when the text is refused.
inline tools::JsonDocument parseJson(const std::string& text) {
    return tools::JsonDocument(json_parse_string(text.c_str()));
}

inline JSON_Object* objectOf(const tools::JsonDocument& document) {
    return json_value_get_object(document.get());
}
inline JSON_Array* arrayOf(const tools::JsonDocument& document) {
    return json_value_get_array(document.get());
}

/// The compact text of a tree; "(none)" when it cannot be written.
inline std::string compactText(const tools::JsonDocument& document) {
    char* text = json_serialize_to_string(document.get());
    std::string result = text != nullptr ? text : "(none)";
    json_free_serialized_string(text);
    return result;
}

inline std::string prettyText(const tools::JsonDocument& document) {
    char* text = json_serialize_to_string_pretty(document.get());
    std::string result = text != nullptr ? text : "(none)";
    json_free_serialized_string(text);
    return result;
}

}  // namespace test
