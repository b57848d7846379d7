#include "app/inspect_tree.h"

#include <array>
#include <iostream>
#include <set>

#include "app/command.h"
#include "app/conversation_table.h"
#include "app/json_texts.h"
#include "app/package_summary.h"
#include "app/paths.h"
#include "app/printable.h"
#include "app/text_table.h"
#include "app/tree_file_names.h"
#include "app/units.h"
#include "host/confined_files.h"
#include "transfer/tree_format.h"

namespace app {
namespace {

struct FileKind {
    const char* ending;
    const char* words;
    const char* key;
};

constexpr std::array<FileKind, 4> kFileKinds = {
    {{transfer::kMessageExtension, "Message files", "messages"},
     {transfer::kContactExtension, "Recent-contact files", "recentContacts"},
     {transfer::kNoteExtension, "Note files", "notes"},
     {transfer::kRoomExtension, "Room files", "rooms"}}};

struct TreeSummary {
    TreeFacts facts;
    PackageSummary messages;  ///< its facts and attachments stay empty
    AttachmentCheck::Counts attachments;
};

AttachmentCheck::Counts countAttachments(const TreeSource& source, const std::set<TreeFileName>& files) {
    AttachmentCheck::Counts counts;
    counts.named = static_cast<long long>(files.size());
    for (const TreeFileName& file : files) {
        if (!tools::isConfinedName(file.value)) {
            ++counts.refused;
        } else if (tools::confinedFileExists(source.attachments(), file.value)) {
            ++counts.inPackage;
        } else {
            ++counts.nowhere;
        }
    }
    return counts;
}

TreeSummary summarise(const TreeSource& source, const std::string& key) {
    TreeSummary summary;
    std::set<TreeFileName> files;
    const auto collect = [&files](TreeFileName file) { files.insert(std::move(file)); };
    summary.facts = readTree(source, key, [&](TreeMessage message) {
        forEachTreeFile(message.record.body, message.record.msgType, transfer::kMessageFileKeys, collect);
        message.record.targetID = message.conversation;
        summary.messages.add(message.record);
    });
    for (const st_noteTrans& note : summary.facts.notes)
        forEachTreeFile(note.content, note.type, transfer::kNoteFileKeys, collect);
    summary.messages.addNames(summary.facts.contacts);
    summary.attachments = countAttachments(source, files);
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

template <class Records>
long long sizeOf(const Records& records) {
    return static_cast<long long>(records.size());
}

void printTotals(const TreeSource& source, const TreeSummary& summary) {
    const TreeFacts& facts = summary.facts;
    Summary table;
    for (const FileKind& kind : kFileKinds)
        table.add(kind.words, stateText(countsOf(facts, kind.ending)));
    table.addIfAny("Encrypted, not looked into", facts.locked);
    table.add("Version", versionsText(facts.versions));
    if (const auto days = summary.messages.days()) {
        table.add("Days", dayText(days->first) + " to " + dayText(days->second));
    }
    table.add("Messages", summary.messages.messages);
    table.add("Conversations", sizeOf(summary.messages.conversations));
    table.add("Recent contacts", sizeOf(facts.contacts));
    table.add("Notes", sizeOf(facts.notes));
    table.add("Rooms", sizeOf(facts.rooms));
    table.add("Attachments present", summary.attachments.inPackage);
    table.add("Attachments missing", summary.attachments.nowhere);
    table.addIfAny("Attachments refused", summary.attachments.refused);
    table.add("Size", humanSize(sizeOfFolder(source.root)));
    table.print(std::cout);
}

void printUnreadable(const TreeFacts& facts) {
    if (!facts.unreadable.empty()) std::cout << "\nFiles that cannot be read:\n";
    for (const TransferReport::Skipped& file : facts.unreadable)
        std::cout << "  " << printable(file.what) << ": " << printable(file.reason) << '\n';
    if (facts.locked == 0) return;
    std::cout << "\n"
              << counted(facts.locked, "file is", "files are")
              << " encrypted: give the key with --key-file FILE, in CHAT_TRANSFER_KEY or with --ask-key.\n";
}

void set(JSON_Object* object, const char* key, long long number) {
    json_object_set_number(object, key, static_cast<double>(number));
}

JSON_Object* addObject(JSON_Object* object, const char* key) {
    json_object_set_value(object, key, json_value_init_object());
    return json_object_get_object(object, key);
}

void addFiles(JSON_Object* object, const TreeFacts& facts) {
    JSON_Object* files = addObject(object, "files");
    for (const FileKind& kind : kFileKinds) {
        const TreeFileCounts counts = countsOf(facts, kind.ending);
        JSON_Object* states = addObject(files, kind.key);
        set(states, "encrypted", counts.encrypted);
        set(states, "decrypted", counts.decrypted);
        set(states, "plain", counts.plain);
    }
    set(object, "lockedFiles", facts.locked);
    json_object_set_value(object, "unreadableFiles", json_value_init_array());
    JSON_Array* unreadable = json_object_get_array(object, "unreadableFiles");
    for (const TransferReport::Skipped& file : facts.unreadable)
        json_array_append_string(unreadable, printable(file.what).c_str());
    json_object_set_value(object, "versions", json_value_init_array());
    JSON_Array* versions = json_object_get_array(object, "versions");
    for (const auto& [version, number] : facts.versions)
        json_array_append_string(versions, printable(version).c_str());
}

std::string jsonText(const TreeSource& source, const TreeSummary& summary) {
    const tools::JsonDocument document(json_value_init_object());
    JSON_Object* object = json_value_get_object(document.get());
    addFiles(object, summary.facts);
    set(object, "messages", summary.messages.messages);
    if (const auto days = summary.messages.days()) {
        json_object_set_string(object, "firstDay", dayText(days->first).c_str());
        json_object_set_string(object, "lastDay", dayText(days->second).c_str());
    }
    addTypes(object, summary.messages.byType);
    set(object, "recentContacts", sizeOf(summary.facts.contacts));
    set(object, "notes", sizeOf(summary.facts.notes));
    set(object, "rooms", sizeOf(summary.facts.rooms));
    JSON_Object* attachments = addObject(object, "attachments");
    set(attachments, "named", summary.attachments.named);
    set(attachments, "present", summary.attachments.inPackage);
    set(attachments, "missing", summary.attachments.nowhere);
    set(attachments, "refused", summary.attachments.refused);
    set(object, "bytes", static_cast<long long>(sizeOfFolder(source.root)));
    addConversations(object, summary.messages);
    return prettyTextOf(document);
}

}  // namespace

int inspectTree(const TreeSource& source, const std::string& key, bool json) {
    const TreeSummary summary = summarise(source, key);
    if (json) {
        std::cout << jsonText(source, summary) << '\n';
        return kDone;
    }
    std::cout << "Tree " << printable(source.root) << " of user " << printable(source.user) << '\n';
    printTotals(source, summary);
    printConversations(summary.messages, std::cout);
    printUnreadable(summary.facts);
    return kDone;
}

}  // namespace app
