#include "app/inspect/history_summary.h"

#include <algorithm>

namespace app {

void HistorySummary::add(long long conversation, const imsdk::st_dbMessageBean& message) {
    const CivilDay day{message.year_, message.mon, message.day_};
    const auto [found, isNew] = conversations.try_emplace(conversation);
    ConversationSummary& counts = found->second;
    if (isNew) counts.first = counts.last = day;
    counts.first = std::min(counts.first, day);
    counts.last = std::max(counts.last, day);
    ++counts.messages;
    ++counts.byType[message.msgType];
    ++messages;
    ++byType[message.msgType];
}

void HistorySummary::addNames(const std::vector<imsdk::st_dbReContactBean>& contacts) {
    for (const imsdk::st_dbReContactBean& contact : contacts) {
        const auto conversation = conversations.find(contact.targetID);
        if (conversation != conversations.end()) conversation->second.name = contact.name;
    }
}

std::optional<std::pair<CivilDay, CivilDay>> HistorySummary::days() const {
    std::optional<std::pair<CivilDay, CivilDay>> range;
    for (const auto& [id, conversation] : conversations) {
        if (!range) range.emplace(conversation.first, conversation.last);
        range->first = std::min(range->first, conversation.first);
        range->second = std::max(range->second, conversation.last);
    }
    return range;
}

}  // namespace app
