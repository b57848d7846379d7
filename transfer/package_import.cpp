// Package import: reads a backup package into memory, restores its attachments, and writes messages and recent contacts
// into the databases.
#include <algorithm>

#include "host/confined_files.h"
#include "host/fixed_text.h"
#include "host/json_owner.h"
#include "host/tools.h"
#include "transfer/attachment_body.h"
#include "transfer/attachment_count.h"
#include "transfer/attachment_folders.h"
#include "transfer/backup_place.h"
#include "transfer/bind_field.h"
#include "transfer/conversation_writer.h"
#include "transfer/dbTrans.h"
#include "transfer/json_fields.h"
#include "transfer/message_table.h"
#include "transfer/message_text.h"
#include "transfer/message_trimming.h"
#include "transfer/one_transaction.h"
#include "transfer/package_format.h"
#include "transfer/progress_report.h"
#include "transfer/recent_contact_table.h"

using imsdk::st_dbMessageBean;
using imsdk::st_dbReContactBean;
using tools::JsonDocument;

namespace {

// --- Attachments ---

void restore(TransferReport& report, tools::ConfinedFolder& package, const std::string& packagePath,
             tools::ConfinedFolder& account, const std::string& name) {
    transfer::countAttachment(report, packagePath, package.copyTo(account, packagePath, name));
}

void restoreIfAbsent(TransferReport& report, tools::ConfinedFolder& package, const std::string& packagePath,
                     tools::ConfinedFolder& account, const std::string& name) {
    transfer::takeUnlessPresent(report, packagePath, account.kindOf(name),
                                [&] { return package.copyTo(account, packagePath, name); });
}

void restoreImage(TransferReport& report, transfer::AttachmentFolders& folders, const std::string& packagePath) {
    std::string name;
    tools::getNameFromPath(packagePath, name);
    restoreIfAbsent(report, folders.package, packagePath, folders.image, name);
}

int restoreAttachments(TransferReport& report, transfer::AttachmentFolders& folders, const std::string& body,
                       int msgType) {
    const transfer::AttachmentBody attachments = transfer::readAttachmentBody(body, msgType);
    if (!attachments.recognised) return 0;
    if (!attachments.complete) return 1;
    if (msgType == transfer::kFileMessage) {
        restoreIfAbsent(report, folders.package, attachments.packagePath(), folders.file, attachments.fileName);
    } else if (msgType == transfer::kVoiceMessage) {
        // Voice files are copied again each time, unlike the others.
        restore(report, folders.package, attachments.packagePath(), folders.audio, attachments.fileName);
    } else {
        restoreImage(report, folders, attachments.mediaUrl);
        restoreImage(report, folders, attachments.thumbUrl);
    }
    return 1;
}

// --- Reading ---

int countMessageFiles(const std::string& folder) {
    int number = 0;
    while (tools::isFileExsit(transfer::messageFilePath(folder, number)) != 0)
        ++number;
    return number;
}

// Takes over what message files hold, attachments restored on the way.
class MessageTaker {
public:
    explicit MessageTaker(dbTrans& transfer) : transfer_(transfer), folders_(transfer) {}

    void take(transfer::MessageDay& day) {
        for (st_dbMessageBean& message : day.messages) {
            if (transfer::carriesAttachments(message.msgType))
                restoreAttachments(transfer_.report, folders_, message.body, message.msgType);
            // The lists of the day object count, for all its messages; those that stand in the messages do not.
            message.limitRange = day.limitRange;
            message.relatedUsers = day.relatedUsers;
            messagesOf(message.targetID).push_back(std::move(message));
        }
        transfer_.report.messagesRead += static_cast<long long>(day.messages.size());
    }

private:
    // Within a day, the messages of a conversation mostly stand together.
    std::vector<st_dbMessageBean>& messagesOf(long long targetID) {
        if (last_ == nullptr || targetID != lastID_) last_ = &transfer_.msgMap[targetID];
        lastID_ = targetID;
        return *last_;
    }

