#include "app/conversation_table.h"

#include <ostream>

#include "app/printable.h"
#include "app/text_table.h"
#include "app/units.h"

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
