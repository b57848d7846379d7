// Days of the calendar, counted from 1970-01-01 (UTC).
#pragma once

namespace app {

struct CivilDay {
    int year;
    int month;
    int day;
};

/// The calendar day with the number `days`.
CivilDay civilDay(long long days);

/// 28 to 31.
int daysOfMonth(int year, int month);

}  // namespace app
