#include "transfer/attachment_body.h"

#include "host/json_owner.h"

namespace transfer {
namespace {

bool readText(const JSON_Object* object, const char* key, std::string& text) {
    const char* value = json_object_get_string(object, key);
    if (value != nullptr) text = value;
    return value != nullptr;
}

}  // namespace

std::string AttachmentBody::packagePath() const { return folderOf(mediaUrl) + "/" + fileName; }

AttachmentBody readAttachmentBody(const std::string& body, int msgType) {
    AttachmentBody result;
    if (!carriesAttachments(msgType)) return result;
    const tools::JsonDocument document(json_parse_string(body.c_str()));
    const JSON_Object* object = json_value_get_object(document.get());
    if (object == nullptr) return result;
    result.recognised = true;
    const bool hasMedia = readText(object, "mediaUrl", result.mediaUrl);
    const bool hasOther = msgType == kImageMessage ? readText(object, "thumbUrl", result.thumbUrl)
                                                   : readText(object, "fileName", result.fileName);
    result.complete = hasMedia && hasOther;
    return result;
}

std::string folderOf(const std::string& path) { return path.substr(0, path.rfind('/')); }

}  // namespace transfer
