#include "app/view/statistics.h"

#include "app/view/clock.h"
#include "app/view/conversation_text.h"

namespace app::view {

void Statistics::add(const History& history, const Conversation& conversation) {
    byConversation[conversation.id] += static_cast<long long>(conversation.messages.size());
    for (const Message& message : conversation.messages)
        addMessage(history, message);
}

void Statistics::addMessage(const History& history, const Message& message) {
    ++messages;
    if (isOwn(history, message)) ++own;
    ++byDay[message.day];
    ++byType[message.type];
    const auto clock = clockOf(message.time);
    if (clock) {
        ++byHour.at(static_cast<std::size_t>(clock->hour));
    } else {
        ++withoutTime;
    }
}

}  // namespace app::view
