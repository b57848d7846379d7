#include "transfer/tree/tree_messages.h"

#include "host/tools.h"
#include "transfer/base/progress_report.h"
#include "transfer/tables/conversation_writer.h"
#include "transfer/tree/tree_document.h"
#include "transfer/tree/tree_walk.h"

namespace chattransfer {

TreeMessageImport::TreeMessageImport(dbTrans& transfer, imsdk::dbUtils& db, TreeMessageOptions options)
    : transfer_(transfer),
      db_(db),
      options_(options),
      ownID_(tools::atoint64(transfer.packageSubDir.c_str())),
      index_(transfer.tableNames),
      insert_(&db),
      folders_(transfer) {}

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
    std::string text;
    if (!readTreeText(path, text, transfer_.report)) return kSuccess;
    MessageFileContent file = readMessageFileText(text);
    if (!file.isJson) {
        transfer_.report.skip(path, kNotJsonReason);
        return kSuccess;
    }
    if (file.version != transfer_.packageVersion) {
        skipOtherVersion(path, transfer_.packageVersion, transfer_.report);
        return kWrongVersion;
    }
    takeMessages(file, path);
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

void TreeMessageImport::takeMessages(MessageFileContent& file, const std::string& path) {
    if (!file.hasDays) {
        transfer_.report.skip(path, "has no list of days");
        return;
    }
    if (!tableOpen_) transfer_.report.skip(path, "its conversation has no table");
    const long long refusedBefore = transfer_.report.messagesRefused;
    for (MessageDay& day : file.days) {
        for (imsdk::st_dbMessageBean& message : day.messages)
            takeMessage(message);
    }
    if (transfer_.report.messagesRefused == refusedBefore) stored_.push_back(path);
}

void TreeMessageImport::takeMessage(imsdk::st_dbMessageBean& message) {
    ++transfer_.report.messagesRead;
    if (!tableOpen_) {
        ++transfer_.report.messagesRefused;
        return;
    }
    // A message to the user belongs to the conversation with its sender.
    message.targetID = message.toUserID == ownID_ ? message.fromeUserID : message.toUserID;
    if (options_.movesAttachments && carriesTreeFiles(message.msgType)) {
        moveTreeFiles(transfer_.report, folders_, message.body, message.msgType, kMessageFileKeys);
    }
    transfer_.wtSingleMsgToDbNJ(message, db_, insert_);
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

}  // namespace chattransfer
