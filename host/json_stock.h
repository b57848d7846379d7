// Inside of the JSON library's private build: the stock functions that ours are built on.
#pragma once

#include "host/json.h"

extern "C" {
JSON_Value* chat_transfer_stock_value_deep_copy(const JSON_Value* value);
JSON_Value* chat_transfer_stock_parse_string(const char* string);
JSON_Value* chat_transfer_stock_parse_string_with_comments(const char* string);
}
