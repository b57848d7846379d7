// The day that --since names.
#pragma once

#include <string>

namespace app {

/// A day of the calendar, or, without a text, one that lies before every message, those of the year 0 included.
struct SinceDay {
    std::string text;  ///< "YYYY-MM-DD" or empty

    int year() const;
    int month() const;
    int day() const;
};

/// Why `text` names no day; empty when it does.
std::string faultOfDay(const std::string& text);

}  // namespace app
