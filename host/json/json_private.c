/* The private build of the JSON library: its installed source, unmodified, compiled under names of this component,
 * which are generated. What this component has its own version of (parsing, writing, copying, the hooks) is called
 * chat_transfer_stock_... there. */
#include <string.h>

#include "host/json_stock_names.h"

/* Every block is longer than the library asks for: behind a number's value stands the integer that its double may not
 * hold, 0 when there is none. So it lives and dies with the value. */
static void* allocateWithRoom(void* (*allocate)(size_t), size_t size) {
    static const long long none = 0;
    char* block = allocate(size + sizeof(none));
    if (block != NULL) memcpy(block + size, &none, sizeof(none));
    return block;
}

/* The library releases null pointers, which a host's function may not expect. */
static void releaseBlock(void (*release)(void*), void* block) {
    if (block != NULL) release(block);
}

#define parson_malloc(size) allocateWithRoom(parson_malloc, size)
#define parson_free(block) releaseBlock(parson_free, block)

#include CHAT_TRANSFER_PARSON_SOURCE

long long chat_transfer_exact_integer(const JSON_Value* number) {
    return *(const long long*)(number + 1);
}

void chat_transfer_set_exact_integer(JSON_Value* number, long long exact) {
    *(long long*)(number + 1) = exact;
}

char* chat_transfer_copy_text(const char* bytes, size_t length) {
    return parson_strndup(bytes, length);
}

/* What json_tree.cpp builds trees with. The library's own functions look every name up in the whole object before they
 * add it, and refuse bytes that its parser takes; here the reader has checked both. */
JSON_Value* chat_transfer_text_value(const char* bytes, size_t length) {
    char* copy = parson_strndup(bytes, length);
    JSON_Value* value = copy != NULL ? json_value_init_string_no_copy(copy, length) : NULL;
    if (value == NULL) parson_free(copy);
    return value;
}

int chat_transfer_add_member(JSON_Value* owner, const char* name, size_t length, JSON_Value* value) {
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

void chat_transfer_remove_comments(char* text) {
    remove_comments(text, "/*", "*/");
    remove_comments(text, "//", "\n");
}
