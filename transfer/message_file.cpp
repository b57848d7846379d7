#include "transfer/message_file.h"

#include "host/numeric.h"
#include "transfer/json_fields.h"

namespace transfer {

CalendarDay readDate(const JSON_Object* day) {
    const JSON_Object* date = json_object_get_object(day, kDateKey);
    const auto number = [date](const char* key) {
        return tools::truncateTo<long long>(json_object_get_number(date, key));
    };
    return {number(kYearKey), number(kMonthKey), number(kDayKey)};
}

imsdk::st_dbMessageBean readMessage(const JSON_Object* message, const CalendarDay& day) {
    // Imported messages are history: they count as delivered and read.
    constexpr int kImportedStatus = 4;
    imsdk::st_dbMessageBean record;
    record.status = kImportedStatus;
    record.extraValue2 = -1;
    forEachMessageKey(record, [message](const char* key, KeyUse use, auto& field) {
        if (use == KeyUse::always) getField(message, key, field);
    });
    record.year_ = static_cast<int>(day.year);
    record.mon = static_cast<int>(day.month);
    record.day_ = static_cast<int>(day.day);
    return record;
}

}  // namespace transfer