    dbTrans& transfer_;
    transfer::AttachmentFolders folders_;
    long long lastID_ = 0;
    std::vector<st_dbMessageBean>* last_ = nullptr;
};

// Whether the user's folder of that kind is there, and is one: a package whose folder is a symbolic link would make the
// import read files from wherever the link leads.
bool isFolderOfPackage(const dbTrans& transfer, const char* kind) {
    const std::string name = std::string(transfer::kPackageRoot) + kind + transfer.packageSubDir;
    return tools::confinedFolderExists(transfer.backupPath + "/", name);
}

enum class FileResult { read, skipped, wrongVersion };

FileResult skipFile(dbTrans& transfer, const std::string& path, const char* reason) {
    transfer.report.skip(path, reason);
    return FileResult::skipped;
}

// `text` is the buffer of all files.
FileResult readMessageFile(dbTrans& transfer, const std::string& path, std::string& text, MessageTaker& messages) {
    if (!transfer::readBackupFile(transfer, path, text))
        return skipFile(transfer, path, "the message file cannot be read");
    transfer::MessageFileContent file = transfer::readMessageFileText(text);
    if (!file.isObject) return skipFile(transfer, path, "the message file is not a JSON object");
    if (file.version != transfer.packageVersion) {
        transfer.report.skip(path, "the message file has another version than " + transfer.packageVersion);
        return FileResult::wrongVersion;
    }
    if (!file.hasDays) return skipFile(transfer, path, "the message file has no list of days");
    for (transfer::MessageDay& day : file.days)
        messages.take(day);
    return FileResult::read;
}

st_dbReContactBean readContact(const JSON_Object* object) {
    // Older clients wrote 1 for a pinned conversation.
    constexpr signed char kPinnedInPackage = 1;
    st_dbReContactBean contact = transfer::readRecentContact(object);
    if (contact.top == kPinnedInPackage) contact.top = transfer::kPinnedBit;
    return contact;
}

// --- Writing ---

// Writes one conversation, its table included.
transfer::ErrorCode writeConversation(dbTrans& transfer, imsdk::dbUtils& db, transfer::TableIndex& index,
                                      long long targetID, const std::vector<st_dbMessageBean>& messages) {
    const std::string table = transfer::openMessageTable(transfer, db, index, targetID);
    if (table.empty()) return transfer::kDatabaseFailed;
    imsdk::dbCommand insert(&db, transfer::insertMessageStatement(table).c_str());
    for (const st_dbMessageBean& message : messages)
        transfer::insertMessage(transfer.report, db, insert, message);
    return transfer::kSuccess;
}

// Writes all conversations, one transaction each.
template <class BeforeCommit>
transfer::ErrorCode writeConversations(dbTrans& transfer, imsdk::dbUtils& db, BeforeCommit beforeCommit) {
    transfer::TableIndex index(transfer.tableNames);
    for (const auto& conversation : transfer.msgMap) {
        const long long targetID = conversation.first;
        const std::string what = "conversation " + std::to_string(targetID);
        const transfer::ErrorCode result = transfer::inOneTransaction(transfer, db, what, [&] {
            const transfer::ErrorCode written = writeConversation(transfer, db, index, targetID, conversation.second);
            if (written == transfer::kSuccess) beforeCommit();
            return written;
        });
        if (result != transfer::kSuccess) return result;
    }
    return transfer::kSuccess;
}

// --- Recent contacts ---

std::string contactStatement(const char* format) {
    return tools::FixedText<512>(format, transfer::kRecentContactTable).text();
}

int insertContact(dbTrans& transfer, const st_dbReContactBean& contact) {
    imsdk::dbCommand command(&transfer.mainDb, contactStatement(transfer::kInsertRecentContact).c_str());
    int index = 0;
    transfer::forEachRecentContactField(contact, [&](int /*column*/, const char* /*name*/, const auto& field) {
        transfer::bindField(command, ++index, field);
    });
    const int stored = transfer.mainDb.excuteNonQuery(&command);
    if (stored != 0) ++transfer.report.contactsInserted;
    return stored;
}

int updateContact(imsdk::dbUtils& db, const st_dbReContactBean& contact) {
    imsdk::dbCommand command(&db, contactStatement(transfer::kUpdateRecentContact).c_str());
    int index = 0;
    transfer::forEachRecentContactField(contact, [&](int column, const char* /*name*/, const auto& field) {
        if (column != 0) transfer::bindField(command, ++index, field);
    });
    transfer::bindField(command, ++index, contact.targetID);
    return db.excuteNonQuery(&command);
}

int pinContact(dbTrans& transfer, long long targetID, int top) {
    imsdk::dbCommand command(&transfer.mainDb, contactStatement(transfer::kPinRecentContact).c_str());
    command.bindParam(1, top);
    command.bindParam(2, targetID);
    const int stored = transfer.mainDb.excuteNonQuery(&command);
    if (stored != 0) ++transfer.report.contactsPinned;
    return stored;
}

// What the merge knows of a stored contact.
struct StoredContact {
    bool found = false;
    long long time = 0;
    int top = 0;
};

StoredContact findContact(imsdk::dbUtils& db, long long targetID) {
    const tools::FixedText<100> query(transfer::kFindRecentContact, transfer::kRecentContactTable, targetID);
    imsdk::dbDataReader reader = db.excuteQuery(query.text());
    StoredContact stored;
    stored.found = reader.read() != 0;
    reader.getColumnValue(transfer::kRecentContactTimeColumn, stored.time);
    reader.getColumnValue(transfer::kRecentContactTopColumn, stored.top);
    return stored;
}

}  // namespace

