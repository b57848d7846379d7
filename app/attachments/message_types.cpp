#include "app/attachments/message_types.h"

#include "transfer/format/attachment_body.h"
#include "transfer/format/tree_body.h"

namespace app {

std::string typeName(int msgType) {
    switch (msgType) {
        case chattransfer::kVoiceMessage:
            return "voice";
        case chattransfer::kImageMessage:
            return "image";
        case chattransfer::kFileMessage:
            return "file";
        case chattransfer::kPicturesMessage:
            return "pictures";
        case chattransfer::kVideoMessage:
            return "video";
        default:
            return "type " + std::to_string(msgType);
    }
}

}  // namespace app
