// How record fields become JSON members and back, by the type of the field.
#pragma once

#include <string>

#include "host/json/json_owner.h"

namespace chattransfer {

/// Numbers are written as doubles, as the format defines: ids above 2^53 lose their low bits. Texts are written up to
/// their first NUL, with ill-formed UTF-8 replaced, so that one broken byte does not cost the whole text. False
/// without memory.
[[nodiscard]] bool setField(JSON_Object* object, const char* key, const std::string& text);
[[nodiscard]] bool setField(JSON_Object* object, const char* key, long long number);
[[nodiscard]] bool setField(JSON_Object* object, const char* key, int number);
[[nodiscard]] bool setField(JSON_Object* object, const char* key, signed char number);

/// Gives the object a member that it owns from then on; a member that cannot be added is freed.
void setValue(JSON_Object* object, const char* key, tools::JsonDocument value);

/// Appends an element that the array owns from then on. False when it could not be added; it is freed then.
[[nodiscard]] bool appendValue(JSON_Array* array, tools::JsonDocument value);

/// Ids are read exactly, other numbers truncated toward zero (out of range: the nearest limit of int; the low 8 bits of
/// that for a signed char). A missing number gives 0; a missing text leaves the field alone.
void getField(const JSON_Object* object, const char* key, std::string& text);
void getField(const JSON_Object* object, const char* key, long long& number);
void getField(const JSON_Object* object, const char* key, int& number);
void getField(const JSON_Object* object, const char* key, signed char& number);

/// Writes the numbers of a text joined by ";" as an array.
void setList(JSON_Object* object, const char* key, const std::string& joined);

/// The version check for an object.
[[nodiscard]] bool hasVersion(const JSON_Object* object, const std::string& version);

/// Calls visit(object) for each object in the array; elements of other types are no records and are passed over.
template <class Visit>
void forEachObject(const JSON_Array* array, Visit&& visit) {
    const size_t count = json_array_get_count(array);
    for (size_t i = 0; i < count; ++i) {
        if (const JSON_Object* object = json_array_get_object(array, i)) visit(object);
    }
}

}  // namespace chattransfer
