#include "app/attachments/package_file_names.h"

#include "app/base/paths.h"
#include "transfer/format/account_folders.h"
#include "transfer/format/attachment_body.h"

namespace app {
namespace {

AttachmentFile imageAt(const std::string& path, AttachmentRole role) {
    return {path, chattransfer::kImageFolder, lastComponent(path), lastComponent(path), role};
}

}  // namespace

// The names that an export looks for and that an import gives differ when a file name has a folder of its own.
void forEachPackageFile(const std::string& body, int msgType, const std::function<void(AttachmentFile)>& visit) {
    const chattransfer::AttachmentBody names = chattransfer::readAttachmentBody(body, msgType);
    if (!names.complete) return;
    if (msgType == chattransfer::kImageMessage) {
        visit(imageAt(names.mediaUrl, AttachmentRole::content));
        visit(imageAt(names.thumbUrl, AttachmentRole::preview));
        return;
    }
    const char* folder =
        msgType == chattransfer::kVoiceMessage ? chattransfer::kAudioFolder : chattransfer::kFileFolder;
    visit({names.packagePath(), folder, names.fileName, lastComponent(names.packagePath())});
}

}  // namespace app
