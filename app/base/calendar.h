// Days of the calendar, counted from 1970-01-01 (UTC).
#pragma once

#include <string>

namespace app {

struct CivilDay {
    int year;
    int month;
    int day;
};

/// In the order of the calendar.
bool operator<(const CivilDay& a, const CivilDay& b);
bool operator==(const CivilDay& a, const CivilDay& b);

/// The calendar day with the number `days`.
[[nodiscard]] CivilDay civilDay(long long days);

/// The day as "2024-06-30".
[[nodiscard]] std::string dayText(const CivilDay& day);

/// 28 to 31.
[[nodiscard]] int daysOfMonth(int year, int month);

}  // namespace app
