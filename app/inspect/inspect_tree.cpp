#include "app/inspect/inspect_tree.h"

#include <array>
#include <iostream>

#include "app/account/key_options.h"
#include "app/attachments/tree_file_names.h"
#include "app/base/json_texts.h"
#include "app/base/paths.h"
#include "app/base/printable.h"
#include "app/base/units.h"
#include "app/inspect/inspection_output.h"
#include "app/tree/tree_contact_files.h"
#include "host/json/json_owner.h"
#include "transfer/format/tree_format.h"

namespace app {
namespace {

struct RecordFiles {
    const char* ending;
    const char* words;
    const char* key;
};

constexpr std::array<RecordFiles, 4> kFileKinds = {
    {{chattransfer::kMessageExtension, "Message files", "messages"},
     {chattransfer::kContactExtension, "Recent-contact files", "recentContacts"},
     {chattransfer::kNoteExtension, "Note files", "notes"},
     {chattransfer::kRoomExtension, "Room files", "rooms"}}};

template <class Records>
long long sizeOf(const Records& records) {
    return static_cast<long long>(records.size());
}

struct TreeSummary {
    TreeFacts facts;
    HistorySummary history;
    AttachmentCounts attachments;
    unsigned long long bytes = 0;
    const TreeContactFile* takenContacts = nullptr;  ///< in the facts; the one of which an import takes the contacts

    long long contacts() const { return takenContacts != nullptr ? sizeOf(takenContacts->contacts) : 0; }
};

TreeSummary summarise(const TreeSource& source, const std::string& key) {
    TreeSummary summary;
    AttachmentFiles attachments(source.attachments(), "");
    summary.facts = readTree(source, key, [&](const TreeMessage& message) {
        summary.history.add(message.conversation, message.record);
        forEachTreeFile(message.record.body, message.record.msgType, attachments.adder());
    });
    for (const st_noteTrans& note : summary.facts.notes)
        forEachTreeFile(note, attachments.adder());
    summary.attachments = attachments.count();
    summary.bytes = sizeOfFolder(source.root);
    summary.takenContacts = lastListedFile(source, summary.facts.contactFiles);
    if (summary.takenContacts != nullptr) summary.history.addNames(summary.takenContacts->contacts);
    return summary;
}

std::string stateText(const TreeFileCounts& counts) {
    std::string text;
    const auto add = [&text](long long number, const char* words) {
        if (number > 0) text += (text.empty() ? "" : ", ") + grouped(number) + " " + words;
    };
    add(counts.encrypted, "encrypted");
    add(counts.decrypted, "decrypted");
    add(counts.plain, "plain");
    return text.empty() ? "none" : text;
}

TreeFileCounts countsOf(const TreeFacts& facts, const char* ending) {
    const auto found = facts.files.find(ending);
    return found != facts.files.end() ? found->second : TreeFileCounts();
}

void addTotals(Summary& table, const TreeSummary& summary) {
    const TreeFacts& facts = summary.facts;
    for (const RecordFiles& kind : kFileKinds)
        table.add(std::string("storedAs.") + kind.key, kind.words, stateText(countsOf(facts, kind.ending)));
    table.addIfAny("files.locked", "Encrypted, not looked into", facts.locked);
    addTotals(table, facts.versions, summary.history);
    table.add("recentContacts.read", "Recent contacts", summary.contacts());
    table.add("notes.read", "Notes", sizeOf(facts.notes));
    table.add("rooms.read", "Rooms", sizeOf(facts.rooms));
    addTotals(table, summary.attachments);
    table.addSize("bytes", "Size", summary.bytes);
}

void printUnreadable(const TreeFacts& facts) {
    if (!facts.unreadable.empty()) std::cout << "\nFiles that cannot be read:\n";
    for (const TransferReport::Skipped& file : facts.unreadable)
        std::cout << "  " << printable(file.what) << ": " << printable(file.reason) << '\n';
    if (facts.locked == 0) return;
    std::cout << "\n"
              << counted(facts.locked, "file is", "files are") << " encrypted: give the key with " << kWaysToGiveAKey
              << ".\n";
}

void addFiles(JSON_Object* object, const TreeFacts& facts) {
    JSON_Object* files = addObject(object, "files");
    for (const RecordFiles& kind : kFileKinds) {
        const TreeFileCounts counts = countsOf(facts, kind.ending);
        JSON_Object* states = addObject(files, kind.key);
        set(states, "encrypted", counts.encrypted);
        set(states, "decrypted", counts.decrypted);
        set(states, "plain", counts.plain);
    }
    set(object, "lockedFiles", facts.locked);
    JSON_Array* unreadable = addArray(object, "unreadableFiles");
    for (const TransferReport::Skipped& file : facts.unreadable)
        appendText(unreadable, file.what);
    addVersions(object, facts.versions);
}

void addContacts(JSON_Object* object, const TreeSummary& summary) {
    set(object, "recentContacts", summary.contacts());
    JSON_Array* files = addArray(object, "recentContactFiles");
    for (const TreeContactFile& file : summary.facts.contactFiles) {
        JSON_Object* one = appendObject(files);
        set(one, "name", file.name);
        set(one, "recentContacts", sizeOf(file.contacts));
        json_object_set_boolean(one, "taken", &file == summary.takenContacts ? 1 : 0);
    }
}

std::string jsonText(const TreeSummary& summary) {
    const tools::JsonDocument document(json_value_init_object());
    JSON_Object* object = json_value_get_object(document.get());
    addFiles(object, summary.facts);
    addMessages(object, summary.history);
    addContacts(object, summary);
    set(object, "notes", sizeOf(summary.facts.notes));
    set(object, "rooms", sizeOf(summary.facts.rooms));
    addAttachments(object, summary.attachments);
    set(object, "bytes", static_cast<long long>(summary.bytes));
    addConversations(object, summary.history);
    return prettyTextOf(document);
}

}  // namespace

void inspectTree(const TreeSource& source, const std::string& key, bool json, RunReport& run) {
    const TreeSummary summary = summarise(source, key);
    addTotals(run.summary, summary);
    if (json) {
        std::cout << jsonText(summary) << '\n';
        return;
    }
    run.printSummary("Tree " + printable(source.root) + " of user " + printable(source.user));
    if (summary.facts.contactFiles.size() > 1) std::cout << '\n';
    printContactFiles(std::cout, summary.facts.contactFiles, summary.takenContacts, "taken");
    printConversations(summary.history, std::cout);
    printUnreadable(summary.facts);
}

}  // namespace app
