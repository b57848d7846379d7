// Export: selects messages and recent contacts from the databases, writes them as a backup package, and copies the
// attachments.
#include <algorithm>
#include <array>

#include "host/base/fixed_text.h"
#include "host/files/confined_files.h"
#include "host/json/json_owner.h"
#include "host/tools.h"
#include "transfer/attachments/attachment_count.h"
#include "transfer/attachments/attachment_folders.h"
#include "transfer/base/progress_report.h"
#include "transfer/dbTrans.h"
#include "transfer/format/attachment_body.h"
#include "transfer/format/json_fields.h"
#include "transfer/format/package_format.h"
#include "transfer/package/day_entries.h"
#include "transfer/package/message_files.h"
#include "transfer/tables/message_table.h"
#include "transfer/tables/recent_contact_table.h"

using imsdk::st_dbMessageBean;
using imsdk::st_dbReContactBean;
using tools::JsonDocument;

namespace {

// --- Selection ---

struct FirstDay {
    int year;
    int mon;
    int day;
};

using SelectStatement = tools::FixedText<256>;

// The messages of `table` dated on or after `since`.
SelectStatement selectStatement(const std::string& table, const FirstDay& since) {
    return SelectStatement(
        "select * from %s where (year_ > %d) or (year_ = %d and mon > %d) or (year_ = %d and mon = %d and day_ >= %d)",
        table.c_str(), since.year, since.year, since.mon, since.year, since.mon, since.day);
}

// Calls take(message) for each row; the message may be moved from. False when they could not all be read.
template <class Take>
bool selectMessages(imsdk::dbUtils& db, const SelectStatement& statement, Take take) {
    imsdk::dbDataReader reader = db.excuteQuery(statement.text());
    st_dbMessageBean message;
    while (reader.read() != 0) {
        chattransfer::readMessageRow(reader, message);
        take(message);
    }
    return !reader.failed();
}

// Selects from every message table and reports the tables that could not be read: they contribute what was read of
// them.
template <class Take>
void selectFromAllTables(dbTrans& transfer, const FirstDay& since, Take take) {
    for (const std::string& table : transfer.tableNames) {
        if (!chattransfer::isMessageTable(table)) continue;
        const SelectStatement statement = selectStatement(table, since);
        if (!chattransfer::isPlainTableName(table) || !statement.fits()) {
            transfer.report.skip(table, "the table's name cannot stand in a statement");
            continue;
        }
        const bool whole = selectMessages(transfer.mainDb, statement, [&](st_dbMessageBean& message) {
            ++transfer.report.messagesSelected;
            if (chattransfer::carriesAttachments(message.msgType)) transfer.parseUrl(message.body, message.msgType);
            take(message);
        });
        if (!whole) transfer.report.skip(table, "the table could not be read whole: " + transfer.mainDb.lastError());
    }
}

void noteUnplaced(TransferReport& report, const std::string& dayKey) {
    report.skip(dayKey, "the day key is too long: a message was left out");
}

// --- Package writing ---

constexpr std::size_t kMessagesPerFile = 1000;

JsonDocument makeFileHead(const std::string& version) {
    JsonDocument file(json_value_init_object());
    JSON_Object* object = json_value_get_object(file.get());
    chattransfer::setField(object, chattransfer::kVersionKey, version);
    chattransfer::setValue(object, chattransfer::kMessagesKey, JsonDocument(json_value_init_array()));
    return file;
}

// {"msgs": []}
JsonDocument makeMessageList() {
    JsonDocument list(json_value_init_object());
    chattransfer::setValue(json_value_get_object(list.get()), chattransfer::kMessagesKey,
                           JsonDocument(json_value_init_array()));
    return list;
}

JsonDocument makeMessage(const st_dbMessageBean& record) {
    JsonDocument message(json_value_init_object());
    JSON_Object* object = json_value_get_object(message.get());
    chattransfer::forEachMessageKey(record, [object](const char* key, chattransfer::KeyUse /*use*/, const auto& field) {
        chattransfer::setField(object, key, field);
    });
    chattransfer::forEachMessageList(
        record, [object](const char* key, const std::string& joined) { chattransfer::setList(object, key, joined); });
    return message;
}

// --- Attachments ---

// `path` is relative to the package; the file itself lies flat in the account's folder for its kind.
tools::FileOutcome exportAttachment(tools::ConfinedFolder& account, tools::ConfinedFolder& package,
                                    const std::string& path) {
    std::string name;
    tools::getNameFromPath(path, name);
    if (!tools::isConfinedName(path) || !tools::isConfinedName(name)) return tools::FileOutcome::refused;
    const tools::FileKind kind = account.kindOf(name);
    if (kind == tools::FileKind::unknown) return tools::FileOutcome::failed;
    if (kind != tools::FileKind::regular) return tools::FileOutcome::missing;
    // For a path without "/" this makes a folder of the attachment's own name, onto which the copy then fails.
    package.createFolder(chattransfer::folderOf(path));
    return account.copyTo(package, name, path, tools::Flush::later);
}

}  // namespace

