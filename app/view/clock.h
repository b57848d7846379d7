// Times and days in words.
#pragma once

#include <optional>
#include <string>

#include "app/base/calendar.h"

namespace app::view {

struct ClockTime {
    int hour;
    int minute;
};

/// The time of day in the zone of this machine; none for a time that is unknown or beyond the calendar. `time` is in
/// milliseconds since 1970.
[[nodiscard]] std::optional<ClockTime> clockOf(long long time);

/// "14:05".
[[nodiscard]] std::string clockText(ClockTime time);

/// True for a day of the years 1 to 9999 that the calendar has.
[[nodiscard]] bool isCalendarDay(const CivilDay& day);

/// "Sunday, 30 June 2024"; the bare numbers for what is no day of the calendar.
[[nodiscard]] std::string longDayText(const CivilDay& day);

/// "June 2024", or "no month" for what is no day of the calendar.
[[nodiscard]] std::string monthText(const CivilDay& day);

/// "2024-06-30".
[[nodiscard]] std::string shortDayText(const CivilDay& day);

}  // namespace app::view
