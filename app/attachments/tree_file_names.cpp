#include "app/attachments/tree_file_names.h"

#include "app/base/paths.h"
#include "host/json/json_owner.h"
#include "host/tools.h"
#include "transfer/format/attachment_body.h"
#include "transfer/format/json_fields.h"

namespace app {
namespace {

using chattransfer::TreeFileKeys;
using Visit = std::function<void(AttachmentFile)>;

// Voice and files keep their name.
void visitByName(const JSON_Object* body, const char* key, const char* folder, const Visit& visit) {
    const char* value = json_object_get_string(body, key);
    if (value == nullptr || *value == '\0') return;
    const std::string name = lastComponent(value);
    visit({value, folder, name, name});
}

void visitByUrl(const JSON_Object* body, const char* key, const char* folder, AttachmentRole role, const Visit& visit) {
    const char* value = json_object_get_string(body, key);
    if (value == nullptr || *value == '\0') return;
    const std::string name = tools::getUniqueNameByUrl(value, true);
    visit({value, folder, name, name, role});
}

void visitImage(const JSON_Object* body, const TreeFileKeys& keys, const Visit& visit) {
    visitByUrl(body, keys.image, chattransfer::kImageFolder, AttachmentRole::content, visit);
    visitByUrl(body, keys.thumbnail, chattransfer::kImageFolder, AttachmentRole::preview, visit);
}

// An import moves a video only together with its preview.
void visitVideo(const JSON_Object* body, const TreeFileKeys& keys, const Visit& visit) {
    if (json_object_get_string(body, keys.preview) == nullptr || json_object_get_string(body, keys.video) == nullptr)
        return;
    visitByUrl(body, keys.preview, chattransfer::kImageFolder, AttachmentRole::preview, visit);
    visitByUrl(body, keys.video, chattransfer::kVideoFolder, AttachmentRole::content, visit);
}

}  // namespace

void forEachTreeFile(const std::string& body, int type, const TreeFileKeys& keys, const Visit& visit) {
    if (!chattransfer::carriesTreeFiles(type)) return;
    const tools::JsonDocument document(json_parse_string(body.c_str()));
    const JSON_Object* object = json_value_get_object(document.get());
    if (type == chattransfer::kVoiceMessage) visitByName(object, keys.voice, chattransfer::kAudioFolder, visit);
    if (type == chattransfer::kFileMessage) visitByName(object, keys.file, chattransfer::kFileFolder, visit);
    if (type == chattransfer::kImageMessage) visitImage(object, keys, visit);
    if (type == chattransfer::kVideoMessage) visitVideo(object, keys, visit);
    if (type == chattransfer::kPicturesMessage) {
        chattransfer::forEachObject(json_object_get_array(object, keys.pictures),
                                    [&](const JSON_Object* picture) { visitImage(picture, keys, visit); });
    }
}

}  // namespace app
