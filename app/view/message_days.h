// The days of a conversation, and on which page each begins.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "app/view/history.h"
#include "app/view/pager.h"

namespace app::view {

struct DayOfConversation {
    CivilDay day;
    std::size_t page;      ///< the page, counted from 1, that holds the day's first message
    std::size_t messages;  ///< of that day on all pages
};

/// The days in order. `messages` are sorted by day, `pages` are theirs.
[[nodiscard]] std::vector<DayOfConversation> daysOf(const std::vector<Message>& messages,
                                                    const std::vector<PageRange>& pages);

/// The name of the day's heading on its page, such as "d2024-06-30".
[[nodiscard]] std::string dayAnchor(const CivilDay& day);

}  // namespace app::view
