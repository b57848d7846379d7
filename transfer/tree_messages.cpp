#include "transfer/tree_messages.h"

#include "host/tools.h"
#include "transfer/conversation_writer.h"
#include "transfer/json_fields.h"
#include "transfer/message_file.h"
#include "transfer/progress_report.h"
#include "transfer/tree_attachments.h"
#include "transfer/tree_document.h"
#include "transfer/tree_walk.h"

namespace transfer {

TreeMessageImport::TreeMessageImport(dbTrans& transfer, imsdk::dbUtils& db, TreeMessageOptions options)
    : transfer_(transfer),
      db_(db),
      options_(options),
      ownID_(tools::atoint64(transfer.packageSubDir.c_str())),
      index_(transfer.tableNames),
      insert_(&db) {}

ErrorCode TreeMessageImport::take(const std::vector<std::string>& paths) {
    listed_ = paths.size();
    for (const std::string& path : paths) {
        const ErrorCode result = takeFile(path);
        if (result != kSuccess) return result;
        // Nothing of a lost transaction stays: going on would only move attachments of messages that are not there.
        if (db_.transactionFailed()) return kDatabaseFailed;
    }
    return kSuccess;
}

ErrorCode TreeMessageImport::takeFile(const std::string& path) {
    const long long targetID = conversationOfPath(path);
    if (targetID == kNoConversation) {
        transfer_.report.skip(path, "its path names no conversation");
        return kSuccess;
    }
    if (conversation_ != targetID) openConversation(targetID);
    const tools::JsonDocument document = readTreeFile(path, transfer_.report);
    if (!document) return kSuccess;
    if (!hasTreeVersion(document.get(), transfer_.packageVersion, path, transfer_.report)) return kWrongVersion;
    takeDays(json_value_get_object(document.get()), path);
    countFile();
    return kSuccess;
}

void TreeMessageImport::openConversation(long long targetID) {
    const std::string table = openMessageTable(transfer_, db_, index_, targetID);
    // Without a table the statement of the conversation before must not stay: its table would get these messages.
    insert_.setCommandText(table.empty() ? "" : insertMessageStatement(table).c_str());
    conversation_ = targetID;
    tableOpen_ = !table.empty();
}

void TreeMessageImport::takeDays(const JSON_Object* file, const std::string& path) {
    const JSON_Array* days = json_object_get_array(file, kMessagesKey);
    if (days == nullptr) {
        transfer_.report.skip(path, "has no list of days");
        return;
    }
    if (!tableOpen_) transfer_.report.skip(path, "its conversation has no table");
    const long long refusedBefore = transfer_.report.messagesRefused;
    forEachObject(days, [this](const JSON_Object* dayObject) {
        const CalendarDay day = readDate(dayObject);
        forEachObject(json_object_get_array(dayObject, kMessagesKey),
                      [&](const JSON_Object* message) { takeMessage(message, day); });
    });
    if (transfer_.report.messagesRefused == refusedBefore) stored_.push_back(path);
}

void TreeMessageImport::takeMessage(const JSON_Object* message, const CalendarDay& day) {
    ++transfer_.report.messagesRead;
    if (!tableOpen_) {
        ++transfer_.report.messagesRefused;
        return;
    }
    imsdk::st_dbMessageBean record = readMessage(message, day);
    forEachMessageList(record, [message](const char* key, std::string& joined) { getList(message, key, joined); });
    // A message to the user belongs to the conversation with its sender.
    record.targetID = record.toUserID == ownID_ ? record.fromeUserID : record.toUserID;
    if (options_.movesAttachments && carriesTreeFiles(record.msgType)) {
        transfer_.importFile2(record.body, record.msgType);
    }
    transfer_.wtSingleMsgToDbNJ(record, db_, insert_);
}

void TreeMessageImport::countFile() {
    // Ten percent before and after are the shares of the other steps of a whole import.
    constexpr std::size_t kShare = 80;
    constexpr int kBefore = 10;
    ++done_;
    if (!options_.reportsProgress) return;
    const int percent = static_cast<int>(done_ * kShare / listed_) + kBefore;
    notify(transfer_, 1, percent, percent, 100);
}

}  // namespace transfer
