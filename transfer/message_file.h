// Reading the JSON of a message file: packages and trees share its shape.
#pragma once

#include "host/json.h"
#include "transfer/package_format.h"
#include "transfer/records.h"

namespace transfer {

/// The "date" of a day object, numbers truncated toward zero; 0 for what is missing.
CalendarDay readDate(const JSON_Object* day);

/// A record of defaults (status 4, extraValue2 -1, all else 0 or empty) with the scalar keys of the message object and
/// the day it stands under.
imsdk::st_dbMessageBean readMessage(const JSON_Object* message, const CalendarDay& day);

/// Calls visit(object) for each object in the array; elements of other types are no records and are passed over.
template <class Visit>
void forEachObject(const JSON_Array* array, Visit&& visit) {
    const size_t count = json_array_get_count(array);
    for (size_t i = 0; i < count; ++i) {
        if (const JSON_Object* object = json_array_get_object(array, i)) visit(object);
    }
}

}  // namespace transfer
