// JSON documents for the scripts of users: building them, and their texts.
#pragma once

#include <string>

#include "host/json/json_owner.h"

namespace app {

/// Numbers beyond 2^53 are rounded.
void set(JSON_Object* object, const char* key, long long number);
/// Takes the text over as it is shown on a terminal: foreign texts may hold anything.
void set(JSON_Object* object, const char* key, const std::string& text);

/// What is added belongs to the object or array.
[[nodiscard]] JSON_Object* addObject(JSON_Object* object, const char* key);
[[nodiscard]] JSON_Array* addArray(JSON_Object* object, const char* key);
[[nodiscard]] JSON_Object* appendObject(JSON_Array* array);
void appendText(JSON_Array* array, const std::string& text);

[[nodiscard]] std::string textOf(const tools::JsonDocument& document);

/// For people: in lines.
[[nodiscard]] std::string prettyTextOf(const tools::JsonDocument& document);

}  // namespace app
