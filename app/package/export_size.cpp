#include "app/package/export_size.h"

#include <sys/stat.h>

#include <filesystem>
#include <set>

#include "app/base/failure.h"
#include "app/base/paths.h"
#include "app/base/units.h"
#include "transfer/format/account_folders.h"

namespace app {
namespace {

// The keys, numbers and punctuation of one message, rounded up.
constexpr unsigned long long kAroundAMessage = 400;

unsigned long long sizeOf(const imsdk::st_dbMessageBean& message) {
    return kAroundAMessage + message.body.size() + message.msgProperties.size() + message.formate.size() +
           message.sourceID.size() + message.unReadState.size() + message.limitRange.size() +
           message.relatedUsers.size();
}

// Adds the files of one kind. A file that several messages name is copied once.
void addFiles(const std::vector<std::string>& paths, const std::string& folder, ExportSize& size) {
    std::set<std::string> names;
    for (const std::string& path : paths) {
        const std::string name = lastComponent(path);
        struct stat status {};
        const bool isNew = names.insert(name).second;
        if (!isNew || lstat((folder + name).c_str(), &status) != 0 || !S_ISREG(status.st_mode)) continue;
        ++size.attachments;
        size.attachmentBytes += static_cast<unsigned long long>(status.st_size);
    }
}

}  // namespace

ExportSize sizeOfExport(const dbTrans& transfer, const Account& account) {
    ExportSize size;
    for (const auto& [key, messages] : transfer.dayMsgMap) {
        size.messages += static_cast<long long>(messages.size());
        for (const imsdk::st_dbMessageBean& message : messages)
            size.messageBytes += sizeOf(message);
    }
    addFiles(transfer.audioPaths, account.root() + chattransfer::kAudioFolder, size);
    addFiles(transfer.filePaths, account.root() + chattransfer::kFileFolder, size);
    addFiles(transfer.imagePaths, account.root() + chattransfer::kImageFolder, size);
    return size;
}

std::string inWords(const ExportSize& size) {
    return counted(size.messages, "message", "messages") + " and " +
           counted(size.attachments, "attachment", "attachments") + ", about " + humanSize(size.bytes());
}

void requireRoom(const ExportSize& size, const std::string& folder) {
    std::error_code error;
    const std::filesystem::space_info space = std::filesystem::space(folder, error);
    if (error || space.available >= size.bytes()) return;
    throw Failure({0, "The disk has no room for the package, and none was made", folder,
                   inWords(size) + "; " + humanSize(space.available) + " are free",
                   "make room, choose another --to, or export less with --since"});
}

}  // namespace app