unsigned int dbTrans::rdMsgFromDB(int year, int mon, int day) {
    const auto contacts = static_cast<unsigned int>(readRecontactFromDB());
    if (contacts != chattransfer::kSuccess) return contacts;
    dataClear();
    if (backdbOpen() == 0) return chattransfer::kDatabaseFailed;
    getTables();
    if (tableNames.empty()) return chattransfer::kNoTables;
    chattransfer::DayEntries days(dayMsgMap, ':');
    selectFromAllTables(*this, {year, mon, day}, [&](st_dbMessageBean& message) {
        if (chattransfer::MessagesOfDay* entry = days.withRoom(message)) {
            entry->push_back(std::move(message));
        } else {
            noteUnplaced(report, chattransfer::dayKeyOf(message, ':'));
        }
    });
    return chattransfer::kSuccess;
}

unsigned int dbTrans::rdMsgFromDB2(int year, int mon, int day) {
    dataClear();
    if (dbOpen() == 0) return chattransfer::kDatabaseFailed;
    getTables();
    if (tableNames.empty()) return chattransfer::kNoTables;
    chattransfer::DayEntries days(dayMsgMap, '_');
    selectFromAllTables(*this, {year, mon, day},
                        [&](st_dbMessageBean& message) { days.of(message).push_back(std::move(message)); });
    return chattransfer::kSuccess;
}

void dbTrans::searchItem(std::string dayKey, st_dbMessageBean& msg) {
    int overflow = 0;
    if (chattransfer::MessagesOfDay* entry = chattransfer::DayEntries::nextOverflow(dayMsgMap, dayKey, overflow)) {
        entry->push_back(msg);
    } else {
        noteUnplaced(report, dayKey);
    }
}

int dbTrans::parseUrl(std::string body, int msgType) {
    const chattransfer::AttachmentBody attachments = chattransfer::readAttachmentBody(body, msgType);
    if (!attachments.recognised) return 0;
    if (!attachments.complete) return 1;
    if (msgType == chattransfer::kImageMessage) {
        imagePaths.push_back(attachments.mediaUrl);
        imagePaths.push_back(attachments.thumbUrl);
    } else {
        std::vector<std::string>& paths = msgType == chattransfer::kVoiceMessage ? audioPaths : filePaths;
        paths.push_back(attachments.packagePath());
    }
    return 1;
}

JSON_Value* dbTrans::makeJson(int mode, st_dbMessageBean* msg) {
    if (mode == 0) return makeFileHead(packageVersion).release();
    if (mode == 1) return makeMessageList().release();
    return mode == 2 && msg != nullptr ? makeMessage(*msg).release() : nullptr;
}

