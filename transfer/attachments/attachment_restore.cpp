#include "transfer/attachments/attachment_restore.h"

#include "host/tools.h"
#include "transfer/attachments/attachment_count.h"
#include "transfer/format/attachment_body.h"

namespace chattransfer {
namespace {

void restore(TransferReport& report, tools::ConfinedFolder& package, const std::string& packagePath,
             tools::ConfinedFolder& account, const std::string& name) {
    countAttachment(report, packagePath, package.copyTo(account, packagePath, name));
}

void restoreIfAbsent(TransferReport& report, tools::ConfinedFolder& package, const std::string& packagePath,
                     tools::ConfinedFolder& account, const std::string& name) {
    takeUnlessPresent(report, packagePath, account.kindOf(name),
                      [&] { return package.copyTo(account, packagePath, name); });
}

void restoreImage(TransferReport& report, AttachmentFolders& folders, const std::string& packagePath) {
    std::string name;
    tools::getNameFromPath(packagePath, name);
    restoreIfAbsent(report, folders.package, packagePath, folders.image, name);
}

}  // namespace

int restoreAttachments(TransferReport& report, AttachmentFolders& folders, const std::string& body, int msgType) {
    const AttachmentBody attachments = readAttachmentBody(body, msgType);
    if (!attachments.recognised) return 0;
    if (!attachments.complete) return 1;
    if (msgType == kFileMessage) {
        restoreIfAbsent(report, folders.package, attachments.packagePath(), folders.file, attachments.fileName);
    } else if (msgType == kVoiceMessage) {
        // Voice files are copied again each time, unlike the others.
        restore(report, folders.package, attachments.packagePath(), folders.audio, attachments.fileName);
    } else {
        restoreImage(report, folders, attachments.mediaUrl);
        restoreImage(report, folders, attachments.thumbUrl);
    }
    return 1;
}

}  // namespace chattransfer
