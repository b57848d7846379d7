// The two exact accessors, the copy that keeps exact values, and the hook for a host's memory.
#include <cstdlib>

#include "host/base/numeric.h"
#include "host/json/json_stock.h"

namespace {

long long int64Of(const JSON_Value* value) {
    if (json_value_get_type(value) != JSONNumber) return 0;
    const long long exact = chat_transfer_exact_integer(value);
    return exact != 0 ? exact : tools::truncateTo<long long>(json_value_get_number(value));
}

// Walks a tree and its copy side by side; both have the same shape.
void copyExactValues(const JSON_Value* from, JSON_Value* to) {
    if (const JSON_Array* array = json_value_get_array(from)) {
        for (size_t i = 0; i < json_array_get_count(array); ++i) {
            copyExactValues(json_array_get_value(array, i), json_array_get_value(json_value_get_array(to), i));
        }
    } else if (const JSON_Object* object = json_value_get_object(from)) {
        for (size_t i = 0; i < json_object_get_count(object); ++i) {
            copyExactValues(json_object_get_value_at(object, i),
                            json_object_get_value_at(json_value_get_object(to), i));
        }
    } else if (json_value_get_type(from) == JSONNumber) {
        chat_transfer_set_exact_integer(to, chat_transfer_exact_integer(from));
    }
}

}  // namespace

extern "C" {

long long json_object_get_int64(const JSON_Object* object, const char* name) {
    return int64Of(json_object_get_value(object, name));
}

long long json_array_get_int64(const JSON_Array* array, size_t index) {
    return int64Of(json_array_get_value(array, index));
}

JSON_Value* json_value_deep_copy(const JSON_Value* value) {
    JSON_Value* copy = chat_transfer_stock_value_deep_copy(value);
    if (copy != nullptr) copyExactValues(value, copy);
    return copy;
}

void json_set_allocation_functions(JSON_Malloc_Function malloc_fun, JSON_Free_Function free_fun) {
    chat_transfer_stock_set_allocation_functions(malloc_fun != nullptr ? malloc_fun : std::malloc,
                                                 free_fun != nullptr ? free_fun : std::free);
}
}
