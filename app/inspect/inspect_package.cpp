#include "app/inspect/inspect_package.h"

#include <iostream>

#include "app/attachments/package_file_names.h"
#include "app/base/json_texts.h"
#include "app/base/paths.h"
#include "app/base/printable.h"
#include "app/base/units.h"
#include "app/inspect/inspection_output.h"
#include "app/package/package_files.h"
#include "host/json/json_owner.h"

namespace app {
namespace {

struct PackageSummary {
    PackageFacts facts;
    HistorySummary history;
    AttachmentCounts attachments;
    unsigned long long bytes = 0;  ///< of all files of the user
};

PackageSummary summarise(const PackagePlace& place) {
    PackageSummary summary;
    AttachmentFiles attachments(place.attachments, "");
    summary.facts = readPackage(place, [&](const PackageMessage& message) {
        summary.history.add(message.record.targetID, message.record);
        forEachPackageFile(message.record.body, message.record.msgType, attachments.adder());
    });
    summary.history.addNames(summary.facts.contacts);
    summary.attachments = attachments.count();
    summary.bytes = sizeOfFolder(place.messages) + sizeOfFolder(place.attachments);
    return summary;
}

void addTotals(Summary& table, const PackageSummary& summary) {
    const PackageFacts& facts = summary.facts;
    table.add("files.messages", "Message files", facts.messageFiles);
    addTotals(table, facts.versions, summary.history);
    if (facts.hasContacts) {
        table.add("recentContacts.read", "Recent contacts", static_cast<long long>(facts.contacts.size()));
    } else {
        table.add("recentContacts.file", "Recent contacts", std::string("no file"));
    }
    addTotals(table, summary.attachments);
    table.addSize("bytes", "Size", summary.bytes);
}

void printDamage(const PackageFacts& facts) {
    if (!facts.unreadable.empty()) std::cout << "\nFiles that cannot be read:\n";
    for (const TransferReport::Skipped& file : facts.unreadable)
        std::cout << "  " << printable(file.what) << '\n';
    if (facts.filesBehindGap == 0) return;
    std::cout << "\nThe numbering has a gap after " << counted(facts.messageFiles, "file", "files")
              << ": no import reads the " << grouped(facts.filesBehindGap) << " behind it.\n";
}

void addFacts(JSON_Object* object, const PackageFacts& facts) {
    addVersions(object, facts.versions);
    set(object, "messageFiles", facts.messageFiles);
    set(object, "messageFilesBehindGap", facts.filesBehindGap);
    JSON_Array* unreadable = addArray(object, "unreadableFiles");
    for (const TransferReport::Skipped& file : facts.unreadable)
        appendText(unreadable, file.what);
    json_object_set_boolean(object, "hasRecentContacts", facts.hasContacts ? 1 : 0);
    set(object, "recentContacts", static_cast<long long>(facts.contacts.size()));
}

std::string jsonText(const PackageSummary& summary) {
    const tools::JsonDocument document(json_value_init_object());
    JSON_Object* object = json_value_get_object(document.get());
    addFacts(object, summary.facts);
    addMessages(object, summary.history);
    addAttachments(object, summary.attachments);
    set(object, "bytes", static_cast<long long>(summary.bytes));
    addConversations(object, summary.history);
    return prettyTextOf(document);
}

}  // namespace

void inspectPackage(const PackagePlace& place, const std::string& user, bool json, RunReport& run) {
    const PackageSummary summary = summarise(place);
    addTotals(run.summary, summary);
    if (json) {
        std::cout << jsonText(summary) << '\n';
        return;
    }
    run.printSummary("Package " + printable(place.root()) + " of user " + printable(user));
    printConversations(summary.history, std::cout);
    printDamage(summary.facts);
}

}  // namespace app
