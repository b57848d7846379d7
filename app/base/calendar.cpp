#include "app/base/calendar.h"

#include <array>
#include <cstddef>
#include <tuple>

#include "host/base/fixed_text.h"

namespace app {
namespace {

bool isLeap(int year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

}  // namespace

bool operator<(const CivilDay& a, const CivilDay& b) {
    return std::tie(a.year, a.month, a.day) < std::tie(b.year, b.month, b.day);
}

bool operator==(const CivilDay& a, const CivilDay& b) {
    return std::tie(a.year, a.month, a.day) == std::tie(b.year, b.month, b.day);
}

int daysOfMonth(int year, int month) {
    constexpr std::array<int, 12> kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return kDays.at(static_cast<std::size_t>(month - 1)) + (month == 2 && isLeap(year) ? 1 : 0);
}

CivilDay civilDay(long long days) {
    CivilDay result{1970, 1, 1};
    for (; days < 0; --result.year)
        days += isLeap(result.year - 1) ? 366 : 365;
    for (int length = 365; days >= (length = isLeap(result.year) ? 366 : 365); ++result.year)
        days -= length;
    for (int length = 31; days >= (length = daysOfMonth(result.year, result.month)); ++result.month)
        days -= length;
    result.day += static_cast<int>(days);
    return result;
}

std::string dayText(const CivilDay& day) {
    return tools::FixedText<40>("%04d-%02d-%02d", day.year, day.month, day.day).text();
}

}  // namespace app