int dbTrans::createRootDir() {
    const tools::FixedText<100> root("%s/qelmsg_0/", backupPath.c_str());
    if (!root.fits() || tools::confinedNameTaken(backupPath + "/", chattransfer::kPackageRoot)) return 0;
    msgFileDir = std::string(root.text()) + chattransfer::kMessagesFolder + packageSubDir + "/";
    imFileDir = std::string(root.text()) + chattransfer::kAttachmentsFolder + packageSubDir + "/";
    tools::createDir(msgFileDir.c_str());
    tools::createDir(imFileDir.c_str());
    return 1;
}

unsigned int dbTrans::wtMsgToFile() {
    if (createRootDir() == 0) return chattransfer::kPackageExists;
    chattransfer::ProgressThrottle throttle;
    chattransfer::MessageFiles files(*this);
    const auto entries = static_cast<long long>(dayMsgMap.size());
    for (const auto& [key, messages] : dayMsgMap) {
        const chattransfer::CalendarDay day = chattransfer::dayOfKey(key, ":");
        if (!files.begin() || !files.addDay(day, messages.data(), messages.data() + messages.size())) {
            return chattransfer::kJsonFailed;
        }
        files.finish();
        if (throttle.due(files.number() == entries)) chattransfer::notifyShare(*this, 1, files.number(), entries);
    }
    exportFile();
    wtRecontactToFile();
    return chattransfer::kSuccess;
}

unsigned int dbTrans::wtMsgToFile2() {
    if (createRootDir() == 0) return chattransfer::kPackageExists;
    chattransfer::ProgressThrottle throttle;
    chattransfer::MessageFiles files(*this);
    const auto entries = static_cast<long long>(dayMsgMap.size());
    std::size_t room = 0;    // messages that still fit into the current file; 0: no file is begun
    std::size_t resume = 0;  // first message of the entry that is not written yet
    long long passes = 0;
    for (auto entry = dayMsgMap.begin(); entry != dayMsgMap.end();) {
        if (room == 0) {
            if (!files.begin()) return chattransfer::kJsonFailed;
            room = kMessagesPerFile;
        }
        const chattransfer::MessagesOfDay& messages = entry->second;
        const std::size_t taken = std::min(room, messages.size() - resume);
        const st_dbMessageBean* first = messages.data() + resume;
        if (!files.addDay(chattransfer::dayOfKey(entry->first, "_"), first, first + taken))
            return chattransfer::kJsonFailed;
        room -= taken;
        const auto next = std::next(entry);
        if (room == 0 || next == dayMsgMap.end()) files.finish();
        // A file that is full in the last day ends the export, with the rest of that day left out. Elsewhere the next
        // file begins with this day again, even when nothing of it is left. Readers know both.
        if (room == 0 && next != dayMsgMap.end()) {
            resume += taken;
            continue;
        }
        resume = 0;
        entry = next;
        if (throttle.due(passes == entries)) chattransfer::notifyShare(*this, 1, passes, entries);
        ++passes;
    }
    exportFile();
    return chattransfer::kSuccess;
}

std::string dbTrans::getSavePath(const char* path, std::string& dirPart) {
    dirPart.clear();
    if (path == nullptr) return {};
    const tools::FixedText<256> buffer("%s", path);
    std::string converted = buffer.text();
    std::size_t segment = 0;
    for (int slashes = 0; slashes < 3; ++slashes) {
        const std::size_t slash = converted.find('/', segment);
        if (slash == std::string::npos) return {};
        segment = slash + 1;
    }
    const std::size_t end = converted.find('/', segment);
    // Without a further "/" the segment ends one past the text, so that only one character is taken from it.
    const std::size_t length = (end != std::string::npos ? end : converted.size() + 1) - segment;
    if (length < 2) return {};
    const tools::FixedText<50> directory("%s", converted.substr(segment, length - 2).c_str());
    if (!directory.fits()) return {};
    dirPart = directory.text();
    std::replace(converted.begin(), converted.end(), '/', '_');
    return dirPart + "/" + converted;
}

