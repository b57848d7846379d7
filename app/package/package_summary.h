// What a package holds, in numbers.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <tuple>

#include "app/attachments/attachment_files.h"
#include "app/package/package_files.h"
#include "host/json.h"

namespace app {

struct PackageSummary {
    using Day = std::tuple<int, int, int>;

    struct Conversation {
        std::string name;  ///< from the recent contacts; empty when they do not know it
        long long messages = 0;
        std::map<int, long long> byType;
        Day first;
        Day last;
    };

    PackageFacts facts;
    long long messages = 0;
    std::map<int, long long> byType;
    std::map<long long, Conversation> conversations;
    AttachmentCounts attachments;
    unsigned long long bytes = 0;  ///< of all files of the user

    /// Counts a message.
    void add(const imsdk::st_dbMessageBean& message);
    /// Takes the names of conversations over.
    void addNames(const std::vector<imsdk::st_dbReContactBean>& contacts);

    /// The first and the last day; none without messages.
    std::optional<std::pair<Day, Day>> days() const;
};

PackageSummary summarise(const PackagePlace& place);

/// "2024-06-30".
std::string dayText(const PackageSummary::Day& day);

/// The summary as one JSON object, without any raw control character.
std::string jsonOf(const PackageSummary& summary);

/// The part of it that is about conversations.
void addConversations(JSON_Object* object, const PackageSummary& summary);
/// Messages by type, as "byType".
void addTypes(JSON_Object* object, const std::map<int, long long>& byType);
/// What a package or tree has of the attachments, as "attachments".
void addAttachments(JSON_Object* object, const AttachmentCounts& counts);

/// "voice" for 3, "image" for 5, "file" for 6, "pictures" for 28, "video" for 89, "type 7" for others.
std::string typeName(int msgType);

}  // namespace app
