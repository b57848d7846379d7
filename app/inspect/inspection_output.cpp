#include "app/inspect/inspection_output.h"

#include <ostream>

#include "app/attachments/message_types.h"
#include "app/base/json_texts.h"
#include "app/base/printable.h"
#include "app/base/text_table.h"
#include "app/base/units.h"

namespace app {
namespace {

constexpr std::size_t kMostOfAName = 40;

std::string typesText(const std::map<int, long long>& byType) {
    std::string text;
    for (const auto& [type, messages] : byType)
        text += (text.empty() ? "" : ", ") + grouped(messages) + " " + typeName(type);
    return text;
}

// With the number of files when there are several versions.
std::string versionsText(const FileVersions& versions) {
    std::string text;
    for (const auto& [version, files] : versions) {
        text += (text.empty() ? "" : ", ") + shortened(version, kMostOfAName);
        if (versions.size() > 1) text += " (" + counted(files, "file", "files") + ")";
    }
    return text;
}

void addTypes(JSON_Object* object, const std::map<int, long long>& byType) {
    JSON_Object* types = addObject(object, "byType");
    for (const auto& [type, messages] : byType)
        set(types, std::to_string(type).c_str(), messages);
}

}  // namespace

void addTotals(Summary& table, const FileVersions& versions, const HistorySummary& history) {
    table.add("version", "Version", versionsText(versions));
    if (const auto days = history.days())
        table.add("dayRange", "Days", dayText(days->first) + " to " + dayText(days->second));
    table.add("messages.read", "Messages", history.messages);
    table.add("conversations.all", "Conversations", static_cast<long long>(history.conversations.size()));
}

void addTotals(Summary& table, const AttachmentCounts& counts) {
    table.add("attachments.referenced", "Attachments named", counts.named);
    table.add("attachments.present", "Attachments present", counts.inSource());
    table.add("attachments.missing", "Attachments missing", counts.neither);
    table.addIfAny("attachments.refused", "Attachments refused", counts.refused);
}

void printConversations(const HistorySummary& history, std::ostream& out) {
    if (history.conversations.empty()) return;
    TextTable table({Align::right, Align::right, Align::left, Align::left, Align::left, Align::left});
    table.add({"Conversation", "Messages", "From", "To", "Types", "Name"});
    for (const auto& [id, conversation] : history.conversations) {
        table.add({std::to_string(id), grouped(conversation.messages), dayText(conversation.first),
                   dayText(conversation.last), typesText(conversation.byType),
                   shortened(conversation.name, kMostOfAName)});
    }
    out << '\n';
    table.print(out);
}

void addVersions(JSON_Object* object, const FileVersions& versions) {
    JSON_Array* array = addArray(object, "versions");
    for (const auto& [version, files] : versions)
        appendText(array, version);
}

void addMessages(JSON_Object* object, const HistorySummary& history) {
    set(object, "messages", history.messages);
    if (const auto days = history.days()) {
        set(object, "firstDay", dayText(days->first));
        set(object, "lastDay", dayText(days->second));
    }
    addTypes(object, history.byType);
}

void addConversations(JSON_Object* object, const HistorySummary& history) {
    JSON_Array* conversations = addArray(object, "conversations");
    for (const auto& [id, conversation] : history.conversations) {
        JSON_Object* element = appendObject(conversations);
        set(element, "id", std::to_string(id));
        set(element, "name", conversation.name);
        set(element, "messages", conversation.messages);
        set(element, "firstDay", dayText(conversation.first));
        set(element, "lastDay", dayText(conversation.last));
        addTypes(element, conversation.byType);
    }
}

void addAttachments(JSON_Object* object, const AttachmentCounts& counts) {
    JSON_Object* attachments = addObject(object, "attachments");
    set(attachments, "named", counts.named);
    set(attachments, "present", counts.inSource());
    set(attachments, "missing", counts.neither);
    set(attachments, "refused", counts.refused);
}

}  // namespace app
