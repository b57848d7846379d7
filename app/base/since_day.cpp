#include "app/base/since_day.h"

#include <limits>

#include "app/base/calendar.h"

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

struct Date {
    int year;
    int month;
    int day;
};

Date parsedDate(const std::string& text) {
    if (text.size() != 10 || text[4] != '-' || text[7] != '-') return {-1, -1, -1};
    return {numberAt(text, 0, 4), numberAt(text, 5, 2), numberAt(text, 8, 2)};
}

int orBeforeAll(const std::string& text, int Date::*part) {
    return text.empty() ? std::numeric_limits<int>::min() : parsedDate(text).*part;
}

}  // namespace

int SinceDay::year() const {
    return orBeforeAll(text, &Date::year);
}
int SinceDay::month() const {
    return orBeforeAll(text, &Date::month);
}
int SinceDay::day() const {
    return orBeforeAll(text, &Date::day);
}

std::string faultOfDay(const std::string& text) {
    const Date date = parsedDate(text);
    const bool exists = date.year >= 0 && date.month >= 1 && date.month <= 12 && date.day >= 1 &&
                        date.day <= daysOfMonth(date.year, date.month);
    return exists ? "" : "is no day of the calendar written as YYYY-MM-DD, such as 2024-03-07";
}

}  // namespace app
