// Inside of the JSON library's private build (json_private.c).
#pragma once

#include "host/json.h"

extern "C" {

// The library's own versions of what this component does itself: ours are built on some, and held against others by the
// tests.
JSON_Value* chat_transfer_stock_parse_string(const char* string);
JSON_Value* chat_transfer_stock_parse_string_with_comments(const char* string);
char* chat_transfer_stock_serialize_to_string(const JSON_Value* value);
char* chat_transfer_stock_serialize_to_string_pretty(const JSON_Value* value);
JSON_Value* chat_transfer_stock_value_deep_copy(const JSON_Value* value);
void chat_transfer_stock_set_allocation_functions(JSON_Malloc_Function allocate, JSON_Free_Function release);

/// The integer that the literal of `number`, a number, spelled; 0 when there is none beside the double.
long long chat_transfer_exact_integer(const JSON_Value* number);
void chat_transfer_set_exact_integer(JSON_Value* number, long long exact);

/// The bytes with a NUL behind them, for json_free_serialized_string(); null without memory.
char* chat_transfer_copy_text(const char* bytes, size_t length);

/// A string value of any bytes; null without memory.
JSON_Value* chat_transfer_text_value(const char* bytes, size_t length);

/// Adds a member whose name `owner`, an object, does not have yet. 0 without memory: `value` is then still the
/// caller's.
int chat_transfer_add_member(JSON_Value* owner, const char* name, size_t length, JSON_Value* value);

/// Makes blanks of the comments, as the library's parser does.
void chat_transfer_remove_comments(char* text);
}
