#include "transfer/format/json_fields.h"

#include <utility>
#include <vector>

#include "host/base/numeric.h"
#include "host/base/utf8.h"
#include "host/tools.h"
#include "transfer/format/package_format.h"

namespace chattransfer {

bool setField(JSON_Object* object, const char* key, const std::string& text) {
    return json_object_set_string(object, key, text.c_str()) == JSONSuccess ||
           json_object_set_string(object, key, tools::toWellFormedUtf8(text.c_str()).c_str()) == JSONSuccess;
}

bool setField(JSON_Object* object, const char* key, long long number) {
    return json_object_set_number(object, key, static_cast<double>(number)) == JSONSuccess;
}

bool setField(JSON_Object* object, const char* key, int number) {
    return json_object_set_number(object, key, number) == JSONSuccess;
}

bool setField(JSON_Object* object, const char* key, signed char number) {
    return json_object_set_number(object, key, number) == JSONSuccess;
}

void setValue(JSON_Object* object, const char* key, tools::JsonDocument value) {
    if (json_object_set_value(object, key, value.get()) == JSONSuccess) static_cast<void>(value.release());
}

bool appendValue(JSON_Array* array, tools::JsonDocument value) {
    if (json_array_append_value(array, value.get()) != JSONSuccess) return false;
    static_cast<void>(value.release());
    return true;
}

void getField(const JSON_Object* object, const char* key, std::string& text) {
    const char* value = json_object_get_string(object, key);
    if (value != nullptr) text = value;
}

void getField(const JSON_Object* object, const char* key, long long& number) {
    number = json_object_get_int64(object, key);
}

void getField(const JSON_Object* object, const char* key, int& number) {
    number = tools::truncateTo<int>(json_object_get_number(object, key));
}

void getField(const JSON_Object* object, const char* key, signed char& number) {
    number = static_cast<signed char>(tools::truncateTo<int>(json_object_get_number(object, key)));
}

void setList(JSON_Object* object, const char* key, const std::string& joined) {
    tools::JsonDocument list(json_value_init_array());
    JSON_Array* array = json_value_get_array(list.get());
    for (const long long number : tools::string_To_Vec_Int64(joined, kListSeparator)) {
        json_array_append_number(array, static_cast<double>(number));
    }
    setValue(object, key, std::move(list));
}

bool hasVersion(const JSON_Object* object, const std::string& version) {
    const char* stated = json_object_get_string(object, kVersionKey);
    if (stated == nullptr) return false;
    return isVersion(std::string(stated, json_object_get_string_len(object, kVersionKey)), version);
}

}  // namespace chattransfer
