#include "transfer/format/tree_body.h"

#include "host/json/json_tree.h"
#include "host/tools.h"
#include "transfer/format/account_folders.h"
#include "transfer/format/attachment_body.h"
#include "transfer/format/json_fields.h"

namespace chattransfer {
namespace {

// Voice and files keep their name, what is named by a URL gets one that is made from all of it.
std::string nameInAccount(TreeFileKind kind, const std::string& value) {
    if (kind != TreeFileKind::voice && kind != TreeFileKind::file) return tools::getUniqueNameByUrl(value, true);
    std::string name;
    tools::getNameFromPath(value, name);
    return name;
}

class TreeBodyVisit {
public:
    TreeBodyVisit(const TreeFileKeys& keys, const std::function<void(const TreeFile&)>& visit)
        : keys_(keys), visit_(visit) {}

    void body(const JSON_Object* body, int type) const {
        if (type == kVoiceMessage) file(body, keys_.voice, TreeFileKind::voice);
        if (type == kFileMessage) file(body, keys_.file, TreeFileKind::file);
        if (type == kImageMessage) image(body);
        if (type == kVideoMessage) video(body);
        if (type == kPicturesMessage) {
            forEachObject(json_object_get_array(body, keys_.pictures),
                          [this](const JSON_Object* picture) { image(picture); });
        }
    }

private:
    void image(const JSON_Object* body) const {
        file(body, keys_.image, TreeFileKind::image);
        file(body, keys_.thumbnail, TreeFileKind::thumbnail);
    }

    // A preview without its video, or the other way round, would be shown as a broken video.
    void video(const JSON_Object* body) const {
        const bool complete = json_object_get_string(body, keys_.preview) != nullptr &&
                              json_object_get_string(body, keys_.video) != nullptr;
        if (!complete) return;
        file(body, keys_.preview, TreeFileKind::preview);
        file(body, keys_.video, TreeFileKind::video);
    }

    void file(const JSON_Object* body, const char* key, TreeFileKind kind) const {
        const char* value = json_object_get_string(body, key);
        if (value == nullptr || *value == '\0') return;
        visit_({kind, value, nameInAccount(kind, value)});
    }

    const TreeFileKeys& keys_;
    const std::function<void(const TreeFile&)>& visit_;
};

}  // namespace

bool carriesTreeFiles(int type) {
    return carriesAttachments(type) || type == kPicturesMessage || type == kVideoMessage;
}

const char* accountFolderOf(TreeFileKind kind) {
    switch (kind) {
        case TreeFileKind::voice:
            return kAudioFolder;
        case TreeFileKind::file:
            return kFileFolder;
        case TreeFileKind::video:
            return kVideoFolder;
        default:
            return kImageFolder;
    }
}

bool forEachTreeFile(const std::string& body, int type, const TreeFileKeys& keys,
                     const std::function<void(const TreeFile&)>& visit) {
    if (!carriesTreeFiles(type)) return false;
    std::string text = body;
    const tools::JsonDocument document = tools::readJsonTree(text);
    if (!document) return false;
    TreeBodyVisit(keys, visit).body(json_value_get_object(document.get()), type);
    return true;
}

}  // namespace chattransfer
