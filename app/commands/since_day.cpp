#include "app/commands/since_day.h"

#include <limits>

namespace app {
namespace {

// The number that the `count` digits of `text` from `first` make; -1 when they are no digits.
int numberAt(const std::string& text, std::size_t first, std::size_t count) {
    int number = 0;
    for (std::size_t i = first; i < first + count; ++i) {
        if (text[i] < '0' || text[i] > '9') return -1;
        number = number * 10 + (text[i] - '0');
    }
    return number;
}

CivilDay parsedDay(const std::string& text) {
    if (text.size() != 10 || text[4] != '-' || text[7] != '-') return {-1, -1, -1};
    return {numberAt(text, 0, 4), numberAt(text, 5, 2), numberAt(text, 8, 2)};
}

}  // namespace

CivilDay SinceDay::day() const {
    constexpr int kBeforeAll = std::numeric_limits<int>::min();
    return text.empty() ? CivilDay{kBeforeAll, kBeforeAll, kBeforeAll} : parsedDay(text);
}

std::string faultOfDay(const std::string& text) {
    const CivilDay day = parsedDay(text);
    const bool exists = day.year >= 0 && day.month >= 1 && day.month <= 12 && day.day >= 1 &&
                        day.day <= daysOfMonth(day.year, day.month);
    return exists ? "" : "is no day of the calendar written as YYYY-MM-DD, such as 2024-03-07";
}

}  // namespace app
