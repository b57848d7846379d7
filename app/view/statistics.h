// How many messages there are, counted in several ways.
#pragma once

#include <array>
#include <map>

#include "app/view/history.h"

namespace app::view {

class Statistics {
public:
    void add(const History& history, const Conversation& conversation);

    long long messages = 0;
    long long own = 0;
    std::map<CivilDay, long long> byDay;
    std::map<long long, long long> byConversation;
    std::map<int, long long> byType;
    std::array<long long, 24> byHour{};
    long long withoutTime = 0;  ///< messages that stand in no hour

private:
    void addMessage(const History& history, const Message& message);
};

}  // namespace app::view