unsigned int dbTrans::rdMsgFromFile() {
    const std::string root = backupPath + transfer::kPackageRoot;
    if (!tools::fileExist(root.c_str())) return transfer::kMissing;
    msgFileDir = root + transfer::kMessagesFolder + packageSubDir + "/";
    imFileDir = root + transfer::kAttachmentsFolder + packageSubDir + "/";
    if (!isFolderOfPackage(*this, transfer::kMessagesFolder) ||
        !isFolderOfPackage(*this, transfer::kAttachmentsFolder)) {
        return transfer::kMissing;
    }
    dataClear();
    transfer::ProgressThrottle throttle;
    const int fileCount = countMessageFiles(msgFileDir);
    std::string contactFile = msgFileDir + transfer::kRecentContactFileName;
    rdRecontactFromFile(contactFile);
    MessageTaker messages(*this);
    std::string text;
    for (int i = 0;; ++i) {
        const std::string path = transfer::messageFilePath(msgFileDir, i);
        const tools::Presence presence = tools::presenceOf(path);
        if (presence == tools::Presence::unknown)
            report.skip(path, "whether this message file is there cannot be said; none is read from here on");
        if (presence != tools::Presence::present) return transfer::kSuccess;
        const FileResult result = readMessageFile(*this, path, text, messages);
        if (result == FileResult::wrongVersion) return transfer::kWrongVersion;
        if (result == FileResult::skipped) continue;
        if (throttle.due(i == fileCount - 1)) transfer::notifyShare(*this, 2, i + 1, fileCount);
    }
}

int dbTrans::getMsgFileNum(std::string dir) {
    return countMessageFiles(dir);
}

unsigned int dbTrans::rdRecontactFromFile(std::string& path) {
    if (tools::presenceOf(path) == tools::Presence::absent) return transfer::kMissing;
    reContacts.clear();
    const JsonDocument document(json_parse_file_no_link(path.c_str()));
    if (!document) {
        report.skip(path, "the recent-contact file is not JSON");
        return transfer::kNotJson;
    }
    const JSON_Object* file = json_value_get_object(document.get());
    if (!transfer::hasVersion(file, packageVersion)) {
        report.skip(path, "the recent-contact file has another version");
        return transfer::kWrongVersion;
    }
    transfer::forEachObject(json_object_get_array(file, transfer::kRecentContactsKey),
                            [this](const JSON_Object* contact) { reContacts.push_back(readContact(contact)); });
    return transfer::kSuccess;
}

int dbTrans::importFile(std::string body, int msgType) {
    transfer::AttachmentFolders folders(*this);
    return restoreAttachments(report, folders, body, msgType);
}

unsigned int dbTrans::wtMsgToDB() {
    if (dbOpen() == 0) return transfer::kDatabaseFailed;
    transfer::ProgressThrottle throttle;
    const auto conversations = static_cast<long long>(msgMap.size());
    getTables();
    long long done = 0;
    const transfer::ErrorCode written = writeConversations(*this, mainDb, [&] {
        ++done;
        if (throttle.due(done == conversations)) transfer::notifyShare(*this, 1, done, conversations);
    });
    if (written != transfer::kSuccess) return written;
    checkMsgCount();
    wtRecontactToDb();
    return transfer::kSuccess;
}

unsigned int dbTrans::wtMsgToBackDB() {
    if (backdbOpen() == 0) return transfer::kDatabaseFailed;
    getTables2(backDb);
    return writeConversations(*this, backDb, [] {});
}

int dbTrans::checkMsgCount() {
    const int count = countRows(16, nullptr, 0);
    return transfer::isOverfull(count) ? transfer::trimMessages(mainDb, trimTable, count, report) : count;
}

unsigned int dbTrans::wtRecontactToDb() {
    const auto known = std::find(tableNames.begin(), tableNames.end(), transfer::kRecentContactTable);
    if (known == tableNames.end()) {
        if (mainDb.excuteNonQuery(transfer::kCreateRecentContactTable) == 0) {
            report.skip(transfer::kRecentContactTable, "the table could not be created: " + mainDb.lastError());
            return transfer::kDatabaseFailed;
        }
        tableNames.emplace_back(transfer::kRecentContactTable);
    }
    return transfer::inOneTransaction(*this, mainDb, transfer::kRecentContactTable, [this] {
        for (st_dbReContactBean& contact : reContacts)
            isRecontactExsit(contact);
        return transfer::kSuccess;
    });
}

int dbTrans::isRecontactExsit(st_dbReContactBean& record) {
    StoredContact stored = findContact(mainDb, record.targetID);
    if (!stored.found) return insertContact(*this, record);
    if (((stored.top | record.top) & transfer::kPinnedBit) != 0) {
        stored.top |= transfer::kPinnedBit;
        record.top = static_cast<signed char>(record.top | transfer::kPinnedBit);
    }
    if (record.time > stored.time) {
        ++report.contactsKept;
        return updateContact(mainDb, record);
    }
    if ((stored.top & transfer::kPinnedBit) != 0) return pinContact(*this, record.targetID, stored.top);
    ++report.contactsKept;
    return 1;
}
