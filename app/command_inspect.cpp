#include "app/command_inspect.h"

#include <iostream>
#include <memory>

#include "app/package_summary.h"
#include "app/printable.h"
#include "app/text_table.h"
#include "app/units.h"

namespace app {
namespace {

struct InspectOptions {
    std::string from;
    std::string user;
    bool json = false;
};

std::string typesText(const std::map<int, long long>& byType) {
    std::string text;
    for (const auto& [type, messages] : byType) {
        text += (text.empty() ? "" : ", ") + grouped(messages) + " " + typeName(type);
    }
    return text;
}

std::string versionsText(const PackageFacts& facts) {
    std::string text;
    for (const auto& [version, files] : facts.versions) {
        text += (text.empty() ? "" : ", ") + shortened(version, 40);
        if (facts.versions.size() > 1) text += " (" + counted(files, "file", "files") + ")";
    }
    return text;
}

void printTotals(const PackageSummary& summary) {
    const PackageFacts& facts = summary.facts;
    Summary table;
    table.add("Version", versionsText(facts));
    table.add("Message files", facts.messageFiles);
    if (const auto days = summary.days()) table.add("Days", dayText(days->first) + " to " + dayText(days->second));
    table.add("Messages", summary.messages);
    table.add("Conversations", static_cast<long long>(summary.conversations.size()));
    table.add("Recent contacts",
              facts.hasContacts ? grouped(static_cast<long long>(facts.contacts.size())) : "no file");
    table.add("Attachments present", summary.attachments.inPackage);
    table.add("Attachments missing", summary.attachments.nowhere);
    table.addIfAny("Attachments refused", summary.attachments.refused);
    table.add("Size", humanSize(summary.bytes));
    table.print(std::cout);
}

void printConversations(const PackageSummary& summary) {
    if (summary.conversations.empty()) return;
    TextTable table({Align::right, Align::right, Align::left, Align::left, Align::left, Align::left});
    table.add({"Conversation", "Messages", "From", "To", "Types", "Name"});
    for (const auto& [id, conversation] : summary.conversations) {
        table.add({std::to_string(id), grouped(conversation.messages), dayText(conversation.first),
                   dayText(conversation.last), typesText(conversation.byType), shortened(conversation.name, 40)});
    }
    std::cout << '\n';
    table.print(std::cout);
}

void printDamage(const PackageFacts& facts) {
    if (!facts.unreadable.empty()) std::cout << "\nFiles that cannot be read:\n";
    for (const std::string& path : facts.unreadable)
        std::cout << "  " << printable(path) << '\n';
    if (facts.filesBehindGap == 0) return;
    std::cout << "\nThe numbering has a gap after " << counted(facts.messageFiles, "file", "files")
              << ": no import reads the " << grouped(facts.filesBehindGap) << " behind it.\n";
}

int runInspect(const InspectOptions& options) {
    const PackagePlace place = findPackage(options.from, options.user);
    const PackageSummary summary = summarise(place);
    if (options.json) {
        std::cout << jsonOf(summary) << '\n';
        return kDone;
    }
    std::cout << "Package " << printable(place.parent) << "/qelmsg_0 of user " << printable(options.user) << '\n';
    printTotals(summary);
    printConversations(summary);
    printDamage(summary.facts);
    return kDone;
}

constexpr const char* kFooter = R"(Nothing is changed, and no account or key is needed: a package is not encrypted.

Examples:
  chat-transfer inspect ~/backup --user 1000000000000001
  chat-transfer inspect ~/backup/qelmsg_0 --user 1000000000000001 --json)";

}  // namespace

void addInspectCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<InspectOptions>();
    CLI::App* command = program.add_subcommand("inspect", "Show what a backup package holds");
    command->add_option("DIR", options->from, "Folder that holds the package qelmsg_0, or qelmsg_0 itself")->required();
    addUserOption(*command, options->user);
    command->add_flag("--json", options->json, "Print JSON instead of tables; ids are texts, since they may pass 2^53");
    command->footer(kFooter);
    setJob(*command, job, std::move(options), runInspect);
}

}  // namespace app
