#include "app/verify/tree_verification.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "app/account/open_database.h"
#include "app/attachments/tree_file_names.h"
#include "app/base/units.h"
#include "app/tree/tree_contact_files.h"
#include "app/verify/attachment_check.h"
#include "transfer/tables/message_table.h"
#include "transfer/tables/message_trimming.h"
#include "transfer/tables/plugin_tables.h"
#include "transfer/tables/recent_contact_table.h"

namespace app {
namespace {

using imsdk::st_dbMessageBean;
using imsdk::st_dbReContactBean;

std::string described(const st_dbMessageBean& message, long long conversation) {
    return "message " + std::to_string(message.msgID) + " of conversation " + std::to_string(conversation);
}

std::string described(const st_noteTrans& note) {
    return "note of type " + std::to_string(note.type) + ", changed at " + std::to_string(note.lastChgTime);
}

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

// A tree holds ids exactly: there is no rounding that would explain a difference.
std::vector<std::string> differencesOf(const Comparison& comparison) {
    std::vector<std::string> names = comparison.differing;
    if (comparison.rules.count(Rule::idRounded) != 0) names.emplace_back("ids");
    return names;
}

TreeVerification::Contacts readContacts(imsdk::dbUtils& db) {
    TreeVerification::Contacts contacts;
    imsdk::dbDataReader reader =
        db.excuteQuery((std::string("select * from ") + chattransfer::kRecentContactTable).c_str());
    while (reader.read() != 0) {
        st_dbReContactBean row;
        chattransfer::readRecentContactRow(reader, row);
        contacts.emplace(row.targetID, std::move(row));
    }
    return contacts;
}

// What tells two notes apart, besides their content.
using NoteKey = std::tuple<long long, long long, int, int, long long, int, long long>;

NoteKey keyOf(const st_noteTrans& note) {
    return {note.sendUserId, note.targetID, note.type, note.isReminder, note.rmdTime, note.isArchive, note.lastChgTime};
}

std::multimap<NoteKey, std::string> readNotes(imsdk::dbUtils& db) {
    std::multimap<NoteKey, std::string> notes;
    imsdk::dbDataReader reader = db.excuteQuery(
        "select sendUserId, targetID, type, content, isReminder, rmdTime, isArchive, lastChgTime from im_note");
    while (reader.read() != 0) {
        st_noteTrans note;
        reader.getColumnValue(0, note.sendUserId);
        reader.getColumnValue(1, note.targetID);
        reader.getColumnValue(2, note.type);
        reader.getColumnValue(3, note.content);
        reader.getColumnValue(4, note.isReminder);
        reader.getColumnValue(5, note.rmdTime);
        reader.getColumnValue(6, note.isArchive);
        reader.getColumnValue(7, note.lastChgTime);
        notes.emplace(keyOf(note), note.content);
    }
    return notes;
}

std::set<std::pair<std::string, std::string>> readRooms(imsdk::dbUtils& db) {
    std::set<std::pair<std::string, std::string>> rooms;
    imsdk::dbDataReader reader = db.excuteQuery("select roomName, roomMember from im_room");
    while (reader.read() != 0)
        rooms.emplace(reader.getColumnValue(0), reader.getColumnValue(1));
    return rooms;
}

}  // namespace

TreeVerification::TreeVerification(TreeSource source, Database database, dbTrans& transfer)
    : source_(std::move(source)),
      database_(database),
      transfer_(transfer),
      attachments_(source_.attachments(), transfer.rootPath) {}

imsdk::dbUtils& TreeVerification::db() {
    return connection(transfer_, database_);
}

void TreeVerification::run() {
    readTreeFiles();
    for (auto& [conversation, messages] : conversations_)
        compareConversation(conversation, messages);
    // Only messages go into the back database.
    if (database_ == Database::back) return;
    compareContacts();
    compareNotes();
    compareRooms();
    counts_.attachments = checkTreeAttachments(attachments_, report_);
}

void TreeVerification::readTreeFiles() {
    facts_ = readTree(source_, transfer_.dbKey, [&](TreeMessage message) {
        ++counts_.messages;
        forEachTreeFile(message.record.body, message.record.msgType, attachments_.adder());
        const long long id = message.record.msgID;
        conversations_[message.conversation][id].push_back({std::move(message.record), nullptr});
    });
    for (const st_noteTrans& note : facts_.notes)
        forEachTreeFile(note, attachments_.adder());
    for (const TransferReport::Skipped& file : facts_.unreadable)
        report_.add(Finding::fileUnreadable, file.what + ": " + file.reason);
    if (facts_.locked > 0) {
        report_.add(Finding::fileUnreadable,
                    counted(facts_.locked, "file is", "files are") + " encrypted, and no key was given");
    }
}

void TreeVerification::compareConversation(long long conversation, Messages& messages) {
    const std::string name = chattransfer::messageTableName(conversation).text();
    imsdk::dbDataReader reader = db().excuteQuery(("select * from " + name).c_str());
    Table table{conversation, 0, std::numeric_limits<long long>::max()};
    st_dbMessageBean row;
    while (reader.read() != 0) {
        chattransfer::readMessageRow(reader, row);
        ++table.rows;
        table.oldest = std::min(table.oldest, row.time_);
        const auto found = messages.find(row.msgID);
        if (found == messages.end()) continue;
        compareRow(table, row, found->second);
        messages.erase(found);
    }
    for (const auto& [id, missing] : messages)
        noteMissing(table, missing.front().record);
}

void TreeVerification::compareRow(const Table& table, const st_dbMessageBean& row,
                                  const std::vector<PackageMessage>& messages) {
    Comparison best;
    std::vector<std::string> differing = {""};
    // Files are taken in the order of the folder: any of several messages with one id can have been the first.
    for (std::size_t i = 0; i < messages.size() && !differing.empty(); ++i) {
        best = compareMessages(row, messages[i], Direction::imported);
        differing = differencesOf(best);
    }
    for (std::size_t i = 1; i < messages.size(); ++i)
        report_.add(Rule::idShared);
    for (const Rule rule : best.rules) {
        if (rule != Rule::idRounded) report_.add(rule);
    }
    if (differing.empty()) {
        ++counts_.equalMessages;
    } else {
        report_.add(Finding::messageDiffers, described(row, table.conversation) + ": " + joined(differing));
    }
}

void TreeVerification::noteMissing(const Table& table, const st_dbMessageBean& message) {
    const bool trimmed =
        database_ == Database::main && table.rows >= chattransfer::kKeptRows && message.time_ < table.oldest;
    if (trimmed) {
        report_.add(Rule::tableTrimmed);
    } else {
        report_.add(Finding::messageNotInAccount, described(message, table.conversation));
    }
}

void TreeVerification::compareContacts() {
    const Contacts stored = readContacts(db());
    contactFile_ = fileThatCounts(stored);
    for (const TreeContactFile& file : facts_.contactFiles) {
        if (&file == contactFile_) {
            compareContactsOf(file, stored);
        } else {
            for (std::size_t i = 0; i < file.contacts.size(); ++i)
                report_.add(Rule::contactFileReplaced);
        }
    }
}

// The order of the files may have been another one when the tree was imported: contacts that are all there are those
// that the import took.
const TreeContactFile* TreeVerification::fileThatCounts(const Contacts& stored) const {
    const TreeContactFile* best = nullptr;
    for (const TreeContactFile& file : facts_.contactFiles) {
        const bool allThere = std::all_of(file.contacts.begin(), file.contacts.end(), [&stored](const auto& contact) {
            return stored.count(contact.targetID) != 0;
        });
        if (allThere && file.contacts.size() > (best != nullptr ? best->contacts.size() : 0)) best = &file;
    }
    return best != nullptr ? best : lastListedFile(source_, facts_.contactFiles);
}

void TreeVerification::compareContactsOf(const TreeContactFile& file, const Contacts& stored) {
    for (const st_dbReContactBean& contact : file.contacts) {
        ++counts_.contacts;
        const auto row = stored.find(contact.targetID);
        if (row == stored.end()) {
            report_.add(Finding::contactNotInAccount,
                        "conversation " + std::to_string(contact.targetID) + " (" + contact.name + ")");
            continue;
        }
        for (const Rule rule : app::compareContacts(row->second, contact, Direction::imported).rules)
            report_.add(rule);
    }
}

void TreeVerification::compareNotes() {
    const std::multimap<NoteKey, std::string> stored = readNotes(transfer_.pluginDb);
    for (const st_noteTrans& note : facts_.notes) {
        ++counts_.notes;
        const auto [first, last] = stored.equal_range(keyOf(note));
        if (first == last) {
            report_.add(Finding::noteNotInAccount, described(note));
        } else if (std::none_of(first, last, [&note](const auto& row) { return row.second == note.content; })) {
            report_.add(Finding::noteDiffers, described(note) + ": content");
        }
    }
}

void TreeVerification::compareRooms() {
    const auto stored = readRooms(transfer_.pluginDb);
    for (const st_roomTrans& room : facts_.rooms) {
        ++counts_.rooms;
        if (stored.count({room.roomName, room.roomMember}) == 0) {
            report_.add(Finding::roomNotInAccount, room.roomName + " with " + room.roomMember);
        }
    }
}

}  // namespace app