int dbTrans::exportFile() {
    struct Pass {
        const std::vector<std::string>& paths;
        tools::ConfinedFolder& folder;
    };
    chattransfer::AttachmentFolders folders(*this);
    const std::array<Pass, 3> passes = {
        {{audioPaths, folders.audio}, {filePaths, folders.file}, {imagePaths, folders.image}}};
    const std::size_t attachments = audioPaths.size() + filePaths.size() + imagePaths.size();
    attachmentTotal = static_cast<long long>(attachments);
    chattransfer::ProgressThrottle throttle;
    long long position = 0;
    for (const Pass& pass : passes) {
        for (const std::string& path : pass.paths) {
            chattransfer::countAttachment(report, path, exportAttachment(pass.folder, folders.package, path));
            if (throttle.due(false)) chattransfer::notifyShare(*this, 2, position, attachmentTotal);
            ++position;
        }
    }
    // Message files and attachments become durable together: a flush for each would cost more than the export.
    const bool anythingToFlush = tools::presenceOf(imFileDir) != tools::Presence::absent;
    if (anythingToFlush && !tools::flushFileSystem(imFileDir))
        report.skip(imFileDir, "the package could not be flushed to the disk");
    chattransfer::notifyShare(*this, 2, attachmentTotal, attachmentTotal);
    return 1;
}

std::string dbTrans::baseName(std::string path) {
    return chattransfer::folderOf(path);
}

std::string dbTrans::filName(std::string path) {
    std::string name;
    tools::getNameFromPath(path, name);
    return name;
}

std::string dbTrans::validatePath(const char* path) {
    if (path == nullptr) return {};
    std::string valid = tools::FixedText<300>("%s", path).text();
    std::replace(valid.begin(), valid.end(), '\\', '/');
    if (!valid.empty() && valid.back() == '/') valid.pop_back();
    return valid;
}

long long dbTrans::readRecontactFromDB() {
    tableNames.clear();
    if (dbOpen() == 0) return chattransfer::kDatabaseFailed;
    getTables();
    if (std::find(tableNames.begin(), tableNames.end(), chattransfer::kRecentContactTable) == tableNames.end()) {
        return chattransfer::kNoTables;
    }
    imsdk::dbDataReader reader =
        mainDb.excuteQuery(tools::FixedText<256>("select * from %s", chattransfer::kRecentContactTable).text());
    while (reader.read() != 0) {
        st_dbReContactBean contact;
        chattransfer::readRecentContactRow(reader, contact);
        reContacts.push_back(std::move(contact));
    }
    if (reader.failed())
        report.skip(chattransfer::kRecentContactTable, "the table could not be read whole: " + mainDb.lastError());
    return chattransfer::kSuccess;
}

int dbTrans::wtRecontactToFile() {
    const JsonDocument file(json_value_init_object());
    JSON_Object* object = json_value_get_object(file.get());
    chattransfer::setField(object, chattransfer::kVersionKey, packageVersion);
    chattransfer::setValue(object, chattransfer::kRecentContactsKey, JsonDocument(json_value_init_array()));
    JSON_Array* contacts = json_object_get_array(object, chattransfer::kRecentContactsKey);
    bool whole = contacts != nullptr && json_object_has_value(object, chattransfer::kVersionKey) != 0;
    for (const st_dbReContactBean& contact : reContacts) {
        JsonDocument element(json_value_init_object());
        chattransfer::forEachRecentContactField(contact, [&](int /*column*/, const char* name, const auto& field) {
            whole = chattransfer::setField(json_value_get_object(element.get()), name, field) && whole;
        });
        whole = chattransfer::appendValue(contacts, std::move(element)) && whole;
    }
    const std::string path = msgFileDir + chattransfer::kRecentContactFileName;
    // Without memory a contact may lack a field, or the list a contact: such a file would pass for the whole list.
    if (whole && json_serialize_to_file(file.get(), path.c_str()) == JSONSuccess) {
        report.contactsWritten += static_cast<long long>(reContacts.size());
    } else {
        report.skip(path, "the recent-contact file could not be written");
    }
    return 1;
}
