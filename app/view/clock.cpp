#include "app/view/clock.h"

#include <array>
#include <ctime>

#include "host/base/fixed_text.h"

namespace app::view {
namespace {

constexpr std::array<const char*, 12> kMonths = {"January", "February", "March",     "April",   "May",      "June",
                                                 "July",    "August",   "September", "October", "November", "December"};

const char* monthName(int month) {
    return kMonths.at(static_cast<std::size_t>(month - 1));
}

// By counting the days since a Monday, the first of January of the year 1.
const char* weekdayName(const CivilDay& day) {
    constexpr std::array<const char*, 7> kNames = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                                                   "Friday", "Saturday", "Sunday"};
    const int years = day.year - 1;
    int days = years * 365 + years / 4 - years / 100 + years / 400 + day.day - 1;
    for (int month = 1; month < day.month; ++month)
        days += daysOfMonth(day.year, month);
    return kNames.at(static_cast<std::size_t>(days % 7));
}

}  // namespace

std::optional<ClockTime> clockOf(long long time) {
    constexpr long long kMilliseconds = 1000;
    if (time <= 0) return std::nullopt;
    const auto seconds = static_cast<std::time_t>(time / kMilliseconds);
    std::tm parts{};
    // Some systems count seconds in 32 bits.
    const bool known = seconds == time / kMilliseconds && localtime_r(&seconds, &parts) != nullptr;
    if (!known) return std::nullopt;
    return ClockTime{parts.tm_hour, parts.tm_min};
}

std::string clockText(ClockTime time) {
    return tools::FixedText<32>("%02d:%02d", time.hour, time.minute).text();
}

bool isCalendarDay(const CivilDay& day) {
    return day.year >= 1 && day.year <= 9999 && day.month >= 1 && day.month <= 12 && day.day >= 1 &&
           day.day <= daysOfMonth(day.year, day.month);
}

std::string longDayText(const CivilDay& day) {
    if (!isCalendarDay(day)) return "No day of the calendar (" + shortDayText(day) + ")";
    return std::string(weekdayName(day)) + ", " + std::to_string(day.day) + " " + monthText(day);
}

std::string monthText(const CivilDay& day) {
    if (!isCalendarDay(day)) return "No month of the calendar";
    return std::string(monthName(day.month)) + " " + std::to_string(day.year);
}

std::string shortDayText(const CivilDay& day) {
    return dayText(day);
}

}  // namespace app::view
