#include "app/attachment_check.h"

#include "host/tools.h"
#include "transfer/attachment_body.h"

namespace app {
namespace {

std::string lastComponent(const std::string& path) {
    std::string name;
    tools::getNameFromPath(path, name);
    return name;
}

}  // namespace

// The names that an export looks for and that an import gives differ when a file name has a folder of its own.
void AttachmentCheck::collect(const std::string& body, int msgType) {
    const transfer::AttachmentBody names = transfer::readAttachmentBody(body, msgType);
    if (!names.complete) return;
    if (msgType == transfer::kImageMessage) {
        for (const std::string& path : {names.mediaUrl, names.thumbUrl}) {
            files_.add({path, transfer::kImageFolder, lastComponent(path), lastComponent(path)});
        }
        return;
    }
    const char* folder = msgType == transfer::kVoiceMessage ? transfer::kAudioFolder : transfer::kFileFolder;
    files_.add({names.packagePath(), folder, names.fileName, lastComponent(names.packagePath())});
}

AttachmentCounts AttachmentCheck::compare(Direction direction, VerifyReport& report) const {
    return files_.forEach(
        [&](const AttachmentFile& file, AttachmentPlace place) { compareOne(file, place, direction, report); });
}

void AttachmentCheck::compareOne(const AttachmentFile& file, AttachmentPlace place, Direction direction,
                                 VerifyReport& report) const {
    if (place == AttachmentPlace::refused) report.add(Rule::attachmentNameRefused);
    if (place == AttachmentPlace::both) {
        files_.compareBytes(file, files_.sharesSource(file) || files_.sharesAccountName(file), report);
    }
    if (place == AttachmentPlace::source && direction != Direction::exported) {
        report.add(Finding::attachmentNotInAccount, file.source);
    }
    if (place != AttachmentPlace::account) return;
    if (file.source.find('/') == std::string::npos) {
        report.add(Rule::attachmentWithoutFolder);
    } else if (direction != Direction::imported) {
        report.add(Finding::attachmentNotInPackage, file.source);
    }
}

}  // namespace app
