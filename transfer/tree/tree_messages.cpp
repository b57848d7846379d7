#include "transfer/tree/tree_messages.h"

#include "transfer/tables/conversation_writer.h"
#include "transfer/tree/tree_document.h"
#include "transfer/tree/tree_walk.h"

namespace chattransfer {

TreeMessageImport::TreeMessageImport(TransferReport& report, imsdk::dbUtils& db, std::vector<std::string>& tableNames,
                                     const TreeOwner& owner, const TreeMessageOptions& options)
    : report_(report), db_(db), tables_(tableNames), owner_(owner), options_(options), insert_(&db) {}

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
        report_.skip(path, Omission::treeFileWithoutConversation);
        return kSuccess;
    }
    if (conversation_ != targetID) openConversation(targetID);
    std::string text;
    if (!readTreeText(path, text, report_)) return kSuccess;
    MessageFileContent file = readMessageFileText(text);
    if (!file.isJson) {
        report_.skip(path, Omission::treeFileNotJson);
        return kSuccess;
    }
    if (!isVersion(file.version, owner_.version)) {
        report_.skip(path, Omission::treeFileOtherVersion, owner_.version);
        return kWrongVersion;
    }
    takeMessages(file, path);
    countFile();
    return kSuccess;
}

void TreeMessageImport::openConversation(long long targetID) {
    const std::string table = openMessageTable(report_, db_, tables_, targetID);
    // Without a table the statement of the conversation before must not stay: its table would get these messages.
    insert_.setCommandText(table.empty() ? "" : insertMessageStatement(table).c_str());
    conversation_ = targetID;
    tableOpen_ = !table.empty();
}

void TreeMessageImport::takeMessages(MessageFileContent& file, const std::string& path) {
    if (!file.hasDays) {
        report_.skip(path, Omission::treeFileWithoutDays);
        return;
    }
    if (!tableOpen_) report_.skip(path, Omission::treeFileWithoutTable);
    const long long refusedBefore = report_.messagesRefused;
    for (MessageDay& day : file.days) {
        for (imsdk::st_dbMessageBean& message : day.messages)
            takeMessage(message);
    }
    if (report_.messagesRefused == refusedBefore) stored_.push_back(path);
}

void TreeMessageImport::takeMessage(imsdk::st_dbMessageBean& message) {
    ++report_.messagesRead;
    if (!tableOpen_) {
        ++report_.messagesRefused;
        return;
    }
    // A message to the user belongs to the conversation with its sender.
    message.targetID = message.toUserID == owner_.id ? message.fromeUserID : message.toUserID;
    // What became of the files and of the message is in the report; neither keeps the next one from its place.
    if (options_.attachments != nullptr && carriesTreeFiles(message.msgType))
        static_cast<void>(
            moveTreeFiles(report_, *options_.attachments, message.body, message.msgType, kMessageFileKeys));
    static_cast<void>(insertMessage(report_, db_, insert_, message));
}

void TreeMessageImport::countFile() {
    // Ten percent before and after are the shares of the other steps of a whole import.
    constexpr std::size_t kShare = 80;
    constexpr int kBefore = 10;
    ++done_;
    if (options_.progress == nullptr) return;
    const int percent = static_cast<int>(done_ * kShare / listed_) + kBefore;
    options_.progress->report(1, percent, 100);
}

}  // namespace chattransfer
