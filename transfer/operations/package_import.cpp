// Package import: reads a backup package into memory, restores its attachments, and writes messages and recent contacts
// into the databases.
#include <algorithm>

#include "host/base/fixed_text.h"
#include "host/files/confined_files.h"
#include "host/json/json_owner.h"
#include "host/tools.h"
#include "transfer/attachments/attachment_count.h"
#include "transfer/attachments/attachment_folders.h"
#include "transfer/attachments/backup_place.h"
#include "transfer/base/progress_report.h"
#include "transfer/dbTrans.h"
#include "transfer/format/attachment_body.h"
#include "transfer/format/json_fields.h"
#include "transfer/format/message_text.h"
#include "transfer/format/package_format.h"
#include "transfer/tables/bind_field.h"
#include "transfer/tables/conversation_writer.h"
#include "transfer/tables/message_table.h"
#include "transfer/tables/message_trimming.h"
#include "transfer/tables/one_transaction.h"
#include "transfer/tables/recent_contact_table.h"

using imsdk::st_dbMessageBean;
using imsdk::st_dbReContactBean;
using tools::JsonDocument;

namespace {

// --- Attachments ---

void restore(TransferReport& report, tools::ConfinedFolder& package, const std::string& packagePath,
             tools::ConfinedFolder& account, const std::string& name) {
    chattransfer::countAttachment(report, packagePath, package.copyTo(account, packagePath, name));
}

void restoreIfAbsent(TransferReport& report, tools::ConfinedFolder& package, const std::string& packagePath,
                     tools::ConfinedFolder& account, const std::string& name) {
    chattransfer::takeUnlessPresent(report, packagePath, account.kindOf(name),
                                    [&] { return package.copyTo(account, packagePath, name); });
}

void restoreImage(TransferReport& report, chattransfer::AttachmentFolders& folders, const std::string& packagePath) {
    std::string name;
    tools::getNameFromPath(packagePath, name);
    restoreIfAbsent(report, folders.package, packagePath, folders.image, name);
}

int restoreAttachments(TransferReport& report, chattransfer::AttachmentFolders& folders, const std::string& body,
                       int msgType) {
    const chattransfer::AttachmentBody attachments = chattransfer::readAttachmentBody(body, msgType);
    if (!attachments.recognised) return 0;
    if (!attachments.complete) return 1;
    if (msgType == chattransfer::kFileMessage) {
        restoreIfAbsent(report, folders.package, attachments.packagePath(), folders.file, attachments.fileName);
    } else if (msgType == chattransfer::kVoiceMessage) {
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
    while (tools::isFileExsit(chattransfer::messageFilePath(folder, number)) != 0)
        ++number;
    return number;
}

// Takes over what message files hold, attachments restored on the way.
class MessageTaker {
public:
    explicit MessageTaker(dbTrans& transfer) : transfer_(transfer), folders_(transfer) {}

    void take(chattransfer::MessageDay& day) {
        for (st_dbMessageBean& message : day.messages) {
            if (chattransfer::carriesAttachments(message.msgType))
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
    chattransfer::AttachmentFolders folders_;
    long long lastID_ = 0;
    std::vector<st_dbMessageBean>* last_ = nullptr;
};

// Whether the user's folder of that kind is there, and is one: a package whose folder is a symbolic link would make the
// import read files from wherever the link leads.
bool isFolderOfPackage(const dbTrans& transfer, const char* kind) {
    const std::string name = std::string(chattransfer::kPackageRoot) + kind + transfer.packageSubDir;
    return tools::confinedFolderExists(transfer.backupPath + "/", name);
}

enum class FileResult { read, skipped, wrongVersion };

FileResult skipFile(dbTrans& transfer, const std::string& path, const char* reason) {
    transfer.report.skip(path, reason);
    return FileResult::skipped;
}

// `text` is the buffer of all files.
FileResult readMessageFile(dbTrans& transfer, const std::string& path, std::string& text, MessageTaker& messages) {
    if (!chattransfer::readBackupFile(transfer, path, text))
        return skipFile(transfer, path, "the message file cannot be read");
    chattransfer::MessageFileContent file = chattransfer::readMessageFileText(text);
    if (!file.isObject) return skipFile(transfer, path, "the message file is not a JSON object");
    if (file.version != transfer.packageVersion) {
        transfer.report.skip(path, "the message file has another version than " + transfer.packageVersion);
        return FileResult::wrongVersion;
    }
    if (!file.hasDays) return skipFile(transfer, path, "the message file has no list of days");
    for (chattransfer::MessageDay& day : file.days)
        messages.take(day);
    return FileResult::read;
}

st_dbReContactBean readContact(const JSON_Object* object) {
    // Older clients wrote 1 for a pinned conversation.
    constexpr signed char kPinnedInPackage = 1;
    st_dbReContactBean contact = chattransfer::readRecentContact(object);
    if (contact.top == kPinnedInPackage) contact.top = chattransfer::kPinnedBit;
    return contact;
}

// --- Writing ---

// Writes one conversation, its table included.
chattransfer::ErrorCode writeConversation(dbTrans& transfer, imsdk::dbUtils& db, chattransfer::TableIndex& index,
                                          long long targetID, const std::vector<st_dbMessageBean>& messages) {
    const std::string table = chattransfer::openMessageTable(transfer, db, index, targetID);
    if (table.empty()) return chattransfer::kDatabaseFailed;
    imsdk::dbCommand insert(&db, chattransfer::insertMessageStatement(table).c_str());
    for (const st_dbMessageBean& message : messages)
        chattransfer::insertMessage(transfer.report, db, insert, message);
    return chattransfer::kSuccess;
}

// Writes all conversations, one transaction each.
template <class BeforeCommit>
chattransfer::ErrorCode writeConversations(dbTrans& transfer, imsdk::dbUtils& db, BeforeCommit beforeCommit) {
    chattransfer::TableIndex index(transfer.tableNames);
    for (const auto& conversation : transfer.msgMap) {
        const long long targetID = conversation.first;
        const std::string what = "conversation " + std::to_string(targetID);
        const chattransfer::ErrorCode result = chattransfer::inOneTransaction(transfer, db, what, [&] {
            const chattransfer::ErrorCode written =
                writeConversation(transfer, db, index, targetID, conversation.second);
            if (written == chattransfer::kSuccess) beforeCommit();
            return written;
        });
        if (result != chattransfer::kSuccess) return result;
    }
    return chattransfer::kSuccess;
}

// --- Recent contacts ---

std::string contactStatement(const char* format) {
    return tools::FixedText<512>(format, chattransfer::kRecentContactTable).text();
}

int insertContact(dbTrans& transfer, const st_dbReContactBean& contact) {
    imsdk::dbCommand command(&transfer.mainDb, contactStatement(chattransfer::kInsertRecentContact).c_str());
    int index = 0;
    chattransfer::forEachRecentContactField(contact, [&](int /*column*/, const char* /*name*/, const auto& field) {
        chattransfer::bindField(command, ++index, field);
    });
    const int stored = transfer.mainDb.excuteNonQuery(&command);
    if (stored != 0) ++transfer.report.contactsInserted;
    return stored;
}

int updateContact(imsdk::dbUtils& db, const st_dbReContactBean& contact) {
    imsdk::dbCommand command(&db, contactStatement(chattransfer::kUpdateRecentContact).c_str());
    int index = 0;
    chattransfer::forEachRecentContactField(contact, [&](int column, const char* /*name*/, const auto& field) {
        if (column != 0) chattransfer::bindField(command, ++index, field);
    });
    chattransfer::bindField(command, ++index, contact.targetID);
    return db.excuteNonQuery(&command);
}

int pinContact(dbTrans& transfer, long long targetID, int top) {
    imsdk::dbCommand command(&transfer.mainDb, contactStatement(chattransfer::kPinRecentContact).c_str());
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
    const tools::FixedText<100> query(chattransfer::kFindRecentContact, chattransfer::kRecentContactTable, targetID);
    imsdk::dbDataReader reader = db.excuteQuery(query.text());
    StoredContact stored;
    stored.found = reader.read() != 0;
    reader.getColumnValue(chattransfer::kRecentContactTimeColumn, stored.time);
    reader.getColumnValue(chattransfer::kRecentContactTopColumn, stored.top);
    return stored;
}

}  // namespace

unsigned int dbTrans::rdMsgFromFile() {
    const std::string root = backupPath + chattransfer::kPackageRoot;
    if (!tools::fileExist(root.c_str())) return chattransfer::kMissing;
    msgFileDir = root + chattransfer::kMessagesFolder + packageSubDir + "/";
    imFileDir = root + chattransfer::kAttachmentsFolder + packageSubDir + "/";
    if (!isFolderOfPackage(*this, chattransfer::kMessagesFolder) ||
        !isFolderOfPackage(*this, chattransfer::kAttachmentsFolder)) {
        return chattransfer::kMissing;
    }
    dataClear();
    chattransfer::ProgressThrottle throttle;
    const int fileCount = countMessageFiles(msgFileDir);
    std::string contactFile = msgFileDir + chattransfer::kRecentContactFileName;
    rdRecontactFromFile(contactFile);
    MessageTaker messages(*this);
    std::string text;
    for (int i = 0;; ++i) {
        const std::string path = chattransfer::messageFilePath(msgFileDir, i);
        const tools::Presence presence = tools::presenceOf(path);
        if (presence == tools::Presence::unknown)
            report.skip(path, "whether this message file is there cannot be said; none is read from here on");
        if (presence != tools::Presence::present) return chattransfer::kSuccess;
        const FileResult result = readMessageFile(*this, path, text, messages);
        if (result == FileResult::wrongVersion) return chattransfer::kWrongVersion;
        if (result == FileResult::skipped) continue;
        if (throttle.due(i == fileCount - 1)) chattransfer::notifyShare(*this, 2, i + 1, fileCount);
    }
}

int dbTrans::getMsgFileNum(std::string dir) {
    return countMessageFiles(dir);
}

unsigned int dbTrans::rdRecontactFromFile(std::string& path) {
    if (tools::presenceOf(path) == tools::Presence::absent) return chattransfer::kMissing;
    reContacts.clear();
    const JsonDocument document(json_parse_file_no_link(path.c_str()));
    if (!document) {
        report.skip(path, "the recent-contact file is not JSON");
        return chattransfer::kNotJson;
    }
    const JSON_Object* file = json_value_get_object(document.get());
    if (!chattransfer::hasVersion(file, packageVersion)) {
        report.skip(path, "the recent-contact file has another version");
        return chattransfer::kWrongVersion;
    }
    chattransfer::forEachObject(json_object_get_array(file, chattransfer::kRecentContactsKey),
                                [this](const JSON_Object* contact) { reContacts.push_back(readContact(contact)); });
    return chattransfer::kSuccess;
}

int dbTrans::importFile(std::string body, int msgType) {
    chattransfer::AttachmentFolders folders(*this);
    return restoreAttachments(report, folders, body, msgType);
}

unsigned int dbTrans::wtMsgToDB() {
    if (dbOpen() == 0) return chattransfer::kDatabaseFailed;
    chattransfer::ProgressThrottle throttle;
    const auto conversations = static_cast<long long>(msgMap.size());
    getTables();
    long long done = 0;
    const chattransfer::ErrorCode written = writeConversations(*this, mainDb, [&] {
        ++done;
        if (throttle.due(done == conversations)) chattransfer::notifyShare(*this, 1, done, conversations);
    });
    if (written != chattransfer::kSuccess) return written;
    checkMsgCount();
    wtRecontactToDb();
    return chattransfer::kSuccess;
}

unsigned int dbTrans::wtMsgToBackDB() {
    if (backdbOpen() == 0) return chattransfer::kDatabaseFailed;
    getTables2(backDb);
    return writeConversations(*this, backDb, [] {});
}

int dbTrans::checkMsgCount() {
    const int count = countRows(16, nullptr, 0);
    return chattransfer::isOverfull(count) ? chattransfer::trimMessages(mainDb, trimTable, count, report) : count;
}

unsigned int dbTrans::wtRecontactToDb() {
    const auto known = std::find(tableNames.begin(), tableNames.end(), chattransfer::kRecentContactTable);
    if (known == tableNames.end()) {
        if (mainDb.excuteNonQuery(chattransfer::kCreateRecentContactTable) == 0) {
            report.skip(chattransfer::kRecentContactTable, "the table could not be created: " + mainDb.lastError());
            return chattransfer::kDatabaseFailed;
        }
        tableNames.emplace_back(chattransfer::kRecentContactTable);
    }
    return chattransfer::inOneTransaction(*this, mainDb, chattransfer::kRecentContactTable, [this] {
        for (st_dbReContactBean& contact : reContacts)
            isRecontactExsit(contact);
        return chattransfer::kSuccess;
    });
}

int dbTrans::isRecontactExsit(st_dbReContactBean& record) {
    StoredContact stored = findContact(mainDb, record.targetID);
    if (!stored.found) return insertContact(*this, record);
    if (((stored.top | record.top) & chattransfer::kPinnedBit) != 0) {
        stored.top |= chattransfer::kPinnedBit;
        record.top = static_cast<signed char>(record.top | chattransfer::kPinnedBit);
    }
    if (record.time > stored.time) {
        ++report.contactsKept;
        return updateContact(mainDb, record);
    }
    if ((stored.top & chattransfer::kPinnedBit) != 0) return pinContact(*this, record.targetID, stored.top);
    ++report.contactsKept;
    return 1;
}
