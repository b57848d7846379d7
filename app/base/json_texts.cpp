#include "app/base/json_texts.h"

#include "app/base/printable.h"

namespace app {
namespace {

std::string taken(char* text) {
    std::string result = text != nullptr ? text : "";
    json_free_serialized_string(text);
    return result;
}

}  // namespace

void set(JSON_Object* object, const char* key, long long number) {
    json_object_set_number(object, key, static_cast<double>(number));
}

void set(JSON_Object* object, const char* key, const std::string& text) {
    json_object_set_string(object, key, printable(text).c_str());
}

JSON_Object* addObject(JSON_Object* object, const char* key) {
    json_object_set_value(object, key, json_value_init_object());
    return json_object_get_object(object, key);
}

JSON_Array* addArray(JSON_Object* object, const char* key) {
    json_object_set_value(object, key, json_value_init_array());
    return json_object_get_array(object, key);
}

JSON_Object* appendObject(JSON_Array* array) {
    json_array_append_value(array, json_value_init_object());
    return json_array_get_object(array, json_array_get_count(array) - 1);
}

void appendText(JSON_Array* array, const std::string& text) {
    json_array_append_string(array, printable(text).c_str());
}

std::string textOf(const tools::JsonDocument& document) {
    return taken(json_serialize_to_string(document.get()));
}

std::string prettyTextOf(const tools::JsonDocument& document) {
    return taken(json_serialize_to_string_pretty(document.get()));
}

}  // namespace app
