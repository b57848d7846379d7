// Inside of the JSON library's private build: the stock functions that ours are built on.
#pragma once

#include "host/json.h"

extern "C" {
JSON_Value* chat_transfer_stock_value_deep_copy(const JSON_Value* value);
JSON_Value* chat_transfer_stock_parse_string(const char* string);
JSON_Value* chat_transfer_stock_parse_string_with_comments(const char* string);

/// A string value of any bytes; null without memory.
JSON_Value* chat_transfer_stock_text(const char* bytes, size_t length);

/// Adds a member whose name `owner`, an object, does not have yet. 0 without memory: `value` is then still the
/// caller's.
int chat_transfer_stock_add_member(JSON_Value* owner, const char* name, size_t length, JSON_Value* value);
}
