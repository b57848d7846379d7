// How much history a package or a tree holds, in numbers.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/base/calendar.h"
#include "transfer/records.h"

namespace app {

struct HistorySummary {
    struct ConversationSummary {
        std::string name;  ///< from the recent contacts; empty when they do not know it
        long long messages = 0;
        std::map<int, long long> byType;
        CivilDay first{};
        CivilDay last{};
    };

    long long messages = 0;
    std::map<int, long long> byType;
    std::map<long long, ConversationSummary> conversations;

    /// Counts a message of the conversation.
    void add(long long conversation, const imsdk::st_dbMessageBean& message);

    /// Takes the names of conversations over.
    void addNames(const std::vector<imsdk::st_dbReContactBean>& contacts);

    /// The first and the last day; none without messages.
    [[nodiscard]] std::optional<std::pair<CivilDay, CivilDay>> days() const;
};

}  // namespace app
