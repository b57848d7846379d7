#include "app/package/conversation_table.h"

#include <ostream>

#include "app/base/printable.h"
#include "app/base/text_table.h"
#include "app/base/units.h"

namespace app {
namespace {

std::string typesText(const std::map<int, long long>& byType) {
    std::string text;
    for (const auto& [type, messages] : byType) {
        text += (text.empty() ? "" : ", ") + grouped(messages) + " " + typeName(type);
    }
    return text;
}

}  // namespace

std::string versionsText(const std::map<std::string, int>& versions) {
    std::string text;
    for (const auto& [version, files] : versions) {
        text += (text.empty() ? "" : ", ") + shortened(version, 40);
        if (versions.size() > 1) text += " (" + counted(files, "file", "files") + ")";
    }
    return text;
}

void addMessageTotals(Summary& table, const std::map<std::string, int>& versions, const PackageSummary& messages) {
    table.add("version", "Version", versionsText(versions));
    if (const auto days = messages.days())
        table.add("dayRange", "Days", dayText(days->first) + " to " + dayText(days->second));
    table.add("messages.read", "Messages", messages.messages);
    table.add("conversations.all", "Conversations", static_cast<long long>(messages.conversations.size()));
}

void addAttachmentTotals(Summary& table, const AttachmentCounts& counts) {
    table.add("attachments.referenced", "Attachments named", counts.named);
    table.add("attachments.present", "Attachments present", counts.inSource());
    table.add("attachments.missing", "Attachments missing", counts.neither);
    table.addIfAny("attachments.refused", "Attachments refused", counts.refused);
}

void printConversations(const PackageSummary& summary, std::ostream& out) {
    if (summary.conversations.empty()) return;
    TextTable table({Align::right, Align::right, Align::left, Align::left, Align::left, Align::left});
    table.add({"Conversation", "Messages", "From", "To", "Types", "Name"});
    for (const auto& [id, conversation] : summary.conversations) {
        table.add({std::to_string(id), grouped(conversation.messages), dayText(conversation.first),
                   dayText(conversation.last), typesText(conversation.byType), shortened(conversation.name, 40)});
    }
    out << '\n';
    table.print(out);
}

}  // namespace app
