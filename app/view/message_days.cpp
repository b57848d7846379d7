#include "app/view/message_days.h"

#include "app/view/clock.h"

namespace app::view {

std::vector<DayOfConversation> daysOf(const std::vector<Message>& messages, const std::vector<PageRange>& pages) {
    std::vector<DayOfConversation> days;
    for (std::size_t page = 0; page < pages.size(); ++page) {
        for (std::size_t i = pages[page].first; i < pages[page].end; ++i) {
            if (days.empty() || !(days.back().day == messages[i].day)) days.push_back({messages[i].day, page + 1, 0});
            ++days.back().messages;
        }
    }
    return days;
}

std::string dayAnchor(const CivilDay& day) {
    return "d" + shortDayText(day);
}

}  // namespace app::view
