#include "transfer/package/package_reader.h"

#include <utility>

#include "host/files/confined_files.h"
#include "host/tools.h"
#include "transfer/attachments/attachment_restore.h"
#include "transfer/attachments/backup_place.h"
#include "transfer/format/attachment_body.h"
#include "transfer/format/package_format.h"

namespace chattransfer {

bool packageHasUser(const std::string& backup, const std::string& user) {
    tools::ConfinedFolder folder(backup + "/");
    const std::string package = std::string(kPackageName) + "/";
    return folder.hasFolder(package + kMessagesFolder + user) && folder.hasFolder(package + kAttachmentsFolder + user);
}

int countMessageFiles(const std::string& folder) {
    int number = 0;
    while (tools::isFileExsit(messageFilePath(folder, number)) != 0)
        ++number;
    return number;
}

ErrorCode PackageReader::readAll(Progress& progress, int fileCount) {
    for (int i = 0;; ++i) {
        const std::string path = messageFilePath(source_.messages, i);
        const tools::Presence presence = tools::presenceOf(path);
        if (presence == tools::Presence::unknown) report_.skip(path, Omission::messageFileUncertain);
        if (presence != tools::Presence::present) return kSuccess;
        const FileResult result = readFile(path);
        if (result == FileResult::wrongVersion) return kWrongVersion;
        if (result == FileResult::read) progress.reportStep(2, i + 1, fileCount, i == fileCount - 1);
    }
}

PackageReader::FileResult PackageReader::readFile(const std::string& path) {
    if (!readBackupFile(source_.attachments.backup, path, text_))
        return leaveOut(path, Omission::messageFileUnreadable);
    MessageFileContent file = readMessageFileText(text_);
    if (!file.isObject) return leaveOut(path, Omission::messageFileNotJson);
    if (!isVersion(file.version, source_.version)) {
        report_.skip(path, Omission::messageFileOtherVersion, source_.version);
        return FileResult::wrongVersion;
    }
    if (!file.hasDays) return leaveOut(path, Omission::messageFileWithoutDays);
    for (MessageDay& day : file.days)
        takeDay(day);
    return FileResult::read;
}

PackageReader::FileResult PackageReader::leaveOut(const std::string& path, Omission kind) {
    report_.skip(path, kind);
    return FileResult::leftOut;
}

void PackageReader::takeDay(MessageDay& day) {
    for (imsdk::st_dbMessageBean& message : day.messages) {
        // A body that names no files is a message all the same; what became of the files is in the report.
        if (carriesAttachments(message.msgType))
            static_cast<void>(restoreAttachments(report_, folders_, message.body, message.msgType));
        // The lists of the day object count, for all its messages; those that stand in the messages do not.
        message.limitRange = day.limitRange;
        message.relatedUsers = day.relatedUsers;
        messagesOf(message.targetID).push_back(std::move(message));
    }
    report_.messagesRead += static_cast<long long>(day.messages.size());
}

// Within a day, the messages of a conversation mostly stand together.
std::vector<imsdk::st_dbMessageBean>& PackageReader::messagesOf(long long targetID) {
    if (last_ == nullptr || targetID != lastID_) last_ = &conversations_[targetID];
    lastID_ = targetID;
    return *last_;
}

}  // namespace chattransfer
