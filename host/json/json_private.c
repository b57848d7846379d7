/* The private build of the JSON library: its installed source, unmodified, compiled under names of this component.
 *
 * json_names.h maps every public function. The functions below get a further name, because this component has its own
 * version of them: parsing (json_parse.cpp), writing (json_writer.cpp), copying (json_int64.cpp) and the hooks. */
#include "host/json/json_numbers.h"
#include "host/json_names.h"

#include <errno.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#undef json_parse_string
#undef json_parse_string_with_comments
#undef json_parse_file
#undef json_parse_file_with_comments
#undef json_serialization_size
#undef json_serialization_size_pretty
#undef json_serialize_to_buffer
#undef json_serialize_to_buffer_pretty
#undef json_serialize_to_file
#undef json_serialize_to_file_pretty
#undef json_serialize_to_string
#undef json_serialize_to_string_pretty
#undef json_free_serialized_string
#undef json_set_allocation_functions
#undef json_set_escape_slashes
#undef json_value_deep_copy
#define json_parse_string chat_transfer_stock_parse_string
#define json_parse_string_with_comments chat_transfer_stock_parse_string_with_comments
#define json_parse_file chat_transfer_stock_parse_file
#define json_parse_file_with_comments chat_transfer_stock_parse_file_with_comments
#define json_serialization_size chat_transfer_stock_serialization_size
#define json_serialization_size_pretty chat_transfer_stock_serialization_size_pretty
#define json_serialize_to_buffer chat_transfer_stock_serialize_to_buffer
#define json_serialize_to_buffer_pretty chat_transfer_stock_serialize_to_buffer_pretty
#define json_serialize_to_file chat_transfer_stock_serialize_to_file
#define json_serialize_to_file_pretty chat_transfer_stock_serialize_to_file_pretty
#define json_serialize_to_string chat_transfer_stock_serialize_to_string
#define json_serialize_to_string_pretty chat_transfer_stock_serialize_to_string_pretty
#define json_free_serialized_string chat_transfer_stock_free_serialized_string
#define json_set_allocation_functions chat_transfer_stock_set_allocation_functions
#define json_set_escape_slashes chat_transfer_stock_set_escape_slashes
#define json_value_deep_copy chat_transfer_stock_value_deep_copy

#define strtod chatTransferJsonToDouble

#include CHAT_TRANSFER_PARSON_SOURCE

/* What json_tree.cpp builds trees with. The library's own functions look every name up in the whole object before they
 * add it, and refuse bytes that its parser takes; here the reader has checked both. */
JSON_Value* chat_transfer_stock_text(const char* bytes, size_t length) {
    char* copy = parson_strndup(bytes, length);
    JSON_Value* value = copy != NULL ? json_value_init_string_no_copy(copy, length) : NULL;
    if (value == NULL) parson_free(copy);
    return value;
}

int chat_transfer_stock_add_member(JSON_Value* owner, const char* name, size_t length, JSON_Value* value) {
    JSON_Object* object = owner->value.object;
    if (object->count == object->capacity) {
        size_t capacity = MAX(object->capacity * 2, STARTING_CAPACITY);
        if (json_object_resize(object, capacity) == JSONFailure) return 0;
    }
    object->names[object->count] = parson_strndup(name, length);
    if (object->names[object->count] == NULL) return 0;
    object->values[object->count++] = value;
    value->parent = owner;
    return 1;
}

/* Before any other code of the process can call the library: a block without the header of json_numbers.h must not
 * exist. */
__attribute__((constructor(101))) static void installAllocation(void) {
    chat_transfer_stock_set_allocation_functions(chatTransferJsonAllocate, chatTransferJsonRelease);
}
