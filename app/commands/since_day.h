// The day that --since names.
#pragma once

#include <string>

#include "app/base/calendar.h"

namespace app {

struct SinceDay {
    std::string text;  ///< "YYYY-MM-DD" or empty

    /// Without a text, a day that lies before every message, those of the year 0 included.
    [[nodiscard]] CivilDay day() const;
};

/// Why `text` names no day; empty when it does.
[[nodiscard]] std::string faultOfDay(const std::string& text);

}  // namespace app
