#include "transfer/package/attachment_paths.h"

#include "transfer/format/attachment_body.h"

namespace chattransfer {

int AttachmentPaths::take(const std::string& body, int msgType) {
    const AttachmentBody attachments = readAttachmentBody(body, msgType);
    if (!attachments.recognised) return 0;
    if (!attachments.complete) return 1;
    if (msgType == kImageMessage) {
        image.push_back(attachments.mediaUrl);
        image.push_back(attachments.thumbUrl);
    } else {
        (msgType == kVoiceMessage ? audio : file).push_back(attachments.packagePath());
    }
    return 1;
}

}  // namespace chattransfer
